// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "alarmfile.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include <limits>
#include <optional>

namespace {

/// Largest cookie that leaves room for another one.
constexpr double largestCookie = std::numeric_limits<uint>::max() - 1.0;

std::optional<uint> toUInt(const QJsonValue &value, double largest)
{
    const double number = value.toDouble(-1);
    const bool fits = number >= 0 && number <= largest;
    const uint whole = fits ? static_cast<uint>(number) : 0;
    return fits && whole == number ? std::optional<uint>(whole) : std::nullopt;
}

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
    const auto flags =
        toUInt(object.value(QLatin1String("flags")), std::numeric_limits<uint>::max());
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
    const auto lastCookie = toUInt(object.value(QLatin1String("lastCookie")), largestCookie);
    const QJsonValue list = object.value(QLatin1String("alarms"));
    if (!lastCookie || !list.isArray())
        return std::nullopt;
    AlarmFile::Content content{*lastCookie, {}};
    const QJsonArray array = list.toArray();
    for (const QJsonValue &one : array) {
        const auto cookie = toUInt(one.toObject().value(QLatin1String("cookie")), *lastCookie);
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
    // A number of JSON does not hold every ticker.
    return {{QStringLiteral("cookie"), static_cast<qint64>(cookie)},
            {QStringLiteral("flags"), static_cast<qint64>(alarm.flags)},
            {QStringLiteral("ticker"), QString::number(alarm.ticker)},
            {QStringLiteral("attributes"), attributes}};
}

} // namespace

AlarmFile::AlarmFile(const QString &folder)
    : m_folder(folder)
    , m_path(folder + QLatin1String("/alarms.json"))
{
}

AlarmFile::Content AlarmFile::load() const
{
    QFile file(m_path);
    if (!file.exists())
        return {};
    if (!file.open(QIODevice::ReadOnly)) {
        putAside(file.errorString());
        return {};
    }
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll());
    const auto content = toContent(document.object());
    if (!content) {
        putAside(QStringLiteral("it holds no alarms"));
        return {};
    }
    return *content;
}

void AlarmFile::putAside(const QString &why) const
{
    QString other = m_path + QLatin1String(".broken");
    for (int i = 2; QFile::exists(other); ++i)
        other = QStringLiteral("%1.broken-%2").arg(m_path).arg(i);
    const bool moved = QDir().rename(m_path, other);
    qWarning("The alarms cannot be read from %s: %s. %s %s", qUtf8Printable(m_path),
             qUtf8Printable(why), moved ? "It is now" : "It cannot be moved to",
             qUtf8Printable(other));
}

void AlarmFile::save(const Content &content) const
{
    QJsonArray alarms;
    for (auto it = content.alarms.cbegin(); it != content.alarms.cend(); ++it)
        alarms.append(toJson(it.key(), it.value()));
    const QJsonObject object{
        {QStringLiteral("lastCookie"), static_cast<qint64>(content.lastCookie)},
        {QStringLiteral("alarms"), alarms}};

    QDir().mkpath(m_folder);
    QSaveFile file(m_path);
    if (!file.open(QIODevice::WriteOnly) || file.write(QJsonDocument(object).toJson()) < 0
        || !file.commit())
        qWarning("The alarms cannot be kept in %s: %s", qUtf8Printable(m_path),
                 qUtf8Printable(file.errorString()));
}
