// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "timedaemon.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDir>

#include <cstdlib>
#include <utility>

namespace {

const QLatin1String busName("com.nimbo.timed");
const QLatin1String objectPath("/com/nimbo/timed");
const QLatin1String fileSuffix(".json");

TickersByCookie triggersOf(const AlarmsByCookie &alarms)
{
    TickersByCookie triggers;
    for (auto it = alarms.cbegin(); it != alarms.cend(); ++it)
        triggers.insert(it.key(), it->ticker);
    return triggers;
}

} // namespace

TimeDaemon::TimeDaemon(QString stateFolder, WallClock &clock, const QDBusConnection &bus,
                       QObject *parent)
    : QObject(parent)
    , m_stateFolder(std::move(stateFolder))
    , m_clock(clock)
    , m_bus(bus)
    , m_busUsers(bus)
{
    registerAlarmTypes();
    connect(&m_clock, &WallClock::woke, this, &TimeDaemon::fireDue);
}

bool TimeDaemon::start()
{
    // The name first: nobody else may write the files from then on.
    if (!m_bus.registerObject(objectPath, this,
                              QDBusConnection::ExportScriptableContents
                                  | QDBusConnection::ExportAdaptors)
        || !m_bus.registerService(busName))
        return false;
    m_bus.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                  QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"),
                  this, SLOT(loseBus()));
    load();
    scheduleNext();
    return true;
}

void TimeDaemon::loseBus()
{
    qCritical("The system bus has ended, or has closed the connection.");
    QCoreApplication::exit(EXIT_FAILURE);
}

void TimeDaemon::load()
{
    const QStringList files =
        QDir(m_stateFolder).entryList({QLatin1Char('*') + fileSuffix}, QDir::Files);
    for (const QString &file : files) {
        bool isUser = false;
        const uint user = file.chopped(fileSuffix.size()).toUInt(&isUser);
        if (isUser)
            alarmsOf(user);
    }
}

UserAlarms &TimeDaemon::alarmsOf(uint user)
{
    const QString path = m_stateFolder + QLatin1Char('/') + QString::number(user) + fileSuffix;
    return m_alarms.try_emplace(user, path).first->second;
}

std::optional<uint> TimeDaemon::caller()
{
    const auto user = m_busUsers.userOf(message().service());
    if (!user)
        sendErrorReply(QDBusError::AccessDenied, QStringLiteral("the caller is unknown"));
    return user;
}

uint TimeDaemon::add_event(const Alarm &alarm)
{
    return replace_event(alarm, 0);
}

uint TimeDaemon::replace_event(const Alarm &alarm, uint cookie)
{
    const auto user = caller();
    if (!user)
        return 0;
    const bool replaces = alarmsOf(*user).pending().contains(cookie);
    const uint newCookie = answer(alarmsOf(*user).add(alarm, cookie));
    if (newCookie == 0)
        return 0;
    if (replaces)
        Q_EMIT cancelled(*user, cookie);
    Q_EMIT added(*user, newCookie);
    tellTriggersLater(*user);
    scheduleNext();
    return newCookie;
}

bool TimeDaemon::cancel(uint cookie)
{
    const auto user = caller();
    if (!user || !answer(alarmsOf(*user).cancel(cookie)))
        return false;
    Q_EMIT cancelled(*user, cookie);
    tellTriggersLater(*user);
    scheduleNext();
    return true;
}

QVariantList TimeDaemon::query(const QVariantMap &criteria)
{
    QVariantList found;
    if (const auto user = caller()) {
        const QList<uint> cookies = alarmsOf(*user).find(criteria);
        for (const uint cookie : cookies)
            found.append(cookie);
    }
    return found;
}

AttributesByCookie TimeDaemon::get_attributes_by_cookies(const QList<uint> &cookies)
{
    const auto user = caller();
    if (!user)
        return {};
    if (cookies.size() > maxCookies) {
        sendErrorReply(QDBusError::LimitsExceeded,
                       QStringLiteral("a list has at most %1 cookies").arg(maxCookies));
        return {};
    }
    AttributesByCookie attributes;
    const AlarmsByCookie &alarms = alarmsOf(*user).pending();
    for (const uint cookie : cookies) {
        const auto alarm = alarms.constFind(cookie);
        if (alarm != alarms.cend())
            attributes.insert(cookie, alarm->attributes);
    }
    return attributes;
}

bool TimeDaemon::fireEarly(uint user, uint cookie)
{
    if (!alarmsOf(user).fireEarly(cookie))
        return false;
    Q_EMIT fired(user, cookie);
    Q_EMIT dueChanged(user);
    tellTriggersLater(user);
    scheduleNext();
    return true;
}

bool TimeDaemon::dismiss(uint user, uint cookie)
{
    const bool dismissed = answer(alarmsOf(user).dismiss(cookie));
    if (dismissed)
        Q_EMIT dueChanged(user);
    return dismissed;
}

/// Queued behind the reply to the call that changed the alarms, so that a client that replaced an
/// alarm knows the new cookie before it hears that the old one has gone. The list also has what
/// other calls have added by then. \a times is how many alarms have changed.
void TimeDaemon::tellTriggersLater(uint user, qsizetype times)
{
    const auto arguments = [this, user] {
        return QVariantList{QVariant::fromValue(triggersOf(alarmsOf(user).pending()))};
    };
    const auto tellTriggers = [this, user, times, arguments] {
        constexpr qsizetype bytesPerTicker = 16;
        tell(user,
             {busName, QStringLiteral("alarm_triggers_changed"),
              bytesPerTicker * alarmsOf(user).pending().size(), arguments},
             times);
    };
    QMetaObject::invokeMethod(this, tellTriggers, Qt::QueuedConnection);
}

void TimeDaemon::tell(uint user, const PacedSignals::Signal &signal, qsizetype times)
{
    PacedSignals &paced = m_signals.try_emplace(user, m_bus, objectPath).first->second;
    const QStringList connections = m_busUsers.connectionsOf(user);
    for (const QString &connection : connections) {
        for (qsizetype i = 0; i < times; ++i)
            paced.send(connection, signal);
    }
}

void TimeDaemon::fireDue()
{
    const qint64 now = m_clock.now();
    for (auto &[user, alarms] : m_alarms) {
        const QList<uint> cookies = alarms.fire(now);
        if (cookies.isEmpty())
            continue;
        for (const uint cookie : cookies)
            Q_EMIT fired(user, cookie);
        Q_EMIT dueChanged(user);
        tellTriggersLater(user, cookies.size());
    }
    scheduleNext();
}

void TimeDaemon::scheduleNext()
{
    std::optional<qint64> next;
    for (const auto &[user, alarms] : m_alarms) {
        const auto ticker = alarms.nextTicker();
        if (ticker && (!next || *ticker < *next))
            next = ticker;
    }
    if (next)
        m_clock.wakeAt(*next);
    else
        m_clock.letSleep();
}
