// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/engine/CrystalReport.h"

#include "reports/engine/ReportRun.h"
#include "reports/engine/ReportTemplate.h"

#include "frame/Csv.h"
#include "frame/FileError.h"
#include "frame/Language.h"
#include "frame/Prompter.h"
#include "frame/PublicState.h"
#include "store/Connections.h"
#include "store/Database.h"
#include "store/DbError.h"

#include <QFileInfo>
#include <QPainter>
#include <QPdfWriter>
#include <QPrinter>
#include <QPrinterInfo>

#include <memory>

namespace reports {

using engine::ReportRun;
using engine::RunError;

struct CrystalReport::Data {
    explicit Data(frame::Prompter &p, Visore *v) : prompter(p), visore(v) {}
    frame::Prompter &prompter;
    Visore *visore;
    QString reportFileName, connect, selection, windowTitle, printFileName;
    QMap<int, QString> dataFiles, sortFields, formulas, graphTexts;
    int windowState = 0;
    double zoom = 0;
    int destination = ToWindow;
    bool discardSavedData = true;

    int pages = 0, rows = 0;
    QString error;
    bool keepLayout = false;
    QList<LaidOutSection> layout;
};

namespace {

// The indexed slots in index order, as the runs read them.
QStringList indexed(const QMap<int, QString> &m)
{
    QStringList out;
    for (auto it = m.cbegin(); it != m.cend(); ++it) {
        while (out.size() < it.key())
            out << QString();
        out << it.value();
    }
    return out;
}

void writePdf(ReportRun &run, const QString &path, const QString &title, QList<LaidOutSection> *keep)
{
    QPdfWriter writer(path);
    writer.setPageLayout(run.pageLayout());
    writer.setResolution(1200);
    writer.setTitle(title);
    writer.setCreator(QStringLiteral("Veltano"));
    QPainter painter;
    if (!painter.begin(&writer))
        throw RunError(QStringLiteral("The file %1 can't be written: check the folder and that the file isn't open elsewhere.")
                           .arg(QFileInfo(path).absoluteFilePath()));
    run.paint(painter, writer, keep);
    painter.end();
}

} // namespace

bool CrystalReport::esegui(const Lancio &l)
{
    setReportFileName(frame::pub().CartellaProgramma + l.modello + QStringLiteral(".rpt"));
    setConnect(QStringLiteral(";pwd=") + frame::pub().CodaConnessione);
    setDataFiles(0, frame::pub().Pathdata);
    setSelectionFormula(l.selezione);
    if (l.svuota) {
        d->formulas.clear();
        d->sortFields.clear();
    }
    for (auto it = l.formule.cbegin(); it != l.formule.cend(); ++it)
        setFormulas(it.key(), it.value());
    for (auto it = l.ordinamenti.cbegin(); it != l.ordinamenti.cend(); ++it)
        setSortFields(it.key(), it.value());
    for (auto it = l.testiGrafico.cbegin(); it != l.testiGrafico.cend(); ++it)
        setGraphText(it.key(), it.value());
    setWindowTitle(l.titoloFinestra);
    setWindowState(l.statoFinestra);
    setZoom(l.zoom);
    setDestination(l.destinazione);
    setDiscardSavedData(true);
    return setAction(1);
}

QString PagineReport::writeCsv(const QString &path) const
{
    try {
        const ReportRun::Tabella t = m_run->tabella();
        frame::ScriviCsv(path, t.intestazioni, qsizetype(t.righe.size()), [&t](qsizetype i) { return t.righe[size_t(i)]; });
        return QString();
    } catch (const RunError &e) {
        return e.message();
    } catch (const frame::FileError &e) {
        return e.message();
    } catch (const FormulaError &e) {
        return e.messaggio();
    }
}

PagineReport::PagineReport(std::shared_ptr<ReportRun> run, QString titolo) : m_run(std::move(run)), m_titolo(std::move(titolo)) {}

QPageLayout PagineReport::pageLayout() const { return m_run->pageLayout(); }

int PagineReport::pageCount() const { return m_run->pageCount(); }

void PagineReport::paint(QPainter &painter, QPagedPaintDevice &device) const { m_run->paint(painter, device, nullptr); }

void PagineReport::paintPage(QPainter &painter, QPaintDevice &device, int page) const { m_run->paintPage(painter, device, page); }

QString PagineReport::writePdf(const QString &path) const
{
    try {
        ::reports::writePdf(*m_run, path, m_titolo, nullptr);
        return QString();
    } catch (const RunError &e) {
        return e.message();
    }
}

CrystalReport::CrystalReport(frame::Prompter &prompter, Visore *visore) : d(new Data(prompter, visore)) {}

CrystalReport::~CrystalReport()
{
    delete d;
}

void CrystalReport::setReportFileName(const QString &path) { d->reportFileName = path; }
void CrystalReport::setConnect(const QString &connect) { d->connect = connect; }
void CrystalReport::setDataFiles(int index, const QString &path) { d->dataFiles.insert(index, path); }
void CrystalReport::setSelectionFormula(const QString &formula) { d->selection = formula; }
void CrystalReport::setSortFields(int index, const QString &field) { d->sortFields.insert(index, field); }
void CrystalReport::setFormulas(int index, const QString &assignment) { d->formulas.insert(index, assignment); }
void CrystalReport::setGraphText(int index, const QString &text) { d->graphTexts.insert(index, text); }
void CrystalReport::setWindowTitle(const QString &title) { d->windowTitle = title; }
void CrystalReport::setWindowState(int state) { d->windowState = state; }
void CrystalReport::setDestination(int destination) { d->destination = destination; }
void CrystalReport::setPrintFileName(const QString &path) { d->printFileName = path; }
void CrystalReport::setDiscardSavedData(bool discard) { d->discardSavedData = discard; }
void CrystalReport::setZoom(double zoom) { d->zoom = zoom; }

int CrystalReport::lastPageCount() const { return d->pages; }
int CrystalReport::lastRowCount() const { return d->rows; }
const QString &CrystalReport::lastError() const { return d->error; }
void CrystalReport::setKeepLayout(bool keep) { d->keepLayout = keep; }
const QList<LaidOutSection> &CrystalReport::lastLayout() const { return d->layout; }

QList<LaidOutSection> CrystalReport::laidOut(const QString &section) const
{
    QList<LaidOutSection> out;
    for (const LaidOutSection &s : d->layout)
        if (s.section.startsWith(section, Qt::CaseInsensitive))
            out << s;
    return out;
}

bool CrystalReport::setAction(int action)
{
    if (action != 1)
        return true; // only 1 runs; other values change nothing, as with the control this engine replaces
    d->error.clear();
    try {
        tpl::Template t = tpl::loadTemplate(d->reportFileName);
        const QString database = d->dataFiles.value(0).trimmed();
        if (database.isEmpty())
            throw RunError(QStringLiteral("The report %1 was given no database to read.").arg(t.fileName));
        if (!QFileInfo::exists(database))
            throw RunError(QStringLiteral("The database %1 of the report %2 can't be found.").arg(database, t.fileName));
        QString key = store::keyFromConnect(d->connect);
        if (key.isEmpty())
            key = QLatin1String(store::DatabaseKey);
        store::Database &db = store::Connections::get(database, key);

        engine::RunSettings settings;
        settings.selection = d->selection;
        settings.sortFields = indexed(d->sortFields);
        settings.formulas = indexed(d->formulas);
        settings.graphTexts = indexed(d->graphTexts);
        const QString title = d->windowTitle.isEmpty() ? (t.title.isEmpty() ? QFileInfo(t.fileName).completeBaseName() : t.title)
                                                       : d->windowTitle;
        auto run = std::make_shared<ReportRun>(std::move(t), settings, db);
        run->readRows(db);
        const int pages = run->paginate();
        QList<LaidOutSection> layout;
        QList<LaidOutSection> *keep = d->keepLayout ? &layout : nullptr;

        switch (d->destination) {
        case ToFile:
            if (d->printFileName.trimmed().isEmpty())
                throw RunError(QStringLiteral("The report %1 is to be written to a file, but no file was named.").arg(run->templ().fileName));
            writePdf(*run, d->printFileName, title, keep);
            break;
        case ToPrinter: {
            const QPrinterInfo info = QPrinterInfo::defaultPrinter();
            if (info.isNull())
                throw RunError(frame::TestoLingua("CAP11").arg(title)); // no printer: open it on screen and save a PDF
            QPrinter printer(info, QPrinter::HighResolution);
            printer.setFullPage(true);
            printer.setPageLayout(run->pageLayout());
            printer.setDocName(title);
            QPainter painter;
            if (!painter.begin(&printer))
                throw RunError(frame::TestoLingua("CAP12").arg(info.printerName())); // the printer is not ready
            run->paint(painter, printer, keep);
            painter.end();
            break;
        }
        default:
            if (!d->visore)
                throw RunError(QStringLiteral("The report %1 can't be shown here: print it or save it as a PDF file.").arg(title));
            d->visore->mostra(std::make_shared<const PagineReport>(run, title), d->windowState, d->zoom);
            break;
        }
        d->pages = pages;
        d->rows = run->rowCount();
        if (d->keepLayout)
            d->layout = layout;
        return true;
    } catch (const tpl::TemplateError &e) {
        d->error = e.message();
    } catch (const RunError &e) {
        d->error = e.message();
    } catch (const FormulaError &e) {
        d->error = QStringLiteral("A formula of the report can't be worked out: %1 (character %2, at \"%3\").")
                       .arg(e.messaggio())
                       .arg(e.posizione() + 1)
                       .arg(e.token());
    } catch (const store::DbError &e) {
        d->error = QStringLiteral("The database of the report can't be read: %1").arg(e.message());
    } catch (const std::exception &e) {
        d->error = QStringLiteral("The report can't be made: %1").arg(QString::fromLocal8Bit(e.what()));
    }
    d->prompter.message(d->error, frame::Prompter::Icon::Critical);
    return false;
}

} // namespace reports
