// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "childprocess.h"
#include "document.h"
#include "uiundertest.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

/// Runs the examples of a page in their order, on a handset that has everything that the pages
/// mention: the services, and a SIM that may not dial.
///
/// - "qml" is a file of screens, which run from there on. The probe runs before the first one.
/// - "sh" is run by a shell, and has to succeed without output.
/// - "console" has commands, each after "$ ", and their output.
/// - "console guest" is the same with a user without privileges; 4242 stands for any process id.
/// - "log" has the lines that the call UI has logged since the screens were loaded; "guest" and
///   "users" stand for any user and group.
/// - "qml FILE" and "text FILE" are a file below the folder in which commands are run.
/// - "json" is the file of the quick replies, all of which have to be shown.
/// - A block with "not-run" in its kind is not run.
class ExampleRunner
{
public:
    ExampleRunner();
    ~ExampleRunner();

    /// Returns whether the tools include the qmllint of the documentation, which is that of Qt 5.
    static bool hasLinter();

    /// Starts the services. Returns whether they run.
    bool start();
    /// Runs \a block. Returns why it is wrong, or nothing.
    QString run(const Document::Block &block);
    /// Ends the call UI and the services. Returns their lines in the log that no block has.
    QStringList end();

private:
    Q_DISABLE_COPY(ExampleRunner)

    struct Command
    {
        QString line;
        QStringList output;
    };
    struct Result
    {
        int status = -1;
        QStringList output;
    };

    static QVector<Command> commandsOf(const Document::Block &block);

    bool startService(const QString &name, const QString &busName, const QDBusConnection &bus);
    bool startSettings();
    bool startScreens(const QString &fileName);
    bool startProbe();
    QStringList endScreens();

    QString writeFile(const Document::Block &block);
    QString runScreens(const Document::Block &block);
    QString runShell(const Document::Block &block);
    QString runConsole(const Document::Block &block, const QStringList &prefix);
    QString checkRequest(const QString &command);
    QString checkLog(const Document::Block &block);
    QString checkReplies(const Document::Block &block);
    Result execute(const QStringList &command);
    QProcessEnvironment environment();

    UiUnderTest m_ui;
    QDBusConnection m_systemBus;
    std::vector<std::unique_ptr<ChildProcess>> m_services;
    bool m_hasScreens = false;
    bool m_hasProbe = false;
};
