// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "randomsignature.h"
#include "randomsource.h"

#include <QByteArray>
#include <QtGlobal>

#include <dbus/dbus.h>

/// Random arguments for D-Bus messages: of every type, nested, valid on any bus, and often made of
/// the words and the small numbers that mean something to the call UI.
class RandomBody
{
public:
    /// \a random must outlive it.
    explicit RandomBody(RandomSource &random);
    ~RandomBody();

    /// Appends arguments where exactly \a right is expected: half of the time its signature with
    /// one thing changed, else exactly that signature, else any other.
    void appendAbout(DBusMessage *message, const QByteArray &right);
    /// Appends arguments with exactly \a signature, which has few descriptors.
    void append(DBusMessage *message, QByteArray signature);

    /// A text of any length, often empty or a known word.
    QByteArray text();
    /// An object path, often a known one.
    QByteArray path();
    /// A name for an interface or an error, often a known one.
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
    const int m_descriptor; ///< Of /dev/null.
    int m_valuesLeft = 0; ///< In this body, before arrays stay empty.
    int m_descriptorsLeft = 0; ///< In this body: buses take few in one message.
    int m_depth = 0; ///< Of the variants that are being written.
    QByteArray m_lastText; ///< Which tells what the variant after it would hold.
};
