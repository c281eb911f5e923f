// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "answers.h"
#include "literals.h"
#include "messagelog.h"
#include "privatebus.h"
#include "rawconnection.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QTemporaryDir>
#include <QTest>

#include <functional>
#include <memory>
#include <optional>

namespace {

const QString serviceName = u"com.example.Service"_s;

} // namespace

/// The answers of a service that the test plays message by message, and of a stranger.
class TestAnswers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void areHandedOver_data();
    void areHandedOver();
    void areErrorsWithoutABus();
    void areErrorsWithoutAService();
    void areDroppedOnceTheContextHasGone();
    void leaveNothingBehind();
    void areTheOwnersAlone_data();
    void areTheOwnersAlone();
    void areNotThoseOfAnOwnerThatHasGone();

private:
    void ask(bool ofOwner);
    void whenAsked(const std::function<void(DBusMessage *call)> &deed);
    void pump();
    RawMessage replyTo(DBusMessage *call, quint32 value);

    QTemporaryDir m_folder;
    PrivateBus m_bus;
    std::unique_ptr<MessageLog> m_log;
    std::unique_ptr<RawConnection> m_service;
    std::unique_ptr<RawConnection> m_stranger;
    std::unique_ptr<QObject> m_context;
    std::optional<QDBusMessage> m_answer;
};

void TestAnswers::initTestCase()
{
    QVERIFY(m_bus.start(m_folder.path(), u"bus"_s));
    qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus.address().toUtf8());
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere");
    QVERIFY(QDBusConnection::sessionBus().isConnected());
}

void TestAnswers::init()
{
    m_log.reset();
    m_log = std::make_unique<MessageLog>();
    m_service = std::make_unique<RawConnection>(m_bus.address());
    QVERIFY(m_service->own("com.example.Service"));
    m_stranger = std::make_unique<RawConnection>(m_bus.address());
    m_context = std::make_unique<QObject>();
    m_answer.reset();
}

void TestAnswers::cleanup()
{
    m_service.reset();
    m_stranger.reset();
    QCOMPARE(m_log->take().join(u'\n'), QString());
}

void TestAnswers::ask(bool ofOwner)
{
    const QDBusConnection bus = QDBusConnection::sessionBus();
    const QDBusPendingCall call =
        bus.asyncCall(QDBusMessage::createMethodCall(serviceName, u"/"_s, serviceName, u"Ask"_s));
    const auto take = [this](const QDBusMessage &answer) { m_answer = answer; };
    if (ofOwner)
        whenOwnerAnswered(bus, serviceName, call, m_context.get(), take);
    else
        whenAnswered(call, m_context.get(), take);
}

/// What the service does with each call.
void TestAnswers::whenAsked(const std::function<void(DBusMessage *call)> &deed)
{
    m_service->setHandler([deed](DBusMessage *message) {
        if (dbus_message_get_type(message) == DBUS_MESSAGE_TYPE_METHOD_CALL)
            deed(message);
    });
}

void TestAnswers::pump()
{
    m_service->pump();
    m_stranger->pump();
}

RawMessage TestAnswers::replyTo(DBusMessage *call, quint32 value)
{
    RawMessage reply =
        RawConnection::makeReply(dbus_message_get_sender(call), dbus_message_get_serial(call));
    dbus_message_append_args(reply.get(), DBUS_TYPE_UINT32, &value, DBUS_TYPE_INVALID);
    return reply;
}

void TestAnswers::areHandedOver_data()
{
    QTest::addColumn<bool>("ofOwner");
    QTest::newRow("whoever answers") << false;
    QTest::newRow("the owner") << true;
}

void TestAnswers::areHandedOver()
{
    QFETCH(bool, ofOwner);

    whenAsked([this](DBusMessage *call) { m_service->send(replyTo(call, 7).get()); });
    ask(ofOwner);
    QVERIFY(!m_answer); // The handler runs only from the event loop.
    QTRY_VERIFY((pump(), m_answer));
    QCOMPARE(m_answer->arguments(), QVariantList{7U});
}

void TestAnswers::areErrorsWithoutABus()
{
    whenAnswered(QDBusConnection::systemBus().asyncCall(
                     QDBusMessage::createMethodCall(serviceName, u"/"_s, serviceName, u"Ask"_s)),
                 m_context.get(), [this](const QDBusMessage &answer) { m_answer = answer; });
    QVERIFY(!m_answer);
    QTRY_VERIFY(m_answer);
    QCOMPARE(m_answer->type(), QDBusMessage::ErrorMessage);
    QCOMPARE(m_answer->errorName(), u"org.freedesktop.DBus.Error.Disconnected"_s);
}

/// The bus daemon itself answers.
void TestAnswers::areErrorsWithoutAService()
{
    QVERIFY(m_service->release("com.example.Service"));
    ask(true);
    QTRY_VERIFY(m_answer);
    QCOMPARE(m_answer->errorName(), u"org.freedesktop.DBus.Error.ServiceUnknown"_s);
}

void TestAnswers::areDroppedOnceTheContextHasGone()
{
    int calls = 0;
    whenAsked([&](DBusMessage *call) {
        m_service->send(replyTo(call, 7).get());
        ++calls;
    });
    ask(false);
    ask(true);
    m_context.reset();
    QTRY_COMPARE((pump(), calls), 2);
    m_context = std::make_unique<QObject>();
    ask(false);
    QTRY_VERIFY((pump(), m_answer)); // Only the call that came last has an answer.
    QCOMPARE(calls, 3);
}

void TestAnswers::leaveNothingBehind()
{
    whenAsked([this](DBusMessage *call) { m_service->send(replyTo(call, 7).get()); });
    for (const bool ofOwner : {false, true}) {
        m_answer.reset();
        ask(ofOwner);
        QTRY_VERIFY((pump(), m_answer));
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(m_context->children().size(), 0);
}

void TestAnswers::areTheOwnersAlone_data()
{
    QTest::addColumn<bool>("isError");
    QTest::newRow("a reply") << false;
    QTest::newRow("an error") << true;
}

/// If a stranger answers first, the handler gets an error, and not the owner's answer.
void TestAnswers::areTheOwnersAlone()
{
    QFETCH(bool, isError);

    whenAsked([&](DBusMessage *call) {
        const RawMessage forged = isError
            ? RawConnection::makeError(dbus_message_get_sender(call), dbus_message_get_serial(call),
                                       "com.example.Error")
            : replyTo(call, 8);
        m_stranger->send(forged.get());
        m_stranger->pump();
        m_service->send(replyTo(call, 7).get());
    });
    ask(true);
    QTRY_VERIFY((pump(), m_answer));
    QCOMPARE(m_answer->type(), QDBusMessage::ErrorMessage);
    QCOMPARE(m_answer->errorName(), u"org.freedesktop.DBus.Error.AccessDenied"_s);
    QCOMPARE(m_answer->errorMessage(),
             u"%1 has answered in the place of com.example.Service"_s.arg(
                 QString::fromUtf8(m_stranger->uniqueName())));
}

void TestAnswers::areNotThoseOfAnOwnerThatHasGone()
{
    bool answered = false;
    whenAsked([&](DBusMessage *call) {
        m_service->send(replyTo(call, 7).get());
        answered = true;
    });
    ask(true);
    // The event loop does not run meanwhile, so the answer is read when the name has no owner any
    // more.
    while (!answered)
        m_service->pump();
    QVERIFY(m_service->release("com.example.Service"));
    QTRY_VERIFY(m_answer);
    QCOMPARE(m_answer->errorName(), u"org.freedesktop.DBus.Error.AccessDenied"_s);
}

QTEST_GUILESS_MAIN(TestAnswers)

#include "tst_answers.moc"
