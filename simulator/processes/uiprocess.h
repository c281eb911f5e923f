// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "childprocess.h"

#include <QProcessEnvironment>

/// Runs the call UI as a separate process. Its buses, home and settings are the ones given here,
/// not those of this process.
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

    /// Starts \a program with \a arguments. It draws off screen if there is no display.
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
