// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QString>
#include <QTemporaryDir>

// A delivered working database in a scratch folder, made the program's
// `Pathdata`, with the program folder pointing at the source tree's languages.
// The English texts are loaded. The connection is closed when the fixture goes.
class TestDatabase {
public:
    TestDatabase();
    ~TestDatabase();
    QString folder() const { return m_dir.path(); }
    QString path() const;

private:
    QTemporaryDir m_dir;
};

// Points the program at the source tree and loads a language by name.
void loadLanguage(const QString &name);
