// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QtGlobal>

#include <dbus/dbus.h>

#include <iterator>
#include <random>

/// Random arguments for D-Bus messages: of every type, nested, valid on any bus, and often made of
/// the words and the small numbers that mean something to the call UI.
///
/// The same seed gives the same bodies.
class RandomBody
{
public:
    explicit RandomBody(quint64 seed);
    ~RandomBody();

    /// A number from 0 to \a count - 1.
    quint64 below(quint64 count) { return m_random() % count; }
    /// True in one of \a count cases.
    bool oneIn(quint64 count) { return below(count) == 0; }
    /// One of \a list, which has some.
    template <typename List>
    auto oneOf(const List &list)
    {
        const auto size = std::size(list);
        return list[static_cast<decltype(size)>(below(static_cast<quint64>(size)))];
    }

    /// Appends arguments where exactly \a right is expected: half of the time its signature with
    /// one thing changed, else exactly that signature, else any other.
    void appendAbout(DBusMessage *message, const QByteArray &right);
    /// Appends arguments with exactly \a signature, which has few descriptors.
    void append(DBusMessage *message, QByteArray signature);
    /// Appends arguments with any signature.
    void appendAny(DBusMessage *message);

    /// A text of any length, often empty or a known word.
    QByteArray text();
    /// An object path, often a known one.
    QByteArray path();
    /// A name for an interface or an error, often a known one.
    QByteArray dottedName();

private:
    Q_DISABLE_COPY(RandomBody)

    char basicType();
    QByteArray type(int depth);
    QByteArray signature();
    QByteArray nearly(const QByteArray &right);
    QByteArrayList changed(QByteArrayList types, int depth);
    QByteArray changedType(const QByteArray &type, int depth);

    void writeAll(DBusMessageIter *to, DBusSignatureIter *types);
    void write(DBusMessageIter *to, DBusSignatureIter *type);
    void writeBasic(DBusMessageIter *to, int type);
    void writeArray(DBusMessageIter *to, DBusSignatureIter *type);
    void writeKnownEntries(DBusMessageIter *to, DBusSignatureIter *entry);
    void writeVariant(DBusMessageIter *to);
    quint64 number();

    std::mt19937_64 m_random;
    const int m_descriptor; ///< Of /dev/null.
    int m_valuesLeft = 0; ///< In this body, before arrays stay empty.
    int m_descriptorsLeft = 0; ///< In this body: buses take few in one message.
    int m_depth = 0; ///< Of the variants that are being written.
    QByteArray m_lastText; ///< Which tells what the variant after it would hold.
};
