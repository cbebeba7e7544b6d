// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "frame/Language.h"
#include "frame/PublicState.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace bench {

// Windows are drawn offscreen unless the caller chose a platform; call before
// the application object is made.
inline void SenzaSchermo()
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
}

// The public state a benchmark runs the program's logic in: the program folder
// beside the executable, English texts, the database at `path`, the fiscal year
// 2026 and the user administrator.
inline frame::PublicState &PreparaProgramma(const QString &path)
{
    auto &p = frame::pub();
    p.CartellaProgramma = QCoreApplication::applicationDirPath() + QLatin1Char('/');
    frame::CaricaFileLingua(QStringLiteral("English"));
    p.Pathdata = QFileInfo(path).absoluteFilePath();
    p.AnnoEsercizio = QStringLiteral("2026");
    p.IdUtenteCorrente = 1;
    return p;
}

} // namespace bench
