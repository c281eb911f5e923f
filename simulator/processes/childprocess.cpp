// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "childprocess.h"

#include <QSignalBlocker>

#include <csignal>

#include <sys/prctl.h>
#include <unistd.h>

ChildProcess::~ChildProcess()
{
    stop();
}

void ChildProcess::stop()
{
    if (state() == NotRunning)
        return;
    const QSignalBlocker blocker(this);
    const auto pid = static_cast<pid_t>(processId());
    terminate();
    ::kill(pid, SIGCONT);
    if (!waitForFinished(2000)) {
        kill();
        waitForFinished();
    }
}

void ChildProcess::prepare()
{
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGKILL); // SIGTERM would not end a stopped process.
    if (getppid() != m_parentPid)
        _exit(EXIT_FAILURE);

    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}
