// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/widgets/CasellaTesto.h"

#include "frame/Routines.h"
#include "frame/TestoCasella.h"

#include <QApplication>
#include <QFocusEvent>
#include <QToolTip>

namespace frame {

ValidatoreCasella::ValidatoreCasella(std::function<bool(const QString &)> ammesso, QObject *parent)
    : QValidator(parent), m_ammesso(std::move(ammesso))
{
}

ValidatoreCasella *ValidatoreCasella::numero(QObject *parent, bool decimali)
{
    return new ValidatoreCasella([decimali](const QString &t) { return PuoDiventareNumero(t, decimali); }, parent);
}

QValidator::State ValidatoreCasella::validate(QString &input, int &) const
{
    return m_ammesso(input) ? Acceptable : Invalid;
}

CasellaTesto::CasellaTesto(QWidget *parent) : QLineEdit(parent)
{
    connect(this, &QLineEdit::editingFinished, this, &CasellaTesto::conferma);
    // Editing again clears a refusal that no action has seen yet.
    connect(this, &QLineEdit::textEdited, this, [this] { m_rifiuto = false; });
}

bool CasellaTesto::conferma()
{
    if (const std::optional<QString> t = normalizza(text())) {
        mostra(*t);
        return true;
    }
    const QString messaggio = messaggioRifiuto();
    setText(m_accettato);
    m_rifiuto = true;
    QApplication::beep();
    QToolTip::showText(mapToGlobal(rect().bottomLeft()), messaggio, this);
    MostraStato(messaggio);
    emit rifiutata(messaggio);
    return false;
}

bool CasellaTesto::confermaTutte(const QWidget *finestra)
{
    bool tutte = true;
    for (CasellaTesto *c : finestra->findChildren<CasellaTesto *>()) {
        const bool rifiutoPrecedente = std::exchange(c->m_rifiuto, false);
        tutte = c->conferma() && !rifiutoPrecedente && tutte;
        c->m_rifiuto = false;
    }
    return tutte;
}

void CasellaTesto::focusInEvent(QFocusEvent *event)
{
    QLineEdit::focusInEvent(event);
    // Typing replaces what the box shows, however the focus came; a click places the cursor.
    if (event->reason() != Qt::MouseFocusReason)
        selectAll();
}

void CasellaTesto::mostra(const QString &testo)
{
    m_accettato = testo;
    if (text() != testo)
        setText(testo);
}

} // namespace frame
