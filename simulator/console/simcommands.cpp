// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "simcommands.h"

#include "sim.h"

#include <QDBusArgument>

namespace {

const QLatin1String path("/");
const QLatin1String control("com.nimbo.simulator.Telephony");

QVariantList itemsOf(const QVariantList &values)
{
    QVariantList items;
    const auto sims = qdbus_cast<SimsByModem>(values.value(0));
    for (auto it = sims.cbegin(); it != sims.cend(); ++it)
        items.append(QVariantMap{{QStringLiteral("modem"), it.key()},
                                 {QStringLiteral("imsi"), it->imsi},
                                 {QStringLiteral("locked"), it->locked}});
    return items;
}

QString describe(const QVariantMap &modem)
{
    const QString imsi = modem.value(QStringLiteral("imsi")).toString();
    QStringList parts{modem.value(QStringLiteral("modem")).toString(),
                      imsi.isEmpty() ? QStringLiteral("no SIM") : imsi};
    if (modem.value(QStringLiteral("locked")).toBool())
        parts.append(QStringLiteral("locked"));
    return parts.join(QLatin1String(", "));
}

} // namespace

SimCommands::SimCommands(const QDBusConnection &systemBus, const QString &service,
                         Transcript &transcript, QObject *parent)
    : ServiceTalk(systemBus, {service, path, control, QStringLiteral("sims")}, transcript, parent)
    , m_list(addList(
          {QDBusMessage::createMethodCall(service, path, control, QStringLiteral("ListSims")),
           QStringLiteral("a{s(sb)}"), itemsOf, QStringLiteral("modem"), describe}))
{
    registerSimTypes();
    const auto tellOf = [this](const QString &member, const QString &line) {
        tell(control, member, QStringLiteral("s"),
             [line](const QVariantList &values) { return line.arg(values.value(0).toString()); });
    };
    tellOf(QStringLiteral("ModemAdded"), QStringLiteral("modem %1 is added"));
    tellOf(QStringLiteral("ModemRemoved"), QStringLiteral("modem %1 is removed"));
    tellOf(QStringLiteral("SimRemoved"), QStringLiteral("no SIM is in %1"));
    tellOf(QStringLiteral("SimLocked"), QStringLiteral("the SIM in %1 is locked"));
    tellOf(QStringLiteral("SimUnlocked"), QStringLiteral("the SIM in %1 is unlocked"));
    tell(control, QStringLiteral("SimInserted"), QStringLiteral("ss"),
         [](const QVariantList &values) {
             return QStringLiteral("SIM %1 is in %2")
                 .arg(values.value(1).toString(), values.value(0).toString());
         });
}

QVector<Command> SimCommands::commands()
{
    const auto plain = [this](const QString &method) {
        return [this, method](const QStringList &arguments, const Finish &finish) {
            act(method, {arguments.constFirst()}, finish);
        };
    };
    return {
        {QStringLiteral("sims"),
         {},
         QStringLiteral("list the modems and their SIMs"),
         [this](const QStringList &, const Finish &finish) {
             print(finish, QStringLiteral("no modems"));
         }},
        {QStringLiteral("sim insert"),
         {QStringLiteral("IMSI"), QStringLiteral("[MODEM]")},
         QStringLiteral("insert a SIM, into the first modem without one or the one that is named"),
         [this](const QStringList &arguments, const Finish &finish) {
             insert(arguments.at(0), arguments.value(1), finish);
         }},
        {QStringLiteral("sim remove"),
         {QStringLiteral("MODEM")},
         QStringLiteral("take the SIM out of a modem"),
         plain(QStringLiteral("RemoveSim"))},
        {QStringLiteral("sim lock"),
         {QStringLiteral("MODEM")},
         QStringLiteral("reset a modem: its SIM waits for the PIN"),
         plain(QStringLiteral("LockSim"))},
        {QStringLiteral("sim unlock"),
         {QStringLiteral("MODEM")},
         QStringLiteral("enter the PIN of a SIM"),
         plain(QStringLiteral("UnlockSim"))},
    };
}

/// The answer has the path of the modem, which the signal SimInserted has told already.
void SimCommands::insert(const QString &imsi, const QString &modem, const Finish &finish)
{
    ask(control, QStringLiteral("InsertSim"), {imsi, modem}, QStringLiteral("s"), finish,
        [finish](const QVariantList &) { finish(Outcome::Done, QStringLiteral("done")); });
}
