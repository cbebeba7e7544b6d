// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/Csv.h"

#include "frame/FileError.h"

#include <QFileInfo>
#include <QSaveFile>

namespace frame {

QChar SeparatoreCsv(const QLocale &locale)
{
    return locale.decimalPoint() == QLatin1String(",") ? QLatin1Char(';') : QLatin1Char(',');
}

QString RigaCsv(const QStringList &campi, QChar separatore)
{
    QString riga;
    for (qsizetype i = 0; i < campi.size(); ++i) {
        if (i)
            riga += separatore;
        const QString &c = campi.at(i);
        if (c.contains(separatore) || c.contains(QLatin1Char('"')) || c.contains(QLatin1Char('\n')) || c.contains(QLatin1Char('\r'))) {
            QString doppio = c;
            doppio.replace(QLatin1Char('"'), QStringLiteral("\"\""));
            riga += QLatin1Char('"') + doppio + QLatin1Char('"');
        } else {
            riga += c;
        }
    }
    return riga;
}

void ScriviCsv(const QString &path, const QStringList &intestazioni, qsizetype righe,
               const std::function<QStringList(qsizetype)> &riga)
{
    const QChar sep = SeparatoreCsv();
    QSaveFile file(path);
    const auto fallito = [&] {
        return FileError(path, QStringLiteral("The file %1 can't be written: %2")
                                   .arg(QFileInfo(path).absoluteFilePath(), file.errorString()));
    };
    if (!file.open(QIODevice::WriteOnly))
        throw fallito();
    QByteArray blocco = RigaCsv(intestazioni, sep).toUtf8() + "\r\n";
    for (qsizetype i = 0; i < righe; ++i) {
        blocco += RigaCsv(riga(i), sep).toUtf8();
        blocco += "\r\n";
        if (blocco.size() > (1 << 16)) {
            if (file.write(blocco) != blocco.size())
                throw fallito();
            blocco.clear();
        }
    }
    if (file.write(blocco) != blocco.size() || !file.commit())
        throw fallito();
}

} // namespace frame
