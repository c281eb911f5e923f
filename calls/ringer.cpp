// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "ringer.h"

#include "answers.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusServiceWatcher>
#include <QPointer>
#include <QVariantMap>

#include <limits>

namespace {

const QLatin1String service("org.sigxcpu.Feedback");
const QLatin1String path("/org/sigxcpu/Feedback");
const QLatin1String interface("org.sigxcpu.Feedback");
const QLatin1String application("com.nimbo.parley.ui");
const QLatin1String incomingCall("phone-incoming-call");

constexpr int endless = 0;

QDBusMessage endCall(const QString &owner, uint id)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(owner, path, interface, QStringLiteral("EndFeedback"));
    call.setArguments({id});
    return call;
}

} // namespace

Ringer::Ringer(QObject *parent)
    : QObject(parent)
    , m_bus(QString())
{
}

Ringer::~Ringer()
{
    end();
}

void Ringer::componentComplete()
{
    m_complete = true;
    if (m_active)
        trigger();
}

void Ringer::setActive(bool active)
{
    if (active == m_active)
        return;
    m_active = active;
    if (!active)
        end();
    else if (m_complete)
        trigger();
    const QPointer<Ringer> self(this);
    Q_EMIT activeChanged();
    if (self && !m_active)
        setRinging(false);
}

/// A subscription to the name of the service would block for its owner. The sender of each signal
/// is checked instead.
void Ringer::connectToBus()
{
    if (m_serviceWatcher)
        return;
    m_bus = QDBusConnection::sessionBus();
    m_serviceWatcher = std::make_unique<QDBusServiceWatcher>(service, m_bus);
    connect(
        m_serviceWatcher.get(), &QDBusServiceWatcher::serviceOwnerChanged, this,
        [this](const QString &, const QString &, const QString &owner) { ownerChanged(owner); });
    m_bus.connect(QString(), path, interface, QStringLiteral("FeedbackEnded"), QStringList(),
                  QStringLiteral("uu"), this, SLOT(feedbackEnded(QDBusMessage)));
}

/// When feedbackd stops, it no longer rings. Another one has to be told.
void Ringer::ownerChanged(const QString &owner)
{
    if (m_active && !m_isTriggering && !owner.isEmpty() && owner != m_feedback.first)
        trigger();
    if (owner != m_feedback.first)
        setRinging(false);
}

/// The answer is wanted in any case: without it nobody could end the ringing.
void Ringer::trigger()
{
    connectToBus();
    m_ended.clear();
    m_isTriggering = true;
    QDBusMessage call =
        QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("TriggerFeedback"));
    call.setArguments({QString(application), QString(incomingCall), QVariantMap(), endless});
    const QPointer<Ringer> self(this);
    whenOwnerAnswered(m_bus, service, m_bus.asyncCall(call, std::numeric_limits<int>::max()),
                      QCoreApplication::instance(),
                      [self, bus = m_bus, number = ++m_trigger](const QDBusMessage &answer) {
                          const bool isLast = self && self->m_trigger == number;
                          if (isLast)
                              self->m_isTriggering = false;
                          if (answer.type() != QDBusMessage::ReplyMessage
                              || answer.signature() != QLatin1String("u"))
                              return;
                          const uint id = answer.arguments().constFirst().toUInt();
                          if (isLast && self->m_active)
                              self->begin({answer.service(), id});
                          else
                              bus.send(endCall(answer.service(), id));
                      });
}

void Ringer::begin(const Feedback &feedback)
{
    m_feedback = feedback;
    setRinging(!m_ended.contains(feedback));
}

void Ringer::end()
{
    if (m_ringing)
        m_bus.send(endCall(m_feedback.first, m_feedback.second));
    m_feedback = {};
}

void Ringer::feedbackEnded(const QDBusMessage &message)
{
    constexpr int most = 16;
    const Feedback ended{message.service(), message.arguments().constFirst().toUInt()};
    if (m_isTriggering && m_ended.size() < most)
        m_ended.append(ended);
    if (ended == m_feedback)
        setRinging(false);
}

void Ringer::setRinging(bool ringing)
{
    if (ringing == m_ringing)
        return;
    m_ringing = ringing;
    Q_EMIT ringingChanged();
}
