// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "toggleas.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>

#include <cstdio>
#include <optional>

#include <grp.h>
#include <pwd.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace {

/// setresuid() and setresgid() keep an id for this number.
constexpr auto unchanged = static_cast<uid_t>(-1);

std::optional<uid_t> findUser(const QString &user)
{
    bool isNumber = false;
    const uid_t number = user.toUInt(&isNumber);
    if (isNumber)
        return number == unchanged ? std::nullopt : std::optional(number);
    const passwd *entry = ::getpwnam(user.toLocal8Bit().constData());
    return entry ? std::optional(entry->pw_uid) : std::nullopt;
}

std::optional<gid_t> findGroup(const QString &group)
{
    bool isNumber = false;
    const gid_t number = group.toUInt(&isNumber);
    if (isNumber)
        return number == unchanged ? std::nullopt : std::optional(number);
    const ::group *entry = ::getgrnam(group.toLocal8Bit().constData());
    return entry ? std::optional(entry->gr_gid) : std::nullopt;
}

bool become(uid_t user, gid_t group)
{
    // Dumpable again, as any program is that the user starts, so that /proc shows the user.
    return setgroups(0, nullptr) == 0 && setresgid(group, group, group) == 0
        && setresuid(user, user, user) == 0 && prctl(PR_SET_DUMPABLE, 1) == 0;
}

void say(const QString &text)
{
    std::puts(qUtf8Printable(text));
}

} // namespace

ToggleStatus toggleCallAs(const QString &user, const QString &group)
{
    const auto userId = findUser(user);
    const auto groupId = findGroup(group);
    if (!userId || !groupId) {
        say(QStringLiteral("there is no user \"%1\" or no group \"%2\"").arg(user, group));
        return ToggleFailed;
    }
    if (!become(*userId, *groupId)) {
        say(QStringLiteral("cannot become user \"%1\" and group \"%2\"").arg(user, group));
        return ToggleFailed;
    }
    const QString service = QStringLiteral("com.nimbo.parley.ui");
    const QDBusMessage reply = QDBusConnection::sessionBus().call(QDBusMessage::createMethodCall(
        service, QStringLiteral("/"), service, QStringLiteral("toggleCall")));
    if (reply.type() == QDBusMessage::ReplyMessage)
        return ToggleAdmitted;
    const QDBusError error(reply);
    say(QStringLiteral("Error %1: %2").arg(error.name(), error.message()));
    return error.type() == QDBusError::AccessDenied ? ToggleRefused : ToggleFailed;
}
