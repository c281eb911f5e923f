// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QThread>
#include <QVariantList>
#include <QVector>

#include <memory>

/// A service that does not answer by itself. A test gets the calls in their order, and answers each
/// when and how it likes, or not at all.
///
/// The caller may live in the same thread, as long as it does not block for the answer. It may only
/// block for introspection, which the service answers by itself, with an empty text.
class ScriptedService : public QObject
{
    Q_OBJECT

public:
    /// Connects to the bus at \a address, as \a service with all objects at and below \a path.
    ScriptedService(const QString &address, const QString &service, const QString &path);
    ~ScriptedService() override;

    /// Waits for the next call and returns it, or an invalid message if none comes.
    QDBusMessage next();
    /// Does the same for a call of \a method. Returns an invalid message if the next call is
    /// another one.
    QDBusMessage next(const QString &method);
    /// Returns the number of calls that have come and were not taken.
    int waiting() const { return static_cast<int>(m_calls.size()); }
    /// Forgets the calls that have come.
    void forget() { m_calls.clear(); }

    /// These functions do nothing for an invalid message.
    void reply(const QDBusMessage &call, const QVariantList &values);
    void fail(const QDBusMessage &call, const QString &error, const QString &text);
    /// Emits a signal of the object at \a path, or at the path of the service if that is empty.
    void emitSignal(const QString &interface, const QString &name, const QVariantList &values,
                    const QString &path = {});

    /// Waits until all messages that this process has sent, to this service or from it, have
    /// arrived and are handled.
    void settle();

Q_SIGNALS:
    void called();

protected:
    /// Takes a call that has come.
    virtual void take(const QDBusMessage &call);

private:
    Q_DISABLE_COPY(ScriptedService)
    class Objects;

    void settleOnce();

    QDBusConnection m_bus;
    const QString m_service;
    const QString m_path;
    std::unique_ptr<Objects> m_objects;
    QThread m_thread; ///< The thread of the objects.
    QVector<QDBusMessage> m_calls;
};
