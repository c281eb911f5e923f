// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "arguments.h"

#include "places.h"
#include "prompt.h"
#include "runservice.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace {

bool hasDisplay()
{
    const auto isSet = [](const char *variable) { return !qEnvironmentVariableIsEmpty(variable); };
    return isSet("DISPLAY") || isSet("WAYLAND_DISPLAY") || isSet("QT_QPA_PLATFORM");
}

/// Returns what is wrong with options that are given together; empty if nothing is.
QString conflict(const QCommandLineParser &parser)
{
    const auto both = [&parser](const char *one, const char *other) {
        return parser.isSet(QString::fromLatin1(one)) && parser.isSet(QString::fromLatin1(other));
    };
    using Pair = std::pair<const char *, const char *>;
    for (const auto &[option, needed] : {Pair("junit", "tests"), Pair("replay", "watch")}) {
        if (both(option, option) && !both(option, needed))
            return QStringLiteral("--%1 needs --%2.")
                .arg(QLatin1String(option), QLatin1String(needed));
    }
    // Each script of a folder has a handset of its own, which keeps nothing.
    for (const auto &[one, other] :
         {Pair("tests", "script"), Pair("tests", "tour"), Pair("tests", "state"),
          Pair("tests", "watch"), Pair("script", "tour")}) {
        if (both(one, other))
            return QStringLiteral("--%1 and --%2 cannot be combined.")
                .arg(QLatin1String(one), QLatin1String(other));
    }
    return {};
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
    const QCommandLineOption replay(
        QStringLiteral("replay"),
        QStringLiteral("With --watch: sends the last request again after that."));
    const QCommandLineOption tests(
        QStringLiteral("tests"),
        QStringLiteral("Runs each file named *.script in a folder on a handset of its own, "
                       "without a display."),
        QStringLiteral("folder"));
    const QCommandLineOption junit(
        QStringLiteral("junit"),
        QStringLiteral("With --tests: writes a report for CI systems, in the form of JUnit."),
        QStringLiteral("file"));
    const QCommandLineOption ofono(
        QStringLiteral("ofono"),
        QStringLiteral("Runs the real oFono on simulated modems in the place of the simulated "
                       "telephony."));
    const QCommandLineOption kit(
        QStringLiteral("kit"),
        QStringLiteral("Prints the folder of the QML modules with which tools run screens "
                       "(QML2_IMPORT_PATH)."));
    const QCommandLineOption noPanel(
        QStringLiteral("no-panel"),
        QStringLiteral("Opens no control panel; without a display there is none anyway."));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("A handset on a desktop: runs the call UI with its screens on private "
                       "buses, and takes commands\n"
                       "from standard input and from its control panel. The command \"help\" lists "
                       "them."));
    parser.addOptions({help, version, ui, qml, watch, replay, script, tour, tests, junit, ofono,
                       kit, state, noPanel});
    QStringList words;
    std::transform(argv, argv + argc, std::back_inserter(words),
                   [](const char *argument) { return QString::fromLocal8Bit(argument); });

    Arguments arguments;
    if (!parser.parse(words))
        arguments.error = parser.errorText();
    else if (const QStringList surplus = parser.positionalArguments(); !surplus.isEmpty())
        arguments.error = QStringLiteral("Unexpected argument '%1'.").arg(surplus.constFirst());
    else
        arguments.error = conflict(parser);
    if (parser.isSet(help)) {
        const QCoreApplication application(argc, argv); // The text has its name.
        arguments.answer = parser.helpText();
    } else if (parser.isSet(version)) {
        arguments.answer = QStringLiteral("parley-handset " PARLEY_VERSION "\n");
    } else if (parser.isSet(kit)) {
        arguments.answer = places.kit + QLatin1Char('\n');
    } else if (arguments.error.isEmpty() && !QFileInfo(parser.value(qml)).isFile()) {
        arguments.error = QStringLiteral("There is no file %1.").arg(parser.value(qml));
    }
    if (parser.isSet(ofono) && parser.isSet(tour) && arguments.error.isEmpty())
        arguments.error = QStringLiteral("The tour needs filter rules, which oFono does not have.");
    else if (parser.isSet(ofono) && arguments.error.isEmpty())
        arguments.error = whyNoOfono();
    arguments.handset.hasOfono = parser.isSet(ofono);
    arguments.handset.uiProgram = parser.value(ui);
    arguments.handset.catalogueFolder = places.translations;
    arguments.handset.qmlFile = parser.value(qml);
    arguments.handset.phoneFolder = places.phone;
    arguments.handset.moduleFolder = places.modules;
    arguments.handset.kitFolder = places.kit;
    arguments.handset.stateFolder = parser.value(state);
    arguments.handset.hasPanel = hasDisplay() && !parser.isSet(noPanel);
    arguments.handset.watches = parser.isSet(watch);
    arguments.handset.replays = parser.isSet(replay);
    arguments.testFolder = parser.value(tests);
    arguments.reportFile = parser.value(junit);
    arguments.isTour = parser.isSet(tour);
    arguments.script = arguments.isTour ? places.tour : parser.value(script);
    arguments.handset.hasPrompt = arguments.script.isEmpty() && Prompt::isPossible();
    if (!arguments.script.isEmpty())
        arguments.handset.atFailure = Interpreter::AtFailure::Stop;
    return arguments;
}
