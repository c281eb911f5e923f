// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "linereader.h"

#include <QSocketNotifier>

#include <array>
#include <cerrno>

#include <unistd.h>

LineReader::LineReader(int descriptor, QObject *parent)
    : QObject(parent)
    , m_descriptor(descriptor)
    , m_notifier(new QSocketNotifier(descriptor, QSocketNotifier::Read, this))
{
    connect(m_notifier, &QSocketNotifier::activated, this, &LineReader::read);
}

void LineReader::read()
{
    std::array<char, 4096> buffer{};
    const ssize_t size = ::read(m_descriptor, buffer.data(), buffer.size());
    if (size < 0 && (errno == EINTR || errno == EAGAIN))
        return;
    if (size > 0)
        m_pending.append(buffer.data(), static_cast<int>(size));

    for (auto end = m_pending.indexOf('\n'); end >= 0; end = m_pending.indexOf('\n')) {
        const QString line = QString::fromUtf8(m_pending.left(end));
        m_pending.remove(0, end + 1);
        Q_EMIT lineRead(line);
    }
    if (size <= 0) {
        m_notifier->setEnabled(false);
        if (!m_pending.isEmpty())
            Q_EMIT lineRead(QString::fromUtf8(m_pending));
        Q_EMIT ended();
    }
}
