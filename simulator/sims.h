// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "command.h"
#include "servicelist.h"

#include <QDBusConnection>
#include <QObject>
#include <QVector>

class Transcript;

/// The SIMs in the modems of the handset: tells what becomes of them, and inserts, removes, locks
/// and unlocks them.
class Sims : public QObject
{
    Q_OBJECT

public:
    /// \a transcript is told, and outlives the object.
    Sims(QDBusConnection systemBus, Transcript &transcript, QObject *parent = nullptr);

    QVector<Command> commands();

    /// The modems: maps with "modem" (path), "imsi" (empty without a SIM) and "locked".
    ServiceList *list() { return &m_list; }

private Q_SLOTS:
    void modemAdded(const QString &modem);
    void modemRemoved(const QString &modem);
    void inserted(const QString &modem, const QString &imsi);
    void removed(const QString &modem);
    void locked(const QString &modem);
    void unlocked(const QString &modem);

private:
    void print(const Finish &finish);
    void insert(const QString &imsi, const QString &modem, const Finish &finish);
    void act(const QString &method, const QString &modem, const Finish &finish);
    void record(const QString &line);

    QDBusConnection m_bus;
    Transcript &m_transcript;
    ServiceList m_list;
};
