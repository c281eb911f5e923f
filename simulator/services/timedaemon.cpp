// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "timedaemon.h"

#include "timedaemoncontrol.h"

#include <QDBusMetaType>
#include <QDateTime>

#include <algorithm>

namespace {

bool meets(const Alarm &alarm, const QVariantMap &criteria)
{
    for (auto it = criteria.cbegin(); it != criteria.cend(); ++it) {
        const auto attribute = alarm.attributes.constFind(it.key());
        if (attribute == alarm.attributes.cend() || it->userType() != QMetaType::QString
            || it->toString() != *attribute)
            return false;
    }
    return true;
}

} // namespace

TimeDaemon::TimeDaemon(const QString &stateFolder, QObject *parent)
    : QObject(parent)
    , m_file(stateFolder)
    , m_content(m_file.load())
{
    registerAlarmTypes();
    qDBusRegisterMetaType<Maemo::Timed::Event::Triggers>();
    connect(&m_timer, &WallClockTimer::wentOff, this, &TimeDaemon::fireDue);
    new TimeDaemonControl(*this);
}

bool TimeDaemon::start(QDBusConnection bus)
{
    const bool started = bus.registerObject(QStringLiteral("/com/nimbo/timed"), this,
                                            QDBusConnection::ExportScriptableContents
                                                | QDBusConnection::ExportAdaptors)
        && bus.registerService(QStringLiteral("com.nimbo.timed"));
    scheduleNext();
    return started;
}

uint TimeDaemon::add_event(const Alarm &alarm)
{
    const uint cookie = ++m_content.lastCookie;
    m_content.alarms.insert(cookie, alarm);
    Q_EMIT added(cookie);
    alarmsChanged();
    return cookie;
}

uint TimeDaemon::replace_event(const Alarm &alarm, uint cookie)
{
    if (m_content.alarms.remove(cookie) > 0)
        Q_EMIT cancelled(cookie);
    return add_event(alarm);
}

bool TimeDaemon::cancel(uint cookie)
{
    if (m_content.alarms.remove(cookie) == 0)
        return false;
    Q_EMIT cancelled(cookie);
    alarmsChanged();
    return true;
}

bool TimeDaemon::fire(uint cookie)
{
    if (m_content.alarms.remove(cookie) == 0)
        return false;
    Q_EMIT fired(cookie);
    alarmsChanged();
    return true;
}

QVariantList TimeDaemon::query(const QVariantMap &criteria) const
{
    QVariantList cookies;
    for (auto it = m_content.alarms.cbegin(); it != m_content.alarms.cend(); ++it) {
        if (meets(*it, criteria))
            cookies.append(it.key());
    }
    return cookies;
}

AttributesByCookie TimeDaemon::get_attributes_by_cookies(const QList<uint> &cookies) const
{
    AttributesByCookie attributes;
    for (const uint cookie : cookies) {
        const auto alarm = m_content.alarms.constFind(cookie);
        if (alarm != m_content.alarms.cend())
            attributes.insert(cookie, alarm->attributes);
    }
    return attributes;
}

/// Saves the state before others are told of it.
void TimeDaemon::alarmsChanged()
{
    m_file.save(m_content);
    // Queued behind the reply to the call that changed them, so that a client that replaced an
    // alarm knows the new cookie before it hears that the old one has gone. The list also has what
    // other calls have added by then.
    QMetaObject::invokeMethod(
        this, [this] { Q_EMIT alarm_triggers_changed(triggers()); }, Qt::QueuedConnection);
    scheduleNext();
}

Maemo::Timed::Event::Triggers TimeDaemon::triggers() const
{
    Maemo::Timed::Event::Triggers triggers;
    for (auto it = m_content.alarms.cbegin(); it != m_content.alarms.cend(); ++it)
        triggers.insert(it.key(), it->ticker);
    return triggers;
}

void TimeDaemon::fireDue()
{
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    const QList<uint> cookies = m_content.alarms.keys();
    for (const uint cookie : cookies) {
        if (m_content.alarms.value(cookie).ticker <= now)
            fire(cookie);
    }
    scheduleNext();
}

void TimeDaemon::scheduleNext()
{
    const auto earlier = [](const Alarm &one, const Alarm &other) {
        return one.ticker < other.ticker;
    };
    const auto next = std::min_element(m_content.alarms.cbegin(), m_content.alarms.cend(), earlier);
    if (next == m_content.alarms.cend())
        m_timer.stop();
    else
        m_timer.start(next->ticker);
}
