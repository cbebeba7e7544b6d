// SPDX-License-Identifier: GPL-3.0-or-later
#include "CasellaData.h"

#include <PublicState.h>

#include <QKeyEvent>
#include <QLineEdit>

namespace frame {

namespace {
// The day that stands for "no date"; shown as a blank.
const QDate Nessuna(1753, 1, 1);
} // namespace

CasellaData::CasellaData(QWidget *parent) : QDateEdit(parent)
{
    setCalendarPopup(true);
    setMinimumDate(Nessuna);
    setSpecialValueText(QStringLiteral(" "));
    QString formato = pub().FormatoData;
    setDisplayFormat(formato.replace(QLatin1String("mm"), QLatin1String("MM")));
    setDate(QDate::currentDate());
}

std::optional<QDate> CasellaData::data() const
{
    if (date() == Nessuna)
        return std::nullopt;
    return date();
}

void CasellaData::impostaData(const std::optional<QDate> &data)
{
    setDate(data.value_or(Nessuna));
}

void CasellaData::keyPressEvent(QKeyEvent *event)
{
    const bool cancella = event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace;
    if (cancella && (lineEdit()->selectedText() == lineEdit()->text() || date() == Nessuna)) {
        setDate(Nessuna);
        return;
    }
    QDateEdit::keyPressEvent(event);
}

} // namespace frame
