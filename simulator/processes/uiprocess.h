// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "childprocess.h"

#include <QProcessEnvironment>

/// The call UI as a process of its own, in a world of its own: its buses, home and settings are
/// those it is given here, whatever those of this process are.
class UiProcess : public ChildProcess
{
    Q_OBJECT

public:
    struct World
    {
        QString sessionBus; ///< Address; empty for none.
        QString systemBus; ///< Address; empty for none.
        QString folder; ///< Holds the home and the settings; must exist and be writable.
    };

    explicit UiProcess(const World &world, QObject *parent = nullptr);

    /// Starts \a program with \a arguments. It draws off screen where there is no display.
    void start(const QString &program, const QStringList &arguments);

    /// Emits logged() for every line that the process has written by now.
    void readLog();

Q_SIGNALS:
    /// A line of its log, without the newline.
    void logged(const QString &line);
    /// It has ended without being asked to, or could not be started; \a how is a sentence.
    void ended(const QString &how);

private:
    void emitLines();
    void reportError(QProcess::ProcessError error);
    void reportEnd(int code, QProcess::ExitStatus status);
};
