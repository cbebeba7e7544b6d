// SPDX-License-Identifier: GPL-3.0-or-later
#include "forms/MacchinaScheda.h"
#include "frame/Language.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "store/Currency.h"

#include "support/ScriptedPrompter.h"
#include "support/TestDatabase.h"

#include "support/Colonne.h"

#include <QtTest>

#include <memory>

using forms::Layout;
using forms::MacchinaScheda;
using frame::Prompter;
using frame::pub;
using EditMode = store::Recordset::EditMode;

Q_DECLARE_METATYPE(Layout)
Q_DECLARE_METATYPE(EditMode)

namespace {

// The window's part, with no window: boxes are values, hooks answer as told and count.
struct Finestra final : MacchinaScheda::Ganci {
    QHash<QString, QVariant> caselle;
    bool consente = true; // verificaInterna and convalida
    int predefiniti = 0;
    MacchinaScheda *m = nullptr;

    bool verificaInterna(const QString &) override { return consente; }
    void impostaPredefiniti() override
    {
        ++predefiniti;
        caselle[QStringLiteral("Importo")] = QVariant::fromValue(store::Currency::fromDouble(1.5));
    }
    bool convalida() override { return consente; }
    void LeggeDati() override { m->mostraCampi(); }
    void azioneRefresh() override {}
    void layoutCambiato(Layout) override {}
    void fileRiletto() override { m->Riposiziona(); }
    void attivata(bool) override {}
    void azionePropria(const QString &azione) override { proprie << azione; }
    QStringList proprie;
};

QStringList fasce()
{
    QStringList v;
    store::Recordset rs(frame::basedati(), QStringLiteral("select id, DescrizioneFascia from Fascia order by id"));
    for (rs.MoveFirst(); !rs.isEmpty() && !rs.eof(); rs.MoveNext())
        v << rs.value(0).toString() + QLatin1Char('|') + rs.value(1).toString();
    return v;
}

} // namespace

class TestMacchina : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<TestDatabase> m_db;
    ScriptedPrompter m_prompter;
    Finestra m_finestra;
    std::unique_ptr<MacchinaScheda> m_m;
    QString m_stato;

    void apri()
    {
        forms::ConfigurazioneScheda c;
        c.tabella = QStringLiteral("Fascia");
        c.sorgenteIniziale = QStringLiteral("select * from Fascia where id = '-1'");
        c.azioni = forms::ChiaviToolbar();
        m_m = std::make_unique<MacchinaScheda>(frame::basedati(), m_prompter, c, m_finestra);
        m_finestra.m = m_m.get();
        for (const char *campo : {"id", "DescrizioneFascia", "Importo"}) {
            const QString nome = QLatin1String(campo);
            m_m->lega({nome, forms::TipoCasellaScheda::Testo, [this, nome] { return m_finestra.caselle.value(nome); },
                       [this, nome](const QVariant &v) { m_finestra.caselle[nome] = v; }});
        }
        m_m->Gestione();
        m_m->apriDettaglio(QStringLiteral("select * from Fascia order by id"), {});
    }

private slots:
    void init()
    {
        m_db = std::make_unique<TestDatabase>();
        m_prompter = ScriptedPrompter();
        m_finestra = Finestra();
        pub().UtenteCorrente = QStringLiteral("mario");
        pub().statusSink = [this](const QString &t) { m_stato = t; };
        apri();
    }
    void cleanup()
    {
        m_m.reset();
        pub().statusSink = nullptr;
        m_db.reset();
    }

    // One action from a state, with the user's rights letter and answers: the
    // layout, the pending row, the status message, the questions and the rows after it.
    void azioni_data()
    {
        // stato: sfoglia (on row 01), aggiunta, doppio (adding a taken key), modifica, vuoto; lettera: the rights letter;
        // risposte: O OK, C Cancel, in order; consente: verificaInterna and convalida; messaggio: the status key after
        // it, "-" when unchanged; rifiuto: a critical box naming the user
        colonne<QString, QString, QString, QString, bool, Layout, EditMode, QString, int, int, bool>(
            {"stato", "azione", "lettera", "risposte", "consente", "layout", "modo", "messaggio", "domande", "righe", "rifiuto"});

        const Layout G = Layout::Gestione, M = Layout::Modifica;
        QTest::newRow("add") << "sfoglia" << "aggiungi" << "" << "" << true << M << EditMode::AddNew << "M0014" << 0 << 2 << false;
        QTest::newRow("add, L refuses") << "sfoglia" << "aggiungi" << "L" << "" << true << G << EditMode::None << "-" << 0 << 2 << true;
        QTest::newRow("edit") << "sfoglia" << "modifica" << "" << "" << true << M << EditMode::Edit << "M0015" << 0 << 2 << false;
        QTest::newRow("edit, A refuses") << "sfoglia" << "modifica" << "A" << "" << true << G << EditMode::None << "-" << 0 << 2 << true;
        QTest::newRow("edit, the form's check refuses") << "sfoglia" << "modifica" << "" << "" << false << G << EditMode::None << "-" << 0 << 2 << false;
        QTest::newRow("delete, M refuses") << "sfoglia" << "elimina" << "M" << "" << true << G << EditMode::None << "-" << 0 << 2 << true;
        QTest::newRow("delete, the form's check refuses") << "sfoglia" << "elimina" << "" << "" << false << G << EditMode::None << "-" << 0 << 2 << false;
        QTest::newRow("delete, cancel at the first") << "sfoglia" << "elimina" << "" << "C" << true << G << EditMode::None << "-" << 1 << 2 << false;
        QTest::newRow("delete, cancel at the second") << "sfoglia" << "elimina" << "" << "OC" << true << G << EditMode::None << "-" << 2 << 2 << false;
        QTest::newRow("delete") << "sfoglia" << "elimina" << "" << "OO" << true << G << EditMode::None << "M0016" << 2 << 1 << false;
        QTest::newRow("ok writes the new row") << "aggiunta" << "ok" << "" << "" << true << G << EditMode::None << "M0017" << 0 << 3 << false;
        QTest::newRow("ok, a taken key stays adding") << "doppio" << "ok" << "" << "" << true << M << EditMode::AddNew << "-" << 0 << 2 << false;
        QTest::newRow("ok, the form's check refuses") << "aggiunta" << "ok" << "" << "" << false << M << EditMode::AddNew << "M0014" << 0 << 2 << false;
        QTest::newRow("cancel the new row") << "aggiunta" << "annulla" << "" << "O" << true << G << EditMode::None << "M0018" << 1 << 2 << false;
        QTest::newRow("keep the new row") << "aggiunta" << "annulla" << "" << "C" << true << M << EditMode::AddNew << "M0014" << 1 << 2 << false;
        QTest::newRow("ok writes the edit") << "modifica" << "ok" << "" << "" << true << G << EditMode::None << "M0017" << 0 << 2 << false;
        QTest::newRow("cancel the edit") << "modifica" << "annulla" << "" << "O" << true << G << EditMode::None << "M0019" << 1 << 2 << false;
        QTest::newRow("edit on an empty set") << "vuoto" << "modifica" << "" << "" << true << G << EditMode::None << "-" << 0 << 0 << false;
        QTest::newRow("delete on an empty set") << "vuoto" << "elimina" << "" << "O" << true << G << EditMode::None << "-" << 0 << 0 << false;
    }
    void azioni()
    {
        QFETCH(QString, stato);
        QFETCH(QString, azione);
        QFETCH(QString, lettera);
        QFETCH(QString, risposte);
        QFETCH(bool, consente);
        if (stato == QLatin1String("vuoto")) {
            frame::basedati().execute(QStringLiteral("delete from Fascia"));
            apri();
        } else if (stato != QLatin1String("sfoglia")) {
            m_m->bottoni(stato == QLatin1String("modifica") ? QStringLiteral("modifica") : QStringLiteral("aggiungi"));
            m_finestra.caselle[QStringLiteral("id")] = stato == QLatin1String("doppio") ? QStringLiteral("01") : QStringLiteral("03");
            m_finestra.caselle[QStringLiteral("DescrizioneFascia")] = QStringLiteral("O'Brien \"x\" %_[#*");
        }
        m_m->impostaAutorizzazione(lettera);
        m_prompter.messages.clear();
        for (QChar r : risposte)
            m_prompter.answer(r == QLatin1Char('O') ? Prompter::Answer::Ok : Prompter::Answer::Cancel);
        m_finestra.consente = consente;

        m_m->bottoni(azione);

        QTEST(m_m->layoutCorrente(), "layout");
        QTEST(m_m->recordset().editMode(), "modo");
        QFETCH(QString, messaggio);
        if (messaggio != QLatin1String("-"))
            QCOMPARE(m_stato, frame::TestoLingua(messaggio.toLatin1().constData()));
        QTEST(int(m_prompter.questions.size()), "domande");
        QTEST(int(fasce().size()), "righe");
        QFETCH(bool, rifiuto);
        const bool critico = !m_prompter.messages.isEmpty() && m_prompter.messages.first().icon == Prompter::Icon::Critical;
        QCOMPARE(critico && m_prompter.messages.first().text.contains(QStringLiteral("mario")), rifiuto);
        // The keys follow the layout: ok and annulla only while a row is pending.
        const auto pulsanti = m_m->pulsanti();
        QCOMPARE(pulsanti.value(QStringLiteral("ok")).abilitato, m_m->layoutCorrente() == Layout::Modifica);
        QCOMPARE(pulsanti.value(QStringLiteral("aggiungi")).abilitato, m_m->layoutCorrente() == Layout::Gestione);
    }

    // A new row shows empty with the form's defaults and its caption; once written it is shown and placed.
    void okShowsTheWrittenRow()
    {
        m_m->bottoni(QStringLiteral("aggiungi"));
        QVERIFY(m_finestra.predefiniti == 1 && !m_finestra.caselle.value(QStringLiteral("DescrizioneFascia")).isValid());
        QCOMPARE(m_m->didascaliaRecord(), frame::TestoLingua("M0216"));
        m_finestra.caselle[QStringLiteral("id")] = QStringLiteral("03");
        QSignalSpy mossa(m_m.get(), &MacchinaScheda::posizioneCambiata);
        m_m->bottoni(QStringLiteral("ok"));
        QCOMPARE(m_m->didascaliaRecord(), QStringLiteral("Reg. 3"));
        QCOMPARE(mossa.last().first().toLongLong(), 2);
        QCOMPARE(m_finestra.caselle.value(QStringLiteral("Importo")).value<store::Currency>().toPlainText(), QStringLiteral("1.5"));
        QVERIFY(!m_m->pagineAbilitate());
        m_m->bottoni(QStringLiteral("scheda")); // a key of the form's own goes to the form
        QCOMPARE(m_finestra.proprie, QStringList{QStringLiteral("scheda")});
    }

    // The panels: find and print open the filters without the toolbar; a search with
    // no earlier list or no row stays there; one row with ChkAuto goes straight to it;
    // several show the list; a row picked there comes back to the detail.
    void panelsAndSearch()
    {
        using P = MacchinaScheda::Pannello;
        QSignalSpy chiusura(m_m.get(), &MacchinaScheda::chiusuraRichiesta);
        m_m->bottoni(QStringLiteral("stampa"));
        QVERIFY(m_m->pannello() == P::Filtri && m_m->modoFiltri() == MacchinaScheda::ModoFiltri::Stampa && !m_m->toolbarVisibile());
        m_m->CmdElencoPrec();
        QCOMPARE(m_prompter.messages.last().text, frame::TestoLingua("M0009"));
        QCOMPARE(m_m->applicaFiltro(QStringLiteral("where id = 'zz'"), QString(), false), forms::EsitoRicerca::NessunaRiga);
        QCOMPARE(m_m->pannello(), P::Filtri);
        QCOMPARE(m_m->applicaFiltro(QStringLiteral("where id = '02'"), QString(), true), forms::EsitoRicerca::Posiziona);
        QVERIFY(m_m->pannello() == P::Dettaglio && m_m->toolbarVisibile());
        QCOMPARE(m_m->recordset().value(QStringLiteral("id")).toString(), QStringLiteral("02"));
        m_m->bottoni(QStringLiteral("trova"));
        QCOMPARE(m_m->modoFiltri(), MacchinaScheda::ModoFiltri::Ricerca);
        QCOMPARE(m_m->applicaFiltro(QString(), QStringLiteral("id desc"), false), forms::EsitoRicerca::MostraElenco);
        QVERIFY(m_m->pannello() == P::Elenco && m_m->datPrimaryRSGrd().rowCount() == 2);
        m_m->PosizionaRecord(m_m->datPrimaryRSGrd().chiave(1));
        QVERIFY(m_m->pannello() == P::Dettaglio && m_finestra.caselle.value(QStringLiteral("id")).toString() == QLatin1String("01"));
        for (const bool consente : {false, true}) { // esci asks the form's own check first
            m_finestra.consente = consente;
            m_m->bottoni(QStringLiteral("esci"));
        }
        QCOMPARE(chiusura.size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestMacchina)
#include "tst_macchina.moc"
