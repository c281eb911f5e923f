// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "sentmessages.h"

#include <QDebug>
#include <QStringList>

namespace {

constexpr std::size_t kept = 40;
constexpr int longestText = 60;
constexpr int longestLine = 600;

QString textOf(DBusMessageIter *values);

QString basicText(DBusMessageIter *value)
{
    DBusBasicValue basic{};
    const int type = dbus_message_iter_get_arg_type(value);
    if (type == DBUS_TYPE_UNIX_FD)
        return QStringLiteral("descriptor"); // To read it would create another descriptor.
    dbus_message_iter_get_basic(value, &basic);
    switch (type) {
    case DBUS_TYPE_STRING:
    case DBUS_TYPE_OBJECT_PATH:
    case DBUS_TYPE_SIGNATURE: {
        const QString text = QString::fromUtf8(basic.str);
        QString quoted;
        QDebug(&quoted).nospace() << text.left(longestText); // Quoting keeps the text on one line.
        return text.size() > longestText ? quoted + QLatin1String("...") : quoted;
    }
    case DBUS_TYPE_DOUBLE:
        return QString::number(basic.dbl);
    case DBUS_TYPE_BYTE:
        return QString::number(basic.byt);
    case DBUS_TYPE_INT16:
        return QString::number(basic.i16);
    case DBUS_TYPE_UINT16:
        return QString::number(basic.u16);
    case DBUS_TYPE_INT32:
        return QString::number(basic.i32);
    case DBUS_TYPE_BOOLEAN:
    case DBUS_TYPE_UINT32:
        return QString::number(basic.u32);
    case DBUS_TYPE_INT64:
        return QString::number(basic.i64);
    default:
        return QString::number(basic.u64);
    }
}

QString valueText(DBusMessageIter *value)
{
    const int type = dbus_message_iter_get_arg_type(value);
    if (!dbus_type_is_container(type))
        return basicText(value);
    DBusMessageIter inner;
    dbus_message_iter_recurse(value, &inner);
    const QString text = textOf(&inner);
    switch (type) {
    case DBUS_TYPE_ARRAY:
        return QLatin1Char('[') + text + QLatin1Char(']');
    case DBUS_TYPE_DICT_ENTRY:
        return QLatin1Char('{') + text + QLatin1Char('}');
    case DBUS_TYPE_VARIANT:
        return QLatin1Char('<') + text + QLatin1Char('>');
    default:
        return QLatin1Char('(') + text + QLatin1Char(')');
    }
}

QString textOf(DBusMessageIter *values)
{
    QStringList texts;
    for (; dbus_message_iter_get_arg_type(values) != DBUS_TYPE_INVALID;
         dbus_message_iter_next(values))
        texts.append(valueText(values));
    return texts.join(QLatin1String(", "));
}

QString lineOf(const QByteArray &sender, DBusMessage *message)
{
    QString line = QString::fromUtf8(sender) + QLatin1String(": ")
        + QLatin1String(dbus_message_type_to_string(dbus_message_get_type(message)));
    for (const char *part : {dbus_message_get_destination(message), dbus_message_get_path(message),
                             dbus_message_get_interface(message), dbus_message_get_member(message),
                             dbus_message_get_error_name(message)}) {
        if (part != nullptr)
            line += QLatin1Char(' ') + QLatin1String(part);
    }
    if (const quint32 serial = dbus_message_get_reply_serial(message); serial != 0)
        line += QLatin1String(" to ") + QString::number(serial);
    line += QLatin1String(" '") + QLatin1String(dbus_message_get_signature(message))
        + QLatin1String("' ");
    DBusMessageIter values;
    if (dbus_message_iter_init(message, &values))
        line += textOf(&values);
    return line.left(longestLine);
}

} // namespace

void SentMessages::note(const QByteArray &sender, DBusMessage *message)
{
    m_entries.push_back({sender, RawMessage(dbus_message_ref(message))});
    if (m_entries.size() > kept)
        m_entries.pop_front();
}

QString SentMessages::toText() const
{
    QStringList lines;
    for (const Entry &entry : m_entries)
        lines.append(lineOf(entry.sender, entry.message.get()));
    return lines.join(QLatin1Char('\n'));
}
