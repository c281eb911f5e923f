// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "atsession.h"
#include "literals.h"
#include "phoneline.h"

#include <QByteArrayList>
#include <QRandomGenerator>
#include <QTest>

#include <memory>
#include <utility>

namespace {

const QString imsi = u"262011234567890"_s;

} // namespace

/// What a modem answers to AT commands, without a connection.
class TestAtSession : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void answers_data();
    void answers();
    void isReadInPieces();
    void dialsAndListsCalls();
    void ringsUntilItIsAnswered();
    void tellsThatACallWaits();
    void tellsWhatTheOtherSideDoes();
    void handlesCalls();
    void sendsTonesTogether();
    void sendsAMessage_data();
    void sendsAMessage();
    void joinsThePartsOfAMessage();
    void refusesAMessage_data();
    void refusesAMessage();
    void readsAHeaderThatIsCutShort();
    void takesAMessageBack();
    void asksTheNetwork();
    void readsTheFilesOfTheSim_data();
    void readsTheFilesOfTheSim();
    void needsThePin();
    void followsTheSim();
    void followsTheNetwork();
    void hangsAndGoesOn();
    void forgetsWhatIsTooMuch();
    void survivesAnything();

private:
    QByteArray ask(const QByteArray &line);
    QByteArray send(const QByteArray &pdu, int tooLong = 0);
    QByteArray said() { return std::exchange(m_said, {}); }

    std::unique_ptr<PhoneLine> m_line;
    std::unique_ptr<AtSession> m_session;
    QByteArray m_said;
    QStringList m_told; ///< What the network was told.
};

void TestAtSession::init()
{
    m_said.clear();
    m_told.clear();
    m_session.reset();
    m_line = std::make_unique<PhoneLine>(Sim{imsi, false});
    m_session = std::make_unique<AtSession>(*m_line);
    connect(m_session.get(), &AtSession::sent, this,
            [this](const QByteArray &bytes) { m_said += bytes; });
    connect(m_line.get(), &PhoneLine::dialled, this,
            [this](const QString &number) { m_told.append(u"dials "_s + number); });
    connect(m_line.get(), &PhoneLine::tonesSent, this,
            [this](const QString &tones) { m_told.append(u"tones "_s + tones); });
    connect(m_line.get(), &PhoneLine::messageSent, this,
            [this](const QString &number, const QString &text) {
                m_told.append(u"to "_s + number + u": "_s + text);
            });
}

/// Returns the lines that are said to a command, with a bar between them.
QByteArray TestAtSession::ask(const QByteArray &line)
{
    said();
    m_session->receive(line + '\r');
    return said().replace("\r\n\r\n", "|").replace("\r\n", "");
}

/// Sends a message, and returns what is said to it. Its length is told as \a tooLong more.
QByteArray TestAtSession::send(const QByteArray &pdu, int tooLong)
{
    const int centre = QByteArray::fromHex(pdu.left(2)).isEmpty()
        ? 0
        : static_cast<uchar>(QByteArray::fromHex(pdu.left(2)).at(0));
    const auto length = pdu.size() / 2 - 1 - centre + tooLong;
    QByteArray prompt = ask("AT+CMGS=" + QByteArray::number(length));
    if (prompt != "> ")
        return prompt;
    m_session->receive(pdu + '\x1a');
    return said().replace("\r\n\r\n", "|").replace("\r\n", "");
}

void TestAtSession::answers_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("answer");

    const auto row = [](const char *line, const char *answer) {
        QTest::newRow(line) << QByteArray(line) << QByteArray(answer);
    };
    row("AT", "OK");
    row("at", "OK");
    row(" ATE0 ", "OK");
    row("AT+CMEE=1;+CRC=1", "OK");
    row("AT+CMEE=1;+BOGUS;+CGMI", "ERROR");
    row("AT+CGMI;+CGMR", "Parley|1.0|OK");
    row("AT+CSCS=\"GSM\"", "OK");
    row("AT+CSCS=\"UCS2\"", "ERROR");
    row("AT+CLCC", "OK");
    row("AT+CLCC=?", "ERROR");
    row("AT+CHLD=?", "OK");
    row("AT+CHLD=", "ERROR");
    row("AT+CHLD=2", "ERROR");
    row("AT+CHLD=1a", "ERROR");
    row("AT+BOGUS", "ERROR");
    row("AT+", "ERROR");
    row("ATD5551234", "NO CARRIER");
    row("ATD;", "ERROR");
    row("ATD12a;", "ERROR");
    row("ATD+49301;", "OK");
    row("ATD112i;", "OK");
    row("ATA", "NO CARRIER");
    row("ATH", "OK");
    row("AT+CHUP", "OK");
    row("AT+VTS=1", "ERROR");
    row("AT+VTS=12", "ERROR");
    row("AT+CPIN?", "+CPIN: READY|OK");
    row("AT+CPIN=\"1234\"", "+CME ERROR: 16");
    row("AT+CIMI", "262011234567890|OK");
    row("AT+CRSM=", "ERROR");
    row("AT+CRSM=176", "ERROR");
    row("AT+CRSM=a,b", "ERROR");
    row("AT+CREG?", R"(+CREG: 2,1,"0001","00000001"|OK)");
    row("AT+COPS=3,2;+COPS?;+COPS=3,0;+COPS?",
        R"(+COPS: 0,2,"26201"|+COPS: 0,0,"Nimbo Mobile"|OK)");
    row("AT+COPS=1", "ERROR");
    row("AT+CSQ", "+CSQ: 24,99|OK");
    row("AT+CFUN=", "ERROR");
    row("AT+CMGS=", "+CMS ERROR: 304");
    // This is no command.
    row("", "");
    row("A", "");
    row("\n\n", "");
    row("hello", "");
}

void TestAtSession::answers()
{
    QFETCH(QByteArray, line);
    QFETCH(QByteArray, answer);

    QCOMPARE(ask(line), answer);
    QCOMPARE(ask("AT"), QByteArray("OK"));
}

void TestAtSession::isReadInPieces()
{
    for (const char byte : QByteArray("AT+CGM"))
        m_session->receive(QByteArray(1, byte));
    QCOMPARE(m_said, QByteArray());
    m_session->receive("I\rAT\rA");
    QCOMPARE(said(), QByteArray("\r\nParley\r\n\r\nOK\r\n\r\nOK\r\n"));
    m_session->receive("T\r");
    QCOMPARE(said(), QByteArray("\r\nOK\r\n"));
}

void TestAtSession::dialsAndListsCalls()
{
    QCOMPARE(ask("ATD+49301;"), QByteArray("OK"));
    QCOMPARE(m_told, QStringList(u"dials +49301"_s));
    QCOMPARE(ask("AT+CLCC"), QByteArray("+CLCC: 1,0,2,0,0,\"+49301\",145|OK"));
    QCOMPARE(ask("ATD5551234;"), QByteArray("ERROR"));
    QTRY_COMPARE(ask("AT+CLCC"), QByteArray("+CLCC: 1,0,3,0,0,\"+49301\",145|OK"));
    m_line->calls().answerRemote(1);
    QCOMPARE(said(), QByteArray());
    m_line->ring({});
    QCOMPARE(ask("AT+CLCC"),
             QByteArray("+CLCC: 1,0,0,0,0,\"+49301\",145|+CLCC: 2,1,5,0,0,\"\",128|OK"));
}

void TestAtSession::ringsUntilItIsAnswered()
{
    const QByteArray ring("\r\n+CRING: VOICE\r\n\r\n+CLIP: \"5551234\",129,,,,0\r\n");
    m_line->ring(u"5551234"_s);
    QCOMPARE(said(), ring);
    QTRY_COMPARE_WITH_TIMEOUT(m_said, ring, 30000);
    QCOMPARE(ask("ATA"), QByteArray("OK"));
    QCOMPARE(ask("AT+CLCC"), QByteArray("+CLCC: 1,1,0,0,0,\"5551234\",129|OK"));
}

void TestAtSession::tellsThatACallWaits()
{
    m_line->ring({});
    QCOMPARE(said(), QByteArray("\r\n+CRING: VOICE\r\n\r\n+CLIP: \"\",128,,,,1\r\n"));
    ask("ATA");
    m_line->ring(u"+49301"_s);
    QCOMPARE(said(), QByteArray("\r\n+CCWA: \"+49301\",145,1,,0\r\n"));
}

void TestAtSession::tellsWhatTheOtherSideDoes()
{
    ask("ATD5551234;");
    m_line->calls().answerRemote(1);
    m_line->calls().holdRemote(1, true);
    QCOMPARE(said(), QByteArray("\r\n+CSSU: 2\r\n"));
    m_line->calls().holdRemote(1, false);
    QCOMPARE(said(), QByteArray("\r\n+CSSU: 3\r\n"));
    m_line->calls().endRemote(1);
    QCOMPARE(said(), QByteArray("\r\nNO CARRIER\r\n"));
    ask("ATD5551234;");
    QCOMPARE(ask("AT+CHUP"), QByteArray("OK"));
    QVERIFY(m_line->calls().all().empty());
}

void TestAtSession::handlesCalls()
{
    const auto states = [this] {
        QByteArray all;
        for (const auto &[id, call] : m_line->calls().all())
            all += QByteArray::number(id) + nameOf(call.state).toLatin1() + ' ';
        return all.trimmed();
    };
    ask("ATD1;");
    m_line->calls().answerRemote(1);
    m_line->ring(u"2"_s);
    QCOMPARE(ask("AT+CHLD=2"), QByteArray("OK"));
    QCOMPARE(states(), QByteArray("1held 2active"));
    QCOMPARE(ask("AT+CHLD=3"), QByteArray("OK"));
    QCOMPARE(states(), QByteArray("1active 2active"));
    QCOMPARE(ask("AT+CHLD=21"), QByteArray("OK"));
    QCOMPARE(states(), QByteArray("1active 2held"));
    QCOMPARE(ask("AT+CHLD=1"), QByteArray("OK"));
    QCOMPARE(states(), QByteArray("2active"));
    m_line->ring(u"3"_s);
    QCOMPARE(ask("AT+CHLD=0"), QByteArray("OK"));
    QCOMPARE(states(), QByteArray("2active"));
    QCOMPARE(ask("AT+CHLD=12"), QByteArray("OK"));
    QCOMPARE(ask("AT+CHLD=12"), QByteArray("ERROR"));
    QCOMPARE(states(), QByteArray());
}

void TestAtSession::sendsTonesTogether()
{
    m_line->ring(u"5551234"_s);
    ask("ATA");
    QCOMPARE(ask("AT+VTS=1;+VTS=#;+VTS=d;"), QByteArray("OK"));
    QCOMPARE(ask("AT+VTS=1;+VTS=X"), QByteArray("ERROR"));
    QCOMPARE(m_told, QStringList(u"tones 1#D"_s));
}

void TestAtSession::sendsAMessage_data()
{
    QTest::addColumn<QByteArray>("pdu");
    QTest::addColumn<QString>("told");

    const auto row = [](const char *name, const char *pdu, const QString &told) {
        QTest::newRow(name) << QByteArray(pdu) << told;
    };
    // This is one of oFono's.
    row("default alphabet", "001100048155150000A70CC8329BFD06E5DF75D0A60C",
        u"to 5551: Hello you €"_s);
    row("extended characters", "001100048155150000A7121BCA06B5496D5E1BDEA6B7F16D809B32",
        u"to 5551: ^{}\\[~]|€"_s);
    row("no validity", "0001000B919471532163F400000547B9DF5306", u"to +49173512364: Grüße"_s);
    row("a number with signs", "00110005811A00FB0000A702C834", u"to *100#: Hi"_s);
    row("Unicode", "001100048155150008A70A041F04400020D83DDE00", u"to 5551: Пр 😀"_s);
    row("bytes", "001100048155150004A7024869", u"to 5551: Hi"_s);
    row("a service centre", "069151550000001100048155150000A702C834", u"to 5551: Hi"_s);
    row("nothing", "001100048155150000A700", u"to 5551: "_s);
    row("seven characters", "001100048155150000A70731D98C56B3DD00", u"to 5551: 1234567"_s);
    row("eight characters", "001100048155150000A70831D98C56B3DD70", u"to 5551: 12345678"_s);
    row("small letters", "001100048155150004a7024a69", u"to 5551: Ji"_s);
}

void TestAtSession::sendsAMessage()
{
    QFETCH(QByteArray, pdu);
    QFETCH(QString, told);

    QCOMPARE(send(pdu), QByteArray("+CMGS: 1|OK"));
    QCOMPARE(m_told, QStringList(told));
    QCOMPARE(send(pdu), QByteArray("+CMGS: 2|OK"));
}

void TestAtSession::joinsThePartsOfAMessage()
{
    QCOMPARE(send("005100048155150000A70A050003070202E8F737"), QByteArray("+CMGS: 1|OK"));
    QCOMPARE(m_told, QStringList());
    // Parts of another one come in between.
    QCOMPARE(send("005100048155150008A70B06080401070201041F0435"), QByteArray("+CMGS: 2|OK"));
    QCOMPARE(send("005100048155150000A70B0500030702019EEE3208"), QByteArray("+CMGS: 3|OK"));
    QCOMPARE(m_told, QStringList(u"to 5551: One two"_s));
    QCOMPARE(send("005100048155150008A70B0608040107020204400432"), QByteArray("+CMGS: 4|OK"));
    QCOMPARE(m_told.constLast(), u"to 5551: Перв"_s);
}

void TestAtSession::refusesAMessage_data()
{
    QTest::addColumn<QByteArray>("pdu");
    QTest::addColumn<int>("tooLong");

    const QByteArray good("001100048155150000A702C834");
    QTest::newRow("empty") << QByteArray() << 0;
    QTest::newRow("no hexadecimal") << QByteArray("hello") << 0;
    QTest::newRow("only a service centre") << QByteArray("00") << 0;
    QTest::newRow("cut") << good.left(good.size() - 2) << 0;
    QTest::newRow("too long") << good + "00" << 0;
    QTest::newRow("another length") << good << 1;
    QTest::newRow("no submission") << QByteArray(good).replace(2, 2, "10") << 0;
    QTest::newRow("header longer than the text")
        << QByteArray("005100048155150008A70606FF0401070201041F0435").left(34) << 0;
    QTest::newRow("part of none") << QByteArray("005100048155150000A70B0500030700019EEE3208") << 0;
    QTest::newRow("third of two") << QByteArray("005100048155150000A70B0500030702039EEE3208") << 0;
}

void TestAtSession::refusesAMessage()
{
    QFETCH(QByteArray, pdu);
    QFETCH(int, tooLong);

    QCOMPARE(send(pdu, tooLong), QByteArray("+CMS ERROR: 304"));
    QCOMPARE(m_told, QStringList());
    QCOMPARE(ask("AT"), QByteArray("OK"));
}

void TestAtSession::readsAHeaderThatIsCutShort()
{
    QCOMPARE(send("004100048155150004050400050102"), QByteArray("+CMGS: 1|OK"));
    QCOMPARE(m_told, QStringList(u"to 5551: "_s));
}

void TestAtSession::takesAMessageBack()
{
    m_session->receive("AT+CMGS=12\r0011\x1b");
    QCOMPARE(said(), QByteArray("\r\n> \r\nOK\r\n"));
    QCOMPARE(ask("AT"), QByteArray("OK"));
    m_line->setCondition(PhoneLine::Condition::Refuse);
    QCOMPARE(send("001100048155150000A702C834"), QByteArray("+CMS ERROR: 38"));
    QCOMPARE(m_told, QStringList());
}

void TestAtSession::asksTheNetwork()
{
    QCOMPARE(ask("AT+CUSD=1,\"*100#\",15"), QByteArray("OK|+CUSD: 0,\"Your credit is 12.34.\",15"));
    QCOMPARE(ask("AT+CUSD=1,\"*101#\",15"), QByteArray("OK|+CUSD: 1,\"1 Credit\n2 Network\",15"));
    QCOMPARE(ask("AT+CUSD=1,\"2\",15"), QByteArray("OK|+CUSD: 0,\"Nimbo Mobile\",15"));
    QCOMPARE(ask("AT+CUSD=1,\"2\",15"), QByteArray("OK|+CUSD: 4"));
    ask("AT+CUSD=1,\"*101#\",15");
    QCOMPARE(ask("AT+CUSD=2"), QByteArray("OK"));
    QCOMPARE(ask("AT+CUSD=1,\"1\",15"), QByteArray("OK|+CUSD: 4"));
}

void TestAtSession::readsTheFilesOfTheSim_data()
{
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<QByteArray>("answer");

    const auto row = [](const char *name, const char *command, const char *answer) {
        QTest::newRow(name) << QByteArray(command) << QByteArray(answer);
    };
    row("card", "192,12258", "144,0,\"0000000A2FE2040000000005020000\"");
    row("its number", "176,12258,0,0,10", "144,0,\"980062021132547698F0\"");
    row("a part of it", "176,12258,0,8,2", "144,0,\"98F0\"");
    row("all of it", "176,12258,0,0,0", "144,0,\"980062021132547698F0\"");
    row("more than there is", "176,12258,0,9,2", "148,2");
    row("before it", "176,12258,-1,0,1", "148,2");
    row("own number", "192,28480", "144,0,\"0000000E6F4004000000000502010E\"");
    row("its record", "178,28480,1,4,14", "144,0,\"07915155547698F0FFFFFFFFFFFF\"");
    row("no record", "178,28480,2,4,14", "148,2");
    row("record of another file", "178,12258,1,4,10", "109,0");
    row("another command", "214,12258,0,0,1", "109,0");
    row("emergency numbers", "176,28599,0,0,6", "144,0,\"11F2FF19F1FF\"");
    row("name of the network", "176,28486,0,0,17", "144,0,\"004E696D626F204D6F62696C65FFFFFFFF\"");
    row("length of its code", "176,28589,0,0,4", "144,0,\"00000002\"");
    row("no such file", "192,1", "148,4");
}

void TestAtSession::readsTheFilesOfTheSim()
{
    QFETCH(QByteArray, command);
    QFETCH(QByteArray, answer);

    QCOMPARE(ask("AT+CRSM=" + command), "+CRSM: " + answer + "|OK");
}

void TestAtSession::needsThePin()
{
    m_line->setSim({});
    m_line->setSim({imsi, true});
    QCOMPARE(ask("AT+CPIN?"), QByteArray("+CPIN: SIM PIN|OK"));
    QCOMPARE(ask("AT+CIMI"), QByteArray("+CME ERROR: 11"));
    QCOMPARE(ask("AT+CREG?"), QByteArray("+CREG: 2,2|OK"));
    QCOMPARE(ask("AT+CPIN=\"0000\""), QByteArray("+CME ERROR: 16"));
    connect(m_session.get(), &AtSession::pinEntered, this, [this] {
        m_line->setSim({imsi, false});
    });
    QCOMPARE(ask("AT+CPIN=\"1234\""), QByteArray("+CREG: 1,\"0001\",\"00000001\"|OK"));
    QCOMPARE(ask("AT+CPIN?"), QByteArray("+CPIN: READY|OK"));
}

void TestAtSession::followsTheSim()
{
    m_line->setSim({});
    QCOMPARE(said(), QByteArray("\r\n+CREG: 2\r\n\r\n+USIMSTATE: 0\r\n"));
    QCOMPARE(ask("AT+SIMSTATE?"), QByteArray("+SIMSTATE: 0|OK"));
    for (const char *line : {"AT+CPIN?", "AT+CIMI", "AT+CPIN=1234", "AT+CRSM=192,12258"})
        QCOMPARE(ask(line), QByteArray("+CME ERROR: 10"));
    // Without a SIM, only emergency calls are possible.
    QCOMPARE(ask("ATD5551234;"), QByteArray("ERROR"));
    QCOMPARE(ask("ATD112;"), QByteArray("OK"));
    said();
    m_line->setSim({imsi, false});
    QCOMPARE(said(), QByteArray("\r\n+CREG: 1,\"0001\",\"00000001\"\r\n\r\n+USIMSTATE: 1\r\n"));
    QCOMPARE(ask("AT+SIMSTATE?"), QByteArray("+SIMSTATE: 1|OK"));
}

void TestAtSession::followsTheNetwork()
{
    ask("ATD5551234;");
    m_line->setCondition(PhoneLine::Condition::Lost);
    QCOMPARE(said(), QByteArray("\r\nNO CARRIER\r\n\r\n+CREG: 2\r\n"));
    QCOMPARE(ask("AT+CSQ;+COPS?"), QByteArray("+CSQ: 0,99|+COPS: 0|OK"));
    QCOMPARE(ask("ATD5551234;"), QByteArray("ERROR"));
    m_line->setCondition(PhoneLine::Condition::Back);
    QCOMPARE(said(), QByteArray("\r\n+CREG: 1,\"0001\",\"00000001\"\r\n"));
    QCOMPARE(ask("AT+CFUN=4"), QByteArray("+CREG: 2|OK"));
    QCOMPARE(ask("ATD112;"), QByteArray("ERROR"));
    QCOMPARE(ask("AT+CFUN=1"), QByteArray("+CREG: 1,\"0001\",\"00000001\"|OK"));
}

void TestAtSession::hangsAndGoesOn()
{
    m_line->setCondition(PhoneLine::Condition::Hang);
    QCOMPARE(ask("ATD5551234;"), QByteArray());
    m_session->receive("AT+CMGS=12\r001100048155150000A702C834\x1a");
    QCOMPARE(m_line->ring(u"5551234"_s), 0);
    QCOMPARE(said(), QByteArray());
    m_line->setCondition(PhoneLine::Condition::Back);
    QTRY_COMPARE(m_told, QStringList(u"dials 5551234"_s));
    QTRY_VERIFY(m_said.contains("> "));
}

void TestAtSession::forgetsWhatIsTooMuch()
{
    QCOMPARE(ask(QByteArray("AT") + QByteArray(100'000, 'x')), QByteArray("ERROR"));
    QCOMPARE(ask("AT+CGMI"), QByteArray("Parley|OK"));
    m_line->setCondition(PhoneLine::Condition::Hang);
    for (int i = 0; i < 10'000; ++i)
        m_session->receive("AT\r");
    m_line->setCondition(PhoneLine::Condition::Back);
    const auto isDone = [this] { return m_said.count("OK") == 1000; };
    QTRY_VERIFY(isDone());
    QCOMPARE(ask("AT"), QByteArray("OK"));
}

/// Random bytes, and commands with random arguments.
void TestAtSession::survivesAnything()
{
    QRandomGenerator random(20261122);
    const QByteArrayList commands{
        "ATD",      "ATA",      "ATH",      "AT+CLCC",  "AT+CHLD=", "AT+VTS=", "AT+CUSD=",
        "AT+CPIN=", "AT+CRSM=", "AT+COPS=", "AT+CMGS=", "AT+CFUN=", "AT",      "00"};
    for (int i = 0; i < 50'000; ++i) {
        QByteArray bytes =
            random.bounded(3) == 0 ? QByteArray() : commands.at(random.bounded(commands.size()));
        const int count = random.bounded(20);
        for (int k = 0; k < count; ++k)
            bytes += static_cast<char>(random.bounded(2) == 0 ? random.bounded('0', '9' + 1)
                                                              : random.bounded(256));
        m_session->receive(bytes + (random.bounded(10) == 0 ? '\x1a' : '\r'));
        if (random.bounded(10) == 0)
            m_line->ring(u"5551234"_s);
    }
    // A message may still be expected.
    m_session->receive("\x1b\r");
    QCOMPARE(ask("AT+CGMI"), QByteArray("Parley|OK"));
    QVERIFY(m_line->calls().all().size() <= std::size_t(NetworkCalls::MostCalls));
}

QTEST_GUILESS_MAIN(TestAtSession)

#include "tst_atsession.moc"
