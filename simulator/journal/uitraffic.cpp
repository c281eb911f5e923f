// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "uitraffic.h"

#include <utility>

namespace {

const QLatin1String bus("org.freedesktop.DBus");
const QLatin1String ownControl("com.nimbo.simulator.");
const QLatin1String markInterface("com.nimbo.simulator.Journal");

bool isConnection(const QString &name)
{
    return name.startsWith(QLatin1Char(':'));
}

bool tellsOfOwner(const BusMessage &message)
{
    return message.sender == bus && message.member == QLatin1String("NameOwnerChanged");
}

bool isOfInterest(const BusMessage &message)
{
    if (message.interface.startsWith(ownControl))
        return false;
    if (message.type == BusMessage::Type::Call && message.destination == bus)
        return message.member == QLatin1String("RequestName");
    return message.type != BusMessage::Type::Signal || message.sender != bus;
}

} // namespace

UiTraffic::UiTraffic(Ask ask, QObject *parent)
    : QObject(parent)
    , m_ask(std::move(ask))
{
}

void UiTraffic::take(const BusMessage &message)
{
    m_waiting.enqueue(message);
    ++m_questions; // Hold the queue until all questions about this message are asked.
    askAbout(message.sender);
    askAbout(message.destination);
    if (tellsOfOwner(message) && !message.strings.value(2).isEmpty())
        askAbout(message.strings.value(2));
    --m_questions;
    drain();
}

void UiTraffic::start(const QMap<QString, QString> &owners, const QStringList &connections)
{
    m_owners = owners;
    for (const QString &connection : connections)
        askAbout(connection);
    --m_questions;
    drain();
}

void UiTraffic::askAbout(const QString &name)
{
    if (!isConnection(name) || m_known.contains(name))
        return;
    m_known.insert(name);
    ++m_questions;
    m_ask(name, [this, name](bool isUi) { settle(name, isUi); });
}

void UiTraffic::settle(const QString &name, bool isUi)
{
    if (isUi)
        m_ui.insert(name);
    --m_questions;
    drain();
}

void UiTraffic::drain()
{
    while (m_questions == 0 && !m_waiting.isEmpty())
        handle(m_waiting.dequeue());
}

void UiTraffic::handle(const BusMessage &message)
{
    if (tellsOfOwner(message)) {
        noteOwner(message.strings.value(0), message.strings.value(2));
    } else if (message.interface == markInterface) {
        Q_EMIT marked(message.strings.value(0));
    } else if (isOfInterest(message)) {
        if (isUi(message.sender))
            Q_EMIT seen(message, false, peerName(message.destination));
        else if (reachesUi(message))
            Q_EMIT seen(message, true, peerName(message.sender));
    }
}

void UiTraffic::noteOwner(const QString &name, const QString &owner)
{
    if (!owner.isEmpty()) {
        if (!isConnection(name))
            m_owners.insert(name, owner);
        return;
    }
    m_owners.remove(name);
    m_known.remove(name);
    m_ui.remove(name);
}

bool UiTraffic::isUi(const QString &name) const
{
    return m_ui.contains(m_owners.value(name, name));
}

bool UiTraffic::reachesUi(const BusMessage &message) const
{
    if (message.destination.isEmpty())
        return message.type == BusMessage::Type::Signal && !m_ui.isEmpty();
    return isUi(message.destination);
}

QString UiTraffic::peerName(const QString &name) const
{
    return isConnection(name) ? m_owners.key(name, name) : name;
}
