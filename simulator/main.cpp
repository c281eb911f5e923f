// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "arguments.h"
#include "handset.h"
#include "handsetpart.h"
#include "linereader.h"
#include "processsignals.h"
#include "prompt.h"
#include "screentests.h"

#include <QFile>
#include <QGuiApplication>

#include <cstdio>
#include <memory>

#include <unistd.h>

namespace {

bool isSet(const char *variable)
{
    return !qEnvironmentVariableIsEmpty(variable);
}

/// Qt's support of displays looks for the session bus of the user. Where there is none, libdbus
/// would start one, which nobody would end.
void startNoBus()
{
    const QString ofTheUser = qEnvironmentVariable("XDG_RUNTIME_DIR") + QLatin1String("/bus");
    if (!isSet("DBUS_SESSION_BUS_ADDRESS") && !QFile::exists(ofTheUser))
        qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
}

/// Without an X display, Qt would look for one all the same in some sessions.
void chooseDisplay()
{
    if (isSet("WAYLAND_DISPLAY") && !isSet("DISPLAY") && !isSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "wayland");
}

std::unique_ptr<QCoreApplication> makeApplication(bool hasPanel, int &argc, char *argv[])
{
    if (!hasPanel)
        return std::make_unique<QCoreApplication>(argc, argv);
    ProcessSignals::block();
    Panel::prepare();
    startNoBus();
    chooseDisplay();
    return std::make_unique<QGuiApplication>(argc, argv);
}

void runScript(QFile &script, Interpreter &interpreter)
{
    const QStringList lines = Transcript::linesOf(QString::fromUtf8(script.readAll()).trimmed());
    for (const QString &line : lines)
        interpreter.enqueue(line);
    interpreter.endInput();
}

std::unique_ptr<Prompt> makePrompt(Handset &handset, ProcessSignals &signals)
{
    Interpreter &interpreter = handset.interpreter();
    const Transcript &transcript = handset.transcript();
    auto prompt = std::make_unique<Prompt>(
        [&interpreter](const QString &line) { return interpreter.completions(line); });
    QObject::connect(prompt.get(), &Prompt::lineRead, &interpreter, &Interpreter::enqueue);
    QObject::connect(prompt.get(), &Prompt::ended, &interpreter, &Interpreter::endInput);
    QObject::connect(&transcript, &Transcript::aboutToSay, prompt.get(), &Prompt::hide);
    QObject::connect(&transcript, &Transcript::said, prompt.get(), &Prompt::show);
    QObject::connect(&signals, &ProcessSignals::terminalChanged, prompt.get(), &Prompt::redraw);
    return prompt;
}

std::unique_ptr<LineReader> readLines(Interpreter &interpreter, bool hasPanel)
{
    auto lines = std::make_unique<LineReader>(STDIN_FILENO);
    QObject::connect(lines.get(), &LineReader::lineRead, &interpreter, &Interpreter::enqueue);
    // With a panel, the end of standard input does not end the session.
    if (!hasPanel)
        QObject::connect(lines.get(), &LineReader::ended, &interpreter, &Interpreter::endInput);
    return lines;
}

void endAtSignals(const ProcessSignals &signals)
{
    QObject::connect(&signals, &ProcessSignals::terminated, QCoreApplication::instance(),
                     [](int signal) { QCoreApplication::exit(128 + signal); });
}

void end(bool succeeded)
{
    QCoreApplication::exit(succeeded ? EXIT_SUCCESS : EXIT_FAILURE);
}

/// Returns the arguments of the handsets that run tests.
QStringList handsetArguments(const Arguments &arguments)
{
    QStringList all{QStringLiteral("--ui"), arguments.handset.uiProgram, QStringLiteral("--qml"),
                    arguments.handset.qmlFile};
    if (arguments.handset.hasOfono)
        all.append(QStringLiteral("--ofono"));
    return all;
}

int runTests(const Arguments &arguments, int &argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const ProcessSignals signals;
    endAtSignals(signals);
    ScreenTests tests({arguments.testFolder, arguments.reportFile, handsetArguments(arguments)});
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
    if (!arguments.answer.isEmpty()) {
        std::fputs(qUtf8Printable(arguments.answer), stdout);
        return EXIT_SUCCESS;
    }

    if (arguments.isTour) {
        // The tour checks texts of the screens, which it has in English.
        qputenv("LC_ALL", "C.UTF-8");
        qunsetenv("LANGUAGE");
    }
    if (!arguments.testFolder.isEmpty())
        return runTests(arguments, argc, argv);

    const bool hasPanel = arguments.handset.hasPanel;
    const auto application = makeApplication(hasPanel, argc, argv);
    ProcessSignals signals;
    endAtSignals(signals);

    const bool isScripted = !arguments.script.isEmpty();
    QFile script(arguments.script);
    if (isScripted && !script.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "%s: %s\n", qUtf8Printable(arguments.script),
                     qUtf8Printable(script.errorString()));
        return EXIT_FAILURE;
    }

    Handset handset(arguments.handset);
    std::unique_ptr<Prompt> prompt;
    std::unique_ptr<LineReader> lines;
    if (isScripted)
        runScript(script, handset.interpreter());
    else if (arguments.handset.hasPrompt)
        prompt = makePrompt(handset, signals);
    else
        lines = readLines(handset.interpreter(), hasPanel);
    // Queued, because it may be emitted before the event loop runs.
    QObject::connect(&handset, &Handset::ended, application.get(), &end, Qt::QueuedConnection);
    if (!handset.start())
        return EXIT_FAILURE;
    if (hasPanel && !isScripted)
        handset.interpreter().enqueue(QStringLiteral("show"));
    return QCoreApplication::exec();
}
