// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QStringList>
#include <QtGlobal>

/// Collects what this process logs while the object lives, so that a test can say what it expects
/// to be logged and that nothing else is.
class MessageLog
{
public:
    MessageLog();
    ~MessageLog();

    /// The lines logged since the last call, each as "warning: text".
    QStringList take();

private:
    Q_DISABLE_COPY(MessageLog)

    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &text);

    QtMessageHandler m_before;
};
