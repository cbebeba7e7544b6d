// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QImage>
#include <QVariant>
#include <QWidget>

class QLabel;
class QMenu;
class QPushButton;
class QScrollArea;

namespace frame {
class Prompter;
}

namespace images {

class VistaLogo;

// The box of one company logo in the settings window: the image at its zoom in a
// scrolled view, a rectangle selected with the mouse, and the buttons Acquire,
// Crop, Zoom minus and Zoom plus with the zoom label. Double-clicking the image
// shows it large.
class RiquadroLogo final : public QWidget {
    Q_OBJECT
public:
    // `nome` is the logo's target name, "LogoP" or "LogoS".
    RiquadroLogo(frame::Prompter &prompter, const QString &nome, QWidget *parent = nullptr);
    ~RiquadroLogo() override;

    // A null image empties the box and hides the view. Either way the zoom is back to 1.
    void setImmagine(const QImage &immagine);
    QImage immagine() const;
    // The zoom as it stands in the box: a factor as text, "" when never zoomed.
    QString zoom() const { return m_zoom; }
    // The selection's corners in image pixels (left, top, right, bottom), below 0 when unset.
    QRect angoli() const;

    // For saving: a zoomed image is first resized to the zoom itself, and the zoom goes
    // back to 1. The bytes for the long binary field, or a null value without an image.
    QVariant valorePerCampo();
    // Shows the image a field holds; an unreadable or null value leaves the box empty and hidden.
    void caricaDaCampo(const QVariant &valore);

    // The entries of the acquisition menu.
    void acquisisciScanner();
    void acquisisciFile();
    // Loads a picture file into the box; a refused file is explained and changes nothing.
    bool caricaFile(const QString &percorso);
    // Asks first; on Yes the box is emptied.
    void eliminaImmagine();

    // The buttons.
    void ritaglia();
    void zoomMeno();
    void zoomPiu();

signals:
    // The image or its zoom changed.
    void modificato();

private:
    void impostaZoom(const QString &testo);
    void aggiornaStato();

    frame::Prompter &m_prompter;
    QString m_nome;
    QString m_zoom; // the factor as text, as the box keeps it; "" counts as 1
    QVariant m_campo; // the field's bytes while the picture is as they hold it
    QScrollArea *m_area;
    VistaLogo *m_vista;
    QPushButton *m_acquisisci;
    QPushButton *m_taglia;
    QPushButton *m_zoomMeno;
    QPushButton *m_zoomPiu;
    QLabel *m_labZoom;
    QMenu *m_menu;
};

} // namespace images
