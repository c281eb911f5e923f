// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "ofono.h"

#include <QObject>
#include <QString>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <optional>

/// A dialogue with the network, which begins with a request such as *100# (USSD), or with a message
/// from the network. There is one at a time. It follows org.ofono.SupplementaryServices.
class ServiceDialogue : public QObject
{
    Q_OBJECT
    /// "idle", "active" while the network is to answer, or "user-response" while the user is.
    Q_PROPERTY(QString state READ state NOTIFY stateChanged)
    /// What the network has said last. It may have several lines.
    Q_PROPERTY(QString text READ text NOTIFY textChanged)
    /// What became of a request that changes or asks for a setting, such as call forwarding: its
    /// "kind", "operation", "service", "status" and "values", as far as there are any. Empty for
    /// all other requests.
    Q_PROPERTY(QVariantMap answer READ answer NOTIFY answerChanged)
    /// The modem of the dialogue; empty if there has been none.
    Q_PROPERTY(QString modem READ modem NOTIFY modemChanged)

public:
    /// Takes what has failed: the action of the user, the request or the reply, and why.
    using FailureHandler =
        std::function<void(const QString &action, const QString &text, Telephony::Error error)>;

    ServiceDialogue(Ofono &ofono, FailureHandler failed);

    QString state() const;
    QString text() const { return m_text; }
    QVariantMap answer() const { return m_answer; }
    QString modem() const { return m_modem; }

    /// Begins a dialogue with \a request, through \a modem or the first that is online.
    void begin(const QString &request, const QString &modem);
    /// Takes a signal of the interface.
    void receive(const QDBusMessage &message);
    /// Notices that \a modem has come or gone, or has other interfaces.
    void followModem(const QString &modem);

    /// Sends \a text as the user's reply.
    Q_INVOKABLE void reply(const QString &text);
    /// Ends the dialogue.
    Q_INVOKABLE void cancel();

Q_SIGNALS:
    void stateChanged();
    void textChanged();
    void answerChanged();
    void modemChanged();

private:
    /// What this object shows.
    struct Content
    {
        QString state;
        QString text;
        QVariantMap answer;
        QString modem;
    };

    /// A request or a reply, and the action of the user that has sent it.
    struct Sent
    {
        QString action;
        QString text;
    };

    void respond(const QString &text);
    void call(const QString &action, const QString &method, const QString &text,
              const std::function<void(const QDBusMessage &)> &succeeded);
    void readAnswer(const QDBusMessage &message);
    void readState(const QVariant &value);
    Content content() const { return {state(), m_text, m_answer, m_modem}; }
    void update(const Content &before);

    Ofono &m_ofono;
    FailureHandler m_failed;
    QString m_state; ///< oFono's.
    std::optional<Sent> m_sent; ///< What the network is to answer.
    std::unique_ptr<QObject> m_context = std::make_unique<QObject>(); ///< Of the answers.
    QString m_text;
    QVariantMap m_answer;
    QString m_modem;
};
