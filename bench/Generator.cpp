// SPDX-License-Identifier: GPL-3.0-or-later
#include "Generator.h"

#include "store/Database.h"
#include "store/Schema.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QTextStream>
#include <QFile>

#include <algorithm>
#include <array>
#include <random>

namespace bench {

namespace {

// The letters of plates, less those plates leave out.
const QString LettereTarga = QStringLiteral("ABCDEFGHJKLMNPRSTVWXYZ");

// Two letters, three digits and two letters.
QString targaCasuale(std::mt19937 &rng)
{
    QString targa;
    for (int k = 0; k < 2; ++k)
        targa += LettereTarga.at(rng() % LettereTarga.size());
    targa += QString::number(100 + rng() % 900);
    for (int k = 0; k < 2; ++k)
        targa += LettereTarga.at(rng() % LettereTarga.size());
    return targa;
}

} // namespace

QString BasedatiGrande(const QString &argomento, int movimenti)
{
    const QString nome = movimenti == 1000000 ? QStringLiteral("basedati.mdb")
                                              : QStringLiteral("basedati-%1m.mdb").arg(movimenti / 1000000);
    const QString path = QFileInfo(argomento.isEmpty() ? QCoreApplication::applicationDirPath() + QStringLiteral("/../bench-data/") + nome
                                                       : argomento)
                             .absoluteFilePath();
    if (!QFileInfo::exists(path)) {
        QDir().mkpath(QFileInfo(path).path());
        QTextStream(stdout) << "writing " << path << " (" << movimenti << " movements, 10,000 customers)..." << Qt::endl;
        Volume v;
        v.movimenti = movimenti;
        GeneraBasedati(path, v);
    }
    return path;
}

QStringList BasiDati(const QString &argomento)
{
    if (!argomento.isEmpty())
        return {BasedatiGrande(argomento)};
    QStringList paths{BasedatiGrande(QString())};
    const QString dieci = QCoreApplication::applicationDirPath() + QStringLiteral("/../bench-data/basedati-10m.mdb");
    if (QFileInfo::exists(dieci) || qEnvironmentVariable("VELTANO_BENCH_10M") == QLatin1String("1"))
        paths << BasedatiGrande(QString(), 10000000);
    return paths;
}

void GeneraBasedati(const QString &path, const Volume &v)
{
    QFile::remove(path);
    store::Database db(path, QLatin1String(store::DatabaseKey), store::Database::Mode::Create);
    store::Schema::createWorkingTables(db);
    store::Schema::insertDeliveredRows(db, 1);
    db.execute(QStringLiteral("update Impostazioni set AnnoEsercizio = ?"), {QString::number(v.ultimoAnno)});

    std::mt19937 rng(20261123);
    store::Transaction t(db);
    for (int u = 0; u < 8; ++u)
        db.execute(QStringLiteral("insert into Autorizzazioni (Utente, Password) values (?, ?)"),
                   {QStringLiteral("operatore%1").arg(u), QStringLiteral("pw%1").arg(u)});

    store::Statement mov = db.prepare(QStringLiteral(
        "insert into Movimentazioni (Anno, Progressivo, DataOra, DataOraOut, Targa, IdFascia, Note, NoteImporto, Importo, "
        "Entrato, Annullato, Contabilizzato, IdUtente, IdUtenteOut) values (?,?,?,?,?,?,?,?,?,?,?,?,?,?)"));
    const int perAnno = v.movimenti / v.anni;
    int scritti = 0;
    for (int a = 0; a < v.anni; ++a) {
        const int anno = v.ultimoAnno - v.anni + 1 + a;
        const bool corrente = a == v.anni - 1;
        const int quanti = a == v.anni - 1 ? v.movimenti - scritti : perAnno;
        const QDateTime inizio(QDate(anno, 1, 1), QTime(6, 0));
        const qint64 passo = qint64(365) * 24 * 3600 / std::max(quanti, 1);
        for (int i = 0; i < quanti; ++i) {
            const QDateTime dentro = inizio.addSecs(passo * i + rng() % 600);
            const int sosta = 5 + int(rng() % 600);
            // The last few hundred of the current year are inside; the rest of
            // that year is out and partly unposted; earlier years are posted.
            const bool inside = corrente && i >= quanti - 300;
            const bool annullato = rng() % 50 == 0;
            const bool contabilizzato = !inside && !annullato && (!corrente || i < quanti * 9 / 10);
            const bool dueStadi = rng() % 3 == 0;
            const QString targa = targaCasuale(rng);
            const qint64 importo = dueStadi ? 30000 + 15000 * std::max(0, (sosta - 60 + 29) / 30) : 20000 * ((sosta + 59) / 60);
            mov.bindAll({QString::number(anno), i + 1, dentro,
                         inside ? QVariant() : QVariant(dentro.addSecs(sosta * 60)), targa,
                         dueStadi ? QStringLiteral("02") : QStringLiteral("01"),
                         i % 7 == 0 ? QStringLiteral("abbonato l'auto") : QString(), QVariant(), importo,
                         inside ? -1 : 0, annullato ? -1 : 0, contabilizzato ? -1 : 0, 1 + int(rng() % 10),
                         inside ? QVariant() : QVariant(1 + int(rng() % 10))});
            mov.step();
            mov.reset();
        }
        db.execute(QStringLiteral("insert into TabProgressivi (Anno, Progressivo) values (?, ?)"), {QString::number(anno), quanti});
        scritti += quanti;
    }

    store::Statement cli = db.prepare(QStringLiteral(
        "insert into Clienti (Cliente, Cognome, Nome, Targa, Posto, Canone, DataScadenzaAssic, \"Data Registrazione\", IdUtente) "
        "values (?,?,?,?,?,?,?,?,1)"));
    store::Statement cassa = db.prepare(QStringLiteral(
        "insert into Cassa (IdCliente, IdUtente, Data, Descrizione, Entrata, Uscita, Esercizio) values (?,1,?,?,?,0,?)"));
    for (int c = 0; c < v.clienti; ++c) {
        cli.bindAll({c % 10 == 0 ? 0 : -1, QStringLiteral("Cognome%1").arg(c), QStringLiteral("Nome%1").arg(c % 300),
                     QStringLiteral("CL%1").arg(c, 5, 10, QLatin1Char('0')), QStringLiteral("P%1").arg(c % 500),
                     80.0 + c % 5 * 10, QDateTime(QDate(v.ultimoAnno, 1 + c % 12, 1 + c % 28), QTime(0, 0)),
                     QDateTime(QDate(v.ultimoAnno - 1, 1 + c % 12, 1), QTime(9, 0))});
        cli.step();
        cli.reset();
        const qint64 id = db.lastInsertId();
        for (int m = 0; m < 3; ++m) {
            cassa.bindAll({id, QDateTime(QDate(v.ultimoAnno, 1 + m, 5), QTime(9, 0)), QStringLiteral("Canone"),
                           80.0 + c % 5 * 10, QString::number(v.ultimoAnno)});
            cassa.step();
            cassa.reset();
        }
    }
    t.commit();
}

namespace {

// Names and places as a desk in Italy types them: accents, apostrophes, blanks.
const std::array Cognomi{"Rossi", "Bianchi", "D'Angelo", "Dell'Orto", "Nicolò", "Mazzà", "Bertè", "Cantù", "De' Medici",
                         "Lo Russo", "Sant'Ambrogio", "Ferrari", "Esposito", "Fabbrì", "D'Alò", "Galli", "Marchetti",
                         "Pellegrino", "Dall'Ara", "Zoppè", "Colombo", "Ricci", "Orrù", "Caruso", "Fiorè"};
const std::array Nomi{"Niccolò", "Attilio", "Zoë", "Maria Grazia", "Gianluca", "Noè", "Andrea", "Lucia", "Mattia",
                      "Ilaria", "Salvatore", "Chiara", "Raffaele", "Agnese", "Elia", "Giulia", "Gaetano", "Rosalia"};
const std::array Ditte{"Autofficina", "Gommista", "Carrozzeria", "Elettrauto", "Pulizie", "Vigilanza", "Ferramenta"};
const std::array Forme{"S.r.l.", "S.n.c.", "& C. S.a.s.", "di famiglia", "S.p.A."};
const std::array Localita{"Forlì", "Cantù", "L'Aquila", "Sant'Agata de' Goti", "Canicattì", "Paternò", "Milano",
                          "Torino", "Bolzano", "Sant'Olcese", "Città di Castello", "Porto Sant'Elpidio", "Ca' Savio"};
const std::array Marche{"Fiat", "Lancia", "Alfa Romeo", "Volkswagen", "Renault", "Citroën", "Škoda", "Peugeot"};

template <typename A>
QString una(const A &lista, std::mt19937 &rng)
{
    return QString::fromUtf8(lista[rng() % lista.size()]);
}

} // namespace

void GeneraClientiCassa(store::Database &db, const VolumeClienti &v)
{
    std::mt19937 rng(20260101);
    const QDate inizio(v.anno, 1, 1);
    const int giorni = inizio.daysInYear();
    const auto data = [&](int giorno, int ora) { return QDateTime(inizio.addDays(giorno), QTime(ora, 0)); };
    const auto forse = [&](int percentoNullo, const QVariant &valore) { return int(rng() % 100) < percentoNullo ? QVariant() : valore; };

    store::Transaction t(db);
    store::Statement cli = db.prepare(QStringLiteral(
        "insert into Clienti (Cliente, Cognome, Nome, Indirizzo, \"Località\", Cap, Provincia, Marca, Targa, Posto, Canone, "
        "DataScadenzaAssic, DataUltimoPagamento, SaldoEntrate, SaldoUscite, \"Data Registrazione\", IdUtente) "
        "values (?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,1)"));
    std::vector<bool> fornitore(size_t(v.clienti) + 1);
    qint64 primo = 0;
    for (int c = 0; c < v.clienti; ++c) {
        const bool forn = rng() % 10 < 3;
        const QString targa = targaCasuale(rng);
        const QString cognome = forn ? una(Ditte, rng) + QLatin1Char(' ') + una(Cognomi, rng) + QLatin1Char(' ') + una(Forme, rng)
                                     : una(Cognomi, rng);
        // Fees in steps of 5, some left empty or 0; suppliers pay none.
        const QVariant canone = forn ? QVariant() : forse(10, rng() % 20 == 0 ? 0.0 : 50.0 + 5 * (rng() % 21));
        const QString posto = LettereTarga.at(rng() % 6) + QStringLiteral("-%1").arg(rng() % 300, 3, 10, QLatin1Char('0'));
        cli.bindAll({forn ? 0 : -1, cognome, forn ? QVariant() : QVariant(una(Nomi, rng)),
                     QStringLiteral("Via dell'Artigianato, %1").arg(1 + rng() % 200), una(Localita, rng),
                     QString::number(10000 + rng() % 89999), QStringLiteral("FC"), forse(20, una(Marche, rng)),
                     forn ? QVariant() : forse(5, targa), forn ? QVariant() : forse(15, posto), canone,
                     forse(15, data(int(rng() % (2 * giorni)) - giorni / 2, 0)), forse(20, data(int(rng() % giorni), 0)),
                     forse(30, double(rng() % 100000) / 100), forse(30, double(rng() % 50000) / 100),
                     data(-int(rng() % (5 * giorni)), 9)});
        cli.step();
        cli.reset();
        const qint64 id = db.lastInsertId();
        if (c == 0)
            primo = id;
        fornitore[size_t(id - primo)] = forn;
    }

    // Rows in the order the desk writes them: day by day, one in twenty a few days late.
    std::vector<int> giorno(size_t(v.righe));
    for (int r = 0; r < v.righe; ++r)
        giorno[size_t(r)] = int(qint64(r) * giorni / std::max(v.righe, 1));
    for (int r = 0; r < v.righe; ++r)
        if (rng() % 20 == 0)
            giorno[size_t(r)] = std::max(0, giorno[size_t(r)] - int(rng() % 10));
    store::Statement cassa = db.prepare(QStringLiteral(
        "insert into Cassa (IdCliente, IdUtente, Data, Descrizione, Entrata, Uscita, Esercizio) values (?,?,?,?,?,?,?)"));
    const QString anno = QString::number(v.anno);
    for (int r = 0; r < v.righe; ++r) {
        const QDateTime quando = data(giorno[size_t(r)], 0);
        QVariant cliente, entrata, uscita;
        QString descrizione;
        const unsigned tipo = rng() % 100;
        if (tipo < 5) { // the parking takings of the day
            descrizione = QStringLiteral("Vehicles out (%1 movements)").arg(20 + rng() % 400);
            entrata = double(rng() % 500000) / 100;
        } else {
            const qint64 id = primo + qint64(rng() % unsigned(v.clienti));
            cliente = id;
            if (fornitore[size_t(id - primo)]) {
                descrizione = QStringLiteral("Fattura n. %1 - l'officina").arg(rng() % 9000);
                uscita = double(rng() % 300000) / 100;
                entrata = forse(60, 0.0);
            } else if (tipo < 90) {
                descrizione = QStringLiteral("Pagamento canone mensile");
                entrata = 50.0 + 5 * (rng() % 21);
                uscita = forse(60, 0.0);
            } else { // a refund, or money both ways on one row
                descrizione = QStringLiteral("Rimborso d'acconto");
                uscita = double(rng() % 10000) / 100;
                entrata = tipo < 93 ? QVariant(double(rng() % 10000) / 100) : QVariant();
            }
        }
        cassa.bindAll({cliente, 1 + int(rng() % 8), quando, descrizione, entrata, uscita, anno});
        cassa.step();
        cassa.reset();
    }
    t.commit();
}

QString BasedatiCassa(const QString &argomento, const VolumeClienti &v)
{
    const QString path = QFileInfo(argomento.isEmpty() ? QCoreApplication::applicationDirPath() + QStringLiteral("/../bench-data/cassa.mdb")
                                                       : argomento)
                             .absoluteFilePath();
    if (QFileInfo::exists(path))
        return path;
    QDir().mkpath(QFileInfo(path).path());
    QTextStream(stdout) << "writing " << path << " (" << v.clienti << " customers and suppliers, " << v.righe << " cash rows)..."
                        << Qt::endl;
    // Written aside and renamed when whole: an interrupted run leaves no half file behind.
    const QString parziale = path + QStringLiteral(".part");
    QFile::remove(parziale);
    {
        store::Database db(parziale, QLatin1String(store::DatabaseKey), store::Database::Mode::Create);
        store::Schema::createWorkingTables(db);
        store::Schema::insertDeliveredRows(db, 1);
        db.execute(QStringLiteral("update Impostazioni set AnnoEsercizio = ?"), {QString::number(v.anno)});
        GeneraClientiCassa(db, v);
    }
    QFile::rename(parziale, path);
    return path;
}

} // namespace bench
