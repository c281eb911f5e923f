// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "servicelist.h"

#include "buscall.h"

#include <QDBusServiceWatcher>

#include <utility>

ServiceList::ServiceList(QDBusConnection bus, Source source, QObject *parent)
    : QObject(parent)
    , m_bus(std::move(bus))
    , m_source(std::move(source))
{
}

void ServiceList::follow()
{
    if (m_watcher)
        return;
    m_watcher = new QDBusServiceWatcher(m_source.question.service(), m_bus,
                                        QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(m_watcher, &QDBusServiceWatcher::serviceRegistered, this, &ServiceList::refresh);
    connect(m_watcher, &QDBusServiceWatcher::serviceUnregistered, this, [this] { setItems({}); });
    refresh();
}

void ServiceList::refresh()
{
    if (!m_watcher)
        return;
    if (m_isAsking)
        m_asksAgain = true;
    else
        ask();
}

void ServiceList::ask()
{
    m_isAsking = true;
    m_asksAgain = false;
    callBus(
        m_bus, m_source.question, m_source.signature, this,
        [this](Outcome, const QString &) { answered(); },
        [this](const QVariantList &values) {
            setItems(m_source.read(values));
            answered();
        });
}

void ServiceList::answered()
{
    m_isAsking = false;
    if (m_asksAgain)
        ask();
}

void ServiceList::setItems(const QVariantList &items)
{
    if (items == m_items)
        return;
    m_items = items;
    Q_EMIT itemsChanged();
}
