// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "parleyuiadaptor.h"

#include "answers.h"
#include "receivelimits.h"

#include <QCoreApplication>
#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDebug>
#include <QFileInfo>

namespace {

/// Returns the process that owns the bus name \a name according to the bus daemon; 0 if there is
/// none. Blocks until the answer comes. An answer that another process has sent counts as none.
qint32 processOf(const QDBusConnection &bus, const QString &name)
{
    const QDBusMessage answer =
        bus.call(busQuestion(QStringLiteral("GetConnectionUnixProcessID"), name));
    if (!isFromBus(answer) || answer.type() != QDBusMessage::ReplyMessage)
        return 0;
    return static_cast<qint32>(answer.arguments().value(0).toUInt());
}

class Adaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.nimbo.parley.ui")

public:
    explicit Adaptor(ParleyUiAdaptor *ui)
        : QDBusAbstractAdaptor(ui)
        , m_ui(ui)
    {
    }

    // A handler may destroy both objects: nothing here touches a member after an emission.
public Q_SLOTS:
    void show(const QStringList &args) { Q_EMIT m_ui->show(args); }
    void showOngoing() { Q_EMIT m_ui->showOngoing(); }
    void openUrl(const QStringList &arg);
    bool dial(const QString &number);
    bool dialViaModem(const QString &modemPath, const QString &number);
    void showCellularErrorDialog() { Q_EMIT m_ui->showCellularErrorDialog(); }
    void openContactCard(const QString &number) { Q_EMIT m_ui->openContactCard(number); }
    void toggleCall();

private:
    ParleyUiAdaptor *const m_ui;
};

void Adaptor::openUrl(const QStringList &arg)
{
    if (arg.isEmpty())
        Q_EMIT m_ui->show(arg);
    else
        Q_EMIT m_ui->openUrl(arg);
}

bool Adaptor::dial(const QString &number)
{
    Q_EMIT m_ui->dial(number);
    return true;
}

bool Adaptor::dialViaModem(const QString &modemPath, const QString &number)
{
    Q_EMIT m_ui->dialViaModem(modemPath, number);
    return true;
}

void Adaptor::toggleCall()
{
    if (m_ui->isPrivilegedCaller({QStringLiteral("com.nimbo.canopy")}))
        Q_EMIT m_ui->toggleCall();
}

} // namespace

ParleyUiAdaptor::ParleyUiAdaptor(QObject *parent)
    : QObject(parent)
{
    new Adaptor(this);

    QDBusConnection bus = QDBusConnection::sessionBus();
    removeReceiveLimits(bus);
    if (!bus.registerObject(QStringLiteral("/"), this, QDBusConnection::ExportAdaptors)) {
        qWarning("Failed to register the voice call service object on the path '/'");
        return;
    }
    if (!bus.registerService(QStringLiteral("com.nimbo.parley.ui")))
        qWarning("Failed to register the voice call service name 'com.nimbo.parley.ui'");
}

bool ParleyUiAdaptor::isPrivilegedCaller(const QStringList &exemptServices)
{
    const qint32 pid = processOf(connection(), message().service());
    if (pid == static_cast<qint32>(QCoreApplication::applicationPid()))
        return true;

    for (const QString &service : exemptServices) {
        // Both are 0 if the name has no owner and the caller has gone: this is no match.
        const qint32 owner = processOf(connection(), service);
        if (owner != 0 && owner == pid)
            return true;
    }

    const QFileInfo process(QStringLiteral("/proc/%1").arg(pid));
    const QString owner = process.owner();
    const QString group = process.group();
    if (group == QLatin1String("privileged") || owner == QLatin1String("root"))
        return true;

    qWarning().noquote() << "A call to"
                         << message().interface() + QLatin1Char('.') + message().member() << "from"
                         << "pid" << pid << "user" << owner << "group" << group << "was rejected";
    sendErrorReply(QDBusError::AccessDenied,
                   QStringLiteral("PID %1 is not in privileged group").arg(pid));
    return false;
}

#include "parleyuiadaptor.moc"
