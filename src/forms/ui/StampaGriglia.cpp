// SPDX-License-Identifier: GPL-3.0-or-later
#include "forms/ui/StampaGriglia.h"

#include "forms/RecordsetModel.h"
#include "frame/Csv.h"
#include "frame/FileError.h"
#include "frame/Routines.h"
#include "frame/widgets/Esportazioni.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QPdfWriter>
#include <QHeaderView>
#include <QPainter>
#include <QPrintPreviewDialog>
#include <QToolBar>
#include <QPrinter>
#include <QTableView>

#include <algorithm>
#include <cmath>

namespace forms {

namespace {

constexpr double ScreenDpi = 96.0;
constexpr double AltezzaRiga = 1.35; // a row's height, in lines of text

QFont carattere(bool grassetto = false)
{
    QFont f(QStringLiteral("DejaVu Sans"));
    f.setPointSizeF(8);
    f.setBold(grassetto);
    return f;
}

struct Misure {
    double riga;      // height of a row
    double testata;   // title line and the gap under it
    double piede;     // page number line
};

Misure misure(QPagedPaintDevice &d)
{
    const double linea = QFontMetricsF(carattere(), &d).height();
    return {linea * AltezzaRiga, linea * 2.5, linea * 1.5};
}

} // namespace

StampaGriglia::StampaGriglia(QTableView &griglia, QString titolo) : m_griglia(griglia), m_titolo(std::move(titolo))
{
    QAbstractItemModel *m = griglia.model();
    if (auto *r = qobject_cast<RecordsetModel *>(m))
        r->caricaTutto();
    else
        while (m->canFetchMore({}))
            m->fetchMore({});
    const QHeaderView *h = griglia.horizontalHeader();
    for (int v = 0; v < h->count(); ++v) {
        const int c = h->logicalIndex(v);
        if (!h->isSectionHidden(c)) {
            m_colonne << c;
            m_intestazioni << m->headerData(c, Qt::Horizontal).toString();
        }
    }
}

int StampaGriglia::larghezzaSchermo() const
{
    int l = 0;
    for (int c : m_colonne)
        l += m_griglia.horizontalHeader()->sectionSize(c);
    return l;
}

int StampaGriglia::righe() const
{
    return m_griglia.model()->rowCount();
}

QStringList StampaGriglia::riga(int r) const
{
    const QAbstractItemModel *m = m_griglia.model();
    QStringList testi;
    for (int c : m_colonne) {
        const QModelIndex i = m->index(r, c);
        QString t = m->data(i).toString();
        const QVariant spunta = m->data(i, Qt::CheckStateRole);
        if (t.isEmpty() && spunta.isValid())
            t = spunta.toInt() == Qt::Checked ? QStringLiteral("\u2713") : QString();
        testi << t;
    }
    return testi;
}

int StampaGriglia::righePerPagina(QPagedPaintDevice &dispositivo) const
{
    const Misure mi = misure(dispositivo);
    // The captions take one row of each page.
    return std::max(1, int((dispositivo.height() - mi.testata - mi.piede) / mi.riga) - 1);
}

int StampaGriglia::stampa(QPagedPaintDevice &dispositivo) const
{
    const Misure mi = misure(dispositivo);
    const int perPagina = righePerPagina(dispositivo);
    const int totale = righe();
    const int pagine = std::max(1, (totale + perPagina - 1) / perPagina);
    const double larghezza = dispositivo.width();

    // Screen widths brought to the page, narrowed all alike when they run past it.
    QVector<double> x{0};
    const QHeaderView *h = m_griglia.horizontalHeader();
    const double schermo = larghezzaSchermo();
    const double scala = std::min(dispositivo.logicalDpiX() / ScreenDpi, schermo > 0 ? larghezza / schermo : 1.0);
    for (int c : m_colonne)
        x << x.last() + h->sectionSize(c) * scala;

    const QAbstractItemModel *m = m_griglia.model();
    const QString data = frame::TestoData(QDateTime::currentDateTime(), true);
    QPainter p(&dispositivo);
    const double spazio = mi.riga * 0.15;
    auto cella = [&](double y, int k, const QString &testo, int allineamento) {
        const QRectF r(x[k] + spazio, y, x[k + 1] - x[k] - 2 * spazio, mi.riga);
        p.drawText(r, allineamento | Qt::AlignVCenter | Qt::TextSingleLine,
                   p.fontMetrics().elidedText(testo, Qt::ElideRight, int(r.width())));
    };
    for (int pagina = 0; pagina < pagine; ++pagina) {
        if (pagina > 0)
            dispositivo.newPage();
        p.setFont(carattere(true));
        p.drawText(QRectF(0, 0, larghezza, mi.riga), Qt::AlignLeft | Qt::AlignVCenter, m_titolo);
        p.setFont(carattere());
        p.drawText(QRectF(0, 0, larghezza, mi.riga), Qt::AlignRight | Qt::AlignVCenter, data);
        double y = mi.testata;
        p.fillRect(QRectF(0, y, x.last(), mi.riga), QColor(0xe8, 0xee, 0xf6));
        p.setFont(carattere(true));
        for (int k = 0; k < m_colonne.size(); ++k)
            cella(y, k, m_intestazioni.at(k), Qt::AlignLeft);
        p.setFont(carattere());
        p.setPen(QColor(0xcc, 0xcc, 0xcc));
        p.drawLine(QPointF(0, y + mi.riga), QPointF(x.last(), y + mi.riga));
        p.setPen(Qt::black);
        const int fine = std::min(totale, (pagina + 1) * perPagina);
        for (int r = pagina * perPagina; r < fine; ++r) {
            y += mi.riga;
            const QStringList testi = riga(r);
            for (int k = 0; k < m_colonne.size(); ++k) {
                const QVariant a = m->data(m->index(r, m_colonne.at(k)), Qt::TextAlignmentRole);
                cella(y, k, testi.at(k), a.isValid() ? a.toInt() & Qt::AlignHorizontal_Mask : Qt::AlignLeft);
            }
        }
        p.drawText(QRectF(0, dispositivo.height() - mi.riga, larghezza, mi.riga), Qt::AlignRight | Qt::AlignVCenter,
                   QStringLiteral("%1 / %2").arg(pagina + 1).arg(pagine));
    }
    return pagine;
}

QString StampaGriglia::scriviPdf(const QString &path) const
{
    // The writer itself fails in silence: try the file first.
    if (QFile f(path); !f.open(QIODevice::WriteOnly))
        return QStringLiteral("The file %1 can't be written: %2").arg(QFileInfo(path).absoluteFilePath(), f.errorString());
    QPdfWriter pdf(path);
    pdf.setTitle(m_titolo);
    pdf.setResolution(600);
    pdf.setPageOrientation(orientamento(pdf));
    stampa(pdf);
    return QString();
}

QString StampaGriglia::scriviCsv(const QString &path) const
{
    try {
        frame::ScriviCsv(path, m_intestazioni, righe(), [this](qsizetype r) { return riga(int(r)); });
        return QString();
    } catch (const frame::FileError &e) {
        return e.message();
    }
}

QPageLayout::Orientation StampaGriglia::orientamento(QPagedPaintDevice &dispositivo) const
{
    // A list wider than a portrait page goes across the sheet.
    return larghezzaSchermo() > dispositivo.pageLayout().paintRect(QPageLayout::Inch).width() * ScreenDpi ? QPageLayout::Landscape
                                                                                                           : QPageLayout::Portrait;
}

void AnteprimaGriglia(QTableView &griglia, const QString &titolo, QWidget *parent)
{
    const StampaGriglia stampa(griglia, titolo);
    QPrinter stampante(QPrinter::HighResolution);
    stampante.setDocName(titolo);
    stampante.setPageOrientation(stampa.orientamento(stampante));
    QPrintPreviewDialog anteprima(&stampante, parent);
    anteprima.setWindowTitle(titolo);
    QObject::connect(&anteprima, &QPrintPreviewDialog::paintRequested, &anteprima, [&stampa](QPrinter *p) { stampa.stampa(*p); });
    if (auto *bar = anteprima.findChild<QToolBar *>())
        frame::AggiungeEsportazioni(
            *bar, titolo, [&stampa](const QString &path) { return stampa.scriviPdf(path); },
            [&stampa](const QString &path) { return stampa.scriviCsv(path); });
    anteprima.exec();
}

void CsvGriglia(QTableView &griglia, const QString &titolo, QWidget *parent)
{
    frame::SalvaCsv(parent, titolo, [&griglia, &titolo](const QString &path) { return StampaGriglia(griglia, titolo).scriviCsv(path); });
}

} // namespace forms
