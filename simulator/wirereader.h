// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QByteArray>
#include <QString>
#include <QtEndian>

/// Reads values one after another from bytes in D-Bus's wire format. Where the bytes end too early
/// or are no such value, that and every later read gives zero or nothing, and isOk() is false.
class WireReader
{
public:
    enum class Order { LittleEndian, BigEndian };

    WireReader(QByteArray bytes, Order order);

    bool isOk() const { return m_isOk; }
    int position() const { return m_position; }

    /// Skips the padding before a value that is aligned to \a size bytes.
    void align(int size);

    /// A number, at the next multiple of its own size.
    template <typename Number>
    Number number()
    {
        constexpr int size = sizeof(Number);
        align(size);
        if (!has(size))
            return {};
        const char *at = m_bytes.constData() + m_position;
        m_position += size;
        return m_order == Order::BigEndian ? qFromBigEndian<Number>(at)
                                           : qFromLittleEndian<Number>(at);
    }

    /// A string or an object path.
    QString string();
    QByteArray signature();

private:
    bool has(qint64 size);
    QByteArray text(qint64 size);

    const QByteArray m_bytes;
    const Order m_order;
    int m_position = 0;
    bool m_isOk = true;
};
