// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/formula/Calendario.h"
#include "reports/formula/Formula.h"

#include <QStringView>
#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

namespace reports {
namespace formula_detail {

// Writes results into a caller's scratch value, so that evaluation builds no
// temporaries; only the fields of the result's own type are touched.
struct Accesso {
    static const Valore &nullo(Valore &v)
    {
        v.m_tipo = Valore::Tipo::Nullo;
        return v;
    }
    static const Valore &booleano(Valore &v, bool b)
    {
        v.m_tipo = Valore::Tipo::Booleano;
        v.m_bool = b;
        return v;
    }
    static const Valore &numero(Valore &v, double n)
    {
        v.m_tipo = Valore::Tipo::Numero;
        v.m_num = n;
        return v;
    }
    static const Valore &data(Valore &v, qint64 ms, bool soloData, bool soloOra)
    {
        v.m_tipo = Valore::Tipo::DataOra;
        v.m_ms = ms;
        v.m_soloData = soloData;
        v.m_soloOra = soloOra;
        return v;
    }
    static const Valore &testo(Valore &v, QString s)
    {
        v.m_tipo = Valore::Tipo::Testo;
        v.m_testo = std::move(s);
        return v;
    }
};

namespace {

// Limits that keep hostile or broken input from exhausting the stack.
constexpr int MaxAnnidamento = 200;   // parentheses, unary operators, calls
constexpr int MaxProfondita = 1000;   // depth of the tree, long operator chains included

// ---------------------------------------------------------------- static types

// What compilation knows of a value; fields are Qualsiasi, since the engine
// gives only their indices. Data covers both dates and date-times.
enum class TS : quint8 { Qualsiasi, Booleano, Numero, Testo, Data, Ora };

TS tipoDi(const Valore &v)
{
    switch (v.tipo()) {
    case Valore::Tipo::Booleano: return TS::Booleano;
    case Valore::Tipo::Numero: return TS::Numero;
    case Valore::Tipo::Testo: return TS::Testo;
    case Valore::Tipo::DataOra: return v.soloOra() ? TS::Ora : TS::Data;
    case Valore::Tipo::Nullo: break;
    }
    return TS::Qualsiasi;
}

bool eDiTipo(TS t, std::initializer_list<TS> ammessi)
{
    if (t == TS::Qualsiasi)
        return true;
    return std::find(ammessi.begin(), ammessi.end(), t) != ammessi.end();
}

// ---------------------------------------------------------------- runtime helpers

constexpr int Incomparabile = 2;

template <typename T>
int segno(T a, T b)
{
    if (a < b) return -1;
    if (b < a) return 1;
    if (a == b) return 0;
    return Incomparabile;   // NaN
}

// -1, 0 or 1; Incomparabile when the two values can't be ordered.
int confronta(const Valore &a, const Valore &b)
{
    using T = Valore::Tipo;
    if (a.tipo() == b.tipo()) {
        switch (a.tipo()) {
        case T::Numero: return segno(a.numero(), b.numero());
        case T::Testo: {
            const int c = a.testo().compare(b.testo(), Qt::CaseSensitive);
            return (c > 0) - (c < 0);
        }
        case T::Booleano: return int(a.booleano()) - int(b.booleano());
        case T::DataOra:
            // A time of day only meets another. A moment meets a date alone by its day, so that
            // "up to DateSerial (2026,4,3)" keeps the whole of the 3rd.
            if (a.soloOra() != b.soloOra())
                return Incomparabile;
            if (a.soloData() != b.soloData()) {
                constexpr qint64 Giorno = 86'400'000;
                auto giorno = [](qint64 ms) { return ms >= 0 ? ms / Giorno : (ms - Giorno + 1) / Giorno; };
                return segno(giorno(a.millisecondi()), giorno(b.millisecondi()));
            }
            return segno(a.millisecondi(), b.millisecondi());
        case T::Nullo: break;
        }
        return Incomparabile;
    }
    // Yes/No columns may reach us as numbers: the database reads true as -1.
    if (a.isBool() && b.isNumero())
        return int(a.booleano()) - int(b.numero() != 0);
    if (a.isNumero() && b.isBool())
        return int(a.numero() != 0) - int(b.booleano());
    // Codes kept as text may meet a number, and the other way round.
    bool ok = false;
    if (a.isNumero() && b.isTesto()) {
        const double n = QStringView(b.testo()).trimmed().toDouble(&ok);
        return ok ? segno(a.numero(), n) : Incomparabile;
    }
    if (a.isTesto() && b.isNumero()) {
        const double n = QStringView(a.testo()).trimmed().toDouble(&ok);
        return ok ? segno(n, b.numero()) : Incomparabile;
    }
    return Incomparabile;
}

// 1 true, 0 false, -1 neither.
int comeBool(const Valore &v)
{
    if (v.isBool())
        return v.booleano() ? 1 : 0;
    if (v.isNumero())
        return v.numero() != 0 ? 1 : 0;
    return -1;
}

// Truncates a number to an integer, false if it is out of a sane range.
bool intero(const Valore &v, qint64 *out, double limite = 1e9)
{
    if (!v.isNumero())
        return false;
    const double n = v.numero();
    if (!std::isfinite(n) || std::fabs(n) > limite)
        return false;
    *out = qint64(std::trunc(n));
    return true;
}

// Wildcard match: '*' any run of characters, '?' any one character.
bool somiglia(QStringView s, QStringView p)
{
    qsizetype i = 0, j = 0, stella = -1, ritorno = 0;
    while (i < s.size()) {
        if (j < p.size() && (p[j] == QLatin1Char('?') || p[j] == s[i])) {
            ++i;
            ++j;
        } else if (j < p.size() && p[j] == QLatin1Char('*')) {
            stella = j++;
            ritorno = i;
        } else if (stella >= 0) {
            j = stella + 1;
            i = ++ritorno;
        } else {
            return false;
        }
    }
    while (j < p.size() && p[j] == QLatin1Char('*'))
        ++j;
    return j == p.size();
}

// ---------------------------------------------------------------- tree

struct Nodo {
    TS tipo = TS::Qualsiasi;
    int pos = 0;          // key token (operator, function name, literal) for errors
    int lun = 0;
    int profondita = 1;
    virtual ~Nodo() = default;
    // Returns a reference either to a value the node or the row owns, or to tmp.
    virtual const Valore &valuta(const Riga &r, Valore &tmp) const = 0;
    virtual const Valore *costante() const { return nullptr; }
    // Why a constant expression of non-null operands came out null.
    virtual QString motivoNullo() const { return QStringLiteral("invalid value"); }
};
using PNodo = std::unique_ptr<Nodo>;

struct Costante final : Nodo {
    Valore v;
    const Valore &valuta(const Riga &, Valore &) const override { return v; }
    const Valore *costante() const override { return &v; }
};

struct Campo final : Nodo {
    int indice = 0;
    const Valore &valuta(const Riga &r, Valore &) const override { return r.campo(indice); }
};

struct RifFormula final : Nodo {
    int indice = 0;
    const Valore &valuta(const Riga &r, Valore &tmp) const override
    {
        tmp = r.formula(indice);
        return tmp;
    }
};

// Binary operators whose result is null when either operand is: the operands are
// read once here, and the operator only combines two values that aren't null.
template <typename Operatore>
struct BinarioStretto : Nodo {
    PNodo a, b;
    const Valore &valuta(const Riga &r, Valore &tmp) const final
    {
        Valore ta, tb;
        const Valore &x = a->valuta(r, ta);
        if (x.isNull())
            return Accesso::nullo(tmp);
        const Valore &y = b->valuta(r, tb);
        if (y.isNull())
            return Accesso::nullo(tmp);
        return static_cast<const Operatore *>(this)->combina(x, y, tmp);
    }
};

enum class OpConfronto { Uguale, Diverso, Minore, Maggiore, MinoreUguale, MaggioreUguale };

struct Confronto final : BinarioStretto<Confronto> {
    OpConfronto op;
    const Valore &combina(const Valore &x, const Valore &y, Valore &tmp) const
    {
        const int c = confronta(x, y);
        if (c == Incomparabile)
            return Accesso::nullo(tmp);
        bool esito = false;
        switch (op) {
        case OpConfronto::Uguale: esito = c == 0; break;
        case OpConfronto::Diverso: esito = c != 0; break;
        case OpConfronto::Minore: esito = c < 0; break;
        case OpConfronto::Maggiore: esito = c > 0; break;
        case OpConfronto::MinoreUguale: esito = c <= 0; break;
        case OpConfronto::MaggioreUguale: esito = c >= 0; break;
        }
        return Accesso::booleano(tmp, esito);
    }
    QString motivoNullo() const override { return QStringLiteral("values of different types compared"); }
};

// Three-valued logic: false wins in "and", true wins in "or", else null spreads.
struct Logico final : Nodo {
    bool eE = true;   // "and", else "or"
    PNodo a, b;
    const Valore &valuta(const Riga &r, Valore &tmp) const override
    {
        const int decide = eE ? 0 : 1;
        int va, vb;
        {
            Valore t;
            va = comeBool(a->valuta(r, t));
        }
        if (va == decide)
            return Accesso::booleano(tmp, decide == 1);
        {
            Valore t;
            vb = comeBool(b->valuta(r, t));
        }
        if (vb == decide)
            return Accesso::booleano(tmp, decide == 1);
        if (va < 0 || vb < 0)
            return Accesso::nullo(tmp);
        return Accesso::booleano(tmp, decide != 1);
    }
};

struct Non final : Nodo {
    PNodo a;
    const Valore &valuta(const Riga &r, Valore &tmp) const override
    {
        Valore t;
        const int v = comeBool(a->valuta(r, t));
        return v < 0 ? Accesso::nullo(tmp) : Accesso::booleano(tmp, v == 0);
    }
};

struct Negazione final : Nodo {
    PNodo a;
    const Valore &valuta(const Riga &r, Valore &tmp) const override
    {
        Valore t;
        const Valore &x = a->valuta(r, t);
        return x.isNumero() ? Accesso::numero(tmp, -x.numero()) : Accesso::nullo(tmp);
    }
};

enum class OpAritmetico { Piu, Meno, Per, Diviso };

struct Aritmetica final : BinarioStretto<Aritmetica> {
    OpAritmetico op;

    static const Valore &spostaData(Valore &tmp, const Valore &d, double giorni)
    {
        if (!std::isfinite(giorni) || std::fabs(giorni) > 4e6)
            return Accesso::nullo(tmp);
        const bool interi = giorni == std::trunc(giorni);
        return Accesso::data(tmp, d.millisecondi() + qint64(std::llround(giorni * MsGiorno)),
                             d.soloData() && interi, false);
    }
    static const Valore &spostaOra(Valore &tmp, const Valore &t, double secondi)
    {
        if (!std::isfinite(secondi) || std::fabs(secondi) > 1e12)
            return Accesso::nullo(tmp);
        return Accesso::data(tmp, modGiu(t.millisecondi() + std::llround(secondi * 1000), MsGiorno),
                             false, true);
    }

    const Valore &combina(const Valore &x, const Valore &y, Valore &tmp) const
    {
        const bool nx = x.isNumero(), ny = y.isNumero();
        if (nx && ny) {
            switch (op) {
            case OpAritmetico::Piu: return Accesso::numero(tmp, x.numero() + y.numero());
            case OpAritmetico::Meno: return Accesso::numero(tmp, x.numero() - y.numero());
            case OpAritmetico::Per: return Accesso::numero(tmp, x.numero() * y.numero());
            case OpAritmetico::Diviso:
                if (y.numero() == 0)
                    return Accesso::nullo(tmp);
                return Accesso::numero(tmp, x.numero() / y.numero());
            }
        }
        const bool dx = x.isDataOra() && !x.soloOra(), dy = y.isDataOra() && !y.soloOra();
        const bool ox = x.soloOra(), oy = y.soloOra();
        if (op == OpAritmetico::Piu) {
            if (x.isTesto() && y.isTesto())
                return Accesso::testo(tmp, x.testo() + y.testo());
            // A date plus a number of days; a time of day plus seconds.
            if (dx && ny) return spostaData(tmp, x, y.numero());
            if (nx && dy) return spostaData(tmp, y, x.numero());
            if (ox && ny) return spostaOra(tmp, x, y.numero());
            if (nx && oy) return spostaOra(tmp, y, x.numero());
        } else if (op == OpAritmetico::Meno) {
            if (dx && dy)
                return Accesso::numero(tmp, double(x.millisecondi() - y.millisecondi()) / MsGiorno);
            if (ox && oy)
                return Accesso::numero(tmp, double(x.millisecondi() - y.millisecondi()) / 1000);
            if (dx && ny) return spostaData(tmp, x, -y.numero());
            if (ox && ny) return spostaOra(tmp, x, -y.numero());
        }
        return Accesso::nullo(tmp);
    }
    QString motivoNullo() const override
    {
        return op == OpAritmetico::Diviso ? QStringLiteral("division by zero")
                                          : QStringLiteral("invalid operands");
    }
};

struct Concatena final : BinarioStretto<Concatena> {
    const Valore &combina(const Valore &x, const Valore &y, Valore &tmp) const
    {
        return Accesso::testo(tmp, x.comeTesto() + y.comeTesto());
    }
};

// "x in y" with texts: y contains x.
struct Contiene final : BinarioStretto<Contiene> {
    const Valore &combina(const Valore &x, const Valore &y, Valore &tmp) const
    {
        if (!x.isTesto() || !y.isTesto())
            return Accesso::nullo(tmp);
        return Accesso::booleano(tmp, y.testo().contains(x.testo(), Qt::CaseSensitive));
    }
    QString motivoNullo() const override { return QStringLiteral("'in' needs two texts"); }
};

// "x in lo to hi", both ends included.
struct Intervallo final : Nodo {
    PNodo x, lo, hi;
    const Valore &valuta(const Riga &r, Valore &tmp) const override
    {
        Valore t0, t1, t2;
        const Valore &v = x->valuta(r, t0);
        if (v.isNull())
            return Accesso::nullo(tmp);
        const Valore &l = lo->valuta(r, t1);
        const Valore &h = hi->valuta(r, t2);
        if (l.isNull() || h.isNull())
            return Accesso::nullo(tmp);
        const int c1 = confronta(v, l), c2 = confronta(v, h);
        if (c1 == Incomparabile || c2 == Incomparabile)
            return Accesso::nullo(tmp);
        return Accesso::booleano(tmp, c1 >= 0 && c2 <= 0);
    }
    QString motivoNullo() const override { return QStringLiteral("values of different types compared"); }
};

// "x in [a, b, c]".
struct Elenco final : Nodo {
    PNodo x;
    std::vector<PNodo> voci;
    const Valore &valuta(const Riga &r, Valore &tmp) const override
    {
        Valore t0;
        const Valore &v = x->valuta(r, t0);
        if (v.isNull())
            return Accesso::nullo(tmp);
        for (const PNodo &voce : voci) {
            Valore t;
            if (confronta(v, voce->valuta(r, t)) == 0)
                return Accesso::booleano(tmp, true);
        }
        return Accesso::booleano(tmp, false);
    }
};

struct Somiglia final : Nodo {
    PNodo a, b;
    const Valore &valuta(const Riga &r, Valore &tmp) const override
    {
        Valore ta, tb;
        const Valore &x = a->valuta(r, ta);
        const Valore &y = b->valuta(r, tb);
        if (!x.isTesto() || !y.isTesto())
            return Accesso::nullo(tmp);
        return Accesso::booleano(tmp, somiglia(x.testo(), y.testo()));
    }
    QString motivoNullo() const override { return QStringLiteral("'like' needs two texts"); }
};

// ---------------------------------------------------------------- functions

enum class Fn { UpperCase, Left, IsNull, DateSerial, TimeSerial, Hour, Minute, Date, CurrentDate };

struct DefFunzione {
    const char *nome;   // lower case
    Fn id;
    int minArg, maxArg;
    TS risultato;
};

const DefFunzione Funzioni[] = {
    {"uppercase", Fn::UpperCase, 1, 1, TS::Testo},
    {"left", Fn::Left, 2, 2, TS::Testo},
    {"isnull", Fn::IsNull, 1, 1, TS::Booleano},
    {"dateserial", Fn::DateSerial, 3, 3, TS::Data},
    {"timeserial", Fn::TimeSerial, 3, 3, TS::Ora},
    {"hour", Fn::Hour, 1, 1, TS::Numero},
    {"minute", Fn::Minute, 1, 1, TS::Numero},
    {"date", Fn::Date, 1, 3, TS::Data},
    {"currentdate", Fn::CurrentDate, 0, 0, TS::Data},
};

const DefFunzione *cercaFunzione(const QString &nome)
{
    for (const DefFunzione &f : Funzioni)
        if (nome.compare(QLatin1String(f.nome), Qt::CaseInsensitive) == 0)
            return &f;
    return nullptr;
}

struct Funzione final : Nodo {
    Fn id;
    PNodo arg[3];
    int nArg = 0;

    const Valore &valuta(const Riga &r, Valore &tmp) const override
    {
        Valore t0, t1, t2;
        const Valore *v[3] = {nullptr, nullptr, nullptr};
        Valore *t[3] = {&t0, &t1, &t2};
        for (int i = 0; i < nArg; ++i) {
            v[i] = &arg[i]->valuta(r, *t[i]);
            if (v[i]->isNull() && id != Fn::IsNull)
                return Accesso::nullo(tmp);
        }
        switch (id) {
        case Fn::IsNull:
            return Accesso::booleano(tmp, v[0]->isNull());
        case Fn::UpperCase:
            return v[0]->isTesto() ? Accesso::testo(tmp, v[0]->testo().toUpper()) : Accesso::nullo(tmp);
        case Fn::Left: {
            qint64 n = 0;
            if (!v[0]->isTesto() || !intero(*v[1], &n) || n < 0)
                return Accesso::nullo(tmp);
            return Accesso::testo(tmp, v[0]->testo().left(qsizetype(n)));
        }
        case Fn::Hour:
            if (!v[0]->isDataOra())
                return Accesso::nullo(tmp);
            return Accesso::numero(tmp, double(modGiu(v[0]->millisecondi(), MsGiorno) / MsOra));
        case Fn::Minute:
            if (!v[0]->isDataOra())
                return Accesso::nullo(tmp);
            return Accesso::numero(tmp, double(modGiu(v[0]->millisecondi(), MsOra) / MsMinuto));
        case Fn::TimeSerial: {
            qint64 h, m, s;
            if (!intero(*v[0], &h) || !intero(*v[1], &m) || !intero(*v[2], &s))
                return Accesso::nullo(tmp);
            // Out-of-range parts carry over and wrap around the day, as in the classic engine.
            return Accesso::data(tmp, modGiu(((h * 60 + m) * 60 + s) * 1000, MsGiorno), false, true);
        }
        case Fn::DateSerial: {
            qint64 y, m, d;
            if (!intero(*v[0], &y, 1e6) || !intero(*v[1], &m, 1e6) || !intero(*v[2], &d, 1e7))
                return Accesso::nullo(tmp);
            // Month 13 is January of the next year, day 0 the last of the month before.
            y += divGiu(m - 1, 12);
            m = modGiu(m - 1, 12) + 1;
            if (y < 1 || y > 9999)
                return Accesso::nullo(tmp);
            const qint64 jd = QDate(int(y), int(m), 1).toJulianDay() + d - 1;
            const QDate giorno = QDate::fromJulianDay(jd);
            if (giorno.year() < 1 || giorno.year() > 9999)
                return Accesso::nullo(tmp);
            return Accesso::data(tmp, (jd - GiornoZero) * MsGiorno, true, false);
        }
        case Fn::Date: {
            if (nArg == 1) {
                if (!v[0]->isDataOra() || v[0]->soloOra())
                    return Accesso::nullo(tmp);
                return Accesso::data(tmp, divGiu(v[0]->millisecondi(), MsGiorno) * MsGiorno, true, false);
            }
            // Unlike DateSerial, date() takes only a real calendar day.
            qint64 y, m, d;
            if (!intero(*v[0], &y) || !intero(*v[1], &m) || !intero(*v[2], &d))
                return Accesso::nullo(tmp);
            const QDate giorno{int(y), int(m), int(d)};
            if (!giorno.isValid() || y < 1 || y > 9999 || m != giorno.month() || d != giorno.day())
                return Accesso::nullo(tmp);
            return Accesso::data(tmp, msDaData(giorno), true, false);
        }
        case Fn::CurrentDate:
            return Accesso::data(tmp, msDaData(DataCorrente()), true, false);
        }
        return Accesso::nullo(tmp);
    }

    QString motivoNullo() const override
    {
        switch (id) {
        case Fn::DateSerial:
        case Fn::Date: return QStringLiteral("invalid date");
        case Fn::TimeSerial: return QStringLiteral("invalid time");
        case Fn::Left: return QStringLiteral("invalid length");
        default: return QStringLiteral("invalid argument");
        }
    }
};

// Used only to fold constant expressions: they read no field.
struct RigaVuota final : Riga {
    Valore nulla;
    const Valore &campo(int) const override { return nulla; }
    Valore formula(int) const override { return Valore(); }
};

// ---------------------------------------------------------------- lexer

enum class TT { Fine, Numero, Testo, Campo, Formula, Nome, Op, ParAperta, ParChiusa, Virgola, QuadAperta, QuadChiusa };

struct Token {
    TT tipo = TT::Fine;
    int pos = 0;
    int lun = 0;
    QString s;          // name, text, operator, formula name, or field name
    QString tabella;    // of a field
    double n = 0;
};

QString estratto(const QString &testo, int pos, int lun)
{
    return testo.mid(pos, std::min(std::max(lun, 1), 40));
}

std::vector<Token> analizza(const QString &testo)
{
    std::vector<Token> out;
    const int n = int(testo.size());
    int i = 0;
    auto errore = [&](int pos, int lun, const char *msg) {
        throw FormulaError(pos, estratto(testo, pos, lun), QString::fromLatin1(msg));
    };
    while (true) {
        while (i < n && testo.at(i).isSpace())
            ++i;
        if (i + 1 < n && testo.at(i) == QLatin1Char('/') && testo.at(i + 1) == QLatin1Char('/')) {
            while (i < n && testo.at(i) != QLatin1Char('\n'))
                ++i;
            continue;
        }
        Token t;
        t.pos = i;
        if (i >= n) {
            out.push_back(t);
            return out;
        }
        const QChar c = testo.at(i);
        const ushort u = c.unicode();
        if ((u >= '0' && u <= '9') || (u == '.' && i + 1 < n && testo.at(i + 1).unicode() >= '0'
                                        && testo.at(i + 1).unicode() <= '9')) {
            int j = i;
            while (j < n && testo.at(j).unicode() >= '0' && testo.at(j).unicode() <= '9')
                ++j;
            if (j < n && testo.at(j) == QLatin1Char('.')) {
                ++j;
                while (j < n && testo.at(j).unicode() >= '0' && testo.at(j).unicode() <= '9')
                    ++j;
            }
            bool ok = false;
            t.tipo = TT::Numero;
            t.n = QStringView(testo).mid(i, j - i).toDouble(&ok);
            t.lun = j - i;
            if (!ok)
                errore(i, t.lun, "invalid number");
            i = j;
        } else if (u == '\'' || u == '"') {
            int j = i + 1;
            bool chiuso = false;
            while (j < n) {
                if (testo.at(j) == c) {
                    if (j + 1 < n && testo.at(j + 1) == c) {   // doubled quote: one quote
                        t.s += c;
                        j += 2;
                        continue;
                    }
                    chiuso = true;
                    ++j;
                    break;
                }
                t.s += testo.at(j++);
            }
            if (!chiuso)
                errore(i, 20, "unterminated text");
            t.tipo = TT::Testo;
            t.lun = j - i;
            i = j;
        } else if (u == '{') {
            const int fine = int(testo.indexOf(QLatin1Char('}'), i + 1));
            if (fine < 0)
                errore(i, 20, "unterminated field reference: '}' expected");
            t.lun = fine - i + 1;
            const QString dentro = testo.mid(i + 1, fine - i - 1).trimmed();
            if (dentro.startsWith(QLatin1Char('@'))) {
                t.tipo = TT::Formula;
                t.s = dentro.mid(1).trimmed();
                if (t.s.isEmpty())
                    errore(i, t.lun, "formula name expected after '@'");
            } else {
                const int punto = int(dentro.indexOf(QLatin1Char('.')));
                t.tipo = TT::Campo;
                t.tabella = dentro.left(std::max(punto, 0)).trimmed();
                t.s = dentro.mid(punto + 1).trimmed();
                if (punto < 0 || t.tabella.isEmpty() || t.s.isEmpty())
                    errore(i, t.lun, "a field is written {Table.Field}");
            }
            i = fine + 1;
        } else if (c.isLetter() || u == '_') {
            int j = i + 1;
            while (j < n && (testo.at(j).isLetterOrNumber() || testo.at(j) == QLatin1Char('_')))
                ++j;
            t.tipo = TT::Nome;
            t.s = testo.mid(i, j - i);
            t.lun = j - i;
            i = j;
        } else {
            t.lun = 1;
            switch (u) {
            case '(': t.tipo = TT::ParAperta; break;
            case ')': t.tipo = TT::ParChiusa; break;
            case ',': t.tipo = TT::Virgola; break;
            case '[': t.tipo = TT::QuadAperta; break;
            case ']': t.tipo = TT::QuadChiusa; break;
            case '<':
                t.tipo = TT::Op;
                if (i + 1 < n && (testo.at(i + 1) == QLatin1Char('=') || testo.at(i + 1) == QLatin1Char('>')))
                    t.lun = 2;
                break;
            case '>':
                t.tipo = TT::Op;
                if (i + 1 < n && testo.at(i + 1) == QLatin1Char('='))
                    t.lun = 2;
                break;
            case '=': case '+': case '-': case '*': case '/': case '&':
                t.tipo = TT::Op;
                break;
            default:
                errore(i, 1, "unexpected character");
            }
            t.s = testo.mid(i, t.lun);
            i += t.lun;
        }
        out.push_back(std::move(t));
    }
}

// ---------------------------------------------------------------- parser

// Binding strength, loosest first; "not" sits between "and" and the comparisons,
// so "not a = b" is "not (a = b)" and "a and isnull(x) or x = 0" is
// "(a and isnull(x)) or (x = 0)".
enum Prec { POr = 1, PAnd = 2, PNot = 3, PConfronto = 4, PConcatena = 5, PSomma = 6, PProdotto = 7 };

class Parser {
public:
    Parser(const QString &testo, const Ambito &ambito) : m_testo(testo), m_ambito(ambito), m_tok(analizza(testo)) {}

    PNodo compila()
    {
        PNodo radice = espressione(POr);
        if (corrente().tipo != TT::Fine) {
            if (corrente().tipo == TT::ParChiusa)
                errore(corrente(), "unbalanced parenthesis: no '(' for this ')'");
            errore(corrente(), "operator expected");
        }
        return radice;
    }

    std::vector<int> campi, formule;

private:
    const QString &m_testo;
    const Ambito &m_ambito;
    std::vector<Token> m_tok;
    size_t m_k = 0;
    int m_annidamento = 0;

    struct Guardia {
        Parser &p;
        Guardia(Parser &p, const Token &t) : p(p)
        {
            if (++p.m_annidamento > MaxAnnidamento)
                p.errore(t, "formula nested too deeply");
        }
        ~Guardia() { --p.m_annidamento; }
    };

    const Token &corrente() const { return m_tok[m_k]; }
    const Token &prendi() { return m_tok[m_k < m_tok.size() - 1 ? m_k++ : m_k]; }

    [[noreturn]] void errore(const Token &t, const char *msg) const { errore(t.pos, t.lun, QString::fromLatin1(msg)); }
    [[noreturn]] void errore(int pos, int lun, const QString &msg) const
    {
        if (pos >= m_testo.size())
            throw FormulaError(int(m_testo.size()), QString(), msg);
        throw FormulaError(pos, estratto(m_testo, pos, lun), msg);
    }
    [[noreturn]] void errore(const Nodo &n, const char *msg) const { errore(n.pos, n.lun, QString::fromLatin1(msg)); }

    bool parola(const Token &t, const char *kw) const
    {
        return t.tipo == TT::Nome && t.s.compare(QLatin1String(kw), Qt::CaseInsensitive) == 0;
    }
    bool riservata(const Token &t) const
    {
        for (const char *kw : {"and", "or", "not", "in", "to", "like"})
            if (parola(t, kw))
                return true;
        return false;
    }

    void atteso(TT tipo, const char *msg)
    {
        if (corrente().tipo != tipo)
            errore(corrente(), msg);
        prendi();
    }

    // Sets position and depth, checks the depth, and folds a node whose
    // operands are all constant into a constant.
    PNodo chiudi(PNodo n, const Token &chiave, std::initializer_list<const Nodo *> figli)
    {
        n->pos = chiave.pos;
        n->lun = chiave.lun;
        bool costante = true;
        for (const Nodo *f : figli) {
            n->profondita = std::max(n->profondita, f->profondita + 1);
            costante = costante && f->costante();
        }
        if (n->profondita > MaxProfondita)
            errore(chiave, "formula too long or nested too deeply");
        if (!costante)
            return n;
        RigaVuota riga;
        Valore tmp;
        auto c = std::make_unique<Costante>();
        c->v = n->valuta(riga, tmp);
        if (c->v.isNull())
            errore(*n, n->motivoNullo().toLatin1().constData());
        c->tipo = tipoDi(c->v);
        c->pos = n->pos;
        c->lun = n->lun;
        return c;
    }

    void richiedi(const Nodo &n, std::initializer_list<TS> ammessi, const char *msg) const
    {
        if (!eDiTipo(n.tipo, ammessi))
            errore(n, msg);
    }

    int precedenza(const Token &t) const
    {
        if (t.tipo == TT::Op) {
            const QChar c = t.s.at(0);
            if (c == QLatin1Char('*') || c == QLatin1Char('/')) return PProdotto;
            if (c == QLatin1Char('+') || c == QLatin1Char('-')) return PSomma;
            if (c == QLatin1Char('&')) return PConcatena;
            return PConfronto;
        }
        if (parola(t, "or")) return POr;
        if (parola(t, "and")) return PAnd;
        if (parola(t, "in") || parola(t, "like")) return PConfronto;
        return 0;
    }

    PNodo espressione(int minimo)
    {
        Guardia g(*this, corrente());
        PNodo sx = operando();
        while (true) {
            const Token op = corrente();
            const int p = precedenza(op);
            if (p == 0 || p < minimo)
                return sx;
            prendi();
            if (parola(op, "in")) {
                sx = inclusione(std::move(sx), op);
                continue;
            }
            PNodo dx = espressione(p + 1);
            sx = binario(op, p, std::move(sx), std::move(dx));
        }
    }

    PNodo binario(const Token &op, int p, PNodo sx, PNodo dx)
    {
        const Nodo *fx = sx.get(), *fy = dx.get();
        if (p == POr || p == PAnd) {
            richiedi(*sx, {TS::Booleano}, "true or false expected");
            richiedi(*dx, {TS::Booleano}, "true or false expected");
            auto n = std::make_unique<Logico>();
            n->eE = p == PAnd;
            n->tipo = TS::Booleano;
            n->a = std::move(sx);
            n->b = std::move(dx);
            return chiudi(std::move(n), op, {fx, fy});
        }
        if (parola(op, "like")) {
            richiedi(*sx, {TS::Testo}, "text expected");
            richiedi(*dx, {TS::Testo}, "text pattern expected");
            auto n = std::make_unique<Somiglia>();
            n->tipo = TS::Booleano;
            n->a = std::move(sx);
            n->b = std::move(dx);
            return chiudi(std::move(n), op, {fx, fy});
        }
        if (p == PConfronto) {
            if (sx->tipo != TS::Qualsiasi && dx->tipo != TS::Qualsiasi && sx->tipo != dx->tipo)
                errore(op, "type mismatch: values of different types compared");
            auto n = std::make_unique<Confronto>();
            const QString &s = op.s;
            n->op = s == QLatin1String("=")    ? OpConfronto::Uguale
                    : s == QLatin1String("<>") ? OpConfronto::Diverso
                    : s == QLatin1String("<")  ? OpConfronto::Minore
                    : s == QLatin1String(">")  ? OpConfronto::Maggiore
                    : s == QLatin1String("<=") ? OpConfronto::MinoreUguale
                                               : OpConfronto::MaggioreUguale;
            n->tipo = TS::Booleano;
            n->a = std::move(sx);
            n->b = std::move(dx);
            return chiudi(std::move(n), op, {fx, fy});
        }
        if (p == PConcatena) {
            auto n = std::make_unique<Concatena>();
            n->tipo = TS::Testo;
            n->a = std::move(sx);
            n->b = std::move(dx);
            return chiudi(std::move(n), op, {fx, fy});
        }
        auto n = std::make_unique<Aritmetica>();
        const QChar c = op.s.at(0);
        n->op = c == QLatin1Char('+')   ? OpAritmetico::Piu
                : c == QLatin1Char('-') ? OpAritmetico::Meno
                : c == QLatin1Char('*') ? OpAritmetico::Per
                                        : OpAritmetico::Diviso;
        n->tipo = tipoAritmetico(n->op, sx->tipo, dx->tipo, op);
        n->a = std::move(sx);
        n->b = std::move(dx);
        return chiudi(std::move(n), op, {fx, fy});
    }

    TS tipoAritmetico(OpAritmetico op, TS a, TS b, const Token &t) const
    {
        using T = TS;
        if (a == T::Booleano || b == T::Booleano)
            errore(t, "type mismatch: arithmetic on true or false");
        if (op == OpAritmetico::Per || op == OpAritmetico::Diviso) {
            if (!eDiTipo(a, {T::Numero}) || !eDiTipo(b, {T::Numero}))
                errore(t, "type mismatch: numbers expected");
            return T::Numero;
        }
        if (a == T::Qualsiasi || b == T::Qualsiasi) {
            const T noto = a == T::Qualsiasi ? b : a;
            return op == OpAritmetico::Piu && noto == T::Testo ? T::Testo : T::Qualsiasi;
        }
        if (a == T::Numero && b == T::Numero)
            return T::Numero;
        if (op == OpAritmetico::Piu) {
            if (a == T::Testo && b == T::Testo) return T::Testo;
            if ((a == T::Data && b == T::Numero) || (a == T::Numero && b == T::Data)) return T::Data;
            if ((a == T::Ora && b == T::Numero) || (a == T::Numero && b == T::Ora)) return T::Ora;
        } else {
            if (a == T::Data && b == T::Data) return T::Numero;
            if (a == T::Ora && b == T::Ora) return T::Numero;
            if (a == T::Data && b == T::Numero) return T::Data;
            if (a == T::Ora && b == T::Numero) return T::Ora;
        }
        errore(t, "type mismatch");
    }

    PNodo inclusione(PNodo x, const Token &op)
    {
        if (corrente().tipo == TT::QuadAperta) {
            const Token apertura = prendi();
            Guardia g(*this, apertura);
            auto n = std::make_unique<Elenco>();
            n->tipo = TS::Booleano;
            int profondita = x->profondita;
            bool costante = x->costante();
            if (corrente().tipo != TT::QuadChiusa) {
                while (true) {
                    PNodo voce = espressione(PConcatena);
                    if (x->tipo != TS::Qualsiasi && voce->tipo != TS::Qualsiasi && voce->tipo != x->tipo)
                        errore(*voce, "type mismatch: values of different types compared");
                    profondita = std::max(profondita, voce->profondita);
                    costante = costante && voce->costante();
                    n->voci.push_back(std::move(voce));
                    if (corrente().tipo != TT::Virgola)
                        break;
                    prendi();
                }
            }
            atteso(TT::QuadChiusa, "']' expected");
            n->x = std::move(x);
            n->profondita = profondita + 1;
            // Folding needs every operand; "chiudi" would see none of the list items.
            const Nodo *figlio = n->x.get();
            if (!costante) {
                n->pos = op.pos;
                n->lun = op.lun;
                return n;
            }
            return chiudi(std::move(n), op, {figlio});
        }
        PNodo y = espressione(PConcatena);
        if (parola(corrente(), "to")) {
            prendi();
            PNodo z = espressione(PConcatena);
            for (const Nodo *lim : {y.get(), z.get()})
                if (x->tipo != TS::Qualsiasi && lim->tipo != TS::Qualsiasi && lim->tipo != x->tipo)
                    errore(*lim, "type mismatch: values of different types compared");
            auto n = std::make_unique<Intervallo>();
            const Nodo *f[3] = {x.get(), y.get(), z.get()};
            n->tipo = TS::Booleano;
            n->x = std::move(x);
            n->lo = std::move(y);
            n->hi = std::move(z);
            return chiudi(std::move(n), op, {f[0], f[1], f[2]});
        }
        richiedi(*x, {TS::Testo}, "text expected before 'in'");
        richiedi(*y, {TS::Testo}, "text expected after 'in'");
        auto n = std::make_unique<Contiene>();
        const Nodo *fx = x.get(), *fy = y.get();
        n->tipo = TS::Booleano;
        n->a = std::move(x);
        n->b = std::move(y);
        return chiudi(std::move(n), op, {fx, fy});
    }

    PNodo operando()
    {
        const Token t = corrente();
        Guardia g(*this, t);
        if (parola(t, "not")) {
            prendi();
            PNodo a = espressione(PNot + 1);
            richiedi(*a, {TS::Booleano}, "true or false expected after 'not'");
            auto n = std::make_unique<Non>();
            const Nodo *f = a.get();
            n->tipo = TS::Booleano;
            n->a = std::move(a);
            return chiudi(std::move(n), t, {f});
        }
        if (t.tipo == TT::Op && (t.s == QLatin1String("-") || t.s == QLatin1String("+"))) {
            prendi();
            PNodo a = operando();
            richiedi(*a, {TS::Numero}, "number expected after the sign");
            if (t.s == QLatin1String("+"))
                return a;
            auto n = std::make_unique<Negazione>();
            const Nodo *f = a.get();
            n->tipo = TS::Numero;
            n->a = std::move(a);
            return chiudi(std::move(n), t, {f});
        }
        return primario();
    }

    PNodo costante(const Token &t, Valore v)
    {
        auto c = std::make_unique<Costante>();
        c->tipo = tipoDi(v);
        c->v = std::move(v);
        c->pos = t.pos;
        c->lun = t.lun;
        return c;
    }

    PNodo primario()
    {
        const Token t = prendi();
        switch (t.tipo) {
        case TT::Numero:
            return costante(t, Valore(t.n));
        case TT::Testo:
            return costante(t, Valore(t.s));
        case TT::Campo: {
            const int i = m_ambito.campo(t.tabella, t.s);
            if (i < 0)
                errore(t, "unknown field");
            campi.push_back(i);
            auto n = std::make_unique<Campo>();
            n->indice = i;
            n->pos = t.pos;
            n->lun = t.lun;
            return n;
        }
        case TT::Formula: {
            const int i = m_ambito.formula(t.s);
            if (i < 0)
                errore(t, "unknown formula");
            formule.push_back(i);
            auto n = std::make_unique<RifFormula>();
            n->indice = i;
            n->pos = t.pos;
            n->lun = t.lun;
            return n;
        }
        case TT::ParAperta: {
            PNodo n = espressione(POr);
            if (corrente().tipo != TT::ParChiusa)
                errore(corrente(), corrente().tipo == TT::Fine ? "unbalanced parenthesis: ')' expected"
                                                             : "')' expected");
            prendi();
            return n;
        }
        case TT::Nome:
            if (parola(t, "true"))
                return costante(t, Valore(true));
            if (parola(t, "false"))
                return costante(t, Valore(false));
            if (riservata(t))
                errore(t, "value expected");
            return chiamata(t);
        case TT::Fine:
            errore(t, "unexpected end of formula");
        case TT::ParChiusa:
            errore(t, "unbalanced parenthesis: unexpected ')'");
        default:
            errore(t, "value expected");
        }
    }

    PNodo chiamata(const Token &nome)
    {
        const DefFunzione *def = cercaFunzione(nome.s);
        if (!def)
            errore(nome, corrente().tipo == TT::ParAperta ? "unknown function" : "unknown name");
        auto n = std::make_unique<Funzione>();
        n->id = def->id;
        n->tipo = def->risultato;
        if (corrente().tipo != TT::ParAperta) {
            if (def->minArg > 0)
                errore(corrente(), "'(' expected after the function name");
        } else {
            prendi();
            if (corrente().tipo != TT::ParChiusa) {
                while (true) {
                    if (n->nArg == 3)
                        errore(corrente(), "too many arguments");
                    n->arg[n->nArg++] = espressione(POr);
                    if (corrente().tipo != TT::Virgola)
                        break;
                    prendi();
                }
            }
            if (corrente().tipo != TT::ParChiusa)
                errore(corrente(), corrente().tipo == TT::Fine ? "unbalanced parenthesis: ')' expected"
                                                             : "',' or ')' expected");
            prendi();
        }
        if (n->nArg < def->minArg || n->nArg > def->maxArg || (def->id == Fn::Date && n->nArg == 2)) {
            QString msg = def->minArg == def->maxArg
                              ? QStringLiteral("%1 takes %2 argument(s)").arg(nome.s).arg(def->minArg)
                              : QStringLiteral("%1 takes 1 or 3 arguments").arg(nome.s);
            errore(nome.pos, nome.lun, QStringLiteral("wrong number of arguments: ") + msg);
        }
        const Nodo *a0 = n->arg[0].get(), *a1 = n->arg[1].get(), *a2 = n->arg[2].get();
        switch (def->id) {
        case Fn::UpperCase:
            richiedi(*a0, {TS::Testo}, "text expected");
            break;
        case Fn::Left:
            richiedi(*a0, {TS::Testo}, "text expected");
            richiedi(*a1, {TS::Numero}, "number expected");
            break;
        case Fn::Hour:
        case Fn::Minute:
            richiedi(*a0, {TS::Data, TS::Ora}, "date-time or time expected");
            break;
        case Fn::Date:
            if (n->nArg == 1) {
                richiedi(*a0, {TS::Data}, "date-time expected");
                break;
            }
            [[fallthrough]];
        case Fn::DateSerial:
        case Fn::TimeSerial:
            for (const Nodo *a : {a0, a1, a2})
                richiedi(*a, {TS::Numero}, "number expected");
            break;
        case Fn::IsNull:
        case Fn::CurrentDate:
            break;
        }
        switch (n->nArg) {
        case 0: return chiudi(std::move(n), nome, {});
        case 1: return chiudi(std::move(n), nome, {a0});
        case 2: return chiudi(std::move(n), nome, {a0, a1});
        default: return chiudi(std::move(n), nome, {a0, a1, a2});
        }
    }
};

std::vector<int> ordinati(std::vector<int> v)
{
    std::sort(v.begin(), v.end());
    v.erase(std::unique(v.begin(), v.end()), v.end());
    return v;
}

} // namespace

struct Programma {
    QString testo;
    std::unique_ptr<Nodo> radice;
    QVector<int> campi, formule;
};

} // namespace formula_detail

using namespace formula_detail;

Formula::Formula() = default;
Formula::~Formula() = default;
Formula::Formula(const Formula &) = default;
Formula &Formula::operator=(const Formula &) = default;

Formula Formula::compila(const QString &testo, const Ambito &ambito)
{
    Formula f;
    if (testo.trimmed().isEmpty())
        return f;
    Parser parser(testo, ambito);
    auto p = QSharedPointer<Programma>::create();
    p->testo = testo;
    p->radice = parser.compila();
    for (int i : ordinati(parser.campi))
        p->campi.append(i);
    for (int i : ordinati(parser.formule))
        p->formule.append(i);
    f.m_p = p;
    return f;
}

bool Formula::vuota() const { return !m_p; }

Valore Formula::valuta(const Riga &riga) const
{
    if (!m_p)
        return Valore();
    Valore tmp;
    return m_p->radice->valuta(riga, tmp);
}

bool Formula::seleziona(const Riga &riga) const
{
    if (!m_p)
        return true;
    Valore tmp;
    return m_p->radice->valuta(riga, tmp).booleano();
}

QVector<int> Formula::campiUsati() const { return m_p ? m_p->campi : QVector<int>(); }

QVector<int> Formula::formuleUsate() const { return m_p ? m_p->formule : QVector<int>(); }

const QString &Formula::testo() const
{
    static const QString vuoto;
    return m_p ? m_p->testo : vuoto;
}

} // namespace reports
