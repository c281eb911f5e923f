// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "duealarms.h"

#include "replies.h"

#include <QDBusArgument>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusServiceWatcher>

#include <limits>
#include <utility>

namespace {

const QLatin1String service("com.nimbo.timed");
const QLatin1String path("/com/nimbo/timed");
const QLatin1String alarmInterface("com.nimbo.timed");
const QLatin1String dueInterface("com.nimbo.parley.DueAlarms");

DueAlarms::Outcome outcomeOf(const QDBusMessage &answer)
{
    if (isReply(answer, "(uxa{ss})"))
        return DueAlarms::Outcome::Read;
    // An error that this process has made, such as a time-out, has no sender.
    if (answer.service().isEmpty() || isFromBus(answer))
        return DueAlarms::Outcome::Unanswered;
    if (answer.errorName() == QDBusError::errorString(QDBusError::InvalidArgs))
        return DueAlarms::Outcome::Gone;
    return DueAlarms::Outcome::Unreadable;
}

} // namespace

DueAlarms::DueAlarms(QDBusConnection systemBus, QObject *parent)
    : QObject(parent)
    , m_bus(std::move(systemBus))
{
    registerAlarmTypes();
}

void DueAlarms::start()
{
    auto *watcher =
        new QDBusServiceWatcher(service, m_bus, QDBusServiceWatcher::WatchForRegistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceRegistered, this, &DueAlarms::list);
    m_bus.connect(service, path, dueInterface, QStringLiteral("Changed"), this,
                  SLOT(listChanged()));
    list();
}

void DueAlarms::listChanged()
{
    if (m_isListing)
        m_hasChanged = true;
    else
        list();
}

void DueAlarms::list()
{
    const int number = ++m_lastList;
    m_isListing = true;
    m_hasChanged = false;
    ask(dueInterface, QStringLiteral("List"), {}, this, [this, number](const QDBusMessage &answer) {
        if (number != m_lastList)
            return; // Another daemon has taken its place, and was asked.
        m_isListing = false;
        if (isReply(answer, "au")) {
            m_hasReported = false;
            Q_EMIT listed(qdbus_cast<QList<uint>>(answer.arguments().constFirst()));
        } else {
            qWarning("The due alarms cannot be listed: %s", qUtf8Printable(problemOf(answer)));
        }
        if (m_hasChanged)
            list();
    });
}

void DueAlarms::read(uint cookie, QObject *context, const ReadHandler &handler)
{
    ask(dueInterface, QStringLiteral("Get"), {cookie}, context,
        [this, cookie, handler](const QDBusMessage &answer) {
            const Outcome outcome = outcomeOf(answer);
            if (outcome == Outcome::Read) {
                handler(outcome, qdbus_cast<Alarm>(answer.arguments().constFirst()));
                return;
            }
            if (outcome != Outcome::Gone && !std::exchange(m_hasReported, true))
                qWarning("The due alarm %u cannot be read: %s", cookie,
                         qUtf8Printable(problemOf(answer)));
            handler(outcome, {});
        });
}

void DueAlarms::dismiss(uint cookie, QObject *context, const Handler &handler)
{
    ask(dueInterface, QStringLiteral("Dismiss"), {cookie}, context,
        [cookie, handler](const QDBusMessage &answer) {
            const bool succeeded = isReply(answer, "b");
            if (!succeeded)
                qWarning("The due alarm %u cannot be dismissed: %s", cookie,
                         qUtf8Printable(problemOf(answer)));
            handler(succeeded);
        });
}

void DueAlarms::add(const Alarm &alarm, QObject *context, const Handler &handler)
{
    ask(alarmInterface, QStringLiteral("add_event"), {QVariant::fromValue(alarm)}, context,
        [handler](const QDBusMessage &answer) {
            const bool succeeded = isReply(answer, "u") && answer.arguments().constFirst() != 0U;
            if (!succeeded)
                qWarning("The alarm cannot be added: %s", qUtf8Printable(problemOf(answer)));
            handler(succeeded);
        });
}

void DueAlarms::ask(const QString &interface, const QString &method, const QVariantList &arguments,
                    QObject *context, const AnswerHandler &handler)
{
    QDBusMessage call = QDBusMessage::createMethodCall(service, path, interface, method);
    call.setArguments(arguments);
    // A daemon that is slow has due alarms all the same, and the bus answers for one that ends. An
    // action is different: its user waits, and may choose again.
    constexpr int forEver = std::numeric_limits<int>::max();
    constexpr int stockTimeOut = -1;
    const bool isAction =
        method == QLatin1String("add_event") || method == QLatin1String("Dismiss");
    whenAnswered(m_bus.asyncCall(call, isAction ? stockTimeOut : forEver), context, handler);
}
