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

/// Runs the examples of a page, in their order, on a handset where all that the page speaks of is
/// there: the services, and a SIM that may not dial.
///
/// - "qml" is the screens from there on; before the first one, the probe is.
/// - "sh" is run by a shell; it is to end well and say nothing.
/// - "console" has commands, each behind "$ ", and what they print.
/// - "console guest" is the same where the commands are run by somebody without privileges; 4242 is
///   any process id.
/// - "log" has the lines that the call UI has logged since the screens were loaded; "guest" and
///   "users" are any user and group.
/// - "json" is the file of the quick replies, which are to be shown.
/// - "not-run" in the kind is what its name says.
class ExampleRunner
{
public:
    ExampleRunner();
    ~ExampleRunner();

    /// Starts the services. Whether they are there.
    bool start();
    /// Why \a block is not true, or nothing.
    QString run(const Document::Block &block);
    /// Ends the call UI and the services; the lines that they have logged and no block has.
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
