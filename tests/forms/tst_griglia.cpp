// SPDX-License-Identifier: GPL-3.0-or-later
// The list grids: the lazy table model over a recordset, and the column layout files.
#include "forms/RecordsetModel.h"
#include "forms/Tabelle.h"
#include "forms/ui/LayoutGriglia.h"
#include "frame/Language.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "store/Currency.h"
#include "store/Database.h"
#include "support/ScriptedPrompter.h"
#include "support/TestDatabase.h"
#include "support/TestFiles.h"

#include <QApplication>
#include <QBrush>
#include <QFile>
#include <QHeaderView>
#include <QLocale>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTableView>
#include <QTemporaryDir>
#include <QtTest>

using forms::RecordsetModel;

namespace {

constexpr int Movimenti = 3000;
const QString Tutti = QStringLiteral("select * from Q_Movimentazioni_Utenti order by id desc");

// Movement i: inside when i % 3 == 0, cancelled when i % 10 == 0, no plate when
// i % 97 == 0, entered at midnight when i % 500 == 0, amount i × 0.125.
QDateTime entrata(int i)
{
    const QDateTime base(QDate(2026, 1, 1), QTime(0, 0));
    return i % 500 == 0 ? base.addDays(i / 100) : base.addSecs(qint64(i) * 617);
}

QString targa(int i)
{
    // Not in the order of ids, so that a sort by plate changes the list.
    return QStringLiteral("T%1").arg((i * 7919) % 10007, 5, 10, QLatin1Char('0'));
}

} // namespace

class TestGriglia : public QObject {
    Q_OBJECT

    std::unique_ptr<TestDatabase> m_db;
    QTemporaryDir m_programma;

private slots:
    void initTestCase()
    {
        m_db = std::make_unique<TestDatabase>();
        // Layout files go to a scratch program folder, never into the source tree.
        frame::pub().CartellaProgramma = m_programma.path() + QLatin1Char('/');
        store::Database &db = frame::basedati();
        store::Transaction t(db);
        for (int i = 1; i <= Movimenti; ++i) {
            const bool dentro = i % 3 == 0;
            db.execute(QStringLiteral("insert into Movimentazioni (id, Anno, Progressivo, DataOra, DataOraOut, Targa, IdFascia, "
                                      "Importo, Entrato, Annullato, IdUtente) values (?, '2026', ?, ?, ?, ?, '01', ?, ?, ?, 1)"),
                       {i, i, entrata(i).toString(QLatin1String(store::DateFormat)),
                        dentro ? QVariant() : QVariant(entrata(i).addSecs(3600).toString(QLatin1String(store::DateFormat))),
                        i % 97 == 0 ? QVariant() : QVariant(targa(i)), qint64(i) * 1250, dentro ? -1 : 0, i % 10 == 0 ? -1 : 0});
        }
        t.commit();
    }

    void righeLettePerPagine()
    {
        RecordsetModel model(frame::basedati(), Tutti);
        // Opening reads one page and counts nothing.
        QCOMPARE(model.rowCount(), RecordsetModel::Pagina);
        QCOMPARE(model.righeLette(), qint64(RecordsetModel::Pagina));
        QVERIFY(model.canFetchMore());
        QTableView view;
        view.setModel(&model);
        view.resize(600, 400);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QVERIFY(!view.grab().isNull()); // paints the first screen
        QCOMPARE(model.righeLette(), qint64(RecordsetModel::Pagina));
        QVERIFY(!model.recordset().fullyRead());
        // Reaching the bottom of the scroll bar brings the next page.
        view.verticalScrollBar()->setValue(view.verticalScrollBar()->maximum());
        QCOMPARE(model.rowCount(), 2 * RecordsetModel::Pagina);
        QVERIFY(model.righeLette() <= 2 * RecordsetModel::Pagina);
        // A jump to the end counts the set; rows are still read only where looked at.
        QCOMPARE(model.caricaTutto(), qint64(Movimenti));
        QCOMPARE(model.rowCount(), Movimenti);
        QVERIFY(!model.canFetchMore());
        QVERIFY(!model.recordset().fullyRead());
        view.scrollToBottom();
        QCOMPARE(model.data(model.index(Movimenti - 1, model.colonna(QStringLiteral("id")))).toString(), QStringLiteral("1"));
        QCOMPARE(model.righeLette(), qint64(Movimenti));
        // A short set is complete on its first page.
        RecordsetModel pochi(frame::basedati(), QStringLiteral("select * from Q_Movimentazioni_Utenti where id <= 10 order by id"));
        QCOMPARE(pochi.rowCount(), 10);
        QVERIFY(!pochi.canFetchMore());
    }

    void valoriPerTipo()
    {
        RecordsetModel model(frame::basedati(), QStringLiteral("select * from Q_Movimentazioni_Utenti order by id"));
        model.caricaTutto();
        const auto cella = [&](int riga, const char *campo, int ruolo = Qt::DisplayRole) {
            return model.data(model.index(riga, model.colonna(QLatin1String(campo))), ruolo);
        };
        // Row r is movement r + 1.
        QCOMPARE(cella(0, "Progressivo").toString(), QStringLiteral("1"));
        QCOMPARE(cella(0, "Targa").toString(), targa(1));
        QCOMPARE(cella(96, "Targa").toString(), QString()); // Null: empty
        // Currency: two decimals, rounded half away from zero from the exact amount.
        QCOMPARE(cella(0, "Importo").toString(), QLocale().toString(0.13, 'f', 2));
        QCOMPARE(cella(2, "Importo").toString(), QLocale().toString(0.38, 'f', 2));
        // Amounts shown from whole units and cents, never through a floating number.
        store::Database &db = frame::basedati();
        db.execute(QStringLiteral("insert into Fascia (id, Importo) values ('x1', -5000), ('x2', 12345678999995)"));
        RecordsetModel importi(db, QStringLiteral("select * from Fascia where id like 'x%' order by id"));
        const int c = importi.colonna(QStringLiteral("Importo"));
        const QLocale l;
        QCOMPARE(importi.data(importi.index(0, c)).toString(), l.negativeSign() + QStringLiteral("0") + l.decimalPoint() + QStringLiteral("50"));
        QCOMPARE(importi.data(importi.index(1, c)).toString(), l.toString(qint64(1234567900)) + l.decimalPoint() + QStringLiteral("00"));
        db.execute(QStringLiteral("delete from Fascia where id like 'x%'"));
        QCOMPARE(cella(0, "Importo", RecordsetModel::RuoloValore).value<store::Currency>(), store::Currency::fromRaw(1250));
        // Dates in the user's format, with the time unless it is midnight.
        QCOMPARE(cella(0, "DataOra").toString(), frame::TestoData(entrata(1), true));
        QCOMPARE(cella(499, "DataOra").toString(), frame::TestoData(entrata(500), false));
        frame::pub().FormatoData = QStringLiteral("yyyy-mm-dd");
        QCOMPARE(cella(499, "DataOra").toString(), entrata(500).toString(QStringLiteral("yyyy-MM-dd")));
        frame::pub().FormatoData = QStringLiteral("dd/mm/yyyy");
        QCOMPARE(cella(2, "DataOraOut").toString(), QString()); // inside: no exit yet
        model.impostaFormato(QStringLiteral("DataOra"), QStringLiteral("hh:mm  dd/MM/yyyy"));
        QCOMPARE(cella(0, "DataOra").toString(), entrata(1).toString(QStringLiteral("hh:mm  dd/MM/yyyy")));
        // Yes/No: a check mark by default, or a word.
        QCOMPARE(cella(2, "Entrato", Qt::CheckStateRole).toInt(), int(Qt::Checked));
        QCOMPARE(cella(0, "Entrato", Qt::CheckStateRole).toInt(), int(Qt::Unchecked));
        model.impostaSiNo(RecordsetModel::SiNo::Parola, QStringLiteral("Yes"), QStringLiteral("No"));
        QCOMPARE(cella(2, "Entrato").toString(), QStringLiteral("Yes"));
        QCOMPARE(cella(9, "Annullato").toString(), QStringLiteral("Yes"));
        QCOMPARE(cella(0, "Annullato").toString(), QStringLiteral("No"));
        QVERIFY(!cella(2, "Entrato", Qt::CheckStateRole).isValid());
        // Numbers to the right, texts to the left.
        QCOMPARE(cella(0, "Importo", Qt::TextAlignmentRole).toInt(), int(Qt::AlignRight | Qt::AlignVCenter));
        QCOMPARE(cella(0, "Progressivo", Qt::TextAlignmentRole).toInt(), int(Qt::AlignRight | Qt::AlignVCenter));
        QCOMPARE(cella(0, "Targa", Qt::TextAlignmentRole).toInt(), int(Qt::AlignLeft | Qt::AlignVCenter));
        // Joined columns of the view are read too.
        QCOMPARE(cella(0, "Autorizzazioni.utente").toString(), QStringLiteral("administrator"));
    }

    void intestazioniEColonne()
    {
        RecordsetModel model(frame::basedati(), Tutti);
        QCOMPARE(model.columnCount(), model.recordset().fields().size());
        QCOMPARE(model.headerData(1, Qt::Horizontal).toString(), QStringLiteral("Anno"));
        model.impostaColonne({QStringLiteral("Entrato"), QStringLiteral("progressivo"), QStringLiteral("DataOra"),
                              QStringLiteral("Targa"), QStringLiteral("NonEsiste")});
        QCOMPARE(model.columnCount(), 4);
        QCOMPARE(model.campo(1), QStringLiteral("Progressivo"));
        QCOMPARE(model.colonna(QStringLiteral("Anno")), -1);
        QSignalSpy intestazioni(&model, &QAbstractItemModel::headerDataChanged);
        model.impostaIntestazioni({QStringLiteral("In"), QStringLiteral("Number")});
        model.impostaIntestazione(QStringLiteral("targa"), QStringLiteral("Plate"));
        QCOMPARE(intestazioni.count(), 2);
        QCOMPARE(model.headerData(0, Qt::Horizontal).toString(), QStringLiteral("In"));
        QCOMPARE(model.headerData(1, Qt::Horizontal).toString(), QStringLiteral("Number"));
        QCOMPARE(model.headerData(2, Qt::Horizontal).toString(), QStringLiteral("DataOra")); // no caption: the field
        QCOMPARE(model.headerData(3, Qt::Horizontal).toString(), QStringLiteral("Plate"));
        QCOMPARE(model.headerData(3, Qt::Horizontal, RecordsetModel::RuoloValore).toString(), QStringLiteral("Targa"));
        // Captions and columns survive a new query.
        model.riapri(QStringLiteral("select * from Q_Movimentazioni_Utenti where Entrato = -1 order by id"));
        QCOMPARE(model.columnCount(), 4);
        QCOMPARE(model.headerData(3, Qt::Horizontal).toString(), QStringLiteral("Plate"));
    }

    void coloriPerStato()
    {
        RecordsetModel model(frame::basedati(), QStringLiteral("select * from Q_Movimentazioni_Utenti order by id"));
        QVERIFY(!model.data(model.index(0, 0), Qt::BackgroundRole).isValid()); // no colour function: default
        model.impostaColori(forms::sfondoMovimento, forms::testoMovimento);
        const auto sfondo = [&](int riga) { return model.data(model.index(riga, 2), Qt::BackgroundRole).value<QBrush>().color(); };
        const auto testo = [&](int riga) { return model.data(model.index(riga, 2), Qt::ForegroundRole); };
        QCOMPARE(sfondo(0), QColor(0xFF, 0xFF, 0x00));   // movement 1: out, yellow
        QCOMPARE(sfondo(2), QColor(0x00, 0xFF, 0x00));   // movement 3: inside, green
        QCOMPARE(sfondo(9), QColor(0xC0, 0xC0, 0xC0));   // movement 10: cancelled, grey
        QCOMPARE(sfondo(29), QColor(0xC0, 0xC0, 0xC0));  // movement 30: inside but cancelled
        QCOMPARE(testo(29).value<QBrush>().color(), QColor(0xF4, 0xF4, 0xF4));
        QVERIFY(!testo(2).isValid());
        // Drawing a row leaves the current row and an edit under way alone.
        store::Recordset &rs = model.recordset();
        rs.setAbsolutePosition(5);
        rs.Edit();
        rs.setValue(QStringLiteral("Targa"), QStringLiteral("EDITED"));
        QCOMPARE(sfondo(2), QColor(0x00, 0xFF, 0x00));
        QCOMPARE(model.data(model.index(4, model.colonna(QStringLiteral("Targa")))).toString(), targa(5));
        QCOMPARE(rs.AbsolutePosition(), qint64(5));
        QCOMPARE(rs.editMode(), store::Recordset::EditMode::Edit);
        QCOMPARE(rs.value(QStringLiteral("Targa")).toString(), QStringLiteral("EDITED"));
        rs.CancelUpdate();
    }

    void ordinePerIntestazione()
    {
        RecordsetModel model(frame::basedati(), QStringLiteral("select * from Q_Movimentazioni_Utenti where Entrato = -1 order by id"));
        QTableView view;
        view.setModel(&model);
        view.horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
        view.setSortingEnabled(true); // column -1: the query's own order stays
        QCOMPARE(model.sql(), model.sqlBase());
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        const int colTarga = model.colonna(QStringLiteral("Targa"));
        QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
        view.horizontalHeader()->setSortIndicator(colTarga, Qt::AscendingOrder); // as a click on the heading
        QCOMPARE(reset.count(), 1);
        QVERIFY(model.sql().endsWith(QStringLiteral(" order by Targa")));
        const QString minima =
            frame::basedati().scalar(QStringLiteral("select min(Targa) from Movimentazioni where Entrato = -1")).toString();
        // Null plates come first in ascending order, then the smallest plate.
        QCOMPARE(model.data(model.index(0, colTarga)).toString(), QString());
        QCOMPARE(model.data(model.index(Movimenti / 3 / 97, colTarga)).toString(), minima);
        QCOMPARE(model.caricaTutto(), qint64(Movimenti / 3)); // the condition stays
        QString prima;
        for (int r = 0; r < model.rowCount(); r += 37) {
            const QString t = model.data(model.index(r, colTarga)).toString();
            QVERIFY(prima <= t);
            prima = t;
        }
        view.horizontalHeader()->setSortIndicator(colTarga, Qt::DescendingOrder);
        QVERIFY(model.sql().endsWith(QStringLiteral(" order by Targa desc")));
        QVERIFY(model.data(model.index(0, colTarga)).toString() > minima);
        // A field that needs quoting, chosen by name as the sort box does.
        QCOMPARE(RecordsetModel::nomeSQL(QStringLiteral("Autorizzazioni.utente")), QStringLiteral("[Autorizzazioni.utente]"));
        model.ordina(QStringLiteral("Autorizzazioni.utente"), false);
        QCOMPARE(model.rowCount(), RecordsetModel::Pagina);
        QCOMPARE(model.caricaTutto(), qint64(Movimenti / 3));
        model.sort(-1);
        QVERIFY(model.sql().contains(QStringLiteral("[Autorizzazioni.utente]")));
        model.impostaOrdine(QString()); // back to the given order
        QCOMPARE(model.sql(), model.sqlBase());
        QCOMPARE(RecordsetModel::conOrdine(QStringLiteral("select * from (select * from t order by a) where x = ')order by' ORDER\n BY b"),
                                           QStringLiteral("c")),
                 QStringLiteral("select * from (select * from t order by a) where x = ')order by' order by c"));
        QCOMPARE(store::orderByPosition(QStringLiteral("select [order by] from t")), -1);
    }

    void posizioneDiUnaChiave()
    {
        RecordsetModel model(frame::basedati(), Tutti);
        // Movement 1000 stands at row 2000 of the list in descending order.
        QCOMPARE(model.posizione(1000), Movimenti - 1000);
        QCOMPARE(model.chiave(Movimenti - 1000).toLongLong(), 1000);
        QCOMPARE(model.rowCount(), 2048); // up to the end of its page
        QCOMPARE(model.posizione(QStringLiteral("2999")), 1); // a key as text, as a box gives it
        // A key outside the set is told without reading it.
        RecordsetModel dentro(frame::basedati(), QStringLiteral("select * from Q_Movimentazioni_Utenti where Entrato = -1 order by id"));
        const qint64 lette = dentro.righeLette();
        QCOMPARE(dentro.posizione(1000), -1);
        QCOMPARE(dentro.posizione(999999), -1);
        QCOMPARE(dentro.righeLette(), lette);
        QCOMPARE(dentro.posizione(2700), 899);
        QVERIFY(dentro.righeLette() < Movimenti / 3 || dentro.recordset().fullyRead());
    }

    void aggiuntaDelRecordset()
    {
        // A count with an order on a field without an index counts without sorting,
        // and counts the same.
        store::Recordset rs(frame::basedati(), QStringLiteral("select * from Q_Movimentazioni_Utenti order by Note, IdFascia"));
        QCOMPARE(rs.RecordCount(), qint64(Movimenti));
        // A limit in the order clause still counts.
        store::Recordset pochi(frame::basedati(), QStringLiteral("select * from Movimentazioni order by id limit 5"));
        QCOMPARE(pochi.RecordCount(), qint64(5));
        // A jump to the last row; no row past it.
        store::Recordset tutti(frame::basedati(), QStringLiteral("select * from Movimentazioni order by id"));
        QVERIFY(tutti.setAbsolutePosition(Movimenti - 1));
        QCOMPARE(tutti.value(QStringLiteral("Targa")).toString(), targa(Movimenti));
        QVERIFY(!tutti.peek(Movimenti, [](const store::Recordset &) {}));
    }

    // Editing in the grid: a cell of each kind written through, a check that refuses or
    // changes a value, the pending row written (or kept, as typed, when its write fails),
    // a row deleted, and a row deleted elsewhere refused with a message.
    void modificaNellaGriglia()
    {
        store::Database &db = frame::basedati();
        db.execute(QStringLiteral("insert into Cassa (Data, Descrizione, Entrata) values ('2026-03-01 00:00:00', 'a', 1), ('2026-03-02 00:00:00', 'b', 2)"));
        ScriptedPrompter prompter;
        RecordsetModel m(db, QStringLiteral("select * from Cassa order by id"));
        const auto cella = [&](int riga, const char *campo) { return m.index(riga, m.colonna(QLatin1String(campo))); };
        const auto letto = [&](int riga, const char *campo) {
            return db.scalar(QStringLiteral("select %1 from Cassa order by id limit 1 offset ?").arg(QLatin1String(campo)), {riga});
        };
        QVERIFY(!(m.flags(cella(0, "Descrizione")) & Qt::ItemIsEditable)); // not until asked
        m.impostaModifica(prompter, [](const QString &campo, QVariant &v) {
                              if (campo == QLatin1String("Entrata") && !v.isValid())
                                  v = 0.0; // an empty number is 0
                              return campo != QLatin1String("Descrizione") || v.toString() != QLatin1String("no");
                          },
                          [](store::Recordset &rs) { rs.setValue(QStringLiteral("Esercizio"), QStringLiteral("2026")); });
        QVERIFY(!(m.flags(cella(0, "id")) & Qt::ItemIsEditable)); // the counter key is the engine's
        QVERIFY(m.setData(cella(0, "Descrizione"), QStringLiteral("O'Brien \"x\" %_")));
        QCOMPARE(letto(0, "Descrizione").toString(), QStringLiteral("O'Brien \"x\" %_"));
        QVERIFY(m.setData(cella(0, "Data"), QDateTime(QDate(2026, 4, 5), QTime(0, 0))));
        QCOMPARE(cella(0, "Data").data(RecordsetModel::RuoloValore).toDateTime().date(), QDate(2026, 4, 5));
        QVERIFY(m.setData(cella(1, "Entrata"), QVariant()) && letto(1, "Entrata").toDouble() == 0.0);
        QVERIFY(!m.setData(cella(1, "Descrizione"), QStringLiteral("no")) && letto(1, "Descrizione").toString() == QLatin1String("b"));

        // The pending row: shown, not written; a text too long for its field keeps it pending, as typed.
        QVERIFY(m.insertRows(m.rowCount(), 1) && m.rigaNuova() == 2);
        QVERIFY(m.setData(cella(2, "Descrizione"), QString(300, QLatin1Char('x'))));
        QVERIFY(!m.scriviNuova() && m.rigaNuova() == 2 && prompter.messages.size() == 1);
        QVERIFY(m.setData(cella(2, "Descrizione"), QStringLiteral("new")) && m.setData(cella(2, "Entrata"), 5.5));
        QCOMPARE(cella(2, "Descrizione").data().toString(), QStringLiteral("new"));
        QCOMPARE(db.scalar(QStringLiteral("select count(*) from Cassa")).toInt(), 2);
        QVERIFY(m.scriviNuova() && m.rigaNuova() == -1 && m.rowCount() == 3);
        QCOMPARE(letto(2, "Esercizio").toString(), QStringLiteral("2026"));

        QVERIFY(m.removeRows(2, 1));
        QCOMPARE(db.scalar(QStringLiteral("select count(*) from Cassa")).toInt(), 2);
        db.execute(QStringLiteral("delete from Cassa where Descrizione = 'b'"));
        QVERIFY(!m.setData(cella(1, "Descrizione"), QStringLiteral("ghost")));
        QCOMPARE(prompter.messages.size(), 2);
        QCOMPARE(db.scalar(QStringLiteral("select count(*) from Cassa where Descrizione = 'ghost'")).toInt(), 0);
        db.execute(QStringLiteral("delete from Cassa"));
    }

    // The table editor's rules: the sort flips on a second click, a field's check by its kind,
    // what a new row gets by itself, the cash book's colours, and the find by the sort field.
    void regoleDelleTabelle()
    {
        QCOMPARE(forms::IstruzioneTabella(QStringLiteral("Cassa"), QString()), QStringLiteral("select * from [Cassa]"));
        forms::OrdineTabella ordine(QStringLiteral("Data"));
        QStringList testi;
        for (const char *campo : {"Data", "Data", "Descrizione", "descrizione", "Data"}) {
            ordine.clic(QLatin1String(campo));
            testi << ordine.testo();
        }
        QCOMPARE(testi, (QStringList{"Data desc", "Data", "Descrizione", "descrizione desc", "Data"}));

        ScriptedPrompter prompter;
        store::FieldInfo data, numero, intero;
        data.kind = store::FieldKind::Date;
        numero.kind = store::FieldKind::Currency;
        intero.kind = store::FieldKind::Long;
        QVariant v = QStringLiteral("31/02/2026");
        QVERIFY(!forms::ConvalidaCampo(data, v, prompter) && prompter.messages.size() == 1);
        v = QVariant();
        QVERIFY(forms::ConvalidaCampo(numero, v, prompter) && v.value<store::Currency>() == store::Currency());
        v = QStringLiteral(" ");
        QVERIFY(forms::ConvalidaCampo(intero, v, prompter) && v == QVariant(qint64(0)));
        v = QStringLiteral("abc"); // what the editor could not read as a number
        QVERIFY(!forms::ConvalidaCampo(intero, v, prompter) && prompter.messages.size() == 2);

        store::Database &db = frame::basedati();
        frame::pub().IdUtenteCorrente = 7;
        frame::pub().AnnoEsercizio = QStringLiteral("2026");
        {
            store::Recordset rs(db, QStringLiteral("select * from Cassa"));
            for (const auto &[entrata, uscita] : {std::pair(1.0, 1.0), std::pair(1.0, 0.0), std::pair(0.0, 2.0), std::pair(0.0, 0.0)}) {
                rs.AddNew();
                rs.setValue(QStringLiteral("Descrizione"), QStringLiteral("r%1%2").arg(entrata).arg(uscita));
                rs.setValue(QStringLiteral("Entrata"), entrata);
                rs.setValue(QStringLiteral("Uscita"), uscita);
                forms::CompletaRiga(rs);
                rs.Update();
            }
        }
        store::Recordset rs(db, QStringLiteral("select * from Cassa order by id"));
        QStringList colori;
        for (rs.MoveFirst(); !rs.eof(); rs.MoveNext())
            colori << forms::ColoreCassa(rs).value<QBrush>().color().name();
        QCOMPARE(colori, (QStringList{"#c0c0c0", "#dfffea", "#fff2ea", "#ffffff"}));
        QCOMPARE(db.scalar(QStringLiteral("select count(*) from Cassa where IdUtente = 7 and Esercizio = '2026' and IdCliente is null")).toInt(), 4);

        using forms::EsitoTrova;
        const QString elenco = forms::IstruzioneTabella(QStringLiteral("Cassa"), QStringLiteral("Descrizione desc"));
        QVariant chiave;
        const auto trova = [&](const QString &campo, const QString &testo) {
            return forms::TrovaInTabella(db, elenco, QStringLiteral("id"), campo, testo, prompter, &chiave);
        };
        QCOMPARE(trova(QString(), QStringLiteral("r")), EsitoTrova::Rifiutato);
        QCOMPARE(prompter.messages.last().text, frame::TestoLingua("M0081"));
        QCOMPARE(trova(QStringLiteral("Descrizione"), QStringLiteral("R\"1")), EsitoTrova::Rifiutato);
        QCOMPARE(prompter.messages.last().text, frame::TestoLingua("CAP20"));
        QCOMPARE(trova(QStringLiteral("Descrizione"), QStringLiteral("R1")), EsitoTrova::Trovato); // r11 comes before r10, descending
        QCOMPARE(db.scalar(QStringLiteral("select Descrizione from Cassa where id = ?"), {chiave}).toString(), QStringLiteral("r11"));
        QCOMPARE(trova(QStringLiteral("Descrizione"), QStringLiteral("%_")), EsitoTrova::NonTrovato); // pattern letters are plain text
        db.execute(QStringLiteral("delete from Cassa"));
    }

    // Layouts by name in one file, a foreign or broken file ignored, the user's data folder
    // when the program folder can't be written, and the file removed on request.
    void layoutGriglia()
    {
        RecordsetModel model(frame::basedati(), Tutti);
        QTableView griglia, nuova;
        griglia.setModel(&model);
        nuova.setModel(&model);
        for (QTableView *g : {&griglia, &nuova})
            g->setObjectName(QStringLiteral("grdDataGrid"));
        QHeaderView *h = griglia.horizontalHeader(), *n = nuova.horizontalHeader();
        const int targa = model.colonna(QStringLiteral("Targa")), anno = model.colonna(QStringLiteral("Anno")),
                  note = model.colonna(QStringLiteral("Note"));
        h->moveSection(h->visualIndex(targa), 0);
        h->resizeSection(targa, 173);
        h->setSectionHidden(note, true);
        QVERIFY(forms::SalvaLayoutGriglia(griglia));
        QCOMPARE(forms::PercorsoLayoutGriglia(), m_programma.path() + QStringLiteral("/TdbLayout"));
        QVERIFY(QFileInfo::exists(forms::PercorsoLayoutGriglia()));
        h->setSectionHidden(anno, true);
        QVERIFY(forms::SalvaLayoutGriglia(griglia, QStringLiteral("clienti2")));
        QVERIFY(forms::CaricaLayoutGriglia(nuova));
        QVERIFY(n->logicalIndex(0) == targa && n->sectionSize(targa) == 173 && n->isSectionHidden(note) && !n->isSectionHidden(anno));
        QVERIFY(forms::CaricaLayoutGriglia(nuova, QStringLiteral("clienti2")));
        QVERIFY(n->isSectionHidden(anno));
        QVERIFY(!forms::CaricaLayoutGriglia(nuova, QStringLiteral("nessuno"))); // an unknown name: the default layout
        QVERIFY(n->logicalIndex(0) == 0 && !n->isSectionHidden(note));

        const QString rotto = forms::PercorsoLayoutGriglia(QStringLiteral("rotto.tdb"));
        for (const QByteArray &contenuto : {QByteArray("\x00\xff\x13garbage{{[", 13), QByteArray(R"({"format":"other","version":1,"layouts":{"grdDataGrid":{}}})"),
                                            QByteArray(R"({"format":"veltano-grid-layouts","version":1,"layouts":{"grdDataGrid":)"
                                                       R"({"columns":[7,{"field":"Targa","width":"wide","hidden":3},{"field":12}]}}})"),
                                            QByteArray("[1,2,3]")}) {
            n->moveSection(3, 0);
            writeBytes(rotto, contenuto);
            const bool letto = forms::CaricaLayoutGriglia(nuova, QString(), QStringLiteral("rotto.tdb"));
            // Only the third is ours: its one usable entry moves Targa first, the rest is ignored.
            QCOMPARE(letto, contenuto.contains("veltano-grid-layouts"));
            QCOMPARE(n->logicalIndex(0), letto ? targa : 0);
            QCOMPARE(n->sectionSize(targa), n->defaultSectionSize());
            for (int c = 0; c < model.columnCount(); ++c)
                QVERIFY(!n->isSectionHidden(c));
        }
        QVERIFY(forms::SalvaLayoutGriglia(nuova, QString(), QStringLiteral("rotto.tdb"))); // a good file over a foreign one
        QVERIFY(forms::CaricaLayoutGriglia(nuova, QString(), QStringLiteral("rotto.tdb")));

        frame::pub().CartellaProgramma = QStringLiteral("/nonexistent/veltano/");
        const QString altrove = forms::PercorsoLayoutGriglia(QStringLiteral("clienti.tdb"));
        QVERIFY(altrove.startsWith(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)));
        QVERIFY(forms::SalvaLayoutGriglia(griglia, QString(), QStringLiteral("clienti.tdb")));
        QVERIFY(forms::CaricaLayoutGriglia(nuova, QString(), QStringLiteral("clienti.tdb")));
        QCOMPARE(n->logicalIndex(0), targa);
        ScriptedPrompter no, si, ancora;
        no.answer(frame::Prompter::Answer::Cancel);
        QVERIFY(!forms::EliminaLayoutGriglia(nuova, QStringLiteral("clienti.tdb"), no));
        QCOMPARE(no.questions, QStringList{frame::TestoLingua("M0090")});
        QCOMPARE(no.questionIcons.value(0), frame::Prompter::Icon::Information);
        QVERIFY(QFileInfo::exists(altrove));
        si.answer(frame::Prompter::Answer::Ok);
        QVERIFY(forms::EliminaLayoutGriglia(nuova, QStringLiteral("clienti.tdb"), si));
        QVERIFY(!QFileInfo::exists(altrove));
        QCOMPARE(si.messages.value(0).text, frame::TestoLingua("M0091"));
        QVERIFY(!n->isSectionHidden(note) && n->logicalIndex(0) == 0); // back to the default layout
        ancora.answer(frame::Prompter::Answer::Ok);
        QVERIFY(!forms::EliminaLayoutGriglia(nuova, QStringLiteral("clienti.tdb"), ancora));
        QCOMPARE(ancora.messages.value(0).text, frame::TestoLingua("M0092"));
        frame::pub().CartellaProgramma = m_programma.path() + QLatin1Char('/');
    }
};

QTEST_MAIN(TestGriglia)
#include "tst_griglia.moc"
