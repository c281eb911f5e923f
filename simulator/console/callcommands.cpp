// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "callcommands.h"

#include "networkcontrol.h"

#include <QDBusArgument>
#include <QHash>

namespace {

const QLatin1String path("/");
const QLatin1String control("com.nimbo.simulator.Network");

QVariantList itemsOf(const QVariantList &values)
{
    QVariantList items;
    const auto calls = qdbus_cast<LineCalls>(values.value(0));
    for (const LineCall &call : calls)
        items.append(QVariantMap{{QStringLiteral("modem"), call.modem},
                                 {QStringLiteral("number"), call.number},
                                 {QStringLiteral("state"), call.state}});
    return items;
}

QString describe(const QString &modem, const QString &number, const QString &state)
{
    return QStringLiteral("%1 on %2 is %3").arg(number, modem, state);
}

QString describeItem(const QVariantMap &call)
{
    const auto text = [&call](const char *key) {
        return call.value(QLatin1String(key)).toString();
    };
    return describe(text("modem"), text("number"), text("state"));
}

/// Returns the sentence about a modem that is in a condition.
QString sentenceOf(const QString &condition)
{
    static const QHash<QString, QString> sentences{
        {QStringLiteral("back"), QStringLiteral("the network of %1 is back")},
        {QStringLiteral("lost"), QStringLiteral("the network of %1 is lost")},
        {QStringLiteral("refuse"), QStringLiteral("the network of %1 refuses calls and messages")},
        {QStringLiteral("slow"), QStringLiteral("%1 is slow")},
        {QStringLiteral("hang"), QStringLiteral("%1 hangs")},
        {QStringLiteral("gone"), QStringLiteral("%1 is gone")}};
    return sentences.value(condition);
}

} // namespace

CallCommands::CallCommands(const QDBusConnection &systemBus, const QString &service,
                           Transcript &transcript, QObject *parent)
    : ServiceTalk(systemBus, {service, path, control, QStringLiteral("calls")}, transcript, parent)
    , m_list(addList(
          {QDBusMessage::createMethodCall(service, path, control, QStringLiteral("ListCalls")),
           QStringLiteral("a(sss)"), itemsOf, QStringLiteral("number"), describeItem}))
{
    registerLineCallTypes();
    const auto tellOf = [this](const QString &member, const QString &line) {
        tell(control, member, QStringLiteral("ss"), [line](const QVariantList &values) {
            return line.arg(values.value(0).toString(), values.value(1).toString());
        });
    };
    tellOf(QStringLiteral("Dialled"), QStringLiteral("%1 dials %2"));
    tellOf(QStringLiteral("TonesSent"), QStringLiteral("%1 sends the tones %2"));
    tellOf(QStringLiteral("ServiceRequested"), QStringLiteral("%1 asks the network %2"));
    const auto tellOfCall = [this](const QString &member, const auto &describeValues) {
        tell(control, member, QStringLiteral("sss"), [describeValues](const QVariantList &values) {
            return describeValues(values.value(0).toString(), values.value(1).toString(),
                                  values.value(2).toString());
        });
    };
    tellOfCall(QStringLiteral("CallChanged"), &describe);
    tellOfCall(QStringLiteral("CallEnded"),
               [](const QString &modem, const QString &number, const QString &reason) {
                   return QStringLiteral("%1 on %2 has ended (%3)").arg(number, modem, reason);
               });
    tellOfCall(QStringLiteral("MessageSent"),
               [](const QString &modem, const QString &number, const QString &text) {
                   return QStringLiteral("%1 sends to %2: %3").arg(modem, number, text);
               });
    tell(control, QStringLiteral("Ready"), QStringLiteral("s"), [](const QVariantList &values) {
        return QStringLiteral("%1 is ready").arg(values.value(0).toString());
    });
    tell(control, QStringLiteral("NetworkChanged"), QStringLiteral("ss"),
         [](const QVariantList &values) {
             return sentenceOf(values.value(1).toString()).arg(values.value(0).toString());
         });
}

QVector<Command> CallCommands::commands()
{
    return {
        {QStringLiteral("calls"),
         {},
         QStringLiteral("list the calls of the modems"),
         [this](const QStringList &, const Finish &finish) {
             print(finish, QStringLiteral("no calls"));
         }},
        {QStringLiteral("ring"),
         {QStringLiteral("NUMBER"), QStringLiteral("[MODEM]")},
         QStringLiteral("let a call come in from a number, or from withheld"),
         [this](const QStringList &arguments, const Finish &finish) {
             ring(arguments.at(0), arguments.value(1), finish);
         }},
        {QStringLiteral("remote"),
         {QStringLiteral("answer|busy|hangup|hold|resume"), QStringLiteral("[CALL]")},
         QStringLiteral("act as the other side of a call, which its number names"),
         [this](const QStringList &arguments, const Finish &finish) {
             act(QStringLiteral("Remote"), {arguments.at(0), arguments.value(1)}, finish);
         }},
        {QStringLiteral("network"),
         {QStringLiteral("lost|refuse|slow|hang|gone|back"), QStringLiteral("[MODEM]")},
         QStringLiteral("break the network, or the modem, and mend it; all without MODEM"),
         [this](const QStringList &arguments, const Finish &finish) {
             act(QStringLiteral("SetNetwork"), {arguments.at(0), arguments.value(1)}, finish);
         }},
    };
}

/// The answer has the path of the modem, which the signal CallChanged has told already.
void CallCommands::ring(const QString &number, const QString &modem, const Finish &finish)
{
    ask(control, QStringLiteral("Ring"), {number, modem}, QStringLiteral("s"), finish,
        [finish](const QVariantList &) { finish(Outcome::Done, QStringLiteral("done")); });
}
