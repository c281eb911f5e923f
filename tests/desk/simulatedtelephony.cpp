// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "simulatedtelephony.h"

#include "callmeanwhile.h"
#include "literals.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QTest>

namespace {

constexpr int patience = 30000;

const QString service = u"org.ofono"_s;
const QString modem = u"/ril_0"_s;
const QString network = u"com.nimbo.simulator.Network"_s;

bool isDone(const QDBusMessage &answer)
{
    if (answer.type() != QDBusMessage::ReplyMessage)
        qWarning("%s", qUtf8Printable(answer.errorMessage()));
    return answer.type() == QDBusMessage::ReplyMessage;
}

} // namespace

SimulatedTelephony::SimulatedTelephony(UiUnderTest &ui)
    : m_ui(ui)
    , m_bus(QDBusConnection::connectToBus(ui.systemBus().address(), m_state.path()))
{
}

SimulatedTelephony::~SimulatedTelephony()
{
    QDBusConnection::disconnectFromBus(m_state.path());
}

bool SimulatedTelephony::start()
{
    m_ui.setHasTelephony();
    m_ui.setEnvironment(u"QML2_IMPORT_PATH"_s, qEnvironmentVariable("PARLEY_QML_MODULES"));
    m_ui.setEnvironment(u"QT_LOGGING_RULES"_s, u"screens.info=true"_s);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, m_ui.sessionBus().address());
    environment.insert(u"DBUS_SYSTEM_BUS_ADDRESS"_s, m_ui.systemBus().address());
    m_process.setProcessEnvironment(environment);
    m_process.start(qEnvironmentVariable("PARLEY_HANDSET"),
                    {u"--service"_s, u"telephony"_s, u"--state"_s, m_state.path() + u"/state"_s});
    const auto isThere = [this] { return m_bus.interface()->isServiceRegistered(service).value(); };
    return QTest::qWaitFor(isThere, patience)
        && isDone(call(u"/"_s, u"com.nimbo.simulator.Telephony"_s, u"InsertSim"_s,
                       {u"262011111111111"_s, modem}));
}

bool SimulatedTelephony::ring(const QString &number) const
{
    return isDone(call(u"/"_s, network, u"Ring"_s, {number, QString()}));
}

bool SimulatedTelephony::remote(const QString &action) const
{
    return isDone(call(u"/"_s, network, u"Remote"_s, {action, QString()}));
}

bool SimulatedTelephony::manage(const QString &method) const
{
    return isDone(call(modem, u"org.ofono.VoiceCallManager"_s, method, {}));
}

bool SimulatedTelephony::hasCalls() const
{
    const QDBusMessage calls = call(u"/"_s, network, u"ListCalls"_s, {});
    const auto list = calls.arguments().value(0).value<QDBusArgument>();
    list.beginArray();
    const bool isEmpty = list.atEnd();
    list.endArray();
    return !isEmpty;
}

/// oFono leaves a waiting call alone when it ends all of them.
bool SimulatedTelephony::endAll() const
{
    const auto areEnded = [this] {
        return !hasCalls()
            || (call(modem, u"org.ofono.VoiceCallManager"_s, u"HangupAll"_s, {}), false);
    };
    return QTest::qWaitFor(areEnded, patience);
}

QDBusMessage SimulatedTelephony::call(const QString &path, const QString &interface,
                                      const QString &method, const QVariantList &arguments) const
{
    QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setArguments(arguments);
    return callMeanwhile(m_bus, message, patience);
}
