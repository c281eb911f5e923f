// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "panel.h"

#include "handsetservices.h"
#include "interpreter.h"
#include "journal.h"
#include "qmlerrors.h"
#include "transcript.h"
#include "words.h"

#include <QClipboard>
#include <QDir>
#include <QGuiApplication>
#include <QLockFile>
#include <QQmlContext>
#include <QQuickWindow>
#include <QScreen>

#include <algorithm>

namespace {

/// The number of lines from before the window opened that are kept.
constexpr int mostLines = 1000;
/// How far below and beside the panel of another handset a panel opens, so that both can be seen.
constexpr int step = 40;
constexpr int mostSteps = 8;

} // namespace

/// This is in no namespace, because the macro declares the function that it calls.
static void initializeResources()
{
    Q_INIT_RESOURCE(panel);
}

void Panel::prepare()
{
    // It is fast enough for a panel, starts at once, and does not depend on the graphics driver.
    QQuickWindow::setSceneGraphBackend(QStringLiteral("software"));
}

Panel::Panel(const Parts &handset, QObject *parent)
    : QObject(parent)
    , m_handset(handset)
{
    initializeResources();
    connect(&handset.transcript, &Transcript::said, this, [this](const QString &line) {
        if (m_lines.size() < mostLines)
            m_lines.append(line);
        Q_EMIT printed(line);
    });
    connect(&handset.transcript, &Transcript::commandBegun, this,
            [this](const QString &line) { m_commands.append(line); });
}

Panel::~Panel() = default;

void Panel::uiStarting()
{
    setUiEnd({});
    // Queued, so that the process of the call UI is started first.
    QMetaObject::invokeMethod(this, &Panel::open, Qt::QueuedConnection);
}

QObject *Panel::alarms() const
{
    return m_handset.services.alarms().list();
}

QObject *Panel::notifications() const
{
    return m_handset.services.notifications().list();
}

QObject *Panel::sims() const
{
    return m_handset.services.sims().list();
}

QObject *Panel::dialRules() const
{
    return m_handset.services.rules().dialList();
}

QObject *Panel::incomingRules() const
{
    return m_handset.services.rules().incomingList();
}

QVariantList Panel::services() const
{
    QVariantList services;
    for (const auto &process : m_handset.services.processes())
        services.append(QVariant::fromValue<QObject *>(process.get()));
    return services;
}

QObject *Panel::qmlErrors() const
{
    return &m_handset.qmlErrors;
}

QAbstractItemModel *Panel::journal() const
{
    return &m_handset.journal;
}

QQuickWindow *Panel::window() const
{
    const QList<QObject *> roots = m_engine.rootObjects();
    return roots.isEmpty() ? nullptr : qobject_cast<QQuickWindow *>(roots.constFirst());
}

void Panel::run(const QStringList &words)
{
    m_handset.interpreter.enqueue(joinWords(words));
}

void Panel::type(const QString &line)
{
    m_handset.interpreter.enqueue(line);
}

QString Panel::printedSoFar() const
{
    return m_lines.join(QLatin1Char('\n'));
}

QString Panel::script() const
{
    return m_commands.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

void Panel::copyScript() const
{
    QGuiApplication::clipboard()->setText(script());
}

void Panel::open()
{
    if (window())
        return;
    m_handset.services.follow();
    m_engine.rootContext()->setContextProperty(QStringLiteral("panel"), this);
    // Leave no file in the user's cache. The call UI inherits the environment and has a cache of
    // its own, so the variable is restored.
    const char *const noCache = "QML_DISABLE_DISK_CACHE";
    const QByteArray before = qgetenv(noCache);
    qputenv(noCache, "1");
    m_engine.load(QStringLiteral("qrc:/panel/Panel.qml"));
    if (before.isNull())
        qunsetenv(noCache);
    else
        qputenv(noCache, before);
    if (window()) {
        place();
        window()->show();
    }
}

/// Puts the window beside the phone and within the screen, its frame included, and away from those
/// of other handsets.
void Panel::place()
{
    int steps = 0;
    for (; steps < mostSteps; ++steps) {
        m_place = std::make_unique<QLockFile>(
            QStringLiteral("%1/parley-panel-%2.lock").arg(QDir::tempPath()).arg(steps));
        if (m_place->tryLock(0))
            break;
    }
    const QRect screen = window()->screen()->availableGeometry();
    const int phoneWidth = window()->property("phoneWidth").toInt();
    const int x = std::max(0, std::min(phoneWidth, screen.width() - window()->width()));
    const int away = step * (steps % mostSteps);
    window()->setFramePosition(screen.topLeft() + QPoint(x + away, away));
}

void Panel::setUiEnd(const QString &how)
{
    if (how == m_uiEnd)
        return;
    m_uiEnd = how;
    Q_EMIT uiEndChanged();
}
