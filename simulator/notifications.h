// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "command.h"
#include "servicelist.h"

#include <QDBusConnection>
#include <QObject>
#include <QVector>

class Transcript;

/// The notifications of the handset: tells what becomes of them, and does what a user can do.
class Notifications : public QObject
{
    Q_OBJECT

public:
    /// \a transcript is told, and outlives the object.
    Notifications(QDBusConnection sessionBus, Transcript &transcript, QObject *parent = nullptr);

    QVector<Command> commands();

    /// The notifications: maps with "id", "application", "summary", "body" and "actions", a list of
    /// the names of actions besides the default one.
    ServiceList *list() { return &m_list; }

private Q_SLOTS:
    void shown(uint id, const QString &summary, const QString &body);
    void chosen(uint id, const QString &action);
    void closed(uint id, uint reason);

private:
    void print(const Finish &finish);
    void act(const QString &method, const QVariantList &arguments, const Finish &finish);
    void record(const QString &line);

    QDBusConnection m_bus;
    Transcript &m_transcript;
    ServiceList m_list;
};
