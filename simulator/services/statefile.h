// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QJsonObject>
#include <QString>

#include <functional>
#include <limits>
#include <optional>

/// A file in which a service keeps its state.
class StateFile
{
public:
    /// The file is \a name in \a folder; neither needs to exist. \a what is a plural for the log
    /// that names what the file holds.
    StateFile(QString folder, const QString &name, QString what);

    /// Hands the content to \a read, which returns whether it is valid. A file that is not valid is
    /// renamed, with a warning in the log. Does nothing if there is no file.
    void load(const std::function<bool(const QJsonObject &)> &read) const;

    /// Replaces the file in one step, so that a crash leaves either the old or the new content.
    /// Logs a warning if that fails.
    void save(const QJsonObject &content) const;

    /// Returns \a value if it is a whole number from 0 to \a largest.
    static std::optional<uint> toUInt(const QJsonValue &value,
                                      double largest = std::numeric_limits<uint>::max());

private:
    void putAside(const QString &why) const;

    QString m_folder;
    QString m_path;
    QString m_what;
};
