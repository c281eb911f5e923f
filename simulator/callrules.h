// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "command.h"

#include <QDBusConnection>
#include <QObject>
#include <QVector>

class Transcript;

/// The filter rules for the calls of the handset's SIMs, as device management sets them: tells what
/// becomes of them, and changes them.
class CallRules : public QObject
{
    Q_OBJECT

public:
    /// \a transcript is told, and outlives the object.
    CallRules(QDBusConnection systemBus, Transcript &transcript, QObject *parent = nullptr);

    QVector<Command> commands();

private Q_SLOTS:
    void ruleSet(const QString &filter, const QString &imsi, uint action);
    void ruleRemoved(const QString &filter, const QString &imsi);
    void rulesSet(const QString &filter);
    void defaultActionSet(const QString &filter, uint action);

private:
    void list(const QStringList &filters, const Finish &finish);
    void set(const QString &filter, const QString &imsi, const QString &action,
             const Finish &finish);
    void setDefault(const QString &filter, const QString &action, const Finish &finish);
    void act(const QString &method, const QVariantList &arguments, const Finish &finish);
    void record(const QString &line);

    QDBusConnection m_bus;
    Transcript &m_transcript;
};
