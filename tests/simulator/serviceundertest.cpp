// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "serviceundertest.h"

#include "callmeanwhile.h"

#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <algorithm>
#include <csignal>
#include <utility>

namespace {

constexpr int patience = 30000;

} // namespace

ServiceUnderTest::ServiceUnderTest(Place place)
    : m_place(std::move(place))
    , m_bus(m_folder.path())
{
    // Other users may reach the sockets.
    QFile::setPermissions(m_folder.path(), QFile::Permissions(0x7111));
    m_sessionBus.start(m_folder.path(), QStringLiteral("session"));
    m_systemBus.start(m_folder.path(), QStringLiteral("system"), m_place.limits);
    m_bus = QDBusConnection::connectToBus(address(), m_folder.path());
    for (const QString &signal : m_place.heard) {
        const auto dot = signal.lastIndexOf(QLatin1Char('.'));
        m_bus.connect(m_place.service, m_place.path, signal.left(dot), signal.mid(dot + 1), this,
                      SLOT(received(QDBusMessage)));
    }
}

ServiceUnderTest::~ServiceUnderTest()
{
    QDBusConnection::disconnectFromBus(m_folder.path());
}

QString ServiceUnderTest::address() const
{
    return m_place.bus == Bus::Session ? m_sessionBus.address() : m_systemBus.address();
}

bool ServiceUnderTest::start()
{
    m_process = std::make_unique<ChildProcess>();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), m_sessionBus.address());
    environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), m_systemBus.address());
    environment.insert(QStringLiteral("QT_FORCE_STDERR_LOGGING"), QStringLiteral("1"));
    m_process->setProcessEnvironment(environment);
    m_process->setProcessChannelMode(QProcess::MergedChannels);
    connect(m_process.get(), &QProcess::readyRead, this, &ServiceUnderTest::readLog);
    m_process->start(
        qEnvironmentVariable("PARLEY_HANDSET"),
        {QStringLiteral("--service"), m_place.name, QStringLiteral("--state"), stateFolder()});
    return QTest::qWaitFor(
        [this] { return m_bus.interface()->isServiceRegistered(m_place.service).value(); },
        patience);
}

bool ServiceUnderTest::end(int signal)
{
    ::kill(static_cast<pid_t>(m_process->processId()), signal);
    return m_process->waitForFinished(patience)
        && QTest::qWaitFor(
               [this] { return !m_bus.interface()->isServiceRegistered(m_place.service).value(); },
               patience);
}

bool ServiceUnderTest::writeState(const QString &name, const QByteArray &content) const
{
    QFile file(stateFolder() + QLatin1Char('/') + name);
    QDir().mkpath(QFileInfo(file).path());
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QDBusMessage ServiceUnderTest::call(const QString &interface, const QString &method,
                                    const QVariantList &arguments) const
{
    return callAt(m_place.path, interface, method, arguments);
}

QDBusMessage ServiceUnderTest::callAt(const QString &path, const QString &interface,
                                      const QString &method, const QVariantList &arguments) const
{
    QDBusMessage message = QDBusMessage::createMethodCall(m_place.service, path, interface, method);
    message.setArguments(arguments);
    return callMeanwhile(m_bus, message, patience);
}

QStringList ServiceUnderTest::busctl(const QString &verb, const QStringList &arguments) const
{
    return busctlAt(m_place.path, verb, arguments);
}

QStringList ServiceUnderTest::busctlAt(const QString &path, const QString &verb,
                                       const QStringList &arguments) const
{
    QProcess busctl;
    busctl.setProcessChannelMode(QProcess::MergedChannels);
    busctl.start(QStringLiteral("busctl"),
                 QStringList{QStringLiteral("--no-pager"), QStringLiteral("--full"),
                             QStringLiteral("--address=") + address(), verb, m_place.service, path}
                     + arguments);
    busctl.waitForFinished(patience);
    QStringList lines = QString::fromUtf8(busctl.readAll()).trimmed().split(QLatin1Char('\n'));
    for (QString &line : lines)
        line = line.simplified();
    return lines;
}

QDBusMessage ServiceUnderTest::nextSignal(const QString &member)
{
    const auto isIt = [&member](const QDBusMessage &message) { return message.member() == member; };
    const auto find = [&] { return std::find_if(m_signals.begin(), m_signals.end(), isIt); };
    if (!QTest::qWaitFor([&] { return find() != m_signals.end(); }, patience))
        return {};
    const auto found = find();
    const QDBusMessage message = *found;
    m_signals.erase(found);
    return message;
}

QStringList ServiceUnderTest::pendingSignals() const
{
    QStringList members;
    for (const QDBusMessage &message : m_signals)
        members.append(message.member());
    return members;
}

bool ServiceUnderTest::logs(const QString &part)
{
    const auto find = [&] {
        return std::find_if(m_log.begin(), m_log.end(),
                            [&part](const QString &line) { return line.contains(part); });
    };
    if (!QTest::qWaitFor([&] { return find() != m_log.end(); }, patience))
        return false;
    m_log.erase(find());
    return true;
}

QStringList ServiceUnderTest::takeLog()
{
    readLog();
    return std::exchange(m_log, {});
}

void ServiceUnderTest::received(const QDBusMessage &message)
{
    m_signals.append(message);
}

void ServiceUnderTest::readLog()
{
    while (m_process->canReadLine())
        m_log.append(QString::fromUtf8(m_process->readLine()).trimmed());
}
