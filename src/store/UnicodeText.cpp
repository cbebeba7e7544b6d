// SPDX-License-Identifier: GPL-3.0-or-later
#include "store/UnicodeText.h"

#include "store/Sqlite.h"

#include <algorithm>

namespace store {

namespace {

QString argText(sqlite3_value *v)
{
    return QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_value_text(v)), sqlite3_value_bytes(v));
}

// The match of a pattern and a text both already case-folded.
bool matchFolded(const QString &p, const QString &t, QChar escape)
{
    qsizetype pi = 0, ti = 0;
    qsizetype starP = -1, starT = 0; // position after the last '%' and the text position it matched up to
    while (ti < t.size()) {
        if (pi < p.size()) {
            const QChar pc = p.at(pi);
            if (!escape.isNull() && pc == escape && pi + 1 < p.size()) {
                if (p.at(pi + 1) == t.at(ti)) {
                    pi += 2;
                    ++ti;
                    continue;
                }
            } else if (pc == QLatin1Char('%')) {
                starP = ++pi;
                starT = ti;
                continue;
            } else if (pc == QLatin1Char('_') || pc == t.at(ti)) {
                ++pi;
                ++ti;
                continue;
            }
        }
        if (starP < 0)
            return false;
        pi = starP;
        ti = ++starT;
    }
    while (pi < p.size() && p.at(pi) == QLatin1Char('%'))
        ++pi;
    return pi == p.size();
}

void likeFunction(sqlite3_context *ctx, int argc, sqlite3_value **argv)
{
    if (sqlite3_value_type(argv[0]) == SQLITE_NULL || sqlite3_value_type(argv[1]) == SQLITE_NULL)
        return sqlite3_result_null(ctx);
    QChar escape;
    if (argc == 3) {
        const QString e = argText(argv[2]);
        if (e.size() != 1)
            return sqlite3_result_error(ctx, "ESCAPE expression must be a single character", -1);
        escape = e.at(0);
    }
    // argv[0] is the pattern, argv[1] the text tested against it. The pattern is
    // folded once per statement and kept with it, not again for every row.
    const auto *folded = static_cast<const QString *>(sqlite3_get_auxdata(ctx, 0));
    QString fresh;
    if (!folded) {
        fresh = argText(argv[0]).toCaseFolded();
        sqlite3_set_auxdata(ctx, 0, new QString(fresh), [](void *p) { delete static_cast<QString *>(p); });
        folded = &fresh;
    }
    sqlite3_result_int(ctx, matchFolded(*folded, argText(argv[1]).toCaseFolded(), escape) ? 1 : 0);
}

// The text without its accents ("À" gives "A"), so that accented letters sort with their letter.
QString baseLetters(const QString &text)
{
    bool ascii = true;
    for (QChar c : text)
        ascii = ascii && c.unicode() < 0x80;
    if (ascii)
        return text;
    QString base = text.normalized(QString::NormalizationForm_D);
    base.removeIf([](QChar c) { return c.category() == QChar::Mark_NonSpacing; });
    return base;
}

// Plain ASCII, the common case of plates and codes, is compared byte by byte.
int compareAscii(const unsigned char *a, int lenA, const unsigned char *b, int lenB, bool *ascii)
{
    const int n = std::min(lenA, lenB);
    for (int i = 0; i < n; ++i) {
        if (a[i] >= 0x80 || b[i] >= 0x80) {
            *ascii = false;
            return 0;
        }
        const int ca = (a[i] >= 'A' && a[i] <= 'Z') ? a[i] + 32 : a[i];
        const int cb = (b[i] >= 'A' && b[i] <= 'Z') ? b[i] + 32 : b[i];
        if (ca != cb)
            return ca < cb ? -1 : 1;
    }
    for (int i = n; i < lenA; ++i)
        if (a[i] >= 0x80)
            *ascii = false;
    for (int i = n; i < lenB; ++i)
        if (b[i] >= 0x80)
            *ascii = false;
    return lenA == lenB ? 0 : (lenA < lenB ? -1 : 1);
}

int compareCaseBlind(void *, int lenA, const void *a, int lenB, const void *b)
{
    bool ascii = true;
    const int quick = compareAscii(static_cast<const unsigned char *>(a), lenA, static_cast<const unsigned char *>(b), lenB, &ascii);
    if (ascii)
        return quick;
    const QString sa = QString::fromUtf8(static_cast<const char *>(a), lenA);
    const QString sb = QString::fromUtf8(static_cast<const char *>(b), lenB);
    // Letters first, then accents: a < À = à < àb < b; case never counts.
    if (const int byLetter = QString::compare(baseLetters(sa), baseLetters(sb), Qt::CaseInsensitive))
        return byLetter;
    return QString::compare(sa, sb, Qt::CaseInsensitive);
}

} // namespace

bool likeMatch(const QString &pattern, const QString &text, QChar escape)
{
    return matchFolded(pattern.toCaseFolded(), text.toCaseFolded(), escape);
}

void registerUnicodeText(sqlite3 *db)
{
    const int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC;
    sqlite3_create_function(db, "like", 2, flags, nullptr, likeFunction, nullptr, nullptr);
    sqlite3_create_function(db, "like", 3, flags, nullptr, likeFunction, nullptr, nullptr);
    sqlite3_create_collation(db, CaseBlindCollation, SQLITE_UTF8, nullptr, compareCaseBlind);
}

} // namespace store
