// SPDX-License-Identifier: GPL-3.0-or-later
#include "parking/Ricerca.h"

#include "parking/ContaRegistro.h"
#include "parking/Correzione.h"

#include "frame/Language.h"
#include "frame/Prompter.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "store/Database.h"
#include "store/DbError.h"
#include "store/FieldKind.h"
#include "store/Recordset.h"

#include <QRegularExpression>
#include <QStringList>

#include <utility>

namespace parking {

using frame::Prompter;
using frame::TestoLingua;

namespace {


// The index a condition can use. The row-finding query lets one index drive it
// and hides the other columns behind a unary '+', because without statistics
// the planner may pick the state index and walk most of a million rows.
enum class Indice { Nessuno, Data, Stato, AnnoProgressivo, Targa };

struct Condizione {
    QString colonna;
    QString resto; // the comparison after the column, with its '?' marks
    QVariantList parametri;
    Indice indice = Indice::Nessuno;
};

struct Clausola {
    QString testo;
    QVariantList parametri;
};

// Joins the conditions with " and "; those not on `guida` lose their index.
Clausola unisci(const QList<Condizione> &condizioni, Indice guida, bool nascondi)
{
    QStringList parti;
    Clausola c;
    for (const Condizione &k : condizioni) {
        const bool senzaIndice = nascondi && k.indice != guida;
        parti << (senzaIndice ? QStringLiteral("+") : QString()) + k.colonna + QLatin1Char(' ') + k.resto;
        c.parametri += k.parametri;
    }
    c.testo = parti.join(QStringLiteral(" and "));
    return c;
}

QString istante(const QDate &giorno)
{
    return QDateTime(giorno, QTime(0, 0)).toString(QLatin1String(store::DateFormat));
}

// First stage: the day of entry and the option.
QList<Condizione> primaParte(OpzioneElenco opzione, const QDate &giorno)
{
    QList<Condizione> c;
    if (giorno.isValid()) {
        // The whole day, and nothing of the next one.
        c << Condizione{QStringLiteral("DataOra"), QStringLiteral(">= ?"), {istante(giorno)}, Indice::Data}
          << Condizione{QStringLiteral("DataOra"), QStringLiteral("< ?"), {istante(giorno.addDays(1))}, Indice::Data};
    }
    // Yes/No fields store -1 and 0.
    if (opzione == OpzioneElenco::Dentro)
        c << Condizione{QStringLiteral("Entrato"), QStringLiteral("= -1"), {}, Indice::Stato};
    else if (opzione == OpzioneElenco::Usciti)
        c << Condizione{QStringLiteral("Entrato"), QStringLiteral("= 0"), {}, Indice::Stato};
    return c;
}


// Second stage: the number, year and plate conditions that pick the row.
struct SecondaParte {
    QList<Condizione> condizioni;
    bool impossibile = false; // e.g. letters in the number box
    bool numero = false;
    bool targaConIndice = false;
};

SecondaParte secondaParte(const PannelloRicerca &p)
{
    SecondaParte s;
    if (!p.TxtProg.isEmpty()) {
        bool ok = false;
        const qint64 n = p.TxtProg.toLongLong(&ok);
        if (!ok)
            s.impossibile = true; // a movement number is a whole number: no row can match
        else
            s.condizioni << Condizione{QStringLiteral("Progressivo"), QStringLiteral("= ?"), {n}, Indice::AnnoProgressivo};
        s.numero = ok;
    }
    if (!p.anno.isEmpty())
        s.condizioni << Condizione{QStringLiteral("Anno"), QStringLiteral("= ?"), {p.anno}, Indice::AnnoProgressivo};
    if (!p.targa.isEmpty()) {
        if (const auto limiti = frame::LimitiPrefisso(p.targa)) {
            s.condizioni << Condizione{QStringLiteral("Targa"), QStringLiteral(">= ?"), {limiti->first}, Indice::Targa}
                         << Condizione{QStringLiteral("Targa"), QStringLiteral("< ?"), {limiti->second}, Indice::Targa};
            s.targaConIndice = true;
        }
        // The LIKE decides; the bounds only narrow. The typed text is literal.
        s.condizioni << Condizione{QStringLiteral("Targa"), QStringLiteral("like ? escape '\\'"),
                                   {frame::EscapeLike(p.targa) + QLatin1Char('%')}, Indice::Nessuno};
    }
    return s;
}

// The index that finds the row fastest: a number is near unique, a plate
// prefix narrow, a day a few hundred rows, the vehicles inside a few thousand.
Indice sceltaGuida(const SecondaParte &s, OpzioneElenco opzione, const QDate &giorno, bool conAnno)
{
    if (s.numero)
        return Indice::AnnoProgressivo;
    if (s.targaConIndice)
        return Indice::Targa;
    if (giorno.isValid())
        return Indice::Data;
    if (opzione == OpzioneElenco::Dentro)
        return Indice::Stato;
    return conAnno ? Indice::AnnoProgressivo : Indice::Nessuno;
}

EsitoRicerca nonTrovato(const PannelloRicerca &p, const char *chiave, Prompter &prompter, EsitoRicerca esito)
{
    if (!p.RicercaSilenziosa) {
        esito.messaggio = TestoLingua(chiave);
        prompter.information(esito.messaggio);
    }
    esito.fuoco = FuocoRicerca::Progressivo;
    return esito;
}

} // namespace

SorgenteElenco SorgenteIniziale()
{
    return {QStringLiteral("select * from Q_Movimentazioni_Utenti where id =-1"), {}, {}};
}

SorgenteElenco ElencoMovimenti(OpzioneElenco opzione, const QDate &giorno)
{
    const Clausola c = unisci(primaParte(opzione, giorno), Indice::Nessuno, false);
    SorgenteElenco s;
    s.sql = QStringLiteral("SELECT * from Q_Movimentazioni_Utenti ");
    if (!c.testo.isEmpty())
        s.sql += QStringLiteral("where ") + c.testo;
    s.sql += QStringLiteral(" order by Anno, id");
    s.parametri = c.parametri;
    // A day holds a few hundred rows: counting them costs less than keeping counts by day.
    if (!giorno.isValid())
        s.contatore = ContatoreRegistro(frame::basedati(), opzione);
    return s;
}

QString RigaConteggio(OpzioneElenco opzione)
{
    switch (opzione) {
    case OpzioneElenco::Dentro:
        return RigaVeicoliDentro();
    case OpzioneElenco::Tutti:
        return TestoLingua("M0300");
    case OpzioneElenco::Usciti:
        break;
    }
    return TestoLingua("M0301");
}


EsitoRicerca RicercaRapida(PannelloRicerca &p, bool CercaRiga, Prompter &prompter)
{
    p.TxtProg = p.TxtProg.trimmed();
    p.anno = p.anno.trimmed();
    p.targa = p.targa.trimmed();

    EsitoRicerca esito;
    QDate giorno;
    if (!p.data.trimmed().isEmpty()) {
        const std::optional<QDate> d = frame::LeggeData(p.data);
        if (!d) {
            esito.messaggio = TestoLingua("M0008");
            prompter.message(esito.messaggio, Prompter::Icon::Exclamation);
            esito.fuoco = FuocoRicerca::Data;
            return esito;
        }
        giorno = *d;
    }

    try {
        store::Database &db = frame::basedati();
        const QList<Condizione> prima = primaParte(p.opzione, giorno);
        esito.elenco = ElencoMovimenti(p.opzione, giorno);
        esito.eseguita = true;

        const Clausola insieme = unisci(prima, Indice::Nessuno, false);
        esito.vuoto = !db.scalar(QStringLiteral("select 1 from Movimentazioni ")
                                     + (insieme.testo.isEmpty() ? QString() : QStringLiteral("where ") + insieme.testo)
                                     + QStringLiteral(" limit 1"),
                                 insieme.parametri)
                           .isValid();

        const SecondaParte seconda = secondaParte(p);
        bool trovato = true;
        if (!esito.vuoto && (seconda.impossibile || !seconda.condizioni.isEmpty())) {
            if (seconda.impossibile) {
                trovato = false;
            } else {
                const Indice guida = sceltaGuida(seconda, p.opzione, giorno, !p.anno.isEmpty());
                const Clausola c = unisci(prima + seconda.condizioni, guida, true);
                // With the year fixed the list's order is the order of id; said so, the
                // engine reads the first row by its key instead of sorting the year's rows.
                const QString ordine = p.anno.isEmpty() ? QStringLiteral(" order by Anno, id limit 1")
                                                        : QStringLiteral(" order by id limit 1");
                esito.chiave = db.scalar(QStringLiteral("select id from Movimentazioni where ") + c.testo + ordine,
                                         c.parametri);
                trovato = esito.chiave.isValid();
            }
        }

        if (CercaRiga && (!trovato || esito.vuoto))
            return nonTrovato(p, "M0077", prompter, esito);
        if (!CercaRiga && esito.vuoto)
            return nonTrovato(p, "M0078", prompter, esito);
        frame::MostraStato(QString());
        esito.contaRecord = !esito.vuoto;
        esito.fuoco = FuocoRicerca::Griglia;
        return esito;
    } catch (const store::DbError &e) {
        frame::MostraErrore(prompter, e.message());
        return {};
    }
}

EsitoOpzione ScegliOpzione(PannelloRicerca &p, OpzioneElenco opzione, Prompter &prompter)
{
    p.opzione = opzione;
    EsitoOpzione esito;
    try {
        esito.LblAuto = RigaConteggio(opzione);
    } catch (const store::DbError &e) {
        frame::MostraErrore(prompter, e.message());
    }
    p.RicercaSilenziosa = true;
    esito.ricerca = RicercaRapida(p, false, prompter);
    p.RicercaSilenziosa = false;
    return esito;
}

void AzzeraRicerca(PannelloRicerca &p)
{
    p.TxtProg.clear();
    p.anno = frame::pub().AnnoEsercizio;
    p.targa.clear();
}

bool PosizionaSu(store::Recordset &rs, const QVariant &chiave)
{
    if (!chiave.isValid())
        return false;
    // By its key: a row deep in a long set is reached reading keys alone.
    const qint64 posizione = rs.positionOfKey(chiave);
    return posizione >= 0 && rs.setAbsolutePosition(posizione);
}

} // namespace parking
