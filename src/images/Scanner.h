// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QImage>
#include <QList>
#include <QMap>
#include <QString>

namespace images {

// Scanners through SANE. The library keeps SANE open while an object lives;
// one object at a time. A program built without SANE sees no scanner and
// says so (EsitoScansione::SenzaSupporto).
class Scanner final {
public:
    struct Dispositivo {
        QString nome;        // the name SANE opens it by ("test:0")
        QString descrizione; // maker and model, for a choice
    };

    enum class Esito {
        Ok,
        NonPronto,    // no scanner, or it is busy, jammed, open, out of paper
        Errore,       // the scan started and failed
        Annullato,    // the user or the device cancelled
        SenzaSupporto // built without SANE
    };

    Scanner();
    ~Scanner();
    Scanner(const Scanner &) = delete;
    Scanner &operator=(const Scanner &) = delete;

    // True when the program was built with SANE.
    static bool supportato();
    QList<Dispositivo> dispositivi();
    // Scans one page of `dispositivo` into `immagine`. `opzioni` sets options of the
    // device by name before the scan (text, whole number or yes-or-no values); without
    // a "mode" the scan is in colour where the device offers it.
    Esito acquisisci(const QString &dispositivo, QImage &immagine, const QMap<QString, QString> &opzioni = {});

    // The outcome of a SANE status code.
    static Esito esitoDaStato(int stato);
    // The key of the message for an outcome; empty for Ok.
    static QString testoEsito(Esito esito);

private:
    bool m_aperto = false;
};

} // namespace images
