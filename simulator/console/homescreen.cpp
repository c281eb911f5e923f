// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "homescreen.h"

#include "answers.h"
#include "childprocess.h"
#include "handsetpart.h"
#include "toggleas.h"

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QElapsedTimer>
#include <QProcessEnvironment>

#include <utility>

#include <unistd.h>

namespace {

const QLatin1String uiService("com.nimbo.parley.ui");

QString describe(const QDBusMessage &reply)
{
    const QVariantList values = reply.arguments();
    return values.isEmpty() ? QStringLiteral("done") : values.constFirst().toString();
}

} // namespace

HomeScreen::HomeScreen(QDBusConnection sessionBus, QString address, QObject *parent)
    : QObject(parent)
    , m_bus(std::move(sessionBus))
    , m_address(std::move(address))
{
}

bool HomeScreen::start()
{
    return m_bus.registerService(QStringLiteral("com.nimbo.canopy"));
}

QVector<Command> HomeScreen::commands()
{
    const auto plain = [this](const QString &method) {
        return [this, method](const QStringList &arguments, const Finish &finish) {
            QVariantList values;
            for (const QString &argument : arguments)
                values.append(argument);
            request(method, values, finish);
        };
    };
    const auto list = [this](const QString &method) {
        return [this, method](const QStringList &arguments, const Finish &finish) {
            request(method, {arguments}, finish);
        };
    };
    return {
        {QStringLiteral("show"),
         {QStringLiteral("[ARGUMENT...]")},
         QStringLiteral("bring the call UI to the front"),
         list(QStringLiteral("show"))},
        {QStringLiteral("ongoing"),
         {},
         QStringLiteral("bring the ongoing call to the front"),
         plain(QStringLiteral("showOngoing"))},
        {QStringLiteral("open"),
         {QStringLiteral("[URL...]")},
         QStringLiteral("open URLs; without one, as show"),
         list(QStringLiteral("openUrl"))},
        {QStringLiteral("dial"),
         {QStringLiteral("NUMBER")},
         QStringLiteral("call a number"),
         plain(QStringLiteral("dial"))},
        {QStringLiteral("dial-via"),
         {QStringLiteral("MODEM"), QStringLiteral("NUMBER")},
         QStringLiteral("call a number through a modem"),
         plain(QStringLiteral("dialViaModem"))},
        {QStringLiteral("error-dialog"),
         {},
         QStringLiteral("say that the cellular network cannot be used"),
         plain(QStringLiteral("showCellularErrorDialog"))},
        {QStringLiteral("contact"),
         {QStringLiteral("NUMBER")},
         QStringLiteral("open a contact card"),
         plain(QStringLiteral("openContactCard"))},
        {QStringLiteral("toggle"),
         {},
         QStringLiteral("answer or end a call, as the home screen may"),
         plain(QStringLiteral("toggleCall"))},
        {QStringLiteral("toggle-as"),
         {QStringLiteral("UID"), QStringLiteral("GID")},
         QStringLiteral("toggle from a process of that user and group (names or numbers)"),
         [this](const QStringList &arguments, const Finish &finish) {
             toggleAs(arguments.at(0), arguments.at(1), finish);
         }},
        {QStringLiteral("replay"),
         {},
         QStringLiteral("send the last of these requests again"),
         [this](const QStringList &, const Finish &finish) { replay(finish); }},
    };
}

void HomeScreen::request(const QString &method, const QVariantList &arguments, const Finish &finish)
{
    m_lastMethod = method;
    m_lastArguments = arguments;
    QDBusMessage call =
        QDBusMessage::createMethodCall(uiService, QStringLiteral("/"), uiService, method);
    call.setArguments(arguments);
    QElapsedTimer timer;
    timer.start();
    whenAnswered(m_bus.asyncCall(call), this, [timer, finish](const QDBusMessage &answer) {
        if (answer.type() == QDBusMessage::ErrorMessage) {
            finish(Outcome::Failed,
                   QStringLiteral("%1: %2").arg(answer.errorName(), answer.errorMessage()));
            return;
        }
        const double milliseconds = static_cast<double>(timer.nsecsElapsed()) / 1e6;
        finish(Outcome::Done,
               QStringLiteral("%1 (%2 ms)").arg(describe(answer)).arg(milliseconds, 0, 'f', 1));
    });
}

void HomeScreen::replay(const Finish &finish)
{
    if (hasRequested())
        request(m_lastMethod, QVariantList(m_lastArguments), finish);
    else
        finish(Outcome::Failed, QStringLiteral("there was no request yet"));
}

void HomeScreen::toggleAs(const QString &user, const QString &group, const Finish &finish)
{
    if (geteuid() != 0) {
        finish(Outcome::Skipped, QStringLiteral("only root can act as another user"));
        return;
    }
    auto *caller = new ChildProcess(this);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), m_address);
    caller->setProcessEnvironment(environment);
    caller->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    connect(caller, &QProcess::errorOccurred, this, [caller, finish](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) {
            caller->deleteLater();
            finish(Outcome::Failed, caller->errorString());
        }
    });
    connect(caller, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
            [caller, finish](int code, QProcess::ExitStatus status) {
                caller->deleteLater();
                const QString said = QString::fromLocal8Bit(caller->readAll()).trimmed();
                const bool hasEnded = status == QProcess::NormalExit;
                if (hasEnded && code == ToggleAdmitted)
                    finish(Outcome::Done, QStringLiteral("done"));
                else
                    // A refusal is an answer, so the command has not failed.
                    finish(hasEnded && code == ToggleRefused ? Outcome::Done : Outcome::Failed,
                           said);
            });
    caller->start(QCoreApplication::applicationFilePath(), toggleArguments(user, group));
}
