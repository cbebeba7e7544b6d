// SPDX-License-Identifier: GPL-3.0-or-later
#include "admin/Utenti.h"

#include "forms/Filtro.h"
#include "forms/RecordsetModel.h"
#include "forms/Scheda.h"
#include "frame/Language.h"
#include "frame/Prompter.h"
#include "frame/PublicState.h"
#include "frame/Rights.h"
#include "frame/Routines.h"
#include "frame/Session.h"
#include "store/Database.h"

#include <QSet>

namespace admin {

using frame::Prompter;
using frame::TestoLingua;

namespace {

void critico(Prompter &prompter, const char *chiave)
{
    prompter.message(TestoLingua(chiave), Prompter::Icon::Critical);
}

} // namespace

QString SorgenteUtenti()
{
    return QStringLiteral(" select * from autorizzazioni order by utente");
}

QStringList AzioniUtenti(bool amministratore)
{
    QStringList azioni = forms::ChiaviToolbar();
    // No operation panel, no card to print, nothing of its own to refresh.
    for (const char *k : {"gestione", "scheda", "refresh"})
        azioni.removeAll(QLatin1String(k));
    if (!amministratore)
        for (const char *k : {"stampa", "trova", "aggiungi", "elimina"})
            azioni.removeAll(QLatin1String(k));
    return azioni;
}

EsitoConvalida ConvalidaUtente(store::Database &db, Prompter &prompter, DatiUtente &dati)
{
    frame::TogliSpaziDoppi(dati.nome);
    if (dati.nome.isEmpty()) {
        critico(prompter, "M0113"); // "The user name is required."
        return EsitoConvalida::NomeVuoto;
    }
    // The column compares blind to case, as the login does.
    const QVariant altro = dati.id.isValid()
                               ? db.scalar(QStringLiteral("select id from autorizzazioni where id <> ? and utente = ? limit 1"),
                                           {dati.id, dati.nome})
                               : db.scalar(QStringLiteral("select id from autorizzazioni where utente = ? limit 1"), {dati.nome});
    if (altro.isValid()) {
        critico(prompter, "M0114"); // "A user with this name already exists."
        return EsitoConvalida::NomeDoppio;
    }
    // Only on one's own row must the repetition agree; administrator sets others' passwords freely.
    if (dati.password != dati.ripetizione && dati.utenteRecord.toUpper() == frame::pub().UtenteCorrente.toUpper()) {
        critico(prompter, "M0100");
        dati.password.clear();
        dati.ripetizione.clear();
        return EsitoConvalida::PasswordDiverse;
    }
    return EsitoConvalida::Valido;
}

bool NomeModificabile(const QString &utenteCorrente, const QString &utenteRecord)
{
    return utenteCorrente == QLatin1String(Amministratore) && utenteRecord != QLatin1String(Amministratore);
}

bool ChiedePassword(const QString &utenteCorrente, const QString &nomeCasella, const QString &utenteRecord,
                    const QVariant &password)
{
    const bool nonLibero = utenteCorrente != QLatin1String(Amministratore) || nomeCasella == QLatin1String(Amministratore);
    return nonLibero && !utenteRecord.isEmpty() && !password.toString().isEmpty();
}

bool VerificaPasswordRecord(Prompter &prompter, const QString &memorizzata)
{
    const std::optional<QString> risposta = prompter.input(TestoLingua("CAP55"), QString(), QString()); // "Enter the password:"
    if (!risposta || risposta->isEmpty())
        return false;
    // Unlike the login, the master password counts here only as written.
    if (risposta->toUpper() == memorizzata.toUpper() || *risposta == QLatin1String(frame::PasswordMaster))
        return true;
    critico(prompter, "M0100");
    return false;
}

bool UtenteEliminabile(Prompter &prompter, const QString &utenteRecord)
{
    if (utenteRecord != QLatin1String(Amministratore))
        return true;
    critico(prompter, "M0112"); // "The administrator user cannot be deleted."
    return false;
}

QString EtichettaItem(int item, const QString &descrizione)
{
    static const char *const parole[] = {"", "Anagrafica ", "Tabella ", "Stampa ", "Servizio "};
    const int centinaia = item / 100;
    return (centinaia >= 1 && centinaia <= 4 ? QLatin1String(parole[centinaia]) : QLatin1String()) + descrizione;
}

QMap<int, QString> EtichetteItem()
{
    QMap<int, QString> etichette;
    const auto &elenco = frame::pub().ElencoElementi;
    for (qsizetype i = 0; i + 1 < elenco.size(); ++i)
        etichette.insert(elenco[i].Item, EtichettaItem(elenco[i].Item, elenco[i].Descrizione));
    return etichette;
}

bool SoloCompleta(int item, const QString &etichetta)
{
    return item == ItemUtenti
           || (!etichetta.startsWith(QLatin1String("Anagrafica")) && !etichetta.startsWith(QLatin1String("Tabella")));
}

QString RegolaAutorizzazione(Prompter &prompter, int item, const QString &etichetta, const QString &lettera)
{
    const QString l = lettera.trimmed();
    if (l.isEmpty() || l == QLatin1String("C"))
        return QStringLiteral("C");
    if (SoloCompleta(item, etichetta)) {
        critico(prompter, "M0111"); // "Only the full level (COMPLETA) is allowed for this item."
        return QStringLiteral("C");
    }
    return l;
}

int CompletaAccessi(store::Database &db, qint64 idUtente)
{
    QSet<qint64> presenti;
    store::Statement st = db.prepare(QStringLiteral("select Item from Accessi where IdAutorizzazioni = ?"));
    st.bind(1, idUtente);
    while (st.step())
        presenti.insert(st.value(0).toLongLong());
    int aggiunte = 0;
    store::Transaction t(db);
    for (const frame::ElementoAccesso &e : std::as_const(frame::pub().ElencoElementi)) {
        if (e.Item == 0 || presenti.contains(e.Item))
            continue;
        db.execute(QStringLiteral("insert into Accessi (IdAutorizzazioni, Item, Autorizzazione, Abilitato, Visibile, Password) "
                                  "values (?, ?, ?, ?, ?, ?)"),
                   {idUtente, e.Item, e.Autorizzazione, e.Abilitato ? -1 : 0, e.Visibile ? -1 : 0,
                    e.Password ? QVariant(QStringLiteral("-1")) : QVariant()});
        ++aggiunte;
    }
    t.commit();
    return aggiunte;
}

QStringList FormuleStampaUtenti()
{
    QStringList formule;
    const QMap<int, QString> etichette = EtichetteItem();
    for (auto it = etichette.cbegin(); it != etichette.cend(); ++it)
        formule << QStringLiteral("voce%1=").arg(it.key()) + forms::TestoFormula(QString(it.value()).remove(QLatin1Char('&')));
    const struct {
        const char *nome;
        const char *chiave;
    } intestazioni[] = {{"lblutente", "M0176"},   {"lblvoce", "CAP56"},     {"lblautorizzazione", "CAP57"},
                        {"lblabilitato", "CAP58"}, {"lblvisibile", "CAP59"}, {"lblpassword", "M0145"}};
    for (const auto &i : intestazioni)
        formule << QLatin1String(i.nome) + QLatin1Char('=') + forms::TestoFormula(TestoLingua(i.chiave));
    return formule;
}

// The rights grid.

ModelloAccessi::ModelloAccessi(forms::RecordsetModel &righe, Prompter &prompter, QObject *parent)
    : QIdentityProxyModel(parent), m_righe(righe), m_prompter(prompter), m_etichette(EtichetteItem())
{
    righe.impostaColonne(Campi());
    setSourceModel(&righe);
}

const QStringList &ModelloAccessi::Campi()
{
    static const QStringList campi = {QStringLiteral("Item"), QStringLiteral("Autorizzazione"), QStringLiteral("Abilitato"),
                                      QStringLiteral("Visibile"), QStringLiteral("Password")};
    return campi;
}

QString ModelloAccessi::campo(const QModelIndex &index) const
{
    return m_righe.campo(index.column());
}

int ModelloAccessi::item(const QModelIndex &index) const
{
    return m_righe.data(m_righe.index(index.row(), m_righe.colonna(QStringLiteral("Item"))), forms::RecordsetModel::RuoloValore).toInt();
}

QVariant ModelloAccessi::data(const QModelIndex &index, int role) const
{
    const QString c = campo(index);
    const QVariant valore = QIdentityProxyModel::data(index, forms::RecordsetModel::RuoloValore);
    const bool testo = role == Qt::DisplayRole || role == Qt::ToolTipRole;
    if (c == QLatin1String("Item")) {
        if (testo)
            return m_etichette.value(valore.toInt(), valore.toString());
        if (role == Qt::TextAlignmentRole)
            return QVariant(Qt::AlignLeft | Qt::AlignVCenter);
    }
    if (c == QLatin1String("Autorizzazione")) {
        if (role == Qt::EditRole)
            return valore.toString();
        if (testo) {
            const QString parole = frame::DescrizioneAutorizzazione(valore.toString());
            return parole.isEmpty() ? valore.toString() : parole;
        }
    }
    if (c == QLatin1String("Password") || c == QLatin1String("Abilitato") || c == QLatin1String("Visibile")) {
        const bool si = c == QLatin1String("Password") ? frame::PasswordMarcata(valore) : valore.toBool();
        if (role == Qt::CheckStateRole)
            return si ? Qt::Checked : Qt::Unchecked;
        if (role == Qt::TextAlignmentRole)
            return QVariant(Qt::AlignCenter);
        if (testo || role == Qt::EditRole)
            return QVariant();
    }
    return QIdentityProxyModel::data(index, role);
}

Qt::ItemFlags ModelloAccessi::flags(const QModelIndex &index) const
{
    Qt::ItemFlags f = QIdentityProxyModel::flags(index);
    const QString c = campo(index);
    const bool scrivibile = m_scrivibile && f.testFlag(Qt::ItemIsEditable);
    if (c == QLatin1String("Autorizzazione") && scrivibile)
        return f;
    f &= ~Qt::ItemIsEditable;
    if (scrivibile && c != QLatin1String("Item"))
        f |= Qt::ItemIsUserCheckable;
    return f;
}

bool ModelloAccessi::setData(const QModelIndex &index, const QVariant &value, int role)
{
    const QString c = campo(index);
    const QModelIndex sorgente = mapToSource(index);
    if (!(flags(index) & (Qt::ItemIsEditable | Qt::ItemIsUserCheckable)))
        return false;
    if (c == QLatin1String("Autorizzazione") && role == Qt::EditRole) {
        const int numero = item(index);
        const QString lettera = RegolaAutorizzazione(m_prompter, numero, m_etichette.value(numero), value.toString());
        return m_righe.setData(sorgente, lettera, Qt::EditRole);
    }
    if (role == Qt::CheckStateRole && c != QLatin1String("Autorizzazione")) {
        const bool si = value.toInt() == Qt::Checked;
        const QVariant scritto = c == QLatin1String("Password") ? QVariant(si ? QStringLiteral("-1") : QStringLiteral("0")) : QVariant(si);
        return m_righe.setData(sorgente, scritto, Qt::EditRole);
    }
    return false;
}

} // namespace admin
