// SPDX-License-Identifier: GPL-3.0-or-later
#include "forms/ui/PannelloFiltro.h"

#include "forms/ui/Didascalie.h"

#include "forms/Scheda.h"
#include "frame/Language.h"
#include "frame/widgets/CasellaData.h"
#include "store/Recordset.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

namespace forms {

using frame::TestoLingua;

namespace {

// The names of the box arrays, by kind and bound.
QString nomeCasella(TipoCasella tipo, bool al, int indice)
{
    const char *nome = "TxtT2";
    if (tipo == TipoCasella::Data)
        nome = al ? "TxtD22" : "TxtD2";
    else if (tipo == TipoCasella::Numero)
        nome = al ? "TxtN22" : "TxtN2";
    return QStringLiteral("%1_%2").arg(QLatin1String(nome)).arg(indice);
}

} // namespace

PannelloFiltro::PannelloFiltro(QWidget *parent)
    : QWidget(parent), m_intestazione(new QLabel(this)), m_combo1(new QComboBox(this)), m_griglia(nullptr),
      m_chkAuto(new QCheckBox(this)), m_modoBottone(new QPushButton(this)), m_etichette(new QPushButton(this)),
      m_personalizzato(new QPushButton(this))
{
    setObjectName(QStringLiteral("PicRic"));
    m_intestazione->setObjectName(QStringLiteral("IntestazioneRicerca"));
    QFont f = m_intestazione->font();
    f.setBold(true);
    f.setPointSizeF(f.pointSizeF() * 1.2);
    m_intestazione->setFont(f);
    m_combo1->setObjectName(QStringLiteral("Combo1"));
    m_combo1->installEventFilter(this);
    m_chkAuto->setObjectName(QStringLiteral("ChkAuto"));
    m_modoBottone->setObjectName(QStringLiteral("ComEsegueRic_Stampa"));
    m_modoBottone->setCheckable(true);

    auto bottone = [this](const char *nome) {
        auto *b = new QPushButton(this);
        b->setObjectName(QLatin1String(nome));
        b->setAutoDefault(false);
        return b;
    };
    QPushButton *command6 = bottone("Command6");
    QPushButton *command5 = bottone("Command5");
    QPushButton *elencoPrec = bottone("CmdElencoPrec");
    // A date box refused just now stops the run: the user sees what the filter will use.
    connect(command6, &QPushButton::clicked, this, [this] {
        if (frame::CasellaTesto::confermaTutte(this))
            emit esegui();
    });
    connect(command5, &QPushButton::clicked, this, &PannelloFiltro::chiudi);
    m_etichette->setObjectName(QStringLiteral("CmdEtichette"));
    m_etichette->setAutoDefault(false);
    connect(m_etichette, &QPushButton::clicked, this, [this] {
        if (frame::CasellaTesto::confermaTutte(this))
            emit etichette();
    });
    m_personalizzato->setObjectName(QStringLiteral("CmdPersonalizzato"));
    m_personalizzato->setAutoDefault(false);
    connect(m_personalizzato, &QPushButton::clicked, this, [this] {
        if (frame::CasellaTesto::confermaTutte(this))
            emit personalizzato();
    });
    connect(elencoPrec, &QPushButton::clicked, this, &PannelloFiltro::elencoPrecedente);
    // The mode button switches between finding and printing with the same filters.
    connect(m_modoBottone, &QPushButton::clicked, this,
            [this](bool stampa) { impostaModo(stampa ? Modo::Stampa : Modo::Ricerca); });

    auto *scorrimento = new QScrollArea(this);
    scorrimento->setObjectName(QStringLiteral("VScT2"));
    scorrimento->setWidgetResizable(true);
    auto *caselle = new QWidget(scorrimento);
    m_griglia = new QGridLayout(caselle);
    m_griglia->setColumnStretch(1, 1);
    m_griglia->setColumnStretch(2, 1);
    scorrimento->setWidget(caselle);

    auto *confronto = new QHBoxLayout;
    confronto->addWidget(m_combo1, 1);
    confronto->addWidget(m_chkAuto);

    auto *comandi = new QHBoxLayout;
    comandi->addWidget(m_modoBottone);
    comandi->addStretch(1);
    comandi->addWidget(elencoPrec);
    comandi->addWidget(command6);
    comandi->addWidget(m_etichette);
    comandi->addWidget(m_personalizzato);
    comandi->addWidget(command5);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_intestazione);
    layout->addLayout(confronto);
    layout->addWidget(scorrimento, 1);
    layout->addLayout(comandi);
    impostaDidascalie();
    impostaModo(Modo::Ricerca);
}

void PannelloFiltro::impostaDidascalie()
{
    const int scelto = m_combo1->currentIndex();
    m_combo1->clear();
    for (const char *k : {"M0170", "M0171", "M0172", "M0173", "M0174"})
        m_combo1->addItem(TestoLingua(k));
    m_combo1->setCurrentIndex(scelto < 0 ? 0 : scelto);
    for (const Didascalia &d : DidascalieScheda()) {
        const QString nome = QLatin1String(d.controllo);
        if (nome != QLatin1String("ComEsegueRic_Stampa")) // that one follows the mode
            ApplicaDidascalia(findChild<QWidget *>(nome), d.testo, d.suggerimento);
    }
}

void PannelloFiltro::impostaCatalogo(const QVector<CasellaFiltro> &catalogo)
{
    while (QLayoutItem *item = m_griglia->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    m_catalogo = catalogo;
    m_dal.clear();
    m_al.clear();
    QWidget *contenitore = m_griglia->parentWidget();
    for (int i = 0; i < catalogo.size(); ++i) {
        const CasellaFiltro &k = catalogo[i];
        auto *etichetta = new QLabel(k.didascalia, contenitore);
        // Dates in the program's date box; numbers refuse a key that makes no number.
        const auto nuova = [&](bool limiteAl) {
            QLineEdit *e = k.tipo == TipoCasella::Data ? new frame::CasellaData(contenitore) : new QLineEdit(contenitore);
            if (k.tipo == TipoCasella::Numero)
                e->setValidator(frame::ValidatoreCasella::numero(e, true));
            e->setObjectName(nomeCasella(k.tipo, limiteAl, i));
            return e;
        };
        QLineEdit *dal = nuova(false);
        etichetta->setBuddy(dal);
        m_griglia->addWidget(etichetta, i, 0);
        QLineEdit *al = nullptr;
        if (k.tipo == TipoCasella::Testo) {
            m_griglia->addWidget(dal, i, 1, 1, 2);
        } else {
            al = nuova(true);
            m_griglia->addWidget(dal, i, 1);
            m_griglia->addWidget(al, i, 2);
            if (k.tipo == TipoCasella::Data) {
                // One date gives a one-day filter unless the upper box says otherwise.
                connect(dal, &QLineEdit::editingFinished, this, [dal, al] {
                    if (const auto copia = DataAlDopoDal(dal->text(), al->isVisible()))
                        al->setText(*copia);
                });
            }
        }
        m_dal.append(dal);
        m_al.append(al);
    }
    m_griglia->setRowStretch(int(catalogo.size()), 1);
}

void PannelloFiltro::impostaLunghezze(const store::Recordset &rs)
{
    for (int i = 0; i < m_catalogo.size(); ++i) {
        if (m_catalogo[i].tipo != TipoCasella::Testo)
            continue;
        const int c = rs.fieldIndex(CasellaFiltro::nomeFormula(m_catalogo[i].campo));
        if (c < 0)
            continue;
        if (const auto n = LimitiCampo(rs.fields()[c], TipoCasellaScheda::Testo).lunghezzaMassima)
            m_dal[i]->setMaxLength(*n);
    }
}

void PannelloFiltro::impostaModo(Modo modo)
{
    m_modo = modo;
    const bool stampa = modo == Modo::Stampa;
    m_intestazione->setText(stampa ? QStringLiteral("Filtri per Stampa") : QStringLiteral("Filtri per Ricerca"));
    m_chkAuto->setVisible(!stampa);
    m_etichette->setVisible(stampa && m_conEtichette);
    m_personalizzato->setVisible(stampa && m_conPersonalizzato);
    m_modoBottone->setChecked(stampa);
    // The first pair of keys serves the print mode, the second the search mode.
    int n = 0;
    for (const Didascalia &d : DidascalieScheda()) {
        if (QLatin1String(d.controllo) != QLatin1String("ComEsegueRic_Stampa"))
            continue;
        if ((n++ == 0) == stampa)
            ApplicaDidascalia(m_modoBottone, d.testo, d.suggerimento);
    }
}

void PannelloFiltro::impostaStampeAggiunte(bool conEtichette, bool conPersonalizzato)
{
    m_conEtichette = conEtichette;
    m_conPersonalizzato = conPersonalizzato;
    m_etichette->setText(frame::TestoLingua("CAP26"));       // "Labels"
    m_personalizzato->setText(frame::TestoLingua("CAP69"));  // "Custom list..."
    impostaModo(m_modo);
}

QVector<CasellaFiltro> PannelloFiltro::caselle() const
{
    QVector<CasellaFiltro> v = m_catalogo;
    for (int i = 0; i < v.size(); ++i) {
        v[i].valore = m_dal[i]->text();
        v[i].valoreAl = m_al[i] ? m_al[i]->text() : QString();
    }
    return v;
}

int PannelloFiltro::modoConfronto() const
{
    return m_combo1->currentIndex();
}

bool PannelloFiltro::chkAuto() const
{
    return m_chkAuto->isChecked();
}

QLineEdit *PannelloFiltro::casella(int indice, bool limiteAl) const
{
    if (indice < 0 || indice >= m_dal.size())
        return nullptr;
    return limiteAl ? m_al[indice] : m_dal[indice];
}

bool PannelloFiltro::eventFilter(QObject *watched, QEvent *event)
{
    // On the match mode, Enter and Down move to the next box and Up to the previous.
    if (watched == m_combo1 && event->type() == QEvent::KeyPress) {
        const int k = static_cast<QKeyEvent *>(event)->key();
        if (k == Qt::Key_Return || k == Qt::Key_Enter || k == Qt::Key_Down || k == Qt::Key_Up) {
            focusNextPrevChild(k != Qt::Key_Up);
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace forms
