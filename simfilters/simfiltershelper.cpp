// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "simfiltershelper.h"

#include "receivelimits.h"

#include <qofonosimmanager.h>
#include <qofonosimwatcher.h>

#include <QDBusAbstractInterface>
#include <QDBusConnection>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDebug>

#include <algorithm>
#include <utility>

namespace {

const QLatin1String service("org.ofono");
const QLatin1String filterInterface("org.cobalt.ofono.mdm.ParleyFilter");
const QLatin1String dialPath("/mdm/parleyfilter/dial");
const QLatin1String incomingPath("/mdm/parleyfilter/incoming");

/// A filter object. Its interface is known, so that no introspection is needed, as a QDBusInterface
/// would do. It is valid if "org.ofono" has an owner.
class FilterInterface : public QDBusAbstractInterface
{
public:
    FilterInterface(const QString &path, QObject *parent)
        : QDBusAbstractInterface(::service, path, filterInterface.latin1(),
                                 QDBusConnection::systemBus(), parent)
    {
    }
};

void registerFilterTypes()
{
    static const bool registered = [] {
        qRegisterMetaType<SimFiltersHelper::Rule>("SimFiltersHelper::Rule");
        qRegisterMetaType<SimFiltersHelper::RuleList>("SimFiltersHelper::RuleList");
        qDBusRegisterMetaType<SimFiltersHelper::Rule>();
        qDBusRegisterMetaType<SimFiltersHelper::RuleList>();
        return true;
    }();
    Q_UNUSED(registered)
}

} // namespace

QDBusArgument &operator<<(QDBusArgument &argument, const SimFiltersHelper::Rule &rule)
{
    argument.beginStructure();
    argument << rule.imsi << rule.action;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, SimFiltersHelper::Rule &rule)
{
    argument.beginStructure();
    argument >> rule.imsi >> rule.action;
    argument.endStructure();
    return argument;
}

SimFiltersHelper::SimFiltersHelper(QObject *parent)
    : QObject(parent)
    , m_simWatcher(new QOfonoSimWatcher(this))
    , m_dial{"dial", nullptr}
    , m_incoming{"incoming", nullptr}
{
    removeReceiveLimits(QDBusConnection::systemBus());
    m_simWatcher->setRequireSubscriberIdentity(true);
    connect(m_simWatcher, SIGNAL(validChanged()), this, SLOT(updateSims()));
    connect(m_simWatcher, SIGNAL(presentSimListChanged()), this, SLOT(updateSims()));

    registerFilterTypes();
    m_dial.interface = new FilterInterface(dialPath, this);
    m_incoming.interface = new FilterInterface(incomingPath, this);
    if (m_dial.interface->isValid() && m_incoming.interface->isValid()) {
        connectSignals();
        requestDialRules();
        requestIncomingRules();
    } else {
        qDebug() << "SimFiltersHelper::SimFiltersHelper(QObject*)"
                 << "Unable to connect to voice call filter interfaces!";
    }
}

/// Every signal makes the rules be read as a whole, whatever it says about the change.
void SimFiltersHelper::connectSignals()
{
    const std::pair<const Filter &, const char *> filters[] = {
        {m_dial, SLOT(requestDialRules())}, {m_incoming, SLOT(requestIncomingRules())}};
    for (const auto &[filter, slot] : filters) {
        for (const char *signal :
             {"RuleAdded", "RuleChanged", "RuleRemoved", "RulesChanged", "DefaultActionChanged"}) {
            if (!filter.interface->connection().connect(service, filter.interface->path(),
                                                        filterInterface, QLatin1String(signal),
                                                        this, slot))
                qWarning().nospace()
                    << "void SimFiltersHelper::connectSignals() Failed to connect to ("
                    << filter.name << ") " << signal;
        }
    }
}

void SimFiltersHelper::requestDialRules()
{
    requestRules(m_dial, &SimFiltersHelper::dialGetAllFinished);
}

void SimFiltersHelper::requestIncomingRules()
{
    requestRules(m_incoming, &SimFiltersHelper::incomingGetAllFinished);
}

/// A request while another one waits for its answer is dropped, and this is meant.
void SimFiltersHelper::requestRules(Filter &filter, ReplyHandler finished)
{
    if (filter.requestPending)
        return;
    if (m_activeImsis.isEmpty()) {
        if (m_simWatcher->isValid())
            applyNoSimState();
        return;
    }
    filter.requestPending = true;
    const QDBusPendingCall call = filter.interface->asyncCall(QStringLiteral("GetAll"));
    // Without a bus there is no call to watch, only its error.
    const bool hasFailed = call.isFinished() && call.isError();
    auto *watcher = new QDBusPendingCallWatcher(
        hasFailed ? QDBusPendingCall::fromError(call.error()) : call, this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, finished);
}

void SimFiltersHelper::dialGetAllFinished(QDBusPendingCallWatcher *watcher)
{
    getAllFinished(m_dial, watcher, &SimFiltersHelper::anyActiveSimCanDialChanged);
}

void SimFiltersHelper::incomingGetAllFinished(QDBusPendingCallWatcher *watcher)
{
    getAllFinished(m_incoming, watcher, &SimFiltersHelper::anyActiveSimCanReceiveChanged);
}

void SimFiltersHelper::getAllFinished(Filter &filter, QDBusPendingCallWatcher *watcher,
                                      Notification changed)
{
    watcher->deleteLater();
    filter.requestPending = false;
    const bool allowed = evaluate(filter, *watcher);
    const bool changes = allowed != filter.allowed;
    filter.allowed = allowed;
    setReady(filter);
    if (changes)
        Q_EMIT(this->*changed)();
}

bool SimFiltersHelper::evaluate(const Filter &filter, const QDBusPendingCall &call) const
{
    const QDBusPendingReply<uint, uint, RuleList> reply = call;
    if (reply.isError()) {
        qDebug().nospace() << "(" << filter.name << ") GetAll() failed: " << reply.error().name()
                           << " " << reply.error().message();
        // Filters that cannot be read stop no call.
        return m_simWatcher->isValid() && m_simWatcher->presentSimCount() > 0;
    }
    return anyActiveSimAllowed(reply.argumentAt<1>(), reply.argumentAt<2>());
}

bool SimFiltersHelper::anyActiveSimAllowed(quint32 defaultAction, const RuleList &rules) const
{
    return std::any_of(m_activeImsis.cbegin(), m_activeImsis.cend(), [&](const QString &imsi) {
        const auto rule = std::find_if(rules.cbegin(), rules.cend(),
                                       [&imsi](const Rule &one) { return one.imsi == imsi; });
        return (rule == rules.cend() ? defaultAction : rule->action) == Allow;
    });
}

void SimFiltersHelper::setReady(Filter &filter)
{
    const bool before = ready();
    filter.ready = true;
    if (ready() && !before)
        Q_EMIT readyChanged();
}

void SimFiltersHelper::updateSims()
{
    QStringList imsis;
    if (m_simWatcher->isValid()) {
        const auto sims = m_simWatcher->presentSimList();
        for (const auto &sim : sims)
            imsis.append(sim->subscriberIdentity());
    }
    if (imsis == m_activeImsis) {
        if (imsis.isEmpty() && m_simWatcher->isValid())
            applyNoSimState();
        return;
    }
    const int countBefore = activeSimCount();
    m_activeImsis = imsis;
    if (activeSimCount() != countBefore)
        Q_EMIT activeSimCountChanged();
    requestDialRules();
    requestIncomingRules();
}

void SimFiltersHelper::applyNoSimState()
{
    const bool canDialBefore = std::exchange(m_dial.allowed, true);
    const bool canReceiveBefore = std::exchange(m_incoming.allowed, true);
    setReady(m_dial);
    setReady(m_incoming);
    if (!canDialBefore)
        Q_EMIT anyActiveSimCanDialChanged();
    if (!canReceiveBefore)
        Q_EMIT anyActiveSimCanReceiveChanged();
}
