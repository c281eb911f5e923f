// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantHash>

class QDBusArgument;

/// A notification in the form in which the notification service lists it. On the bus it is
/// (susssasa{sv}i): application name, id, icon, summary, body, actions, hints, expire timeout.
struct NotificationData
{
    QString appName;
    uint id = 0;
    QString appIcon;
    QString summary;
    QString body;
    QStringList actions; ///< Names and labels alternate.
    QVariantMap hints;
    int expireTimeout = -1; ///< In milliseconds; -1 leaves it to the service, 0 means never.
};

QDBusArgument &operator<<(QDBusArgument &argument, const NotificationData &data);
const QDBusArgument &operator>>(const QDBusArgument &argument, NotificationData &data);

Q_DECLARE_METATYPE(NotificationData)

/// A notification to be shown by the service "org.freedesktop.Notifications" of the session bus.
/// The service goes on showing it when the object is destroyed. The interface is that of the
/// Desktop Notifications Specification 1.2.
class Notification : public QObject
{
    Q_OBJECT

public:
    enum Urgency { Low = 0, Normal = 1, Critical = 2 };

    explicit Notification(QObject *parent = nullptr);

    void setAppName(const QString &name) { m_data.appName = name; }
    void setCategory(const QString &category) { m_category = category; }
    void setSummary(const QString &summary) { m_data.summary = summary; }
    void setBody(const QString &body) { m_data.body = body; }
    void setUrgency(Urgency urgency) { m_urgency = urgency; }
    /// Sets the notification that this one replaces; 0 for a new one.
    void setReplacesId(uint id) { m_data.id = id; }
    void setHintValue(const QString &hint, const QVariant &value)
    {
        m_data.hints.insert(hint, value);
    }
    /// Sets the actions. Each is a QVariantMap: "name", "displayName" (its label), and the D-Bus
    /// call that the service makes when the user chooses it ("service", "path", "iface", "method"
    /// and "arguments", a list).
    void setRemoteActions(const QVariantList &actions) { m_remoteActions = actions; }

    /// Shows the notification. Blocks until the service has given it an id, for five seconds at
    /// most. Events are processed meanwhile, whose handlers may destroy this object.
    void publish();

    /// Returns the id that the service has given in publish(). Unchanged if it has given none.
    uint replacesId() const { return m_data.id; }

private:
    NotificationData m_data;
    QString m_category;
    Urgency m_urgency = Normal;
    QVariantList m_remoteActions;
};
