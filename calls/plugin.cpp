// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "callaudio.h"
#include "calls.h"
#include "messages.h"
#include "ringer.h"

#include <QQmlExtensionPlugin>
#include <QtQml>

/// The QML module com.nimbo.calls. It only registers types: the first object that is completed
/// connects to a bus.
class CallsPlugin : public QQmlExtensionPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QQmlExtensionInterface_iid)

public:
    void registerTypes(const char *uri) override
    {
        const QString notCreatable = QStringLiteral("This type cannot be created.");
        qmlRegisterUncreatableMetaObject(Telephony::staticMetaObject, uri, 1, 0, "Telephony",
                                         notCreatable);
        qmlRegisterUncreatableType<ServiceDialogue>(uri, 1, 0, "ServiceDialogue", notCreatable);
        qmlRegisterType<Calls>(uri, 1, 0, "Calls");
        qmlRegisterType<Messages>(uri, 1, 0, "Messages");
        qmlRegisterType<Ringer>(uri, 1, 0, "Ringer");
        qmlRegisterType<CallAudio>(uri, 1, 0, "CallAudio");
    }
};

#include "plugin.moc"
