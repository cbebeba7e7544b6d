// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "store/Recordset.h"

#include <QAbstractTableModel>
#include <QHash>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

namespace frame {
class Prompter;
}
namespace store {
class DbError;
}

namespace forms {

// A list of records for a grid: a table model over a recordset of its own.
//
// Rows come to the view a page at a time (canFetchMore / fetchMore), read
// forward by the recordset, whose block cache keeps memory flat. Counting a
// million rows costs a pass over the whole table (well over 100 ms on an
// encrypted file), so the count runs only when asked, by caricaTutto(): a jump
// to the end, or a window that must show the total.
class RecordsetModel final : public QAbstractTableModel {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(RecordsetModel)

public:
    // A colour for a row (a QColor or QBrush), or an invalid QVariant for the default.
    using FunzioneColore = std::function<QVariant(const store::Recordset &)>;
    enum class SiNo { Spunta, Parola };
    static constexpr int Pagina = 256; // rows added to the view per fetch: one block of the recordset

    // Qt::UserRole gives a cell's program value (QDateTime, store::Currency, bool, ...),
    // and, on the horizontal header, the field name of the column.
    static constexpr int RuoloValore = Qt::UserRole;

    RecordsetModel(store::Database &db, const QString &sql, const QVariantList &params = {}, store::RowCounter contatore = {},
                   QObject *parent = nullptr);
    ~RecordsetModel() override;

    // Opens the list on another query; captions, hidden fields, formats and colours stay.
    // The counter, when given, counts the query's rows and places them in its order.
    void riapri(const QString &sql, const QVariantList &params = {}, store::RowCounter contatore = {});
    // Reads the same query again.
    void aggiorna();
    // Reads the same query again on the same record (after work on the whole
    // file, which may have replaced it); an edit in progress keeps its set.
    void rileggi();
    store::Recordset &recordset() { return *m_rs; }
    const QString &sql() const { return m_sql; }
    // The query as it was given, before any sort by the user.
    const QString &sqlBase() const { return m_sqlBase; }

    // Captions of the visible columns in their order; missing ones keep the field name.
    void impostaIntestazioni(const QStringList &didascalie);
    void impostaIntestazione(const QString &campo, const QString &didascalia);
    // The fields shown, in this order; an empty list shows every field of the query.
    void impostaColonne(const QStringList &campi);
    QString campo(int colonna) const;
    // The field shown in a column, nullptr when there is none.
    const store::FieldInfo *campoDi(int colonna) const;
    int colonna(const QString &campo) const; // -1 when the field is not shown
    // A Qt date-time format for a date field, instead of the program's date format.
    void impostaFormato(const QString &campo, const QString &formato);
    void impostaSiNo(SiNo modo, const QString &si = QString(), const QString &no = QString());
    void impostaColori(FunzioneColore sfondo, FunzioneColore testo = {});

    // Sorts by the field of a column, as a click on its heading does: the query
    // is opened again with the same condition and "order by" that field.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;
    // Sorts by a field name, or by an order text ("Cognome, Nome desc"); an empty
    // text goes back to the order of the given query.
    void ordina(const QString &campo, bool discendente);
    void impostaOrdine(const QString &ordine);
    const QString &ordine() const { return m_ordine; }

    // Row of the record with this key, or -1; the rows up to it are made known to the view.
    int posizione(const QVariant &chiave);
    QVariant chiave(int riga) const;
    // Counts the set and makes every row known to the view (the rows are still read on demand).
    qint64 caricaTutto();
    bool conteggioCompleto() const { return m_completo; }
    // Rows the recordset has read from the database so far.
    qint64 righeLette() const { return m_rs->rowsRead(); }

    // Editing in the grid, off until asked. A cell written goes straight to its
    // row; a new row stays pending at the end until scriviNuova. A failed write is
    // told through the prompter and leaves the cell or the pending row as typed.
    // The check may change a value (an empty number to 0) or refuse it, telling why;
    // the completion fills what a new row needs before it is written.
    using Convalida = std::function<bool(const QString &campo, QVariant &valore)>;
    using Completa = std::function<void(store::Recordset &rs)>;
    void impostaModifica(frame::Prompter &prompter, Convalida convalida = {}, Completa completa = {});
    bool modificabile() const { return m_prompter != nullptr; }
    // The pending new row, -1 when there is none.
    int rigaNuova() const { return m_nuova ? m_righe : -1; }
    bool scriviNuova();
    void scartaNuova();

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    // One row at the end, pending until written; or rows deleted from the table.
    bool insertRows(int row, int count, const QModelIndex &parent = QModelIndex()) override;
    bool removeRows(int row, int count, const QModelIndex &parent = QModelIndex()) override;
    bool canFetchMore(const QModelIndex &parent = QModelIndex()) const override;
    void fetchMore(const QModelIndex &parent = QModelIndex()) override;

    // The field name as SQL writes it: bare when plain, else in [brackets].
    static QString nomeSQL(const QString &campo);
    // The query with its final order clause replaced by `ordine` (removed when empty).
    static QString conOrdine(const QString &sql, const QString &ordine);

signals:
    // The list was read again on its own, after work on the whole file.
    void riletto();

private:
    void apri(const QString &sql, const QVariantList &params);
    void primaPagina();
    void ricalcolaColonne();
    QVariant testo(const store::FieldInfo &f, const QVariant &valore) const;
    bool scriviCella(int riga, int campo, const QVariant &valore);
    void errore(const store::DbError &e);

    store::Database &m_db;
    QString m_sqlBase;
    QString m_sql;
    QVariantList m_params;
    QString m_ordine;
    store::RowCounter m_contatore; // of the query as given
    std::unique_ptr<store::Recordset> m_rs;
    int m_righe = 0;          // rows the view knows of
    bool m_completo = false;  // the view knows every row
    QStringList m_campiScelti;
    QVector<int> m_colonne;   // field index of each visible column
    QStringList m_didascalie; // by visible column
    QHash<QString, QString> m_didascaliePerCampo; // folded field name -> caption
    QHash<QString, QString> m_formati;            // folded field name -> format
    SiNo m_siNo = SiNo::Spunta;
    QString m_si, m_no;
    FunzioneColore m_sfondo, m_testo;
    frame::Prompter *m_prompter = nullptr;
    Convalida m_convalida;
    Completa m_completa;
    std::optional<QHash<int, QVariant>> m_nuova; // values of the pending row, by field
    store::Database::Subscription m_ascolto; // last: it goes first
};

// The colours of the movement lists: a cancelled row grey with light text, a
// vehicle inside green, a vehicle out yellow.
QVariant sfondoMovimento(const store::Recordset &rs);
QVariant testoMovimento(const store::Recordset &rs);

} // namespace forms
