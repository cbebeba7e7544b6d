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
#include <map>
#include <utility>
#include <vector>

namespace admin {

using frame::Prompter;
using frame::TestoLingua;
using store::Currency;

namespace {

const QString DueRighe = QStringLiteral("\n\n");

// A movement the closing keeps: neither posted nor cancelled (Null is not true).
constexpr const char *MovimentoTenuto = "ifnull(Contabilizzato, 0) = 0 and ifnull(Annullato, 0) = 0";

// An amount of Cassa taken to whole ten-thousandths in SQL (as the cash book
// sums them), so that a million rows add up exactly; Null and text count as 0.
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

// Pages kept in memory by a long write, in KiB (the engine's default is about
// 2 MB): the pages changed stay there until the commit instead of going to the
// file a few at a time, each time after a sync of the journal.
constexpr int MemoriaLavoro = 64 * 1024;

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
// that year added to his opening balances: rows of no customer count in the
// year's sums only, and a customer no longer in Clienti matches no row, so his
// sum is dropped. The book holds one year as a rule (the closing empties it),
// so it is read once in its own order ("+" keeps the index on the year out,
// not the column's collation) and summed here by customer: grouped by the
// engine it would be read through the index on the customer, a page of the
// file for every row. The balances are then written in the order of the ids.
std::pair<Currency, Currency> SommeAnno(store::Database &db, const QString &anno)
{
    auto righe = db.prepare(QStringLiteral("select IdCliente, round(Entrata * 10000), round(Uscita * 10000) from Cassa "
                                           "where +Esercizio = ?"));
    righe.bind(1, anno);
    Currency entrate, uscite;
    std::map<qint64, std::pair<Currency, Currency>> clienti;
    while (righe.step()) {
        const Currency e = decimillesimi(righe.value(1)), u = decimillesimi(righe.value(2));
        entrate = entrate + e;
        uscite = uscite + u;
        bool numero = false;
        const qint64 id = righe.value(0).toLongLong(&numero);
        if (!numero)
            continue;
        auto &somma = clienti[id];
        somma = {somma.first + e, somma.second + u};
    }
    // The balances are floating columns too: each is taken to its ten-thousandths,
    // added as an integer, and stored back as the nearest floating number.
    auto aggiorna = db.prepare(QStringLiteral(
        "update Clienti set SaldoEntrate = (round(ifnull(SaldoEntrate, 0) * 10000) + ?) / 10000.0, "
        "SaldoUscite = (round(ifnull(SaldoUscite, 0) * 10000) + ?) / 10000.0 where Id = ?"));
    for (const auto &[id, somma] : clienti) {
        aggiorna.bindAll({qint64(somma.first.raw()), qint64(somma.second.raw()), id});
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
        // The kept movements are set aside in memory, not in a scratch file
        // outside the encrypted database.
        const PragmaPerOra inMemoria(db, "temp_store", 2);
        const PragmaPerOra cache(db, "cache_size", -MemoriaLavoro);
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
        // The cancelled rows are a few in a hundred, so the removal goes row by
        // row and the triggers keep the register's counts; clearing the table as
        // the closing does would put almost all of it back.
        const PragmaPerOra cache(db, "cache_size", -MemoriaLavoro);
        store::Transaction transazione(db);
        // The rows are found through the state index: a delete with the condition alone reads the whole table.
        db.execute(QStringLiteral("delete from Movimentazioni where id in "
                                  "(select id from Movimentazioni where ifnull(Annullato, 0) <> 0)"));
        transazione.commit();
    } catch (const store::DbError &e) {
        MostraFallimento(prompter, e);
        return false;
    }
    return true;
}

} // namespace admin
