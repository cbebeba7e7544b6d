// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "frame/widgets/CasellaTesto.h"

#include <QDate>

class QCalendarWidget;

namespace frame {

// The date box of every window: typed in the user's format with or without
// separators, shown in the program's format, empty for no date. The button at
// its end (or Alt+Down, F4) opens a calendar on the shown date, or on today.
class CasellaData final : public CasellaTesto {
    Q_OBJECT

public:
    explicit CasellaData(QWidget *parent = nullptr);
    // The date the box shows; std::nullopt when it is empty.
    std::optional<QDate> data() const;
    void impostaData(const std::optional<QDate> &data);
    void apriCalendario();
    // The calendar while it is open, else nullptr.
    QCalendarWidget *calendario() const { return m_calendario; }

protected:
    std::optional<QString> normalizza(const QString &testo) const override;
    QString messaggioRifiuto() const override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QCalendarWidget *m_calendario = nullptr;
};

} // namespace frame
