// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QByteArray>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <memory>
#include <optional>

namespace store {
class Transaction;
}

namespace frame {

// Every setting the program keeps, typed, in one place: the keys of the per-user
// settings store (section Impostazioni unless told otherwise; keys blind to case)
// and the columns of the single Impostazioni row of the working database.
//
// Readers read the stored value each time, so that a value written elsewhere (by
// hand in the file, by another window) is never seen stale. A setter writes at
// once and announces the change by `cambiata` with the key's or column's name;
// inside a Transazione the column changes are announced only once it commits.
//
// The column readers and setters use the working database (basedati()) and throw
// store::DbError; the store's never throw.
class Preferenze final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Preferenze)

public:
    static Preferenze &istanza();

    // ---- Settings store

    // Full path of the working database; default the program folder + "basedati.mdb".
    QString pathData() const;
    void setPathData(const QString &percorso);
    // Language number, an index into the language files; 0 for junk or a negative number.
    int lingua() const;
    void setLingua(int numero);
    // Start-up option "S"/"N": kept beside the autostart entry; nothing else acts on it.
    bool avvio() const;
    void setAvvio(bool automatico);
    // Typing mode of the input boxes starts as overtype.
    bool insertPremuto() const;
    void setInsertPremuto(bool attivo);
    QString ultimoUtente() const;
    void setUltimoUtente(const QString &nome);
    // The main window's place (0 when missing or junk) and size (none when missing or junk).
    int mainLeft() const;
    int mainTop() const;
    std::optional<int> mainWidth() const;
    std::optional<int> mainHeight() const;
    void setMainGeometria(int left, int top, int width, int height);
    // Toolbar shown; the key is spelled "BarraStumenti".
    bool barraStrumenti() const;
    void setBarraStrumenti(bool visibile);
    // Minor version whose structure update ran on this machine; 0 when missing, none for any other spelling.
    std::optional<int> verDatabaseLocale() const;
    void setVerDatabaseLocale(int versione);
    // Destination folder of backups; default the program folder.
    QString pathBackup() const;
    void setPathBackup(const QString &cartella);
    // Old backups are deleted automatically.
    bool autoBackup() const;
    void setAutoBackup(bool attivo);
    // Backups kept, as stored (default "6"): the backup reads it leniently.
    QString autoBackupCont() const;
    void setAutoBackupCont(int copie);
    // The installed program, for the upgrade copy (key "Path").
    QString pathProgramma() const;
    void setPathProgramma(const QString &percorso);
    // Starts since the last compaction of locadati.mdb (section Contatori); 0 for junk or a negative number.
    int compattaLocadati() const;
    void setCompattaLocadati(int avvii);

    // ---- Impostazioni row (Null reads as ""; with no row every column reads as Null)

    // Fiscal year, four digits, blanks trimmed; the start writes the present year when it is empty.
    QString annoEsercizio() const;
    void setAnnoEsercizio(const QString &anno);
    // Minor version that last updated the structure; none when Null or not a whole number.
    std::optional<int> verDatabase() const;
    void setVerDatabase(int versione);
    // The six options hold the language's word for yes or no as it was when saved.
    QString tgObbligatoria() const;
    void setTgObbligatoria(const QString &parola);
    QString opAnnullare() const;
    void setOpAnnullare(const QString &parola);
    QString opModificare() const;
    void setOpModificare(const QString &parola);
    QString opContabilizzare() const;
    void setOpContabilizzare(const QString &parola);
    QString stampaEntrata() const;
    void setStampaEntrata(const QString &parola);
    QString stampaUscita() const;
    void setStampaUscita(const QString &parola);
    // Default tariff band, kept as it stands (blanks too).
    QString fasciaDefault() const;
    void setFasciaDefault(const QString &fascia);
    // Company data.
    QString iRagSoc() const;
    void setIRagSoc(const QString &testo);
    QString iAttivita1() const;
    void setIAttivita1(const QString &testo);
    QString iAttivita2() const;
    void setIAttivita2(const QString &testo);
    QString iAttivita3() const;
    void setIAttivita3(const QString &testo);
    QString iIndirizzo() const;
    void setIIndirizzo(const QString &testo);
    QString iCap() const;
    void setICap(const QString &testo);
    QString iPr() const;
    void setIPr(const QString &testo);
    QString iLocalita() const;
    void setILocalita(const QString &testo);
    QString iCF() const;
    void setICF(const QString &testo);
    QString iEmail() const;
    void setIEmail(const QString &testo);
    QString iTel() const;
    void setITel(const QString &testo);
    QString iIndHttp() const;
    void setIIndHttp(const QString &testo);
    // FTP site: read only; no window writes them.
    QString iIndFTP() const;
    QString iLoginFTP() const; // "anonymous" when empty
    QString ipswFTP() const;
    QString iproxyFTP() const;
    // The two logos as stored image bytes; a null array for none (and the setter writes Null for one).
    QByteArray iLogoP() const;
    void setILogoP(const QByteArray &immagine);
    QByteArray iLogoS() const;
    void setILogoS(const QByteArray &immagine);

    // Several column writes made one: all or none are kept, and their changes are
    // announced after the commit. Left without commit() it rolls back, silently.
    class Transazione {
    public:
        explicit Transazione(Preferenze &preferenze);
        ~Transazione();
        void commit();
        Transazione(const Transazione &) = delete;
        Transazione &operator=(const Transazione &) = delete;

    private:
        Preferenze &m_preferenze;
        std::unique_ptr<store::Transaction> m_transazione;
        QStringList m_cambiate;
    };

signals:
    // A key or column whose stored value has just changed, by its name.
    void cambiata(const QString &nome);

private:
    Preferenze() = default;

    QString registro(const char *chiave, const QString &predefinito, const char *sezione = nullptr) const;
    bool registroSiNo(const char *chiave, bool predefinito) const;
    void salvaRegistro(const char *chiave, const QString &valore, const char *sezione = nullptr);
    void salvaSiNo(const char *chiave, bool valore);

    QVariant colonna(const char *nome) const;
    QString testo(const char *nome) const;
    void scriviColonna(const char *nome, const QVariant &valore);

    QStringList *m_inAttesa = nullptr; // changes of the open Transazione, announced at its commit
};

// The settings object of the process.
inline Preferenze &preferenze()
{
    return Preferenze::istanza();
}

} // namespace frame
