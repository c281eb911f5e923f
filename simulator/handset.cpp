// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "handset.h"

#include "folderwatch.h"

#include <QDBusConnectionInterface>
#include <QDBusServiceWatcher>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <chrono>
#include <utility>

namespace {

const QLatin1String sessionConnection("handset-session");
const QLatin1String systemConnection("handset-system");
const QLatin1String uiService("com.nimbo.parley.ui");
/// Qt logs this for each request to raise a window without a display.
const QLatin1String cannotRaise("This plugin does not support raise()");
constexpr std::chrono::seconds uiPatience(30);
/// Once the QML engine has complained. The complaint may be only a warning.
constexpr std::chrono::seconds uiPatienceWithError(2);
/// Once the screens have been loaded, which creates the service in all but strange cases.
constexpr std::chrono::seconds uiPatienceWhenLoaded(1);

/// Returns \a paths, separated by colons, without \a folder.
QString without(const QString &folder, const QString &paths)
{
    QStringList others = paths.split(QLatin1Char(':'));
    const QDir unwanted(folder);
    const auto isUnwanted = [&unwanted](const QString &path) {
        return QDir(QDir::cleanPath(path)) == unwanted;
    };
    others.erase(std::remove_if(others.begin(), others.end(), isUnwanted), others.end());
    return others.join(QLatin1Char(':'));
}

} // namespace

Handset::Handset(const Options &options, QObject *parent)
    : QObject(parent)
    , m_options(options)
    , m_interpreter(m_transcript, options.atFailure)
    , m_folder(QDir::tempPath() + QLatin1String("/parley-handset-XXXXXX"))
    , m_journal(m_transcript)
    , m_replies(m_folder.filePath(QStringLiteral("home")), m_transcript)
{
    connect(&m_interpreter, &Interpreter::finished, this, &Handset::ended);
    connect(&m_sessionBus, &PrivateBus::died, this,
            [this] { partDied(QStringLiteral("The session bus has ended")); });
    connect(&m_systemBus, &PrivateBus::died, this,
            [this] { partDied(QStringLiteral("The system bus has ended")); });
}

Handset::~Handset()
{
    m_panel.reset();
    m_ui.reset();
    m_homeScreen.reset();
    m_services.reset();
    QDBusConnection::disconnectFromBus(sessionConnection);
    QDBusConnection::disconnectFromBus(systemConnection);
}

bool Handset::start()
{
    if (!makeFolder() || !startBus(m_sessionBus, QStringLiteral("session"), sessionConnection)
        || !startBus(m_systemBus, QStringLiteral("system"), systemConnection) || !startHomeScreen())
        return false;
    makeServices();
    addCommands();
    watchUi();
    if (m_options.watches)
        watchScreens();
    if (m_options.hasPanel)
        makePanel();
    placeCatalogue();
    placeControlGroups();
    startServicesAndUi();
    return true;
}

bool Handset::makeFolder()
{
    if (!m_folder.isValid()) {
        m_transcript.say(QStringLiteral("No folder for the handset: ") + m_folder.errorString());
        return false;
    }
    // Other users must reach the sockets of the buses in it. The home in it stays closed to them.
    QFile::setPermissions(m_folder.path(),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ExeGroup
                              | QFile::ExeOther);
    return true;
}

/// Starts a bus, opens the handset's own \a connection to it, and has the journal watch it.
bool Handset::startBus(PrivateBus &bus, const QString &name, const QString &connection)
{
    if (!bus.start(m_folder.path(), name)) {
        m_transcript.say(QStringLiteral("The %1 bus did not start: %2").arg(name, bus.error()));
        return false;
    }
    m_journal.watch({name, bus.address(), QDBusConnection::connectToBus(bus.address(), connection)},
                    m_options.uiProgram);
    return true;
}

bool Handset::startHomeScreen()
{
    const QDBusConnection session(sessionConnection);
    m_homeScreen = std::make_unique<HomeScreen>(session, m_sessionBus.address());
    if (m_homeScreen->start())
        return true;
    m_transcript.say(QStringLiteral("The home screen is not on the session bus: ")
                     + session.lastError().message());
    return false;
}

void Handset::makeServices()
{
    const QString stateFolder = m_options.stateFolder.isEmpty()
        ? m_folder.filePath(QStringLiteral("state"))
        : m_options.stateFolder;
    m_services = std::make_unique<HandsetServices>(
        HandsetServices::World{m_sessionBus.address(), m_systemBus.address(), stateFolder,
                               m_options.hasOfono},
        QDBusConnection(sessionConnection), QDBusConnection(systemConnection), m_transcript);
}

/// The order is the one in which "help" lists the commands.
void Handset::addCommands()
{
    m_interpreter.add(m_homeScreen->commands());
    m_interpreter.add(m_services->commands());
    m_interpreter.add(m_journal.commands());
    m_interpreter.add(m_replies.commands());
    m_interpreter.add(restartCommands());
    addValues();
}

/// What the lists have stands for the parameters that identify it.
void Handset::addValues()
{
    const auto add = [this](const QString &parameter, const ServiceList *list) {
        m_interpreter.addValues(parameter, [list] { return list->keys(); });
    };
    add(QStringLiteral("COOKIE"), m_services->alarms().list());
    add(QStringLiteral("ID"), m_services->notifications().list());
    add(QStringLiteral("MODEM"), m_services->sims().list());
    add(QStringLiteral("[MODEM]"), m_services->sims().list());
    add(QStringLiteral("[CALL]"), m_services->calls().list());
    m_interpreter.addValues(QStringLiteral("ACTION"), &CallRuleCommands::actionNames);
}

/// A start of the call UI is finished when it is on the bus or has taken too long.
void Handset::watchUi()
{
    auto *watcher = new QDBusServiceWatcher(uiService, QDBusConnection(sessionConnection),
                                            QDBusServiceWatcher::WatchForRegistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceRegistered, this, [this] {
        m_uiHasBeenUp = true;
        uiSettled(
            Outcome::Done,
            QStringLiteral("The call UI is on the bus after %1 ms.").arg(m_sinceUiStart.elapsed()));
    });
    connect(&m_uiPatience, &QTimer::timeout, this, [this] {
        uiSettled(
            Outcome::Failed,
            QStringLiteral(
                "The call UI is not on the bus yet; its screens may lack a ParleyUiAdaptor."));
    });
    m_uiPatience.setSingleShot(true);
}

/// Starts the call UI again when the code of the screens changes.
void Handset::watchScreens()
{
    const QString folder = QFileInfo(m_options.qmlFile).absolutePath();
    auto *watch = new FolderWatch(folder, this);
    connect(watch, &FolderWatch::changed, this, [this] {
        m_interpreter.enqueue(QStringLiteral("restart keep"));
        if (m_options.replays && m_homeScreen->hasRequested())
            m_interpreter.enqueue(QStringLiteral("replay"));
    });
}

void Handset::makePanel()
{
    m_panel = std::make_unique<Panel>(Panel::Parts{m_transcript, m_interpreter, *m_services,
                                                   m_qmlErrors, m_journal, m_replies.filePath()});
}

/// Shows the catalogue of texts where the call UI looks for it.
void Handset::placeCatalogue()
{
    const QString folder = QStringLiteral("/usr/share/translations");
    if (m_options.catalogueFolder == folder)
        return;
    if (Sandbox::isPossible())
        m_sandbox.place(folder, m_options.catalogueFolder);
    else
        m_transcript.say(QStringLiteral("Without bwrap, texts are shown as their ids."));
}

/// Shows the control groups of a handset where the call UI puts itself into them.
void Handset::placeControlGroups()
{
    if (!Sandbox::isPossible()) {
        m_transcript.say(QStringLiteral(
            "Without bwrap, the call UI finds no control groups, and says so in its log."));
        return;
    }
    for (const char *group : {"memory/noswapping", "cpu,cpuacct/interactive"}) {
        const QString name = QString::fromLatin1(group);
        const QString folder = m_folder.filePath(QLatin1String("control-groups/") + name);
        QDir().mkpath(folder);
        QFile(folder + QLatin1String("/tasks")).open(QIODevice::WriteOnly);
        m_sandbox.place(QLatin1String("/sys/fs/cgroup/") + name, folder);
    }
}

/// Starts the call UI after the services, as a handset does, and then runs the commands.
void Handset::startServicesAndUi()
{
    m_services->start([this] {
        startUi([this](Outcome, const QString &text) {
            m_transcript.say(text);
            if (m_options.hasPrompt)
                m_services->follow();
            m_interpreter.start();
        });
    });
}

/// The plugin is the display of the phone. The screens may write what is on them. The kit would
/// only stand in for what the call UI has.
QProcessEnvironment Handset::uiEnvironment(const QProcessEnvironment &world) const
{
    QProcessEnvironment environment = world;
    const QString plugins = QStringLiteral("QT_PLUGIN_PATH");
    const QStringList folders{m_options.phoneFolder, environment.value(plugins)};
    environment.insert(plugins, folders.join(QLatin1Char(':')));
    environment.insert(QStringLiteral("QT_QPA_GENERIC_PLUGINS"), QStringLiteral("ParleyPhone"));
    if (m_uiIsShown)
        environment.insert(QStringLiteral("PARLEY_PHONE_SHOWN"), QStringLiteral("1"));
    environment.insert(QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("screens.info=true"));
    for (const char *name : {"QML2_IMPORT_PATH", "QML_IMPORT_PATH"}) {
        const QString imports = QString::fromLatin1(name);
        if (environment.contains(imports))
            environment.insert(imports, without(m_options.kitFolder, environment.value(imports)));
    }
    if (!m_options.moduleFolder.isEmpty()) {
        const QString imports = QStringLiteral("QML2_IMPORT_PATH");
        const QStringList found{m_options.moduleFolder, environment.value(imports)};
        environment.insert(imports, found.join(QLatin1Char(':')));
    }
    return environment;
}

void Handset::startUi(const Finish &finish)
{
    m_uiFinish = finish;
    if (!QFileInfo(m_options.qmlFile).isFile()) {
        uiSettled(Outcome::Failed, QStringLiteral("There is no file ") + m_options.qmlFile);
        return;
    }
    m_ui = std::make_unique<UiProcess>(
        UiProcess::World{m_sessionBus.address(), m_systemBus.address(), m_folder.path()});
    m_ui->setProcessEnvironment(uiEnvironment(m_ui->processEnvironment()));
    connect(m_ui.get(), &UiProcess::logged, this, &Handset::recordLog);
    connect(m_ui.get(), &UiProcess::ended, this, &Handset::uiDied);

    m_qmlErrors.clear();
    m_uiPatience.start(uiPatience);
    m_sinceUiStart.start();
    QStringList command =
        m_sandbox.wrap({m_options.uiProgram, QStringLiteral("-prestart"),
                        QStringLiteral("-windowed"), QStringLiteral("-qml"), m_options.qmlFile});
    const QString program = command.takeFirst();
    m_ui->start(program, command);
    if (m_panel)
        m_panel->uiStarting();
}

void Handset::uiSettled(Outcome outcome, const QString &text)
{
    m_uiPatience.stop();
    if (const Finish finish = std::exchange(m_uiFinish, nullptr))
        finish(outcome, text);
    else
        m_transcript.say(text);
}

QVector<Command> Handset::restartCommands()
{
    const auto restart = [this](bool isShown, const Finish &finish) {
        m_ui.reset();
        m_uiIsShown = isShown;
        startUi(finish);
    };
    return {{QStringLiteral("restart"),
             {},
             QStringLiteral("end the call UI and start it again"),
             [restart](const QStringList &, const Finish &finish) { restart(false, finish); }},
            {QStringLiteral("restart keep"),
             {},
             QStringLiteral("the same; a window that was visible is visible again"),
             [this, restart](const QStringList &, const Finish &finish) {
                 restart(m_uiIsShown, finish);
             }}};
}

void Handset::recordLog(const QString &line)
{
    if (line == cannotRaise)
        return;
    if (m_qmlErrors.read(line) && m_uiFinish
        && m_uiPatience.remainingTimeAsDuration() > uiPatienceWithError)
        m_uiPatience.start(uiPatienceWithError);
    const QLatin1String fromPhone("phone: ");
    if (line.startsWith(fromPhone)) {
        phoneReported(line.mid(fromPhone.size()));
        return;
    }
    // Without a category of their own, or in that of our screens.
    for (const QLatin1String fromScreens : {QLatin1String("qml: "), QLatin1String("screens: ")}) {
        if (line.startsWith(fromScreens)) {
            m_transcript.record(QStringLiteral("ui"), line.mid(fromScreens.size()));
            return;
        }
    }
    m_transcript.record(QStringLiteral("ui log"), line);
}

void Handset::phoneReported(const QString &what)
{
    if (what != QLatin1String("loaded"))
        m_uiIsShown = what == QLatin1String("shown");
    else if (m_uiFinish && m_uiPatience.remainingTimeAsDuration() > uiPatienceWhenLoaded)
        m_uiPatience.start(uiPatienceWhenLoaded);
}

/// A user can start the call UI again. A script has to end.
void Handset::uiDied(const QString &how)
{
    const bool isUsed = m_uiHasBeenUp || m_options.hasPanel || m_options.watches;
    if (!isUsed || m_options.atFailure == Interpreter::AtFailure::Stop) {
        partDied(how);
        return;
    }
    m_transcript.say(how);
    m_transcript.say(QStringLiteral("The command \"restart\" starts it again."));
    if (m_panel)
        m_panel->setUiEnd(how);
    if (m_uiFinish)
        uiSettled(Outcome::Failed, QStringLiteral("it has not come up"));
}

void Handset::partDied(const QString &what)
{
    m_transcript.say(what);
    Q_EMIT ended(false);
}
