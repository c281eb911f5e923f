// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QCoreApplication>
#include <QProcess>

/// A process that ends with the object, and with this process however that ends.
///
/// It runs in a process group of its own, so that Ctrl-C on a terminal reaches this process alone,
/// which then takes it down in order.
class ChildProcess : public QProcess
{
    Q_OBJECT

public:
    using QProcess::QProcess;
    /// Stops it.
    ~ChildProcess() override;

    /// Ends the process, a stopped one too: asks it (SIGTERM), and kills it if it takes longer than
    /// two seconds. Returns when it has ended; signals are not emitted meanwhile.
    void stop();

protected:
    void setupChildProcess() override;

private:
    Q_DISABLE_COPY(ChildProcess)

    const qint64 m_parentPid = QCoreApplication::applicationPid();
};
