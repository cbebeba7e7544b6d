// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "store/FieldKind.h"

#include <QStyledItemDelegate>

namespace forms {

// The in-grid editor of a record list, one kind of box per field kind, from the
// field's declared type: an amount or a number refusing keys that can't make
// one, a whole number, a date in the program's date box, and text cut at the
// field's size. A date that can't be read is refused with its message and the
// cell stays in edit; what is written is the program value, checked by the model.
class EditoreCampi final : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;
    // The box of a field's kind; nullptr for a kind without one of its own.
    static QWidget *creaCasella(const store::FieldInfo &campo, QWidget *parent);

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override;

protected:
    bool eventFilter(QObject *editor, QEvent *event) override;
};

} // namespace forms
