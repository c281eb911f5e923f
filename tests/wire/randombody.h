// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "randomsignature.h"
#include "randomsource.h"

#include <QByteArray>
#include <QtGlobal>

#include <dbus/dbus.h>

/// Random arguments for D-Bus messages. They have every type, may be nested, and are valid on any
/// bus. Often they use the words and the small numbers that have a meaning for the call UI.
class RandomBody
{
public:
    /// \a random must outlive the object.
    explicit RandomBody(RandomSource &random);
    ~RandomBody();

    /// Appends arguments for a method that expects the signature \a right: often with one change to
    /// that signature, otherwise with exactly that signature or with any other.
    void appendAbout(DBusMessage *message, const QByteArray &right);
    /// Appends arguments with exactly \a signature, which must have few descriptors.
    void append(DBusMessage *message, QByteArray signature);

    /// Returns a text of any length, often empty or a known word.
    QByteArray text();
    /// Returns an object path, often a known one.
    QByteArray path();
    /// Returns a name for an interface or an error, often a known one.
    QByteArray dottedName();

private:
    Q_DISABLE_COPY(RandomBody)

    void writeAll(DBusMessageIter *to, DBusSignatureIter *types);
    void write(DBusMessageIter *to, DBusSignatureIter *type);
    void writeBasic(DBusMessageIter *to, int type);
    void writeArray(DBusMessageIter *to, DBusSignatureIter *type);
    void writeKnownEntries(DBusMessageIter *to, DBusSignatureIter *entry);
    void writeVariant(DBusMessageIter *to);
    quint64 number();

    RandomSource &m_random;
    RandomSignature m_signature;
    const int m_descriptor; ///< The descriptor of /dev/null.
    int m_valuesLeft = 0; ///< How many values the body may still get. Arrays stay empty then.
    /// How many descriptors the body may still get: buses accept few in one message.
    int m_descriptorsLeft = 0;
    int m_depth = 0; ///< The depth of the current variant.
    QByteArray m_lastText; ///< The last text. It decides the type of a variant after it.
};
