// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "submittedmessage.h"

#include <utility>

namespace {

enum class Alphabet { Default, Bytes, Unicode };

/// The default alphabet (3GPP TS 23.038, 6.2.1). The escape character is a blank.
const char16_t defaultAlphabet[] =
    u"@£$¥èéùìòÇ\nØø\rÅåΔ_ΦΓΛΩΠΨΣΘΞ ÆæßÉ !\"#¤%&'()*+,-./0123456789:;<=>?"
    u"¡ABCDEFGHIJKLMNOPQRSTUVWXYZÄÖÑÜ§¿abcdefghijklmnopqrstuvwxyzäöñüà";

constexpr char escape = 0x1b;

/// The characters behind the escape character (3GPP TS 23.038, 6.2.1.1).
QChar extended(char code)
{
    switch (code) {
    case 0x0a:
        return QLatin1Char('\f');
    case 0x14:
        return QLatin1Char('^');
    case 0x28:
        return QLatin1Char('{');
    case 0x29:
        return QLatin1Char('}');
    case 0x2f:
        return QLatin1Char('\\');
    case 0x3c:
        return QLatin1Char('[');
    case 0x3d:
        return QLatin1Char('~');
    case 0x3e:
        return QLatin1Char(']');
    case 0x40:
        return QLatin1Char('|');
    case 0x65:
        return u'\u20ac';
    default:
        return QLatin1Char(' ');
    }
}

Alphabet alphabetOf(uchar scheme)
{
    const int alphabet = (scheme & 0x0c) >> 2;
    return alphabet == 2 ? Alphabet::Unicode : alphabet == 1 ? Alphabet::Bytes : Alphabet::Default;
}

/// Returns \a count septets that begin behind \a skipped others.
QByteArray septets(const QByteArray &bytes, int skipped, int count)
{
    QByteArray codes;
    for (int i = skipped; i < skipped + count; ++i) {
        const int bit = 7 * i;
        const int low = static_cast<uchar>(bytes.at(bit / 8));
        const int high = bit / 8 + 1 < bytes.size() ? static_cast<uchar>(bytes.at(bit / 8 + 1)) : 0;
        codes.append(static_cast<char>(((low | high << 8) >> bit % 8) & 0x7f));
    }
    return codes;
}

QString fromDefaultAlphabet(const QByteArray &codes)
{
    QString text;
    for (int i = 0; i < codes.size(); ++i) {
        if (codes.at(i) == escape && i + 1 < codes.size())
            text.append(extended(codes.at(++i)));
        else
            text.append(QChar(defaultAlphabet[static_cast<uchar>(codes.at(i))]));
    }
    return text;
}

QString fromUnicode(const QByteArray &bytes)
{
    QString text;
    for (int i = 0; i + 1 < bytes.size(); i += 2)
        text.append(QChar(static_cast<uchar>(bytes.at(i + 1)), static_cast<uchar>(bytes.at(i))));
    return text;
}

/// Takes bytes from the front. Once there are too few, all that it returns is zero.
class Reader
{
public:
    explicit Reader(QByteArray bytes)
        : m_bytes(std::move(bytes))
    {
    }

    bool isValid() const { return m_isValid; }
    int left() const { return static_cast<int>(m_bytes.size()) - m_at; }
    uchar byte() { return static_cast<uchar>(bytes(1).at(0)); }
    QByteArray bytes(int count)
    {
        m_isValid = m_isValid && count <= left();
        if (!m_isValid)
            return {count, '\0'};
        m_at += count;
        return m_bytes.mid(m_at - count, count);
    }

private:
    const QByteArray m_bytes;
    int m_at = 0;
    bool m_isValid = true;
};

/// Reads an address (3GPP TS 23.040, 9.1.2.5).
QString readNumber(Reader &reader)
{
    const int digits = reader.byte();
    const bool isInternational = (reader.byte() & 0x70) == 0x10;
    const QByteArray bytes = reader.bytes((digits + 1) / 2);
    QString number = isInternational ? QStringLiteral("+") : QString();
    for (int i = 0; i < digits; ++i) {
        const int value = static_cast<uchar>(bytes.at(i / 2)) >> (i % 2 * 4) & 0x0f;
        number.append(QLatin1Char("0123456789*#abc?"[value]));
    }
    return number;
}

/// Reads the header of the text, which says whether it is a part (3GPP TS 23.040, 9.2.3.24).
void readHeader(const QByteArray &header, SubmittedMessage &message)
{
    Reader reader(header);
    while (reader.isValid() && reader.left() >= 2) {
        const int element = reader.byte();
        const QByteArray data = reader.bytes(reader.byte());
        const auto at = [&data](int i) { return static_cast<uchar>(data.at(i)); };
        if (reader.isValid() && element == 0 && data.size() == 3) {
            message.reference = at(0);
            message.parts = at(1);
            message.part = at(2);
        } else if (reader.isValid() && element == 8 && data.size() == 4) {
            message.reference = at(0) * 256 + at(1);
            message.parts = at(2);
            message.part = at(3);
        }
    }
}

/// Returns how many bytes the validity period has (3GPP TS 23.040, 9.2.3.3).
int validityOf(uchar first)
{
    const int format = (first & 0x18) >> 3;
    return format == 0 ? 0 : format == 2 ? 1 : 7;
}

} // namespace

std::optional<SubmittedMessage> SubmittedMessage::read(const QByteArray &hex, int length)
{
    Reader reader(QByteArray::fromHex(hex));
    reader.bytes(reader.byte()); // The service centre.
    if (!reader.isValid() || reader.left() != length)
        return std::nullopt;

    SubmittedMessage message;
    const uchar first = reader.byte();
    reader.byte(); // The modem's own reference.
    message.number = readNumber(reader);
    reader.byte(); // The protocol.
    const Alphabet alphabet = alphabetOf(reader.byte());
    reader.bytes(validityOf(first));
    const int units = reader.byte();
    const bool isSubmit = (first & 0x03) == 1;
    const int size = alphabet == Alphabet::Default ? (units * 7 + 7) / 8 : units;
    const QByteArray data = reader.bytes(size);
    if (!reader.isValid() || !isSubmit || reader.left() != 0)
        return std::nullopt;

    int headerSize = 0;
    if ((first & 0x40) != 0) {
        headerSize = data.isEmpty() ? 1 : 1 + static_cast<uchar>(data.at(0));
        if (headerSize > data.size())
            return std::nullopt;
        readHeader(data.mid(1, headerSize - 1), message);
    }
    if (message.parts < 1 || message.part < 1 || message.part > message.parts)
        return std::nullopt;
    switch (alphabet) {
    case Alphabet::Default: {
        const int skipped = (headerSize * 8 + 6) / 7;
        message.text = fromDefaultAlphabet(septets(data, skipped, units - skipped));
        break;
    }
    case Alphabet::Bytes:
        message.text = QString::fromLatin1(data.mid(headerSize));
        break;
    case Alphabet::Unicode:
        message.text = fromUnicode(data.mid(headerSize));
        break;
    }
    return message;
}
