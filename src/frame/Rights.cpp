// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/Rights.h"

#include "frame/Language.h"
#include "frame/Prompter.h"
#include "frame/PublicState.h"

#include "store/Database.h"

namespace frame {

namespace {

struct ElementoFisso {
    int item;
    const char *chiave;
    bool abilitato;
};

// Fixed order: positions are what the menus' click handlers count on.
constexpr ElementoFisso Elementi[] = {
    {101, "M0262", true}, {105, "M0263", true}, {111, "M0264", true}, {131, "M0265", true},
    {201, "M0266", true}, {211, "M0267", true},
    {301, "M0268", true}, {311, "M0269", true}, {321, "M0270", true}, {331, "M0361", true},
    {341, "M0362", true}, {351, "M0363", true}, {361, "M0364", true},
    {411, "M0271", false}, {421, "M0272", false}, {431, "M0273", false},
};

} // namespace

bool PasswordMarcata(const QVariant &v)
{
    const QString t = v.toString().trimmed().toUpper();
    return t == QLatin1String("-1") || t == QLatin1String("1") || t == QLatin1String("TRUE") || t == QLatin1String("S")
           || t == QLatin1String("SI") || t == QLatin1String("YES") || t == QLatin1String("VERO");
}

bool EAmministratore()
{
    return pub().UtenteCorrente == QLatin1String("administrator");
}

void CostruisceElencoElementi()
{
    PublicState &p = pub();
    p.ElencoElementi.clear();
    for (const ElementoFisso &e : Elementi) {
        if (e.item == 201)
            p.IndiceTabelle = int(p.ElencoElementi.size());
        if (e.item == 301)
            p.IndiceStampe = int(p.ElencoElementi.size());
        ElementoAccesso el;
        el.Item = e.item;
        el.Descrizione = QLatin1Char('&') + TestoLingua(e.chiave);
        el.Autorizzazione = QStringLiteral("C");
        el.Abilitato = e.abilitato;
        el.Visibile = true;
        el.Password = false;
        p.ElencoElementi.append(el);
    }
    // The list keeps one spare element at its end, which no menu shows.
    p.ElencoElementi.append(ElementoAccesso());
}

void LeggeDirittiUtente(store::Database &db, int idUtente)
{
    PublicState &p = pub();
    p.DirittiUtente.clear();
    store::Statement st = db.prepare(QStringLiteral(
        "select Item, Autorizzazione, Abilitato, Visibile, Password from accessi where idautorizzazioni = ?"));
    st.bind(1, idUtente);
    for (int n = 0; st.step(); ++n) {
        if (p.DirittiUtente.isEmpty())
            p.DirittiUtente.resize(p.ElencoElementi.size());
        if (n >= p.DirittiUtente.size())
            break;
        ElementoAccesso &d = p.DirittiUtente[n];
        d.Item = int(st.value(0).toLongLong());
        d.Autorizzazione = st.value(1).toString();
        d.Abilitato = st.value(2).toLongLong() != 0;
        d.Visibile = st.value(3).toLongLong() != 0;
        d.Password = PasswordMarcata(st.value(4));
    }
}

QVector<VoceMenu> VociMenu()
{
    const PublicState &p = pub();
    QVector<VoceMenu> voci;
    int contatori[5] = {};
    for (int i = 0; i + 1 < p.ElencoElementi.size(); ++i) {
        const ElementoAccesso &e = p.ElencoElementi[i];
        const ElementoAccesso *diritto = nullptr;
        if (!EAmministratore()) {
            for (const ElementoAccesso &d : p.DirittiUtente) {
                if (d.Item == e.Item) {
                    diritto = &d;
                    break;
                }
            }
        }
        VoceMenu v;
        v.menu = MenuVoci(e.Item / 100);
        v.indice = contatori[e.Item / 100]++;
        v.posizione = i;
        v.didascalia = e.Descrizione;
        if (diritto) {
            v.abilitato = diritto->Abilitato;
            v.visibile = diritto->Visibile;
            // The first element of a menu cannot be hidden: it stays, without a caption.
            if (v.indice == 0 && !v.visibile) {
                v.didascalia.clear();
                v.visibile = true;
            }
        }
        voci.append(v);
    }
    return voci;
}

const ElementoAccesso *DirittoAlla(int posizione)
{
    const auto &d = pub().DirittiUtente;
    return posizione >= 0 && posizione < d.size() ? &d[posizione] : nullptr;
}

int PosizioneDiritti(MenuVoci menu, int indice)
{
    switch (menu) {
    case MenuVoci::Tabelle: return indice + pub().IndiceTabelle;
    case MenuVoci::Stampe: return indice + pub().IndiceStampe;
    default: return indice;
    }
}

bool AutorizzaOperazione(Prompter &prompter, const QString &operazione, const QString &autorizzazione, int idUtenteRecord)
{
    const QString utente = QStringLiteral("L'utente '") + pub().UtenteCorrente + QStringLiteral("' ");
    auto rifiuta = [&](const QString &testo) {
        prompter.message(utente + testo, Prompter::Icon::Critical);
        return false;
    };
    const bool scrittura = operazione == QLatin1String("modifica") || operazione == QLatin1String("elimina");
    if (autorizzazione == QLatin1String("L")) {
        if (scrittura || operazione == QLatin1String("aggiungi"))
            return rifiuta(QStringLiteral("è autorizzato solo a leggere le registrazione"));
        if (operazione == QLatin1String("gestioneaccessi"))
            return false;
    } else if (autorizzazione == QLatin1String("A")) {
        if (scrittura)
            return rifiuta(QStringLiteral("non è autorizzato a modificare o cancellare le registrazioni"));
    } else if (autorizzazione == QLatin1String("M") || autorizzazione == QLatin1String("N")) {
        if (operazione == QLatin1String("elimina"))
            return rifiuta(QStringLiteral("non è autorizzato a cancellare le registrazioni"));
    } else if (autorizzazione == QLatin1String("X")) {
        if (idUtenteRecord != -1 && scrittura && idUtenteRecord != pub().IdUtenteCorrente)
            return rifiuta(QStringLiteral("non è autorizzato a modificare o cancellare le registrazioni fatte da altri utenti"));
    }
    return true;
}

QString DescrizioneAutorizzazione(const QString &lettera)
{
    static const struct {
        const char *lettera;
        const char *testo;
    } parole[] = {
        {"C", "COMPLETA"},
        {"L", "Solo Visualizzazione"},
        {"A", "Inserimento/Visualizzazione"},
        {"M", "Inserim./Mod./Visualiz.(non cancella)"},
        {"N", "Mod. Solo Proprie Reg.(non cancella)"},
        {"X", "Modifica Solo Proprie Registrazioni"},
    };
    for (const auto &p : parole)
        if (lettera == QLatin1String(p.lettera))
            return QString::fromUtf8(p.testo);
    return QString();
}

} // namespace frame
