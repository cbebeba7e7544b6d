// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QImage>
#include <QRect>
#include <QString>
#include <QVariant>

#include <optional>

namespace images {

// The largest picture a logo may come from. A bigger file is refused from its
// header, before any pixel is decoded.
inline constexpr qint64 MassimoPixel = 40'000'000;

// The value of a long binary field for `immagine`: its PNG bytes, or a null
// value when there is no image (the field then holds null).
QVariant ImmagineInCampo(const QImage &immagine);
// The image a long binary field holds; a null image for a null, empty or
// undecodable value.
QImage ImmagineDaCampo(const QVariant &valore);

// A picture file read for a logo, or the reason it was refused.
struct FileImmagine {
    QImage immagine;
    QString errore; // for the user; empty when the image was read
};
// Refuses, each with its own text, a file that is missing or empty, one whose
// picture is larger than MassimoPixel, and one that is no readable image.
FileImmagine CaricaFileImmagine(const QString &percorso);

// The rectangle between two corners of a selection, whichever way it was
// dragged; none while a corner is unset (below 0).
std::optional<QRect> RettangoloTaglio(int sinistra, int alto, int destra, int basso);
// `immagine` cut to the part of `rettangolo` that lies on it; a null image when
// nothing of the rectangle does.
QImage Ritaglia(const QImage &immagine, const QRect &rettangolo);

// The zoom of a logo box: a factor kept as text, empty meaning 1.
double FattoreZoom(const QString &testo);
QString TestoFattore(double fattore);
// One step down (while above 0.1) or up (while below 3.9); otherwise unchanged.
double ZoomMeno(double fattore);
double ZoomPiu(double fattore);
// The zoom label: the factor as a whole percentage ("105%").
QString TestoZoom(double fattore);
// `immagine` resized to its size times `fattore`, at least one pixel each way.
QImage ApplicaZoom(const QImage &immagine, double fattore);

} // namespace images
