// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "event.h"

#include "exception.h"
#include "fakeplatform.h"

#include <QDBusArgument>

#include <utility>

namespace Maemo::Timed {

void Event::setAttribute(const QString &key, const QString &value)
{
    if (std::exchange(FakePlatform::instance().throwFromSetAttribute, false))
        throw Exception();
    m_steps << key + QLatin1Char('=') + value;
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
    const auto map = qdbus_cast<QMap<uint, qlonglong>>(argument);
    for (auto it = map.cbegin(); it != map.cend(); ++it)
        triggers.insert(it.key(), it.value());
    return argument;
}

} // namespace Maemo::Timed
