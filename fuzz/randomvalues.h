// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "wireformat.h"

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <utility>

/// Makes values of any D-Bus type from the bytes of an input, which is followed by zeros.
/// Signatures are valid, because libdbus closes a connection that sends others.
class RandomValues
{
public:
    RandomValues(const std::uint8_t *data, std::size_t size)
        : m_next(data)
        , m_end(data + size)
    {
    }
    virtual ~RandomValues() = default;

    bool atEnd() const { return m_next == m_end; }
    std::uint8_t next() { return m_next == m_end ? std::uint8_t(0) : *m_next++; }

    quint64 nextNumber(int size)
    {
        quint64 number = 0;
        for (int i = 0; i < size; ++i)
            number = number << 8U | next();
        return number;
    }

    /// Returns UTF-8 text without NULs.
    virtual QByteArray nextText() { return nextText(next() / 4); }

    /// Returns one complete type.
    QByteArray makeType(int depth = 0)
    {
        static const QByteArray basic = QByteArrayLiteral("ybnqiuxtdsogv");
        const int choice = next();
        if (choice < 128 || depth == 6)
            return basic.mid(choice % basic.size(), 1);
        if (choice < 192)
            return 'a' + makeType(depth + 1);
        if (choice < 208)
            return "a{" + basic.mid(choice % (basic.size() - 1), 1) + makeType(depth + 1) + '}';
        QByteArray members;
        for (int left = choice % 3; left >= 0; --left)
            members += makeType(depth + 1);
        return '(' + members + ')';
    }

    /// Adds a value of each of the types in \a signature to the body.
    void addValues(const QByteArray &signature)
    {
        QByteArray left = signature;
        while (!left.isEmpty()) {
            const QByteArray type = firstType(left);
            addValue(type);
            left.remove(0, type.size());
        }
    }

    /// Adds a variant with a value of any type, or of \a type.
    void addVariant(QByteArray type = {})
    {
        if (type.isEmpty())
            type = ++m_variants < 8 ? makeType(4) : QByteArray("y");
        m_body.addSignature(type);
        addValue(type);
    }

    WireFormat &body() { return m_body; }
    /// Returns the body and begins another one.
    WireFormat takeBody()
    {
        m_variants = 0;
        return std::exchange(m_body, {});
    }

protected:
    QByteArray nextText(int size)
    {
        QByteArray bytes;
        for (int i = 0; i < size; ++i)
            bytes.append(static_cast<char>(next()));
        return QString::fromUtf8(bytes).remove(QChar(0)).toUtf8();
    }

private:
    /// Returns the first complete type of \a signature.
    static QByteArray firstType(const QByteArray &signature)
    {
        if (signature.startsWith('a'))
            return 'a' + firstType(signature.mid(1));
        int open = 0;
        int size = 0;
        do {
            const char type = signature.at(size++);
            if (type == '(' || type == '{')
                ++open;
            else if (type == ')' || type == '}')
                --open;
        } while (open > 0);
        return signature.left(size);
    }

    static int alignmentOf(char type)
    {
        switch (type) {
        case 'y':
        case 'g':
        case 'v':
            return 1;
        case 'n':
        case 'q':
            return 2;
        case 'x':
        case 't':
        case 'd':
        case '(':
        case '{':
            return 8;
        default:
            return 4;
        }
    }

    void addValue(const QByteArray &type)
    {
        switch (type.front()) {
        case 'y':
            m_body.addByte(static_cast<char>(next()));
            break;
        case 'b':
            m_body.add(quint32(next() % 2));
            break;
        case 'n':
        case 'q':
            m_body.add(static_cast<quint16>(nextNumber(2)));
            break;
        case 'i':
        case 'u':
            m_body.add(static_cast<quint32>(nextNumber(4)));
            break;
        case 'x':
        case 't':
        case 'd':
            m_body.add(nextNumber(8));
            break;
        case 's':
            m_body.addString(nextText());
            break;
        case 'o':
            m_body.addString("/path");
            break;
        case 'g':
            m_body.addSignature("a(su)");
            break;
        case 'v':
            addVariant();
            break;
        case 'a':
            m_body.addArray(alignmentOf(type.at(1)), [this, &type] {
                for (int left = next() % 4; left > 0; --left)
                    addValue(type.mid(1));
            });
            break;
        default:
            m_body.align(8);
            addValues(type.mid(1, type.size() - 2));
        }
    }

    const std::uint8_t *m_next;
    const std::uint8_t *m_end;
    WireFormat m_body;
    int m_variants = 0;
};
