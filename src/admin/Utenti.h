// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QIdentityProxyModel>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace frame {
class Prompter;
}
namespace store {
class Database;
}
namespace forms {
class RecordsetModel;
}

namespace admin {

// The users window's rules, with no widget: the check before a save, the
// rights grid's rule, the rows every user needs, the password asked before a
// change and the row that can't be deleted.
//
// Names compare blind to case, as every text column of the database does: the
// login finds "mario" when "MARIO" is typed, so a second user differing only by
// case could never sign in as itself. Such a name is refused as a duplicate.

inline constexpr const char *Amministratore = "administrator";
// The users' own item: its window has only the full level, whatever the language calls it.
inline constexpr int ItemUtenti = 131;

// The detail panel's source: every user by name.
QString SorgenteUtenti();
// The toolbar keys the window offers: a user who isn't administrator gets no
// add, delete, search or print.
QStringList AzioniUtenti(bool amministratore);

// What the window holds at "ok". `nome` and `password`/`ripetizione` are the
// boxes TxtT(0), TxtT(1), TxtT(2); `id` is the stored record's key (invalid
// while adding); `utenteRecord` its stored name.
struct DatiUtente {
    QString nome;
    QString password;
    QString ripetizione;
    QVariant id;
    QString utenteRecord;
};
enum class EsitoConvalida { Valido, NomeVuoto, NomeDoppio, PasswordDiverse };
// The name loses its double blanks; an empty one (M0113) or one another user
// already has (M0114) is refused; on the user's own record the two password
// boxes must agree (M0100), else both are emptied. Every refusal is critical.
EsitoConvalida ConvalidaUtente(store::Database &db, frame::Prompter &prompter, DatiUtente &dati);

// The name box is open to administrator only, and never on its own row.
bool NomeModificabile(const QString &utenteCorrente, const QString &utenteRecord);

// "modifica" asks for the record's password unless administrator changes
// another user's row, and only when the row has a name and a password.
bool ChiedePassword(const QString &utenteCorrente, const QString &nomeCasella, const QString &utenteRecord,
                    const QVariant &password);
// The reply to the prompt: the stored password blind to case, or the master
// password exactly. Cancel or an empty reply stop silently; a wrong one tells M0100.
bool VerificaPasswordRecord(frame::Prompter &prompter, const QString &memorizzata);

// administrator's row can't be deleted (M0112, critical).
bool UtenteEliminabile(frame::Prompter &prompter, const QString &utenteRecord);

// The label of an item in the rights grid: the menu's word by the hundreds and
// the item's text with its "&".
QString EtichettaItem(int item, const QString &descrizione);
// The labels of the items of ElencoElementi (its spare last one aside), by item number.
QMap<int, QString> EtichetteItem();
// Reports, services and the users' own window have only the full level.
bool SoloCompleta(int item, const QString &etichetta);
// The letter a cell of Autorizzazione keeps: empty becomes "C"; on an item
// with only the full level any other letter goes back to "C", told by M0111.
QString RegolaAutorizzazione(frame::Prompter &prompter, int item, const QString &etichetta, const QString &lettera);

// The rows of Accessi a user lacks, one per item of ElencoElementi, added in
// the list's order with its defaults; how many were added.
int CompletaAccessi(store::Database &db, qint64 idUtente);

// The formulas the rights report takes: each item's label by its number, the column headings.
QStringList FormuleStampaUtenti();

// The rights grid over a user's rows of Accessi: the item shown by its label,
// the level by its words (edited as the letter, through the grid's rule), and
// the three marks as ticks.
class ModelloAccessi final : public QIdentityProxyModel {
    Q_OBJECT

public:
    ModelloAccessi(forms::RecordsetModel &righe, frame::Prompter &prompter, QObject *parent = nullptr);

    // The columns, in their order.
    static const QStringList &Campi();
    // The grid writes only while the user's record is being changed.
    void impostaScrivibile(bool scrivibile) { m_scrivibile = scrivibile; }
    // Labels by item, from ElencoElementi at the time of the call.
    void aggiornaEtichette() { m_etichette = EtichetteItem(); }

    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;

private:
    QString campo(const QModelIndex &index) const;
    int item(const QModelIndex &index) const;

    forms::RecordsetModel &m_righe;
    frame::Prompter &m_prompter;
    QMap<int, QString> m_etichette;
    bool m_scrivibile = false;
};

} // namespace admin
