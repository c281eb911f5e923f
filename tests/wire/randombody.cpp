// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "randombody.h"

#include <array>
#include <limits>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int deepestVariant = 12;
constexpr int mostValues = 300;
constexpr int mostDescriptors = 4;

/// The keys that the call UI reads from dictionaries.
constexpr std::array keys{"Interfaces",  "Present",     "SubscriberIdentity",
                          "phoneNumber", "triggerTime", "x-nimbo-alarm-cookie"};

/// Other texts that have a meaning for the call UI, or for QtDBus in it.
constexpr std::array words{
    "org.ofono.SimManager",
    "262011111111111",
    "262022222222222",
    "APPLICATION",
    "nimbo_parley_ui",
    "type",
    "reminder",
    "+15550100",
    "5550199",
    "1893585600",
    "TITLE",
    "category",
    "x-nimbo-call-reminder",
    "com.nimbo.parley.ui",
    "org.ofono",
    "com.nimbo.timed",
    "org.freedesktop.Notifications",
    "org.freedesktop.DBus",
    ":1.0",
    ":1.3",
    "<node/>",
    "<node><interface name='org.cobalt.ofono.mdm.ParleyFilter'><signal name='RuleAdded'/>"
    "<method name='GetAll'><arg type='a(su)' direction='out'/></method></interface></node>"};

constexpr std::array paths{"/",
                           "/ril_0",
                           "/ril_1",
                           "/mdm/parleyfilter/dial",
                           "/mdm/parleyfilter/incoming",
                           "/com/nimbo/timed",
                           "/org/freedesktop/Notifications",
                           "/org/freedesktop/DBus"};

constexpr std::array names{"com.nimbo.parley.ui",
                           "org.freedesktop.DBus.Properties",
                           "org.freedesktop.DBus.Introspectable",
                           "org.freedesktop.DBus.Peer",
                           "org.freedesktop.DBus",
                           "org.freedesktop.DBus.Error.NoReply",
                           "org.freedesktop.DBus.Error.ServiceUnknown",
                           "org.freedesktop.DBus.Error.UnknownMethod",
                           "org.ofono.SimManager",
                           "org.cobalt.ofono.mdm.ParleyFilter",
                           "a.b"};

constexpr std::array pieces{"\u00e9", "\u4e2d", "\U0001f4de", "\u2028",    "\ufeff", "a",
                            "0",      "%1",     "\n",         "\t",        "\\",     "\"",
                            " ",      "\x01",   "\x7f",       "\U0010ffff"};

/// Returns the type of the value for a known key in a dictionary of variants; null for any type.
const char *typeBeside(const QByteArray &word)
{
    if (word == "Interfaces")
        return "as";
    if (word == "Present")
        return "b";
    if (word == "SubscriberIdentity")
        return "s";
    if (word == "x-nimbo-alarm-cookie")
        return "u";
    return nullptr;
}

QByteArray take(DBusSignatureIter *type)
{
    char *text = dbus_signature_iter_get_signature(type);
    QByteArray signature(text);
    dbus_free(text);
    return signature;
}

} // namespace

RandomBody::RandomBody(RandomSource &random)
    : m_random(random)
    , m_signature(random)
    , m_descriptor(::open("/dev/null", O_RDONLY | O_CLOEXEC))
{
}

RandomBody::~RandomBody()
{
    ::close(m_descriptor);
}

void RandomBody::appendAbout(DBusMessage *message, const QByteArray &right)
{
    const quint64 choice = m_random.below(8);
    append(message,
           choice < 4       ? m_signature.nearly(right)
               : choice < 7 ? right
                            : m_signature.any());
}

void RandomBody::append(DBusMessage *message, QByteArray signature)
{
    if (signature.count('h') > mostDescriptors)
        signature.replace('h', 'u');
    m_valuesLeft = mostValues;
    m_descriptorsLeft = mostDescriptors;
    m_depth = 0;
    m_lastText.clear();
    if (signature.isEmpty())
        return;
    DBusSignatureIter types;
    dbus_signature_iter_init(&types, signature.constData());
    DBusMessageIter to;
    dbus_message_iter_init_append(message, &to);
    writeAll(&to, &types);
}

QByteArray RandomBody::text()
{
    if (m_random.oneIn(8))
        return {};
    if (m_lastText == "Interfaces" && !m_random.oneIn(4))
        return "org.ofono.SimManager";
    if (m_lastText == "phoneNumber" && m_random.oneIn(2))
        return "+15550100";
    if (!m_random.oneIn(4))
        return m_random.oneIn(2) ? m_random.oneOf(keys) : m_random.oneOf(words);
    QByteArray text;
    const quint64 length = m_random.oneIn(50) ? 1 + m_random.below(20000) : 1 + m_random.below(12);
    for (quint64 i = 0; i < length; ++i)
        text += m_random.oneOf(pieces);
    return text;
}

QByteArray RandomBody::path()
{
    if (!m_random.oneIn(5))
        return m_random.oneOf(paths);
    QByteArray path;
    const quint64 depth = m_random.oneIn(30) ? m_random.below(100) : m_random.below(5);
    for (quint64 i = 0; i < depth; ++i)
        path += '/' + QByteArray::number(m_random.below(100), 36);
    return path.isEmpty() ? QByteArray("/") : path;
}

QByteArray RandomBody::dottedName()
{
    if (!m_random.oneIn(5))
        return m_random.oneOf(names);
    QByteArray name("n");
    const quint64 parts = 1 + m_random.below(20);
    for (quint64 i = 0; i < parts; ++i)
        name += ".x" + QByteArray::number(m_random.below(1000), 36);
    return name;
}

void RandomBody::writeAll(DBusMessageIter *to, DBusSignatureIter *types)
{
    do
        write(to, types);
    while (dbus_signature_iter_next(types));
}

void RandomBody::write(DBusMessageIter *to, DBusSignatureIter *type)
{
    --m_valuesLeft;
    const int kind = dbus_signature_iter_get_current_type(type);
    if (kind == DBUS_TYPE_ARRAY) {
        writeArray(to, type);
    } else if (kind == DBUS_TYPE_VARIANT) {
        writeVariant(to);
    } else if (dbus_type_is_container(kind)) {
        DBusSignatureIter members;
        dbus_signature_iter_recurse(type, &members);
        DBusMessageIter inner;
        dbus_message_iter_open_container(to, kind, nullptr, &inner);
        writeAll(&inner, &members);
        dbus_message_iter_close_container(to, &inner);
    } else {
        writeBasic(to, kind);
    }
}

void RandomBody::writeArray(DBusMessageIter *to, DBusSignatureIter *type)
{
    DBusSignatureIter element;
    dbus_signature_iter_recurse(type, &element);
    const QByteArray signature = take(&element);
    DBusMessageIter inner;
    dbus_message_iter_open_container(to, DBUS_TYPE_ARRAY, signature.constData(), &inner);
    quint64 count = m_random.oneIn(40) ? m_random.below(100) : m_random.below(4);
    if (signature.contains('h'))
        count = m_random.below(2); // A message has no more descriptors than its signature.
    else if (signature.startsWith("{s") && !m_random.oneIn(3))
        writeKnownEntries(&inner, &element);
    for (quint64 i = 0; i < count && m_valuesLeft > 0; ++i)
        write(&inner, &element);
    dbus_message_iter_close_container(to, &inner);
}

/// Adds an entry for each key that the call UI reads.
void RandomBody::writeKnownEntries(DBusMessageIter *to, DBusSignatureIter *entry)
{
    for (const char *key : keys) {
        DBusSignatureIter value;
        dbus_signature_iter_recurse(entry, &value);
        dbus_signature_iter_next(&value);
        DBusMessageIter inner;
        dbus_message_iter_open_container(to, DBUS_TYPE_DICT_ENTRY, nullptr, &inner);
        dbus_message_iter_append_basic(&inner, DBUS_TYPE_STRING, &key);
        m_lastText = key;
        write(&inner, &value);
        dbus_message_iter_close_container(to, &inner);
    }
}

void RandomBody::writeVariant(DBusMessageIter *to)
{
    const char *known = typeBeside(m_lastText);
    QByteArray signature = m_random.oneIn(4) ? QByteArray("v") : m_signature.single(m_depth);
    if (known != nullptr && !m_random.oneIn(8))
        signature = known;
    if (m_valuesLeft <= 0 || m_depth >= deepestVariant)
        signature = "u";
    if (signature.contains('h'))
        signature = m_descriptorsLeft-- > 0 ? "h" : "y";
    ++m_depth;
    DBusSignatureIter types;
    dbus_signature_iter_init(&types, signature.constData());
    DBusMessageIter inner;
    dbus_message_iter_open_container(to, DBUS_TYPE_VARIANT, signature.constData(), &inner);
    write(&inner, &types);
    dbus_message_iter_close_container(to, &inner);
    --m_depth;
}

void RandomBody::writeBasic(DBusMessageIter *to, int type)
{
    if (type == DBUS_TYPE_UNIX_FD) {
        dbus_message_iter_append_basic(to, type, &m_descriptor);
        return;
    }
    if (type == DBUS_TYPE_STRING || type == DBUS_TYPE_OBJECT_PATH || type == DBUS_TYPE_SIGNATURE) {
        const QByteArray value = type == DBUS_TYPE_STRING ? text()
            : type == DBUS_TYPE_OBJECT_PATH               ? path()
                                                          : m_signature.any();
        if (type == DBUS_TYPE_STRING)
            m_lastText = value;
        const char *data = value.constData();
        dbus_message_iter_append_basic(to, type, &data);
        return;
    }
    DBusBasicValue value{};
    value.u64 = number();
    if (type == DBUS_TYPE_BOOLEAN)
        value.bool_val = static_cast<dbus_bool_t>(m_random.below(2));
    else if (type == DBUS_TYPE_DOUBLE)
        value.dbl = m_random.oneOf(std::array{0.0, -1.5, std::numeric_limits<double>::quiet_NaN(),
                                              std::numeric_limits<double>::infinity(), 1e300});
    dbus_message_iter_append_basic(to, type, &value);
}

/// Returns a number that often is small, as cookies, ids and actions are.
quint64 RandomBody::number()
{
    return m_random.oneIn(4) ? m_random.any()
        : m_random.oneIn(8)  ? std::numeric_limits<quint64>::max()
                             : m_random.below(8);
}
