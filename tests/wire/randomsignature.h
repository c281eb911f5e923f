// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "randomsource.h"

#include <QByteArray>
#include <QByteArrayList>

/// Random signatures, of every type and nested, that D-Bus allows.
class RandomSignature
{
public:
    /// \a random must outlive it.
    explicit RandomSignature(RandomSource &random);

    /// Of any arguments, of none as well.
    QByteArray any();
    /// Of one argument; the greater \a depth is, the fewer levels it has.
    QByteArray single(int depth);
    /// As \a right, with one thing changed: a type, or an argument more or less.
    QByteArray nearly(const QByteArray &right);

private:
    Q_DISABLE_COPY(RandomSignature)

    char basicType();
    QByteArray type(int depth);
    QByteArrayList changed(QByteArrayList types, int depth);
    QByteArray changedType(const QByteArray &type, int depth);

    RandomSource &m_random;
};
