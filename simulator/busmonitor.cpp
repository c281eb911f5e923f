// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "busmonitor.h"

#include <cstring>

namespace {

constexpr int maxSize = 0x10000; ///< Of what is kept of a message.

// It writes in the format of pcap: a header, and a header before each message.
constexpr int fileHeaderSize = 24;
struct RecordHeader
{
    quint32 seconds;
    quint32 microseconds;
    quint32 size; ///< Of what follows.
    quint32 wholeSize;
};

} // namespace

BusMonitor::BusMonitor(QObject *parent)
    : QObject(parent)
{
    m_process.setStandardInputFile(QProcess::nullDevice());
    connect(&m_process, &QProcess::readyReadStandardOutput, this, &BusMonitor::read);
    connect(&m_process, &QProcess::errorOccurred, this, &BusMonitor::reportError);
    connect(&m_process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
            &BusMonitor::reportEnd);
}

void BusMonitor::start(const QString &address)
{
    m_process.start(QStringLiteral("dbus-monitor"),
                    {QStringLiteral("--pcap"), QStringLiteral("--address"), address},
                    QIODevice::ReadOnly);
}

void BusMonitor::read()
{
    m_pending += m_process.readAllStandardOutput();
    if (!m_hasFileHeader && !takeFileHeader())
        return;
    while (takeMessage()) { }
}

bool BusMonitor::takeFileHeader()
{
    m_hasFileHeader = m_pending.size() >= fileHeaderSize;
    if (m_hasFileHeader)
        m_pending.remove(0, fileHeaderSize);
    return m_hasFileHeader;
}

bool BusMonitor::takeMessage()
{
    const auto skipped = static_cast<int>(qMin<qint64>(m_unwanted, m_pending.size()));
    m_pending.remove(0, skipped);
    m_unwanted -= skipped;

    RecordHeader header{};
    if (m_pending.size() < int(sizeof(header)))
        return false;
    std::memcpy(&header, m_pending.constData(), sizeof(header));
    const auto size = static_cast<int>(qMin<quint32>(header.size, maxSize));
    if (m_pending.size() < int(sizeof(header)) + size)
        return false;

    const QByteArray bytes = m_pending.mid(sizeof(header), size);
    m_pending.remove(0, int(sizeof(header)) + size);
    m_unwanted = qint64(header.size) - size;
    if (const auto message =
            BusMessage::parse(bytes, header.seconds * Q_INT64_C(1000000) + header.microseconds))
        report(*message);
    return true;
}

void BusMonitor::report(const BusMessage &message)
{
    // The bus takes its name away from a connection that becomes a monitor.
    if (!m_isReady && message.member == QLatin1String("NameLost")) {
        m_isReady = true;
        Q_EMIT ready();
        return;
    }
    Q_EMIT received(message);
}

void BusMonitor::reportError(QProcess::ProcessError error)
{
    if (error == QProcess::FailedToStart)
        Q_EMIT ended(QStringLiteral("could not be started: ") + m_process.errorString());
}

void BusMonitor::reportEnd(int code, QProcess::ExitStatus status)
{
    read();
    Q_EMIT ended(status == QProcess::CrashExit
                     ? QStringLiteral("was ended by signal %1").arg(code)
                     : QStringLiteral("has ended with status %1").arg(code));
}
