// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "notificationserver.h"

#include "answers.h"
#include "replies.h"

#include <QDBusError>
#include <QDBusPendingCall>
#include <QDBusServiceWatcher>
#include <QPointer>

#include <limits>
#include <utility>

namespace {

const QLatin1String service("org.freedesktop.Notifications");
const QLatin1String path("/org/freedesktop/Notifications");
constexpr int noTimeOut = std::numeric_limits<int>::max();
constexpr int mostEarlySignals = 64;
constexpr uchar critical = 2;

uint idOf(const QDBusMessage &signal)
{
    return signal.arguments().constFirst().toUInt();
}

} // namespace

NotificationServer::NotificationServer(QDBusConnection sessionBus, QObject *parent)
    : QObject(parent)
    , m_bus(std::move(sessionBus))
{
}

NotificationServer::~NotificationServer()
{
    // The bus handles the messages of a connection in their order, so this answer comes last.
    m_bus.call(busQuestion(QStringLiteral("NameHasOwner"), service), QDBus::Block, 1000);
}

void NotificationServer::start()
{
    auto *watcher =
        new QDBusServiceWatcher(service, m_bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &, const QString &owner) { setOwner(owner); });
    for (const auto &[name, signature] :
         {std::pair("NotificationClosed", "uu"), std::pair("ActionInvoked", "us")})
        m_bus.connect(service, path, service, QLatin1String(name), {}, QLatin1String(signature),
                      this, SLOT(signalled(QDBusMessage)));
    askForOwner();
}

/// An answer that there is none is old if the server has announced itself meanwhile.
void NotificationServer::askForOwner()
{
    whenAnswered(m_bus.asyncCall(busQuestion(QStringLiteral("GetNameOwner"), service)), this,
                 [this](const QDBusMessage &answer) {
                     if (isFromBus(answer) && isReply(answer, "s"))
                         setOwner(answer.arguments().constFirst().toString());
                 });
}

void NotificationServer::wake()
{
    if (!m_owner.isEmpty() || std::exchange(m_isWaking, true))
        return;
    QDBusMessage question = busQuestion(QStringLiteral("StartServiceByName"), service);
    question.setArguments({service, 0U});
    whenAnswered(m_bus.asyncCall(question), this, [this](const QDBusMessage &answer) {
        m_isWaking = false;
        if (answer.type() != QDBusMessage::ErrorMessage) {
            askForOwner();
            return;
        }
        report("The notification server cannot be started", answer);
        // A server that the bus does not know announces itself when it is there.
        if (answer.errorName() != QDBusError::errorString(QDBusError::ServiceUnknown))
            Q_EMIT unavailable();
    });
}

void NotificationServer::setOwner(const QString &owner)
{
    if (owner == m_owner)
        return;
    m_owner = owner;
    m_isReady = false;
    m_hasBodyMarkup = false;
    m_underWay = 0;
    m_ids.clear();
    m_earlySignals.clear();
    Q_EMIT unavailable();
    if (owner.isEmpty())
        return;
    whenAnswered(m_bus.asyncCall(makeCall(QStringLiteral("GetCapabilities"))), this,
                 [this, owner](const QDBusMessage &answer) {
                     if (owner == m_owner)
                         setCapabilities(answer);
                 });
}

void NotificationServer::setCapabilities(const QDBusMessage &answer)
{
    if (answer.service() == m_owner && isReply(answer, "as"))
        m_hasBodyMarkup =
            answer.arguments().constFirst().toStringList().contains(QStringLiteral("body-markup"));
    else
        report("The notification server does not say what it is capable of", answer);
    m_isReady = true;
    Q_EMIT ready();
}

void NotificationServer::show(const CallAlarm::Notification &notification, QObject *context,
                              const std::function<void(uint id)> &handler)
{
    //% "Phone"
    const QString appName = qtTrId("parley-ap-name");
    const QVariantMap hints{
        {QStringLiteral("urgency"), QVariant::fromValue(critical)},
        {QStringLiteral("category"), QStringLiteral("x-nimbo-call-alarm")},
        {QStringLiteral("sound-name"), QStringLiteral("alarm-clock-elapsed")},
        {QStringLiteral("resident"), true},
    };
    const QDBusMessage call =
        makeCall(QStringLiteral("Notify"),
                 {appName, 0U, QStringLiteral("appointment-soon"), notification.summary,
                  m_hasBodyMarkup ? notification.body.toHtmlEscaped() : notification.body,
                  notification.actions, hints, 0});
    ++m_underWay;
    whenAnswered(m_bus.asyncCall(call, noTimeOut), this,
                 [this, owner = m_owner, wanting = QPointer<QObject>(context),
                  handler](const QDBusMessage &answer) {
                     if (owner == m_owner)
                         shown(answer, !wanting.isNull(), handler);
                 });
}

void NotificationServer::shown(const QDBusMessage &answer, bool isWanted,
                               const std::function<void(uint)> &handler)
{
    --m_underWay;
    const uint id = answer.service() == m_owner && isReply(answer, "u")
        ? answer.arguments().constFirst().toUInt()
        : 0;
    // The same id twice would give one alarm the answers of another.
    const bool isNew = id != 0 && !m_ids.contains(id);
    if (isNew && !isWanted) {
        close(id);
    } else if (isNew) {
        m_hasReported = false;
        m_ids.insert(id);
        handler(id);
        emitEarlySignals(id);
    } else {
        report("The notification server cannot show an alarm", answer);
        if (isWanted)
            handler(0);
    }
    if (m_underWay == 0)
        m_earlySignals.clear();
}

void NotificationServer::close(uint id)
{
    m_ids.remove(id);
    m_bus.send(makeCall(QStringLiteral("CloseNotification"), {id}));
}

void NotificationServer::settle(QObject *context, const std::function<void()> &handler)
{
    // A server handles this request behind what it was at. The answer itself does not matter.
    whenAnswered(m_bus.asyncCall(makeCall(QStringLiteral("GetServerInformation"))), context,
                 [handler](const QDBusMessage &) { handler(); });
}

void NotificationServer::signalled(const QDBusMessage &signal)
{
    const bool isClosed = signal.member() == QLatin1String("NotificationClosed");
    if (signal.service() != m_owner || signal.signature() != QLatin1String(isClosed ? "uu" : "us"))
        return;
    if (m_underWay > 0 && !m_ids.contains(idOf(signal))) {
        if (m_earlySignals.size() == mostEarlySignals)
            m_earlySignals.removeFirst();
        m_earlySignals.append(signal);
    }
    emitSignal(signal);
}

void NotificationServer::emitSignal(const QDBusMessage &signal)
{
    const QVariant value = signal.arguments().constLast();
    if (signal.member() == QLatin1String("NotificationClosed")) {
        m_ids.remove(idOf(signal));
        Q_EMIT closed(idOf(signal), value.toUInt());
    } else {
        Q_EMIT invoked(idOf(signal), value.toString());
    }
}

void NotificationServer::emitEarlySignals(uint id)
{
    const QVector<QDBusMessage> early = m_earlySignals;
    for (const QDBusMessage &signal : early) {
        if (idOf(signal) == id)
            emitSignal(signal);
    }
}

void NotificationServer::report(const char *problem, const QDBusMessage &answer)
{
    if (!std::exchange(m_hasReported, true))
        qWarning("%s: %s", problem, qUtf8Printable(problemOf(answer)));
}

QDBusMessage NotificationServer::makeCall(const QString &method,
                                          const QVariantList &arguments) const
{
    // The unique name leaves no doubt who is called, and whose ids and signals count.
    QDBusMessage call = QDBusMessage::createMethodCall(m_owner, path, service, method);
    call.setArguments(arguments);
    return call;
}
