// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "childprocess.h"
#include "command.h"

#include <QVector>

#include <memory>

class Transcript;

/// The commands for the file with the user's quick replies. They access it as other processes than
/// the call UI would.
class QuickReplies
{
public:
    /// \a home is the home of the handset's user. \a transcript must outlive the object.
    QuickReplies(const QString &home, Transcript &transcript);

    QString filePath() const { return m_filePath; }

    /// An editor that was opened ends when the object is destroyed.
    QVector<Command> commands();

private:
    void show(const Finish &finish);
    void edit(const Finish &finish);
    bool write(const QStringList &texts, QString &error) const;

    const QString m_filePath;
    Transcript &m_transcript;
    std::unique_ptr<ChildProcess> m_editor;
};
