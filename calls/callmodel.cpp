// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "callmodel.h"

#include <QPointer>

#include <algorithm>

namespace {

template <typename Condition>
int firstId(const QVector<Call> &calls, const Condition &condition)
{
    const auto found = std::find_if(calls.cbegin(), calls.cend(), condition);
    return found == calls.cend() ? 0 : found->id();
}

} // namespace

CallModel::CallModel(QObject *parent)
    : QAbstractListModel(parent)
{
}

int CallModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_calls.size());
}

QVariant CallModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    return m_calls.at(index.row()).value(role);
}

QHash<int, QByteArray> CallModel::roleNames() const
{
    return Call::roleNames();
}

QVariantMap CallModel::call(int call) const
{
    const Call *const found = find(call);
    return found != nullptr ? found->values() : QVariantMap();
}

double CallModel::duration(int call) const
{
    const Call *const found = find(call);
    return found != nullptr ? static_cast<double>(found->duration()) : 0;
}

void CallModel::add(const QString &modem, const BusObject &object)
{
    if (rowOf(object.path) >= 0 || m_calls.size() >= mostBusObjects)
        return;
    const QPointer<CallModel> self(this);
    const int row = rowCount();
    beginInsertRows({}, row, row);
    m_calls.append(Call(++m_lastId, modem, object));
    endInsertRows();
    if (self)
        updateProperties();
}

void CallModel::change(const QString &path, const BusProperty &property)
{
    const int row = rowOf(path);
    if (row < 0)
        return;
    const QVector<int> roles = m_calls[row].set(property);
    if (roles.isEmpty())
        return;
    const int id = m_calls.at(row).id();
    const QPointer<CallModel> self(this);
    Q_EMIT dataChanged(index(row), index(row), roles);
    if (self)
        updateProperties(id);
}

void CallModel::setReason(const QString &path, const QString &reason)
{
    const int row = rowOf(path);
    if (row >= 0)
        m_calls[row].setReason(reason);
}

void CallModel::remove(const QString &modem, const QString &path)
{
    const int row = rowOf(path);
    if (row >= 0 && m_calls.at(row).modem() == modem)
        removeRow(row);
}

void CallModel::removeAll(const QString &modem)
{
    const QPointer<CallModel> self(this);
    while (self) {
        const auto found = std::find_if(m_calls.cbegin(), m_calls.cend(),
                                        [&](const Call &call) { return call.modem() == modem; });
        if (found == m_calls.cend())
            break;
        removeRow(static_cast<int>(found - m_calls.cbegin()));
    }
}

const Call *CallModel::find(int id) const
{
    const auto found = std::find_if(m_calls.cbegin(), m_calls.cend(),
                                    [id](const Call &call) { return call.id() == id; });
    return found == m_calls.cend() ? nullptr : &*found;
}

int CallModel::rowOf(const QString &path) const
{
    const auto found = std::find_if(m_calls.cbegin(), m_calls.cend(),
                                    [&](const Call &call) { return call.path() == path; });
    return found == m_calls.cend() ? -1 : static_cast<int>(found - m_calls.cbegin());
}

void CallModel::removeRow(int row)
{
    const QPointer<CallModel> self(this);
    const QVariantMap call = m_calls.at(row).values();
    beginRemoveRows({}, row, row);
    m_calls.remove(row);
    endRemoveRows();
    if (self && updateProperties())
        Q_EMIT ended(call);
}

int CallModel::firstRinging() const
{
    return firstId(m_calls, [](const Call &call) { return call.isRinging(); });
}

int CallModel::firstOngoing() const
{
    const int active =
        firstId(m_calls, [](const Call &call) { return call.state() == QLatin1String("active"); });
    if (active != 0)
        return active;
    const int dialled = firstId(m_calls, [](const Call &call) { return call.isBeingDialled(); });
    if (dialled != 0)
        return dialled;
    return firstId(m_calls, [](const Call &call) { return call.state() == QLatin1String("held"); });
}

bool CallModel::updateProperties(int changed)
{
    const bool countChanges = m_count != count();
    const bool ringingChanges = m_ringing != firstRinging() || m_ringing == changed;
    const bool ongoingChanges = m_ongoing != firstOngoing() || m_ongoing == changed;
    m_count = count();
    m_ringing = firstRinging();
    m_ongoing = firstOngoing();

    const QPointer<CallModel> self(this);
    if (countChanges)
        Q_EMIT countChanged();
    if (self && ringingChanges)
        Q_EMIT ringingChanged();
    if (self && ongoingChanges)
        Q_EMIT ongoingChanged();
    return self;
}
