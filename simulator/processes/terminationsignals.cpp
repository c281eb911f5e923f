// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "terminationsignals.h"

#include <QSocketNotifier>

#include <csignal>

#include <sys/signalfd.h>
#include <unistd.h>

namespace {

sigset_t terminationSet()
{
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : {SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGPIPE})
        sigaddset(&set, signal);
    return set;
}

} // namespace

TerminationSignals::TerminationSignals(QObject *parent)
    : QObject(parent)
{
    const sigset_t set = terminationSet();
    block();
    m_descriptor = signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);

    auto *notifier = new QSocketNotifier(m_descriptor, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] {
        signalfd_siginfo info = {};
        if (read(m_descriptor, &info, sizeof info) == sizeof info)
            Q_EMIT received(static_cast<int>(info.ssi_signo));
    });
}

void TerminationSignals::block()
{
    const sigset_t set = terminationSet();
    sigprocmask(SIG_BLOCK, &set, nullptr);
}

TerminationSignals::~TerminationSignals()
{
    close(m_descriptor);
}
