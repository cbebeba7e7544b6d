// SPDX-License-Identifier: GPL-3.0-or-later
#include "forms/ui/LayoutGriglia.h"

#include "frame/Language.h"
#include "frame/Prompter.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHeaderView>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QStandardPaths>
#include <QTableView>

namespace forms {

namespace {

// Marks our files, so that a foreign file of the same name is never read as a layout.
const QLatin1String Formato("veltano-grid-layouts");
constexpr int Versione = 1;
constexpr int LarghezzaMassima = 20000;

QString nomeDelFile(const QString &nomeFile)
{
    return nomeFile.isEmpty() ? QStringLiteral("TdbLayout") : nomeFile;
}

QString percorsoUtente(const QString &nomeFile)
{
    return QDir(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)).filePath(nomeDelFile(nomeFile));
}

QString percorsoProgramma(const QString &nomeFile)
{
    if (frame::pub().CartellaProgramma.isEmpty())
        return QString();
    return frame::ConBarra(frame::pub().CartellaProgramma) + nomeDelFile(nomeFile);
}

// The file to read: the program folder's when it has one, else the user's.
QString percorsoLettura(const QString &nomeFile)
{
    const QString programma = percorsoProgramma(nomeFile);
    return !programma.isEmpty() && QFileInfo::exists(programma) ? programma : percorsoUtente(nomeFile);
}

QString nomeLayout(const QTableView &griglia, const QString &nome)
{
    if (!nome.isEmpty())
        return nome;
    return griglia.objectName().isEmpty() ? QStringLiteral("griglia") : griglia.objectName();
}

// The name of a column in the file: its field, or its caption.
QString nomeColonna(const QAbstractItemModel &model, int logica)
{
    const QVariant campo = model.headerData(logica, Qt::Horizontal, Qt::UserRole);
    if (campo.metaType().id() == QMetaType::QString && !campo.toString().isEmpty())
        return campo.toString();
    return model.headerData(logica, Qt::Horizontal, Qt::DisplayRole).toString();
}

// The layouts of a file, or an empty object when it is missing, unreadable or not ours.
QJsonObject leggiLayouts(const QString &percorso)
{
    QFile f(percorso);
    if (!f.open(QIODevice::ReadOnly))
        return {};
    // A layout file is small; something far larger is not one.
    if (f.size() > 4 * 1024 * 1024)
        return {};
    QJsonParseError errore;
    const QJsonDocument doc = QJsonDocument::fromJson(f.readAll(), &errore);
    if (errore.error != QJsonParseError::NoError || !doc.isObject())
        return {};
    const QJsonObject radice = doc.object();
    if (radice.value(QLatin1String("format")).toString() != Formato || radice.value(QLatin1String("version")).toInt() != Versione
        || !radice.value(QLatin1String("layouts")).isObject())
        return {};
    return radice.value(QLatin1String("layouts")).toObject();
}

} // namespace

QString PercorsoLayoutGriglia(const QString &nomeFile)
{
    const QString cartella = frame::ConBarra(frame::pub().CartellaProgramma);
    const QFileInfo info(cartella);
    if (!frame::pub().CartellaProgramma.isEmpty() && info.isDir() && info.isWritable())
        return percorsoProgramma(nomeFile);
    return percorsoUtente(nomeFile);
}

void LayoutPredefinitoGriglia(QTableView &griglia)
{
    QHeaderView *h = griglia.horizontalHeader();
    const QAbstractItemModel *model = griglia.model();
    if (!model)
        return;
    for (int logica = 0; logica < model->columnCount(); ++logica) {
        h->moveSection(h->visualIndex(logica), logica);
        h->setSectionHidden(logica, false);
        h->resizeSection(logica, h->defaultSectionSize());
    }
}

bool SalvaLayoutGriglia(QTableView &griglia, const QString &nome, const QString &nomeFile)
{
    const QAbstractItemModel *model = griglia.model();
    if (!model)
        return false;
    const QHeaderView *h = griglia.horizontalHeader();
    QJsonArray colonne;
    for (int visiva = 0; visiva < h->count(); ++visiva) {
        const int logica = h->logicalIndex(visiva);
        QJsonObject c;
        c.insert(QLatin1String("field"), nomeColonna(*model, logica));
        c.insert(QLatin1String("width"), h->sectionSize(logica));
        c.insert(QLatin1String("hidden"), h->isSectionHidden(logica));
        colonne.append(c);
    }

    const QString percorso = PercorsoLayoutGriglia(nomeFile);
    QDir().mkpath(QFileInfo(percorso).absolutePath());
    // The other grids' layouts stay; a file that isn't ours is replaced.
    QJsonObject layouts = leggiLayouts(percorso);
    layouts.insert(nomeLayout(griglia, nome), QJsonObject{{QLatin1String("columns"), colonne}});
    const QJsonObject radice{{QLatin1String("format"), Formato},
                             {QLatin1String("version"), Versione},
                             {QLatin1String("layouts"), layouts}};
    QSaveFile f(percorso);
    if (!f.open(QIODevice::WriteOnly))
        return false;
    f.write(QJsonDocument(radice).toJson(QJsonDocument::Indented));
    return f.commit();
}

bool CaricaLayoutGriglia(QTableView &griglia, const QString &nome, const QString &nomeFile)
{
    const QAbstractItemModel *model = griglia.model();
    if (!model)
        return false;
    LayoutPredefinitoGriglia(griglia);
    const QJsonValue layout = leggiLayouts(percorsoLettura(nomeFile)).value(nomeLayout(griglia, nome));
    if (!layout.isObject() || !layout.toObject().value(QLatin1String("columns")).isArray())
        return false;

    QHash<QString, int> perNome;
    for (int logica = 0; logica < model->columnCount(); ++logica)
        perNome.insert(nomeColonna(*model, logica), logica);

    QHeaderView *h = griglia.horizontalHeader();
    int visiva = 0;
    const QJsonArray colonne = layout.toObject().value(QLatin1String("columns")).toArray();
    for (const QJsonValue &v : colonne) {
        if (!v.isObject())
            continue;
        const QJsonObject c = v.toObject();
        const auto trovata = perNome.constFind(c.value(QLatin1String("field")).toString());
        if (trovata == perNome.constEnd())
            continue; // a field the query no longer has
        const int logica = *trovata;
        perNome.erase(trovata); // a name listed twice counts once
        h->moveSection(h->visualIndex(logica), visiva++);
        const int larghezza = c.value(QLatin1String("width")).toInt(-1);
        if (larghezza >= 0 && larghezza <= LarghezzaMassima)
            h->resizeSection(logica, larghezza);
        h->setSectionHidden(logica, c.value(QLatin1String("hidden")).toBool(false));
    }
    return true;
}

bool EliminaLayoutGriglia(QTableView &griglia, const QString &nomeFile, frame::Prompter &prompter)
{
    if (prompter.question(frame::TestoLingua("M0090"), frame::Prompter::Buttons::OkCancel, frame::Prompter::Answer::Cancel,
                          QString(), frame::Prompter::Icon::Information)
        != frame::Prompter::Answer::Ok)
        return false;
    bool eliminato = false;
    for (const QString &percorso : {percorsoProgramma(nomeFile), percorsoUtente(nomeFile)})
        if (!percorso.isEmpty() && QFileInfo::exists(percorso) && QFile::remove(percorso))
            eliminato = true;
    if (!eliminato) {
        prompter.information(frame::TestoLingua("M0092"));
        return false;
    }
    prompter.information(frame::TestoLingua("M0091"));
    LayoutPredefinitoGriglia(griglia);
    griglia.viewport()->update();
    return true;
}

} // namespace forms
