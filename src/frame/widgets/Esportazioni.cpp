// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/widgets/Esportazioni.h"

#include "frame/Language.h"

#include <QAction>
#include <QFileDialog>
#include <QMessageBox>
#include <QToolBar>

namespace frame {

namespace {

void salva(QWidget *parent, const QString &titolo, const char *chiave, const QString &estensione, const QString &filtro,
           const ScriveFile &scrive)
{
    const QString path = QFileDialog::getSaveFileName(parent, TestoLingua(chiave), titolo + estensione, filtro);
    if (path.isEmpty())
        return;
    if (const QString errore = scrive(path); !errore.isEmpty())
        QMessageBox::warning(parent, titolo, errore);
}

} // namespace

void SalvaCsv(QWidget *parent, const QString &titolo, const ScriveFile &csv)
{
    salva(parent, titolo, "CAP65", QStringLiteral(".csv"), QStringLiteral("CSV (*.csv)"), csv); // "Save as a CSV file"
}

void AggiungeEsportazioni(QToolBar &bar, const QString &titolo, ScriveFile pdf, ScriveFile csv)
{
    bar.addSeparator();
    QAction *aPdf = bar.addAction(QStringLiteral("PDF"));
    aPdf->setToolTip(TestoLingua("CAP13")); // "Save as a PDF file"
    aPdf->setObjectName(QStringLiteral("savePdf"));
    QObject::connect(aPdf, &QAction::triggered, &bar, [&bar, titolo, pdf] {
        salva(bar.window(), titolo, "CAP13", QStringLiteral(".pdf"), QStringLiteral("PDF (*.pdf)"), pdf);
    });
    QAction *aCsv = bar.addAction(QStringLiteral("CSV"));
    aCsv->setToolTip(TestoLingua("CAP65"));
    aCsv->setObjectName(QStringLiteral("saveCsv"));
    QObject::connect(aCsv, &QAction::triggered, &bar, [&bar, titolo, csv] { SalvaCsv(bar.window(), titolo, csv); });
}

} // namespace frame
