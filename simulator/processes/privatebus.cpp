// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "privatebus.h"

#include <QFile>
#include <QUrl>

namespace {

/// %1 is the folder of the socket, %2 is the limit of replies. The limits of sizes are far above
/// the stock ones, so that tests can send large messages.
const char configuration[] =
    R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-BUS Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:dir=%1</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow user="*"/>
    <allow own="*"/>
    <allow send_destination="*" eavesdrop="true"/>
    <allow receive_sender="*"/>
    <allow eavesdrop="true"/>
  </policy>
  <limit name="max_incoming_bytes">1000000000</limit>
  <limit name="max_outgoing_bytes">1000000000</limit>
  <limit name="max_message_size">1000000000</limit>
  <limit name="max_replies_per_connection">%2</limit>
  <limit name="max_match_rules_per_connection">100000</limit>
</busconfig>
)";

/// Escapes a path as a value of a D-Bus address (D-Bus Specification, Server Addresses).
QString escaped(const QString &path)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(path, "/", "~"));
}

} // namespace

bool PrivateBus::start(const QString &folder, const QString &name, int mostReplies)
{
    QFile file(folder + QLatin1Char('/') + name + QLatin1String(".conf"));
    if (!file.open(QIODevice::WriteOnly)) {
        m_error = file.errorString();
        return false;
    }
    file.write(QString::fromLatin1(configuration).arg(escaped(folder)).arg(mostReplies).toUtf8());
    file.close();

    m_daemon.start(QStringLiteral("dbus-daemon"),
                   {QStringLiteral("--nofork"), QStringLiteral("--nosyslog"),
                    QStringLiteral("--print-address=1"),
                    QStringLiteral("--config-file=") + file.fileName()});
    while (!m_daemon.canReadLine()) {
        if (!m_daemon.waitForReadyRead()) {
            m_error = QString::fromLocal8Bit(m_daemon.readAllStandardError()).trimmed();
            if (m_error.isEmpty())
                m_error = m_daemon.errorString();
            return false;
        }
    }
    m_address = QString::fromLocal8Bit(m_daemon.readLine()).trimmed();

    connect(&m_daemon, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
            &PrivateBus::died);
    return true;
}
