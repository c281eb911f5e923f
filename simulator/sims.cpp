// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "sims.h"

#include "buscall.h"
#include "sim.h"
#include "transcript.h"

#include <QDBusArgument>

#include <utility>

namespace {

const QLatin1String service("org.ofono");
const QLatin1String path("/");
const QLatin1String control("com.nimbo.simulator.Telephony");

QString describe(const QString &modem, const Sim &sim)
{
    QStringList parts{modem, sim.isPresent() ? sim.imsi : QStringLiteral("no SIM")};
    if (sim.locked)
        parts.append(QStringLiteral("locked"));
    return parts.join(QLatin1String(", "));
}

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

} // namespace

Sims::Sims(QDBusConnection systemBus, Transcript &transcript, QObject *parent)
    : QObject(parent)
    , m_bus(std::move(systemBus))
    , m_transcript(transcript)
    , m_list(m_bus,
             {QDBusMessage::createMethodCall(service, path, control, QStringLiteral("ListSims")),
              QStringLiteral("a{s(sb)}"), itemsOf, QStringLiteral("modem")})
{
    registerSimTypes();
    const auto follow = [this](const char *signal, const char *slot) {
        m_bus.connect(service, path, control, QLatin1String(signal), this, slot);
    };
    follow("ModemAdded", SLOT(modemAdded(QString)));
    follow("ModemRemoved", SLOT(modemRemoved(QString)));
    follow("SimInserted", SLOT(inserted(QString, QString)));
    follow("SimRemoved", SLOT(removed(QString)));
    follow("SimLocked", SLOT(locked(QString)));
    follow("SimUnlocked", SLOT(unlocked(QString)));
}

QVector<Command> Sims::commands()
{
    const auto plain = [this](const QString &method) {
        return [this, method](const QStringList &arguments, const Finish &finish) {
            act(method, arguments.constFirst(), finish);
        };
    };
    return {
        {QStringLiteral("sims"),
         {},
         QStringLiteral("list the modems and their SIMs"),
         [this](const QStringList &, const Finish &finish) { print(finish); }},
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

void Sims::modemAdded(const QString &modem)
{
    record(QStringLiteral("modem %1 is added").arg(modem));
    m_list.refresh();
}

void Sims::modemRemoved(const QString &modem)
{
    record(QStringLiteral("modem %1 is removed").arg(modem));
    m_list.refresh();
}

void Sims::inserted(const QString &modem, const QString &imsi)
{
    record(QStringLiteral("SIM %1 is in %2").arg(imsi, modem));
    m_list.refresh();
}

void Sims::removed(const QString &modem)
{
    record(QStringLiteral("no SIM is in %1").arg(modem));
    m_list.refresh();
}

void Sims::locked(const QString &modem)
{
    record(QStringLiteral("the SIM in %1 is locked").arg(modem));
    m_list.refresh();
}

void Sims::unlocked(const QString &modem)
{
    record(QStringLiteral("the SIM in %1 is unlocked").arg(modem));
    m_list.refresh();
}

void Sims::print(const Finish &finish)
{
    const QDBusMessage call =
        QDBusMessage::createMethodCall(service, path, control, QStringLiteral("ListSims"));
    const auto answered = [this, finish](const QVariantList &values) {
        const auto sims = qdbus_cast<SimsByModem>(values.at(0));
        for (auto it = sims.cbegin(); it != sims.cend(); ++it)
            record(describe(it.key(), *it));
        finish(Outcome::Done, sims.isEmpty() ? QStringLiteral("no modems") : QString());
    };
    callBus(m_bus, call, QStringLiteral("a{s(sb)}"), this, finish, answered);
}

void Sims::insert(const QString &imsi, const QString &modem, const Finish &finish)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(service, path, control, QStringLiteral("InsertSim"));
    call.setArguments({imsi, modem});
    callBus(m_bus, call, QStringLiteral("s"), this, finish,
            [finish](const QVariantList &) { finish(Outcome::Done, QStringLiteral("done")); });
}

void Sims::act(const QString &method, const QString &modem, const Finish &finish)
{
    QDBusMessage call = QDBusMessage::createMethodCall(service, path, control, method);
    call.setArguments({modem});
    callBus(m_bus, call, QString(), this, finish,
            [finish](const QVariantList &) { finish(Outcome::Done, QStringLiteral("done")); });
}

void Sims::record(const QString &line)
{
    m_transcript.record(QStringLiteral("sims"), line);
}
