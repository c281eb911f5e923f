// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "servicelist.h"

#include "buscall.h"

#include <QDBusServiceWatcher>

#include <algorithm>
#include <utility>

ServiceList::ServiceList(QDBusConnection bus, Source source, QObject *parent)
    : QAbstractListModel(parent)
    , m_bus(std::move(bus))
    , m_source(std::move(source))
{
}

QStringList ServiceList::keys() const
{
    QStringList keys;
    for (const QVariant &item : m_items)
        keys.append(item.toMap().value(m_source.key).toString());
    return keys;
}

int ServiceList::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_items.size());
}

QVariant ServiceList::data(const QModelIndex &index, int role) const
{
    return role == Qt::UserRole ? m_items.value(index.row()) : QVariant();
}

QHash<int, QByteArray> ServiceList::roleNames() const
{
    return {{Qt::UserRole, QByteArrayLiteral("entry")}};
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
    int row = 0;
    for (const QVariant &item : items) {
        const int found = rowOf(item, row);
        if (found < 0) {
            insertRow(row, item);
        } else {
            removeRowsBetween(row, found);
            replaceRow(row, item);
        }
        ++row;
    }
    removeRowsBetween(row, rowCount());
    Q_EMIT itemsChanged();
}

/// Returns the row of an item, or -1 if no row from \a firstRow on has it.
int ServiceList::rowOf(const QVariant &item, int firstRow) const
{
    const auto keyOf = [this](const QVariant &any) { return any.toMap().value(m_source.key); };
    const auto isIt = [&](const QVariant &other) { return keyOf(other) == keyOf(item); };
    const auto found = std::find_if(m_items.cbegin() + firstRow, m_items.cend(), isIt);
    return found == m_items.cend() ? -1 : static_cast<int>(found - m_items.cbegin());
}

void ServiceList::insertRow(int row, const QVariant &item)
{
    beginInsertRows({}, row, row);
    m_items.insert(row, item);
    endInsertRows();
}

void ServiceList::replaceRow(int row, const QVariant &item)
{
    if (m_items.at(row) == item)
        return;
    m_items.replace(row, item);
    Q_EMIT dataChanged(index(row), index(row));
}

void ServiceList::removeRowsBetween(int firstRow, int endRow)
{
    if (firstRow == endRow)
        return;
    beginRemoveRows({}, firstRow, endRow - 1);
    m_items.erase(m_items.begin() + firstRow, m_items.begin() + endRow);
    endRemoveRows();
}
