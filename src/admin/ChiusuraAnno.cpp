// SPDX-License-Identifier: GPL-3.0-or-later
#include "admin/ChiusuraAnno.h"

#include "frame/Language.h"
#include "frame/Prompter.h"
#include "frame/PublicState.h"
#include "store/Database.h"
#include "store/DbError.h"
#include "store/Schema.h"

#include <QRegularExpression>

#include <cmath>
#include <utility>
#include <vector>

namespace admin {

using frame::Prompter;
using frame::TestoLingua;
using store::Currency;

namespace {

const QString DueRighe = QStringLiteral("\n\n");

// The receipts and payments of Cassa as whole ten-thousandths: each floating
// amount taken to the nearest one (as the cash book sums them), so that a
// million rows add up exactly; Null and text count as 0.
constexpr const char *SommeCassa = "total(round(Entrata * 10000)), total(round(Uscita * 10000))";

// A movement the closing keeps: neither posted nor cancelled (Null is not true).
constexpr const char *MovimentoTenuto = "ifnull(Contabilizzato, 0) = 0 and ifnull(Annullato, 0) = 0";

Currency decimillesimi(const QVariant &v)
{
    return Currency::fromRaw(std::llround(v.toDouble()));
}

// The two confirmations of an operation that can't be undone, OK and Cancel
// with Cancel as default and the stop icon: the operation's own text, then
// M0121 (warning), M0124 (a backup first is advised), M0123 (go on?).
bool Confermato(Prompter &prompter, const QString &prima)
{
    const auto chiedi = [&](const QString &testo) {
        return prompter.question(testo, Prompter::Buttons::OkCancel, Prompter::Answer::Cancel, QString(), Prompter::Icon::Stop)
               == Prompter::Answer::Ok;
    };
    return chiedi(prima) && chiedi(TestoLingua("M0121") + DueRighe + TestoLingua("M0124") + DueRighe + TestoLingua("M0123"));
}

// " ." stands at the head of the question's line, after the line breaks.
QString Domanda(const QString &testo, const QString &anno)
{
    return testo + QLatin1Char(' ') + anno + DueRighe + QStringLiteral(" .") + TestoLingua("M0123");
}

void MostraFallimento(Prompter &prompter, const store::DbError &e)
{
    prompter.stop(TestoLingua("M0126") + DueRighe + e.message()); // the operation has not been completed
}

// A setting of the connection changed for the guard's life, set back after.
class PragmaPerOra {
public:
    PragmaPerOra(store::Database &db, const char *nome, int valore)
        : m_db(db), m_nome(QLatin1String(nome)), m_prima(db.scalar(QStringLiteral("pragma ") + m_nome).toInt())
    {
        m_db.execute(QStringLiteral("pragma %1 = %2").arg(m_nome).arg(valore));
    }
    ~PragmaPerOra()
    {
        try {
            m_db.execute(QStringLiteral("pragma %1 = %2").arg(m_nome).arg(m_prima));
        } catch (const store::DbError &) {
            // A file closed meanwhile opens again with the engine's defaults.
        }
    }
    PragmaPerOra(const PragmaPerOra &) = delete;
    PragmaPerOra &operator=(const PragmaPerOra &) = delete;

private:
    store::Database &m_db;
    QString m_nome;
    int m_prima;
};

// Empties `tabella` but for the rows where `tenute` holds (all go when it is
// empty), inside the caller's transaction. Row by row a million deletes would
// run the triggers that keep the table's counts (named `conteggi`_...) and
// update every index for each row; instead the kept rows are set aside, those
// triggers dropped, the table cleared whole (the engine frees its pages at once
// when a delete has no condition and no trigger), the kept rows put back with
// their ids and the triggers made again from their own text. The caller then
// fills the counts afresh. Any other trigger on the table stays and runs.
void Svuota(store::Database &db, const QString &tabella, const QString &conteggi, const QString &tenute)
{
    std::vector<std::pair<QString, QString>> triggers;
    {
        auto st = db.prepare(QStringLiteral("select name, sql from sqlite_master where type = 'trigger' and tbl_name = ? "
                                            "and name like ? escape '\\'"));
        st.bindAll({tabella, conteggi + QStringLiteral("\\_%")});
        while (st.step())
            triggers.emplace_back(st.value(0).toString(), st.value(1).toString());
    }
    const QString parcheggio = QStringLiteral("temp.Tenute") + tabella;
    if (!tenute.isEmpty())
        db.execute(QStringLiteral("create table %1 as select * from %2 where %3").arg(parcheggio, tabella, tenute));
    for (const auto &t : triggers)
        db.execute(QStringLiteral("drop trigger \"%1\"").arg(t.first));
    db.execute(QStringLiteral("delete from ") + tabella);
    if (!tenute.isEmpty()) {
        db.execute(QStringLiteral("insert into %1 select * from %2").arg(tabella, parcheggio));
        db.execute(QStringLiteral("drop table ") + parcheggio);
    }
    for (const auto &t : triggers)
        db.execute(t.second);
}

// The receipts and payments of the year `anno`, with each customer's sums of
// that year added to his opening balances, in one pass over the book: rows of
// no customer count in the year's sums only, and a customer no longer in
// Clienti matches no row, so his sum is dropped. The book holds one year as a
// rule (the closing empties it), so it is read whole rather than by its index
// on the year ("+" keeps the index out, not the column's collation).
std::pair<Currency, Currency> SommeAnno(store::Database &db, const QString &anno)
{
    auto somme = db.prepare(
        QStringLiteral("select IdCliente, %1 from Cassa where +Esercizio = ? group by IdCliente").arg(QLatin1String(SommeCassa)));
    somme.bind(1, anno);
    // The balances are floating columns too: each is taken to its ten-thousandths,
    // added as an integer, and stored back as the nearest floating number.
    auto aggiorna = db.prepare(QStringLiteral(
        "update Clienti set SaldoEntrate = (round(ifnull(SaldoEntrate, 0) * 10000) + ?) / 10000.0, "
        "SaldoUscite = (round(ifnull(SaldoUscite, 0) * 10000) + ?) / 10000.0 where Id = ?"));
    Currency entrate, uscite;
    while (somme.step()) {
        const Currency e = decimillesimi(somme.value(1)), u = decimillesimi(somme.value(2));
        entrate = entrate + e;
        uscite = uscite + u;
        if (somme.value(0).isNull())
            continue;
        aggiorna.bindAll({qint64(e.raw()), qint64(u.raw()), somme.value(0)});
        while (aggiorna.step()) {
        }
        aggiorna.reset();
    }
    return {entrate, uscite};
}

// The single row of Impostazioni takes the new fiscal year; a file without
// that row gets it. Written on the closing's own connection, in its transaction.
void ScriviAnnoEsercizio(store::Database &db, const QString &anno)
{
    if (db.execute(QStringLiteral("update Impostazioni set AnnoEsercizio = ?"), {anno}) == 0)
        db.execute(QStringLiteral("insert into Impostazioni (AnnoEsercizio) values (?)"), {anno});
}

} // namespace

std::optional<DopoChiusura> ChiudiAnno(store::Database &db, Prompter &prompter, const QString &anno,
                                       const Progressivi &contatori, const QDate &oggi,
                                       const std::function<void()> &offriBackup)
{
    static const QRegularExpression quattroCifre(QStringLiteral("^\\d{4}$"));
    if (!quattroCifre.match(anno).hasMatch() || !oggi.isValid()) {
        prompter.stop(TestoLingua("M0131")); // the fiscal year must have 4 digits
        return std::nullopt;
    }
    // CAP50: make a backup before closing the year?
    if (offriBackup
        && prompter.question(TestoLingua("CAP50"), Prompter::Buttons::YesNo, Prompter::Answer::Yes) == Prompter::Answer::Yes)
        offriBackup();
    // M0121 warning, M0122 "you are about to close the fiscal year".
    if (!Confermato(prompter, Domanda(TestoLingua("M0121") + DueRighe + TestoLingua("M0122"), anno)))
        return std::nullopt;

    DopoChiusura dopo;
    dopo.annoCasella = oggi.year();
    const QString nuovoAnno = QString::number(oggi.year() + 1);
    try {
        // The pages a delete frees are not overwritten with zeros, as the engine
        // is built to do: clearing a million rows would else write every page of
        // the tables twice, into the journal and into the file. The file is
        // encrypted all the same, and a compaction drops its free pages.
        const PragmaPerOra senzaAzzerare(db, "secure_delete", 0);
        // The kept movements and the sorting of the book stay in memory, not in
        // a scratch file outside the encrypted database.
        const PragmaPerOra inMemoria(db, "temp_store", 2);
        store::Transaction transazione(db);
        const auto [entrate, uscite] = SommeAnno(db, anno);
        dopo.contatori = {0, contatori.entrata + entrate, contatori.uscita + uscite};
        SalvaProgressivi(db, anno, {contatori.progressivo, dopo.contatori.entrata, dopo.contatori.uscita});

        // Every cash row goes, of any year; posted and cancelled movements go.
        Svuota(db, QStringLiteral("Cassa"), QStringLiteral("CassaGiorni"), QString());
        Svuota(db, QStringLiteral("Movimentazioni"), QStringLiteral("ConteggiMovimenti"), QLatin1String(MovimentoTenuto));
        store::Schema::refillRegisterCounts(db);

        ScriviAnnoEsercizio(db, nuovoAnno);
        SalvaProgressivi(db, nuovoAnno, dopo.contatori);
        transazione.commit();
    } catch (const store::DbError &e) {
        MostraFallimento(prompter, e);
        return std::nullopt;
    }
    frame::pub().AnnoEsercizio = nuovoAnno;
    prompter.information(TestoLingua("M0125")); // the fiscal year has been closed
    return dopo;
}

bool RimuoviAnnullati(store::Database &db, Prompter &prompter, const QString &anno)
{
    // M0371: "you are about to remove the cancelled movements of the fiscal year".
    if (!Confermato(prompter, Domanda(TestoLingua("M0371"), anno)))
        return false;
    try {
        // Few rows as a rule: the triggers keep the register's counts row by row.
        store::Transaction transazione(db);
        db.execute(QStringLiteral("delete from Movimentazioni where ifnull(Annullato, 0) <> 0"));
        transazione.commit();
    } catch (const store::DbError &e) {
        MostraFallimento(prompter, e);
        return false;
    }
    return true;
}

} // namespace admin
