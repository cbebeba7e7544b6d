// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QDialog>
#include <QImage>

#include <deque>
#include <memory>

class QScrollArea;
class QSpinBox;

namespace reports {

class PagineReport;

// The preview of a run's pages: one page at a time, drawn only when shown, so the
// first page of a list of thousands appears at once. Pages, zoom, print, and
// the buttons that save a PDF or a CSV file.
class AnteprimaReport final : public QDialog {
    Q_OBJECT

public:
    // zoom 0 fits the page's width to the window; 1 is the page at its real size.
    AnteprimaReport(std::shared_ptr<const PagineReport> pagine, double zoom, QWidget *parent = nullptr);
    ~AnteprimaReport() override;

    int pagina() const { return m_pagina; }
    int pagine() const;
    // The zoom in use: the fitted one when fitting the width.
    double zoom() const;
    bool adattaLarghezza() const { return m_zoom <= 0; }
    void vaiA(int pagina);
    void setZoom(double zoom);
    // The image of a page as the window shows it at `dpi`; the last few are kept.
    QImage immagine(int pagina, int dpi);

private:
    class Foglio;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void aggiorna();
    void stampa();
    int dpi() const;

    std::shared_ptr<const PagineReport> m_pagine;
    double m_zoom;
    int m_pagina = 1;
    QScrollArea *m_area;
    Foglio *m_foglio;
    QSpinBox *m_numero;
    struct Disegnata {
        int pagina, dpi;
        QImage immagine;
    };
    std::deque<Disegnata> m_disegnate;
};

} // namespace reports
