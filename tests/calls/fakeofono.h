// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "scriptedservice.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QList>
#include <QMap>
#include <QStringList>
#include <QVariantMap>

#include <optional>

/// An object with its properties, as oFono lists it.
struct FakeObject
{
    QDBusObjectPath path;
    QVariantMap properties;
};
Q_DECLARE_METATYPE(FakeObject)
Q_DECLARE_METATYPE(QList<FakeObject>)

QDBusArgument &operator<<(QDBusArgument &argument, const FakeObject &object);
const QDBusArgument &operator>>(const QDBusArgument &argument, FakeObject &object);

/// An oFono whose modems and calls a test sets. It answers what it is asked about them. A test
/// answers all other calls, which tell it to do something.
class FakeOfono : public ScriptedService
{
    Q_OBJECT

public:
    /// Starts on the bus at \a address, with these \a modems, all of which are online.
    explicit FakeOfono(const QString &address, const QStringList &modems = {});

    static QVariantMap modem(bool online = true);
    /// Returns the properties of a call.
    static QVariantMap call(const QString &state,
                            const QString &number = QStringLiteral("5550100"));

    /// Sets what the calls of \a modem are before anybody asks.
    void setCalls(const QString &modem, const QList<FakeObject> &calls) { m_calls[modem] = calls; }
    void setEmergencyNumbers(const QStringList &numbers) { m_emergencyNumbers = numbers; }
    void setDialogueState(const QString &state) { m_dialogueState = state; }
    /// Returns how many questions it has answered.
    int answered() const { return m_answered; }
    /// Leaves all questions to the test from now on.
    void answerNothing() { m_answers = false; }

    void addModem(const QString &path, const QVariantMap &properties);
    void removeModem(const QString &path);
    void addCall(const QString &path, const QVariantMap &properties);
    void removeCall(const QString &path);
    /// Announces a changed property of the object at \a path.
    void change(const QString &path, const QString &interface, const QString &name,
                const QVariant &value);
    void changeCall(const QString &path, const QString &name, const QVariant &value);
    /// Ends a call as oFono does it.
    void endCall(const QString &path, const QString &reason);

protected:
    void take(const QDBusMessage &call) override;

private:
    std::optional<QVariant> answerTo(const QDBusMessage &call) const;

    QMap<QString, QVariantMap> m_modems;
    QMap<QString, QList<FakeObject>> m_calls;
    QStringList m_emergencyNumbers;
    QString m_dialogueState;
    bool m_answers = true;
    int m_answered = 0;
};
