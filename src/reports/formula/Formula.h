// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QDate>
#include <QDateTime>
#include <QSharedPointer>
#include <QString>
#include <QTime>
#include <QVariant>
#include <QVector>
#include <stdexcept>

namespace reports {

namespace formula_detail {
struct Accesso;
struct Programma;
}

// One value of the formula language. Kept small and free of QVariant so that a
// selection runs over many rows without touching the heap (texts aside).
// A date-time is the local wall-clock time counted in milliseconds from
// 1970-01-01 00:00 as if local time had no offset: the database keeps local
// times without a zone, and this way Hour, Minute and date comparisons are
// plain arithmetic, correct across daylight-saving changes. A date alone is
// midnight of that day with the soloData flag. A time of day (TimeSerial) is
// milliseconds since midnight with the soloOra flag.
class Valore {
public:
    enum class Tipo : quint8 { Nullo, Booleano, Numero, Testo, DataOra };

    Valore() = default;                         // null
    Valore(bool b) : m_tipo(Tipo::Booleano), m_bool(b) {}
    Valore(double n) : m_tipo(Tipo::Numero), m_num(n) {}
    Valore(int n) : m_tipo(Tipo::Numero), m_num(n) {}
    Valore(qint64 n) : m_tipo(Tipo::Numero), m_num(double(n)) {}
    Valore(const QString &s) : m_tipo(Tipo::Testo), m_testo(s) {}
    Valore(const char *s) : m_tipo(Tipo::Testo), m_testo(QString::fromUtf8(s)) {}
    explicit Valore(const QDateTime &dt);       // invalid → null
    explicit Valore(const QDate &d);            // date only; invalid → null
    static Valore nullo() { return Valore(); }
    // msLocali: wall-clock milliseconds as described above.
    static Valore daMillisecondi(qint64 msLocali, bool soloData = false);
    static Valore daDataOra(const QDate &d, const QTime &t);  // local wall clock
    static Valore oraDelGiorno(qint64 msDaMezzanotte);  // TimeSerial's value
    static Valore daVariant(const QVariant &v);

    Tipo tipo() const { return m_tipo; }
    bool isNull() const { return m_tipo == Tipo::Nullo; }
    bool isBool() const { return m_tipo == Tipo::Booleano; }
    bool isNumero() const { return m_tipo == Tipo::Numero; }
    bool isTesto() const { return m_tipo == Tipo::Testo; }
    bool isDataOra() const { return m_tipo == Tipo::DataOra; }
    bool soloData() const { return m_tipo == Tipo::DataOra && m_soloData; }
    bool soloOra() const { return m_tipo == Tipo::DataOra && m_soloOra; }

    bool booleano() const { return m_tipo == Tipo::Booleano && m_bool; }
    double numero() const { return m_tipo == Tipo::Numero ? m_num : 0.0; }
    const QString &testo() const { return m_testo; }
    qint64 millisecondi() const { return m_tipo == Tipo::DataOra ? m_ms : 0; }
    QDateTime dataOra() const;                  // local time; invalid unless a date-time
    QDate data() const;                         // invalid unless a date-time
    QTime ora() const;                          // time of day; invalid unless a date-time
    QVariant aVariant() const;
    // Display text, as a report shows a value in a text object.
    QString comeTesto() const;

    bool operator==(const Valore &o) const;     // same type and value (nulls equal)
    bool operator!=(const Valore &o) const { return !(*this == o); }

private:
    Tipo m_tipo = Tipo::Nullo;
    bool m_bool = false;
    bool m_soloData = false;
    bool m_soloOra = false;
    union {
        double m_num;
        qint64 m_ms = 0;
    };
    QString m_testo;

    friend struct formula_detail::Accesso;
};

// A compile or parse error: where in the text, on which token, and why.
class FormulaError : public std::runtime_error {
public:
    FormulaError(int posizione, const QString &token, const QString &messaggio);
    int posizione() const { return m_pos; }     // 0-based character position
    QString token() const { return m_token; }
    QString messaggio() const { return m_msg; }

private:
    int m_pos;
    QString m_token;
    QString m_msg;
};

// The names a formula may use, resolved once when it is compiled.
class Ambito {
public:
    virtual ~Ambito() = default;
    // Index of {Table.Field} (case-blind), or -1 when there is no such field.
    virtual int campo(const QString &tabella, const QString &nome) const = 0;
    // Index of {@Name} (case-blind), or -1 when there is no such formula.
    virtual int formula(const QString &nome) const = 0;
};

// One row as an evaluation reads it, by the indices the Ambito gave.
class Riga {
public:
    virtual ~Riga() = default;
    virtual const Valore &campo(int indice) const = 0;
    virtual Valore formula(int indice) const = 0;
};

// A compiled formula: copyable and cheap, sharing an immutable tree.
class Formula {
public:
    Formula();                                  // empty: null value, selects every row
    ~Formula();
    Formula(const Formula &);
    Formula &operator=(const Formula &);

    // Throws FormulaError; an empty or blank text gives the empty formula.
    static Formula compila(const QString &testo, const Ambito &ambito);

    bool vuota() const;
    Valore valuta(const Riga &riga) const;
    // True only when the value is a boolean true; the empty formula selects all.
    bool seleziona(const Riga &riga) const;
    // Field indices read by the formula (sorted, no duplicates), so the
    // engine converts only those columns. {@Name} references are not followed.
    QVector<int> campiUsati() const;
    // Formula indices referenced by {@Name} (sorted, no duplicates).
    QVector<int> formuleUsate() const;
    const QString &testo() const;

private:
    QSharedPointer<const formula_detail::Programma> m_p;
};

// One Formulas(n) assignment: "name='text'", "name=true", "name=false",
// "name=123.45", "name=''". A doubled quote inside the text is one quote.
struct Assegnazione {
    QString nome;
    Valore valore;
};
Assegnazione ParseAssegnazione(const QString &testo);   // throws FormulaError

// CurrentDate normally reads the clock; tests fix it here.
void ImpostaDataCorrente(const QDate &data);
void AzzeraDataCorrente();
QDate DataCorrente();

} // namespace reports
