// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "notification.h"

#include "answers.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QEventLoop>
#include <QPointer>

#include <chrono>
#include <utility>

namespace {

const QLatin1String service("org.freedesktop.Notifications");
const QLatin1String path("/org/freedesktop/Notifications");
/// Qt's timer may be late by a twentieth, so this makes five seconds at most.
constexpr std::chrono::milliseconds patience(4750);

/// Returns an action in the form in which the service gets it: as an additional hint.
QVariantMap remoteCall(const QVariantMap &action)
{
    QVariantMap call;
    for (const char *key : {"service", "path", "iface", "method"})
        call.insert(QLatin1String(key), action.value(QLatin1String(key)).toString());
    call.insert(QStringLiteral("arguments"), action.value(QStringLiteral("arguments")).toList());
    return call;
}

} // namespace

Notification::Notification(QObject *parent)
    : QObject(parent)
{
}

void Notification::publish()
{
    QVariantMap hints = m_data.hints;
    hints.insert(QStringLiteral("urgency"), QVariant::fromValue(static_cast<uchar>(m_urgency)));
    hints.insert(QStringLiteral("category"), m_category);
    QStringList actions;
    for (const QVariant &remoteAction : std::as_const(m_remoteActions)) {
        const QVariantMap action = remoteAction.toMap();
        const QString name = action.value(QStringLiteral("name")).toString();
        actions << name << action.value(QStringLiteral("displayName")).toString();
        hints.insert(QLatin1String("x-nimbo-remote-action-") + name, remoteCall(action));
    }

    QDBusMessage notify =
        QDBusMessage::createMethodCall(service, path, service, QStringLiteral("Notify"));
    notify.setArguments(
        {m_data.appName, m_data.id, QString(), m_data.summary, m_data.body, actions, hints, -1});

    const QDBusConnection bus = QDBusConnection::sessionBus();
    const QPointer<Notification> self(this);
    QEventLoop loop;
    whenOwnerAnswered(bus, service, bus.asyncCall(notify, static_cast<int>(patience.count())),
                      &loop, [&](const QDBusMessage &answer) {
                          const bool hasId = answer.type() == QDBusMessage::ReplyMessage
                              && answer.signature() == QLatin1String("u");
                          if (self && hasId)
                              m_data.id = answer.arguments().constFirst().toUInt();
                          loop.quit();
                      });
    loop.exec();
}
