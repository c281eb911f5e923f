// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "servicedialogue.h"

#include "busvalues.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QPointer>

#include <utility>

namespace {

const QLatin1String interface("org.ofono.SupplementaryServices");
const QLatin1String idle("idle");
const QLatin1String active("active");
const QLatin1String userResponse("user-response");
const QLatin1String stateProperty("State");

constexpr int longestReply = 200;

QVariantMap readValues(const QDBusArgument &argument)
{
    QVariantMap raw;
    argument >> raw;
    QVariantMap values;
    for (auto it = raw.cbegin(); it != raw.cend() && values.size() < mostBusObjects; ++it) {
        const bool isPlain = it->userType() == QMetaType::QString
            || it->userType() == QMetaType::Bool || it->userType() == QMetaType::Int
            || it->userType() == QMetaType::UInt;
        if (isPlain)
            values.insert(safeText(it.key()),
                          it->userType() == QMetaType::QString ? textIn(*it) : *it);
    }
    return values;
}

bool isUnderWay(const QVariant &state)
{
    return state == active || state == userResponse;
}

/// Reads the values of a setting of \a kind: an operation, and a status or a service with values.
QVariantMap readSetting(const QString &kind, const QVariant &value)
{
    QVariantMap setting{{QStringLiteral("kind"), safeText(kind)}};
    const auto argument = value.value<QDBusArgument>();
    const QString signature = argument.currentSignature();
    const bool hasService = signature == QLatin1String("(ssa{sv})");
    const bool hasStatus = signature == QLatin1String("(ss)");
    if (!hasService && !hasStatus && signature != QLatin1String("(sa{sv})"))
        return setting;
    QString text;
    argument.beginStructure();
    argument >> text;
    setting.insert(QStringLiteral("operation"), safeText(text));
    if (hasService || hasStatus) {
        argument >> text;
        setting.insert(hasStatus ? QStringLiteral("status") : QStringLiteral("service"),
                       safeText(text));
    }
    if (!hasStatus)
        setting.insert(QStringLiteral("values"), readValues(argument));
    argument.endStructure();
    return setting;
}

} // namespace

ServiceDialogue::ServiceDialogue(Ofono &ofono, FailureHandler failed)
    : m_ofono(ofono)
    , m_failed(std::move(failed))
    , m_state(idle)
{
    m_ofono.follow(interface, QStringLiteral("PropertyChanged"), QStringLiteral("sv"));
    m_ofono.follow(interface, QStringLiteral("NotificationReceived"), QStringLiteral("s"));
    m_ofono.follow(interface, QStringLiteral("RequestReceived"), QStringLiteral("s"));
}

QString ServiceDialogue::state() const
{
    return m_sent ? QString(active) : m_state;
}

void ServiceDialogue::begin(const QString &request, const QString &modem)
{
    const QString chosen = m_ofono.modemFor(modem, interface);
    const bool free = state() == idle;
    if (!free || chosen.isEmpty()) {
        m_failed(QStringLiteral("dial"), request,
                 free ? Telephony::NoModem : Telephony::InProgress);
        return;
    }
    const Content before = content();
    m_modem = chosen;
    m_context = std::make_unique<QObject>();
    m_text.clear();
    m_answer.clear();
    call(QStringLiteral("dial"), QStringLiteral("Initiate"), request,
         [this](const QDBusMessage &answer) { readAnswer(answer); });
    update(before);
}

void ServiceDialogue::reply(const QString &text)
{
    m_ofono.later([this, self = QPointer<ServiceDialogue>(this), text] {
        if (self)
            respond(text);
    });
}

void ServiceDialogue::respond(const QString &text)
{
    if (state() != userResponse || text.size() > longestReply) {
        m_failed(QStringLiteral("reply"), text.left(longestReply),
                 state() == userResponse ? Telephony::InvalidFormat : Telephony::NotActive);
        return;
    }
    const Content before = content();
    call(QStringLiteral("reply"), QStringLiteral("Respond"), text,
         [this](const QDBusMessage &answer) {
             if (answer.signature() == QLatin1String("s"))
                 m_text = safeLines(answer.arguments().constFirst().toString());
         });
    update(before);
}

void ServiceDialogue::cancel()
{
    if (m_modem.isEmpty() || state() == idle)
        return;
    m_ofono.command({m_modem, interface, QStringLiteral("Cancel"), {}}, m_ofono.patience().command,
                    m_context.get(), [this](const QDBusMessage &answer) {
                        if (answer.type() == QDBusMessage::ErrorMessage)
                            m_failed(QStringLiteral("cancel"), {}, Telephony::errorOf(answer));
                    });
}

/// \a succeeded changes this object without emitting anything.
void ServiceDialogue::call(const QString &action, const QString &method, const QString &text,
                           const std::function<void(const QDBusMessage &)> &succeeded)
{
    m_sent = Sent{action, text};
    m_ofono.command({m_modem, interface, method, {text}}, m_ofono.patience().network,
                    m_context.get(), [=](const QDBusMessage &answer) {
                        const Content before = content();
                        m_sent.reset();
                        if (answer.type() == QDBusMessage::ErrorMessage)
                            m_failed(action, text, Telephony::errorOf(answer));
                        else
                            succeeded(answer);
                        update(before);
                    });
}

void ServiceDialogue::readAnswer(const QDBusMessage &message)
{
    if (message.signature() != QLatin1String("sv"))
        return;
    const QString kind = message.arguments().at(0).toString();
    const QVariant value = message.arguments().at(1).value<QDBusVariant>().variant();
    if (kind != QLatin1String("USSD"))
        m_answer = readSetting(kind, value);
    else if (value.userType() == QMetaType::QString)
        m_text = safeLines(value.toString());
}

void ServiceDialogue::receive(const QDBusMessage &message)
{
    if (message.interface() != interface)
        return;
    const bool isText = message.signature() == QLatin1String("s");
    const BusProperty property = isText ? BusProperty() : busProperty(message);
    const bool begins = isText || (property.name == stateProperty && isUnderWay(property.value));
    if (message.path() != m_modem && !(begins && state() == idle))
        return;
    const Content before = content();
    m_modem = message.path();
    if (isText) {
        m_text = safeLines(message.arguments().constFirst().toString());
        m_answer.clear();
    } else if (property.name == stateProperty) {
        readState(property.value);
    }
    update(before);
}

void ServiceDialogue::followModem(const QString &modem)
{
    const bool hasInterface = m_ofono.has(modem, interface);
    if (hasInterface && m_modem.isEmpty()) {
        // A dialogue may be under way since before this object.
        m_ofono.ask({modem, interface, QStringLiteral("GetProperties"), {}},
                    QStringLiteral("a{sv}"), this, [this, modem](const QDBusMessage &answer) {
                        const Content before = content();
                        const QVariant value = busProperties(answer).value(stateProperty);
                        if (m_modem.isEmpty() && m_ofono.has(modem, interface)
                            && isUnderWay(value)) {
                            m_modem = modem;
                            readState(value);
                        }
                        update(before);
                    });
    } else if (!hasInterface && modem == m_modem) {
        const Content before = content();
        if (m_sent)
            m_failed(m_sent->action, m_sent->text, Telephony::NoAnswer);
        m_sent.reset();
        m_context = std::make_unique<QObject>();
        m_state = idle;
        m_modem.clear();
        update(before);
    }
}

void ServiceDialogue::readState(const QVariant &value)
{
    if (value == idle || isUnderWay(value))
        m_state = value.toString();
}

/// Emits the signals of what is not as it was \a before, last, because a handler may destroy this
/// object.
void ServiceDialogue::update(const Content &before)
{
    const Content now = content();
    const QPointer<ServiceDialogue> self(this);
    if (now.modem != before.modem)
        Q_EMIT modemChanged();
    if (self && now.text != before.text)
        Q_EMIT textChanged();
    if (self && now.answer != before.answer)
        Q_EMIT answerChanged();
    if (self && now.state != before.state)
        Q_EMIT stateChanged();
}
