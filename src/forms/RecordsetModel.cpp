// SPDX-License-Identifier: GPL-3.0-or-later
#include "forms/RecordsetModel.h"

#include "frame/Prompter.h"
#include "frame/Routines.h"
#include "store/Currency.h"
#include "store/DbError.h"

#include <QBrush>
#include <QColor>
#include <QDateTime>
#include <QLocale>
#include <QRegularExpression>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <limits>
#include <utility>

namespace forms {

namespace {

bool numerico(store::FieldKind k)
{
    using store::FieldKind;
    return k == FieldKind::Long || k == FieldKind::Counter || k == FieldKind::Currency || k == FieldKind::Double;
}

// Rows of the view are ints; a set beyond that shows its first INT_MAX rows.
int comeRiga(qint64 n)
{
    return int(std::min<qint64>(n, INT_MAX));
}

} // namespace

RecordsetModel::RecordsetModel(store::Database &db, const QString &sql, const QVariantList &params, store::RowCounter contatore,
                               QObject *parent)
    : QAbstractTableModel(parent), m_db(db), m_sqlBase(sql), m_params(params), m_contatore(std::move(contatore))
{
    m_rs = std::make_unique<store::Recordset>(m_db, sql, params, m_contatore);
    m_sql = sql;
    ricalcolaColonne();
    primaPagina();
    m_ascolto = m_db.listen([this](store::Database::Event e) {
        if (e == store::Database::Event::Reopened)
            rileggi();
    });
}

RecordsetModel::~RecordsetModel() = default;

void RecordsetModel::apri(const QString &sql, const QVariantList &params)
{
    // Opened first: a query that fails leaves the list as it was. A sort by the
    // user keeps the count of the rows, not their places.
    store::RowCounter contatore = m_contatore;
    if (sql != m_sqlBase) {
        contatore.before = nullptr;
        contatore.at = nullptr;
    }
    auto rs = std::make_unique<store::Recordset>(m_db, sql, params, contatore);
    beginResetModel();
    m_nuova.reset(); // a pending row goes with the list it was typed in
    m_rs = std::move(rs);
    m_sql = sql;
    m_params = params;
    ricalcolaColonne();
    primaPagina();
    endResetModel();
}

void RecordsetModel::primaPagina()
{
    m_rs->readTo(Pagina - 1);
    m_righe = comeRiga(std::min<qint64>(Pagina, m_rs->rowsRead()));
    m_completo = m_rs->fullyRead() && m_righe == m_rs->rowsRead();
}

void RecordsetModel::riapri(const QString &sql, const QVariantList &params, store::RowCounter contatore)
{
    // The base and its counter change with the list: a query that fails leaves both as they were.
    const QString base = std::exchange(m_sqlBase, sql);
    std::swap(m_contatore, contatore);
    try {
        apri(sql, params);
    } catch (...) {
        m_sqlBase = base;
        m_contatore = std::move(contatore);
        throw;
    }
    m_ordine.clear();
}

void RecordsetModel::aggiorna()
{
    apri(m_sql, m_params);
}

void RecordsetModel::rileggi()
{
    if (m_rs->editMode() != store::Recordset::EditMode::None)
        return;
    QVariant chiave;
    if (m_rs->AbsolutePosition() >= 0) {
        try {
            chiave = m_rs->key();
        } catch (const store::DbError &) {
            // a row deleted just before: the list starts from its first row
        }
    }
    const bool tutto = m_completo;
    apri(m_sql, m_params);
    if (tutto)
        caricaTutto();
    const int riga = chiave.isValid() ? posizione(chiave) : -1;
    if (riga >= 0)
        m_rs->setAbsolutePosition(riga);
    else if (chiave.isValid() && !m_rs->isEmpty())
        m_rs->MoveFirst(); // the record is gone from the file read again: its first row, never a ghost
    emit riletto();
}

void RecordsetModel::ricalcolaColonne()
{
    m_colonne.clear();
    const auto &fields = m_rs->fields();
    if (m_campiScelti.isEmpty()) {
        for (int i = 0; i < fields.size(); ++i)
            m_colonne.append(i);
        return;
    }
    for (const QString &c : std::as_const(m_campiScelti)) {
        const int i = m_rs->fieldIndex(c);
        if (i >= 0)
            m_colonne.append(i);
    }
}

void RecordsetModel::impostaIntestazioni(const QStringList &didascalie)
{
    for (int i = 0; i < didascalie.size() && i < m_colonne.size(); ++i)
        m_didascaliePerCampo.insert(campo(i).toCaseFolded(), didascalie[i]);
    if (!m_colonne.isEmpty())
        emit headerDataChanged(Qt::Horizontal, 0, int(m_colonne.size()) - 1);
}

void RecordsetModel::impostaIntestazione(const QString &nome, const QString &didascalia)
{
    m_didascaliePerCampo.insert(nome.toCaseFolded(), didascalia);
    const int c = colonna(nome);
    if (c >= 0)
        emit headerDataChanged(Qt::Horizontal, c, c);
}

void RecordsetModel::impostaColonne(const QStringList &campi)
{
    beginResetModel();
    m_campiScelti = campi;
    ricalcolaColonne();
    endResetModel();
}

const store::FieldInfo *RecordsetModel::campoDi(int colonna) const
{
    return colonna >= 0 && colonna < m_colonne.size() ? &m_rs->fields()[m_colonne[colonna]] : nullptr;
}

QString RecordsetModel::campo(int c) const
{
    return c >= 0 && c < m_colonne.size() ? m_rs->fields()[m_colonne[c]].name : QString();
}

int RecordsetModel::colonna(const QString &nome) const
{
    const int i = m_rs->fieldIndex(nome);
    return i < 0 ? -1 : int(m_colonne.indexOf(i));
}

void RecordsetModel::impostaFormato(const QString &nome, const QString &formato)
{
    m_formati.insert(nome.toCaseFolded(), formato);
    if (m_righe > 0 && !m_colonne.isEmpty())
        emit dataChanged(index(0, 0), index(m_righe - 1, int(m_colonne.size()) - 1), {Qt::DisplayRole});
}

void RecordsetModel::impostaSiNo(SiNo modo, const QString &si, const QString &no)
{
    beginResetModel();
    m_siNo = modo;
    m_si = si;
    m_no = no;
    endResetModel();
}

void RecordsetModel::impostaColori(FunzioneColore sfondo, FunzioneColore testo)
{
    m_sfondo = std::move(sfondo);
    m_testo = std::move(testo);
    if (m_righe > 0 && !m_colonne.isEmpty())
        emit dataChanged(index(0, 0), index(m_righe - 1, int(m_colonne.size()) - 1),
                         {Qt::BackgroundRole, Qt::ForegroundRole});
}

QString RecordsetModel::nomeSQL(const QString &campo)
{
    static const QRegularExpression semplice(QStringLiteral("^[A-Za-z_][A-Za-z0-9_]*$"));
    if (semplice.match(campo).hasMatch() || (campo.startsWith(QLatin1Char('[')) && campo.endsWith(QLatin1Char(']'))))
        return campo;
    if (campo.contains(QLatin1Char(']')))
        return QLatin1Char('"') + QString(campo).replace(QLatin1Char('"'), QLatin1String("\"\"")) + QLatin1Char('"');
    return QLatin1Char('[') + campo + QLatin1Char(']');
}

QString RecordsetModel::conOrdine(const QString &sql, const QString &ordine)
{
    const int at = store::orderByPosition(sql);
    QString base = at >= 0 ? sql.left(at) : sql;
    while (!base.isEmpty() && base.back().isSpace())
        base.chop(1);
    return ordine.trimmed().isEmpty() ? base : base + QStringLiteral(" order by ") + ordine.trimmed();
}

void RecordsetModel::sort(int column, Qt::SortOrder order)
{
    if (column < 0 || column >= m_colonne.size())
        return;
    ordina(campo(column), order == Qt::DescendingOrder);
}

void RecordsetModel::ordina(const QString &nome, bool discendente)
{
    impostaOrdine(nomeSQL(nome) + (discendente ? QStringLiteral(" desc") : QString()));
}

void RecordsetModel::impostaOrdine(const QString &ordine)
{
    const QString sql = ordine.trimmed().isEmpty() ? m_sqlBase : conOrdine(m_sqlBase, ordine);
    apri(sql, m_params);
    m_ordine = ordine.trimmed();
}

int RecordsetModel::posizione(const QVariant &chiave)
{
    const qint64 p = m_rs->positionOfKey(chiave);
    if (p < 0 || p >= INT_MAX)
        return -1;
    if (p >= m_righe) {
        // Make the rows up to the end of its page known, as scrolling there would.
        const qint64 fino = (p / Pagina + 1) * Pagina;
        m_rs->readTo(fino - 1);
        const int n = comeRiga(std::min<qint64>(fino, m_rs->rowsRead()));
        beginInsertRows(QModelIndex(), m_righe, n - 1);
        m_righe = n;
        endInsertRows();
        m_completo = m_completo || (m_rs->fullyRead() && m_righe == m_rs->rowsRead());
    }
    return int(p);
}

QVariant RecordsetModel::chiave(int riga) const
{
    QVariant k;
    if (riga >= 0 && riga < m_righe)
        m_rs->peek(riga, [&](const store::Recordset &rs) { k = rs.key(); });
    return k;
}

qint64 RecordsetModel::caricaTutto()
{
    if (m_completo)
        return m_righe;
    const int totale = comeRiga(m_rs->RecordCount());
    if (totale > m_righe) {
        beginInsertRows(QModelIndex(), m_righe, totale - 1);
        m_righe = totale;
        endInsertRows();
    }
    m_completo = true;
    return m_righe;
}

int RecordsetModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_righe + (m_nuova ? 1 : 0);
}

int RecordsetModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_colonne.size());
}

bool RecordsetModel::canFetchMore(const QModelIndex &parent) const
{
    return !parent.isValid() && !m_completo;
}

void RecordsetModel::fetchMore(const QModelIndex &parent)
{
    if (parent.isValid() || m_completo)
        return;
    const qint64 fino = qint64(m_righe) + Pagina;
    try {
        m_rs->readTo(fino - 1);
    } catch (const store::DbError &) {
        m_completo = true; // a read that fails ends the list where it is
        return;
    }
    const int n = comeRiga(std::min<qint64>(fino, m_rs->rowsRead()));
    if (n > m_righe) {
        beginInsertRows(QModelIndex(), m_righe, n - 1);
        m_righe = n;
        endInsertRows();
    }
    if (m_rs->fullyRead() && m_righe == m_rs->rowsRead())
        m_completo = true;
}

QVariant RecordsetModel::testo(const store::FieldInfo &f, const QVariant &v) const
{
    using store::FieldKind;
    if (!v.isValid() || v.isNull())
        return QString();
    switch (f.kind) {
    case FieldKind::Date: {
        const QDateTime dt = v.toDateTime();
        const QString formato = m_formati.value(f.name.toCaseFolded());
        if (!formato.isEmpty())
            return dt.toString(formato);
        return frame::TestoData(dt, dt.time() != QTime(0, 0));
    }
    case FieldKind::Currency: {
        // Rounded half away from zero to the cent, from the exact amount.
        // Whole units and cents apart, so that no amount goes through a floating number.
        const qint64 raw = v.value<store::Currency>().raw();
        const qint64 centesimi = (raw + (raw >= 0 ? 50 : -50)) / 100;
        const QLocale l;
        const QString segno = centesimi < 0 && centesimi > -100 ? l.negativeSign() : QString();
        return segno + l.toString(centesimi / 100) + l.decimalPoint()
               + QStringLiteral("%1").arg(std::abs(centesimi % 100), 2, 10, QLatin1Char('0'));
    }
    case FieldKind::Double:
        return QLocale().toString(v.toDouble(), 'g', QLocale::FloatingPointShortest);
    case FieldKind::Long:
    case FieldKind::Counter:
        return QString::number(v.toLongLong());
    case FieldKind::YesNo:
        if (m_siNo == SiNo::Spunta)
            return QString();
        return v.toBool() ? m_si : m_no;
    case FieldKind::Binary:
        return QString();
    default:
        return v.toString();
    }
}

QVariant RecordsetModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount() || index.column() >= m_colonne.size())
        return {};
    const int c = m_colonne[index.column()];
    const store::FieldInfo &f = m_rs->fields()[c];
    const bool siNoSpunta = f.kind == store::FieldKind::YesNo && m_siNo == SiNo::Spunta;

    switch (role) {
    case Qt::TextAlignmentRole:
        if (numerico(f.kind))
            return QVariant(Qt::AlignRight | Qt::AlignVCenter);
        if (siNoSpunta)
            return QVariant(Qt::AlignCenter);
        return QVariant(Qt::AlignLeft | Qt::AlignVCenter);
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
    case RuoloValore:
        break;
    case Qt::CheckStateRole:
        if (!siNoSpunta)
            return {};
        break;
    case Qt::BackgroundRole:
        if (!m_sfondo)
            return {};
        break;
    case Qt::ForegroundRole:
        if (!m_testo)
            return {};
        break;
    default:
        return {};
    }

    if (index.row() == rigaNuova()) {
        if (role == Qt::BackgroundRole || role == Qt::ForegroundRole)
            return {};
        const QVariant v = m_nuova->value(c);
        if (role == Qt::CheckStateRole)
            return v.toBool() ? Qt::Checked : Qt::Unchecked;
        return role == RuoloValore ? v : testo(f, v);
    }
    QVariant out;
    try {
        m_rs->peek(index.row(), [&](const store::Recordset &rs) {
            switch (role) {
            case Qt::BackgroundRole:
                out = m_sfondo(rs);
                break;
            case Qt::ForegroundRole:
                out = m_testo(rs);
                break;
            case Qt::CheckStateRole:
                out = rs.value(c).toBool() ? Qt::Checked : Qt::Unchecked;
                break;
            case RuoloValore:
                out = rs.value(c);
                break;
            default:
                out = testo(f, rs.value(c));
            }
        });
    } catch (const store::DbError &) {
        return {}; // a row that can't be read shows empty rather than stopping the paint
    }
    return out;
}

QVariant RecordsetModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Vertical)
        return role == Qt::DisplayRole ? QVariant(section + 1) : QVariant();
    const QString nome = campo(section);
    if (nome.isEmpty())
        return {};
    if (role == RuoloValore)
        return nome;
    if (role == Qt::DisplayRole)
        return m_didascaliePerCampo.value(nome.toCaseFolded(), nome);
    return {};
}

Qt::ItemFlags RecordsetModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags f = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    if (!modificabile() || index.column() >= m_colonne.size())
        return f;
    // Fields of the table written, not joined ones; a counter key is the engine's to give.
    const store::FieldInfo &campo = m_rs->fields()[m_colonne[index.column()]];
    if (campo.table.compare(m_rs->baseTable(), Qt::CaseInsensitive) == 0 && campo.kind != store::FieldKind::Counter)
        f |= Qt::ItemIsEditable;
    return f;
}

void RecordsetModel::impostaModifica(frame::Prompter &prompter, Convalida convalida, Completa completa)
{
    m_prompter = &prompter;
    m_convalida = std::move(convalida);
    m_completa = std::move(completa);
}

void RecordsetModel::errore(const store::DbError &e)
{
    frame::MostraErrore(*m_prompter, e.message());
}

bool RecordsetModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::EditRole || !(flags(index) & Qt::ItemIsEditable))
        return false;
    const int c = m_colonne[index.column()];
    QVariant v = value;
    if (m_convalida && !m_convalida(m_rs->fields()[c].name, v))
        return false; // refused, told by the check: the cell stays in edit
    if (index.row() == rigaNuova()) {
        (*m_nuova)[c] = v;
    } else if (!scriviCella(index.row(), c, v)) {
        return false;
    }
    emit dataChanged(this->index(index.row(), 0), this->index(index.row(), columnCount() - 1));
    return true;
}

bool RecordsetModel::scriviCella(int riga, int campo, const QVariant &valore)
{
    store::Recordset &rs = *m_rs;
    if (rs.editMode() != store::Recordset::EditMode::None)
        return false; // the row is being written elsewhere: the grid waits
    const qint64 prima = rs.AbsolutePosition();
    try {
        if (!rs.setAbsolutePosition(riga))
            return false;
        rs.Edit();
        rs.setValue(campo, valore);
        rs.Update();
    } catch (const store::DbError &e) {
        rs.CancelUpdate();
        if (prima >= 0)
            rs.setAbsolutePosition(prima);
        errore(e);
        return false;
    }
    if (prima >= 0)
        rs.setAbsolutePosition(prima);
    return true;
}

bool RecordsetModel::insertRows(int row, int count, const QModelIndex &parent)
{
    if (parent.isValid() || count != 1 || !modificabile() || m_nuova || m_rs->editMode() != store::Recordset::EditMode::None)
        return false;
    try {
        // The new row goes after every row of the set, so all of them are made known first.
        m_rs->readTo(std::numeric_limits<qint64>::max());
        caricaTutto();
    } catch (const store::DbError &e) {
        errore(e);
        return false;
    }
    if (row != m_righe)
        return false;
    beginInsertRows(QModelIndex(), m_righe, m_righe);
    m_nuova.emplace();
    endInsertRows();
    return true;
}

bool RecordsetModel::scriviNuova()
{
    if (!m_nuova)
        return true;
    store::Recordset &rs = *m_rs;
    const qint64 prima = rs.AbsolutePosition();
    try {
        rs.AddNew();
        for (auto it = m_nuova->constBegin(); it != m_nuova->constEnd(); ++it)
            rs.setValue(it.key(), it.value());
        if (m_completa)
            m_completa(rs);
        rs.Update();
    } catch (const store::DbError &e) {
        rs.CancelUpdate();
        errore(e);
        return false; // still pending, as typed
    }
    // The written row stands where the pending one stood: the count of rows is the same.
    m_nuova.reset();
    ++m_righe;
    if (prima >= 0)
        rs.setAbsolutePosition(prima);
    emit dataChanged(index(m_righe - 1, 0), index(m_righe - 1, columnCount() - 1));
    return true;
}

void RecordsetModel::scartaNuova()
{
    if (!m_nuova)
        return;
    beginRemoveRows(QModelIndex(), m_righe, m_righe);
    m_nuova.reset();
    endRemoveRows();
}

bool RecordsetModel::removeRows(int row, int count, const QModelIndex &parent)
{
    if (parent.isValid() || count != 1 || !modificabile())
        return false;
    if (row == rigaNuova()) {
        scartaNuova();
        return true;
    }
    store::Recordset &rs = *m_rs;
    if (row < 0 || row >= m_righe || rs.editMode() != store::Recordset::EditMode::None)
        return false;
    const qint64 prima = rs.AbsolutePosition();
    try {
        if (!rs.setAbsolutePosition(row))
            return false;
        rs.Delete();
    } catch (const store::DbError &e) {
        errore(e);
        return false;
    }
    beginRemoveRows(QModelIndex(), row, row);
    --m_righe;
    endRemoveRows();
    if (prima >= 0 && prima != row)
        rs.setAbsolutePosition(prima > row ? prima - 1 : prima);
    return true;
}

QVariant sfondoMovimento(const store::Recordset &rs)
{
    if (rs.fieldIndex(QStringLiteral("Annullato")) < 0 || rs.fieldIndex(QStringLiteral("Entrato")) < 0)
        return {};
    if (rs.value(QStringLiteral("Annullato")).toBool())
        return QBrush(QColor(0xC0, 0xC0, 0xC0));
    if (rs.value(QStringLiteral("Entrato")).toBool())
        return QBrush(QColor(0x00, 0xFF, 0x00));
    return QBrush(QColor(0xFF, 0xFF, 0x00));
}

QVariant testoMovimento(const store::Recordset &rs)
{
    if (rs.fieldIndex(QStringLiteral("Annullato")) >= 0 && rs.value(QStringLiteral("Annullato")).toBool())
        return QBrush(QColor(0xF4, 0xF4, 0xF4));
    return {};
}

} // namespace forms
