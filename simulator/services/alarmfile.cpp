// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "alarmfile.h"

#include <QJsonArray>

#include <limits>
#include <optional>

namespace {

/// The largest cookie that can be followed by another one.
constexpr double largestCookie = std::numeric_limits<uint>::max() - 1.0;

std::optional<AlarmAttributes> toAttributes(const QJsonValue &value)
{
    if (!value.isObject())
        return std::nullopt;
    AlarmAttributes attributes;
    const QJsonObject object = value.toObject();
    for (auto it = object.constBegin(); it != object.constEnd(); ++it) {
        if (!it.value().isString())
            return std::nullopt;
        attributes.insert(it.key(), it.value().toString());
    }
    return attributes;
}

std::optional<Alarm> toAlarm(const QJsonObject &object)
{
    const auto flags = StateFile::toUInt(object.value(QLatin1String("flags")));
    bool hasTicker = false;
    const qlonglong ticker =
        object.value(QLatin1String("ticker")).toString().toLongLong(&hasTicker);
    const auto attributes = toAttributes(object.value(QLatin1String("attributes")));
    if (!flags || !hasTicker || !attributes)
        return std::nullopt;
    return Alarm{*flags, ticker, *attributes};
}

std::optional<AlarmFile::Content> toContent(const QJsonObject &object)
{
    const auto lastCookie =
        StateFile::toUInt(object.value(QLatin1String("lastCookie")), largestCookie);
    const QJsonValue list = object.value(QLatin1String("alarms"));
    if (!lastCookie || !list.isArray())
        return std::nullopt;
    AlarmFile::Content content{*lastCookie, {}};
    const QJsonArray array = list.toArray();
    for (const QJsonValue &one : array) {
        const auto cookie =
            StateFile::toUInt(one.toObject().value(QLatin1String("cookie")), *lastCookie);
        const auto alarm = toAlarm(one.toObject());
        if (!cookie || *cookie == 0 || !alarm || content.alarms.contains(*cookie))
            return std::nullopt;
        content.alarms.insert(*cookie, *alarm);
    }
    return content;
}

QJsonObject toJson(uint cookie, const Alarm &alarm)
{
    QJsonObject attributes;
    for (auto it = alarm.attributes.cbegin(); it != alarm.attributes.cend(); ++it)
        attributes.insert(it.key(), it.value());
    // A number in JSON cannot hold every 64-bit ticker.
    return {{QStringLiteral("cookie"), static_cast<qint64>(cookie)},
            {QStringLiteral("flags"), static_cast<qint64>(alarm.flags)},
            {QStringLiteral("ticker"), QString::number(alarm.ticker)},
            {QStringLiteral("attributes"), attributes}};
}

} // namespace

AlarmFile::AlarmFile(const QString &folder)
    : m_file(folder, QStringLiteral("alarms.json"), QStringLiteral("alarms"))
{
}

AlarmFile::Content AlarmFile::load() const
{
    Content content;
    m_file.load([&content](const QJsonObject &object) {
        const auto read = toContent(object);
        content = read.value_or(Content());
        return read.has_value();
    });
    return content;
}

void AlarmFile::save(const Content &content) const
{
    QJsonArray alarms;
    for (auto it = content.alarms.cbegin(); it != content.alarms.cend(); ++it)
        alarms.append(toJson(it.key(), it.value()));
    m_file.save({{QStringLiteral("lastCookie"), static_cast<qint64>(content.lastCookie)},
                 {QStringLiteral("alarms"), alarms}});
}
