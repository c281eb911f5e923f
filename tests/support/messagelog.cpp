// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "messagelog.h"

#include <QMutex>

#include <utility>

namespace {

QMutex mutex;
QStringList lines;

QLatin1String nameOf(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return QLatin1String("debug");
    case QtInfoMsg:
        return QLatin1String("info");
    case QtWarningMsg:
        return QLatin1String("warning");
    case QtCriticalMsg:
        return QLatin1String("critical");
    case QtFatalMsg:
        return QLatin1String("fatal");
    }
    return QLatin1String("unknown");
}

} // namespace

MessageLog::MessageLog()
    : m_before(qInstallMessageHandler(handle))
{
    take();
}

MessageLog::~MessageLog()
{
    qInstallMessageHandler(m_before);
}

QStringList MessageLog::take()
{
    const QMutexLocker locker(&mutex);
    return std::exchange(lines, {});
}

void MessageLog::handle(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    const QMutexLocker locker(&mutex);
    lines.append(nameOf(type) + QLatin1String(": ") + text);
}
