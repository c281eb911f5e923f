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

/// A service that answers nothing by itself: a test sees the calls that come, in their order, and
/// answers each when and how it likes, or not at all.
///
/// The caller may live in the same thread, as long as it does not wait for the answer. What asks
/// for the introspection of an object may wait: that alone is answered by itself, with none.
class ScriptedService : public QObject
{
    Q_OBJECT

public:
    /// On the bus at \a address, with the name \a service and every object at and below \a path.
    ScriptedService(const QString &address, const QString &service, const QString &path);
    ~ScriptedService() override;

    /// Waits for the next call, and takes it. An invalid message if none comes.
    QDBusMessage next();
    /// The same, for a call of \a method; other calls before it are an error, and an invalid
    /// message is returned.
    QDBusMessage next(const QString &method);
    /// Calls that have come and were not taken.
    int waiting() const { return m_calls.size(); }
    /// Forgets the calls that have come.
    void forget() { m_calls.clear(); }

    /// Neither answers an invalid message.
    void reply(const QDBusMessage &call, const QVariantList &values);
    void fail(const QDBusMessage &call, const QString &error, const QString &text);
    /// From the object at \a path, or, without one, at the path of the service.
    void emitSignal(const QString &interface, const QString &name, const QVariantList &values,
                    const QString &path = {});

    /// Waits until everything that was sent by this process before has reached this service, or the
    /// process, and has been handled.
    void settle();

Q_SIGNALS:
    void called();

protected:
    /// A call has come.
    virtual void take(const QDBusMessage &call);

private:
    Q_DISABLE_COPY(ScriptedService)
    class Objects;

    void settleOnce();

    QDBusConnection m_bus;
    const QString m_service;
    const QString m_path;
    std::unique_ptr<Objects> m_objects;
    QThread m_thread; ///< Of the objects.
    QVector<QDBusMessage> m_calls;
};
