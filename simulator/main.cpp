// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "arguments.h"
#include "handset.h"
#include "handsetpart.h"
#include "linereader.h"
#include "screentests.h"
#include "terminationsignals.h"

#include <QFile>
#include <QGuiApplication>

#include <cstdio>
#include <memory>

#include <unistd.h>

namespace {

std::unique_ptr<QCoreApplication> makeApplication(bool hasPanel, int &argc, char *argv[])
{
    if (!hasPanel)
        return std::make_unique<QCoreApplication>(argc, argv);
    TerminationSignals::block();
    Panel::prepare();
    return std::make_unique<QGuiApplication>(argc, argv);
}

void endAtSignals(const TerminationSignals &signals)
{
    QObject::connect(&signals, &TerminationSignals::received, QCoreApplication::instance(),
                     [](int signal) { QCoreApplication::exit(128 + signal); });
}

void end(bool succeeded)
{
    QCoreApplication::exit(succeeded ? EXIT_SUCCESS : EXIT_FAILURE);
}

int runTests(const Arguments &arguments, int &argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const TerminationSignals terminationSignals;
    endAtSignals(terminationSignals);
    ScreenTests tests({arguments.testFolder,
                       arguments.reportFile,
                       {QStringLiteral("--ui"), arguments.handset.uiProgram,
                        QStringLiteral("--qml"), arguments.handset.qmlFile}});
    // Queued, because it may be emitted before the event loop runs.
    QObject::connect(&tests, &ScreenTests::ended, &application, &end, Qt::QueuedConnection);
    tests.start();
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char *argv[])
{
    if (const auto status = runHandsetPart(argc, argv))
        return *status;

    const Arguments arguments = Arguments::parse(argc, argv);
    if (!arguments.error.isEmpty()) {
        std::fprintf(stderr, "parley-handset: %s\n", qUtf8Printable(arguments.error));
        return EXIT_FAILURE;
    }
    if (!arguments.help.isEmpty()) {
        std::fputs(qUtf8Printable(arguments.help), stdout);
        return EXIT_SUCCESS;
    }

    if (!arguments.kitFolder.isEmpty()) {
        std::puts(qUtf8Printable(arguments.kitFolder));
        return EXIT_SUCCESS;
    }
    if (!arguments.testFolder.isEmpty())
        return runTests(arguments, argc, argv);

    const bool hasPanel = arguments.handset.hasPanel;
    const auto application = makeApplication(hasPanel, argc, argv);
    const TerminationSignals terminationSignals;
    endAtSignals(terminationSignals);

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
    // With a panel, the end of standard input does not end the session.
    if (isScripted || !hasPanel)
        QObject::connect(&lines, &LineReader::ended, &handset.interpreter(),
                         &Interpreter::endInput);
    // Queued, because it may be emitted before the event loop runs.
    QObject::connect(&handset, &Handset::ended, application.get(), &end, Qt::QueuedConnection);
    if (!handset.start())
        return EXIT_FAILURE;
    if (hasPanel && !isScripted)
        handset.interpreter().enqueue(QStringLiteral("show"));
    return QCoreApplication::exec();
}
