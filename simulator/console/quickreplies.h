// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "childprocess.h"
#include "command.h"

#include <QVector>

#include <memory>

class Transcript;

/// The file with the quick replies of the handset's user, as other processes than the call UI see
/// it.
class QuickReplies
{
public:
    /// \a home is the home of the handset's user. \a transcript is told what is in the file, and
    /// outlives the object.
    QuickReplies(const QString &home, Transcript &transcript);

    QString filePath() const { return m_filePath; }

    /// An editor that is opened ends with the object.
    QVector<Command> commands();

private:
    void show(const Finish &finish);
    void edit(const Finish &finish);
    bool write(const QStringList &texts, QString &error) const;

    const QString m_filePath;
    Transcript &m_transcript;
    std::unique_ptr<ChildProcess> m_editor;
};
