// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QtGlobal>

#include <iterator>
#include <random>

/// Random choices. The same seed gives the same sequence of choices.
class RandomSource
{
public:
    explicit RandomSource(quint64 seed)
        : m_numbers(seed)
    {
    }

    /// Returns any number.
    quint64 any() { return m_numbers(); }
    /// Returns a number from 0 to \a count - 1.
    quint64 below(quint64 count) { return m_numbers() % count; }
    /// Returns true in one of \a count cases.
    bool oneIn(quint64 count) { return below(count) == 0; }
    /// Returns an element of \a list, which must not be empty.
    template <typename List>
    auto oneOf(const List &list)
    {
        const auto size = std::size(list);
        return list[static_cast<decltype(size)>(below(static_cast<quint64>(size)))];
    }

private:
    Q_DISABLE_COPY(RandomSource)

    std::mt19937_64 m_numbers;
};
