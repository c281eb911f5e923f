// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QDBusContext>
#include <QObject>
#include <QStringList>

/// The service through which other processes of the handset drive the call UI.
///
/// While an object of this class exists, it offers the interface "com.nimbo.parley.ui" at the path
/// "/" of the session bus; with the first one the process takes the name "com.nimbo.parley.ui".
/// Every method call becomes the signal of the same name, which is emitted before the caller gets
/// its reply. The receiver decides what "show" or "dial" means on the screen.
///
/// If the path or the name is not available, a warning is logged, and the object is a working
/// QObject that requests under the name do not reach. Nothing is retried.
///
/// A handler may destroy the object.
class ParleyUiAdaptor : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_DISABLE_COPY(ParleyUiAdaptor)

public:
    explicit ParleyUiAdaptor(QObject *parent = nullptr);

    /// Returns whether the process that sent the current call may use a guarded method. It may if
    /// it is this process itself, the owner of one of \a exemptServices (bus names), a process of
    /// group "privileged", or one of user "root".
    ///
    /// If it may not, this function sends the caller org.freedesktop.DBus.Error.AccessDenied and
    /// logs a warning; the method only has to return. A caller whose process the bus daemon itself
    /// does not name is refused. Call this function only while a call from the bus is being
    /// handled. It blocks for one round trip to the bus daemon, and for one more for each exempt
    /// service.
    bool isPrivilegedCaller(const QStringList &exemptServices);

Q_SIGNALS:
    /// Bring the call UI to the front. \a args are those of the caller, and may be empty.
    void show(QStringList args);
    /// Bring the ongoing call to the front.
    void showOngoing();
    /// Open the URLs in \a arg, which has at least one element. They are as the caller sent them.
    void openUrl(QStringList arg);
    /// Call \a number, which may be empty.
    void dial(QString number);
    /// Call \a number through the modem with the object path \a modemPath.
    void dialViaModem(QString modemPath, QString number);
    /// Say that the cellular network cannot be used.
    void showCellularErrorDialog();
    /// Open the contact card of \a number.
    void openContactCard(QString number);
    /// Answer the incoming call, or end the ongoing one. Only trusted processes get this far.
    void toggleCall();
};
