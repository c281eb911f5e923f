// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QMetaType>
#include <QObject>
#include <QString>
#include <QVariant>

class QDBusArgument;

struct NotificationData
{
    uint id = 0;
    QVariantMap hints;
};

/// Gives the notifications of this library another form on the bus: (ua{sv}). Call it before
/// anything else, because the D-Bus type system asks for the form only once.
void useAnotherNotificationForm();

/// The form in which a notification service sends them: (susssasa{sv}i).
QDBusArgument &operator<<(QDBusArgument &argument, const NotificationData &data);
const QDBusArgument &operator>>(const QDBusArgument &argument, NotificationData &data);

Q_DECLARE_METATYPE(NotificationData)

class Notification : public QObject
{
    Q_OBJECT

public:
    enum Urgency { Low = 0, Normal = 1, Critical = 2 };

    explicit Notification(QObject *parent = nullptr);
    ~Notification() override;

    void setAppName(const QString &name);
    void setCategory(const QString &category);
    void setSummary(const QString &summary);
    void setBody(const QString &body);
    void setUrgency(Urgency urgency);
    void setReplacesId(uint id);
    void setHintValue(const QString &hint, const QVariant &value);
    void setRemoteActions(const QVariantList &actions);
    void publish();
    uint replacesId() const { return m_id; }

private:
    uint m_id = 0;
};
