// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "atsession.h"

#include "phoneline.h"
#include "simfiles.h"

#include <QByteArrayList>
#include <QVector>

#include <algorithm>
#include <chrono>
#include <utility>

namespace {

const QByteArray ok = QByteArrayLiteral("OK");
const QByteArray error = QByteArrayLiteral("ERROR");
const QByteArray noCarrier = QByteArrayLiteral("NO CARRIER");
const QByteArray simNotInserted = QByteArrayLiteral("+CME ERROR: 10");
const QByteArray pinRequired = QByteArrayLiteral("+CME ERROR: 11");
const QByteArray wrongPassword = QByteArrayLiteral("+CME ERROR: 16");
const QByteArray unreadableMessage = QByteArrayLiteral("+CMS ERROR: 304");
const QByteArray networkOutOfOrder = QByteArrayLiteral("+CMS ERROR: 38");

/// A modem that hangs does not remember more.
constexpr int mostWaiting = 1000;

/// Messages that wait for their other parts.
constexpr int mostUnfinished = 20;

/// Between two announcements of an incoming call.
constexpr std::chrono::seconds betweenRings(3);

/// What always has the same answer. An empty one is only OK.
const QHash<QByteArray, QByteArray> &constants()
{
    static const QHash<QByteArray, QByteArray> answers{
        {"", ""},
        {"E0", ""},
        {"V1", ""},
        {"Z", ""},
        {"&F", ""},
        {"+CMEE=1", ""},
        {"+CGMI", "Parley"},
        {"+CGMM", "Simulated modem"},
        {"+CGMR", "1.0"},
        {"+CGSN", "000000000000000"},
        {"+GCAP", "+GCAP: +CGSM"},
        {"+CSCS=\"GSM\"", ""},
        {"+CSCS?", "+CSCS: \"GSM\""},
        {"+CSCS=?", "+CSCS: (\"GSM\")"},
        {"+CRC=1", ""},
        {"+CLIP=1", ""},
        {"+CNAP=1", ""},
        {"+COLP=1", ""},
        {"+CCWA=1", ""},
        {"+CSSN=1,1", ""},
        {"+CLCK=?", "+CLCK: (\"SC\")"},
        {"+CLCK=\"SC\",2", "+CLCK: 0"},
        {"+CREG=?", "+CREG: (0-2)"},
        {"+CREG=2", ""},
        {"+COPS=0", ""},
        {"+CUSD=1", ""},
        {"+CSMS=?", "+CSMS: (0,1)"},
        {"+CSMS=0", "+CSMS: 1,1,1"},
        {"+CSMS=1", "+CSMS: 1,1,1"},
        {"+CSMS?", "+CSMS: 1,1,1,1"},
        {"+CMGF=?", "+CMGF: (0)"},
        {"+CMGF=0", ""},
        {"+CPMS=?", R"(+CPMS: ("SM"),("SM"),("SM"))"},
        {R"(+CPMS="SM","SM","SM")", "+CPMS: 0,10,0,10,0,10"},
        {"+CNMI=?", "+CNMI: (0-2),(0-3),(0,2),(0-2),(0,1)"},
        {"+CNMI=2,2,2,1,0", ""},
        {"+CSCA?", "+CSCA: \"+15550000\",145"},
        {"+CMGL=4", ""},
        {"+CGSMS=3", ""},
    };
    return answers;
}

/// Returns the number in the form of most commands, with its type (3GPP TS 24.008, 10.5.4.7).
QByteArray quoted(const QString &number)
{
    const QByteArray type = number.isEmpty()  ? "128"
        : number.startsWith(QLatin1Char('+')) ? "145"
                                              : "129";
    return '"' + number.toLatin1() + "\"," + type;
}

/// Returns the whole numbers in a list, or nothing if there is anything else.
QVector<int> numbersIn(const QByteArray &list)
{
    QVector<int> numbers;
    const QByteArrayList words = list.split(',');
    for (const QByteArray &word : words) {
        bool isNumber = false;
        numbers.append(word.trimmed().toInt(&isNumber));
        if (!isNumber)
            return {};
    }
    return numbers;
}

QByteArray unquoted(const QByteArray &word)
{
    const bool isQuoted = word.size() >= 2 && word.startsWith('"') && word.endsWith('"');
    return isQuoted ? word.mid(1, word.size() - 2) : word;
}

/// Returns the commands of a line, which semicolons outside of texts separate.
QByteArrayList commandsIn(const QByteArray &line)
{
    QByteArrayList commands{QByteArray()};
    bool isText = false;
    for (const char character : line) {
        if (character == '"')
            isText = !isText;
        if (character == ';' && !isText)
            commands.append(QByteArray());
        else
            commands.last().append(character);
    }
    return commands;
}

/// Returns the command in capitals, apart from texts.
QByteArray capital(const QByteArray &command)
{
    QByteArray capitals = command;
    bool isText = false;
    for (char &character : capitals) {
        if (character == '"')
            isText = !isText;
        else if (!isText && character >= 'a' && character <= 'z')
            character = static_cast<char>(character - 'a' + 'A');
    }
    return capitals;
}

} // namespace

AtSession::AtSession(PhoneLine &line, QObject *parent)
    : QObject(parent)
    , m_line(line)
    , m_input([this](AtInput::Kind kind, const QByteArray &text) {
        if (m_waiting == mostWaiting)
            return;
        ++m_waiting;
        m_line.pace().add([this, kind, text] {
            --m_waiting;
            take(kind, text);
        });
    })
    , m_handlers({{"A", &AtSession::answer},
                  {"H", &AtSession::hangUp},
                  {"+CHUP", &AtSession::hangUp},
                  {"+CLCC", &AtSession::listCalls},
                  {"+CHLD=", &AtSession::handleCalls},
                  {"+VTS=", &AtSession::collectTone},
                  {"+CUSD=", &AtSession::request},
                  {"+CFUN=", &AtSession::switchRadio},
                  {"+SIMSTATE?", &AtSession::tellSimState},
                  {"+CPIN?", &AtSession::tellPin},
                  {"+CPIN=", &AtSession::enterPin},
                  {"+CIMI", &AtSession::tellIdentity},
                  {"+CRSM=", &AtSession::readSim},
                  {"+CREG?", &AtSession::tellRegistration},
                  {"+COPS?", &AtSession::tellOperator},
                  {"+COPS=", &AtSession::chooseOperatorForm},
                  {"+CSQ", &AtSession::tellSignal},
                  {"+CMGS=", &AtSession::beginMessage}})
    , m_hasSim(line.sim().isPresent())
    , m_simIsLocked(line.sim().locked)
{
    m_ring.setSingleShot(true);
    m_ring.setInterval(betweenRings);
    connect(&m_ring, &QTimer::timeout, this, &AtSession::ring);
    connect(&line.calls(), &NetworkCalls::added, this, &AtSession::announceCall);
    connect(&line.calls(), &NetworkCalls::changed, this, &AtSession::followCall);
    connect(&line.calls(), &NetworkCalls::ended, this,
            [this](const NetworkCall &call, NetworkCalls::Ending ending) {
                m_remoteHeld.remove(call.id);
                if (ending != NetworkCalls::Ending::Local)
                    announce(noCarrier);
            });
    connect(&line, &PhoneLine::simChanged, this, &AtSession::followSim);
    connect(&line, &PhoneLine::registeredChanged, this, &AtSession::followRegistration);
}

void AtSession::reset()
{
    m_input.clear();
    m_parts.clear();
    m_wantsOperatorCode = false;
}

void AtSession::take(AtInput::Kind kind, const QByteArray &text)
{
    switch (kind) {
    case AtInput::Kind::Line:
        runLine(text.trimmed());
        break;
    case AtInput::Kind::Message:
        sendMessage(text);
        break;
    case AtInput::Kind::NoMessage:
        say(ok);
        break;
    case AtInput::Kind::TooLong:
        say(error);
        break;
    }
}

/// The first command that fails ends the line (ITU-T V.250, 5.2).
void AtSession::runLine(const QByteArray &line)
{
    if (!capital(line).startsWith("AT"))
        return;
    const QByteArray rest = line.mid(2);
    m_tones.clear();
    QByteArray result = ok;
    if (capital(rest).startsWith('D')) {
        result = dial(rest.mid(1));
    } else {
        const QByteArrayList commands = commandsIn(rest);
        for (const QByteArray &command : commands) {
            result = run(capital(command.trimmed()));
            if (result != ok)
                break;
        }
    }
    if (result == ok && !m_tones.isEmpty() && !m_line.sendTones(QString::fromLatin1(m_tones)))
        result = error;
    if (!result.isEmpty())
        say(result);
    const QByteArrayList afterwards = std::exchange(m_afterwards, {});
    for (const QByteArray &text : afterwards)
        say(text);
}

/// Returns the result, which is empty if a message is to follow.
QByteArray AtSession::run(const QByteArray &command)
{
    const auto constant = constants().constFind(command);
    if (constant != constants().cend()) {
        if (!constant->isEmpty())
            say(*constant);
        return ok;
    }
    // A name ends with what is done to it. "=?" only asks whether there is such a command.
    const auto equals = command.indexOf('=');
    const QByteArray name = equals < 0 ? command : command.left(equals + 1);
    const QByteArray arguments = equals < 0 ? QByteArray() : command.mid(equals + 1);
    const Handler handler = m_handlers.value(name);
    if (handler == nullptr)
        return error;
    return arguments == "?" ? ok : (this->*handler)(arguments);
}

void AtSession::say(const QByteArray &text)
{
    Q_EMIT sent("\r\n" + text + "\r\n");
}

/// Says something that nobody has asked for.
void AtSession::announce(const QByteArray &text)
{
    m_line.pace().add([this, text] { say(text); });
}

/// A number ends with a semicolon, before which I or i says whether the own number is shown.
QByteArray AtSession::dial(const QByteArray &number)
{
    if (!number.endsWith(';'))
        return noCarrier;
    QByteArray digits = number.left(number.size() - 1);
    if (digits.endsWith('I') || digits.endsWith('i'))
        digits.chop(1);
    const QString text = QString::fromLatin1(digits);
    return PhoneLine::isNumber(text) && m_line.dial(text) != 0 ? ok : error;
}

QByteArray AtSession::answer(const QByteArray &)
{
    return m_line.calls().answer() ? ok : noCarrier;
}

QByteArray AtSession::hangUp(const QByteArray &)
{
    m_line.calls().hangUp();
    return ok;
}

QByteArray AtSession::listCalls(const QByteArray &)
{
    for (const auto &[id, call] : m_line.calls().all()) {
        const QByteArrayList parts{QByteArray::number(id),
                                   call.isIncoming ? "1" : "0",
                                   QByteArray::number(static_cast<int>(call.state)),
                                   "0",
                                   call.isInConference ? "1" : "0",
                                   quoted(call.number)};
        say("+CLCC: " + parts.join(','));
    }
    return ok;
}

/// (3GPP TS 27.007, 7.13.)
QByteArray AtSession::handleCalls(const QByteArray &arguments)
{
    NetworkCalls &calls = m_line.calls();
    const int id = arguments.mid(1).toInt();
    const char action = arguments.isEmpty() ? '\0' : arguments.at(0);
    bool isDone = false;
    if (arguments.size() == 1) {
        isDone = (action == '0' && calls.endHeldOrWaiting()) || (action == '1' && calls.endActive())
            || (action == '2' && calls.swap()) || (action == '3' && calls.join())
            || (action == '4' && calls.transfer());
    } else {
        isDone = (action == '1' && calls.end(id)) || (action == '2' && calls.split(id));
    }
    return isDone ? ok : error;
}

/// A line may have several tones, which are sent together.
QByteArray AtSession::collectTone(const QByteArray &tone)
{
    const bool isTone = tone.size() == 1 && QByteArray("0123456789*#ABCD").contains(tone);
    if (isTone)
        m_tones += tone;
    return isTone ? ok : error;
}

/// The network answers after the result of the command (3GPP TS 27.007, 7.15).
QByteArray AtSession::request(const QByteArray &arguments)
{
    if (arguments == "2") {
        m_line.cancelService();
        return ok;
    }
    const QString text = QString::fromLatin1(unquoted(arguments.split(',').value(1)));
    const auto answered = m_line.isAsked() ? m_line.reply(text) : m_line.request(text);
    if (!answered) {
        m_afterwards.append("+CUSD: 4");
    } else {
        const QByteArray wantsReply = answered->wantsReply ? "1" : "0";
        m_afterwards.append("+CUSD: " + wantsReply + ",\"" + answered->text.toLatin1() + "\",15");
    }
    return ok;
}

/// (3GPP TS 27.007, 8.2.)
QByteArray AtSession::switchRadio(const QByteArray &arguments)
{
    const QVector<int> level = numbersIn(arguments);
    if (level.isEmpty())
        return error;
    m_line.setOn(level.constFirst() == 1);
    return ok;
}

QByteArray AtSession::tellSimState(const QByteArray &)
{
    say(m_hasSim ? "+SIMSTATE: 1" : "+SIMSTATE: 0");
    return ok;
}

QByteArray AtSession::tellPin(const QByteArray &)
{
    if (!m_hasSim)
        return simNotInserted;
    say(m_simIsLocked ? "+CPIN: SIM PIN" : "+CPIN: READY");
    return ok;
}

QByteArray AtSession::enterPin(const QByteArray &arguments)
{
    if (!m_hasSim)
        return simNotInserted;
    if (!m_simIsLocked || unquoted(arguments) != Pin)
        return wrongPassword;
    m_simIsLocked = false;
    Q_EMIT pinEntered();
    return ok;
}

QByteArray AtSession::tellIdentity(const QByteArray &)
{
    if (!m_hasSim)
        return simNotInserted;
    if (m_simIsLocked)
        return pinRequired;
    say(m_line.sim().imsi.toLatin1());
    return ok;
}

QByteArray AtSession::readSim(const QByteArray &arguments)
{
    if (!m_hasSim)
        return simNotInserted;
    QVector<int> numbers = numbersIn(arguments);
    if (numbers.size() < 2)
        return error;
    numbers.resize(5);
    const SimFiles files(m_line.sim(), m_line.emergencyNumbers(), PhoneLine::homeNetwork());
    say("+CRSM: "
        + files.answer(numbers.at(0), numbers.at(1), numbers.at(2), numbers.at(3), numbers.at(4)));
    return ok;
}

QByteArray AtSession::tellRegistration(const QByteArray &)
{
    say("+CREG: 2," + registration());
    return ok;
}

QByteArray AtSession::tellOperator(const QByteArray &)
{
    if (!m_line.isRegistered())
        say("+COPS: 0");
    else if (m_wantsOperatorCode)
        say("+COPS: 0,2,\"" + m_line.sim().imsi.left(5).toLatin1() + '"');
    else
        say("+COPS: 0,0,\"" + m_line.networkName().toLatin1() + '"');
    return ok;
}

/// Only the form can be chosen (3GPP TS 27.007, 7.3), not the network.
QByteArray AtSession::chooseOperatorForm(const QByteArray &arguments)
{
    m_wantsOperatorCode = arguments == "3,2";
    return m_wantsOperatorCode || arguments == "3,0" ? ok : error;
}

/// The strength is a number up to 31 (3GPP TS 27.007, 8.5).
QByteArray AtSession::tellSignal(const QByteArray &)
{
    say("+CSQ: " + QByteArray::number(m_line.strength() * 31 / 100) + ",99");
    return ok;
}

QByteArray AtSession::beginMessage(const QByteArray &arguments)
{
    const QVector<int> length = numbersIn(arguments);
    if (length.size() != 1)
        return unreadableMessage;
    m_messageLength = length.constFirst();
    m_input.expectMessage();
    Q_EMIT sent("\r\n> ");
    return {};
}

/// The parts of a long message are told as one.
void AtSession::sendMessage(const QByteArray &text)
{
    const auto message = SubmittedMessage::read(text, m_messageLength);
    if (!message) {
        say(unreadableMessage);
        return;
    }
    if (!m_parts.contains(message->reference) && m_parts.size() == mostUnfinished)
        m_parts.clear();
    auto &parts = m_parts[message->reference];
    parts.insert(message->part, *message);
    const bool isTaken = m_line.takesMessages();
    if (isTaken && parts.size() == message->parts) {
        QString whole;
        for (const SubmittedMessage &part : std::as_const(parts))
            whole += part.text;
        m_line.sendMessage(message->number, whole);
    }
    if (!isTaken || parts.size() == message->parts)
        m_parts.remove(message->reference);
    if (isTaken)
        say("+CMGS: " + QByteArray::number(++m_lastMessage % 256));
    say(isTaken ? ok : networkOutOfOrder);
}

/// (3GPP TS 27.007, 6.11, 7.6 and 7.12.) The last figure says that a number is withheld.
void AtSession::announceCall(const NetworkCall &call)
{
    if (!call.isIncoming)
        return;
    const QByteArray number = quoted(call.number);
    const QByteArray validity = call.number.isEmpty() ? "1" : "0";
    if (call.state == NetworkCall::State::Waiting) {
        announce("+CCWA: " + number + ",1,," + validity);
    } else {
        announce("+CRING: VOICE");
        announce("+CLIP: " + number + ",,,," + validity);
        m_ring.start();
    }
}

void AtSession::ring()
{
    const NetworkCalls::ById &calls = m_line.calls().all();
    const auto found = std::find_if(calls.cbegin(), calls.cend(), [](const auto &entry) {
        return entry.second.state == NetworkCall::State::Incoming;
    });
    if (found != calls.cend())
        announceCall(found->second);
}

/// The states of calls are asked for. That the other side holds a call is told.
void AtSession::followCall(const NetworkCall &call)
{
    if (m_remoteHeld.value(call.id) == call.isHeldByRemote)
        return;
    m_remoteHeld.insert(call.id, call.isHeldByRemote);
    announce(call.isHeldByRemote ? "+CSSU: 2" : "+CSSU: 3");
}

/// A SIM with another state is one that was taken out and put in.
void AtSession::followSim()
{
    const Sim &sim = m_line.sim();
    const bool isUnlockedHere = sim.isPresent() && !sim.locked && m_hasSim && !m_simIsLocked;
    if (isUnlockedHere)
        return;
    if (m_hasSim)
        announce("+USIMSTATE: 0");
    m_hasSim = sim.isPresent();
    m_simIsLocked = sim.locked;
    if (m_hasSim)
        announce("+USIMSTATE: 1");
}

void AtSession::followRegistration()
{
    announce("+CREG: " + registration());
}

/// Returns the state and the place in the network (3GPP TS 27.007, 7.2).
QByteArray AtSession::registration() const
{
    return m_line.isRegistered() ? R"(1,"0001","00000001")" : "2";
}
