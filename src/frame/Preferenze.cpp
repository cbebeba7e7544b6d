// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/Preferenze.h"

#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "frame/SettingsStore.h"

#include "store/Database.h"

namespace frame {

namespace {

const QString Si = QStringLiteral("S");
const QString No = QStringLiteral("N");

// A whole number as stored, or none for anything else.
std::optional<int> intero(const QString &testo)
{
    bool ok = false;
    const int n = testo.trimmed().toInt(&ok);
    return ok ? std::optional<int>(n) : std::nullopt;
}

// Two stored values that every reader gives alike: Null reads as empty text or no bytes.
bool uguali(const QVariant &a, const QVariant &b)
{
    if (a.metaType().id() == QMetaType::QByteArray || b.metaType().id() == QMetaType::QByteArray)
        return a.toByteArray() == b.toByteArray();
    return a.toString() == b.toString();
}

} // namespace

Preferenze &Preferenze::istanza()
{
    static Preferenze preferenze;
    return preferenze;
}

// ---- Settings store

QString Preferenze::registro(const char *chiave, const QString &predefinito, const char *sezione) const
{
    return SettingsStore::get(QLatin1String(sezione ? sezione : SettingsStore::Section), QLatin1String(chiave), predefinito);
}

bool Preferenze::registroSiNo(const char *chiave, bool predefinito) const
{
    return registro(chiave, predefinito ? Si : No) == Si;
}

void Preferenze::salvaRegistro(const char *chiave, const QString &valore, const char *sezione)
{
    const QString nomeSezione = QLatin1String(sezione ? sezione : SettingsStore::Section);
    const QString nome = QLatin1String(chiave);
    const QString prima = SettingsStore::get(nomeSezione, nome);
    SettingsStore::save(nomeSezione, nome, valore);
    if (prima != valore)
        emit cambiata(nome);
}

void Preferenze::salvaSiNo(const char *chiave, bool valore)
{
    salvaRegistro(chiave, valore ? Si : No);
}

QString Preferenze::pathData() const
{
    return registro("Pathdata", pub().CartellaProgramma + QStringLiteral("basedati.mdb"));
}

void Preferenze::setPathData(const QString &percorso)
{
    salvaRegistro("PathData", percorso);
}

int Preferenze::lingua() const
{
    const std::optional<int> n = intero(registro("lingua", QStringLiteral("0")));
    return n && *n >= 0 ? *n : 0;
}

void Preferenze::setLingua(int numero)
{
    salvaRegistro("lingua", QString::number(numero));
}

bool Preferenze::avvio() const
{
    return registroSiNo("Avvio", false);
}

void Preferenze::setAvvio(bool automatico)
{
    salvaSiNo("Avvio", automatico);
}

bool Preferenze::insertPremuto() const
{
    return registroSiNo("InsertPremuto", false);
}

void Preferenze::setInsertPremuto(bool attivo)
{
    salvaSiNo("InsertPremuto", attivo);
}

QString Preferenze::ultimoUtente() const
{
    return registro("UltimoUtente", QString());
}

void Preferenze::setUltimoUtente(const QString &nome)
{
    salvaRegistro("UltimoUtente", nome);
}

int Preferenze::mainLeft() const
{
    return intero(registro("MainLeft", QString())).value_or(0);
}

int Preferenze::mainTop() const
{
    return intero(registro("MainTop", QString())).value_or(0);
}

std::optional<int> Preferenze::mainWidth() const
{
    return intero(registro("MainWidth", QString()));
}

std::optional<int> Preferenze::mainHeight() const
{
    return intero(registro("MainHeight", QString()));
}

void Preferenze::setMainGeometria(int left, int top, int width, int height)
{
    salvaRegistro("MainLeft", QString::number(left));
    salvaRegistro("MainTop", QString::number(top));
    salvaRegistro("MainWidth", QString::number(width));
    salvaRegistro("MainHeight", QString::number(height));
}

bool Preferenze::barraStrumenti() const
{
    return registroSiNo("BarraStumenti", true);
}

void Preferenze::setBarraStrumenti(bool visibile)
{
    salvaSiNo("BarraStumenti", visibile);
}

std::optional<int> Preferenze::verDatabaseLocale() const
{
    // Only the program's own spelling counts: any other (" 3") makes the update check run again.
    const QString testo = registro("VerDatabase", QStringLiteral("0"));
    const std::optional<int> n = intero(testo);
    return n && QString::number(*n) == testo ? n : std::nullopt;
}

void Preferenze::setVerDatabaseLocale(int versione)
{
    salvaRegistro("VerDatabase", QString::number(versione));
}

QString Preferenze::pathBackup() const
{
    return registro("PathBackup", pub().CartellaProgramma);
}

void Preferenze::setPathBackup(const QString &cartella)
{
    salvaRegistro("PathBackup", cartella);
}

bool Preferenze::autoBackup() const
{
    return registroSiNo("AutoBackup", true);
}

void Preferenze::setAutoBackup(bool attivo)
{
    salvaSiNo("AutoBackup", attivo);
}

QString Preferenze::autoBackupCont() const
{
    return registro("AutoBackupCont", QStringLiteral("6"));
}

void Preferenze::setAutoBackupCont(int copie)
{
    salvaRegistro("AutoBackupCont", QString::number(copie));
}

QString Preferenze::pathProgramma() const
{
    return registro("Path", QString());
}

void Preferenze::setPathProgramma(const QString &percorso)
{
    salvaRegistro("Path", percorso);
}

int Preferenze::compattaLocadati() const
{
    const std::optional<int> n = intero(registro("CompattaLocadati", QStringLiteral("0"), "Contatori"));
    return n && *n >= 0 ? *n : 0;
}

void Preferenze::setCompattaLocadati(int avvii)
{
    salvaRegistro("CompattaLocadati", QString::number(avvii), "Contatori");
}

// ---- Impostazioni row

QVariant Preferenze::colonna(const char *nome) const
{
    return CampoImpostazione(QLatin1String(nome));
}

QString Preferenze::testo(const char *nome) const
{
    const QVariant v = colonna(nome);
    return v.isNull() ? QString() : v.toString();
}

void Preferenze::scriviColonna(const char *nome, const QVariant &valore)
{
    const QVariant prima = colonna(nome);
    const bool uguale = uguali(prima, valore);
    // A value that stays the same isn't written: a save of the whole tab rewrites only what changed.
    if (uguale && prima.isValid() && prima.isNull() == valore.isNull())
        return;
    ScriveImpostazione(QLatin1String(nome), valore);
    if (uguale)
        return;
    if (m_inAttesa)
        m_inAttesa->append(QLatin1String(nome));
    else
        emit cambiata(QLatin1String(nome));
}

QString Preferenze::annoEsercizio() const
{
    return testo("AnnoEsercizio").trimmed();
}

void Preferenze::setAnnoEsercizio(const QString &anno)
{
    scriviColonna("AnnoEsercizio", anno);
}

std::optional<int> Preferenze::verDatabase() const
{
    bool ok = false;
    const double v = testo("VerDatabase").trimmed().toDouble(&ok);
    if (!ok || v != double(int(v)))
        return std::nullopt;
    return int(v);
}

void Preferenze::setVerDatabase(int versione)
{
    scriviColonna("VerDatabase", qint64(versione));
}

QString Preferenze::tgObbligatoria() const { return testo("TgObbligatoria"); }
void Preferenze::setTgObbligatoria(const QString &parola) { scriviColonna("TgObbligatoria", parola); }
QString Preferenze::opAnnullare() const { return testo("OpAnnullare"); }
void Preferenze::setOpAnnullare(const QString &parola) { scriviColonna("OpAnnullare", parola); }
QString Preferenze::opModificare() const { return testo("OpModificare"); }
void Preferenze::setOpModificare(const QString &parola) { scriviColonna("OpModificare", parola); }
QString Preferenze::opContabilizzare() const { return testo("OpContabilizzare"); }
void Preferenze::setOpContabilizzare(const QString &parola) { scriviColonna("OpContabilizzare", parola); }
QString Preferenze::stampaEntrata() const { return testo("StampaEntrata"); }
void Preferenze::setStampaEntrata(const QString &parola) { scriviColonna("StampaEntrata", parola); }
QString Preferenze::stampaUscita() const { return testo("StampaUscita"); }
void Preferenze::setStampaUscita(const QString &parola) { scriviColonna("StampaUscita", parola); }
QString Preferenze::fasciaDefault() const { return testo("FasciaDefault"); }
void Preferenze::setFasciaDefault(const QString &fascia) { scriviColonna("FasciaDefault", fascia); }

QString Preferenze::iRagSoc() const { return testo("IRagSoc"); }
void Preferenze::setIRagSoc(const QString &t) { scriviColonna("IRagSoc", t); }
QString Preferenze::iAttivita1() const { return testo("IAttivita1"); }
void Preferenze::setIAttivita1(const QString &t) { scriviColonna("IAttivita1", t); }
QString Preferenze::iAttivita2() const { return testo("IAttivita2"); }
void Preferenze::setIAttivita2(const QString &t) { scriviColonna("IAttivita2", t); }
QString Preferenze::iAttivita3() const { return testo("IAttivita3"); }
void Preferenze::setIAttivita3(const QString &t) { scriviColonna("IAttivita3", t); }
QString Preferenze::iIndirizzo() const { return testo("IIndirizzo"); }
void Preferenze::setIIndirizzo(const QString &t) { scriviColonna("IIndirizzo", t); }
QString Preferenze::iCap() const { return testo("ICap"); }
void Preferenze::setICap(const QString &t) { scriviColonna("ICap", t); }
QString Preferenze::iPr() const { return testo("IPr"); }
void Preferenze::setIPr(const QString &t) { scriviColonna("IPr", t); }
QString Preferenze::iLocalita() const { return testo("ILocalita"); }
void Preferenze::setILocalita(const QString &t) { scriviColonna("ILocalita", t); }
QString Preferenze::iCF() const { return testo("ICF"); }
void Preferenze::setICF(const QString &t) { scriviColonna("ICF", t); }
QString Preferenze::iEmail() const { return testo("IEmail"); }
void Preferenze::setIEmail(const QString &t) { scriviColonna("IEmail", t); }
QString Preferenze::iTel() const { return testo("ITel"); }
void Preferenze::setITel(const QString &t) { scriviColonna("ITel", t); }
QString Preferenze::iIndHttp() const { return testo("IIndHttp"); }
void Preferenze::setIIndHttp(const QString &t) { scriviColonna("IIndHttp", t); }

QString Preferenze::iIndFTP() const { return testo("IIndFTP"); }
QString Preferenze::ipswFTP() const { return testo("IpswFTP"); }
QString Preferenze::iproxyFTP() const { return testo("IproxyFTP"); }

QString Preferenze::iLoginFTP() const
{
    const QString utente = testo("ILoginFTP");
    return utente.isEmpty() ? QStringLiteral("anonymous") : utente;
}

QByteArray Preferenze::iLogoP() const
{
    return colonna("ILogoP").toByteArray();
}

void Preferenze::setILogoP(const QByteArray &immagine)
{
    scriviColonna("ILogoP", immagine.isNull() ? QVariant() : QVariant(immagine));
}

QByteArray Preferenze::iLogoS() const
{
    return colonna("ILogoS").toByteArray();
}

void Preferenze::setILogoS(const QByteArray &immagine)
{
    scriviColonna("ILogoS", immagine.isNull() ? QVariant() : QVariant(immagine));
}

// ---- Transazione

Preferenze::Transazione::Transazione(Preferenze &preferenze)
    : m_preferenze(preferenze), m_transazione(std::make_unique<store::Transaction>(basedati()))
{
    m_preferenze.m_inAttesa = &m_cambiate;
}

Preferenze::Transazione::~Transazione()
{
    m_preferenze.m_inAttesa = nullptr;
}

void Preferenze::Transazione::commit()
{
    m_transazione->commit();
    m_preferenze.m_inAttesa = nullptr;
    m_cambiate.removeDuplicates();
    for (const QString &nome : std::as_const(m_cambiate))
        emit m_preferenze.cambiata(nome);
}

} // namespace frame
