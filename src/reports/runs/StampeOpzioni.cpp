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
    // The amount condition goes in without brackets: the engine reads it by its own precedence.
    QString s = QStringLiteral("{TabProgressivi.Anno}='") + anno + QLatin1Char('\'');
    if (o.righe == OpzioniCassa::Righe::SoloEntrate)
        s += QStringLiteral(" and isnull({Cassa.uscita}) or {Cassa.uscita}=0");
    else if (o.righe == OpzioniCassa::Righe::SoloUscite)
        s += QStringLiteral(" and isnull({Cassa.Entrata}) or {Cassa.Entrata}=0");
    if (o.dal && o.dal->isValid())
        s += QStringLiteral(" and {Cassa.Data} >= ") + dateSerial(*o.dal);
    if (o.al && o.al->isValid())
        s += QStringLiteral(" and {Cassa.Data} <= ") + dateSerial(*o.al);
    return s;
}

Lancio LancioCassa(frame::Prompter &prompter, const OpzioniCassa &o, store::Currency entrateRiportate,
                   store::Currency usciteRiportate)
{
    Lancio l;
    l.modello = QStringLiteral("cassa");
    const bool conDal = o.dal && o.dal->isValid();
    if (conDal && o.dal->year() < pub().AnnoEsercizio.toInt())
        prompter.information(frame::TestoLingua("M0084"));
    if (conDal) {
        l.formule.insert(0, QStringLiteral("EntrataPeriodo=") + NumeroFormula(entrateRiportate));
        l.formule.insert(1, QStringLiteral("UscitaPeriodo=") + NumeroFormula(usciteRiportate));
        l.formule.insert(2, QStringLiteral("DataPeriodo='") + frame::TestoData(o.dal->startOfDay()) + QLatin1Char('\''));
    } else {
        l.formule.insert(0, QStringLiteral("EntrataPeriodo=0"));
        l.formule.insert(1, QStringLiteral("UscitaPeriodo=0"));
        l.formule.insert(2, QStringLiteral("DataPeriodo=''"));
    }
    l.formule.insert(4, o.graficoSaldo ? QStringLiteral("OmetteGrafSaldo=false") : QStringLiteral("OmetteGrafSaldo=true"));
    l.etichette(5, {{"lbldata", "M0249"}, {"lbldescrizione", "M0210"}, {"lblentrata", "M0194"}, {"lbluscita", "M0195"},
                    {"lblsaldoiniziale", "M0340"}, {"lbltitolo", "M0351"}, {"lblsaldoprecedenteal", "M0342"}, {"lbltotali", "M0343"},
                    {"lblsaldototale", "M0344"}, {"lblsaldoparziale", "M0345"}, {"lblsubtotali", "M0346"}});
    l.testiGrafico.insert(0, QStringLiteral(" GROUPFTR.0.1; 0; ") + TestoLinguaApici(QStringLiteral("M0347")) + QStringLiteral(";;;;;;")
                                 + TestoLinguaApici(QStringLiteral("M0348")) + QLatin1Char(';'));
    l.selezione = SelezioneCassa(o, pub().AnnoEsercizio);
    return l;
}

} // namespace reports
