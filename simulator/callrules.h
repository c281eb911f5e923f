// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "command.h"
#include "servicelist.h"

#include <QDBusConnection>
#include <QObject>
#include <QVector>

class Transcript;
struct FilterRule;

/// The filter rules for the calls of the handset's SIMs, as device management sets them: tells what
/// becomes of them, and changes them.
class CallRules : public QObject
{
    Q_OBJECT

public:
    /// \a transcript is told, and outlives the object.
    CallRules(QDBusConnection systemBus, Transcript &transcript, QObject *parent = nullptr);

    QVector<Command> commands();

    /// What becomes of calls that are dialled: maps with "imsi" and "action" (its name, or a
    /// number), the default first, without an IMSI.
    ServiceList *dialList() { return &m_dialList; }
    /// The same for calls that come in.
    ServiceList *incomingList() { return &m_incomingList; }

private Q_SLOTS:
    void ruleSet(const QString &filter, const QString &imsi, uint action);
    void ruleRemoved(const QString &filter, const QString &imsi);
    void rulesSet(const QString &filter);
    void defaultActionSet(const QString &filter, uint action);

private:
    void print(const QStringList &filters, const Finish &finish);
    void set(const QString &filter, const QString &imsi, const QString &action,
             const Finish &finish);
    void setDefault(const QString &filter, const QString &action, const Finish &finish);
    void act(const QString &method, const QVariantList &arguments, const Finish &finish);
    void record(const QString &line);
    void recordRule(const QString &filter, const FilterRule &rule);
    void recordDefault(const QString &filter, uint action);
    void refresh(const QString &filter);

    QDBusConnection m_bus;
    Transcript &m_transcript;
    ServiceList m_dialList;
    ServiceList m_incomingList;
};
