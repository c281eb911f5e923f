// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QObject>

/// Turns signals to this process into Qt signals. A process has one such object for as long as it
/// runs.
class ProcessSignals : public QObject
{
    Q_OBJECT

public:
    explicit ProcessSignals(QObject *parent = nullptr);
    ~ProcessSignals() override;

    /// Blocks the signals until the object exists. Call this before the first thread is started,
    /// because a thread that does not block them would receive them.
    static void block();

Q_SIGNALS:
    /// SIGINT, SIGQUIT, SIGTERM, SIGHUP or SIGPIPE. The process can end its children in order
    /// before it exits.
    void terminated(int signal);
    /// SIGWINCH or SIGCONT: the terminal has another size, or is this process's again.
    void terminalChanged();

private:
    Q_DISABLE_COPY(ProcessSignals)

    int m_descriptor = -1;
};
