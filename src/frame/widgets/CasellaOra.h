// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "frame/widgets/CasellaTesto.h"

#include <QTime>

namespace frame {

// The time box of every window: "830", "0830", "8.30" or "08:30" typed, shown
// as "08:30" (with the seconds when `secondi`), empty for no time.
class CasellaOra final : public CasellaTesto {
    Q_OBJECT
    Q_PROPERTY(bool secondi READ secondi WRITE impostaSecondi)

public:
    explicit CasellaOra(QWidget *parent = nullptr);
    std::optional<QTime> ora() const;
    void impostaOra(const std::optional<QTime> &ora);
    bool secondi() const { return m_secondi; }
    void impostaSecondi(bool secondi);

protected:
    std::optional<QString> normalizza(const QString &testo) const override;
    QString messaggioRifiuto() const override;

private:
    bool m_secondi = false;
};

} // namespace frame
