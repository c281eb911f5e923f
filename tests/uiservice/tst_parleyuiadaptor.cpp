// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "literals.h"
#include "messagelog.h"
#include "parleyuiadaptor.h"
#include "privatebus.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QMetaMethod>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace {

const QString service = u"com.nimbo.parley.ui"_s;
const QString pathTaken =
    u"warning: Failed to register the voice call service object on the path '/'"_s;
const QString nameTaken =
    u"warning: Failed to register the voice call service name 'com.nimbo.parley.ui'"_s;

QDBusMessage request(const QString &method, const QVariantList &arguments = {})
{
    QDBusMessage message = QDBusMessage::createMethodCall(service, u"/"_s, service, method);
    message.setArguments(arguments);
    return message;
}

} // namespace

class TestParleyUiAdaptor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void declaresItsSignalsInOrder();
    void passesEveryCallOn_data();
    void passesEveryCallOn();
    void answersAfterTheHandler();
    void mayBeDestroyedByItsHandler_data();
    void mayBeDestroyedByItsHandler();
    void servesAgainAfterItWasDestroyed();
    void toleratesASecondObject();
    void toleratesATakenName();
    void admitsItsOwnProcess_data();
    void admitsItsOwnProcess();

private:
    QDBusMessage call(const QDBusConnection &from, const QDBusMessage &message);

    QTemporaryDir m_folder;
    PrivateBus m_bus;
    std::unique_ptr<MessageLog> m_log;
};

void TestParleyUiAdaptor::initTestCase()
{
    QVERIFY(m_bus.start(m_folder.path(), u"session"_s));
    qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus.address().toUtf8());
    QVERIFY(QDBusConnection::sessionBus().isConnected());
    QVERIFY(QDBusConnection::connectToBus(m_bus.address(), u"caller"_s).isConnected());
}

void TestParleyUiAdaptor::init()
{
    m_log.reset();
    m_log = std::make_unique<MessageLog>();
}

void TestParleyUiAdaptor::cleanup()
{
    QDBusConnection::sessionBus().unregisterService(service);
    QCOMPARE(m_log->take(), QStringList());
}

/// This is not a blocking call, because the callee lives in this thread.
QDBusMessage TestParleyUiAdaptor::call(const QDBusConnection &from, const QDBusMessage &message)
{
    const QDBusPendingCall pending = from.asyncCall(message);
    return QTest::qWaitFor([&pending] { return pending.isFinished(); }) ? pending.reply()
                                                                        : QDBusMessage();
}

void TestParleyUiAdaptor::declaresItsSignalsInOrder()
{
    const QMetaObject &meta = ParleyUiAdaptor::staticMetaObject;
    QStringList declared;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        QCOMPARE(method.methodType(), QMetaMethod::Signal);
        QCOMPARE(method.typeName(), "void");
        declared << QString::fromLatin1(method.methodSignature()) + u' '
                + QString::fromLatin1(method.parameterNames().join(','));
    }
    QCOMPARE(declared,
             QStringList({u"show(QStringList) args"_s, u"showOngoing() "_s,
                          u"openUrl(QStringList) arg"_s, u"dial(QString) number"_s,
                          u"dialViaModem(QString,QString) modemPath,number"_s,
                          u"showCellularErrorDialog() "_s, u"openContactCard(QString) number"_s,
                          u"toggleCall() "_s}));
    QCOMPARE(meta.propertyCount(), QObject::staticMetaObject.propertyCount());
    QCOMPARE(meta.enumeratorCount(), 0);
    QCOMPARE(meta.classInfoCount(), 0);
    QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
}

void TestParleyUiAdaptor::passesEveryCallOn_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<QByteArray>("signal");
    QTest::addColumn<QVariantList>("emitted");
    QTest::addColumn<QVariantList>("reply");

    const QVariantList nothing;
    const QVariantList yes{true};
    const QStringList some{u"a"_s, QString(), u"\u4e2d"_s};
    QTest::newRow("show") << u"show"_s << QVariantList{some}
                          << QByteArray(SIGNAL(show(QStringList))) << QVariantList{some} << nothing;
    QTest::newRow("show nothing") << u"show"_s << QVariantList{QStringList()}
                                  << QByteArray(SIGNAL(show(QStringList)))
                                  << QVariantList{QStringList()} << nothing;
    QTest::newRow("showOngoing") << u"showOngoing"_s << nothing << QByteArray(SIGNAL(showOngoing()))
                                 << nothing << nothing;
    QTest::newRow("openUrl") << u"openUrl"_s << QVariantList{some}
                             << QByteArray(SIGNAL(openUrl(QStringList))) << QVariantList{some}
                             << nothing;
    QTest::newRow("openUrl of an empty text")
        << u"openUrl"_s << QVariantList{QStringList(QString())}
        << QByteArray(SIGNAL(openUrl(QStringList))) << QVariantList{QStringList(QString())}
        << nothing;
    QTest::newRow("openUrl of nothing shows")
        << u"openUrl"_s << QVariantList{QStringList()} << QByteArray(SIGNAL(show(QStringList)))
        << QVariantList{QStringList()} << nothing;
    QTest::newRow("dial") << u"dial"_s << QVariantList{u"+1"_s} << QByteArray(SIGNAL(dial(QString)))
                          << QVariantList{u"+1"_s} << yes;
    QTest::newRow("dial nothing") << u"dial"_s << QVariantList{QString()}
                                  << QByteArray(SIGNAL(dial(QString))) << QVariantList{QString()}
                                  << yes;
    QTest::newRow("dialViaModem") << u"dialViaModem"_s << QVariantList{u"/m"_s, u"+1"_s}
                                  << QByteArray(SIGNAL(dialViaModem(QString, QString)))
                                  << QVariantList{u"/m"_s, u"+1"_s} << yes;
    QTest::newRow("showCellularErrorDialog")
        << u"showCellularErrorDialog"_s << nothing << QByteArray(SIGNAL(showCellularErrorDialog()))
        << nothing << nothing;
    QTest::newRow("openContactCard")
        << u"openContactCard"_s << QVariantList{u"+1"_s}
        << QByteArray(SIGNAL(openContactCard(QString))) << QVariantList{u"+1"_s} << nothing;
    QTest::newRow("toggleCall") << u"toggleCall"_s << nothing << QByteArray(SIGNAL(toggleCall()))
                                << nothing << nothing;
}

void TestParleyUiAdaptor::passesEveryCallOn()
{
    QFETCH(QString, method);
    QFETCH(QVariantList, arguments);
    QFETCH(QByteArray, signal);
    QFETCH(QVariantList, emitted);
    QFETCH(QVariantList, reply);

    ParleyUiAdaptor ui;
    std::vector<std::unique_ptr<QSignalSpy>> others;
    QSignalSpy spy(&ui, signal.constData());
    const QMetaObject &meta = ParleyUiAdaptor::staticMetaObject;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        if (meta.method(i).methodSignature() != spy.signal())
            others.push_back(std::make_unique<QSignalSpy>(
                &ui, QByteArray("2" + meta.method(i).methodSignature()).constData()));
    }

    const QDBusMessage answer = call(QDBusConnection(u"caller"_s), request(method, arguments));
    QCOMPARE(answer.type(), QDBusMessage::ReplyMessage);
    QCOMPARE(answer.arguments(), reply);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.constFirst(), emitted);
    QCOMPARE(others.size(), std::size_t{7});
    for (const auto &other : others)
        QVERIFY2(other->isEmpty(), other->signal().constData());
}

void TestParleyUiAdaptor::answersAfterTheHandler()
{
    ParleyUiAdaptor ui;
    const QDBusPendingCall pending =
        QDBusConnection(u"caller"_s).asyncCall(request(u"dial"_s, {u"1"_s}));
    bool answered = false;
    const QDBusPendingCallWatcher watcher(pending);
    connect(&watcher, &QDBusPendingCallWatcher::finished, this, [&] { answered = true; });
    bool handled = false;
    connect(&ui, &ParleyUiAdaptor::dial, this, [&] {
        // After a whole round trip to the bus and its events, an answer would have arrived.
        call(QDBusConnection(u"caller"_s),
             QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                            u"org.freedesktop.DBus"_s, u"GetId"_s));
        handled = true;
        QVERIFY(!answered);
    });
    QTRY_VERIFY(answered);
    QVERIFY(handled);
}

void TestParleyUiAdaptor::mayBeDestroyedByItsHandler_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QVariantList>("arguments");

    const QVariantList nothing;
    QTest::newRow("show") << u"show"_s << QVariantList{QStringList()};
    QTest::newRow("showOngoing") << u"showOngoing"_s << nothing;
    QTest::newRow("openUrl") << u"openUrl"_s << QVariantList{QStringList(u"a"_s)};
    QTest::newRow("openUrl of nothing") << u"openUrl"_s << QVariantList{QStringList()};
    QTest::newRow("dial") << u"dial"_s << QVariantList{u"1"_s};
    QTest::newRow("dialViaModem") << u"dialViaModem"_s << QVariantList{u"/m"_s, u"1"_s};
    QTest::newRow("showCellularErrorDialog") << u"showCellularErrorDialog"_s << nothing;
    QTest::newRow("openContactCard") << u"openContactCard"_s << QVariantList{u"1"_s};
    QTest::newRow("toggleCall") << u"toggleCall"_s << nothing;
}

void TestParleyUiAdaptor::mayBeDestroyedByItsHandler()
{
    QFETCH(QString, method);
    QFETCH(QVariantList, arguments);

    auto *ui = new ParleyUiAdaptor;
    int destroyed = 0;
    const auto destroy = [&] {
        ++destroyed;
        delete ui;
    };
    connect(ui, &ParleyUiAdaptor::show, this, destroy);
    connect(ui, &ParleyUiAdaptor::showOngoing, this, destroy);
    connect(ui, &ParleyUiAdaptor::openUrl, this, destroy);
    connect(ui, &ParleyUiAdaptor::dial, this, destroy);
    connect(ui, &ParleyUiAdaptor::dialViaModem, this, destroy);
    connect(ui, &ParleyUiAdaptor::showCellularErrorDialog, this, destroy);
    connect(ui, &ParleyUiAdaptor::openContactCard, this, destroy);
    connect(ui, &ParleyUiAdaptor::toggleCall, this, destroy);
    QCOMPARE(call(QDBusConnection(u"caller"_s), request(method, arguments)).type(),
             QDBusMessage::ReplyMessage);
    QCOMPARE(destroyed, 1);
    QCOMPARE(call(QDBusConnection(u"caller"_s), request(method, arguments)).type(),
             QDBusMessage::ErrorMessage);
}

void TestParleyUiAdaptor::servesAgainAfterItWasDestroyed()
{
    auto first = std::make_unique<ParleyUiAdaptor>();
    first.reset();
    QVERIFY(QDBusConnection::sessionBus().interface()->isServiceRegistered(
        service)); // The name is kept.

    ParleyUiAdaptor second;
    QSignalSpy dialled(&second, &ParleyUiAdaptor::dial);
    QCOMPARE(call(QDBusConnection(u"caller"_s), request(u"dial"_s, {u"1"_s})).type(),
             QDBusMessage::ReplyMessage);
    QCOMPARE(dialled.count(), 1);
}

void TestParleyUiAdaptor::toleratesASecondObject()
{
    ParleyUiAdaptor first;
    ParleyUiAdaptor second;
    QCOMPARE(m_log->take(), QStringList(pathTaken));
    QSignalSpy firstDialled(&first, &ParleyUiAdaptor::dial);
    QSignalSpy secondDialled(&second, &ParleyUiAdaptor::dial);
    QCOMPARE(call(QDBusConnection(u"caller"_s), request(u"dial"_s, {u"1"_s})).arguments(),
             QVariantList{true});
    QCOMPARE(firstDialled.count(), 1);
    QCOMPARE(secondDialled.count(), 0);
}

void TestParleyUiAdaptor::toleratesATakenName()
{
    QDBusConnection other(u"caller"_s);
    QVERIFY(other.registerService(service));
    ParleyUiAdaptor ui;
    QCOMPARE(m_log->take(), QStringList(nameTaken));

    // The object is still there, under the unique name of the connection.
    QSignalSpy dialled(&ui, &ParleyUiAdaptor::dial);
    QDBusMessage message = QDBusMessage::createMethodCall(
        QDBusConnection::sessionBus().baseService(), u"/"_s, service, u"dial"_s);
    message.setArguments({u"1"_s});
    QCOMPARE(call(other, message).arguments(), QVariantList{true});
    QCOMPARE(dialled.count(), 1);
    QVERIFY(other.unregisterService(service));

    // It does not try again when the name becomes free.
    QVERIFY(!QDBusConnection::sessionBus().interface()->isServiceRegistered(service));
}

void TestParleyUiAdaptor::admitsItsOwnProcess_data()
{
    QTest::addColumn<QString>("connection");

    QTest::newRow("the service's own connection") << QDBusConnection::sessionBus().name();
    QTest::newRow("another connection") << u"caller"_s;
}

void TestParleyUiAdaptor::admitsItsOwnProcess()
{
    QFETCH(QString, connection);

    ParleyUiAdaptor ui;
    QSignalSpy toggled(&ui, &ParleyUiAdaptor::toggleCall);
    QCOMPARE(call(QDBusConnection(connection), request(u"toggleCall"_s)).type(),
             QDBusMessage::ReplyMessage);
    QCOMPARE(toggled.count(), 1);
}

QTEST_GUILESS_MAIN(TestParleyUiAdaptor)

#include "tst_parleyuiadaptor.moc"
