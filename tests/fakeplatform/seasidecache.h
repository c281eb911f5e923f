// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QString>

class SeasideCache
{
public:
    static QString normalizePhoneNumber(const QString &number, bool validate);
    static QString minimizePhoneNumber(const QString &number, bool validate);
};
