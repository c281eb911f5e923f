// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "event.h"

#include "exception.h"

#include <QDBusArgument>

namespace Maemo::Timed {

void Event::setAttribute(const QString &key, const QString &value)
{
    if (key.isEmpty())
        throw Exception("an attribute needs a key");
    if (key.contains(QChar(0)) || value.contains(QChar(0)))
        throw Exception("an attribute cannot hold a NUL character");
    m_attributes.insert(key, value);
}

QDBusArgument &operator<<(QDBusArgument &argument, const Event &event)
{
    argument.beginStructure();
    argument << event.m_flags << qlonglong{event.m_ticker.value_or(0)} << event.m_attributes;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, Event &event)
{
    qlonglong ticker = 0;
    argument.beginStructure();
    argument >> event.m_flags >> ticker >> event.m_attributes;
    argument.endStructure();
    event.m_ticker = ticker;
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const Event::Triggers &triggers)
{
    argument.beginMap(QMetaType::UInt, QMetaType::LongLong);
    for (auto it = triggers.cbegin(); it != triggers.cend(); ++it) {
        argument.beginMapEntry();
        argument << it.key() << qlonglong{it.value()};
        argument.endMapEntry();
    }
    argument.endMap();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, Event::Triggers &triggers)
{
    triggers.clear();
    argument.beginMap();
    while (!argument.atEnd()) {
        uint32_t cookie = 0;
        qlonglong ticker = 0;
        argument.beginMapEntry();
        argument >> cookie >> ticker;
        argument.endMapEntry();
        triggers.insert(cookie, ticker);
    }
    argument.endMap();
    return argument;
}

} // namespace Maemo::Timed
