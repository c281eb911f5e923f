// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "rawofono.h"

#include "waitfor.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int patience = 30000;

void appendEntry(DBusMessageIter *entries, const char *name, const char *signature,
                 const std::function<void(DBusMessageIter *)> &appendValue)
{
    DBusMessageIter entry;
    DBusMessageIter value;
    dbus_message_iter_open_container(entries, DBUS_TYPE_DICT_ENTRY, nullptr, &entry);
    dbus_message_iter_append_basic(&entry, DBUS_TYPE_STRING, &name);
    dbus_message_iter_open_container(&entry, DBUS_TYPE_VARIANT, signature, &value);
    appendValue(&value);
    dbus_message_iter_close_container(&entry, &value);
    dbus_message_iter_close_container(entries, &entry);
}

void appendModem(DBusMessageIter *modems)
{
    DBusMessageIter modem;
    DBusMessageIter properties;
    const char *path = "/ril_0";
    dbus_message_iter_open_container(modems, DBUS_TYPE_STRUCT, nullptr, &modem);
    dbus_message_iter_append_basic(&modem, DBUS_TYPE_OBJECT_PATH, &path);
    dbus_message_iter_open_container(&modem, DBUS_TYPE_ARRAY, "{sv}", &properties);
    appendEntry(&properties, "Online", "b", [](DBusMessageIter *value) {
        const dbus_bool_t online = TRUE;
        dbus_message_iter_append_basic(value, DBUS_TYPE_BOOLEAN, &online);
    });
    appendEntry(&properties, "Interfaces", "as", [](DBusMessageIter *value) {
        DBusMessageIter names;
        const char *name = "org.ofono.VoiceCallManager";
        dbus_message_iter_open_container(value, DBUS_TYPE_ARRAY, "s", &names);
        dbus_message_iter_append_basic(&names, DBUS_TYPE_STRING, &name);
        dbus_message_iter_close_container(value, &names);
    });
    dbus_message_iter_close_container(&modem, &properties);
    dbus_message_iter_close_container(modems, &modem);
}

} // namespace

RawOfono::RawOfono(const QString &address, bool answers)
    : m_connection(address)
    , m_answers(answers)
{
    m_connection.setHandler([this](DBusMessage *message) { take(message); });
    QObject::connect(&m_turn, &QTimer::timeout, &m_turn, [this] { m_connection.pump(); });
    if (!m_connection.own("org.ofono"))
        qFatal("There is another oFono.");
    goOn();
}

RawOfono::Call RawOfono::next(const QByteArray &member)
{
    const auto isIt = [&](const Call &call) { return call.member == member; };
    waitFor([&] { return std::any_of(m_calls.cbegin(), m_calls.cend(), isIt); }, patience);
    const auto found = std::find_if(m_calls.begin(), m_calls.end(), isIt);
    if (found == m_calls.end())
        return {};
    Call call = *found;
    m_calls.erase(found);
    return call;
}

RawMessage RawOfono::answerTo(const Call &call)
{
    RawMessage answer = RawConnection::makeReply(call.sender, call.serial);
    DBusMessageIter arguments;
    DBusMessageIter list;
    const bool isList = call.member == "GetModems" || call.member == "GetCalls";
    dbus_message_iter_init_append(answer.get(), &arguments);
    if (isList || call.member == "GetProperties") {
        dbus_message_iter_open_container(&arguments, DBUS_TYPE_ARRAY, isList ? "(oa{sv})" : "{sv}",
                                         &list);
        if (call.member == "GetModems")
            appendModem(&list);
        dbus_message_iter_close_container(&arguments, &list);
    }
    return answer;
}

void RawOfono::take(DBusMessage *message)
{
    if (dbus_message_get_type(message) != DBUS_MESSAGE_TYPE_METHOD_CALL)
        return;
    const Call call{dbus_message_get_member(message), dbus_message_get_path(message),
                    dbus_message_get_sender(message), dbus_message_get_serial(message)};
    const bool isQuestion = call.member.startsWith("Get");
    if (call.member == "Ping" || (isQuestion && m_answers))
        m_connection.send(answerTo(call).get());
    else
        m_calls.append(call);
}
