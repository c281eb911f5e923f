// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QString>
#include <QStringList>

struct DBusMessage;
struct DBusMessageIter;

/// Writes values as one line of at most 200 characters and an ellipsis for the rest. Strings are in
/// quotes, arrays in [], structures in (), maps in {}. A variant is written as its value, and a
/// file descriptor as "fd".
class ValueText
{
public:
    /// Returns the values of \a message.
    static QString of(DBusMessage *message);
    /// Returns \a text with its control characters escaped, cut in the same way.
    static QString of(const QString &text);
    /// Returns the leading values of \a message that are strings, each cut to about 800 bytes.
    static QStringList firstStrings(DBusMessage *message);

private:
    ValueText() = default;

    void writeAll(DBusMessageIter *values);
    void write(DBusMessageIter *value);
    void writeContainer(DBusMessageIter *value, QChar open, QChar close);
    void writeBasic(DBusMessageIter *value, int type);
    bool isFull() const;

    QString m_text;
};
