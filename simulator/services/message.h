// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusVariant>
#include <QObject>
#include <QVariantMap>

/// A text message on its way, as in oFono's D-Bus API. The scriptable members are its interface.
class Message : public QObject, public QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.ofono.Message")

public:
    struct Content
    {
        QString number;
        QString text;
    };

    /// Registers the object on \a bus.
    Message(QDBusConnection bus, QString path, Content content);
    /// Takes the object from the bus.
    ~Message() override;

    const QString &path() const { return m_path; }
    const Content &content() const { return m_content; }

    /// Tells what has become of it: "sent" or "failed".
    void setState(const QString &state);

    Q_SCRIPTABLE QVariantMap GetProperties() const;
    /// Takes the message back, which is possible until it is sent.
    Q_SCRIPTABLE void Cancel();

Q_SIGNALS:
    Q_SCRIPTABLE void PropertyChanged(const QString &name, const QDBusVariant &value);

    void cancelled();

private:
    QDBusConnection m_bus;
    const QString m_path;
    const Content m_content;
    QString m_state;
};
