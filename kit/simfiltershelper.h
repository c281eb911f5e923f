// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QObject>
#include <QVariantMap>

/// Whether the SIMs may call, as a test says.
class SimFiltersHelper : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool ready READ ready NOTIFY readyChanged)
    Q_PROPERTY(bool anyActiveSimCanDial READ anyActiveSimCanDial NOTIFY anyActiveSimCanDialChanged)
    Q_PROPERTY(bool anyActiveSimCanReceive READ anyActiveSimCanReceive NOTIFY
                   anyActiveSimCanReceiveChanged)
    Q_PROPERTY(int activeSimCount READ activeSimCount NOTIFY activeSimCountChanged)

public:
    using QObject::QObject;

    bool ready() const { return m_ready; }
    bool anyActiveSimCanDial() const { return m_canDial; }
    bool anyActiveSimCanReceive() const { return m_canReceive; }
    int activeSimCount() const { return m_count; }

    /// Sets the properties that are keys of \a values, and the others as without a SIM.
    void set(const QVariantMap &values);

Q_SIGNALS:
    void readyChanged();
    void anyActiveSimCanDialChanged();
    void anyActiveSimCanReceiveChanged();
    void activeSimCountChanged();

private:
    bool m_ready = true;
    bool m_canDial = true;
    bool m_canReceive = true;
    int m_count = 0;
};
