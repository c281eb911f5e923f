// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "callalarm.h"

#include <QObject>
#include <QTimer>

#include <chrono>

class CallUi;
class DueAlarms;
class NotificationServer;

/// Keeps one due alarm before the user until the user has answered it, and then dismisses it in the
/// time daemon. The destructor closes the notification.
class ShownAlarm : public QObject
{
    Q_OBJECT

public:
    struct Delays
    {
        /// How long until an alarm that the server closed or could not show is shown again.
        std::chrono::milliseconds again = std::chrono::minutes(1);
        /// How long an action is waited for after the notification was closed. Some servers close
        /// a notification first, and only then say that it was for an action.
        std::chrono::milliseconds action = std::chrono::seconds(1);
    };

    /// The services that the alarm deals with. They must exist for as long as the alarm.
    struct Services
    {
        DueAlarms &daemon;
        NotificationServer &server;
        CallUi &callUi;
    };

    /// Shows the \a alarm as soon as there is a server.
    ShownAlarm(uint cookie, const Alarm &alarm, const Services &services, const Delays &delays,
               QObject *parent = nullptr);
    ~ShownAlarm() override;

    /// Returns whether the user has answered the alarm. It is not shown any more then, and only
    /// waits to be dismissed.
    bool isAnswered() const { return m_phase == Phase::Answered; }

    /// Tries again to dismiss an answered alarm that the daemon still has.
    void dismissAgain();

Q_SIGNALS:
    /// The user has answered the alarm.
    void answered();
    /// The alarm was dismissed, and this object is not needed any more.
    void ended();

private:
    enum class Phase {
        Hidden, ///< It has to be shown, or is about to be.
        Shown,
        Seen, ///< The user has closed it, perhaps to choose an action.
        Acting, ///< The action's answer decides what comes next.
        Answered,
    };

    void show();
    void hide();
    void whenShown(uint id);
    void whenClosed(uint id, uint reason);
    void whenInvoked(uint id, const QString &action);
    void whenActed(bool succeeded);
    void waitForAction();
    void answer();
    void dismiss();

    const uint m_cookie;
    const CallAlarm m_alarm;
    const Services m_services;
    Phase m_phase = Phase::Hidden;
    uint m_id = 0; ///< The notification that was shown last; 0 if its server has gone.
    bool m_isOpen = false; ///< The notification has not been closed.
    bool m_isDismissing = false;
    QTimer m_again;
    QTimer m_patience;
};
