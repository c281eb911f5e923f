// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "transcript.h"

#include <cstdio>

void Transcript::say(const QString &line)
{
    std::puts(qUtf8Printable(line));
    std::fflush(stdout);
    Q_EMIT said(line);
}

void Transcript::beginCommand(const QString &line)
{
    m_happened.clear();
    say(QLatin1String("> ") + line);
    Q_EMIT commandBegun(line);
}

void Transcript::record(const QString &source, const QString &line)
{
    say(QLatin1String("  ") + source + QLatin1String(": ") + line);
    m_happened.append(line);
    Q_EMIT recorded();
}
