// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "commandline.h"
#include "controlgroup.h"
#include "heaptrim.h"
#include "qmltypes.h"
#include "rootcontext.h"
#include "specialsequences.h"
#include "translations.h"

#include <mdeclarativecache.h>
#include <mgconfitem.h>

#include <QFile>
#include <QGuiApplication>
#include <QQmlEngine>
#include <QQuickView>
#include <QTranslator>

#include <memory>

// The handset relies on the order of these steps. Objects are destroyed in the reverse order.
Q_DECL_EXPORT int main(int argc, char *argv[])
{
    QFile noSwapping(QStringLiteral("/sys/fs/cgroup/memory/noswapping/tasks"));
    joinControlGroup(noSwapping);
    QFile interactive(QStringLiteral("/sys/fs/cgroup/cpu,cpuacct/interactive/tasks"));
    joinControlGroup(interactive);

    QQuickWindow::setDefaultAlphaBuffer(true);
    const std::unique_ptr<QGuiApplication> application(MDeclarativeCache::qApplication(argc, argv));
    const std::unique_ptr<QQuickView> view(MDeclarativeCache::qQuickView());

    QCoreApplication::setApplicationName(QStringLiteral("parley"));
    QCoreApplication::setApplicationVersion(QStringLiteral(PARLEY_VERSION));
    QCoreApplication::setOrganizationName(QStringLiteral("com.nimbo"));
    QCoreApplication::setOrganizationDomain(QStringLiteral("nimbo.com"));

    const CommandLine commandLine(QCoreApplication::arguments());
    if (!commandLine.devel)
        QGuiApplication::setQuitOnLastWindowClosed(false);

    registerQmlTypes();

    QTranslator engineeringEnglish;
    installEngineeringEnglish(engineeringEnglish);
    QTranslator userLanguage;
    installUserLanguage(userLanguage);
    //: The name of the program.
    //% "Phone"
    view->setTitle(qtTrId("parley-ap-name"));

    const MGConfItem supportedSpecials(QStringLiteral("/desktop/nimbo/specials/supported"));
    const SpecialSequences specials = readSpecialSequences(supportedSpecials);
    fillRootContext(*view, specials, commandLine.prestart);

    // Connect by name: the slot belongs to QWindow. Qt.quit() in QML only closes the window.
    QObject::connect(view->engine(), SIGNAL(quit()), view.get(), SLOT(close()));
    view->setSource(QUrl::fromLocalFile(commandLine.qmlFile));
    if (!commandLine.prestart) {
        view->showFullScreen();
        view->requestActivate();
        view->raise();
    }

    const HeapTrim heapTrim(*view->engine());
    return QGuiApplication::exec();
}
