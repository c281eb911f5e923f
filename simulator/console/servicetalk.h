// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "command.h"
#include "servicelist.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QHash>
#include <QObject>
#include <QVector>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class Transcript;

/// The console's side of one service of the handset: it records the service's signals in the
/// transcript, keeps lists of what the service has, and calls the service for commands. A command
/// ends when its call is answered.
class ServiceTalk : public QObject
{
    Q_OBJECT

public:
    struct Service
    {
        QString busName;
        QString path;
        QString control; ///< The interface through which the simulator controls it.
        QString source; ///< The source of its lines in the transcript.
    };

    /// \a transcript must outlive the object.
    ServiceTalk(QDBusConnection bus, Service service, Transcript &transcript,
                QObject *parent = nullptr);
    ~ServiceTalk() override;

    /// Returns the commands for the service. They use this object.
    virtual QVector<Command> commands() = 0;

    /// Keeps the lists up to date from now on.
    void follow();

protected:
    using Describe = std::function<QString(const QVariantList &values)>;

    /// Records a line whenever the service emits the signal \a member with values of the D-Bus
    /// \a signature. \a describe makes the line of the values. Each signal also refreshes the
    /// lists.
    void tell(const QString &interface, const QString &member, const QString &signature,
              const Describe &describe);
    /// Adds a list of what the service has. This object owns it.
    ServiceList *addList(const ServiceList::Source &source);
    /// Asks for all lists and records a line for each item. Ends with \a none if there is no item.
    void print(const Finish &finish, const QString &none = {});
    /// Calls a method of the control interface that returns nothing.
    void act(const QString &method, const QVariantList &arguments, const Finish &finish);
    /// Returns the number that \a word is. If it is none, the command fails.
    static std::optional<uint> numberIn(const QString &word, const Finish &finish);
    /// Calls a method and hands its results, which have the D-Bus \a signature, to \a answered.
    void ask(const QString &interface, const QString &method, const QVariantList &arguments,
             const QString &signature, const Finish &finish,
             const std::function<void(const QVariantList &values)> &answered);

private Q_SLOTS:
    void signalled(const QDBusMessage &message);

private:
    void printFrom(std::size_t list, qsizetype printed, const Finish &finish, const QString &none);
    void record(const QString &line);

    QDBusConnection m_bus;
    const Service m_service;
    Transcript &m_transcript;
    QHash<QString, Describe> m_describe; ///< By the signal's member.
    std::vector<std::unique_ptr<ServiceList>> m_lists;
};
