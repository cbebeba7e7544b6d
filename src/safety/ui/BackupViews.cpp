// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/ui/BackupViews.h"

#include "frame/Language.h"
#include "frame/Prompter.h"
#include "frame/Routines.h"
#include "store/DbError.h"

#include <QApplication>
#include <QHeaderView>
#include <QProgressDialog>
#include <QTableView>

namespace {

enum Column { ColData, ColUtilizzatore, ColNote, ColPercorso, ColNomeFile, ColumnCount };

// Steps of the progress bar: byte counts of a large file do not fit its int range.
constexpr int ProgressSteps = 1000;
// Short work shows no box at all.
constexpr int ShowAfterMs = 400;

} // namespace

void BackupCatalogueModel::reload()
{
    QVector<safety::CatalogueEntry> rows = safety::readCatalogue();
    beginResetModel();
    m_rows = std::move(rows);
    endResetModel();
}

int BackupCatalogueModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int BackupCatalogueModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant BackupCatalogueModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size() || (role != Qt::DisplayRole && role != Qt::ToolTipRole))
        return QVariant();
    const safety::CatalogueEntry &e = m_rows.at(index.row());
    switch (index.column()) {
    case ColData: return frame::TestoData(e.data, true);
    case ColUtilizzatore: return e.utilizzatore;
    case ColNote: return e.note;
    case ColPercorso: return e.percorso;
    case ColNomeFile: return e.nomeFile;
    default: return QVariant();
    }
}

QVariant BackupCatalogueModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    // The user and note columns are captioned in the user's language; the others keep their field names.
    switch (section) {
    case ColData: return frame::TestoLingua("M0209");
    case ColUtilizzatore: return frame::TestoLingua("M0176");
    case ColNote: return frame::TestoLingua("M0192");
    case ColPercorso: return frame::TestoLingua("CAP17");
    case ColNomeFile: return frame::TestoLingua("CAP18");
    default: return QVariant();
    }
}

CatalogueGrid::CatalogueGrid(QTableView *view) : QObject(view), m_view(view), m_model(new BackupCatalogueModel(view))
{
    m_view->setModel(m_model);
    m_view->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_view->setSelectionMode(QAbstractItemView::SingleSelection);
    m_view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_view->setAlternatingRowColors(true);
    m_view->setWordWrap(false);
    m_view->verticalHeader()->hide();
    m_view->verticalHeader()->setDefaultSectionSize(m_view->fontMetrics().height() + 6);
    m_view->horizontalHeader()->setStretchLastSection(true);
    m_view->horizontalHeader()->setSectionResizeMode(QHeaderView::Interactive);
}

bool CatalogueGrid::open(frame::Prompter &prompter)
{
    if (!safety::catalogueExists())
        return false;
    try {
        reload();
    } catch (const store::DbError &e) {
        frame::MostraErrore(prompter, e.message());
        return false;
    }
    return true;
}

void CatalogueGrid::reload()
{
    m_model->reload();
    m_view->resizeColumnsToContents();
    if (m_model->rowCount() > 0)
        m_view->selectRow(0);
}

std::optional<safety::CatalogueEntry> CatalogueGrid::current() const
{
    const QModelIndex index = m_view->currentIndex();
    if (!index.isValid() || !m_view->selectionModel()->isRowSelected(index.row(), QModelIndex()))
        return std::nullopt;
    return m_model->entry(index.row());
}

WorkProgress::WorkProgress(QWidget *parent, const QString &label, frame::Prompter &prompter)
    : m_parent(parent), m_label(label), m_prompter(prompter)
{
}

WorkProgress::~WorkProgress()
{
    close();
}

void WorkProgress::start()
{
    m_dialog = std::make_unique<QProgressDialog>(m_label, QString(), 0, ProgressSteps, m_parent);
    m_dialog->setCancelButtonText(QProgressDialog::tr("Cancel"));
    m_dialog->setWindowModality(Qt::WindowModal);
    m_dialog->setMinimumDuration(ShowAfterMs);
    m_dialog->setMinimumWidth(360);
    m_dialog->setValue(0);
    m_tick.start();
    m_started.start();
    QApplication::setOverrideCursor(Qt::WaitCursor);
}

void WorkProgress::close()
{
    if (!m_dialog)
        return;
    QApplication::restoreOverrideCursor();
    m_dialog.reset();
}

void WorkProgress::message(const QString &text, Icon icon, const QString &title)
{
    close();
    m_prompter.message(text, icon, title);
}

frame::Prompter::Answer WorkProgress::question(const QString &text, Buttons buttons, Answer defaultAnswer,
                                               const QString &title, Icon icon)
{
    close();
    return m_prompter.question(text, buttons, defaultAnswer, title, icon);
}

std::optional<QString> WorkProgress::input(const QString &prompt, const QString &title, const QString &initial)
{
    close();
    return m_prompter.input(prompt, title, initial);
}

safety::Progress WorkProgress::callback()
{
    return [this](qint64 done, qint64 total) {
        if (!m_dialog)
            start();
        if (total > 0) {
            if (m_dialog->maximum() == 0)
                m_dialog->setRange(0, ProgressSteps);
            // Shows the box once the work has lasted a while; from then on it is modal and repaints the window.
            m_dialog->setValue(int(done * ProgressSteps / total));
        } else if (m_dialog->maximum() != 0 && m_started.elapsed() >= ShowAfterMs) {
            // Work of unknown length (the check of a restored copy): a moving bar.
            m_dialog->setRange(0, 0);
            m_dialog->show();
        }
        // Events are let in only while the modal box stands: before that a click
        // could reach the window and start a second piece of work inside this one.
        if (m_dialog->isVisible() && m_tick.elapsed() >= 40) {
            QCoreApplication::processEvents();
            m_tick.restart();
        }
        return !m_dialog->wasCanceled();
    };
}
