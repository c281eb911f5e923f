// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QString>
#include <QStringList>

struct DBusMessage;
struct DBusMessageIter;

/// What is said of values in one line of at most about 200 characters; an ellipsis stands for the
/// rest. Strings are in quotes, lists in [], structures in (), maps in {}; a variant is its value,
/// and a file descriptor is "fd".
class ValueText
{
public:
    /// The values of \a message.
    static QString of(DBusMessage *message);
    /// \a text without line ends and the like, and cut as above.
    static QString of(const QString &text);
    /// The strings that are the first values of \a message, each cut to at most some 800 bytes.
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
