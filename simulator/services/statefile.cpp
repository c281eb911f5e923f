// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "statefile.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QSaveFile>

#include <utility>

StateFile::StateFile(QString folder, const QString &name, QString what)
    : m_folder(std::move(folder))
    , m_path(m_folder + QLatin1Char('/') + name)
    , m_what(std::move(what))
{
}

void StateFile::load(const std::function<bool(const QJsonObject &)> &read) const
{
    QFile file(m_path);
    if (!file.exists())
        return;
    if (!file.open(QIODevice::ReadOnly))
        putAside(file.errorString());
    else if (!read(QJsonDocument::fromJson(file.readAll()).object()))
        putAside(QLatin1String("it holds no ") + m_what);
}

void StateFile::save(const QJsonObject &content) const
{
    QDir().mkpath(m_folder);
    QSaveFile file(m_path);
    if (!file.open(QIODevice::WriteOnly) || file.write(QJsonDocument(content).toJson()) < 0
        || !file.commit())
        qWarning("The %s cannot be kept in %s: %s", qUtf8Printable(m_what), qUtf8Printable(m_path),
                 qUtf8Printable(file.errorString()));
}

std::optional<uint> StateFile::toUInt(const QJsonValue &value, double largest)
{
    const double number = value.toDouble(-1);
    const bool fits = number >= 0 && number <= largest;
    const uint whole = fits ? static_cast<uint>(number) : 0;
    return fits && whole == number ? std::optional<uint>(whole) : std::nullopt;
}

void StateFile::putAside(const QString &why) const
{
    QString other = m_path + QLatin1String(".broken");
    for (int i = 2; QFile::exists(other); ++i)
        other = QStringLiteral("%1.broken-%2").arg(m_path).arg(i);
    const bool moved = QDir().rename(m_path, other);
    qWarning("The %s cannot be read from %s: %s. %s %s", qUtf8Printable(m_what),
             qUtf8Printable(m_path), qUtf8Printable(why),
             moved ? "It is now" : "It cannot be moved to", qUtf8Printable(other));
}
