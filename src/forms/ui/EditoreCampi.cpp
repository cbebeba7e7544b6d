// SPDX-License-Identifier: GPL-3.0-or-later
#include "forms/ui/EditoreCampi.h"

#include "forms/RecordsetModel.h"
#include "frame/widgets/CasellaData.h"
#include "frame/widgets/CasellaTesto.h"
#include "store/Currency.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QLocale>

#include <limits>

namespace forms {

namespace {

const store::FieldInfo *campo(const QModelIndex &index)
{
    const auto *m = qobject_cast<const RecordsetModel *>(index.model());
    return m ? m->campoDi(index.column()) : nullptr;
}

QChar separatore()
{
    return QLocale().decimalPoint().at(0);
}

} // namespace

QWidget *EditoreCampi::creaCasella(const store::FieldInfo &campo, QWidget *parent)
{
    using store::FieldKind;
    switch (campo.kind) {
    case FieldKind::Date:
        return new frame::CasellaData(parent);
    case FieldKind::Currency:
    case FieldKind::Double:
    case FieldKind::Long: {
        auto *e = new QLineEdit(parent);
        e->setValidator(frame::ValidatoreCasella::numero(e, campo.kind != FieldKind::Long));
        e->setAlignment(Qt::AlignRight);
        return e;
    }
    case FieldKind::Text:
    case FieldKind::Memo: {
        auto *e = new QLineEdit(parent);
        if (campo.size > 0)
            e->setMaxLength(campo.size);
        return e;
    }
    default:
        return nullptr;
    }
}

QWidget *EditoreCampi::createEditor(QWidget *parent, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const store::FieldInfo *f = campo(index);
    QWidget *w = f ? creaCasella(*f, parent) : nullptr;
    return w ? w : QStyledItemDelegate::createEditor(parent, option, index);
}

void EditoreCampi::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    const QVariant v = index.data(RecordsetModel::RuoloValore);
    if (auto *d = qobject_cast<frame::CasellaData *>(editor)) {
        d->impostaData(v.isValid() && !v.isNull() ? std::optional<QDate>(v.toDateTime().date()) : std::nullopt);
    } else if (auto *e = qobject_cast<QLineEdit *>(editor)) {
        if (v.userType() == qMetaTypeId<store::Currency>())
            e->setText(v.value<store::Currency>().toPlainText(separatore()));
        else if (v.userType() == QMetaType::Double)
            e->setText(QLocale().toString(v.toDouble(), 'g', QLocale::FloatingPointShortest));
        else
            e->setText(v.isValid() ? v.toString() : QString());
    } else {
        QStyledItemDelegate::setEditorData(editor, index);
    }
}

void EditoreCampi::setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const
{
    const store::FieldInfo *f = campo(index);
    if (auto *d = qobject_cast<frame::CasellaData *>(editor)) {
        if (!d->conferma())
            return;
        const std::optional<QDate> data = d->data();
        model->setData(index, data ? QVariant(QDateTime(*data, QTime(0, 0))) : QVariant());
        return;
    }
    auto *e = qobject_cast<QLineEdit *>(editor);
    if (!f || !e) {
        QStyledItemDelegate::setModelData(editor, model, index);
        return;
    }
    const QString testo = e->text().trimmed();
    using store::FieldKind;
    if (f->kind == FieldKind::Currency || f->kind == FieldKind::Double || f->kind == FieldKind::Long) {
        // An empty box is no value, and a text that the field can't hold stays a
        // text: the model's check says what each becomes.
        QVariant valore = testo.isEmpty() ? QVariant() : QVariant(testo);
        bool ok = false;
        if (f->kind == FieldKind::Currency) {
            store::Currency importo;
            if (store::Currency::parse(QString(testo).replace(separatore(), QLatin1Char('.')), &importo))
                valore = QVariant::fromValue(importo);
        } else if (f->kind == FieldKind::Long) {
            const qint64 n = QLocale().toLongLong(testo, &ok);
            if (ok && n >= std::numeric_limits<qint32>::min() && n <= std::numeric_limits<qint32>::max())
                valore = n; // a Long holds 32 bits
        } else if (const double d = QLocale().toDouble(testo, &ok); ok) {
            valore = d;
        }
        model->setData(index, valore);
        return;
    }
    model->setData(index, testo.isEmpty() ? QVariant() : QVariant(e->text()));
}

bool EditoreCampi::eventFilter(QObject *editor, QEvent *event)
{
    // A date box that refuses its text keeps the cell in edit, as it keeps its own focus.
    if (auto *d = qobject_cast<frame::CasellaData *>(editor)) {
        const bool esce = event->type() == QEvent::KeyPress
                          && QList<int>{Qt::Key_Tab, Qt::Key_Backtab, Qt::Key_Return, Qt::Key_Enter}.contains(
                              static_cast<QKeyEvent *>(event)->key());
        if ((esce || event->type() == QEvent::FocusOut) && !d->conferma())
            return true;
    }
    return QStyledItemDelegate::eventFilter(editor, event);
}

} // namespace forms
