// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "terminationsignal.h"

#include <QSocketNotifier>

#include <csignal>

#include <sys/signalfd.h>
#include <unistd.h>

TerminationSignal::TerminationSignal(QObject *parent)
    : QObject(parent)
{
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : {SIGTERM, SIGINT})
        sigaddset(&set, signal);
    sigprocmask(SIG_BLOCK, &set, nullptr);
    m_descriptor = signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);

    auto *notifier = new QSocketNotifier(m_descriptor, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] {
        signalfd_siginfo info = {};
        if (read(m_descriptor, &info, sizeof info) == sizeof info)
            Q_EMIT received();
    });
}

TerminationSignal::~TerminationSignal()
{
    close(m_descriptor);
}
