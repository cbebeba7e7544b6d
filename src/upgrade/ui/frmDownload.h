// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "upgrade/Aggiornamento.h"
#include "upgrade/CNetGet.h"

#include <QColor>
#include <QDialog>

class QLabel;

namespace upgrade {

// The progress window around a read: a bar with the share read (or the Kb read
// when the size is unknown) and a stop label. It blocks the other windows while
// it runs, so nothing else can start meanwhile.
class frmDownload final : public QDialog, private DestinazioneStato {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(frmDownload)

public:
    explicit frmDownload(QWidget *parent = nullptr);
    ~frmDownload() override;

    // Reads `url` into `file` against `totale` bytes (0: unknown). "" when the file
    // is complete, else the error's text; a stopped read says it was cancelled.
    QString Download(const QString &url, const QString &file, qint64 totale, const QColor &barra = QColor(0, 0, 128),
                     const QColor &testo = Qt::black);
    // A read that receives nothing for this long fails as timed out.
    void setTimeout(int millisecondi) { m_timeout = millisecondi; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void reject() override;

private:
    void testo(const QString &testo) override;
    void letti(qint64 byte) override;
    void mostra(const QString &testo, int larghezza);

    QLabel *LblBarra;
    QLabel *Lblprimopiano;
    QLabel *Lblprimopiano_o;
    QLabel *LblByte;
    QLabel *LblStop;
    QWidget *m_fondo;
    CNetGet *m_net = nullptr;
    qint64 m_totale = 0;
    int m_timeout = 30000;
};

// The check's downloads, each through a progress window over `parent`.
class ScaricaConFinestra final : public Scaricamento {
public:
    explicit ScaricaConFinestra(QWidget *parent) : m_parent(parent) {}
    QString Download(const QString &url, const QString &file, qint64 totale) override;
    int timeout = 30000;

private:
    QWidget *m_parent;
};

} // namespace upgrade
