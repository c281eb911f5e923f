// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "controlgroup.h"

#include <QDebug>
#include <QFile>

void joinControlGroup(QFile &tasks)
{
    if (!tasks.open(QIODevice::WriteOnly)) {
        qWarning().noquote() << "Could not open" << tasks.fileName() << "for disabling caching";
        return;
    }
    tasks.write("0"); // "0" stands for the process that writes it.
    tasks.close();
}
