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
#include <vector>

class Transcript;

/// The console's talk with one service of the handset. What the service signals is recorded in the
/// transcript; what it has is kept in lists; what a command asks of it ends that command.
class ServiceTalk : public QObject
{
    Q_OBJECT

public:
    struct Service
    {
        QString busName;
        QString path;
        QString control; ///< The interface through which the simulator controls it.
        QString source; ///< Names it in the transcript.
    };

    /// \a transcript outlives the object.
    ServiceTalk(QDBusConnection bus, Service service, Transcript &transcript,
                QObject *parent = nullptr);
    ~ServiceTalk() override;

    /// The commands that concern the service.
    virtual QVector<Command> commands() = 0;

    /// Keeps the lists up to date from now on.
    void follow();

protected:
    using Describe = std::function<QString(const QVariantList &values)>;

    /// Records the line that \a describe makes of the values whenever the service emits the signal
    /// \a member with values of the D-Bus \a signature. Whatever is signalled may change the lists.
    void tell(const QString &interface, const QString &member, const QString &signature,
              const Describe &describe);
    /// Adds a list of what the service has. It belongs to this object.
    ServiceList *addList(const ServiceList::Source &source);
    /// Asks for all lists and records their items, a line each. Ends with \a none if there are
    /// none.
    void print(const Finish &finish, const QString &none = {});
    /// Calls a method of the control interface that returns nothing.
    void act(const QString &method, const QVariantList &arguments, const Finish &finish);
    /// Calls a method; \a answered takes what is returned, which has the D-Bus \a signature.
    void ask(const QString &interface, const QString &method, const QVariantList &arguments,
             const QString &signature, const Finish &finish,
             const std::function<void(const QVariantList &values)> &answered);

private Q_SLOTS:
    void signalled(const QDBusMessage &message);

private:
    void printFrom(std::size_t list, int printed, const Finish &finish, const QString &none);
    void record(const QString &line);

    QDBusConnection m_bus;
    const Service m_service;
    Transcript &m_transcript;
    QHash<QString, Describe> m_describe; ///< By the signal's member.
    std::vector<std::unique_ptr<ServiceList>> m_lists;
};
