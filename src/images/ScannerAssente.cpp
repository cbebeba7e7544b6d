// SPDX-License-Identifier: GPL-3.0-or-later
// The scanner of a build without SANE: it finds no device and says why.
#include "images/Scanner.h"

namespace images {

Scanner::Scanner() = default;
Scanner::~Scanner() = default;

bool Scanner::supportato()
{
    return false;
}

QList<Scanner::Dispositivo> Scanner::dispositivi()
{
    return {};
}

Scanner::Esito Scanner::acquisisci(const QString &, QImage &immagine, const QMap<QString, QString> &)
{
    immagine = QImage();
    return Esito::SenzaSupporto;
}

} // namespace images
