// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QLineEdit>
#include <QValidator>

#include <functional>
#include <optional>

namespace frame {

// Refuses a key that would leave a text its box can never read; any other text
// is let through, so that leaving the box always runs its own check.
class ValidatoreCasella final : public QValidator {
    Q_OBJECT

public:
    ValidatoreCasella(std::function<bool(const QString &)> ammesso, QObject *parent);
    // For a number box: digits, and with `decimali` a sign and one separator.
    static ValidatoreCasella *numero(QObject *parent, bool decimali);
    State validate(QString &input, int &pos) const override;

private:
    std::function<bool(const QString &)> m_ammesso;
};

// A box whose text is read as a value when the user leaves it (Tab, Enter, a
// click elsewhere): a readable text is written back as the program shows that
// value, so the box shows exactly what is used; anything else is refused with
// a message and the box goes back to the value it held.
class CasellaTesto : public QLineEdit {
    Q_OBJECT

public:
    // Reads the text now; false when it was refused.
    bool conferma();
    // Confirms every box inside `finestra`; false when one refused, now or on
    // its last leave, so that an action right after a refusal does not run.
    static bool confermaTutte(const QWidget *finestra);

signals:
    void rifiutata(const QString &messaggio);

protected:
    explicit CasellaTesto(QWidget *parent);
    // The text that shows the value read from `testo`, or std::nullopt to refuse it.
    virtual std::optional<QString> normalizza(const QString &testo) const = 0;
    virtual QString messaggioRifiuto() const = 0;
    // Shows a value's text and takes it as the one to go back to.
    void mostra(const QString &testo);
    void focusInEvent(QFocusEvent *event) override;

private:
    QString m_accettato;
    bool m_rifiuto = false;
};

} // namespace frame
