// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "callqueue.h"
#include "literals.h"
#include "messagelog.h"
#include "privatebus.h"
#include "scriptedservice.h"
#include "watchercount.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <utility>

namespace {

const QString serviceName = u"com.example.Service"_s;
constexpr int atATime = 32;

} // namespace

class TestCallQueue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void makesSomeAtATime();
    void goesOnWithWhatNobodyWants();
    void passesOverWhatIsNotMade();
    void goesOnAfterErrors();
    void mayEndInAHandler();

private:
    void add(int number, QObject *context = nullptr);
    QDBusMessage next(int number);

    QTemporaryDir m_folder;
    PrivateBus m_bus;
    std::unique_ptr<MessageLog> m_log;
    std::unique_ptr<ScriptedService> m_service;
    std::unique_ptr<CallQueue> m_queue;
    QStringList m_answers;
};

void TestCallQueue::initTestCase()
{
    QVERIFY(m_bus.start(m_folder.path(), u"bus"_s));
    qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus.address().toUtf8());
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_bus.address().toUtf8());
    QVERIFY(QDBusConnection::sessionBus().isConnected());
}

void TestCallQueue::init()
{
    m_log.reset();
    m_log = std::make_unique<MessageLog>();
    m_service = std::make_unique<ScriptedService>(m_bus.address(), serviceName, u"/"_s);
    m_queue = std::make_unique<CallQueue>();
    m_answers.clear();
}

void TestCallQueue::cleanup()
{
    m_service->settle();
    QCOMPARE(m_service->waiting(), 0);
    m_queue.reset();
    m_service.reset();
    QCOMPARE(m_log->take().join(u'\n'), QString());
}

void TestCallQueue::add(int number, QObject *context)
{
    const auto call = [number] {
        QDBusMessage message =
            QDBusMessage::createMethodCall(serviceName, u"/"_s, serviceName, u"Ask"_s);
        message.setArguments({number});
        return QDBusConnection::sessionBus().asyncCall(message);
    };
    m_queue->add(context ? context : this, call, [this, number](const QDBusMessage &answer) {
        m_answers.append(u"%1: %2"_s.arg(QString::number(number),
                                         answer.type() == QDBusMessage::ErrorMessage
                                             ? answer.errorName()
                                             : answer.arguments().value(0).toString()));
    });
}

QDBusMessage TestCallQueue::next(int number)
{
    const QDBusMessage call = m_service->next(u"Ask"_s);
    if (call.arguments() != QVariantList{number})
        qWarning() << call << "instead of" << number;
    return call;
}

void TestCallQueue::makesSomeAtATime()
{
    for (int i = 0; i < 100; ++i)
        add(i);
    m_service->settle();
    QCOMPARE(m_service->waiting(), atATime);
    // The order of the answers does not matter.
    const QDBusMessage first = next(0);
    m_service->reply(next(1), {u"one"_s});
    m_service->settle();
    QCOMPARE(std::exchange(m_answers, {}), QStringList(u"1: one"_s));
    QCOMPARE(m_service->waiting(), atATime - 1);
    m_service->reply(first, {u"zero"_s});
    QStringList expected{u"0: zero"_s};
    for (int i = 2; i < 100; ++i) {
        m_service->reply(next(i), {u"text"_s});
        expected << u"%1: text"_s.arg(i);
    }
    m_service->settle();
    QCOMPARE(m_answers, expected);
}

/// The bus counts a call until it is answered. A call that still waits is not made any more.
void TestCallQueue::goesOnWithWhatNobodyWants()
{
    auto context = std::make_unique<QObject>();
    for (int i = 0; i < atATime + 2; ++i)
        add(i, context.get());
    add(99);
    context.reset();
    m_service->settle();
    QCOMPARE(m_service->waiting(), atATime);
    m_service->reply(next(0), {u"zero"_s});
    for (int i = 1; i < atATime; ++i)
        m_service->reply(next(i), {});
    m_service->reply(next(99), {u"last"_s});
    m_service->settle();
    QCOMPARE(m_answers, QStringList(u"99: last"_s));
}

void TestCallQueue::passesOverWhatIsNotMade()
{
    m_queue->add(
        this, [] { return std::nullopt; },
        [this](const QDBusMessage &) { m_answers << u"answered"_s; });
    add(1);
    m_service->reply(next(1), {u"one"_s});
    m_service->settle();
    QCOMPARE(m_answers, QStringList(u"1: one"_s));
}

void TestCallQueue::goesOnAfterErrors()
{
    const WatcherCount watchers;
    for (int i = 0; i < 100; ++i)
        add(i);
    for (int i = 0; i < 100; ++i)
        m_service->fail(next(i), u"com.example.Error"_s, u"no"_s);
    m_service->settle();
    QCOMPARE(m_answers.size(), 100);
    QCOMPARE(m_answers.last(), u"99: com.example.Error"_s);
    QTRY_COMPARE(watchers.value(), 0);
}

void TestCallQueue::mayEndInAHandler()
{
    m_queue->add(
        this,
        [] {
            return QDBusConnection::sessionBus().asyncCall(
                QDBusMessage::createMethodCall(serviceName, u"/"_s, serviceName, u"Ask"_s));
        },
        [this](const QDBusMessage &) {
            m_queue.reset();
            m_answers << u"ended"_s;
        });
    add(1);
    m_service->reply(m_service->next(), {});
    QTRY_COMPARE(m_answers, QStringList(u"ended"_s));
    m_service->reply(next(1), {u"one"_s});
    m_service->settle();
    QCOMPARE(m_answers, QStringList(u"ended"_s));
}

QTEST_GUILESS_MAIN(TestCallQueue)

#include "tst_callqueue.moc"
