// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "uiundertest.h"

#include "callmeanwhile.h"
#include "patience.h"
#include "waitfor.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

#include <algorithm>

#include <unistd.h>

namespace {

const QString service = QStringLiteral("com.nimbo.parley.ui");

} // namespace

QStringList UiUnderTest::startUpLines()
{
    return {
        QStringLiteral(
            "Could not open /sys/fs/cgroup/memory/noswapping/tasks for disabling caching"),
        QStringLiteral(
            "Could not open /sys/fs/cgroup/cpu,cpuacct/interactive/tasks for disabling caching"),
        QStringLiteral("SimFiltersHelper::SimFiltersHelper(QObject*) "
                       "Unable to connect to voice call filter interfaces!")};
}

UiUnderTest::UiUnderTest()
    : m_session(m_folder.path())
{
    QFile::setPermissions(folder(), QFile::Permissions(0x7111)); // Other users call it, too.
    m_sessionBus.start(folder(), QStringLiteral("session"));
    m_systemBus.start(folder(), QStringLiteral("system"), PrivateBus::Limits::FewReplies);
    m_sessionBusAddress = m_sessionBus.address();
    m_session = QDBusConnection::connectToBus(m_sessionBusAddress, folder());
}

UiUnderTest::~UiUnderTest()
{
    QDBusConnection::disconnectFromBus(folder());
}

bool UiUnderTest::isValid() const
{
    return m_session.isConnected() && !m_systemBus.address().isEmpty();
}

QString UiUnderTest::writeFile(const QString &name, const QByteArray &content) const
{
    QFile file(folder() + QLatin1Char('/') + name);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("%s: %s", qUtf8Printable(file.fileName()), qUtf8Printable(file.errorString()));
    return file.fileName();
}

void UiUnderTest::hideCatalogues()
{
    const QString none = folder() + QLatin1String("/no-catalogues");
    QDir().mkdir(none);
    m_sandbox.place(QStringLiteral("/usr/share/translations"), none);
}

void UiUnderTest::setEnvironment(const QString &name, const QString &value)
{
    m_environment.insert(name, value);
}

bool UiUnderTest::writeSettings(const Settings &settings) const
{
    return ::writeSettings(folder() + QLatin1String("/home/.config"), settings);
}

void UiUnderTest::start(const QStringList &arguments)
{
    m_process = std::make_unique<UiProcess>(
        UiProcess::World{m_sessionBusAddress, m_systemBus.address(), folder()});
    connect(m_process.get(), &UiProcess::logged, this, &UiUnderTest::readLog);

    QProcessEnvironment environment = m_process->processEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    environment.insert(QStringLiteral("QT_QUICK_BACKEND"), QStringLiteral("software"));
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"),
                       environment.value(QStringLiteral("HOME")));
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    environment.remove(QStringLiteral("LANGUAGE"));
    // A sanitized process accepts a probe that is loaded before the sanitizer. If it ends by
    // itself, it reports leaks with complete stacks.
    QString sanitizer = QStringLiteral("verify_asan_link_order=0");
    if (arguments.contains(QLatin1String("-devel")))
        sanitizer += QLatin1String(":fast_unwind_on_malloc=0");
    environment.insert(QStringLiteral("ASAN_OPTIONS"), sanitizer);
    environment.insert(
        QStringLiteral("LSAN_OPTIONS"),
        QStringLiteral("print_suppressions=0:suppressions=" PARLEY_LEAK_SUPPRESSIONS));
    for (auto it = m_environment.cbegin(); it != m_environment.cend(); ++it)
        environment.insert(it.key(), it.value());
    m_process->setProcessEnvironment(environment);

    QStringList prefix = m_prefix;
    if (!m_preloaded.isEmpty())
        prefix << QStringLiteral("env") << QLatin1String("LD_PRELOAD=") + m_preloaded;
    QStringList command =
        m_sandbox.wrap(prefix + QStringList(qEnvironmentVariable("PARLEY_UI")) + arguments);
    const QString program = command.takeFirst();
    m_process->start(program, command);
}

bool UiUnderTest::startScreens(const QString &screens, const QStringList &arguments)
{
    start(arguments + QStringList{QStringLiteral("-qml"), screens});
    return logs(QStringLiteral("qml: loaded")) && claimStartUpLines();
}

bool UiUnderTest::claimStartUpLines()
{
    QStringList lines = startUpLines();
    if (m_hasTelephony)
        lines.removeLast();
    return std::all_of(lines.cbegin(), lines.cend(),
                       [this](const QString &line) { return logs(line); });
}

bool UiUnderTest::startProbe(const QStringList &arguments)
{
    return startScreens(QStringLiteral(PARLEY_PROBE_QML), arguments);
}

qint64 UiUnderTest::processId() const
{
    return m_session.interface()->servicePid(service).value();
}

qint64 UiUnderTest::residentMemory() const
{
    QFile file(QStringLiteral("/proc/%1/statm").arg(processId()));
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    return file.readAll().split(' ').at(1).toLongLong() * sysconf(_SC_PAGESIZE) / 1024;
}

bool UiUnderTest::logs(const QString &line)
{
    return QTest::qWaitFor([&] { return m_log.removeOne(line); }, patience());
}

QString UiUnderTest::lineBeginning(const QString &prefix)
{
    QString found;
    const bool seen = waitFor(
        [&] {
            for (int i = 0; i < m_log.size(); ++i) {
                if (m_log.at(i).startsWith(prefix)) {
                    found = m_log.takeAt(i);
                    return true;
                }
            }
            return false;
        },
        patience());
    return seen ? found : QString();
}

QStringList UiUnderTest::takeLog()
{
    if (m_process)
        m_process->readLog();
    return std::exchange(m_log, {});
}

QJsonValue UiUnderTest::evaluate(const QString &expression)
{
    call(QStringLiteral("show"), {QStringList{QStringLiteral("evaluate"), expression}});
    const QString prefix = QStringLiteral("qml: evaluated ");
    const QString line = lineBeginning(prefix);
    return QJsonDocument::fromJson('[' + line.mid(prefix.size()).toUtf8() + ']').array().at(0);
}

QDBusMessage UiUnderTest::call(const QString &method, const QVariantList &arguments)
{
    QDBusMessage message =
        QDBusMessage::createMethodCall(service, QStringLiteral("/"), service, method);
    message.setArguments(arguments);
    // Read the log meanwhile: a process that cannot write its log does not answer.
    return callMeanwhile(m_session, message, patience());
}

int UiUnderTest::waitForEnd()
{
    const bool ended = QTest::qWaitFor([this] { return !isRunning(); }, patience());
    return ended && m_process->exitStatus() == QProcess::NormalExit ? m_process->exitCode() : -1;
}

void UiUnderTest::stop()
{
    if (m_process)
        m_process->stop();
}
