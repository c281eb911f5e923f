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

/// A notification as the notification service tells of it. On the bus (susssasa{sv}i): application
/// name, id, icon, summary, body, actions, hints, expire timeout.
struct NotificationData
{
    QString appName;
    uint id = 0;
    QString appIcon;
    QString summary;
    QString body;
    QStringList actions; ///< Names and labels in turn.
    QVariantMap hints;
    int expireTimeout = -1; ///< Milliseconds; -1 leaves it to the service, 0 is never.
};

QDBusArgument &operator<<(QDBusArgument &argument, const NotificationData &data);
const QDBusArgument &operator>>(const QDBusArgument &argument, NotificationData &data);

Q_DECLARE_METATYPE(NotificationData)

/// A notification to be shown by the service "org.freedesktop.Notifications" of the session bus.
/// It stays with the service when the object goes. The interface is that of the Desktop
/// Notifications Specification 1.2.
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
    /// The notification that this one takes the place of; 0 for a new one.
    void setReplacesId(uint id) { m_data.id = id; }
    void setHintValue(const QString &hint, const QVariant &value)
    {
        m_data.hints.insert(hint, value);
    }
    /// Each is a QVariantMap: the D-Bus call ("service", "path", "iface", "method", "arguments", a
    /// list) that the service makes when the action "name" is chosen, labelled "displayName".
    void setRemoteActions(const QVariantList &actions) { m_remoteActions = actions; }

    /// Shows it. Returns once the service has given it an id, or after five seconds at most; events
    /// are served meanwhile, whose handlers may destroy this object.
    void publish();

    /// After publish() the id that the service gave; as it was, if it gave none.
    uint replacesId() const { return m_data.id; }

private:
    NotificationData m_data;
    QString m_category;
    Urgency m_urgency = Normal;
    QVariantList m_remoteActions;
};
