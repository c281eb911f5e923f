// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QMap>
#include <QMetaType>
#include <QString>

#include <cstdint>
#include <optional>

class QDBusArgument;

namespace Maemo::Timed {

/// An alarm as it is sent to the time daemon: flags, a time and attributes.
class Event
{
public:
    /// The alarms that have yet to fire: maps the cookie of each to its ticker, in seconds since
    /// 1970-01-01 00:00 UTC. On the bus it is a{ux}.
    class Triggers : public QMap<uint32_t, int64_t>
    {
    public:
        using QMap::QMap;
    };

    void setReminderFlag() { m_flags |= Reminder; }
    void setAlarmFlag() { m_flags |= Alarm; }
    /// Sets when the alarm fires, in seconds since 1970-01-01 00:00 UTC. An event cannot be sent
    /// without it.
    void setTicker(int64_t seconds) { m_ticker = seconds; }
    /// Sets an attribute. Throws Exception if \a key is empty, or if either text has a NUL
    /// character.
    void setAttribute(const QString &key, const QString &value);

    bool hasTicker() const { return m_ticker.has_value(); }

private:
    enum Flag : uint32_t { Reminder = 1, Alarm = 2 };

    friend QDBusArgument &operator<<(QDBusArgument &argument, const Event &event);
    friend const QDBusArgument &operator>>(const QDBusArgument &argument, Event &event);

    uint32_t m_flags = 0;
    std::optional<int64_t> m_ticker;
    QMap<QString, QString> m_attributes;
};

/// The form on the bus is (uxa{ss}): flags, ticker, attributes in the order of their keys.
QDBusArgument &operator<<(QDBusArgument &argument, const Event &event);
const QDBusArgument &operator>>(const QDBusArgument &argument, Event &event);

QDBusArgument &operator<<(QDBusArgument &argument, const Event::Triggers &triggers);
const QDBusArgument &operator>>(const QDBusArgument &argument, Event::Triggers &triggers);

} // namespace Maemo::Timed

Q_DECLARE_METATYPE(Maemo::Timed::Event)
Q_DECLARE_METATYPE(Maemo::Timed::Event::Triggers)
