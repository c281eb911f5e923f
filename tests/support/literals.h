// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QString>

/// Makes u"text"_s a QString.
inline QString operator""_s(const char16_t *text, std::size_t size)
{
    return QString(reinterpret_cast<const QChar *>(text), static_cast<int>(size));
}
