// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QDateEdit>

#include <optional>

namespace frame {

// A date box that may also hold no date: it shows blank, and Delete or
// Backspace over the whole text empties it. Dates show in the user's format.
class CasellaData final : public QDateEdit {
    Q_OBJECT

public:
    explicit CasellaData(QWidget *parent = nullptr);
    std::optional<QDate> data() const;
    void impostaData(const std::optional<QDate> &data);

protected:
    void keyPressEvent(QKeyEvent *event) override;
};

} // namespace frame
