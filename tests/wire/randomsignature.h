// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "randomsource.h"

#include <QByteArray>
#include <QByteArrayList>

/// Random signatures that D-Bus allows, with all types and nesting.
class RandomSignature
{
public:
    /// \a random must outlive the object.
    explicit RandomSignature(RandomSource &random);

    /// Returns a signature of any number of arguments, which may be none.
    QByteArray any();
    /// Returns a signature of one argument. The greater \a depth is, the fewer levels it has.
    QByteArray single(int depth);
    /// Returns \a right with one change: another type, or one argument more or less.
    QByteArray nearly(const QByteArray &right);

private:
    Q_DISABLE_COPY(RandomSignature)

    char basicType();
    QByteArray type(int depth);
    QByteArrayList changed(QByteArrayList types, int depth);
    QByteArray changedType(const QByteArray &type, int depth);

    RandomSource &m_random;
};
