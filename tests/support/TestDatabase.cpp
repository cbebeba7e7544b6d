// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestDatabase.h"

#include "frame/Language.h"
#include "frame/PublicState.h"
#include "store/Connections.h"
#include "store/Schema.h"

#include <QDir>

void loadLanguage(const QString &name)
{
    frame::pub().CartellaProgramma = QStringLiteral(VELTANO_SOURCE_DIR "/");
    frame::pub().TestiLingua.clear();
    frame::CaricaFileLingua(name);
}

TestDatabase::TestDatabase()
{
    store::Schema::writeDeliveredDatabases(m_dir.path(), 1);
    frame::pub().Pathdata = path();
    frame::pub().AnnoEsercizio = QStringLiteral("2026");
    frame::pub().IdUtenteCorrente = 1;
    frame::pub().UtenteCorrente = QStringLiteral("administrator");
    loadLanguage(QStringLiteral("English"));
}

TestDatabase::~TestDatabase()
{
    store::Connections::closeAll();
}

QString TestDatabase::path() const
{
    return QDir(m_dir.path()).filePath(QStringLiteral("basedati.mdb"));
}
