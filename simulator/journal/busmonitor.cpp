// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "busmonitor.h"

#include "valuetext.h"

#include <QThread>

#include <chrono>
#include <memory>

#include <dbus/dbus.h>
#include <sys/socket.h>

namespace {

using Message = std::unique_ptr<DBusMessage, decltype(&dbus_message_unref)>;

/// An error of libdbus, which has to release it.
class Error
{
public:
    Error() { dbus_error_init(&m_error); }
    ~Error() { dbus_error_free(&m_error); }
    Q_DISABLE_COPY(Error)

    operator DBusError *() { return &m_error; }
    QString text() const { return QString::fromUtf8(m_error.message); }

private:
    DBusError m_error{};
};

qint64 now()
{
    using namespace std::chrono;
    return duration_cast<microseconds>(system_clock::now().time_since_epoch()).count();
}

BusMessage describe(DBusMessage *message)
{
    BusMessage description;
    description.type = static_cast<BusMessage::Type>(dbus_message_get_type(message));
    description.wantsReply = dbus_message_get_no_reply(message) == 0;
    description.cookie = dbus_message_get_serial(message);
    description.replyCookie = dbus_message_get_reply_serial(message);
    description.time = now();
    description.sender = QString::fromUtf8(dbus_message_get_sender(message));
    description.destination = QString::fromUtf8(dbus_message_get_destination(message));
    description.path = QString::fromUtf8(dbus_message_get_path(message));
    description.interface = QString::fromUtf8(dbus_message_get_interface(message));
    description.member = QString::fromUtf8(dbus_message_get_member(message));
    description.errorName = QString::fromUtf8(dbus_message_get_error_name(message));
    description.values = ValueText::of(message);
    description.strings = ValueText::firstStrings(message);
    return description;
}

} // namespace

BusMonitor::BusMonitor(QObject *parent)
    : QObject(parent)
{
    qRegisterMetaType<BusMessage>();
}

BusMonitor::~BusMonitor()
{
    if (m_reader) {
        ::shutdown(m_descriptor, SHUT_RDWR); // This ends read().
        m_reader->wait();
    }
    if (m_connection != nullptr) {
        dbus_connection_close(m_connection);
        dbus_connection_unref(m_connection);
    }
}

bool BusMonitor::start(const QString &address)
{
    Error error;
    m_connection = dbus_connection_open_private(address.toUtf8().constData(), error);
    if (m_connection == nullptr || dbus_bus_register(m_connection, error) == 0) {
        m_error = error.text();
        return false;
    }
    if (!becomeMonitor())
        return false;
    dbus_connection_get_unix_fd(m_connection, &m_descriptor);
    m_reader.reset(QThread::create([this] { read(); }));
    m_reader->start();
    return true;
}

bool BusMonitor::becomeMonitor()
{
    const Message call(dbus_message_new_method_call(DBUS_SERVICE_DBUS, DBUS_PATH_DBUS,
                                                    DBUS_INTERFACE_MONITORING, "BecomeMonitor"),
                       dbus_message_unref);
    const char *const *noRules = nullptr; // Without a rule, a monitor sees all messages.
    const dbus_uint32_t flags = 0;
    dbus_message_append_args(call.get(), DBUS_TYPE_ARRAY, DBUS_TYPE_STRING, &noRules, 0,
                             DBUS_TYPE_UINT32, &flags, DBUS_TYPE_INVALID);
    Error error;
    const Message reply(dbus_connection_send_with_reply_and_block(m_connection, call.get(),
                                                                  DBUS_TIMEOUT_USE_DEFAULT, error),
                        dbus_message_unref);
    m_error = error.text();
    return reply != nullptr;
}

/// Messages are popped, not dispatched, because libdbus would answer some of them.
void BusMonitor::read()
{
    do {
        while (
            const Message message{dbus_connection_pop_message(m_connection), dbus_message_unref}) {
            // libdbus's own note of the end was on no bus.
            if (!dbus_message_has_interface(message.get(), DBUS_INTERFACE_LOCAL))
                Q_EMIT received(describe(message.get()));
        }
    } while (dbus_connection_read_write(m_connection, -1) != 0);
    Q_EMIT ended();
}
