// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QObject>

/// Turns SIGINT, SIGQUIT, SIGTERM, SIGHUP and SIGPIPE into a Qt signal, so that a process can end
/// its children in order before it exits. A process has one such object for as long as it runs.
class TerminationSignals : public QObject
{
    Q_OBJECT

public:
    explicit TerminationSignals(QObject *parent = nullptr);
    ~TerminationSignals() override;

    /// Blocks the signals until the object exists. Call this before the first thread is started,
    /// because a thread that does not block them would receive them.
    static void block();

Q_SIGNALS:
    void received(int signal);

private:
    Q_DISABLE_COPY(TerminationSignals)

    int m_descriptor = -1;
};
