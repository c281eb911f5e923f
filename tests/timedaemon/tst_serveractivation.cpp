// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "alarmboard.h"
#include "childprocess.h"
#include "literals.h"
#include "messagelog.h"
#include "scriptedservice.h"

#include <QDateTime>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <chrono>
#include <memory>

namespace {

using namespace std::chrono_literals;

const QString busConfiguration =
    u"<busconfig><type>session</type><listen>unix:dir=%1</listen><auth>EXTERNAL</auth>"
    u"<servicedir>%1</servicedir><policy context='default'><allow user='*'/><allow own='*'/>"
    u"<allow send_destination='*'/><allow receive_sender='*'/></policy></busconfig>"_s;

} // namespace

/// A session bus that starts a notification server, which ends at once, as one does before there is
/// a display.
class TestServerActivation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void isTriedUntilTheServerStays();

private:
    bool write(const QString &name, const QString &content) const;
    qint64 countAttempts() const { return QFile(m_folder.filePath(u"attempts"_s)).size(); }

    QTemporaryDir m_folder;
    ChildProcess m_bus;
    QString m_address;
};

void TestServerActivation::initTestCase()
{
    registerAlarmTypes();
    QVERIFY(write(u"bus.conf"_s, busConfiguration.arg(m_folder.path())));
    QVERIFY(
        write(u"server.service"_s,
              u"[D-BUS Service]\nName=org.freedesktop.Notifications\n"
              u"Exec=/bin/sh -c \"echo >>%1; exit 1\"\n"_s.arg(m_folder.filePath(u"attempts"_s))));
    m_bus.start(u"dbus-daemon"_s,
                {u"--nofork"_s, u"--nosyslog"_s, u"--print-address=1"_s,
                 u"--config-file="_s + m_folder.filePath(u"bus.conf"_s)});
    QTRY_VERIFY(m_bus.canReadLine());
    m_address = QString::fromUtf8(m_bus.readLine()).trimmed();
    qputenv("DBUS_SESSION_BUS_ADDRESS", m_address.toUtf8());
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_address.toUtf8());
    QVERIFY(QDBusConnection::sessionBus().isConnected());
    QVERIFY(QDBusConnection::systemBus().isConnected());
}

bool TestServerActivation::write(const QString &name, const QString &content) const
{
    QFile file(m_folder.filePath(name));
    return file.open(QIODevice::WriteOnly) && file.write(content.toUtf8()) > 0;
}

void TestServerActivation::isTriedUntilTheServerStays()
{
    MessageLog log;
    ScriptedService daemon(m_address, u"com.nimbo.timed"_s, u"/com/nimbo/timed"_s);
    constexpr auto later = 100ms;
    AlarmBoard board(QDBusConnection::sessionBus(), QDBusConnection::systemBus(), {later, 0ms});
    board.start();
    daemon.reply(daemon.next(u"List"_s), {QVariant::fromValue(QList<uint>())});
    daemon.settle();
    QCOMPARE(countAttempts(), 0); // Nothing has to be shown yet.

    daemon.emitSignal(u"com.nimbo.parley.DueAlarms"_s, u"Changed"_s, {});
    daemon.reply(daemon.next(u"List"_s), {QVariant::fromValue(QList<uint>{1, 2})});
    const Alarm alarm{4, QDateTime::currentSecsSinceEpoch() + 60, {}};
    daemon.reply(daemon.next(u"Get"_s), {QVariant::fromValue(alarm)});
    daemon.reply(daemon.next(u"Get"_s), {QVariant::fromValue(alarm)});
    QTRY_VERIFY(countAttempts() >= 4);
    daemon.settle();
    const QStringList lines = log.take();
    QCOMPARE(lines.size(), 1);
    QVERIFY2(lines.first().startsWith(u"warning: The notification server cannot be started: "
                                      u"org.freedesktop.DBus.Error.Spawn.ChildExited: "_s),
             qPrintable(lines.first()));

    ScriptedService server(m_address, u"org.freedesktop.Notifications"_s,
                           u"/org/freedesktop/Notifications"_s);
    server.reply(server.next(u"GetCapabilities"_s), {QStringList()});
    server.reply(server.next(u"Notify"_s), {1U});
    server.reply(server.next(u"Notify"_s), {2U});
    server.settle();
    QCOMPARE(log.take().join(u'\n'), QString());
}

QTEST_GUILESS_MAIN(TestServerActivation)

#include "tst_serveractivation.moc"
