// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QJsonObject>
#include <QString>

#include <functional>
#include <limits>
#include <optional>

/// A file in which a service keeps what outlives its process.
class StateFile
{
public:
    /// The file is \a name in \a folder; neither needs to exist. \a what it holds, in the plural,
    /// is for the log.
    StateFile(QString folder, const QString &name, QString what);

    /// Gives what was saved last to \a read, which says whether it could be read; does nothing if
    /// there is no such file. One that cannot be read is put aside under another name, and a
    /// warning is logged.
    void load(const std::function<bool(const QJsonObject &)> &read) const;

    /// Writes it in one step: whenever this process ends, the file is the old or the new one. Logs
    /// a warning if it cannot be written.
    void save(const QJsonObject &content) const;

    /// \a value, if it is a whole number from 0 to \a largest.
    static std::optional<uint> toUInt(const QJsonValue &value,
                                      double largest = std::numeric_limits<uint>::max());

private:
    void putAside(const QString &why) const;

    QString m_folder;
    QString m_path;
    QString m_what;
};
