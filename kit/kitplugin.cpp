// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "kit.h"
#include "parleyuiadaptor.h"
#include "quickmessagesmodel.h"
#include "reminder.h"
#include "reminders.h"

#include <QQmlExtensionPlugin>
#include <QtQml>

/// The types and the root context of the process, for tools.
///
/// Its qmldir does not name the module, so Qt warns that the module cannot be protected. With a
/// name, Qt would refuse the import in the process, which has types of its own, if its user has the
/// kit among the import paths. As it is, the plugin does nothing there.
class KitPlugin : public QQmlExtensionPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QQmlExtensionInterface_iid)

public:
    void registerTypes(const char *uri) override;
    void initializeEngine(QQmlEngine *engine, const char *uri) override;

private:
    bool m_isTheProcess = false; ///< The process has types of its own, which stay.
};

void KitPlugin::registerTypes(const char *uri)
{
    m_isTheProcess = qmlTypeId(uri, 1, 0, "ParleyUiAdaptor") != -1;
    if (m_isTheProcess)
        return;
    qmlRegisterType<QuickMessagesModel>(uri, 1, 0, "QuickMessagesModel");
    qmlRegisterType<Reminder>(uri, 1, 0, "Reminder");
    qmlRegisterType<Reminders>(uri, 1, 0, "RemindersBase");
    qmlRegisterType<ParleyUiAdaptor>(uri, 1, 0, "ParleyUiAdaptor");
}

void KitPlugin::initializeEngine(QQmlEngine *engine, const char *)
{
    if (!m_isTheProcess)
        new Kit(engine); // The engine owns it.
}

#include "kitplugin.moc"
