// SPDX-License-Identifier: GPL-3.0-or-later
#include "admin/Impostazioni.h"

#include "frame/Language.h"
#include "frame/Preferenze.h"
#include "frame/Prompter.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"

#include "store/Connections.h"
#include "store/Database.h"
#include "store/DbError.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace admin {

using frame::TestoLingua;

CasellaSiNo RegolaSiNo(const QString &testo)
{
    if (testo.toUpper() == TestoLingua("M0304").toUpper())
        return {testo, true};
    return {TestoLingua("M0305"), false};
}

const char *ControllaAnno(const QString &testo)
{
    const QString t = testo.trimmed();
    bool numero = !t.isEmpty();
    for (const QChar c : t)
        numero = numero && c.isDigit() && c.unicode() < 128;
    // An empty number box holds 0.
    if (t.isEmpty() || (numero && t.toLongLong() == 0))
        return "M0130"; // "The fiscal year cannot be zero."
    if (!numero || t.size() != 4)
        return "M0131"; // "The fiscal year must have 4 digits."
    return nullptr;
}

namespace {

const QString Si = QStringLiteral("S");

// A logo as the window hands it over: bytes, or nothing.
QByteArray immagine(const QVariant &logo)
{
    return logo.isNull() ? QByteArray() : logo.toByteArray();
}

void scriviColonne(frame::Preferenze &pref, const QString &anno, const DatiImpostazioni &d)
{
    pref.setAnnoEsercizio(anno);
    SalvaProgressivi(frame::basedati(), anno, d.progressivi);
    const DatiAzienda &a = d.azienda;
    pref.setIRagSoc(a.IRagSoc);
    pref.setIAttivita1(a.IAttivita1);
    pref.setIAttivita2(a.IAttivita2);
    pref.setIAttivita3(a.IAttivita3);
    pref.setIIndirizzo(a.IIndirizzo);
    pref.setICap(a.ICap);
    pref.setIPr(a.IPr);
    pref.setILocalita(a.ILocalita);
    pref.setICF(a.ICF);
    pref.setIEmail(a.IEmail);
    pref.setITel(a.ITel);
    pref.setIIndHttp(a.IIndHttp);
    const DatiOpzioni &o = d.opzioni;
    pref.setTgObbligatoria(o.TgObbligatoria);
    pref.setOpAnnullare(o.OpAnnullare);
    pref.setOpModificare(o.OpModificare);
    pref.setOpContabilizzare(o.OpContabilizzare);
    pref.setFasciaDefault(o.FasciaDefault);
    pref.setStampaEntrata(o.StampaEntrata);
    pref.setStampaUscita(o.StampaUscita);
    pref.setILogoP(immagine(d.logoP));
    pref.setILogoS(immagine(d.logoS));
}

// The flags take effect at once, on when the saved word is "S": the start-up reads
// them by the language's word for no instead, and the two tests differ on purpose.
void aggiornaStato(const frame::Preferenze &pref)
{
    frame::PublicState &p = frame::pub();
    p.TgObbligatoria = pref.tgObbligatoria() == Si;
    p.OpAnnullare = pref.opAnnullare() == Si;
    p.OpModificare = pref.opModificare() == Si;
    p.OpContabilizzare = pref.opContabilizzare() == Si;
    p.StampaEntrata = pref.stampaEntrata() == Si;
    p.StampaUscita = pref.stampaUscita() == Si;
    p.FasciaDefault = pref.fasciaDefault();
}

// A path as the Exec key of a desktop entry takes it: quoted, with the
// characters the quoting reserves escaped, then escaped again as a string value.
QString argomentoExec(const QString &percorso)
{
    QString t;
    for (const QChar c : percorso) {
        if (c == QLatin1Char('"') || c == QLatin1Char('`') || c == QLatin1Char('$') || c == QLatin1Char('\\'))
            t += QLatin1Char('\\');
        t += c;
        if (c == QLatin1Char('%'))
            t += c;
    }
    t = QLatin1Char('"') + t + QLatin1Char('"');
    return t.replace(QLatin1Char('\\'), QStringLiteral("\\\\"));
}

} // namespace

bool SalvaImpostazioni(frame::Prompter &prompter, const DatiImpostazioni &dati)
{
    if (const char *rifiuto = ControllaAnno(dati.anno)) {
        prompter.stop(TestoLingua(rifiuto));
        return false;
    }
    const QString anno = dati.anno.trimmed();
    frame::Preferenze &pref = frame::preferenze();
    try {
        frame::Preferenze::Transazione transazione(pref);
        scriviColonne(pref, anno, dati);
        transazione.commit();
        frame::pub().AnnoEsercizio = anno;
        aggiornaStato(pref);
    } catch (const store::DbError &e) {
        frame::MostraErrore(prompter, e.message());
        return false;
    }
    pref.setAvvio(dati.opzioni.avvioAutomatico);
    frame::pub().AvvioPark = dati.opzioni.avvioAutomatico;
    // A folder that can't be written costs the autostart entry only, without a word.
    ImpostaAvvioAutomatico(dati.opzioni.avvioAutomatico, QCoreApplication::applicationFilePath());
    QDir::setCurrent(frame::pub().CartellaProgramma);
    prompter.information(TestoLingua("M0132")); // "Settings saved."
    return true;
}

QString FileAvvioAutomatico()
{
    // Relative values are invalid by the XDG rules and are passed over.
    QString configurazione = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (configurazione.isEmpty() || QDir::isRelativePath(configurazione))
        configurazione = QDir::homePath() + QStringLiteral("/.config");
    return configurazione + QStringLiteral("/autostart/") + QLatin1String(frame::TitoloApplicazione) +
           QStringLiteral(".desktop");
}

bool ImpostaAvvioAutomatico(bool attivo, const QString &eseguibile)
{
    const QString file = FileAvvioAutomatico();
    if (!attivo)
        return !QFileInfo::exists(file) || QFile::remove(file);
    if (!QDir().mkpath(QFileInfo(file).path()))
        return false;
    QSaveFile voce(file);
    if (!voce.open(QIODevice::WriteOnly | QIODevice::Text))
        return false;
    const QString testo = QStringLiteral("[Desktop Entry]\nType=Application\nName=%1\nExec=%2\nIcon=veltano\nTerminal=false\n"
                                         "X-GNOME-Autostart-enabled=true\n")
                              .arg(QLatin1String(frame::TitoloApplicazione), argomentoExec(eseguibile));
    voce.write(testo.toUtf8());
    return voce.commit();
}

bool CambiaPercorso(frame::Prompter &prompter, const QString &percorso)
{
    const QFileInfo file(percorso.trimmed());
    if (percorso.trimmed().isEmpty() || !file.exists()) {
        prompter.stop(TestoLingua("M0117")); // "The path given does not exist."
        return false;
    }
    // CAP39: the path is a folder, another kind of file, or a database the program's key doesn't open.
    const QString rifiuto = TestoLingua("CAP39").arg(QDir::toNativeSeparators(file.absoluteFilePath()));
    if (!file.isFile()) {
        prompter.stop(rifiuto);
        return false;
    }
    try {
        // A connection of its own, closed again here: the test must not disturb the working database's.
        store::Database prova(file.absoluteFilePath(), store::keyFromConnect(frame::pub().CodaConnessione));
        if (prova.scalar(QStringLiteral("select count(*) from sqlite_master where type = 'table' and "
                                        "lower(name) = 'impostazioni'")).toLongLong() == 0) {
            prompter.stop(rifiuto);
            return false;
        }
    } catch (const store::DbError &e) {
        prompter.stop(rifiuto + QStringLiteral("\n\n") + e.message());
        return false;
    }
    frame::pub().Pathdata = file.absoluteFilePath();
    frame::preferenze().setPathData(frame::pub().Pathdata);
    prompter.information(TestoLingua("M0128") + QStringLiteral("\n\n") + TestoLingua("M0129"));
    QDir::setCurrent(frame::pub().CartellaProgramma);
    return true;
}

} // namespace admin
