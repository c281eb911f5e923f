// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QObject>

/// Turns SIGINT, SIGQUIT, SIGTERM, SIGHUP and SIGPIPE into a Qt signal, so that what was started
/// can be taken down in the ordinary way. One object in a process, for as long as it runs.
class TerminationSignals : public QObject
{
    Q_OBJECT

public:
    explicit TerminationSignals(QObject *parent = nullptr);
    ~TerminationSignals() override;

    /// Keeps the signals for the object that is made later. To be called before the first thread is
    /// started, which would take them otherwise.
    static void block();

Q_SIGNALS:
    void received(int signal);

private:
    Q_DISABLE_COPY(TerminationSignals)

    int m_descriptor = -1;
};
