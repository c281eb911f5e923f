// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "literals.h"
#include "patience.h"
#include "uiundertest.h"
#include "waitfor.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDBusUnixFileDescriptor>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QTest>
#include <QXmlStreamReader>

#include <algorithm>
#include <deque>
#include <memory>

#include <unistd.h>

namespace {

const QString service = u"com.nimbo.parley.ui"_s;
const QString pathTaken = u"Failed to register the voice call service object on the path '/'"_s;
const QString nameTaken = u"Failed to register the voice call service name 'com.nimbo.parley.ui'"_s;

struct Result
{
    int status = -1;
    QString output;
};

Result run(const QString &program, const QStringList &arguments, const QString &busAddress)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, busAddress);
    environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    // Do not use waitForFinished(), because the UI's log has to be read meanwhile.
    if (!waitFor([&process] { return process.state() == QProcess::NotRunning; }, 30000))
        return {};
    return {process.exitCode(), QString::fromUtf8(process.readAll()).trimmed()};
}

/// Returns the members of the service's interface in an introspection, and the names of all
/// \a interfaces.
QStringList membersOf(const QString &introspection, QStringList *interfaces)
{
    QStringList members;
    interfaces->clear();
    QXmlStreamReader xml(introspection);
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement || xml.name() == u"node"_s)
            continue;
        const QXmlStreamAttributes attributes = xml.attributes();
        if (xml.name() == u"interface"_s)
            *interfaces << attributes.value(u"name"_s).toString();
        else if (interfaces->constLast() != service)
            continue;
        else if (xml.name() == u"arg"_s)
            members.last() += u' ' + attributes.value(u"direction"_s).toString() + u':'
                + attributes.value(u"type"_s).toString();
        else
            members << xml.name().toString() + u' ' + attributes.value(u"name"_s).toString();
    }
    return xml.hasError() ? QStringList(xml.errorString()) : members;
}

QString json(const QJsonArray &array)
{
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
}

/// Returns the line with which the probe reports \a signal with \a argument.
QString report(const QString &signal, const QJsonValue &argument)
{
    const QString list = json({argument});
    return u"qml: "_s + signal + u' ' + list.mid(1, list.size() - 2);
}

} // namespace

class TestUiService : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void servesRealClients_data();
    void servesRealClients();
    void passesLargeArgumentsOn();
    void describesItself();
    void refusesWhatItDoesNotOffer_data();
    void refusesWhatItDoesNotOffer();
    void toleratesATakenName();
    void toleratesASecondProcess();
    void toleratesNoSessionBus();
    void toleratesALostSessionBus();
    void losesNoneOfAHundredThousandCalls();
    void answersTheNextWhateverOneSends_data();
    void answersTheNextWhateverOneSends();

private:
    std::unique_ptr<UiUnderTest> m_ui;
};

void TestUiService::init()
{
    m_ui = std::make_unique<UiUnderTest>();
    QVERIFY(m_ui->isValid());
}

void TestUiService::cleanup()
{
    QVERIFY(m_ui->isRunning());
    m_ui->stop();
    QCOMPARE(m_ui->takeLog().join(u'\n'), QString());
    m_ui.reset();
}

void TestUiService::servesRealClients_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QStringList>("busctl"); // The signature and the arguments.
    QTest::addColumn<QStringList>("gdbus"); // The arguments.
    QTest::addColumn<QString>("reported");
    QTest::addColumn<bool>("returnsTrue");

    const QString odd = u"\u00e9\u4e2d\U0001f4de \"\\ \t\n%1"_s;
    const QString oddText = u"'\u00e9\u4e2d\U0001f4de \"\\\\ \\t\\n%1'"_s;
    QStringList many;
    for (int i = 0; i < 10000; ++i)
        many << QString::number(i);

    QTest::newRow("show") << u"show"_s << QStringList{u"as"_s, u"3"_s, u"a"_s, QString(), odd}
                          << QStringList{u"['a', '', "_s + oddText + u']'}
                          << report(u"show"_s, QJsonArray{u"a"_s, QString(), odd}) << false;
    QTest::newRow("show nothing") << u"show"_s << QStringList{u"as"_s, u"0"_s}
                                  << QStringList{u"[]"_s} << report(u"show"_s, QJsonArray())
                                  << false;
    QTest::newRow("show 10,000 arguments")
        << u"show"_s << QStringList{u"as"_s, u"10000"_s} + many
        << QStringList{u"['"_s + many.join(u"','"_s) + u"']"_s}
        << report(u"show"_s, QJsonArray::fromStringList(many)) << false;
    QTest::newRow("showOngoing") << u"showOngoing"_s << QStringList() << QStringList()
                                 << report(u"showOngoing"_s, QJsonArray()) << false;
    QTest::newRow("openUrl") << u"openUrl"_s << QStringList{u"as"_s, u"2"_s, QString(), odd}
                             << QStringList{u"['', "_s + oddText + u']'}
                             << report(u"openUrl"_s, QJsonArray{QString(), odd}) << false;
    QTest::newRow("openUrl without one")
        << u"openUrl"_s << QStringList{u"as"_s, u"0"_s} << QStringList{u"[]"_s}
        << report(u"show"_s, QJsonArray()) << false;
    QTest::newRow("dial") << u"dial"_s << QStringList{u"s"_s, odd} << QStringList{oddText}
                          << report(u"dial"_s, odd) << true;
    QTest::newRow("dial nothing") << u"dial"_s << QStringList{u"s"_s, QString()}
                                  << QStringList{u"''"_s} << report(u"dial"_s, QString()) << true;
    QTest::newRow("dialViaModem") << u"dialViaModem"_s << QStringList{u"ss"_s, odd, u"+1"_s}
                                  << QStringList{oddText, u"'+1'"_s}
                                  << report(u"dialViaModem"_s, QJsonArray{odd, u"+1"_s}) << true;
    QTest::newRow("dialViaModem with nothing")
        << u"dialViaModem"_s << QStringList{u"ss"_s, QString(), QString()}
        << QStringList{u"''"_s, u"''"_s}
        << report(u"dialViaModem"_s, QJsonArray{QString(), QString()}) << true;
    QTest::newRow("showCellularErrorDialog")
        << u"showCellularErrorDialog"_s << QStringList() << QStringList()
        << report(u"showCellularErrorDialog"_s, QJsonArray()) << false;
    if (geteuid() == 0) {
        QTest::newRow("toggleCall, as root") << u"toggleCall"_s << QStringList() << QStringList()
                                             << report(u"toggleCall"_s, QJsonArray()) << false;
    }
    QTest::newRow("openContactCard")
        << u"openContactCard"_s << QStringList{u"s"_s, odd} << QStringList{oddText}
        << report(u"openContactCard"_s, odd) << false;
}

void TestUiService::servesRealClients()
{
    QFETCH(QString, method);
    QFETCH(QStringList, busctl);
    QFETCH(QStringList, gdbus);
    QFETCH(QString, reported);
    QFETCH(bool, returnsTrue);

    const QString address = m_ui->sessionBus().address();
    QVERIFY(m_ui->startProbe({u"-prestart"_s}));

    const Result first =
        run(u"busctl"_s,
            QStringList{u"--address="_s + address, u"call"_s, service, u"/"_s, service, method}
                + busctl,
            address);
    QCOMPARE(first.output, returnsTrue ? u"b true"_s : QString());
    QCOMPARE(first.status, 0);
    QCOMPARE(m_ui->takeLog(), QStringList(reported));

    const Result second =
        run(u"gdbus"_s,
            QStringList{u"call"_s, u"--session"_s, u"--dest"_s, service, u"--object-path"_s, u"/"_s,
                        u"--method"_s, service + u'.' + method}
                + gdbus,
            address);
    QCOMPARE(second.output, returnsTrue ? u"(true,)"_s : u"()"_s);
    QCOMPARE(second.status, 0);
    QCOMPARE(m_ui->takeLog(), QStringList(reported));
}

void TestUiService::passesLargeArgumentsOn()
{
    QVERIFY(m_ui->startProbe({u"-prestart"_s}));
    const QString megabyte = u"0123456789\u00e9abcde"_s.repeated(65536);
    QCOMPARE(m_ui->call(u"dial"_s, {megabyte}).arguments(), QVariantList{true});
    QCOMPARE(m_ui->lineBeginning(u"qml: dial "_s), report(u"dial"_s, megabyte));
    QStringList list;
    for (int i = 0; i < 10000; ++i)
        list << u"\u00e9"_s.repeated(100) + QString::number(i);
    QCOMPARE(m_ui->call(u"openUrl"_s, {list}).type(), QDBusMessage::ReplyMessage);
    QCOMPARE(m_ui->lineBeginning(u"qml: openUrl "_s),
             report(u"openUrl"_s, QJsonArray::fromStringList(list)));
}

void TestUiService::describesItself()
{
    QVERIFY(m_ui->startProbe({u"-prestart"_s}));
    const QDBusMessage reply = m_ui->session().call(QDBusMessage::createMethodCall(
        service, u"/"_s, u"org.freedesktop.DBus.Introspectable"_s, u"Introspect"_s));
    QCOMPARE(reply.type(), QDBusMessage::ReplyMessage);

    QStringList interfaces;
    const QStringList members = membersOf(reply.arguments().constFirst().toString(), &interfaces);
    std::sort(interfaces.begin(), interfaces.end());
    QCOMPARE(interfaces,
             QStringList({service, u"org.freedesktop.DBus.Introspectable"_s,
                          u"org.freedesktop.DBus.Peer"_s, u"org.freedesktop.DBus.Properties"_s}));
    QCOMPARE(
        members,
        QStringList({u"method show in:as"_s, u"method showOngoing"_s, u"method openUrl in:as"_s,
                     u"method dial out:b in:s"_s, u"method dialViaModem out:b in:s in:s"_s,
                     u"method showCellularErrorDialog"_s, u"method openContactCard in:s"_s,
                     u"method toggleCall"_s}));

    // What is installed says the same.
    QFile described(QStringLiteral(PARLEY_UI_INTERFACE));
    QVERIFY(described.open(QIODevice::ReadOnly));
    QCOMPARE(membersOf(QString::fromUtf8(described.readAll()), &interfaces), members);
    QCOMPARE(interfaces, QStringList(service));
}

void TestUiService::refusesWhatItDoesNotOffer_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("interface");
    QTest::addColumn<QString>("member");
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<QString>("error");

    const QString unknownMethod = u"org.freedesktop.DBus.Error.UnknownMethod"_s;
    const QString unknownObject = u"org.freedesktop.DBus.Error.UnknownObject"_s;
    const QString unknownInterface = u"org.freedesktop.DBus.Error.UnknownInterface"_s;
    QTest::newRow("unknown method")
        << u"/"_s << service << u"answer"_s << QVariantList() << unknownMethod;
    QTest::newRow("other case") << u"/"_s << service << u"Dial"_s << QVariantList{u"1"_s}
                                << unknownMethod;
    QTest::newRow("no argument") << u"/"_s << service << u"dial"_s << QVariantList()
                                 << unknownMethod;
    QTest::newRow("wrong type") << u"/"_s << service << u"dial"_s << QVariantList{1}
                                << unknownMethod;
    QTest::newRow("too many arguments")
        << u"/"_s << service << u"showOngoing"_s << QVariantList{u"1"_s} << unknownMethod;
    QTest::newRow("string for a list")
        << u"/"_s << service << u"show"_s << QVariantList{u"1"_s} << unknownMethod;
    QTest::newRow("unknown path") << u"/ui"_s << service << u"dial"_s << QVariantList{u"1"_s}
                                  << unknownObject;
    QTest::newRow("unknown interface")
        << u"/"_s << u"com.nimbo.other"_s << u"dial"_s << QVariantList{u"1"_s} << unknownInterface;
    QTest::newRow("a property") << u"/"_s << u"org.freedesktop.DBus.Properties"_s << u"Get"_s
                                << QVariantList{service, u"number"_s}
                                << u"org.freedesktop.DBus.Error.UnknownProperty"_s;
    QTest::newRow("QObject's slot")
        << u"/"_s << service << u"deleteLater"_s << QVariantList() << unknownMethod;
}

void TestUiService::refusesWhatItDoesNotOffer()
{
    QFETCH(QString, path);
    QFETCH(QString, interface);
    QFETCH(QString, member);
    QFETCH(QVariantList, arguments);
    QFETCH(QString, error);

    QVERIFY(m_ui->startProbe({u"-prestart"_s}));
    QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, member);
    message.setArguments(arguments);
    const QDBusMessage reply = m_ui->session().call(message);
    QCOMPARE(reply.type(), QDBusMessage::ErrorMessage);
    QCOMPARE(reply.errorName(), error);
    QCOMPARE(m_ui->evaluate(u"1 + 1"_s), QJsonValue(2));
}

void TestUiService::toleratesATakenName()
{
    QVERIFY(m_ui->session().registerService(service));
    QVERIFY(m_ui->startProbe({u"-prestart"_s}));
    QVERIFY(m_ui->logs(nameTaken));

    // A second process has only the object, under its unique name.
    const QStringList names = m_ui->session().interface()->registeredServiceNames().value();
    QStringList answering;
    for (const QString &name : names) {
        if (!name.startsWith(u':') || name == m_ui->session().baseService())
            continue;
        QDBusMessage message = QDBusMessage::createMethodCall(name, u"/"_s, service, u"dial"_s);
        message.setArguments({u"1"_s});
        if (m_ui->session().call(message).type() == QDBusMessage::ReplyMessage)
            answering << name;
    }
    QCOMPARE(answering.size(), 1);
    QVERIFY(m_ui->logs(report(u"dial"_s, u"1"_s)));
    QVERIFY(m_ui->session().unregisterService(service));
}

void TestUiService::toleratesASecondProcess()
{
    QVERIFY(m_ui->startProbe({u"-prestart"_s}));
    UiProcess second({m_ui->sessionBus().address(), {}, m_ui->folder()});
    QStringList log;
    connect(&second, &UiProcess::logged, this, [&log](const QString &line) { log << line; });
    QProcessEnvironment environment = second.processEnvironment();
    environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
    environment.insert(u"QT_QUICK_BACKEND"_s, u"software"_s);
    second.setProcessEnvironment(environment);
    const QString screens = m_ui->writeFile(
        u"screens.qml"_s,
        "import QtQuick 2.15\n"
        "import com.nimbo.parley 1.0\n"
        "Item { ParleyUiAdaptor {} Component.onCompleted: console.info('second') }\n");
    second.start(qEnvironmentVariable("PARLEY_UI"), {u"-prestart"_s, u"-qml"_s, screens});
    QTRY_VERIFY_WITH_TIMEOUT(log.contains(u"qml: second"_s), patience());
    QCOMPARE(log, UiUnderTest::startUpLines() + QStringList({nameTaken, u"qml: second"_s}));
    QCOMPARE(second.state(), QProcess::Running);
    QCOMPARE(m_ui->evaluate(u"1 + 1"_s), QJsonValue(2)); // The first one still gets the calls.
}

void TestUiService::toleratesNoSessionBus()
{
    m_ui->setSessionBusAddress(u"unix:path="_s + m_ui->folder() + u"/no-bus"_s);
    QVERIFY(m_ui->startProbe({u"-prestart"_s}));
    QVERIFY(m_ui->logs(pathTaken));
}

void TestUiService::toleratesALostSessionBus()
{
    // Without a bus the screens cannot be asked whether they are alive. They log it by themselves.
    const QString screens =
        m_ui->writeFile(u"screens.qml"_s,
                        "import QtQuick 2.15\n"
                        "import com.nimbo.parley 1.0\n"
                        "Item { ParleyUiAdaptor {}\n"
                        "       Timer { interval: 10; repeat: true; running: true\n"
                        "               onTriggered: console.info('alive') } }\n");
    m_ui->start({u"-prestart"_s, u"-qml"_s, screens});
    QVERIFY(m_ui->logs(u"qml: alive"_s));
    m_ui->sessionBus().stop();
    m_ui->takeLog();
    QVERIFY(m_ui->logs(u"qml: alive"_s));
    m_ui->stop();
    m_ui->takeLog();

    QVERIFY(m_ui->startProbe({u"-prestart"_s}));
    QVERIFY(m_ui->logs(pathTaken));
}

void TestUiService::losesNoneOfAHundredThousandCalls()
{
    const QString screens = m_ui->writeFile(
        u"screens.qml"_s,
        "import QtQuick 2.15\n"
        "import com.nimbo.parley 1.0\n"
        "Item {\n"
        "    property int dialled: 0\n"
        "    property int outOfOrder: 0\n"
        "    ParleyUiAdaptor {\n"
        "        onDial: function(number) { if (number !== String(dialled)) ++outOfOrder; "
        "++dialled; }\n"
        "        onShowOngoing: console.info(dialled + ' dialled, ' + outOfOrder + ' out of "
        "order')\n"
        "    }\n"
        "    Component.onCompleted: console.info('loaded')\n"
        "}\n");
    m_ui->start({u"-prestart"_s, u"-qml"_s, screens});
    QVERIFY(m_ui->logs(u"qml: loaded"_s));

    // Call as fast as possible, with a few calls under way at any moment.
    constexpr int total = 100000;
    int answered = 0;
    int refused = 0;
    qint64 memoryBefore = 0;
    std::deque<QDBusPendingCall> underWay;
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < total; ++i) {
        QDBusMessage message = QDBusMessage::createMethodCall(service, u"/"_s, service, u"dial"_s);
        message.setArguments({QString::number(i)});
        underWay.push_back(m_ui->session().asyncCall(message));
        while (underWay.size() >= 16 || (i + 1 == total && !underWay.empty())) {
            underWay.front().waitForFinished();
            const QDBusMessage reply = underWay.front().reply();
            ++(reply.arguments() == QVariantList{true} ? answered : refused);
            underWay.pop_front();
            if (answered == 1000)
                memoryBefore = m_ui->residentMemory();
        }
    }
    const qint64 memoryAfter = m_ui->residentMemory();
    qInfo("%d calls in %.1f s; memory after 1,000: %lld KiB, after all: %lld KiB", total,
          static_cast<double>(timer.elapsed()) / 1e3, memoryBefore, memoryAfter);
    QCOMPARE(refused, 0);
    QCOMPARE(answered, total);
    QCOMPARE(m_ui->call(u"showOngoing"_s).type(), QDBusMessage::ReplyMessage);
    QVERIFY(m_ui->logs(u"qml: 100000 dialled, 0 out of order"_s));
    QCOMPARE(m_ui->takeLog(), UiUnderTest::startUpLines());
    if (!qEnvironmentVariableIsSet("PARLEY_UI_OPTIMIZED"))
        QSKIP("a debug build may keep freed memory");
    QVERIFY(memoryAfter - memoryBefore <= 1024);
}

void TestUiService::answersTheNextWhateverOneSends_data()
{
    QTest::addColumn<int>("calls"); // The number of calls at once, without waiting for an answer.
    QTest::addColumn<int>("size"); // The size of the text of each call.
    QTest::addColumn<int>("descriptors"); // The number of descriptors with each call.

    QTest::newRow("a text of 70 MB") << 1 << 70000000 << 0;
    QTest::newRow("three texts of 70 MB") << 3 << 70000000 << 0;
    QTest::newRow("a hundred texts of 1 MB") << 100 << 1000000 << 0;
    QTest::newRow("many short texts") << 100000 << 900 << 0;
    QTest::newRow("many descriptors") << 500 << 1 << 10;
}

/// The screens are busy at first, so that the calls have to wait, and count them afterwards.
void TestUiService::answersTheNextWhateverOneSends()
{
    QFETCH(int, calls);
    QFETCH(int, size);
    QFETCH(int, descriptors);

    // Allow all of the descriptors, so that the bus has no reason to close the connection.
    m_ui->setPrefix({u"prlimit"_s, u"--nofile=20000"_s});
    QVERIFY(m_ui->startScreens(m_ui->writeFile(u"counting.qml"_s, R"(
        import QtQuick 2.15
        import com.nimbo.parley 1.0
        Item {
            ParleyUiAdaptor {
                property int count: 0
                onShowOngoing: {
                    const end = Date.now() + 500;
                    while (Date.now() < end) { }
                }
                onDial: ++count
                onShow: console.info("counted " + count)
            }
            Component.onCompleted: console.info("loaded")
        })"),
                               {u"-prestart"_s}));
    for (int i = 0; i < 100; ++i)
        QCOMPARE(m_ui->call(u"dial"_s, {u"1"_s}).arguments(), QVariantList{true});
    const qint64 memoryBefore = m_ui->residentMemory();

    QDBusMessage call = QDBusMessage::createMethodCall(service, u"/"_s, service, u"dial"_s);
    QVariantList arguments{QString(size, u'x')};
    // No method takes descriptors as well, so such a call goes no further than QtDBus.
    QFile null(u"/dev/null"_s);
    QVERIFY(null.open(QIODevice::ReadOnly));
    for (int i = 0; i < descriptors; ++i)
        arguments << QVariant::fromValue(QDBusUnixFileDescriptor(null.handle()));
    call.setArguments(arguments);
    QVERIFY(m_ui->session().send(
        QDBusMessage::createMethodCall(service, u"/"_s, service, u"showOngoing"_s)));
    for (int i = 0; i < calls; ++i)
        QVERIFY(m_ui->session().send(call));
    QCOMPARE(m_ui->call(u"dial"_s, {u"1"_s}).arguments(), QVariantList{true});
    m_ui->call(u"show"_s, {QStringList()});
    QVERIFY(m_ui->logs(u"qml: counted %1"_s.arg(101 + (descriptors == 0 ? calls : 0))));

    if (!qEnvironmentVariableIsSet("PARLEY_UI_OPTIMIZED"))
        QSKIP("a debug build may keep freed memory");
    qInfo("memory before: %lld KiB, after: %lld KiB", memoryBefore, m_ui->residentMemory());
    QTRY_VERIFY_WITH_TIMEOUT(m_ui->residentMemory() - memoryBefore <= 40960, 30000);
}

QTEST_GUILESS_MAIN(TestUiService)

#include "tst_uiservice.moc"
