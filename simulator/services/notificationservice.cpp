// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "notificationservice.h"

#include "notificationservicecontrol.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QTimerEvent>

#include <algorithm>

namespace {

/// Reads a value inside another value. Its type is checked first, because reading it as another
/// type would end the process.
template <typename T>
T read(const QVariant &value, const char *signature)
{
    if (value.userType() != qMetaTypeId<QDBusArgument>())
        return value.value<T>();
    const auto argument = value.value<QDBusArgument>();
    return argument.currentSignature() == QLatin1String(signature) ? qdbus_cast<T>(argument) : T();
}

/// \a actions has a name and a label in turn for each action.
bool hasAction(const QStringList &actions, const QString &name)
{
    for (int i = 0; i < actions.size(); i += 2) {
        if (actions.at(i) == name)
            return true;
    }
    return false;
}

} // namespace

NotificationService::NotificationService(QObject *parent)
    : QObject(parent)
    , m_bus(QString())
{
    qDBusRegisterMetaType<NotificationData>();
    qDBusRegisterMetaType<NotificationList>();
    new NotificationServiceControl(*this);
}

bool NotificationService::start(const QDBusConnection &bus)
{
    m_bus = bus;
    return m_bus.registerObject(QStringLiteral("/org/freedesktop/Notifications"), this,
                                QDBusConnection::ExportScriptableContents
                                    | QDBusConnection::ExportAdaptors)
        && m_bus.registerService(QStringLiteral("org.freedesktop.Notifications"));
}

NotificationList NotificationService::notifications() const
{
    NotificationList all;
    for (const Shown &one : m_shown)
        all.append(one.data);
    return all;
}

bool NotificationService::has(uint id, const QString &action) const
{
    const auto found = m_shown.constFind(id);
    return found != m_shown.cend() && (action.isEmpty() || hasAction(found->data.actions, action));
}

void NotificationService::choose(uint id, const QString &action)
{
    call(m_shown.value(id).data, action);
    const bool stays = m_shown.value(id).data.hints.value(QStringLiteral("resident")).toBool();
    Q_EMIT ActionInvoked(id, action);
    if (!stays)
        close(id, Dismissed);
}

bool NotificationService::dismiss(uint id)
{
    return close(id, Dismissed);
}

uint NotificationService::Notify(const QString &appName, uint replacesId, const QString &appIcon,
                                 const QString &summary, const QString &body,
                                 const QStringList &actions, const QVariantMap &hints,
                                 int expireTimeout)
{
    const uint id = has(replacesId) ? replacesId : ++m_lastId;
    if (const int timer = m_shown.value(id).timer)
        killTimer(timer);
    m_shown.insert(id,
                   {{appName, id, appIcon, summary, body, actions, hints, expireTimeout},
                    expireTimeout > 0 ? startTimer(expireTimeout) : 0});
    Q_EMIT shown(id, summary, body);
    return id;
}

void NotificationService::CloseNotification(uint id)
{
    if (!close(id, Closed))
        sendErrorReply(QDBusError::InvalidArgs);
}

QStringList NotificationService::GetCapabilities() const
{
    return {QStringLiteral("actions"), QStringLiteral("body"), QStringLiteral("persistence")};
}

QString NotificationService::GetServerInformation(QString &vendor, QString &version,
                                                  QString &specVersion) const
{
    vendor = QStringLiteral("Parley");
    version = QStringLiteral("1.0");
    specVersion = QStringLiteral("1.2");
    return QStringLiteral("Parley handset");
}

NotificationList NotificationService::GetNotificationsByCategory(const QString &category) const
{
    NotificationList found;
    for (const Shown &one : m_shown) {
        const QVariant hint = one.data.hints.value(QStringLiteral("category"));
        if (hint.userType() == QMetaType::QString && hint.toString() == category)
            found.append(one.data);
    }
    return found;
}

void NotificationService::timerEvent(QTimerEvent *event)
{
    const auto expired = std::find_if(m_shown.cbegin(), m_shown.cend(), [event](const Shown &one) {
        return one.timer == event->timerId();
    });
    if (expired != m_shown.cend())
        close(expired.key(), Expired);
}

bool NotificationService::close(uint id, Reason reason)
{
    if (!has(id))
        return false;
    if (const int timer = m_shown.take(id).timer)
        killTimer(timer);
    Q_EMIT NotificationClosed(id, reason);
    return true;
}

void NotificationService::call(const NotificationData &data, const QString &action)
{
    const QVariant hint = data.hints.value(QLatin1String("x-nimbo-remote-action-") + action);
    if (!hint.isValid())
        return;
    const auto remote = read<QVariantMap>(hint, "a{sv}");
    const auto text = [&remote](const char *key) {
        return remote.value(QLatin1String(key)).toString();
    };
    QDBusMessage message = QDBusMessage::createMethodCall(text("service"), text("path"),
                                                          text("iface"), text("method"));
    message.setArguments(read<QVariantList>(remote.value(QStringLiteral("arguments")), "av"));
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(message), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [watcher, action, id = data.id] {
        watcher->deleteLater();
        if (watcher->isError())
            qWarning("The action \"%s\" of notification %u failed: %s", qUtf8Printable(action), id,
                     qUtf8Printable(watcher->error().message()));
    });
}
