// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QQmlParserStatus>
#include <QVector>

#include <memory>
#include <utility>

class QDBusMessage;
class QDBusServiceWatcher;

/// Rings and shakes as the user likes it, through feedbackd (org.sigxcpu.Feedback on the session
/// bus). Without feedbackd nothing happens.
class Ringer : public QObject, public QQmlParserStatus
{
    Q_OBJECT
    Q_INTERFACES(QQmlParserStatus)
    /// Whether the phone is to ring. It rings until this is false or the object is destroyed.
    Q_PROPERTY(bool active READ isActive WRITE setActive NOTIFY activeChanged)
    /// Whether it does ring: false without feedbackd, and when feedbackd has ended it.
    Q_PROPERTY(bool ringing READ isRinging NOTIFY ringingChanged)

public:
    explicit Ringer(QObject *parent = nullptr);
    ~Ringer() override;

    void classBegin() override { }
    void componentComplete() override;

    bool isActive() const { return m_active; }
    void setActive(bool active);
    bool isRinging() const { return m_ringing; }

Q_SIGNALS:
    void activeChanged();
    void ringingChanged();

private Q_SLOTS:
    void feedbackEnded(const QDBusMessage &message);

private:
    Q_DISABLE_COPY(Ringer)

    /// What feedbackd does for this object: its unique name, and the id that it has given.
    using Feedback = std::pair<QString, uint>;

    void connectToBus();
    void ownerChanged(const QString &owner);
    void trigger();
    void begin(const Feedback &feedback);
    void end();
    void setRinging(bool ringing);

    QDBusConnection m_bus;
    std::unique_ptr<QDBusServiceWatcher> m_serviceWatcher;
    bool m_complete = false;
    bool m_active = false;
    bool m_ringing = false;
    int m_trigger = 0; ///< The number of the last trigger.
    bool m_isTriggering = false; ///< Whether its answer is still to come.
    Feedback m_feedback;
    QVector<Feedback> m_ended; ///< What has ended since the last trigger.
};
