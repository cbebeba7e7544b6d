// SPDX-License-Identifier: GPL-3.0-or-later
#include "images/ui/FrmMostra.h"

#include "frame/PublicState.h"

#include <QKeyEvent>
#include <QLabel>
#include <QScrollArea>
#include <QVBoxLayout>

#include <cmath>

namespace images {

FrmMostra::FrmMostra(const QImage &immagine, QWidget *parent) : QWidget(parent, Qt::Window), m_immagine(immagine)
{
    setObjectName(QStringLiteral("FrmMostra"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QLatin1String(frame::TitoloApplicazione));
    m_area = new QScrollArea(this);
    m_area->setAlignment(Qt::AlignCenter);
    m_area->setFrameShape(QFrame::NoFrame);
    m_figura = new QLabel(m_area);
    m_figura->setObjectName(QStringLiteral("Xpress1"));
    m_area->setWidget(m_figura);
    auto *colonna = new QVBoxLayout(this);
    colonna->setContentsMargins(0, 0, 0, 0);
    colonna->addWidget(m_area);
    resize(800, 600);
}

QSize FrmMostra::dimensioneMostrata() const
{
    if (m_immagine.isNull())
        return QSize();
    // The whole image in the window at zoom 1, then the zoom on top of that.
    const QSize adattata = m_immagine.size().scaled(m_area->maximumViewportSize(), Qt::KeepAspectRatio);
    return QSize(std::max(1, int(std::lround(adattata.width() * m_zoom))),
                 std::max(1, int(std::lround(adattata.height() * m_zoom))));
}

void FrmMostra::passoZoom(int verso)
{
    const double nuovo = m_zoom + verso * Passo;
    if (nuovo < ZoomMinimo || nuovo > ZoomMassimo)
        return;
    m_zoom = nuovo;
    ridisegna();
}

void FrmMostra::keyPressEvent(QKeyEvent *e)
{
    switch (e->key()) {
    case Qt::Key_Escape:
        close();
        break;
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        passoZoom(1);
        break;
    case Qt::Key_Minus:
        passoZoom(-1);
        break;
    default:
        QWidget::keyPressEvent(e);
    }
}

void FrmMostra::resizeEvent(QResizeEvent *e)
{
    QWidget::resizeEvent(e);
    ridisegna();
}

void FrmMostra::ridisegna()
{
    const QSize dimensione = dimensioneMostrata();
    if (dimensione.isEmpty()) {
        m_figura->clear();
        return;
    }
    m_figura->setPixmap(
        QPixmap::fromImage(m_immagine.scaled(dimensione, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)));
    m_figura->resize(dimensione);
}

} // namespace images
