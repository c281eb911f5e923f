// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "handset.h"

#include <QDBusConnectionInterface>
#include <QDBusServiceWatcher>
#include <QDir>
#include <QFile>

#include <chrono>

namespace {

const QLatin1String sessionConnection("handset-session");
const QLatin1String uiService("com.nimbo.parley.ui");
constexpr std::chrono::seconds uiPatience(30);

} // namespace

Handset::Handset(const Options &options, QObject *parent)
    : QObject(parent)
    , m_options(options)
    , m_interpreter(m_transcript, options.atFailure)
    , m_folder(QDir::tempPath() + QLatin1String("/parley-handset-XXXXXX"))
{
    connect(&m_interpreter, &Interpreter::finished, this, &Handset::ended);
    connect(&m_sessionBus, &PrivateBus::died, this,
            [this] { partDied(QStringLiteral("The session bus has ended")); });
    connect(&m_systemBus, &PrivateBus::died, this,
            [this] { partDied(QStringLiteral("The system bus has ended")); });
}

Handset::~Handset()
{
    m_ui.reset();
    m_canopy.reset();
    QDBusConnection::disconnectFromBus(sessionConnection);
}

bool Handset::start()
{
    if (!m_folder.isValid()) {
        m_transcript.say(QStringLiteral("No folder for the handset: ") + m_folder.errorString());
        return false;
    }
    // Other users reach the buses' sockets in it; the home within is closed to them.
    QFile::setPermissions(m_folder.path(),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ExeGroup
                              | QFile::ExeOther);

    if (!startBus(m_sessionBus, QStringLiteral("session"))
        || !startBus(m_systemBus, QStringLiteral("system")))
        return false;

    const QDBusConnection session =
        QDBusConnection::connectToBus(m_sessionBus.address(), sessionConnection);
    m_canopy = std::make_unique<Canopy>(session, m_sessionBus.address());
    if (!m_canopy->start()) {
        m_transcript.say(QStringLiteral("The home screen is not on the session bus: ")
                         + session.lastError().message());
        return false;
    }
    m_interpreter.add(m_canopy->commands());
    startUi();
    return true;
}

bool Handset::startBus(PrivateBus &bus, const QString &name)
{
    if (bus.start(m_folder.path(), name))
        return true;
    m_transcript.say(QStringLiteral("The %1 bus did not start: %2").arg(name, bus.error()));
    return false;
}

void Handset::startUi()
{
    m_ui = std::make_unique<UiProcess>(
        UiProcess::World{m_sessionBus.address(), m_systemBus.address(), m_folder.path()});
    connect(m_ui.get(), &UiProcess::logged, this, &Handset::recordLog);
    connect(m_ui.get(), &UiProcess::ended, this, &Handset::partDied);

    auto *watcher = new QDBusServiceWatcher(uiService, QDBusConnection(sessionConnection),
                                            QDBusServiceWatcher::WatchForRegistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceRegistered, this, &Handset::uiIsUp);
    connect(&m_uiPatience, &QTimer::timeout, this, &Handset::uiIsLate);
    m_uiPatience.setSingleShot(true);
    m_uiPatience.start(uiPatience);

    m_sinceUiStart.start();
    m_ui->start(m_options.uiProgram,
                {QStringLiteral("-prestart"), QStringLiteral("-qml"), m_options.qmlFile});
}

void Handset::uiIsUp()
{
    m_uiPatience.stop();
    m_transcript.say(
        QStringLiteral("The call UI is on the bus after %1 ms.").arg(m_sinceUiStart.elapsed()));
    m_interpreter.start();
}

void Handset::uiIsLate()
{
    m_transcript.say(
        QStringLiteral("The call UI is not on the bus yet; its screens may lack a ParleyUiAdaptor."));
    m_interpreter.start();
}

void Handset::recordLog(const QString &line)
{
    const QLatin1String fromScreens("qml: ");
    if (line.startsWith(fromScreens))
        m_transcript.record(QStringLiteral("ui"), line.mid(fromScreens.size()));
    else
        m_transcript.record(QStringLiteral("ui log"), line);
}

void Handset::partDied(const QString &what)
{
    m_transcript.say(what);
    Q_EMIT ended(false);
}
