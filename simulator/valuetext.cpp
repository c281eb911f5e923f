// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "valuetext.h"

#include <QLocale>

namespace {

constexpr int maxLength = 200;
constexpr int maxDepth = 64; ///< No message has more.

const QChar ellipsis(0x2026);

QString shortened(QString text)
{
    if (text.size() <= maxLength)
        return text;
    text.truncate(text.at(maxLength - 1).isHighSurrogate() ? maxLength - 1 : maxLength);
    return text + ellipsis;
}

/// A terminal or a label would not show it as a character in a line.
bool isControl(QChar character)
{
    switch (character.category()) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        return false;
    }
}

QString plain(const QString &text)
{
    QString line;
    for (const QChar character : text) {
        if (isControl(character))
            line += QStringLiteral("\\u%1").arg(character.unicode(), 4, 16, QLatin1Char('0'));
        else
            line += character;
    }
    return line;
}

QString quoted(const QString &text)
{
    // More is not shown, and a text may be long.
    QString inner = text.left(maxLength + 1);
    inner.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
    inner.replace(QLatin1Char('"'), QLatin1String("\\\""));
    inner.replace(QLatin1Char('\n'), QLatin1String("\\n"));
    return QLatin1Char('"') + plain(inner) + QLatin1Char('"');
}

/// The length of the one complete type that \a signature begins with.
int lengthOfFirst(const QByteArray &signature)
{
    int length = 0;
    while (length < signature.size() && signature.at(length) == 'a')
        ++length;
    int open = 0;
    while (length < signature.size()) {
        const char type = signature.at(length++);
        if (type == '(' || type == '{')
            ++open;
        else if (type == ')' || type == '}')
            --open;
        if (open <= 0)
            break;
    }
    return length;
}

int alignmentOf(char type)
{
    switch (type) {
    case 'n':
    case 'q':
        return 2;
    case 'x':
    case 't':
    case 'd':
    case '(':
    case '{':
        return 8;
    case 'y':
    case 'g':
    case 'v':
        return 1;
    default:
        return 4;
    }
}

/// What is between the brackets.
QByteArray membersOf(const QByteArray &type)
{
    return type.mid(1, type.size() - 2);
}

} // namespace

QString ValueText::of(const QByteArray &signature, WireReader reader)
{
    ValueText text(reader);
    text.writeAll(signature);
    if (!reader.isOk())
        text.m_text += ellipsis;
    return shortened(text.m_text);
}

QString ValueText::of(const QString &text)
{
    return shortened(plain(text.left(maxLength + 1)));
}

ValueText::ValueText(WireReader &reader)
    : m_reader(reader)
{
}

void ValueText::write(const QByteArray &type)
{
    if (isFull() || type.isEmpty() || m_depth > maxDepth)
        return;
    ++m_depth;
    const char first = type.at(0);
    if (first == 'v') {
        const QByteArray signature = m_reader.signature();
        write(signature.left(lengthOfFirst(signature)));
    } else if (first == 'a') {
        writeArray(type.mid(1));
    } else if (first == '(') {
        m_reader.align(8);
        append(QStringLiteral("("));
        writeAll(membersOf(type));
        append(QStringLiteral(")"));
    } else {
        writeBasic(first);
    }
    --m_depth;
}

void ValueText::writeBasic(char type)
{
    switch (type) {
    case 'y':
        return append(QString::number(m_reader.number<quint8>()));
    case 'b':
        return append(m_reader.number<quint32>() != 0 ? QStringLiteral("true")
                                                      : QStringLiteral("false"));
    case 'n':
        return append(QString::number(m_reader.number<qint16>()));
    case 'q':
        return append(QString::number(m_reader.number<quint16>()));
    case 'i':
        return append(QString::number(m_reader.number<qint32>()));
    case 'u':
    case 'h':
        return append(QString::number(m_reader.number<quint32>()));
    case 'x':
        return append(QString::number(m_reader.number<qint64>()));
    case 't':
        return append(QString::number(m_reader.number<quint64>()));
    case 'd':
        return append(
            QString::number(m_reader.number<double>(), 'g', QLocale::FloatingPointShortest));
    case 'g':
        return append(quoted(QString::fromLatin1(m_reader.signature())));
    default:
        return append(quoted(m_reader.string()));
    }
}

void ValueText::writeArray(const QByteArray &element)
{
    const bool isMap = element.startsWith('{');
    const auto length = m_reader.number<quint32>();
    m_reader.align(alignmentOf(element.isEmpty() ? 'y' : element.at(0)));
    const qint64 end = qint64(m_reader.position()) + length;

    append(isMap ? QStringLiteral("{") : QStringLiteral("["));
    for (bool isFirst = true; m_reader.position() < end && !isFull(); isFirst = false) {
        if (!isFirst)
            append(QStringLiteral(", "));
        const int before = m_reader.position();
        if (isMap)
            writeEntry(membersOf(element));
        else
            write(element);
        if (m_reader.position() == before)
            return; // of no type that there is
    }
    append(isMap ? QStringLiteral("}") : QStringLiteral("]"));
}

void ValueText::writeEntry(const QByteArray &types)
{
    m_reader.align(8);
    write(types.left(1));
    append(QStringLiteral(": "));
    write(types.mid(1));
}

void ValueText::writeAll(const QByteArray &types)
{
    for (int at = 0; at < types.size() && !isFull();) {
        if (at > 0)
            append(QStringLiteral(", "));
        const int length = lengthOfFirst(types.mid(at));
        write(types.mid(at, length));
        at += length;
    }
}

/// What could not be read is not written.
void ValueText::append(const QString &text)
{
    if (!isFull())
        m_text += text;
}

bool ValueText::isFull() const
{
    return !m_reader.isOk() || m_text.size() > maxLength;
}
