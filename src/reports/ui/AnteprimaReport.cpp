// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/ui/AnteprimaReport.h"

#include "reports/engine/CrystalReport.h"

#include "frame/Language.h"
#include "frame/widgets/Esportazioni.h"

#include <QAction>
#include <QEvent>
#include <QMessageBox>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <QScrollArea>
#include <QScrollBar>
#include <QSpinBox>
#include <QToolBar>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace reports {

namespace {

constexpr int ScreenDpi = 96;           // the resolution at which zoom 1 shows the page at its real size
constexpr int Margine = 12;             // grey around the page, in pixels
constexpr std::size_t Tenute = 3;       // pages kept drawn, at the zoom in use
// A page at the largest zoom is an image of some 60 MB: the bound keeps the few held well under the memory goal.
constexpr double ZoomMin = 0.1, ZoomMax = 4, Passo = 1.25;

} // namespace

// The page shown: its image is drawn the first time it is painted.
class AnteprimaReport::Foglio final : public QWidget {
public:
    explicit Foglio(AnteprimaReport &anteprima) : m_anteprima(anteprima) {}

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter p(this);
        p.drawImage(0, 0, m_anteprima.immagine(m_anteprima.pagina(), m_anteprima.dpi()));
    }

private:
    AnteprimaReport &m_anteprima;
};

AnteprimaReport::AnteprimaReport(std::shared_ptr<const PagineReport> pagine, double zoom, QWidget *parent)
    : QDialog(parent), m_pagine(std::move(pagine)), m_zoom(zoom)
{
    setObjectName(QStringLiteral("AnteprimaReport"));
    setWindowTitle(m_pagine->titolo());
    setWindowFlag(Qt::WindowMinMaxButtonsHint);

    auto *bar = new QToolBar(this);
    // CAP75: the toolbar's captions, parted by "|": first, previous, next, last page, zoom out, zoom in, fit width, print.
    const QStringList testi = frame::TestoLingua("CAP75").split(QLatin1Char('|'));
    // Qt's own preview icons; where a Qt lacks them the buttons show their captions.
    const auto azione = [&](int testo, const char *nome, const char *icona, QKeySequence tasto, auto fa) {
        QAction *a = bar->addAction(QIcon(QStringLiteral(":/qt-project.org/dialogs/qprintpreviewdialog/images/%1-24.png")
                                              .arg(QLatin1String(icona))),
                                    testi.value(testo));
        a->setObjectName(QLatin1String(nome));
        a->setShortcut(tasto);
        connect(a, &QAction::triggered, this, fa);
        return a;
    };
    azione(0, "primaPagina", "go-first", QKeySequence(Qt::Key_Home), [this] { vaiA(1); });
    azione(1, "paginaPrima", "go-previous", QKeySequence(Qt::Key_PageUp), [this] { vaiA(m_pagina - 1); });
    m_numero = new QSpinBox(bar);
    m_numero->setObjectName(QStringLiteral("numeroPagina"));
    m_numero->setRange(1, std::max(1, this->pagine()));
    m_numero->setSuffix(QStringLiteral(" / %1").arg(this->pagine()));
    m_numero->setKeyboardTracking(false);
    connect(m_numero, &QSpinBox::valueChanged, this, &AnteprimaReport::vaiA);
    bar->addWidget(m_numero);
    azione(2, "paginaDopo", "go-next", QKeySequence(Qt::Key_PageDown), [this] { vaiA(m_pagina + 1); });
    azione(3, "ultimaPagina", "go-last", QKeySequence(Qt::Key_End), [this] { vaiA(this->pagine()); });
    bar->addSeparator();
    azione(4, "zoomMeno", "zoom-out", QKeySequence::ZoomOut, [this] { setZoom(this->zoom() / Passo); });
    azione(5, "zoomPiu", "zoom-in", QKeySequence::ZoomIn, [this] { setZoom(this->zoom() * Passo); });
    azione(6, "adattaLarghezza", "zoom-fit-width", QKeySequence(), [this] { setZoom(0); });
    bar->addSeparator();
    azione(7, "stampa", "printer", QKeySequence::Print, [this] { stampa(); });
    frame::AggiungeEsportazioni(
        *bar, m_pagine->titolo(), [p = m_pagine](const QString &path) { return p->writePdf(path); },
        [p = m_pagine](const QString &path) { return p->writeCsv(path); });

    m_area = new QScrollArea(this);
    m_area->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    m_area->setBackgroundRole(QPalette::Dark);
    m_foglio = new Foglio(*this);
    m_foglio->setAttribute(Qt::WA_OpaquePaintEvent);
    m_area->setWidget(m_foglio);
    m_area->viewport()->installEventFilter(this); // fitting the width follows the window's size

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(bar);
    layout->addWidget(m_area);
    aggiorna();
}

AnteprimaReport::~AnteprimaReport() = default;

int AnteprimaReport::pagine() const
{
    return m_pagine->pageCount();
}

double AnteprimaReport::zoom() const
{
    if (m_zoom > 0)
        return m_zoom;
    const double larghezza = m_pagine->pageLayout().fullRect(QPageLayout::Inch).width() * ScreenDpi;
    return std::clamp((m_area->viewport()->width() - 2 * Margine) / larghezza, ZoomMin, ZoomMax);
}

int AnteprimaReport::dpi() const
{
    return std::max(1, int(std::lround(ScreenDpi * zoom())));
}

void AnteprimaReport::vaiA(int pagina)
{
    pagina = std::clamp(pagina, 1, std::max(1, pagine()));
    if (pagina == m_pagina)
        return;
    m_pagina = pagina;
    m_area->verticalScrollBar()->setValue(0);
    aggiorna();
}

void AnteprimaReport::setZoom(double zoom)
{
    m_zoom = zoom > 0 ? std::clamp(zoom, ZoomMin, ZoomMax) : 0;
    aggiorna();
}

void AnteprimaReport::aggiorna()
{
    const QSizeF mm = m_pagine->pageLayout().fullRect(QPageLayout::Millimeter).size();
    const int d = dpi();
    m_foglio->setFixedSize(int(std::lround(mm.width() * d / 25.4)), int(std::lround(mm.height() * d / 25.4)));
    m_foglio->update();
    const QSignalBlocker blocco(m_numero);
    m_numero->setValue(m_pagina);
}

QImage AnteprimaReport::immagine(int pagina, int dpi)
{
    const auto tenuta = std::find_if(m_disegnate.begin(), m_disegnate.end(),
                                     [&](const Disegnata &d) { return d.pagina == pagina && d.dpi == dpi; });
    if (tenuta != m_disegnate.end())
        return tenuta->immagine;
    std::erase_if(m_disegnate, [dpi](const Disegnata &d) { return d.dpi != dpi; }); // another zoom's pages won't be shown again soon
    // The engine lays the page out at the image's resolution, so the text is sharp at every zoom.
    const QSizeF mm = m_pagine->pageLayout().fullRect(QPageLayout::Millimeter).size();
    QImage img(int(std::lround(mm.width() * dpi / 25.4)), int(std::lround(mm.height() * dpi / 25.4)), QImage::Format_RGB32);
    img.setDotsPerMeterX(int(std::lround(dpi / 0.0254)));
    img.setDotsPerMeterY(int(std::lround(dpi / 0.0254)));
    img.fill(Qt::white);
    {
        QPainter p(&img);
        p.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
        m_pagine->paintPage(p, img, pagina);
    }
    m_disegnate.push_front({pagina, dpi, img});
    if (m_disegnate.size() > Tenute)
        m_disegnate.pop_back();
    return img;
}

bool AnteprimaReport::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_area->viewport() && event->type() == QEvent::Resize && adattaLarghezza())
        aggiorna();
    return QDialog::eventFilter(watched, event);
}

void AnteprimaReport::stampa()
{
    const QString titolo = m_pagine->titolo();
    if (QPrinterInfo::availablePrinters().isEmpty()) {
        QMessageBox::warning(this, titolo, frame::TestoLingua("CAP11").arg(titolo)); // no printer: save it as a PDF file
        return;
    }
    QPrinter printer(QPrinter::HighResolution);
    printer.setFullPage(true);
    printer.setPageLayout(m_pagine->pageLayout());
    printer.setDocName(titolo);
    QPrintDialog dialogo(&printer, this);
    dialogo.setOption(QAbstractPrintDialog::PrintPageRange, false);
    if (dialogo.exec() != QDialog::Accepted)
        return;
    QPainter painter;
    if (!painter.begin(&printer)) {
        QMessageBox::warning(this, titolo, frame::TestoLingua("CAP12").arg(printer.printerName())); // the printer is not ready
        return;
    }
    m_pagine->paint(painter, printer);
}

} // namespace reports
