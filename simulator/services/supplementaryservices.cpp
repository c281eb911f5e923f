// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "supplementaryservices.h"

#include "modem.h"

#include <QRegularExpression>

namespace {

const QLatin1String idle("idle");
const QLatin1String active("active");
const QLatin1String userResponse("user-response");

/// Returns whether \a text is a request (3GPP TS 22.030, 6.5.2).
bool isRequest(const QString &text)
{
    static const QRegularExpression request(
        QRegularExpression::anchoredPattern(QStringLiteral("[*#][0-9*#]*#")));
    return request.match(text).hasMatch();
}

} // namespace

SupplementaryServices::SupplementaryServices(Modem &modem, PhoneLine &line)
    : QDBusAbstractAdaptor(&modem)
    , m_modem(modem)
    , m_line(line)
{
    connect(&line, &PhoneLine::registeredChanged, this, [this] {
        m_line.cancelService();
        setState(idle);
    });
}

QVariantMap SupplementaryServices::GetProperties()
{
    m_modem.offers(interface());
    return {{QStringLiteral("State"), m_state}};
}

QString SupplementaryServices::Initiate(const QString &command, QDBusVariant &)
{
    if (!m_modem.offers(interface()))
        return {};
    if (m_state != idle) {
        m_modem.refuse(OfonoError::InProgress);
    } else if (!isRequest(command)) {
        m_modem.refuse(OfonoError::InvalidFormat);
    } else {
        setState(active);
        m_modem.perform(m_modem.message(), [this, command](const QDBusMessage &message) {
            const Answer answer = m_line.request(command);
            const QString text = answer ? answer->text : QString();
            return reply(
                message, answer,
                {QStringLiteral("USSD"), QVariant::fromValue(QDBusVariant(QVariant(text)))});
        });
    }
    return {};
}

QString SupplementaryServices::Respond(const QString &text)
{
    if (!m_modem.offers(interface()))
        return {};
    if (m_state != userResponse) {
        m_modem.refuse(OfonoError::NotActive);
    } else {
        setState(active);
        m_modem.perform(m_modem.message(), [this, text](const QDBusMessage &message) {
            const Answer answer = m_line.reply(text);
            return reply(message, answer, {answer ? answer->text : QString()});
        });
    }
    return {};
}

void SupplementaryServices::Cancel()
{
    if (!m_modem.offers(interface()))
        return;
    if (m_state == idle) {
        m_modem.refuse(OfonoError::NotActive);
        return;
    }
    m_line.cancelService();
    setState(idle);
}

QDBusMessage SupplementaryServices::reply(const QDBusMessage &message, const Answer &answer,
                                          const QVariantList &arguments)
{
    // It may have been cancelled meanwhile.
    const bool isCancelled = m_state != active;
    if (!isCancelled)
        setState(answer && answer->wantsReply ? userResponse : idle);
    if (isCancelled)
        return ofonoError(message, OfonoError::Canceled);
    return answer ? message.createReply(arguments) : ofonoError(message, OfonoError::NotSupported);
}

void SupplementaryServices::setState(const QString &state)
{
    if (m_state == state)
        return;
    m_state = state;
    if (m_modem.has(interface()))
        Q_EMIT PropertyChanged(QStringLiteral("State"), QDBusVariant(state));
}
