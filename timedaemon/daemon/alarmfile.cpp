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

#include <algorithm>
#include <cerrno>
#include <limits>
#include <utility>

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
    // Qt drops a byte-order mark at the start of a text that it reads, unless it is escaped.
    return QJsonDocument(object).toJson(QJsonDocument::Compact).replace("\xef\xbb\xbf", "\\ufeff");
}

/// Returns the content of a file. \a texts has the text of each alarm.
QByteArray toJson(const Alarms &alarms, const QHash<uint, QByteArray> &texts)
{
    const auto toList = [&texts](const AlarmsByCookie &some) {
        QByteArrayList list;
        list.reserve(some.size());
        for (auto it = some.cbegin(); it != some.cend(); ++it)
            list.append(texts.value(it.key()));
        return list.join(",\n");
    };
    return "{\"lastCookie\": " + QByteArray::number(alarms.lastCookie) + ", \"alarms\": [\n"
        + toList(alarms.pending) + "\n], \"due\": [\n" + toList(alarms.due) + "\n]}\n";
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

} // namespace

AlarmFile::AlarmFile(QString path)
    : m_path(std::move(path))
{
}

Alarms AlarmFile::load()
{
    QFile file(m_path);
    if (!file.exists())
        return {};
    const QByteArray content = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    if (file.error() != QFileDevice::NoError) {
        m_isReplaceable = false;
        qWarning("The alarms cannot be read from %s: %s", qUtf8Printable(m_path),
                 qUtf8Printable(file.errorString()));
        return {};
    }
    const auto alarms = parse(content);
    if (!alarms)
        putAside();
    return alarms.value_or(Alarms());
}

QString AlarmFile::save(const Alarms &alarms)
{
    if (!m_isReplaceable)
        return QStringLiteral("a file that was not read is in the way");
    const QString folderPath = QFileInfo(m_path).path();
    QDir().mkpath(folderPath);
    const int folder =
        open(QFile::encodeName(folderPath).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        return lastError();
    const QString newPath = m_path + QLatin1String(".new");
    const Texts texts = textsOf(alarms);
    QString error = writeThrough(newPath, toJson(alarms, texts));
    if (error.isEmpty()
        && rename(QFile::encodeName(newPath).constData(), QFile::encodeName(m_path).constData()))
        error = lastError();
    if (error.isEmpty()) {
        m_texts = texts;
        // The new file is in place. To call that a failure would be wrong as well.
        if (fsync(folder) != 0)
            qWarning("The alarms in %s may not survive a power cut: %s", qUtf8Printable(m_path),
                     qUtf8Printable(lastError()));
    } else {
        QFile::remove(newPath);
    }
    close(folder);
    return error;
}

std::optional<Alarms> AlarmFile::parse(const QByteArray &content)
{
    const QJsonObject object = QJsonDocument::fromJson(content).object();
    const auto lastCookie = toUInt(object.value(QLatin1String("lastCookie")));
    const auto pending = toAlarms(object.value(QLatin1String("alarms")));
    const auto due = toAlarms(object.value(QLatin1String("due")));
    if (!lastCookie || !pending || !due)
        return std::nullopt;
    const QList<uint> dueCookies = due->keys();
    if (std::any_of(dueCookies.cbegin(), dueCookies.cend(),
                    [&pending](uint cookie) { return pending->contains(cookie); }))
        return std::nullopt;
    return Alarms{*lastCookie, *pending, *due};
}

/// Takes the texts of alarms that were saved before: to encode thousands anew for each change takes
/// much longer.
AlarmFile::Texts AlarmFile::textsOf(const Alarms &alarms) const
{
    Texts texts;
    texts.reserve(alarms.pending.size() + alarms.due.size());
    for (const AlarmsByCookie &some : {alarms.pending, alarms.due}) {
        for (auto it = some.cbegin(); it != some.cend(); ++it) {
            const QByteArray text = m_texts.value(it.key());
            texts.insert(it.key(), text.isNull() ? toJson(it.key(), it.value()) : text);
        }
    }
    return texts;
}

void AlarmFile::putAside()
{
    QString other = m_path + QLatin1String(".broken");
    for (int i = 2; QFile::exists(other); ++i)
        other = QStringLiteral("%1.broken-%2").arg(m_path).arg(i);
    m_isReplaceable = QDir().rename(m_path, other);
    qWarning("The alarms cannot be read from %s: it is damaged. %s %s", qUtf8Printable(m_path),
             m_isReplaceable ? "It is now" : "It cannot be moved to", qUtf8Printable(other));
}
