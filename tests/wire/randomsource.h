// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QtGlobal>

#include <iterator>
#include <random>

/// Random choices. The same seed gives the same ones, in the order in which they are asked for.
class RandomSource
{
public:
    explicit RandomSource(quint64 seed)
        : m_numbers(seed)
    {
    }

    /// Any number.
    quint64 any() { return m_numbers(); }
    /// A number from 0 to \a count - 1.
    quint64 below(quint64 count) { return m_numbers() % count; }
    /// True in one of \a count cases.
    bool oneIn(quint64 count) { return below(count) == 0; }
    /// One of \a list, which has some.
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
