// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "processsignals.h"

#include <QSocketNotifier>

#include <csignal>

#include <sys/signalfd.h>
#include <unistd.h>

namespace {

sigset_t watched()
{
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : {SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGPIPE, SIGWINCH, SIGCONT})
        sigaddset(&set, signal);
    return set;
}

} // namespace

ProcessSignals::ProcessSignals(QObject *parent)
    : QObject(parent)
{
    const sigset_t set = watched();
    block();
    m_descriptor = signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);

    auto *notifier = new QSocketNotifier(m_descriptor, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] {
        signalfd_siginfo info = {};
        if (read(m_descriptor, &info, sizeof info) != sizeof info)
            return;
        if (info.ssi_signo == SIGWINCH || info.ssi_signo == SIGCONT)
            Q_EMIT terminalChanged();
        else
            Q_EMIT terminated(static_cast<int>(info.ssi_signo));
    });
}

void ProcessSignals::block()
{
    const sigset_t set = watched();
    sigprocmask(SIG_BLOCK, &set, nullptr);
}

ProcessSignals::~ProcessSignals()
{
    close(m_descriptor);
}
