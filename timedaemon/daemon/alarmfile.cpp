// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "alarmfile.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cerrno>
#include <limits>

#include <fcntl.h>
#include <unistd.h>

namespace {

std::optional<uint> toUInt(const QJsonValue &value)
{
    const double number = value.toDouble(-1);
    if (number < 0 || number > std::numeric_limits<uint>::max())
        return std::nullopt;
    const auto whole = static_cast<uint>(number);
    return whole == number ? std::optional<uint>(whole) : std::nullopt;
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
    const auto flags = toUInt(object.value(QLatin1String("flags")));
    bool hasTicker = false;
    const qlonglong ticker =
        object.value(QLatin1String("ticker")).toString().toLongLong(&hasTicker);
    const auto attributes = toAttributes(object.value(QLatin1String("attributes")));
    if (!flags || !hasTicker || !attributes)
        return std::nullopt;
    return Alarm{*flags, ticker, *attributes};
}

std::optional<AlarmsByCookie> toAlarms(const QJsonValue &list)
{
    if (!list.isArray())
        return std::nullopt;
    AlarmsByCookie alarms;
    const QJsonArray array = list.toArray();
    for (const QJsonValue &one : array) {
        const auto cookie = toUInt(one.toObject().value(QLatin1String("cookie")));
        const auto alarm = toAlarm(one.toObject());
        if (!cookie || *cookie == 0 || !alarm || alarms.contains(*cookie))
            return std::nullopt;
        alarms.insert(*cookie, *alarm);
    }
    return alarms;
}

QByteArray toJson(uint cookie, const Alarm &alarm)
{
    QJsonObject attributes;
    for (auto it = alarm.attributes.cbegin(); it != alarm.attributes.cend(); ++it)
        attributes.insert(it.key(), it.value());
    // A number in JSON cannot hold every 64-bit ticker.
    const QJsonObject object{{QStringLiteral("cookie"), static_cast<qint64>(cookie)},
                             {QStringLiteral("flags"), static_cast<qint64>(alarm.flags)},
                             {QStringLiteral("ticker"), QString::number(alarm.ticker)},
                             {QStringLiteral("attributes"), attributes}};
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QString lastError()
{
    return qt_error_string(errno);
}

/// Writes a new file and waits until it is on the disk. Returns why that failed, or nothing.
QString writeThrough(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return file.errorString();
    // On a full disk, a write may be cut short without an error. The next one has it.
    for (qint64 written = 0; written < content.size();) {
        const qint64 count = file.write(content.constData() + written, content.size() - written);
        if (count < 0)
            return file.errorString();
        written += count;
    }
    if (!file.flush())
        return file.errorString();
    return fsync(file.handle()) == 0 ? QString() : lastError();
}

/// Waits until a folder's list of files is on the disk. Returns why that failed, or nothing.
QString syncFolder(const QString &path)
{
    const int folder =
        open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        return lastError();
    const QString error = fsync(folder) == 0 ? QString() : lastError();
    close(folder);
    return error;
}

} // namespace

AlarmFile::AlarmFile(const QString &path)
    : m_path(path)
{
}

Alarms AlarmFile::load()
{
    QFile file(m_path);
    if (!file.exists())
        return {};
    if (!file.open(QIODevice::ReadOnly)) {
        putAside(file.errorString());
        return {};
    }
    const auto alarms = parse(file.readAll());
    if (!alarms)
        putAside(QStringLiteral("it is damaged"));
    return alarms.value_or(Alarms());
}

QString AlarmFile::save(const Alarms &alarms)
{
    if (!m_isReplaceable)
        return QStringLiteral("a damaged file is in the way");
    const QString folder = QFileInfo(m_path).path();
    const QString newPath = m_path + QLatin1String(".new");
    QDir().mkpath(folder);
    QString error = writeThrough(newPath, toJson(alarms));
    if (error.isEmpty()
        && rename(QFile::encodeName(newPath).constData(), QFile::encodeName(m_path).constData()))
        error = lastError();
    if (!error.isEmpty()) {
        QFile::remove(newPath);
        return error;
    }
    return syncFolder(folder);
}

std::optional<Alarms> AlarmFile::parse(const QByteArray &content)
{
    const QJsonObject object = QJsonDocument::fromJson(content).object();
    const auto lastCookie = toUInt(object.value(QLatin1String("lastCookie")));
    const auto pending = toAlarms(object.value(QLatin1String("alarms")));
    const auto due = toAlarms(object.value(QLatin1String("due")));
    if (!lastCookie || !pending || !due)
        return std::nullopt;
    return Alarms{*lastCookie, *pending, *due};
}

/// Puts the file together from the texts of its alarms: to encode thousands anew for each change
/// takes much longer.
QByteArray AlarmFile::toJson(const Alarms &alarms)
{
    QHash<uint, QByteArray> texts;
    texts.reserve(alarms.pending.size() + alarms.due.size());
    const auto toList = [this, &texts](const AlarmsByCookie &some) {
        QByteArrayList list;
        list.reserve(some.size());
        for (auto it = some.cbegin(); it != some.cend(); ++it) {
            QByteArray text = m_texts.value(it.key());
            if (text.isNull())
                text = ::toJson(it.key(), it.value());
            texts.insert(it.key(), text);
            list.append(text);
        }
        return list.join(",\n");
    };
    const QByteArray content = "{\"lastCookie\": " + QByteArray::number(alarms.lastCookie)
        + ", \"alarms\": [\n" + toList(alarms.pending) + "\n], \"due\": [\n" + toList(alarms.due)
        + "\n]}\n";
    m_texts = texts;
    return content;
}

void AlarmFile::putAside(const QString &why)
{
    QString other = m_path + QLatin1String(".broken");
    for (int i = 2; QFile::exists(other); ++i)
        other = QStringLiteral("%1.broken-%2").arg(m_path).arg(i);
    m_isReplaceable = QDir().rename(m_path, other);
    qWarning("The alarms cannot be read from %s: %s. %s %s", qUtf8Printable(m_path),
             qUtf8Printable(why), m_isReplaceable ? "It is now" : "It cannot be moved to",
             qUtf8Printable(other));
}
