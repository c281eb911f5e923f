// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "randombody.h"

#include <array>
#include <cstring>
#include <limits>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int deepestType = 5;
constexpr int deepestVariant = 12;
constexpr int mostValues = 300;
constexpr int mostDescriptors = 4;

/// What the call UI looks for in dictionaries.
constexpr std::array keys{"Interfaces",  "Present",     "SubscriberIdentity",
                          "phoneNumber", "triggerTime", "x-nimbo-alarm-cookie"};

/// Other texts that mean something to it, or to QtDBus within it.
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

/// The type of what stands beside a known word in a dictionary of variants; null for any.
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

/// \a signature, or another one where it is longer than D-Bus allows.
QByteArray allowed(const QByteArray &signature)
{
    return dbus_signature_validate(signature.constData(), nullptr) ? signature : QByteArray("u");
}

/// The complete types that \a signature is made of.
QByteArrayList split(const QByteArray &signature)
{
    QByteArrayList types;
    if (signature.isEmpty())
        return types;
    DBusSignatureIter iterator;
    dbus_signature_iter_init(&iterator, signature.constData());
    do
        types.append(take(&iterator));
    while (dbus_signature_iter_next(&iterator));
    return types;
}

} // namespace

RandomBody::RandomBody(quint64 seed)
    : m_random(seed)
    , m_descriptor(::open("/dev/null", O_RDONLY | O_CLOEXEC))
{
}

RandomBody::~RandomBody()
{
    ::close(m_descriptor);
}

void RandomBody::appendAbout(DBusMessage *message, const QByteArray &right)
{
    const quint64 choice = below(8);
    append(message, choice < 4 ? nearly(right) : choice < 7 ? right : signature());
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

void RandomBody::appendAny(DBusMessage *message)
{
    append(message, signature());
}

QByteArray RandomBody::text()
{
    if (oneIn(8))
        return {};
    if (m_lastText == "Interfaces" && !oneIn(4))
        return "org.ofono.SimManager";
    if (m_lastText == "phoneNumber" && oneIn(2))
        return "+15550100";
    if (!oneIn(4))
        return oneIn(2) ? oneOf(keys) : oneOf(words);
    QByteArray text;
    const quint64 length = oneIn(50) ? 1 + below(20000) : 1 + below(12);
    for (quint64 i = 0; i < length; ++i)
        text += oneOf(pieces);
    return text;
}

QByteArray RandomBody::path()
{
    if (!oneIn(5))
        return oneOf(paths);
    QByteArray path;
    const quint64 depth = oneIn(30) ? below(100) : below(5);
    for (quint64 i = 0; i < depth; ++i)
        path += '/' + QByteArray::number(below(100), 36);
    return path.isEmpty() ? QByteArray("/") : path;
}

QByteArray RandomBody::dottedName()
{
    if (!oneIn(5))
        return oneOf(names);
    QByteArray name("n");
    const quint64 parts = 1 + below(20);
    for (quint64 i = 0; i < parts; ++i)
        name += ".x" + QByteArray::number(below(1000), 36);
    return name;
}

char RandomBody::basicType()
{
    // Descriptors are rare: a message may carry only a few.
    return oneIn(40)
        ? 'h'
        : oneOf(std::array{'y', 'b', 'n', 'q', 'i', 'u', 'x', 't', 'd', 's', 'o', 'g'});
}

QByteArray RandomBody::type(int depth)
{
    const quint64 choice = below(10);
    if (choice < 6 || depth >= deepestType)
        return {1, basicType()};
    if (choice == 6)
        return "v";
    if (choice == 7)
        return 'a' + type(depth + 1);
    if (choice == 8)
        return QByteArray("a{") + basicType() + type(depth + 1) + '}';
    QByteArray members;
    const quint64 count = 1 + below(4);
    for (quint64 i = 0; i < count; ++i)
        members += type(depth + 1);
    return '(' + members + ')';
}

QByteArray RandomBody::signature()
{
    // As deep as D-Bus allows.
    if (oneIn(100))
        return QByteArray(32, 'a') + basicType();
    if (oneIn(100))
        return QByteArray(32, '(') + basicType() + QByteArray(32, ')');
    QByteArray types;
    const quint64 count = below(6);
    for (quint64 i = 0; i < count; ++i)
        types += type(0);
    return allowed(types);
}

/// Another signature with one thing of \a right changed.
QByteArray RandomBody::nearly(const QByteArray &right)
{
    const QByteArray result = changed(split(right), 0).join();
    return allowed(result);
}

QByteArrayList RandomBody::changed(QByteArrayList types, int depth)
{
    const quint64 choice = below(8);
    if (types.isEmpty() || choice == 0) {
        types.insert(static_cast<int>(below(static_cast<quint64>(types.size()) + 1)), type(depth));
        return types;
    }
    const auto at = static_cast<int>(below(static_cast<quint64>(types.size())));
    if (choice == 1)
        types.removeAt(at);
    else
        types[at] = changedType(types.at(at), depth);
    return types;
}

QByteArray RandomBody::changedType(const QByteArray &type, int depth)
{
    const bool isContainer = type.size() > 1;
    if (isContainer && !oneIn(3)) {
        // Within: an array's element, or members, of which the first is a dictionary's key.
        DBusSignatureIter outer;
        dbus_signature_iter_init(&outer, type.constData());
        DBusSignatureIter inner;
        dbus_signature_iter_recurse(&outer, &inner);
        if (type.startsWith("a{"))
            return "a{" + type.mid(2, 1) + changedType(type.mid(3, type.size() - 4), depth + 1)
                + '}';
        if (type.startsWith('a'))
            return 'a' + changedType(take(&inner), depth + 1);
        return '(' + changed(split(type.mid(1, type.size() - 2)), depth + 1).join() + ')';
    }
    switch (below(6)) {
    case 0:
        return '(' + type + ')';
    case 1:
        return 'a' + type;
    case 2:
        return "v";
    case 3:
        return RandomBody::type(depth);
    default:
        return {1, basicType()};
    }
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
    quint64 count = oneIn(40) ? below(100) : below(4);
    if (signature.contains('h'))
        count = below(2); // a message has no more descriptors than its signature has
    else if (signature.startsWith("{s") && !oneIn(3))
        writeKnownEntries(&inner, &element);
    for (quint64 i = 0; i < count && m_valuesLeft > 0; ++i)
        write(&inner, &element);
    dbus_message_iter_close_container(to, &inner);
}

/// An entry for each key that the call UI looks for.
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
    QByteArray signature = oneIn(4) ? QByteArray("v") : allowed(type(m_depth));
    if (known != nullptr && !oneIn(8))
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
                                                          : signature();
        if (type == DBUS_TYPE_STRING)
            m_lastText = value;
        const char *data = value.constData();
        dbus_message_iter_append_basic(to, type, &data);
        return;
    }
    DBusBasicValue value{};
    value.u64 = number();
    if (type == DBUS_TYPE_BOOLEAN)
        value.bool_val = static_cast<dbus_bool_t>(below(2));
    else if (type == DBUS_TYPE_DOUBLE)
        value.dbl = oneOf(std::array{0.0, -1.5, std::numeric_limits<double>::quiet_NaN(),
                                     std::numeric_limits<double>::infinity(), 1e300});
    dbus_message_iter_append_basic(to, type, &value);
}

/// Often small, as cookies, ids and actions are.
quint64 RandomBody::number()
{
    return oneIn(4) ? m_random() : oneIn(8) ? std::numeric_limits<quint64>::max() : below(8);
}
