// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "alarm.h"
#include "answers.h"

#include <QDBusConnection>
#include <QList>
#include <QObject>
#include <QVariantList>

#include <functional>

/// The due alarms of this user, which the time daemon, "com.nimbo.timed" on the system bus, keeps
/// until they are dismissed. Nothing blocks until the daemon answers. What it fails to answer is
/// logged.
class DueAlarms : public QObject
{
    Q_OBJECT

public:
    /// What has become of the request for an alarm.
    enum class Outcome {
        Read,
        Gone, ///< The alarm is no longer due.
        Unreadable, ///< The daemon has answered with another error, or with nonsense.
        Unanswered, ///< The daemon has not answered.
    };
    /// \a alarm is empty unless it was read.
    using ReadHandler = std::function<void(Outcome outcome, const Alarm &alarm)>;
    using Handler = std::function<void(bool succeeded)>;

    explicit DueAlarms(QDBusConnection systemBus, QObject *parent = nullptr);

    /// Asks for the list now, when the daemon appears and when the list changes.
    void start();

    // Each handler runs unless its context is destroyed before.

    /// Requests a due alarm. Of several failures, only the first after each list is logged.
    void read(uint cookie, QObject *context, const ReadHandler &handler);
    /// Dismisses a due alarm. It is also a success if there is none with that cookie.
    void dismiss(uint cookie, QObject *context, const Handler &handler);
    /// Adds an alarm to those of the daemon.
    void add(const Alarm &alarm, QObject *context, const Handler &handler);

Q_SIGNALS:
    /// The daemon has answered with the list of due alarms. The first has been due for the longest
    /// time.
    void listed(const QList<uint> &cookies);

private Q_SLOTS:
    void listChanged();

private:
    void list();
    void ask(const QString &interface, const QString &method, const QVariantList &arguments,
             QObject *context, const AnswerHandler &handler);

    QDBusConnection m_bus;
    int m_lastList = 0; ///< The number of the request for the list that was made last.
    bool m_isListing = false;
    bool m_hasChanged = false; ///< The list has changed since it was requested.
    bool m_hasReported = false; ///< A failure to read was logged since the last list.
};
