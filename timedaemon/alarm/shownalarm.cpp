// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "shownalarm.h"

#include "callui.h"
#include "duealarms.h"
#include "notificationserver.h"

#include <QDateTime>

ShownAlarm::ShownAlarm(uint cookie, const Alarm &alarm, const Services &services,
                       const Delays &delays, QObject *parent)
    : QObject(parent)
    , m_cookie(cookie)
    , m_alarm(alarm)
    , m_services(services)
{
    for (QTimer *timer : {&m_again, &m_patience}) {
        timer->setSingleShot(true);
        timer->setTimerType(Qt::PreciseTimer); // Others may go off too early.
    }
    m_again.setInterval(delays.again);
    m_patience.setInterval(delays.action);
    connect(&m_again, &QTimer::timeout, this, &ShownAlarm::show);
    connect(&m_patience, &QTimer::timeout, this, &ShownAlarm::waitForAction);
    const NotificationServer *server = &services.server;
    connect(server, &NotificationServer::ready, this, &ShownAlarm::show);
    connect(server, &NotificationServer::unavailable, this, &ShownAlarm::hide);
    connect(server, &NotificationServer::closed, this, &ShownAlarm::whenClosed);
    connect(server, &NotificationServer::invoked, this, &ShownAlarm::whenInvoked);
    show();
}

ShownAlarm::~ShownAlarm()
{
    if (m_isOpen)
        m_services.server.close(m_id);
}

void ShownAlarm::show()
{
    if (m_phase != Phase::Hidden)
        return;
    m_again.stop();
    if (!m_services.server.isReady()) {
        m_services.server.wake();
        return;
    }
    m_id = 0;
    m_services.server.show(m_alarm.notification(QDateTime::currentDateTime()), this,
                           [this](uint id) { whenShown(id); });
}

/// The server has gone, and the notification with it.
void ShownAlarm::hide()
{
    m_id = 0;
    m_isOpen = false;
    if (m_phase == Phase::Shown)
        m_phase = Phase::Hidden;
    if (m_phase == Phase::Hidden)
        m_again.start();
}

void ShownAlarm::whenShown(uint id)
{
    m_id = id;
    m_isOpen = id != 0;
    if (m_isOpen)
        m_phase = Phase::Shown;
    else
        m_again.start();
}

void ShownAlarm::whenClosed(uint id, uint reason)
{
    if (id != m_id || !m_isOpen)
        return;
    m_isOpen = false;
    if (m_phase != Phase::Shown)
        return;
    if (reason == NotificationServer::Dismissed || reason == NotificationServer::Closed) {
        m_phase = Phase::Seen;
        m_patience.start();
    } else {
        m_phase = Phase::Hidden;
        m_again.start();
    }
}

void ShownAlarm::whenInvoked(uint id, const QString &action)
{
    // The server may have closed the notification before, for any reason.
    if (id != m_id || id == 0 || m_phase == Phase::Acting || m_phase == Phase::Answered)
        return;
    const auto acted = [this](bool succeeded) { whenActed(succeeded); };
    if (action == CallAlarm::callAction() && !m_alarm.number().isEmpty())
        m_services.callUi.dial(m_alarm.number(), this, acted);
    else if (action == CallAlarm::snoozeAction())
        m_services.daemon.add(m_alarm.snoozed(QDateTime::currentDateTime()), this, acted);
    else if (action == CallAlarm::defaultAction())
        return answer();
    else
        return;
    m_phase = Phase::Acting;
    m_again.stop();
    m_patience.stop();
}

void ShownAlarm::whenActed(bool succeeded)
{
    if (succeeded) {
        answer();
    } else if (m_isOpen) {
        m_phase = Phase::Shown;
    } else {
        m_phase = Phase::Hidden;
        show();
    }
}

void ShownAlarm::waitForAction()
{
    const auto goOn = [this] {
        if (m_phase == Phase::Seen)
            answer();
    };
    // A slow server may not have said yet that an action was chosen.
    if (m_services.server.isReady())
        m_services.server.settle(this, goOn);
    else
        goOn();
}

void ShownAlarm::answer()
{
    m_phase = Phase::Answered;
    if (m_isOpen)
        m_services.server.close(m_id);
    m_isOpen = false;
    dismiss();
    Q_EMIT answered();
}

void ShownAlarm::dismiss()
{
    m_isDismissing = true;
    m_services.daemon.dismiss(m_cookie, this, [this](bool succeeded) {
        m_isDismissing = false;
        if (succeeded)
            Q_EMIT ended();
    });
}

void ShownAlarm::dismissAgain()
{
    if (isAnswered() && !m_isDismissing)
        dismiss();
}
