// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "valuetext.h"

#include <QLocale>

#include <cstring>
#include <utility>

#include <dbus/dbus.h>
#include <unistd.h>

namespace {

constexpr int maxLength = 200;
/// The bytes of a string that are read. A character has at most four bytes.
constexpr int maxBytes = 4 * (maxLength + 1);

const QChar ellipsis(0x2026);

QString shortened(QString text)
{
    if (text.size() <= maxLength)
        return text;
    text.truncate(text.at(maxLength - 1).isHighSurrogate() ? maxLength - 1 : maxLength);
    return text + ellipsis;
}

/// Returns whether a terminal or a label would not show the character in the line.
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
    QString inner = text.left(maxLength + 1);
    inner.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
    inner.replace(QLatin1Char('"'), QLatin1String("\\\""));
    inner.replace(QLatin1Char('\n'), QLatin1String("\\n"));
    return QLatin1Char('"') + plain(inner) + QLatin1Char('"');
}

QString stringOf(DBusMessageIter *value)
{
    const char *text = nullptr;
    dbus_message_iter_get_basic(value, &text);
    return QString::fromUtf8(text, static_cast<int>(strnlen(text, maxBytes)));
}

/// Returns an iterator over the values in a container.
DBusMessageIter valuesIn(DBusMessageIter *container)
{
    DBusMessageIter values;
    dbus_message_iter_recurse(container, &values);
    return values;
}

bool isString(int type)
{
    return type == DBUS_TYPE_STRING || type == DBUS_TYPE_OBJECT_PATH || type == DBUS_TYPE_SIGNATURE;
}

} // namespace

QString ValueText::of(DBusMessage *message)
{
    ValueText text;
    DBusMessageIter values;
    dbus_message_iter_init(message, &values);
    text.writeAll(&values);
    return shortened(text.m_text);
}

QString ValueText::of(const QString &text)
{
    return shortened(plain(text.left(maxLength + 1)));
}

QStringList ValueText::firstStrings(DBusMessage *message)
{
    QStringList strings;
    DBusMessageIter value;
    dbus_message_iter_init(message, &value);
    while (dbus_message_iter_get_arg_type(&value) == DBUS_TYPE_STRING) {
        strings.append(stringOf(&value));
        dbus_message_iter_next(&value);
    }
    return strings;
}

void ValueText::writeAll(DBusMessageIter *values)
{
    bool isFirst = true;
    while (dbus_message_iter_get_arg_type(values) != DBUS_TYPE_INVALID && !isFull()) {
        if (!std::exchange(isFirst, false))
            m_text += QLatin1String(", ");
        write(values);
        dbus_message_iter_next(values);
    }
}

void ValueText::write(DBusMessageIter *value)
{
    const int type = dbus_message_iter_get_arg_type(value);
    switch (type) {
    case DBUS_TYPE_VARIANT: {
        DBusMessageIter content = valuesIn(value);
        return write(&content);
    }
    case DBUS_TYPE_STRUCT:
        return writeContainer(value, QLatin1Char('('), QLatin1Char(')'));
    case DBUS_TYPE_ARRAY:
        if (dbus_message_iter_get_element_type(value) == DBUS_TYPE_DICT_ENTRY)
            return writeContainer(value, QLatin1Char('{'), QLatin1Char('}'));
        return writeContainer(value, QLatin1Char('['), QLatin1Char(']'));
    case DBUS_TYPE_DICT_ENTRY: {
        DBusMessageIter content = valuesIn(value);
        write(&content);
        m_text += QLatin1String(": ");
        dbus_message_iter_next(&content);
        return write(&content);
    }
    default:
        return writeBasic(value, type);
    }
}

void ValueText::writeContainer(DBusMessageIter *value, QChar open, QChar close)
{
    DBusMessageIter content = valuesIn(value);
    m_text += open;
    writeAll(&content);
    m_text += close;
}

void ValueText::writeBasic(DBusMessageIter *value, int type)
{
    if (isString(type)) {
        m_text += quoted(stringOf(value));
        return;
    }
    DBusBasicValue number;
    dbus_message_iter_get_basic(value, &number);
    switch (type) {
    case DBUS_TYPE_BYTE:
        m_text += QString::number(number.byt);
        break;
    case DBUS_TYPE_BOOLEAN:
        m_text += number.bool_val != 0 ? QLatin1String("true") : QLatin1String("false");
        break;
    case DBUS_TYPE_INT16:
        m_text += QString::number(number.i16);
        break;
    case DBUS_TYPE_UINT16:
        m_text += QString::number(number.u16);
        break;
    case DBUS_TYPE_INT32:
        m_text += QString::number(number.i32);
        break;
    case DBUS_TYPE_UINT32:
        m_text += QString::number(number.u32);
        break;
    case DBUS_TYPE_INT64:
        m_text += QString::number(qlonglong{number.i64});
        break;
    case DBUS_TYPE_UINT64:
        m_text += QString::number(qulonglong{number.u64});
        break;
    case DBUS_TYPE_DOUBLE:
        m_text += QString::number(number.dbl, 'g', QLocale::FloatingPointShortest);
        break;
    case DBUS_TYPE_UNIX_FD:
        ::close(number.fd); // The iterator returns a duplicate.
        m_text += QLatin1String("fd");
        break;
    default:
        Q_UNREACHABLE();
    }
}

bool ValueText::isFull() const
{
    return m_text.size() > maxLength;
}
