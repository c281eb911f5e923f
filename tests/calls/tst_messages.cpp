// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "callstest.h"
#include "fakeofono.h"
#include "literals.h"
#include "messages.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>

namespace {

const QString modem = u"/ril_0"_s;
const QString messageInterface = u"org.ofono.Message"_s;
const QString path = u"/ril_0/message_1"_s;

} // namespace

/// Text messages, with an oFono that is scripted message by message.
class TestMessages : public CallsTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void cleanup() override;

    void areSent();
    void areSentBeforeTheAnswer();
    void fail();
    void failAtOnce_data();
    void failAtOnce();
    void waitForTheStack();
    void areSentOneAfterTheOther();
    void failWhenTheStackRefuses();
    void failWhenTheyAreRemoved();
    void failWithTheirModem();
    void failWithTheStack();
    void areOnlyThoseOfThisObject();
    void survivesItsEndInAHandler();

private:
    void start();
    void take(const QDBusMessage &call, const QString &messagePath = path);
    QVariant role(int row, const QByteArray &name) const;
    QString failure();

    std::unique_ptr<FakeOfono> m_ofono;
    std::unique_ptr<Messages> m_messages;
    std::unique_ptr<QSignalSpy> m_sent;
    std::unique_ptr<QSignalSpy> m_failures;
};

void TestMessages::init()
{
    CallsTest::init();
    m_ofono = std::make_unique<FakeOfono>(m_bus.address(), QStringList(modem));
    m_messages = std::make_unique<Messages>();
    m_sent = std::make_unique<QSignalSpy>(m_messages.get(), &Messages::sent);
    m_failures = std::make_unique<QSignalSpy>(m_messages.get(), &Messages::failed);
}

void TestMessages::cleanup()
{
    QCOMPARE(m_failures->count(), 0);
    m_messages.reset();
    if (m_ofono)
        QCOMPARE(m_ofono->waiting(), 0);
    m_ofono.reset();
    CallsTest::cleanup();
}

void TestMessages::start()
{
    m_messages->componentComplete();
    QTRY_COMPARE(m_messages->status(), Telephony::Ready);
}

void TestMessages::take(const QDBusMessage &call, const QString &messagePath)
{
    m_ofono->reply(call, {QVariant::fromValue(QDBusObjectPath(messagePath))});
}

QVariant TestMessages::role(int row, const QByteArray &name) const
{
    return CallsTest::role(*m_messages, row, name);
}

/// Waits for a failure, and returns it as "id number error".
QString TestMessages::failure()
{
    return takeFailure(*m_failures, [](const QVariantList &values) {
        const QVariantMap message = values.at(0).toMap();
        return u"%1 %2"_s.arg(message.value(u"messageId"_s).toString(),
                              message.value(u"number"_s).toString());
    });
}

void TestMessages::areSent()
{
    start();
    const int id = m_messages->send(u"+49 151-1"_s, u"I will call back."_s);
    QCOMPARE(m_messages->count(), 0); // Rows come later.
    const QDBusMessage call = m_ofono->next(u"SendMessage"_s);
    QCOMPARE(call.path(), modem);
    QCOMPARE(call.interface(), u"org.ofono.MessageManager"_s);
    QCOMPARE(call.arguments(), QVariantList({u"+491511"_s, u"I will call back."_s}));
    QCOMPARE(m_messages->count(), 1);
    QCOMPARE(role(0, "messageId").toInt(), id);
    QCOMPARE(role(0, "messageState").toString(), u"sending"_s);
    QCOMPARE(role(0, "text").toString(), u"I will call back."_s);
    QCOMPARE(role(0, "modem").toString(), modem);
    take(call);
    QTRY_COMPARE(role(0, "messageState").toString(), u"pending"_s);
    m_ofono->change(path, messageInterface, u"State"_s, u"sent"_s);
    QTRY_COMPARE(m_sent->count(), 1);
    QCOMPARE(m_messages->count(), 0);
    QCOMPARE(m_sent->at(0).at(0).toMap().value(u"messageId"_s).toInt(), id);
}

/// The answer may be delivered after the signals that follow it.
void TestMessages::areSentBeforeTheAnswer()
{
    start();
    m_messages->send(u"111"_s, u"text"_s);
    const QDBusMessage call = m_ofono->next(u"SendMessage"_s);
    m_ofono->change(u"/ril_0/message_2"_s, messageInterface, u"State"_s, u"failed"_s);
    m_ofono->change(path, messageInterface, u"State"_s, u"sent"_s);
    m_ofono->emitSignal(u"org.ofono.MessageManager"_s, u"MessageRemoved"_s,
                        {QVariant::fromValue(QDBusObjectPath(path))}, modem);
    m_ofono->settle();
    QCOMPARE(m_sent->count(), 0);
    take(call);
    QTRY_COMPARE(m_sent->count(), 1);
    QCOMPARE(m_messages->count(), 0);
}

void TestMessages::fail()
{
    start();
    const int id = m_messages->send(u"111"_s, u"text"_s);
    take(m_ofono->next(u"SendMessage"_s));
    m_ofono->change(path, messageInterface, u"State"_s, 7);
    m_ofono->change(path, messageInterface, u"Other"_s, u"sent"_s);
    m_ofono->change(path, messageInterface, u"State"_s, u"pending"_s);
    m_ofono->change(path, messageInterface, u"State"_s, u"failed"_s);
    QCOMPARE(failure(), u"%1 111 Failed"_s.arg(id));
    QCOMPARE(m_sent->count(), 0);
    QCOMPARE(m_messages->count(), 0);
}

void TestMessages::failAtOnce_data()
{
    QTest::addColumn<QString>("number");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("modem");
    QTest::addColumn<QString>("error");

    QTest::newRow("no number") << QString() << u"text"_s << QString() << u"InvalidFormat"_s;
    QTest::newRow("a long number")
        << QString(21, u'1') << u"text"_s << QString() << u"InvalidFormat"_s;
    QTest::newRow("a long text") << u"111"_s << QString(255 * 153 + 1, u'A') << QString()
                                 << u"InvalidFormat"_s;
    QTest::newRow("no modem") << u"111"_s << u"text"_s << u"/none"_s << u"NoModem"_s;
}

void TestMessages::failAtOnce()
{
    QFETCH(QString, number);
    QFETCH(QString, text);
    QFETCH(QString, modem);
    QFETCH(QString, error);

    start();
    const int id = m_messages->send(number, text, modem);
    QCOMPARE(m_failures->count(), 0);
    QCOMPARE(failure(), u"%1 %2 %3"_s.arg(QString::number(id), number, error));
}

void TestMessages::waitForTheStack()
{
    m_messages->componentComplete();
    m_messages->send(u"111"_s, u"text"_s);
    QCOMPARE(m_messages->status(), Telephony::Starting);
    QCOMPARE(m_ofono->next(u"SendMessage"_s).arguments().at(0).toString(), u"111"_s);
}

void TestMessages::areSentOneAfterTheOther()
{
    start();
    for (int i = 0; i < 200; ++i)
        m_messages->send(u"111"_s, QString::number(i));
    for (int i = 0; i < 200; ++i) {
        const QDBusMessage call = m_ofono->next(u"SendMessage"_s);
        QCOMPARE(call.arguments().at(1).toString(), QString::number(i));
        QCOMPARE(m_ofono->waiting(), 0);
        take(call, path + QString::number(i));
    }
    for (int i = 0; i < 200; ++i)
        m_ofono->change(path + QString::number(i), messageInterface, u"State"_s, u"sent"_s);
    QTRY_COMPARE(m_sent->count(), 200);
}

void TestMessages::failWhenTheStackRefuses()
{
    start();
    const int id = m_messages->send(u"111"_s, u"text"_s);
    const int next = m_messages->send(u"222"_s, u"text"_s);
    m_ofono->fail(m_ofono->next(u"SendMessage"_s), u"org.ofono.Error.InvalidFormat"_s, {});
    QCOMPARE(failure(), u"%1 111 InvalidFormat"_s.arg(id));
    m_ofono->reply(m_ofono->next(u"SendMessage"_s), {u"no path"_s});
    QCOMPARE(failure(), u"%1 222 Failed"_s.arg(next));
}

void TestMessages::failWhenTheyAreRemoved()
{
    start();
    const int id = m_messages->send(u"111"_s, u"text"_s);
    take(m_ofono->next(u"SendMessage"_s));
    m_ofono->emitSignal(u"org.ofono.MessageManager"_s, u"MessageRemoved"_s,
                        {QVariant::fromValue(QDBusObjectPath(path))}, modem);
    QCOMPARE(failure(), u"%1 111 Canceled"_s.arg(id));
}

void TestMessages::failWithTheirModem()
{
    start();
    const int id = m_messages->send(u"111"_s, u"text"_s);
    take(m_ofono->next(u"SendMessage"_s));
    const int next = m_messages->send(u"222"_s, u"text"_s);
    QCOMPARE(m_ofono->next().member(), u"SendMessage"_s);
    m_ofono->removeModem(modem);
    QCOMPARE(failure(), u"%1 111 NotAvailable"_s.arg(id));
    QCOMPARE(failure(), u"%1 222 NotAvailable"_s.arg(next));
    QCOMPARE(m_messages->count(), 0);
}

void TestMessages::failWithTheStack()
{
    start();
    const int id = m_messages->send(u"111"_s, u"text"_s);
    take(m_ofono->next(u"SendMessage"_s));
    m_ofono.reset();
    QCOMPARE(failure(), u"%1 111 NotAvailable"_s.arg(id));
    QTRY_COMPARE(m_messages->status(), Telephony::NoService);
    const int later = m_messages->send(u"111"_s, u"text"_s);
    QCOMPARE(failure(), u"%1 111 NoStack"_s.arg(later));
}

void TestMessages::areOnlyThoseOfThisObject()
{
    start();
    m_ofono->change(u"/ril_0/message_9"_s, messageInterface, u"State"_s, u"sent"_s);
    m_messages->send(u"111"_s, u"text"_s);
    QCOMPARE(m_ofono->next().member(), u"SendMessage"_s);
    // A message that has no path yet is none of those that oFono names.
    m_ofono->change(u"/"_s, messageInterface, u"State"_s, u"sent"_s);
    m_ofono->settle();
    QCOMPARE(m_messages->count(), 1);
    QCOMPARE(m_sent->count(), 0);
}

void TestMessages::survivesItsEndInAHandler()
{
    start();
    connect(m_messages.get(), &Messages::countChanged, this, [this] { m_messages.reset(); });
    m_messages->send(u"111"_s, u"text"_s);
    QTRY_VERIFY(!m_messages);
    QCOMPARE(m_ofono->next().member(), u"SendMessage"_s);
}

QTEST_GUILESS_MAIN(TestMessages)

#include "tst_messages.moc"
