// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "wirereader.h"

/// What is said of values in one line of at most about 200 characters; an ellipsis stands for the
/// rest. Strings are in quotes, lists in [], structures in (), maps in {}; a variant is its value.
class ValueText
{
public:
    /// Reads the values of \a signature from \a reader.
    static QString of(const QByteArray &signature, WireReader reader);

    /// \a text without line ends and the like, and cut as above.
    static QString of(const QString &text);

private:
    explicit ValueText(WireReader &reader);

    void write(const QByteArray &type);
    void writeBasic(char type);
    void writeArray(const QByteArray &element);
    void writeEntry(const QByteArray &types);
    void writeAll(const QByteArray &types);
    void append(const QString &text);
    bool isFull() const;

    WireReader &m_reader;
    QString m_text;
    int m_depth = 0;
};
