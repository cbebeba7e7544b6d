// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QTest>

#include <array>
#include <cstddef>

// The columns of a data-driven test in one line: colonne<QString, int>({"nome", "quanti"}).
template <typename... T>
void colonne(const std::array<const char *, sizeof...(T)> &nomi)
{
    std::size_t i = 0;
    (QTest::addColumn<T>(nomi[i++]), ...);
}
