// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "privatebus.h"

#include <QFile>
#include <QUrl>

namespace {

/// %1 is the folder of the socket, %2 are the limits.
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
%2</busconfig>
)";

QString limit(const char *name, int value)
{
    return QStringLiteral("  <limit name=\"%1\">%2</limit>\n").arg(QLatin1String(name)).arg(value);
}

/// The bus daemon itself has the limits of a system bus.
QString configured(PrivateBus::Limits limits)
{
    QString lines;
    if (limits != PrivateBus::Limits::Stock) {
        lines += limit("max_incoming_bytes", 1'000'000'000)
            + limit("max_outgoing_bytes", 1'000'000'000) + limit("max_message_size", 1'000'000'000)
            + limit("max_match_rules_per_connection", 100'000);
    }
    if (limits == PrivateBus::Limits::Wide)
        lines += limit("max_replies_per_connection", 1'000'000);
    return lines;
}

/// Escapes a path as a value of a D-Bus address (D-Bus Specification, Server Addresses).
QString escaped(const QString &path)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(path, "/", "~"));
}

} // namespace

bool PrivateBus::start(const QString &folder, const QString &name, Limits limits)
{
    QFile file(folder + QLatin1Char('/') + name + QLatin1String(".conf"));
    if (!file.open(QIODevice::WriteOnly)) {
        m_error = file.errorString();
        return false;
    }
    file.write(
        QString::fromLatin1(configuration).arg(escaped(folder), configured(limits)).toUtf8());
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
