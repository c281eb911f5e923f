// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QMap>
#include <QMetaType>
#include <QString>
#include <QStringList>

#include <cstdint>

class QDBusArgument;

namespace Maemo::Timed {

/// Records the calls of its functions in their order.
class Event
{
public:
    class Triggers : public QMap<uint32_t, int64_t>
    {
    public:
        using QMap::QMap;
    };

    void setReminderFlag() { m_steps << QStringLiteral("reminder"); }
    void setAlarmFlag() { m_steps << QStringLiteral("alarm"); }
    void setTicker(int64_t seconds) { m_steps << QStringLiteral("ticker %1").arg(seconds); }
    void setAttribute(const QString &key, const QString &value);

    const QStringList &steps() const { return m_steps; }

private:
    QStringList m_steps;
};

QDBusArgument &operator<<(QDBusArgument &argument, const Event::Triggers &triggers);
const QDBusArgument &operator>>(const QDBusArgument &argument, Event::Triggers &triggers);

} // namespace Maemo::Timed

Q_DECLARE_METATYPE(Maemo::Timed::Event::Triggers)
