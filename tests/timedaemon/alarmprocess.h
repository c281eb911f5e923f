// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "childprocess.h"
#include "sandbox.h"

#include <QStringList>

/// The built parley-alarm, which PARLEY_ALARM names, as a process. A test has to claim every line
/// that it logs.
class AlarmProcess : public ChildProcess
{
    Q_OBJECT

public:
    AlarmProcess(const QString &sessionBus, const QString &systemBus);

    /// The files that the process finds at fixed paths.
    Sandbox &sandbox() { return m_sandbox; }
    void setEnvironment(const QString &name, const QString &value);

    void start(const QStringList &arguments = {});

    /// Waits for a line that begins with \a prefix, and takes it.
    bool logs(const QString &prefix);
    /// Takes the lines of the log that were not taken so far.
    QStringList takeLog();
    /// Waits for its end. Returns the exit status, or -1 if it does not end or ends by a signal.
    int waitForEnd();

private:
    void readLog();

    Sandbox m_sandbox;
    QStringList m_log;
};
