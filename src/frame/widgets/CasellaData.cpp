// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/widgets/CasellaData.h"

#include "frame/Language.h"
#include "frame/PublicState.h"
#include "frame/TestoCasella.h"

#include <QAction>
#include <QCalendarWidget>
#include <QKeyEvent>
#include <QStyle>
#include <QVBoxLayout>

namespace frame {

CasellaData::CasellaData(QWidget *parent) : CasellaTesto(parent)
{
    setValidator(new ValidatoreCasella(PuoDiventareData, this));
    setPlaceholderText(SegnapostoData());
    QAction *apri = addAction(style()->standardIcon(QStyle::SP_ArrowDown), QLineEdit::TrailingPosition);
    connect(apri, &QAction::triggered, this, &CasellaData::apriCalendario);
}

std::optional<QDate> CasellaData::data() const
{
    return LeggeTestoData(text()).valore;
}

void CasellaData::impostaData(const std::optional<QDate> &data)
{
    mostra(TestoCasellaData(data));
}

void CasellaData::apriCalendario()
{
    if (m_calendario)
        return;
    auto *finestra = new QWidget(this, Qt::Popup);
    finestra->setAttribute(Qt::WA_DeleteOnClose);
    m_calendario = new QCalendarWidget(finestra);
    m_calendario->setGridVisible(true);
    const QDate mostrata = data().value_or(QDate::currentDate());
    m_calendario->setSelectedDate(mostrata);
    m_calendario->setCurrentPage(mostrata.year(), mostrata.month());
    auto *layout = new QVBoxLayout(finestra);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_calendario);
    const auto scegli = [this, finestra](const QDate &d) {
        impostaData(d);
        finestra->close();
        setFocus();
    };
    connect(m_calendario, &QCalendarWidget::clicked, this, scegli);
    connect(m_calendario, &QCalendarWidget::activated, this, scegli);
    connect(finestra, &QObject::destroyed, this, [this] { m_calendario = nullptr; });
    finestra->adjustSize();
    finestra->move(mapToGlobal(rect().bottomLeft()));
    finestra->show();
    m_calendario->setFocus();
}

std::optional<QString> CasellaData::normalizza(const QString &testo) const
{
    const Lettura<QDate> l = LeggeTestoData(testo);
    return l.valida ? std::optional<QString>(TestoCasellaData(l.valore)) : std::nullopt;
}

QString CasellaData::messaggioRifiuto() const
{
    return TestoLingua("M0008"); // "The date entered is not valid."
}

void CasellaData::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_F4 || (event->key() == Qt::Key_Down && event->modifiers() & Qt::AltModifier)) {
        apriCalendario();
        return;
    }
    CasellaTesto::keyPressEvent(event);
}

} // namespace frame
