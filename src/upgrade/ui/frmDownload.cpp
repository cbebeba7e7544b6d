// SPDX-License-Identifier: GPL-3.0-or-later
#include "upgrade/ui/frmDownload.h"

#include "frame/Language.h"
#include "frame/PublicState.h"

#include <QApplication>
#include <QCloseEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QtMath>

namespace upgrade {

namespace {

constexpr int Larghezza = 400;
constexpr int Altezza = 36;

// The busy pointer while the read runs, back however it ends.
class Clessidra {
public:
    Clessidra() { QApplication::setOverrideCursor(Qt::BusyCursor); }
    ~Clessidra() { QApplication::restoreOverrideCursor(); }
    Clessidra(const Clessidra &) = delete;
    Clessidra &operator=(const Clessidra &) = delete;
};

QLabel *etichetta(QWidget *parent, const char *nome)
{
    auto *l = new QLabel(parent);
    l->setObjectName(QString::fromLatin1(nome));
    return l;
}

} // namespace

frmDownload::frmDownload(QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmDownload"));
    setWindowTitle(QString::fromLatin1(frame::TitoloApplicazione));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setFixedSize(Larghezza + 40, Altezza + 64);
    setWindowModality(Qt::ApplicationModal);

    m_fondo = new QWidget(this);
    m_fondo->setObjectName(QStringLiteral("PicBarra"));
    m_fondo->setGeometry(20, 16, Larghezza, Altezza);
    m_fondo->setStyleSheet(QStringLiteral("#PicBarra { background: white; border: 1px solid gray; }"));
    Lblprimopiano = etichetta(m_fondo, "Lblprimopiano");
    LblBarra = etichetta(m_fondo, "LblBarra");
    Lblprimopiano_o = etichetta(LblBarra, "Lblprimopiano_o");
    LblByte = etichetta(this, "LblByte");
    LblByte->hide();
    LblStop = etichetta(this, "LblStop");
    LblStop->setCursor(Qt::PointingHandCursor);
    LblStop->installEventFilter(this);

    QFont grande = font();
    grande.setPointSize(15);
    for (QLabel *l : {Lblprimopiano, Lblprimopiano_o}) {
        l->setFont(grande);
        l->setAlignment(Qt::AlignCenter);
        l->setGeometry(0, 0, Larghezza, Altezza);
    }
    LblBarra->setAutoFillBackground(true);
    LblBarra->setGeometry(0, 0, 0, Altezza);
    LblStop->setText(QStringLiteral("<u>") + frame::TestoLingua("M0144").remove(QLatin1Char('&')) + QStringLiteral("</u>"));
    LblStop->adjustSize();
    LblStop->move(20 + Larghezza - LblStop->width(), 16 + Altezza + 14);
}

frmDownload::~frmDownload() = default;

QString frmDownload::Download(const QString &url, const QString &file, qint64 totale, const QColor &barra,
                              const QColor &testo)
{
    // The text reads in `testo` on the empty part and in the background's colour over the bar.
    QPalette fondo = LblBarra->palette();
    fondo.setColor(QPalette::Window, barra);
    LblBarra->setPalette(fondo);
    Lblprimopiano->setStyleSheet(QStringLiteral("color: %1;").arg(testo.name()));
    Lblprimopiano_o->setStyleSheet(QStringLiteral("color: white;"));
    m_totale = totale;
    mostra(frame::TestoLingua("WITPL"), 0);

    CNetGet net;
    net.Init();
    net.SetStatusWindow(this);
    net.SetTimeout(m_timeout);
    m_net = &net;
    show();
    QString esito;
    {
        Clessidra clessidra;
        const qint64 letti = net.ReadUrl(url, file);
        if (!net.GetLastError().isEmpty())
            esito = net.GetLastError();
        else if (net.Fermato())
            esito = CNetGet::TranslateErrorCode(ErroreAnnullato);
        else if (letti == 0)
            esito = QStringLiteral("Error");
    }
    net.Term();
    net.SetStatusWindow(nullptr);
    m_net = nullptr;
    hide();
    return esito;
}

void frmDownload::testo(const QString &testo)
{
    LblBarra->setToolTip(testo);
}

void frmDownload::letti(qint64 byte)
{
    LblByte->setText(QString::number(byte));
    if (m_totale <= 0) {
        mostra(QString::number(qRound64(byte / 1024.0)) + QStringLiteral(" Kb"), 0);
        return;
    }
    // A body longer than announced stays at the full bar.
    const qint64 percento = std::min<qint64>(100, qRound64(double(byte) * 100.0 / double(m_totale)));
    mostra(QString::number(percento) + QLatin1Char('%'), int(Larghezza * percento / 100));
}

void frmDownload::mostra(const QString &testo, int larghezza)
{
    Lblprimopiano->setText(testo);
    Lblprimopiano_o->setText(testo);
    LblBarra->resize(larghezza, Altezza);
}

bool frmDownload::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == LblStop && event->type() == QEvent::MouseButtonRelease
        && static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton) {
        if (m_net)
            m_net->StopMe();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

// Closing the window or pressing Escape stops the read; the window goes when the read has ended.
void frmDownload::closeEvent(QCloseEvent *event)
{
    if (m_net) {
        m_net->StopMe();
        event->ignore();
        return;
    }
    QDialog::closeEvent(event);
}

void frmDownload::reject()
{
    if (m_net)
        m_net->StopMe();
    else
        QDialog::reject();
}

QString ScaricaConFinestra::Download(const QString &url, const QString &file, qint64 totale)
{
    frmDownload finestra(m_parent);
    finestra.setTimeout(timeout);
    return finestra.Download(url, file, totale);
}

} // namespace upgrade
