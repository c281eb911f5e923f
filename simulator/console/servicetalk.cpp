// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "servicetalk.h"

#include "buscall.h"
#include "transcript.h"

#include <utility>

ServiceTalk::ServiceTalk(QDBusConnection bus, Service service, Transcript &transcript,
                         QObject *parent)
    : QObject(parent)
    , m_bus(std::move(bus))
    , m_service(std::move(service))
    , m_transcript(transcript)
{
}

ServiceTalk::~ServiceTalk() = default;

void ServiceTalk::follow()
{
    for (const auto &list : m_lists)
        list->follow();
}

void ServiceTalk::tell(const QString &interface, const QString &member, const QString &signature,
                       const Describe &describe)
{
    m_describe.insert(member, describe);
    m_bus.connect(m_service.busName, m_service.path, interface, member, signature, this,
                  SLOT(signalled(QDBusMessage)));
}

ServiceList *ServiceTalk::addList(const ServiceList::Source &source)
{
    m_lists.push_back(std::make_unique<ServiceList>(m_bus, source));
    return m_lists.back().get();
}

void ServiceTalk::print(const Finish &finish, const QString &none)
{
    printFrom(0, 0, finish, none);
}

/// Asks for one list after another, so that the lines come in order.
void ServiceTalk::printFrom(std::size_t list, qsizetype printed, const Finish &finish,
                            const QString &none)
{
    if (list == m_lists.size()) {
        finish(Outcome::Done, printed == 0 ? none : QString());
        return;
    }
    const ServiceList::Source &source = m_lists.at(list)->source();
    callBus(m_bus, source.question, source.signature, this, finish,
            [this, &source, list, printed, finish, none](const QVariantList &values) {
                const QVariantList items = source.read(values);
                for (const QVariant &item : items)
                    record(source.describe(item.toMap()));
                printFrom(list + 1, printed + items.size(), finish, none);
            });
}

void ServiceTalk::act(const QString &method, const QVariantList &arguments, const Finish &finish)
{
    ask(m_service.control, method, arguments, QString(), finish,
        [finish](const QVariantList &) { finish(Outcome::Done, QStringLiteral("done")); });
}

std::optional<uint> ServiceTalk::numberIn(const QString &word, const Finish &finish)
{
    bool isNumber = false;
    const uint number = word.toUInt(&isNumber);
    if (isNumber)
        return number;
    finish(Outcome::Failed, QStringLiteral("\"%1\" is no number").arg(word));
    return std::nullopt;
}

void ServiceTalk::ask(const QString &interface, const QString &method,
                      const QVariantList &arguments, const QString &signature, const Finish &finish,
                      const std::function<void(const QVariantList &values)> &answered)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(m_service.busName, m_service.path, interface, method);
    call.setArguments(arguments);
    callBus(m_bus, call, signature, this, finish, answered);
}

void ServiceTalk::signalled(const QDBusMessage &message)
{
    record(m_describe.value(message.member())(message.arguments()));
    for (const auto &list : m_lists)
        list->refresh();
}

void ServiceTalk::record(const QString &line)
{
    m_transcript.record(m_service.source, line);
}
