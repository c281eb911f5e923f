// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "wirereader.h"

#include <utility>

WireReader::WireReader(QByteArray bytes, Order order)
    : m_bytes(std::move(bytes))
    , m_order(order)
{
}

void WireReader::align(int size)
{
    const int padding = (size - m_position % size) % size;
    if (has(padding))
        m_position += padding;
}

QString WireReader::string()
{
    return QString::fromUtf8(text(number<quint32>()));
}

QByteArray WireReader::signature()
{
    return text(number<quint8>());
}

bool WireReader::has(qint64 size)
{
    m_isOk = m_isOk && size <= m_bytes.size() - m_position;
    return m_isOk;
}

/// The zero byte behind it is read, too.
QByteArray WireReader::text(qint64 size)
{
    if (!has(size + 1))
        return {};
    QByteArray bytes = m_bytes.mid(m_position, static_cast<int>(size));
    m_position += static_cast<int>(size) + 1;
    return bytes;
}
