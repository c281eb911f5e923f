// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "quickreplies.h"

#include "transcript.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSaveFile>

namespace {

/// The call UI shows these if there is no file.
const QStringList defaults{QStringLiteral("parley-me-please_call_later"),
                           QStringLiteral("parley-me-cant_talk_at_the_moment"),
                           QStringLiteral("parley-me-will_call_back")};

/// Returns a program and its arguments before the file.
QStringList editor()
{
    for (const char *variable : {"VISUAL", "EDITOR"}) {
        QStringList command = QProcess::splitCommand(qEnvironmentVariable(variable));
        if (!command.isEmpty())
            return command;
    }
    return {QStringLiteral("xdg-open")};
}

} // namespace

QuickReplies::QuickReplies(const QString &home, Transcript &transcript)
    : m_filePath(home + QLatin1String("/.local/share/system/privileged/Phone/quick-replies.json"))
    , m_transcript(transcript)
{
}

QVector<Command> QuickReplies::commands()
{
    return {
        {QStringLiteral("replies edit"),
         {},
         QStringLiteral("open the file with the quick replies: $VISUAL, $EDITOR or xdg-open, which "
                        "need a window of their own"),
         [this](const QStringList &, const Finish &finish) { edit(finish); }},
        {QStringLiteral("replies write"),
         {QStringLiteral("[TEXT...]")},
         QStringLiteral("put a file with these quick replies in its place"),
         [this](const QStringList &arguments, const Finish &finish) {
             QString error;
             if (write(arguments, error))
                 finish(Outcome::Done, QStringLiteral("done"));
             else
                 finish(Outcome::Failed, error);
         }},
        {QStringLiteral("replies"),
         {},
         QStringLiteral("print the file with the quick replies"),
         [this](const QStringList &, const Finish &finish) { show(finish); }},
    };
}

void QuickReplies::show(const Finish &finish)
{
    const QString source = QStringLiteral("replies");
    m_transcript.record(source, m_filePath);
    QFile file(m_filePath);
    if (!file.exists()) {
        finish(Outcome::Done, QStringLiteral("there is no such file; the defaults are shown"));
    } else if (!file.open(QIODevice::ReadOnly)) {
        finish(Outcome::Failed, file.errorString());
    } else {
        const QString content = QString::fromUtf8(file.readAll()).trimmed();
        const QStringList lines = content.split(QLatin1Char('\n'));
        for (const QString &line : lines)
            m_transcript.record(source, line);
        finish(Outcome::Done, {});
    }
}

void QuickReplies::edit(const Finish &finish)
{
    QString error;
    if (!QFileInfo::exists(m_filePath) && !write(defaults, error)) {
        finish(Outcome::Failed, error);
        return;
    }
    QStringList command = editor();
    const QString program = command.takeFirst();
    m_editor = std::make_unique<ChildProcess>();
    m_editor->setStandardInputFile(QProcess::nullDevice());
    m_editor->setStandardOutputFile(QProcess::nullDevice());
    m_editor->setStandardErrorFile(QProcess::nullDevice());
    QObject::connect(m_editor.get(), &QProcess::started, m_editor.get(), [program, finish] {
        finish(Outcome::Done, QStringLiteral("opened with ") + program);
    });
    QObject::connect(m_editor.get(), &QProcess::errorOccurred, m_editor.get(),
                     [program, finish](QProcess::ProcessError what) {
                         if (what == QProcess::FailedToStart)
                             finish(Outcome::Failed,
                                    QStringLiteral("%1 cannot be started; VISUAL or EDITOR names "
                                                   "an editor with a window of its own")
                                        .arg(program));
                     });
    QObject::connect(
        m_editor.get(), qOverload<int, QProcess::ExitStatus>(&QProcess::finished), m_editor.get(),
        [this, program](int code, QProcess::ExitStatus status) {
            if (code != 0 || status != QProcess::NormalExit)
                m_transcript.record(
                    QStringLiteral("failed"),
                    QStringLiteral("%1 has ended with status %2").arg(program).arg(code));
        });
    m_editor->start(program, command << m_filePath);
}

/// Replaces the file in one step, so that a reader sees either the old or the new content.
bool QuickReplies::write(const QStringList &texts, QString &error) const
{
    const QByteArray json = QJsonDocument(QJsonArray::fromStringList(texts)).toJson();
    QDir().mkpath(QFileInfo(m_filePath).path());
    QSaveFile file(m_filePath);
    const bool written =
        file.open(QIODevice::WriteOnly) && file.write(json) == json.size() && file.commit();
    if (!written)
        error = QStringLiteral("%1: %2").arg(m_filePath, file.errorString());
    return written;
}
