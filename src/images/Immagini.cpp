// SPDX-License-Identifier: GPL-3.0-or-later
#include "images/Immagini.h"

#include "frame/Language.h"

#include <QBuffer>
#include <QDir>
#include <QFileInfo>
#include <QImageReader>
#include <QImageWriter>

#include <cmath>
#include <cstdlib>

namespace images {

namespace {

// Steps of the zoom are whole hundredths: rounding after each step keeps 0.1
// and 3.9 reachable exactly, so the limits stop where they should.
double centesimi(double valore)
{
    return std::round(valore * 100.0) / 100.0;
}

} // namespace

QVariant ImmagineInCampo(const QImage &immagine)
{
    if (immagine.isNull())
        return QVariant();
    QByteArray byte;
    QBuffer buffer(&byte);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter scrittore(&buffer, "png");
    if (!scrittore.write(immagine))
        return QVariant();
    return byte;
}

QImage ImmagineDaCampo(const QVariant &valore)
{
    if (valore.isNull())
        return QImage();
    const QByteArray byte = valore.toByteArray();
    QBuffer buffer;
    buffer.setData(byte);
    buffer.open(QIODevice::ReadOnly);
    QImageReader lettore(&buffer);
    // A field is only ever as large as a stored logo; a bigger size is damage, not a picture.
    if (const QSize dim = lettore.size(); dim.isValid() && qint64(dim.width()) * dim.height() > MassimoPixel)
        return QImage();
    return lettore.read();
}

FileImmagine CaricaFileImmagine(const QString &percorso)
{
    const QFileInfo info(percorso);
    const QString nome = QDir::toNativeSeparators(percorso);
    if (info.isFile() && info.size() == 0)
        return {QImage(), frame::TestoLingua("CAP47").arg(nome)}; // The file "%1" is empty.
    QImageReader lettore(percorso);
    // Decoding needs width x height x 4 bytes: the limit stops a forged header too.
    lettore.setAllocationLimit(int(MassimoPixel * 4 / (1024 * 1024)) + 1);
    const QSize dim = lettore.size();
    if (dim.isValid() && qint64(dim.width()) * dim.height() > MassimoPixel) {
        // CAP48: "%1" is too large for a logo: %2 x %3 pixels, at most %4 million pixels.
        return {QImage(), frame::TestoLingua("CAP48").arg(nome, QString::number(dim.width()),
                                                          QString::number(dim.height()),
                                                          QString::number(MassimoPixel / 1'000'000))};
    }
    QImage immagine = lettore.read();
    if (immagine.isNull())
        return {QImage(), frame::TestoLingua("CAP46").arg(nome)}; // "%1" can't be read as an image
    return {immagine, QString()};
}

std::optional<QRect> RettangoloTaglio(int sinistra, int alto, int destra, int basso)
{
    if (sinistra < 0 || alto < 0 || destra < 0 || basso < 0)
        return std::nullopt;
    return QRect(std::min(sinistra, destra), std::min(alto, basso), std::abs(destra - sinistra),
                 std::abs(basso - alto));
}

QImage Ritaglia(const QImage &immagine, const QRect &rettangolo)
{
    const QRect parte = rettangolo.intersected(immagine.rect());
    return parte.isEmpty() ? QImage() : immagine.copy(parte);
}

double FattoreZoom(const QString &testo)
{
    bool ok = false;
    const double fattore = testo.trimmed().toDouble(&ok);
    return ok && fattore > 0 ? fattore : 1.0;
}

QString TestoFattore(double fattore)
{
    return QString::number(fattore);
}

double ZoomMeno(double fattore)
{
    return fattore > 0.1 ? centesimi(fattore - 0.05) : fattore;
}

double ZoomPiu(double fattore)
{
    return fattore < 3.9 ? centesimi(fattore + 0.05) : fattore;
}

QString TestoZoom(double fattore)
{
    return QString::number(std::lround(fattore * 100.0)) + QLatin1Char('%');
}

QImage ApplicaZoom(const QImage &immagine, double fattore)
{
    if (immagine.isNull())
        return immagine;
    const int larghezza = std::max(1, int(std::lround(immagine.width() * fattore)));
    const int altezza = std::max(1, int(std::lround(immagine.height() * fattore)));
    return immagine.scaled(larghezza, altezza, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

} // namespace images
