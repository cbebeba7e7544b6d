// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/Language.h"

#include "frame/Preferenze.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLibraryInfo>
#include <QTranslator>

#include <memory>

namespace frame {

namespace {

QString cartellaLingue()
{
    return pub().CartellaProgramma + QStringLiteral("Language");
}

// Qt's translation of its own texts for the language in use; one at a time.
std::unique_ptr<QTranslator> &traduzioneQt()
{
    static std::unique_ptr<QTranslator> t;
    return t;
}

void ImpostaLinguaQt(const QString &nome)
{
    const QLocale locale = LocaleLingua(nome);
    QLocale::setDefault(locale);
    std::unique_ptr<QTranslator> &t = traduzioneQt();
    if (t)
        QCoreApplication::removeTranslator(t.get());
    t = std::make_unique<QTranslator>();
    if (!t->load(locale, QStringLiteral("qtbase"), QStringLiteral("_"), QLibraryInfo::path(QLibraryInfo::TranslationsPath))
        || !QCoreApplication::installTranslator(t.get()))
        t.reset();
}

} // namespace

QLocale LocaleLingua(const QString &nome)
{
    const QString n = nome.trimmed();
    for (int l = QLocale::AnyLanguage + 1; l <= QLocale::LastLanguage; ++l) {
        const auto lingua = QLocale::Language(l);
        if (QLocale::languageToString(lingua).compare(n, Qt::CaseInsensitive) == 0)
            return QLocale(lingua, QLocale::system().territory());
    }
    return QLocale::system();
}

QString SegnapostoData()
{
    // Key CAP01: the letters of day, month and year, in this order ("dd mm yyyy").
    QStringList p = TestoLingua("CAP01").split(QLatin1Char(' '), Qt::SkipEmptyParts);
    if (p.size() != 3)
        return pub().FormatoData;
    if (pub().FormatoData.startsWith(QLatin1String("mm"), Qt::CaseInsensitive))
        p.swapItemsAt(0, 1);
    return p.join(QLatin1Char('/'));
}

void ElencaLingue()
{
    QDir dir(cartellaLingue());
    const QStringList files = dir.entryList({QStringLiteral("*.res")}, QDir::Files, QDir::Name | QDir::IgnoreCase);
    pub().Lingue.clear();
    for (const QString &f : files)
        pub().Lingue << f.left(f.size() - 4);
    if (pub().Lingue.isEmpty())
        pub().Lingue << QString();
}

void LeggiTestiLingua(const QByteArray &contenuto, QVector<TestoLinguaVoce> &tabella)
{
    QString testo = QString::fromUtf8(contenuto);
    if (testo.startsWith(QChar(0xFEFF)))
        testo.remove(0, 1);
    qsizetype n = 0;
    for (QStringView riga : QStringView(testo).split(QLatin1Char('\n'))) {
        riga = riga.trimmed();
        if (riga.isEmpty() || riga.startsWith(QLatin1Char('\'')))
            continue;
        const qsizetype sep = riga.indexOf(QLatin1Char(';'));
        if (sep < 0)
            continue;
        TestoLinguaVoce voce{riga.left(sep).trimmed().toString().toUpper(), riga.mid(sep + 1).toString()};
        if (n < tabella.size())
            tabella[n] = voce;
        else
            tabella.append(voce);
        ++n;
    }
}

bool CaricaFileLingua(const QString &nome)
{
    QFile file(cartellaLingue() + QLatin1Char('/') + nome + QStringLiteral(".Res"));
    if (nome.isEmpty() || !file.exists()) {
        // The name is matched blind to case, as the listing was.
        const QStringList match = QDir(cartellaLingue()).entryList({nome + QStringLiteral(".res")}, QDir::Files);
        if (nome.isEmpty() || match.isEmpty())
            return false;
        file.setFileName(cartellaLingue() + QLatin1Char('/') + match.first());
    }
    if (!file.open(QIODevice::ReadOnly))
        return false;
    // A language file is a few tens of kilobytes; anything past a few megabytes is not one.
    LeggiTestiLingua(file.read(8 * 1024 * 1024), pub().TestiLingua);
    return true;
}

void CaricaLinguaCorrente()
{
    const int i = pub().LinguaCorrente;
    if (i >= 0 && i < pub().Lingue.size() && CaricaFileLingua(pub().Lingue.at(i)))
        ImpostaLinguaQt(pub().Lingue.at(i));
}

void SalvaLingua()
{
    preferenze().setLingua(pub().LinguaCorrente);
    if (pub().languageMenuSink)
        pub().languageMenuSink(pub().LinguaCorrente);
}

QString TestoLingua(QString &chiave)
{
    chiave = chiave.toUpper();
    for (const TestoLinguaVoce &voce : std::as_const(pub().TestiLingua))
        if (voce.chiave == chiave)
            return voce.testo.trimmed();
    return QString();
}

QString TestoLingua(const char *chiave)
{
    QString k = QString::fromLatin1(chiave);
    return TestoLingua(k);
}

QString TestoLinguaApici(const QString &chiave)
{
    QString k = chiave;
    return TestoLingua(k).replace(QLatin1Char('\''), QLatin1Char('`'));
}

} // namespace frame
