// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "handset.h"
#include "linereader.h"
#include "panel.h"
#include "service.h"
#include "terminationsignals.h"

#include <QCommandLineParser>
#include <QFile>
#include <QGuiApplication>

#include <algorithm>
#include <cstdio>
#include <memory>

#include <unistd.h>

namespace {

struct Arguments
{
    Handset::Options handset;
    QString script; ///< Empty for standard input.
    QString service; ///< The one to be run instead of a handset; empty for none.
};

/// Asked before there is an application, because it decides which one there is.
bool wantsPanel(int argc, char *argv[])
{
    const auto forbids = [](const QByteArray &argument) {
        return argument == "--no-panel" || argument == "--service" || argument == "--help"
            || argument == "-h";
    };
    const auto isSet = [](const char *variable) { return !qEnvironmentVariableIsEmpty(variable); };
    return std::none_of(argv, argv + argc, forbids)
        && (isSet("DISPLAY") || isSet("WAYLAND_DISPLAY") || isSet("QT_QPA_PLATFORM"));
}

std::unique_ptr<QCoreApplication> makeApplication(bool hasPanel, int &argc, char *argv[])
{
    if (hasPanel)
        return std::make_unique<QGuiApplication>(argc, argv);
    return std::make_unique<QCoreApplication>(argc, argv);
}

Arguments parse(const QCoreApplication &application, bool hasPanel)
{
    const QCommandLineOption ui(QStringLiteral("ui"), QStringLiteral("The call UI to run."),
                                QStringLiteral("program"), QStringLiteral(PARLEY_UI));
    const QCommandLineOption script(
        QStringLiteral("script"),
        QStringLiteral("Takes the commands from a file; the first that fails ends the run."),
        QStringLiteral("file"));
    const QCommandLineOption tour(
        QStringLiteral("tour"),
        QStringLiteral("Plays the tour: what a handset does with its call UI, each step checked."));

    const QCommandLineOption state(
        QStringLiteral("state"),
        QStringLiteral(
            "Keeps alarms, SIMs and rules in a folder, for the next time; else they go in the "
            "end."),
        QStringLiteral("folder"));
    const QCommandLineOption qml(QStringLiteral("qml"), QStringLiteral("The screens to show."),
                                 QStringLiteral("file"), QStringLiteral(PARLEY_DEMO_QML));
    const QCommandLineOption watch(
        QStringLiteral("watch"),
        QStringLiteral("Starts the call UI again when QML code in the screens' folder changes."));
    const QCommandLineOption noPanel(
        QStringLiteral("no-panel"),
        QStringLiteral("Opens no control panel; without a display there is none anyway."));
    QCommandLineOption service(QStringLiteral("service"), QString(), QStringLiteral("name"));
    service.setFlags(QCommandLineOption::HiddenFromHelp);

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("A handset on a desktop: runs the call UI with the demo screens on private "
                       "buses, and takes commands\n"
                       "from standard input and from its control panel. The command \"help\" lists "
                       "them."));
    parser.addHelpOption();
    parser.addOptions({ui, qml, watch, script, tour, state, noPanel, service});
    parser.process(application);

    Arguments arguments;
    arguments.handset.uiProgram = parser.value(ui);
    arguments.handset.catalogueFolder = QStringLiteral(PARLEY_TRANSLATIONS);
    arguments.handset.qmlFile = parser.value(qml);
    arguments.handset.stateFolder = parser.value(state);
    arguments.handset.hasPanel = hasPanel;
    arguments.handset.watches = parser.isSet(watch);
    arguments.service = parser.value(service);
    arguments.script = parser.isSet(tour) ? QStringLiteral(PARLEY_TOUR) : parser.value(script);
    if (!arguments.script.isEmpty())
        arguments.handset.atFailure = Interpreter::AtFailure::Stop;
    return arguments;
}

} // namespace

int main(int argc, char *argv[])
{
    const bool hasPanel = wantsPanel(argc, argv);
    if (hasPanel) {
        TerminationSignals::block();
        Panel::prepare();
    }
    const auto application = makeApplication(hasPanel, argc, argv);
    const Arguments arguments = parse(*application, hasPanel);
    if (!arguments.service.isEmpty())
        return runService(arguments.service, arguments.handset.stateFolder);

    TerminationSignals terminationSignals;
    QObject::connect(&terminationSignals, &TerminationSignals::received, application.get(),
                     [](int signal) { QCoreApplication::exit(128 + signal); });

    const bool isScripted = !arguments.script.isEmpty();
    QFile script(arguments.script);
    if (isScripted && !script.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "%s: %s\n", qUtf8Printable(arguments.script),
                     qUtf8Printable(script.errorString()));
        return EXIT_FAILURE;
    }

    Handset handset(arguments.handset);
    LineReader lines(script.isOpen() ? script.handle() : STDIN_FILENO);
    QObject::connect(&lines, &LineReader::lineRead, &handset.interpreter(), &Interpreter::enqueue);
    // Without standard input there is still the panel.
    if (isScripted || !hasPanel)
        QObject::connect(&lines, &LineReader::ended, &handset.interpreter(),
                         &Interpreter::endInput);
    const auto end = [](bool succeeded) {
        QCoreApplication::exit(succeeded ? EXIT_SUCCESS : EXIT_FAILURE);
    };
    // Queued: it may come before there is an event loop to leave.
    QObject::connect(&handset, &Handset::ended, application.get(), end, Qt::QueuedConnection);
    if (!handset.start())
        return EXIT_FAILURE;

    std::unique_ptr<Panel> panel;
    if (hasPanel)
        panel = std::make_unique<Panel>(handset);
    if (hasPanel && !isScripted)
        handset.interpreter().enqueue(QStringLiteral("show"));
    return QCoreApplication::exec();
}
