// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "qt5and6.h"

#include <QCoreApplication>

/// A process that ends when the object is destroyed, and when this process ends for any reason.
///
/// It has a process group of its own. Ctrl-C on a terminal therefore reaches only this process,
/// which then ends its children in order.
class ChildProcess : public PreparedProcess
{
    Q_OBJECT

public:
    using PreparedProcess::PreparedProcess;
    /// Stops it.
    ~ChildProcess() override;

    /// Ends the process, even if it is stopped. Sends SIGTERM, and SIGKILL after two seconds.
    /// Returns when the process has ended. No signal of this object is emitted meanwhile.
    void stop();

protected:
    void prepare() override;

private:
    Q_DISABLE_COPY(ChildProcess)

    const qint64 m_parentPid = QCoreApplication::applicationPid();
};
