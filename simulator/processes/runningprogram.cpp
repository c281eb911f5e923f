// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "runningprogram.h"

#include <QFile>

bool runsProgram(qint64 process, const QString &program)
{
    // A link to the executable would name the emulator.
    QFile maps(QStringLiteral("/proc/%1/maps").arg(process));
    const QByteArray endOfLine = ' ' + QFile::encodeName(program) + '\n';
    return maps.open(QIODevice::ReadOnly) && maps.readAll().contains(endOfLine);
}
