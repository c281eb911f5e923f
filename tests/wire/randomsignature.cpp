// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "randomsignature.h"

#include <dbus/dbus.h>

#include <array>

namespace {

constexpr int deepestType = 5;

QByteArray take(DBusSignatureIter *type)
{
    char *text = dbus_signature_iter_get_signature(type);
    QByteArray signature(text);
    dbus_free(text);
    return signature;
}

/// Returns \a signature, or another one if it is longer than D-Bus allows.
QByteArray allowed(const QByteArray &signature)
{
    return dbus_signature_validate(signature.constData(), nullptr) ? signature : QByteArray("u");
}

/// Returns the complete types in \a signature.
QByteArrayList split(const QByteArray &signature)
{
    QByteArrayList types;
    if (signature.isEmpty())
        return types;
    DBusSignatureIter iterator;
    dbus_signature_iter_init(&iterator, signature.constData());
    do
        types.append(take(&iterator));
    while (dbus_signature_iter_next(&iterator));
    return types;
}

} // namespace

RandomSignature::RandomSignature(RandomSource &random)
    : m_random(random)
{
}

QByteArray RandomSignature::single(int depth)
{
    return allowed(type(depth));
}

char RandomSignature::basicType()
{
    // Descriptors are rare, because a message may have only a few.
    return m_random.oneIn(40)
        ? 'h'
        : m_random.oneOf(std::array{'y', 'b', 'n', 'q', 'i', 'u', 'x', 't', 'd', 's', 'o', 'g'});
}

QByteArray RandomSignature::type(int depth)
{
    const quint64 choice = m_random.below(10);
    if (choice < 6 || depth >= deepestType)
        return {1, basicType()};
    if (choice == 6)
        return "v";
    if (choice == 7)
        return 'a' + type(depth + 1);
    if (choice == 8)
        return QByteArray("a{") + basicType() + type(depth + 1) + '}';
    QByteArray members;
    const quint64 count = 1 + m_random.below(4);
    for (quint64 i = 0; i < count; ++i)
        members += type(depth + 1);
    return '(' + members + ')';
}

QByteArray RandomSignature::any()
{
    // The nesting is as deep as D-Bus allows.
    if (m_random.oneIn(100))
        return QByteArray(32, 'a') + basicType();
    if (m_random.oneIn(100))
        return QByteArray(32, '(') + basicType() + QByteArray(32, ')');
    QByteArray types;
    const quint64 count = m_random.below(6);
    for (quint64 i = 0; i < count; ++i)
        types += type(0);
    return allowed(types);
}

QByteArray RandomSignature::nearly(const QByteArray &right)
{
    return allowed(changed(split(right), 0).join());
}

QByteArrayList RandomSignature::changed(QByteArrayList types, int depth)
{
    const quint64 choice = m_random.below(8);
    if (types.isEmpty() || choice == 0) {
        types.insert(static_cast<int>(m_random.below(static_cast<quint64>(types.size()) + 1)),
                     type(depth));
        return types;
    }
    const auto at = static_cast<int>(m_random.below(static_cast<quint64>(types.size())));
    if (choice == 1)
        types.removeAt(at);
    else
        types[at] = changedType(types.at(at), depth);
    return types;
}

QByteArray RandomSignature::changedType(const QByteArray &type, int depth)
{
    const bool isContainer = type.size() > 1;
    if (isContainer && !m_random.oneIn(3)) {
        // Change a part of the type: the element of an array, or members. The first one may be a
        // dictionary's key.
        DBusSignatureIter outer;
        dbus_signature_iter_init(&outer, type.constData());
        DBusSignatureIter inner;
        dbus_signature_iter_recurse(&outer, &inner);
        if (type.startsWith("a{"))
            return "a{" + type.mid(2, 1) + changedType(type.mid(3, type.size() - 4), depth + 1)
                + '}';
        if (type.startsWith('a'))
            return 'a' + changedType(take(&inner), depth + 1);
        return '(' + changed(split(type.mid(1, type.size() - 2)), depth + 1).join() + ')';
    }
    switch (m_random.below(6)) {
    case 0:
        return '(' + type + ')';
    case 1:
        return 'a' + type;
    case 2:
        return "v";
    case 3:
        return RandomSignature::type(depth);
    default:
        return {1, basicType()};
    }
}
