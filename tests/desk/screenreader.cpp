// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "screenreader.h"

#include "callmeanwhile.h"
#include "literals.h"
#include "waitfor.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusVariant>

// These are in no namespace, so that the templates of Qt find them.
static QDBusArgument &operator<<(QDBusArgument &argument, const AccessibleReference &reference)
{
    argument.beginStructure();
    argument << reference.service << reference.path;
    argument.endStructure();
    return argument;
}

static const QDBusArgument &operator>>(const QDBusArgument &argument,
                                       AccessibleReference &reference)
{
    argument.beginStructure();
    argument >> reference.service >> reference.path;
    argument.endStructure();
    return argument;
}

namespace {

constexpr int patience = 30000;

const QString accessible = u"org.a11y.atspi.Accessible"_s;
const QString action = u"org.a11y.atspi.Action"_s;

// The positions of states in AT-SPI's list of them (atspi-constants.h).
constexpr int checkedState = 4;
constexpr int focusableState = 11;
constexpr int showingState = 25;

QString connectionName(const ScreenReader *reader)
{
    return u"screen-reader-%1"_s.arg(reinterpret_cast<quintptr>(reader));
}

QVariant firstOf(const QDBusMessage &reply)
{
    return reply.type() == QDBusMessage::ReplyMessage ? reply.arguments().value(0) : QVariant();
}

} // namespace

bool AccessibleObject::isControl() const
{
    // Qt 6 calls texts focusable as well.
    return isFocusable && role != u"panel"_s && role != u"dialog"_s && role != u"label"_s;
}

ScreenReader::Service::Service(const QString &address, const QString &name, const QString &path,
                               ScreenReader &reader)
    : ScriptedService(address, name, path)
    , m_reader(reader)
{
}

void ScreenReader::Service::take(const QDBusMessage &call)
{
    reply(call, m_reader.answerTo(call));
}

ScreenReader::ScreenReader(const QString &address)
    : m_address(address)
    , m_bus(QDBusConnection::connectToBus(address, connectionName(this)))
    , m_accessibilityBus(address, u"org.a11y.Bus"_s, u"/org/a11y/bus"_s, *this)
    , m_registry(address, u"org.a11y.atspi.Registry"_s, u"/org/a11y/atspi"_s, *this)
{
    qDBusRegisterMetaType<AccessibleReference>();
    qDBusRegisterMetaType<QVector<AccessibleReference>>();
    waitFor([this] { return !m_application.service.isEmpty(); }, patience);
}

ScreenReader::~ScreenReader()
{
    QDBusConnection::disconnectFromBus(connectionName(this));
}

/// Answers what the process asks the desktop. It gives the list of events that somebody listens to
/// a type of its own, so leave it empty.
QVariantList ScreenReader::answerTo(const QDBusMessage &call)
{
    if (call.member() == u"GetAddress"_s)
        return {m_address};
    if (call.member() == u"Get"_s)
        return {QVariant::fromValue(QDBusVariant(true))};
    if (call.member() == u"Embed"_s) {
        m_application = qdbus_cast<AccessibleReference>(call.arguments().value(0));
        const AccessibleReference desktop{u"org.a11y.atspi.Registry"_s,
                                          QDBusObjectPath(u"/org/a11y/atspi/accessible/root"_s)};
        return {QVariant::fromValue(desktop)};
    }
    return {};
}

QVector<AccessibleObject> ScreenReader::objects() const
{
    QVector<AccessibleObject> found;
    if (m_application.service.isEmpty())
        return found;
    collect(m_application, found);
    return found;
}

bool ScreenReader::act(const AccessibleObject &object) const
{
    return firstOf(call(object.reference, action, u"DoAction"_s, {0})).toBool();
}

QDBusMessage ScreenReader::call(const AccessibleReference &object, const QString &interface,
                                const QString &method, const QVariantList &arguments) const
{
    QDBusMessage message =
        QDBusMessage::createMethodCall(object.service, object.path.path(), interface, method);
    message.setArguments(arguments);
    return callMeanwhile(m_bus, message, patience);
}

QVariant ScreenReader::property(const AccessibleReference &object, const QString &interface,
                                const QString &name) const
{
    const QVariant value =
        firstOf(call(object, u"org.freedesktop.DBus.Properties"_s, u"Get"_s, {interface, name}));
    return value.value<QDBusVariant>().variant();
}

AccessibleObject ScreenReader::describe(const AccessibleReference &reference) const
{
    AccessibleObject object;
    object.reference = reference;
    object.role = firstOf(call(reference, accessible, u"GetRoleName"_s)).toString();
    object.name = property(reference, accessible, u"Name"_s).toString();
    object.description = property(reference, accessible, u"Description"_s).toString();
    const auto words =
        qdbus_cast<QVector<uint>>(firstOf(call(reference, accessible, u"GetState"_s)));
    const auto has = [&words](int state) {
        return (words.value(state / 32) >> (state % 32) & 1U) != 0;
    };
    object.isShowing = has(showingState);
    object.isFocusable = has(focusableState);
    object.isChecked = has(checkedState);
    const int count = property(reference, action, u"NActions"_s).toInt();
    for (int i = 0; i < count; ++i)
        object.actions.append(firstOf(call(reference, action, u"GetName"_s, {i})).toString());
    return object;
}

void ScreenReader::collect(const AccessibleReference &reference,
                           QVector<AccessibleObject> &found) const
{
    const AccessibleObject object = describe(reference);
    if (!object.isShowing && reference.path != m_application.path)
        return;
    found.append(object);
    const auto children = qdbus_cast<QVector<AccessibleReference>>(
        firstOf(call(reference, accessible, u"GetChildren"_s)));
    for (const AccessibleReference &child : children)
        collect(child, found);
}
