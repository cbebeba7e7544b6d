// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/runs/StampeOpzioni.h"

#include "frame/Language.h"
#include "frame/Prompter.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"

#include <QStringList>

namespace reports {

using frame::pub;
using frame::TestoLinguaApici;

namespace {

QString dateSerial(const QDate &d)
{
    return QStringLiteral("DateSerial (%1,%2,%3)").arg(d.year()).arg(d.month()).arg(d.day());
}

// The day's clock window: on or after (or before) the date, and the entry's hour and minute against the box's.
QString finestra(const QDate &giorno, const std::optional<QTime> &ora, const char *verso)
{
    const QTime t = ora.value_or(QTime(0, 0));
    const QString campo = QStringLiteral("{Q_Movimentazioni_Utenti.DataOra}");
    return campo + QLatin1Char(' ') + QLatin1String(verso) + QLatin1Char(' ') + dateSerial(giorno)
           + QStringLiteral(" and TimeSerial (Hour (%1),Minute (%1),0) %2 TimeSerial (%3,%4,0)")
                 .arg(campo, QLatin1String(verso))
                 .arg(t.hour())
                 .arg(t.minute());
}

// The fiscal year's cash rows of a kind, of one customer when `cliente` names one, in a period.
QString selezioneLibro(const OpzioniCassa &o, const QString &anno, const QString &cliente)
{
    // The amount condition goes in without brackets: the engine reads it by its own precedence.
    QString s = QStringLiteral("{TabProgressivi.Anno}='") + anno + QLatin1Char('\'');
    if (o.righe == OpzioniCassa::Righe::SoloEntrate)
        s += QStringLiteral(" and isnull({Cassa.uscita}) or {Cassa.uscita}=0");
    else if (o.righe == OpzioniCassa::Righe::SoloUscite)
        s += QStringLiteral(" and isnull({Cassa.Entrata}) or {Cassa.Entrata}=0");
    if (!cliente.isEmpty())
        s += QStringLiteral(" and ") + cliente;
    if (o.dal && o.dal->isValid())
        s += QStringLiteral(" and {Cassa.Data} >= ") + dateSerial(*o.dal);
    if (o.al && o.al->isValid())
        s += QStringLiteral(" and {Cassa.Data} <= ") + dateSerial(*o.al);
    return s;
}

QString interruttoreSaldo(const OpzioniCassa &o)
{
    return o.graficoSaldo ? QStringLiteral("OmetteGrafSaldo=false") : QStringLiteral("OmetteGrafSaldo=true");
}

// What the cash report and the account statement set alike: M0084 for a start
// before the fiscal year, the carried sums and their day at 0 to 2 (zeros and no
// day without a start), the graph switch at 4, the daily balance graph's texts.
Lancio lancioLibro(const QString &modello, frame::Prompter &prompter, const OpzioniCassa &o, store::Currency entrateRiportate,
                   store::Currency usciteRiportate)
{
    Lancio l;
    l.modello = modello;
    const bool conDal = o.dal && o.dal->isValid();
    if (conDal && o.dal->year() < pub().AnnoEsercizio.toInt())
        prompter.information(frame::TestoLingua("M0084")); // the start is before the fiscal year: told, and printed all the same
    if (conDal) {
        l.formule.insert(0, QStringLiteral("EntrataPeriodo=") + NumeroFormula(entrateRiportate));
        l.formule.insert(1, QStringLiteral("UscitaPeriodo=") + NumeroFormula(usciteRiportate));
        l.formule.insert(2, QStringLiteral("DataPeriodo='") + frame::TestoData(o.dal->startOfDay()) + QLatin1Char('\''));
    } else {
        l.formule.insert(0, QStringLiteral("EntrataPeriodo=0"));
        l.formule.insert(1, QStringLiteral("UscitaPeriodo=0"));
        l.formule.insert(2, QStringLiteral("DataPeriodo=''"));
    }
    l.formule.insert(4, interruttoreSaldo(o));
    l.testiGrafico.insert(0, QStringLiteral(" GROUPFTR.0.1; 0; ") + TestoLinguaApici(QStringLiteral("M0347")) + QStringLiteral(";;;;;;")
                                 + TestoLinguaApici(QStringLiteral("M0348")) + QLatin1Char(';'));
    return l;
}

// The labels of the cash book's columns and balances, from index `da` on; the title from `titolo`.
void etichetteLibro(Lancio &l, int da, const char *titolo)
{
    l.etichette(da, {{"lbldata", "M0249"}, {"lbldescrizione", "M0210"}, {"lblentrata", "M0194"}, {"lbluscita", "M0195"},
                     {"lblsaldoiniziale", "M0340"}, {"lbltitolo", titolo}, {"lblsaldoprecedenteal", "M0342"}, {"lbltotali", "M0343"},
                     {"lblsaldototale", "M0344"}, {"lblsaldoparziale", "M0345"}, {"lblsubtotali", "M0346"}});
}

} // namespace

QString SelezionePark(const OpzioniPark &o)
{
    QStringList clausole;
    if (!o.targa.isEmpty())
        clausole << QStringLiteral("{Q_Movimentazioni_Utenti.targa} = \"") + o.targa + QLatin1Char('"');
    if (o.stato == OpzioniPark::Stato::Dentro)
        clausole << QStringLiteral("{Q_Movimentazioni_Utenti.entrato} = true");
    else if (o.stato == OpzioniPark::Stato::Usciti)
        clausole << QStringLiteral("{Q_Movimentazioni_Utenti.entrato} = false");
    if (o.dal && o.dal->isValid())
        clausole << finestra(*o.dal, o.oraDal, ">=");
    if (o.al && o.al->isValid())
        clausole << finestra(*o.al, o.oraAl, "<=");
    return clausole.join(QStringLiteral(" and "));
}

Lancio LancioPark(const OpzioniPark &o)
{
    Lancio l;
    l.modello = QStringLiteral("park");
    l.formule.insert(0, o.graficoGiorni ? QStringLiteral("OmetteGrafGiorni=false") : QStringLiteral("OmetteGrafGiorni=true"));
    l.formule.insert(1, o.graficoOre ? QStringLiteral("OmetteGrafOre=false") : QStringLiteral("OmetteGrafOre=true"));
    l.etichette(2, {{"lblprogressivo", "M0291"}, {"lbltarga", "M0203"}, {"lblentrata", "M0194"}, {"lbluscita", "M0195"},
                    {"lblimporto", "M0322"}, {"lblore", "M0334"}, {"lblnotepagamento", "M0333"}, {"lblnote", "M0228"},
                    {"lblannullato", "M0335"}, {"titolo", "M0332"}});
    l.testiGrafico.insert(0, QStringLiteral(" GROUPFTR.0.0; 0; ") + TestoLinguaApici(QStringLiteral("M0336")) + QStringLiteral(";;;;;;")
                                 + TestoLinguaApici(QStringLiteral("M0334")) + QLatin1Char(';'));
    l.testiGrafico.insert(1, QStringLiteral(" GROUPFTR.0.1; 0;") + TestoLinguaApici(QStringLiteral("M0337")) + QStringLiteral(";;;;;")
                                 + TestoLinguaApici(QStringLiteral("M0339")) + QLatin1Char(';') + TestoLinguaApici(QStringLiteral("M0338"))
                                 + QLatin1Char(';'));
    l.statoFinestra = 2;
    l.selezione = SelezionePark(o);
    return l;
}

QString SelezioneCassa(const OpzioniCassa &o, const QString &anno)
{
    return selezioneLibro(o, anno, QString());
}

Lancio LancioCassa(frame::Prompter &prompter, const OpzioniCassa &o, store::Currency entrateRiportate,
                   store::Currency usciteRiportate)
{
    Lancio l = lancioLibro(QStringLiteral("cassa"), prompter, o, entrateRiportate, usciteRiportate);
    etichetteLibro(l, 5, "M0351");
    l.titoloFinestra = frame::TestoLingua("M0317"); // the preview in the desk's language, as the option window
    l.selezione = SelezioneCassa(o, pub().AnnoEsercizio);
    return l;
}

QString SelezioneEstratto(const OpzioniCassa &o, const QString &anno, qint64 cliente)
{
    return selezioneLibro(o, anno, QStringLiteral("{Cassa.idcliente} = ") + QString::number(cliente));
}

std::optional<Lancio> LancioEstratto(frame::Prompter &prompter, const OpzioniEstratto &o, store::Currency entrateRiportate,
                                     store::Currency usciteRiportate)
{
    if (!o.cliente) {
        prompter.information(frame::TestoLingua("M0083")); // Choose the customer or supplier.
        return std::nullopt;
    }
    Lancio l = lancioLibro(QStringLiteral("estrattoconto"), prompter, o, entrateRiportate, usciteRiportate);
    // The labels start at 0 and take the places of the carried sums: the template's
    // defaults of EntrataPeriodo, UscitaPeriodo and DataPeriodo apply.
    etichetteLibro(l, 0, "M0341");
    l.etichette(11, {{"clifor", o.fornitori ? "M0350" : "M0349"}});
    l.formule.insert(12, interruttoreSaldo(o)); // index 4 now holds a label
    l.titoloFinestra = frame::TestoLingua("M0318");
    l.selezione = SelezioneEstratto(o, pub().AnnoEsercizio, *o.cliente);
    return l;
}

} // namespace reports
