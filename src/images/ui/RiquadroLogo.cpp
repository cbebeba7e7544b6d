// SPDX-License-Identifier: GPL-3.0-or-later
#include "images/ui/RiquadroLogo.h"

#include "frame/Language.h"
#include "frame/Prompter.h"
#include "frame/PublicState.h"
#include "images/Immagini.h"
#include "images/Scanner.h"
#include "images/ui/FrmMostra.h"

#include <QDir>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include <cmath>

namespace images {

using frame::TestoLingua;

// The image at its zoom, and the selection drawn over it. It is the scroll area's
// widget, so a mouse position in it already counts the scroll offset.
class VistaLogo final : public QWidget {
public:
    explicit VistaLogo(QWidget *parent) : QWidget(parent) { setCursor(Qt::CrossCursor); }

    const QImage &immagine() const { return m_immagine; }
    double zoom() const { return m_zoom; }
    QRect angoli() const { return QRect(QPoint(m_sinistra, m_alto), QPoint(m_destra, m_basso)); }

    void imposta(const QImage &immagine, double zoom)
    {
        m_immagine = immagine;
        m_zoom = zoom;
        m_sinistra = m_alto = m_destra = m_basso = -1;
        adatta();
    }
    void impostaZoom(double zoom)
    {
        m_zoom = zoom;
        adatta();
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter p(this);
        p.setRenderHint(QPainter::SmoothPixmapTransform);
        p.drawImage(rect(), m_immagine);
        if (m_sinistra < 0 || m_alto < 0 || m_destra < 0 || m_basso < 0)
            return;
        p.setPen(QPen(Qt::red, 1));
        const QRect r = *RettangoloTaglio(m_sinistra, m_alto, m_destra, m_basso);
        p.drawRect(QRectF(r.x() * m_zoom, r.y() * m_zoom, r.width() * m_zoom, r.height() * m_zoom));
    }

    void mousePressEvent(QMouseEvent *e) override
    {
        if (e->button() != Qt::LeftButton)
            return;
        const QPoint angolo = inImmagine(e->position());
        m_sinistra = angolo.x();
        m_alto = angolo.y();
        m_destra = m_basso = -1;
        update();
    }
    void mouseMoveEvent(QMouseEvent *e) override
    {
        if (e->buttons() & Qt::LeftButton)
            segnaAngolo(e->position());
    }
    void mouseReleaseEvent(QMouseEvent *e) override
    {
        if (e->button() == Qt::LeftButton)
            segnaAngolo(e->position());
    }
    void mouseDoubleClickEvent(QMouseEvent *e) override
    {
        if (e->button() != Qt::LeftButton)
            return;
        auto *mostra = new FrmMostra(m_immagine, window());
        mostra->show();
    }

private:
    // A point of the view in image pixels, kept on the image when the mouse leaves it.
    // The margin absorbs the rounding of a zoom like 1.1, so that 66 / 1.1 is pixel 60.
    QPoint inImmagine(QPointF posizione) const
    {
        const auto pixel = [this](double v, int limite) {
            return qBound(0, int(std::floor(v / m_zoom + 1e-6)), limite);
        };
        return QPoint(pixel(posizione.x(), m_immagine.width()), pixel(posizione.y(), m_immagine.height()));
    }
    void segnaAngolo(QPointF posizione)
    {
        if (m_sinistra < 0)
            return;
        const QPoint angolo = inImmagine(posizione);
        m_destra = angolo.x();
        m_basso = angolo.y();
        update();
    }
    void adatta()
    {
        setFixedSize(qRound(m_immagine.width() * m_zoom), qRound(m_immagine.height() * m_zoom));
        update();
    }

    QImage m_immagine;
    double m_zoom = 1.0;
    int m_sinistra = -1, m_alto = -1, m_destra = -1, m_basso = -1;
};

namespace {

// The formats the open dialog offers, each in both cases for file systems that tell them apart.
QString filtroFormati()
{
    static const char *const formati[] = {"BMP", "DCX", "DIB", "GIF", "ICO", "JPG", "JIF", "LJP", "PBM", "PCX",
                                          "PGM", "PIC", "PNG", "PPM", "RLE", "TGA", "TIF", "WMF", "WPG"};
    QStringList tutti, filtri;
    for (const char *f : formati) {
        const QString maschere = QStringLiteral("*.%1 *.%2").arg(QString::fromLatin1(f).toLower(), QLatin1String(f));
        tutti << maschere;
        filtri << QStringLiteral("%1 (%2)").arg(QLatin1String(f), maschere);
    }
    filtri.prepend(TestoLingua("CAP45") + QStringLiteral(" (") + tutti.join(QLatin1Char(' ')) + QLatin1Char(')'));
    return filtri.join(QStringLiteral(";;"));
}

QPushButton *bottone(const char *nome, const QString &testo, QWidget *parent)
{
    auto *b = new QPushButton(testo, parent);
    b->setObjectName(QLatin1String(nome));
    b->setAutoDefault(false);
    return b;
}

} // namespace

RiquadroLogo::RiquadroLogo(frame::Prompter &prompter, const QString &nome, QWidget *parent)
    : QWidget(parent), m_prompter(prompter), m_nome(nome)
{
    m_area = new QScrollArea(this);
    m_area->setObjectName(QStringLiteral("AreaLogo"));
    m_area->setAlignment(Qt::AlignCenter);
    m_area->setMinimumSize(160, 100);
    m_vista = new VistaLogo(m_area);
    m_vista->setObjectName(QStringLiteral("Xpress1"));
    m_area->setWidget(m_vista);

    m_acquisisci = bottone("Command10", TestoLingua("CAP43"), this); // Acquire
    m_taglia = bottone("ComCrop", TestoLingua("CAP44"), this);       // Crop
    m_zoomMeno = bottone("ComZoomM", QStringLiteral("\u2212"), this);
    m_zoomPiu = bottone("ComZoomP", QStringLiteral("+"), this);
    for (QPushButton *b : {m_zoomMeno, m_zoomPiu})
        b->setFixedWidth(b->sizeHint().height() + 4);
    m_labZoom = new QLabel(this);
    m_labZoom->setObjectName(QStringLiteral("LabZoom"));
    m_labZoom->setMinimumWidth(m_labZoom->fontMetrics().horizontalAdvance(QStringLiteral("000%")));
    m_labZoom->setAlignment(Qt::AlignRight | Qt::AlignVCenter);

    auto *bottoni = new QHBoxLayout;
    bottoni->addWidget(m_acquisisci);
    bottoni->addWidget(m_taglia);
    bottoni->addStretch();
    bottoni->addWidget(m_zoomMeno);
    bottoni->addWidget(m_labZoom);
    bottoni->addWidget(m_zoomPiu);
    auto *colonna = new QVBoxLayout(this);
    colonna->setContentsMargins(0, 0, 0, 0);
    colonna->addWidget(m_area, 1);
    colonna->addLayout(bottoni);

    m_menu = new QMenu(this);
    m_menu->setObjectName(QStringLiteral("AcquisizioneFoto"));
    m_menu->addAction(TestoLingua("CAP40"), this, &RiquadroLogo::acquisisciScanner)->setObjectName("AcqSca");
    m_menu->addAction(TestoLingua("CAP41"), this, &RiquadroLogo::acquisisciFile)->setObjectName("AcqFile");
    m_menu->addAction(TestoLingua("CAP42"), this, &RiquadroLogo::eliminaImmagine)->setObjectName("AcqEli");

    connect(m_acquisisci, &QPushButton::clicked, this, [this] {
        // The menu's entries act on the logo whose name stands in the public state.
        frame::pub().CampoLogo = m_nome;
        m_menu->popup(m_acquisisci->mapToGlobal(QPoint(0, m_acquisisci->height())));
    });
    connect(m_taglia, &QPushButton::clicked, this, &RiquadroLogo::ritaglia);
    connect(m_zoomMeno, &QPushButton::clicked, this, &RiquadroLogo::zoomMeno);
    connect(m_zoomPiu, &QPushButton::clicked, this, &RiquadroLogo::zoomPiu);

    setImmagine(QImage());
}

RiquadroLogo::~RiquadroLogo() = default;

void RiquadroLogo::setImmagine(const QImage &immagine)
{
    m_campo = QVariant();
    m_zoom.clear();
    m_vista->imposta(immagine, 1.0);
    aggiornaStato();
}

QImage RiquadroLogo::immagine() const
{
    return m_vista->immagine();
}

QRect RiquadroLogo::angoli() const
{
    return m_vista->angoli();
}

QVariant RiquadroLogo::valorePerCampo()
{
    if (!m_zoom.isEmpty())
        setImmagine(ApplicaZoom(immagine(), FattoreZoom(m_zoom)));
    // A logo as it was read goes back as it was: encoding a large picture again costs a tenth of a second.
    return m_campo.isValid() ? m_campo : ImmagineInCampo(immagine());
}

void RiquadroLogo::caricaDaCampo(const QVariant &valore)
{
    setImmagine(ImmagineDaCampo(valore));
    if (!immagine().isNull())
        m_campo = valore;
}

void RiquadroLogo::acquisisciScanner()
{
    Scanner scanner;
    const QList<Scanner::Dispositivo> elenco = scanner.dispositivi();
    Scanner::Esito esito = Scanner::supportato() ? Scanner::Esito::NonPronto : Scanner::Esito::SenzaSupporto;
    QImage scansione;
    if (!elenco.isEmpty()) {
        // With more than one device the user picks; the last choice is offered first.
        static QString ultimo;
        QString scelto = elenco.first().nome;
        if (elenco.size() > 1) {
            QStringList voci;
            int corrente = 0;
            for (const Scanner::Dispositivo &d : elenco) {
                if (d.nome == ultimo)
                    corrente = voci.size();
                voci << QStringLiteral("%1 (%2)").arg(d.descrizione, d.nome);
            }
            bool ok = false;
            const QString voce =
                QInputDialog::getItem(this, TestoLingua("CAP40"), QString(), voci, corrente, false, &ok);
            scelto = ok ? elenco.at(voci.indexOf(voce)).nome : QString();
        }
        esito = scelto.isEmpty() ? Scanner::Esito::Annullato : scanner.acquisisci(scelto, scansione);
        if (!scelto.isEmpty())
            ultimo = scelto;
    }
    if (esito != Scanner::Esito::Ok) {
        // A failed scan keeps the logo that was there.
        m_prompter.message(Scanner::testoEsito(esito), frame::Prompter::Icon::Critical);
        return;
    }
    setImmagine(scansione);
    emit modificato();
}

void RiquadroLogo::acquisisciFile()
{
    const QString percorso =
        QFileDialog::getOpenFileName(this, TestoLingua("CAP40"), QDir::currentPath(), filtroFormati());
    if (!percorso.isEmpty())
        caricaFile(percorso);
}

bool RiquadroLogo::caricaFile(const QString &percorso)
{
    const FileImmagine letto = CaricaFileImmagine(percorso);
    if (!letto.errore.isEmpty()) {
        m_prompter.stop(letto.errore);
        return false;
    }
    setImmagine(letto.immagine);
    emit modificato();
    return true;
}

void RiquadroLogo::eliminaImmagine()
{
    // M0102: "Delete the image?"
    if (m_prompter.question(TestoLingua("M0102"), frame::Prompter::Buttons::YesNo, frame::Prompter::Answer::No)
        != frame::Prompter::Answer::Yes)
        return;
    setImmagine(QImage());
    emit modificato();
}

void RiquadroLogo::ritaglia()
{
    const QRect a = angoli();
    const auto rettangolo = RettangoloTaglio(a.left(), a.top(), a.right(), a.bottom());
    if (!rettangolo)
        return;
    const QImage ritagliata = Ritaglia(immagine(), *rettangolo);
    if (ritagliata.isNull())
        return;
    setImmagine(ritagliata);
    impostaZoom(QStringLiteral("1"));
    emit modificato();
}

void RiquadroLogo::zoomMeno()
{
    impostaZoom(TestoFattore(ZoomMeno(FattoreZoom(m_zoom))));
    emit modificato();
}

void RiquadroLogo::zoomPiu()
{
    impostaZoom(TestoFattore(ZoomPiu(FattoreZoom(m_zoom))));
    emit modificato();
}

void RiquadroLogo::impostaZoom(const QString &testo)
{
    m_zoom = testo;
    m_vista->impostaZoom(FattoreZoom(m_zoom));
    aggiornaStato();
}

void RiquadroLogo::aggiornaStato()
{
    const bool presente = !immagine().isNull();
    m_vista->setVisible(presente);
    m_labZoom->setText(TestoZoom(FattoreZoom(m_zoom)));
    for (QPushButton *b : {m_taglia, m_zoomMeno, m_zoomPiu})
        b->setEnabled(presente);
}

} // namespace images
