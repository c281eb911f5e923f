// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QByteArray>
#include <QtEndian>

/// Values in the little-endian wire format of D-Bus (D-Bus specification, "Marshaling").
class WireFormat
{
public:
    QByteArray bytes() const { return m_bytes; }
    qsizetype size() const { return m_bytes.size(); }

    void align(int boundary)
    {
        while (m_bytes.size() % boundary != 0)
            m_bytes.append('\0');
    }
    void addByte(char byte) { m_bytes.append(byte); }
    /// Adds an integer, or a value of another type that is aligned to its size.
    template <typename Integer>
    void add(Integer value)
    {
        align(sizeof value);
        Integer little = qToLittleEndian(value);
        m_bytes.append(reinterpret_cast<const char *>(&little), sizeof little);
    }
    void addString(const QByteArray &text)
    {
        add(static_cast<quint32>(text.size()));
        m_bytes.append(text).append('\0');
    }
    void addSignature(const QByteArray &signature)
    {
        m_bytes.append(static_cast<char>(signature.size())).append(signature).append('\0');
    }
    /// Adds an array whose elements \a addElements adds.
    template <typename Function>
    void addArray(int elementAlignment, Function addElements)
    {
        add(quint32(0));
        const auto lengthAt = m_bytes.size() - 4;
        align(elementAlignment);
        const auto start = m_bytes.size();
        addElements();
        qToLittleEndian(static_cast<quint32>(m_bytes.size() - start), m_bytes.data() + lengthAt);
    }
    void append(const QByteArray &bytes) { m_bytes.append(bytes); }

private:
    QByteArray m_bytes;
};
