// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "examplerunner.h"

#include "literals.h"
#include "patience.h"

#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTest>

#include <algorithm>

#include <unistd.h>

namespace {

/// Qt logs this for each request to raise a window that is drawn off screen. It is the last line of
/// a start with a window.
const QString cannotRaise = u"This plugin does not support raise()"_s;

const QByteArray barredSim = R"({
    "modems": { "/ril_0": { "imsi": "262011111111111", "locked": false } },
    "dial": { "defaultAction": 2, "rules": [ { "imsi": "262011111111111", "action": 1 } ] },
    "incoming": { "defaultAction": 2, "rules": [] }
})";

QString said(const QStringList &lines)
{
    return lines.isEmpty() ? u"nothing"_s : u'"' + lines.join(u"\", \""_s) + u'"';
}

/// Returns the pattern for \a line, which has a process, a user, a group and a time as examples.
QRegularExpression patternOf(const QString &line)
{
    QString pattern = QRegularExpression::escape(line);
    pattern.replace(u"4242"_s, u"\\d+"_s);
    pattern.replace(QRegularExpression::escape(u"user guest group users"_s),
                    u"user \\S+ group \\S+"_s);
    pattern.replace(QRegularExpression::escape(u"(4.2 s)"_s), u"\\(\\d+\\.\\d s\\)"_s);
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern));
}

bool areAlike(const QStringList &documented, const QStringList &lines)
{
    return std::equal(documented.cbegin(), documented.cend(), lines.cbegin(), lines.cend(),
                      [](const QString &example, const QString &line) {
                          return patternOf(example).match(line).hasMatch();
                      });
}

QStringList withoutPrivileges()
{
    if (geteuid() != 0)
        return {};
    return {u"setpriv"_s, u"--reuid=65534"_s, u"--regid=65534"_s, u"--clear-groups"_s};
}

} // namespace

ExampleRunner::ExampleRunner()
    : m_systemBus(
        QDBusConnection::connectToBus(m_ui.systemBus().address(), m_ui.folder() + u" system"_s))
{
    m_ui.sandbox().place(u"/usr/share/translations"_s, QStringLiteral(PARLEY_TRANSLATIONS));
    m_ui.setHasTelephony();
    m_ui.setEnvironment(u"QML2_IMPORT_PATH"_s, qEnvironmentVariable("PARLEY_QML_MODULES"));
}

ExampleRunner::~ExampleRunner()
{
    QDBusConnection::disconnectFromBus(m_systemBus.name());
}

bool ExampleRunner::start()
{
    QDir(m_ui.folder()).mkpath(u"home"_s);
    QDir(m_ui.folder()).mkpath(u"state"_s);
    m_ui.writeFile(u"dconf-profile"_s, "user-db:user\n");
    m_ui.writeFile(u"state/telephony.json"_s, barredSim);
    return startService(u"time-daemon"_s, u"com.nimbo.timed"_s, m_systemBus)
        && startService(u"telephony"_s, u"org.ofono"_s, m_systemBus)
        && startService(u"notification-service"_s, u"org.freedesktop.Notifications"_s,
                        m_ui.session())
        && startSettings();
}

bool ExampleRunner::startService(const QString &name, const QString &busName,
                                 const QDBusConnection &bus)
{
    auto service = std::make_unique<ChildProcess>();
    service->setProcessEnvironment(environment());
    service->setProcessChannelMode(QProcess::MergedChannels);
    service->start(qEnvironmentVariable("PARLEY_HANDSET"),
                   {u"--service"_s, name, u"--state"_s, m_ui.folder() + u"/state"_s});
    m_services.push_back(std::move(service));
    return QTest::qWaitFor([&] { return bus.interface()->isServiceRegistered(busName).value(); },
                           patience());
}

/// No service is activated on a bus of our own.
bool ExampleRunner::startSettings()
{
    auto service = std::make_unique<ChildProcess>();
    service->setProcessEnvironment(environment());
    service->setProcessChannelMode(QProcess::MergedChannels);
    service->start(QStringLiteral(PARLEY_DCONF_SERVICE), QStringList());
    m_services.push_back(std::move(service));
    return QTest::qWaitFor(
        [this] {
            return m_ui.session().interface()->isServiceRegistered(u"ca.desrt.dconf"_s).value();
        },
        patience());
}

QProcessEnvironment ExampleRunner::environment()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    const QString home = m_ui.folder() + u"/home"_s;
    for (const QString &folder : {u"XDG_CONFIG_HOME"_s, u"XDG_DATA_HOME"_s, u"XDG_CACHE_HOME"_s})
        environment.remove(folder);
    environment.insert(u"HOME"_s, home);
    environment.insert(u"XDG_RUNTIME_DIR"_s, home);
    environment.insert(u"DCONF_PROFILE"_s, m_ui.folder() + u"/dconf-profile"_s);
    environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, m_ui.sessionBus().address());
    environment.insert(u"DBUS_SYSTEM_BUS_ADDRESS"_s, m_ui.systemBus().address());
    const QString programs = QFileInfo(qEnvironmentVariable("PARLEY_HANDSET")).path();
    environment.insert(
        u"PATH"_s,
        QStringList{programs, QStringLiteral(PARLEY_QT_TOOLS), environment.value(u"PATH"_s)}.join(
            u':'));
    environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
    environment.insert(u"QT_FORCE_STDERR_LOGGING"_s, u"1"_s);
    return environment;
}

bool ExampleRunner::hasLinter()
{
    return !QStringLiteral(PARLEY_QMLLINT).isEmpty();
}

QString ExampleRunner::run(const Document::Block &block)
{
    if (block.kind == u"qml"_s)
        return runScreens(block);
    if (block.kind.startsWith(u"qml "_s) || block.kind.startsWith(u"text "_s))
        return writeFile(block);
    if (block.kind == u"json"_s)
        return checkReplies(block);
    if (!m_hasScreens && !startProbe())
        return u"the probe cannot be started"_s;
    if (block.kind == u"sh"_s)
        return runShell(block);
    if (!hasLinter() && block.lines.value(0).startsWith(u"$ qmllint "_s))
        return {};
    if (block.kind == u"console"_s)
        return runConsole(block, {});
    if (block.kind == u"console guest"_s)
        return runConsole(block, withoutPrivileges());
    if (block.kind == u"log"_s)
        return checkLog(block);
    if (block.kind.endsWith(u" not-run"_s))
        return {};
    return u"nobody knows how to run \"%1\""_s.arg(block.kind);
}

QString ExampleRunner::writeFile(const Document::Block &block)
{
    const QString name = block.kind.section(u' ', 1);
    if (!QDir(m_ui.folder()).mkpath(QFileInfo(name).path()))
        return u"there is no folder for it"_s;
    const QByteArray content = block.lines.join(u'\n').toUtf8() + '\n';
    m_ui.writeFile(name, content);
    return {};
}

QString ExampleRunner::runScreens(const Document::Block &block)
{
    const QStringList left = endScreens();
    if (!left.isEmpty())
        return u"the screens before it have logged "_s + said(left);
    const QByteArray screens = block.lines.join(u'\n').toUtf8() + '\n';
    if (!startScreens(m_ui.writeFile(u"example.qml"_s, screens)))
        return u"it cannot be started: "_s + said(m_ui.takeLog());
    return {};
}

bool ExampleRunner::startScreens(const QString &fileName)
{
    m_ui.start({u"-qml"_s, fileName});
    m_hasScreens = true;
    return m_ui.claimStartUpLines() && m_ui.logs(cannotRaise);
}

bool ExampleRunner::startProbe()
{
    m_hasScreens = m_ui.startProbe({u"-prestart"_s});
    m_hasProbe = m_hasScreens;
    return m_hasScreens;
}

QStringList ExampleRunner::endScreens()
{
    m_ui.stop();
    m_hasScreens = false;
    m_hasProbe = false;
    QStringList left = m_ui.takeLog();
    left.removeAll(cannotRaise);
    return left;
}

ExampleRunner::Result ExampleRunner::execute(const QStringList &command)
{
    QProcess process;
    process.setProcessEnvironment(environment());
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.setWorkingDirectory(m_ui.folder());
    process.start(command.constFirst(), command.mid(1));
    // Read the call UI's log and answer its calls meanwhile.
    if (!QTest::qWaitFor([&process] { return process.state() == QProcess::NotRunning; },
                         patience()))
        return {-1, {u"it does not end"_s}};
    QStringList output = QString::fromUtf8(process.readAll()).split(u'\n');
    for (QString &line : output) {
        while (line.endsWith(u' '))
            line.chop(1);
    }
    output.removeLast();
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1, output};
}

QString ExampleRunner::runShell(const Document::Block &block)
{
    const Result result = execute({u"sh"_s, u"-e"_s, u"-c"_s, block.lines.join(u'\n')});
    if (result.status != 0 || !result.output.isEmpty())
        return u"it ends with %1 and says %2"_s.arg(result.status).arg(said(result.output));
    return {};
}

QVector<ExampleRunner::Command> ExampleRunner::commandsOf(const Document::Block &block)
{
    const QString prompt = u"$ "_s;
    QVector<Command> commands;
    bool continues = false;
    for (const QString &line : block.lines) {
        if (continues)
            commands.last().line += u'\n' + line;
        else if (line.startsWith(prompt))
            commands.append({line.mid(prompt.size()), {}});
        else if (!commands.isEmpty())
            commands.last().output.append(line);
        continues =
            !commands.isEmpty() && commands.constLast().output.isEmpty() && line.endsWith(u'\\');
    }
    return commands;
}

QString ExampleRunner::runConsole(const Document::Block &block, const QStringList &prefix)
{
    const QVector<Command> commands = commandsOf(block);
    if (commands.isEmpty())
        return u"there is no command"_s;
    for (const Command &command : commands) {
        const Result result = execute(prefix + QStringList{u"sh"_s, u"-c"_s, command.line});
        if (!areAlike(command.output, result.output))
            return u"\"%1\" prints %2"_s.arg(command.line, said(result.output));
        if (!m_hasProbe || result.status != 0)
            continue;
        QString problem = checkRequest(command.line);
        if (!problem.isEmpty())
            return problem;
    }
    return {};
}

/// Returns whether the probe has reported the request that \a command makes, and no other.
QString ExampleRunner::checkRequest(const QString &command)
{
    static const QRegularExpression call(u"call.* com\\.nimbo\\.parley\\.ui[ .](\\w+)"_s,
                                         QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = call.match(command);
    const QStringList reported = m_ui.takeLog();
    const bool isReported = reported.size() == 1
        && reported.constFirst().startsWith(u"qml: "_s + match.captured(1) + u' ');
    if (match.hasMatch() ? isReported : reported.isEmpty())
        return {};
    return u"\"%1\" has made the call UI log %2"_s.arg(command, said(reported));
}

QString ExampleRunner::checkLog(const Document::Block &block)
{
    for (const QString &line : block.lines) {
        const auto processId = line.indexOf(u"4242"_s);
        const bool isLogged = processId < 0
            ? m_ui.logs(line)
            : patternOf(line).match(m_ui.lineBeginning(line.left(processId))).hasMatch();
        if (!isLogged)
            return u"\"%1\" is not logged, but %2"_s.arg(line, said(m_ui.takeLog()));
    }
    return {};
}

/// Checks that default messages are shown in another form than they are written, and others
/// unchanged.
QString ExampleRunner::checkReplies(const Document::Block &block)
{
    const QByteArray json = block.lines.join(u'\n').toUtf8() + '\n';
    const QJsonArray messages = QJsonDocument::fromJson(json).array();
    const QStringList left = endScreens();
    if (messages.isEmpty() || !left.isEmpty())
        return u"it is no array, or the screens before it have logged "_s + said(left);
    const QString folder = u"home/.local/share/system/privileged/Phone"_s;
    QDir(m_ui.folder()).mkpath(folder);
    m_ui.writeFile(folder + u"/quick-replies.json"_s, json);
    if (!startScreens(QStringLiteral(PARLEY_REPLIES_QML)))
        return u"the screens cannot be started"_s;
    for (const QJsonValue &message : messages) {
        const QString row = m_ui.lineBeginning(u"qml: reply "_s);
        const bool isDefault = message.toString().startsWith(u"parley-me-"_s);
        if (row.isEmpty() || isDefault == (row == u"qml: reply "_s + message.toString()))
            return u"a row is %1"_s.arg(row);
    }
    return {};
}

QStringList ExampleRunner::end()
{
    QStringList left = endScreens();
    for (const auto &service : m_services) {
        service->stop();
        const QString output = QString::fromUtf8(service->readAll()).trimmed();
        if (!output.isEmpty())
            left += output.split(u'\n');
    }
    return left;
}
