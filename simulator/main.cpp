// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "handset.h"
#include "linereader.h"
#include "service.h"
#include "terminationsignals.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>

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

Arguments parse(const QCoreApplication &application)
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
    QCommandLineOption service(QStringLiteral("service"), QString(), QStringLiteral("name"));
    service.setFlags(QCommandLineOption::HiddenFromHelp);

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("A handset on a desktop: runs the call UI with the demo screens on private "
                       "buses, and takes commands\n"
                       "from standard input. The command \"help\" lists them."));
    parser.addHelpOption();
    parser.addOptions({ui, qml, script, tour, state, service});
    parser.process(application);

    Arguments arguments;
    arguments.handset.uiProgram = parser.value(ui);
    arguments.handset.catalogueFolder = QStringLiteral(PARLEY_TRANSLATIONS);
    arguments.handset.qmlFile = parser.value(qml);
    arguments.handset.stateFolder = parser.value(state);
    arguments.service = parser.value(service);
    arguments.script = parser.isSet(tour) ? QStringLiteral(PARLEY_TOUR) : parser.value(script);
    if (!arguments.script.isEmpty())
        arguments.handset.atFailure = Interpreter::AtFailure::Stop;
    return arguments;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const Arguments arguments = parse(application);
    if (!arguments.service.isEmpty())
        return runService(arguments.service, arguments.handset.stateFolder);

    TerminationSignals terminationSignals;
    QObject::connect(&terminationSignals, &TerminationSignals::received, &application,
                     [](int signal) { QCoreApplication::exit(128 + signal); });

    QFile script(arguments.script);
    if (!arguments.script.isEmpty() && !script.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "%s: %s\n", qUtf8Printable(arguments.script),
                     qUtf8Printable(script.errorString()));
        return EXIT_FAILURE;
    }

    Handset handset(arguments.handset);
    LineReader lines(script.isOpen() ? script.handle() : STDIN_FILENO);
    QObject::connect(&lines, &LineReader::lineRead, &handset.interpreter(), &Interpreter::enqueue);
    QObject::connect(&lines, &LineReader::ended, &handset.interpreter(), &Interpreter::endInput);
    const auto end = [](bool succeeded) {
        QCoreApplication::exit(succeeded ? EXIT_SUCCESS : EXIT_FAILURE);
    };
    // Queued: it may come before there is an event loop to leave.
    QObject::connect(&handset, &Handset::ended, &application, end, Qt::QueuedConnection);
    return handset.start() ? QCoreApplication::exec() : EXIT_FAILURE;
}
