// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "arguments.h"

#include "places.h"
#include "prompt.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <algorithm>

namespace {

bool hasDisplay()
{
    const auto isSet = [](const char *variable) { return !qEnvironmentVariableIsEmpty(variable); };
    return isSet("DISPLAY") || isSet("WAYLAND_DISPLAY") || isSet("QT_QPA_PLATFORM");
}

} // namespace

Arguments Arguments::parse(int argc, char *argv[])
{
    const Places places = Places::find();
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Displays this help."));
    const QCommandLineOption version(QStringLiteral("version"),
                                     QStringLiteral("Displays the version."));
    const QCommandLineOption ui(QStringLiteral("ui"), QStringLiteral("The call UI to run."),
                                QStringLiteral("program"), places.ui);
    const QCommandLineOption script(
        QStringLiteral("script"),
        QStringLiteral("Takes the commands from a file; the first that fails ends the run."),
        QStringLiteral("file"));
    const QCommandLineOption tour(
        QStringLiteral("tour"),
        QStringLiteral("Plays the tour: what a handset does with its call UI, each step checked."));

    const QCommandLineOption state(
        QStringLiteral("state"),
        QStringLiteral("Keeps alarms, SIMs and rules in a folder for the next time; they are "
                       "discarded at exit otherwise."),
        QStringLiteral("folder"));
    const QCommandLineOption qml(QStringLiteral("qml"), QStringLiteral("The screens to show."),
                                 QStringLiteral("file"), places.screens);
    const QCommandLineOption watch(
        QStringLiteral("watch"),
        QStringLiteral("Starts the call UI again when QML code in the screens' folder changes."));
    const QCommandLineOption noPanel(
        QStringLiteral("no-panel"),
        QStringLiteral("Opens no control panel; without a display there is none anyway."));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("A handset on a desktop: runs the call UI with the demo screens on private "
                       "buses, and takes commands\n"
                       "from standard input and from its control panel. The command \"help\" lists "
                       "them."));
    parser.addOptions({help, version, ui, qml, watch, script, tour, state, noPanel});
    QStringList words;
    std::transform(argv, argv + argc, std::back_inserter(words),
                   [](const char *argument) { return QString::fromLocal8Bit(argument); });

    Arguments arguments;
    if (!parser.parse(words))
        arguments.error = parser.errorText();
    else if (const QStringList surplus = parser.positionalArguments(); !surplus.isEmpty())
        arguments.error = QStringLiteral("Unexpected argument '%1'.").arg(surplus.constFirst());
    if (parser.isSet(help)) {
        const QCoreApplication application(argc, argv); // The text has its name.
        arguments.answer = parser.helpText();
    } else if (parser.isSet(version)) {
        arguments.answer = QStringLiteral("parley-handset " PARLEY_VERSION "\n");
    }
    arguments.handset.uiProgram = parser.value(ui);
    arguments.handset.catalogueFolder = places.translations;
    arguments.handset.qmlFile = parser.value(qml);
    arguments.handset.stateFolder = parser.value(state);
    arguments.handset.hasPanel = hasDisplay() && !parser.isSet(noPanel);
    arguments.handset.watches = parser.isSet(watch);
    arguments.isTour = parser.isSet(tour);
    arguments.script = arguments.isTour ? places.tour : parser.value(script);
    arguments.handset.hasPrompt = arguments.script.isEmpty() && Prompt::isPossible();
    if (!arguments.script.isEmpty())
        arguments.handset.atFailure = Interpreter::AtFailure::Stop;
    return arguments;
}
