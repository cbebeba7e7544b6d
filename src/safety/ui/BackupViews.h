// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "frame/Prompter.h"
#include "safety/Backup.h"

#include <QAbstractTableModel>
#include <QElapsedTimer>

#include <memory>
#include <optional>

class QProgressDialog;
class QTableView;

// The catalogue of backups as the backup and restore windows list it: newest
// first, columns data, utilizzatore, note, Percorso, NomeFile. The catalogue is
// short (one row per backup kept), so it is read whole.
class BackupCatalogueModel final : public QAbstractTableModel {
    Q_OBJECT
public:
    using QAbstractTableModel::QAbstractTableModel;
    // Throws store::DbError.
    void reload();
    const safety::CatalogueEntry &entry(int row) const { return m_rows.at(row); }

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    QVector<safety::CatalogueEntry> m_rows;
};

// The grid TDBGrid1 of both windows over its model.
class CatalogueGrid final : public QObject {
    Q_OBJECT
public:
    explicit CatalogueGrid(QTableView *view);
    // Reads the catalogue for a window that opens: false, without a word, when
    // the catalogue file is missing; false after telling the user when it cannot be read.
    bool open(frame::Prompter &prompter);
    // Reads the catalogue again and makes the first (newest) row current. Throws store::DbError.
    void reload();
    std::optional<safety::CatalogueEntry> current() const;

private:
    QTableView *m_view;
    BackupCatalogueModel *m_model;
};

// A progress box for long file work, modal to its window. It stands only while
// the work reports progress, and only once the work has lasted a while: the
// box is made at the first report and closed before any question or message
// goes through it to `prompter`. Its callback keeps the window painted and stops
// the work when the user presses the box's button.
class WorkProgress final : public frame::Prompter {
public:
    WorkProgress(QWidget *parent, const QString &label, frame::Prompter &prompter);
    ~WorkProgress() override;
    WorkProgress(const WorkProgress &) = delete;
    WorkProgress &operator=(const WorkProgress &) = delete;
    safety::Progress callback();

    void message(const QString &text, Icon icon, const QString &title = QString()) override;
    Answer question(const QString &text, Buttons buttons, Answer defaultAnswer, const QString &title = QString(),
                    Icon icon = Icon::Question) override;
    std::optional<QString> input(const QString &prompt, const QString &title, const QString &initial) override;

private:
    void start();
    void close();

    QWidget *m_parent;
    QString m_label;
    frame::Prompter &m_prompter;
    std::unique_ptr<QProgressDialog> m_dialog;
    QElapsedTimer m_started;
    QElapsedTimer m_tick;
};
