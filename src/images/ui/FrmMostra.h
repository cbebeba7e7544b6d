// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QImage>
#include <QWidget>

class QLabel;
class QScrollArea;

namespace images {

// A window that shows an image large. At zoom 1 the image fills the window
// (keeping its proportions) and follows its size; the + and - keys step the
// zoom between its limits, with scroll bars past the window; Esc closes. The window deletes itself on closing.
class FrmMostra final : public QWidget {
    Q_OBJECT
public:
    static constexpr double ZoomMinimo = 0.25;
    static constexpr double ZoomMassimo = 4.0;
    static constexpr double Passo = 0.25;

    explicit FrmMostra(const QImage &immagine, QWidget *parent = nullptr);

    double zoom() const { return m_zoom; }
    // The size the image is drawn at now.
    QSize dimensioneMostrata() const;
    // One step in (+1) or out (-1); nothing past a limit.
    void passoZoom(int verso);

protected:
    void keyPressEvent(QKeyEvent *e) override;
    void resizeEvent(QResizeEvent *e) override;

private:
    void ridisegna();

    QImage m_immagine;
    double m_zoom = 1.0;
    QScrollArea *m_area;
    QLabel *m_figura;
};

} // namespace images
