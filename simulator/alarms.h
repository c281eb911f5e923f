// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "command.h"
#include "servicelist.h"

#include <QDBusConnection>
#include <QObject>
#include <QVector>

class Transcript;

/// The alarms of the handset's time daemon: tells what becomes of them, and has them fire early.
class Alarms : public QObject
{
    Q_OBJECT

public:
    /// \a transcript is told, and outlives the object.
    Alarms(QDBusConnection systemBus, Transcript &transcript, QObject *parent = nullptr);

    QVector<Command> commands();

    /// The alarms: maps with "cookie", "title", "number" and "due", in milliseconds since
    /// 1970-01-01 00:00 UTC.
    ServiceList *list() { return &m_list; }

private Q_SLOTS:
    void added(uint cookie);
    void cancelled(uint cookie);
    void fired(uint cookie);

private:
    void print(const Finish &finish);
    void fire(const QString &cookie, const Finish &finish);
    void cancel(const QString &cookie, const Finish &finish);
    void record(const QString &line);

    QDBusConnection m_bus;
    Transcript &m_transcript;
    ServiceList m_list;
};
