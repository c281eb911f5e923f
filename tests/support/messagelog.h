// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QStringList>
#include <QtGlobal>

/// Collects what this process logs while the object lives, so that a test can check that it logs
/// what is expected and nothing else.
class MessageLog
{
public:
    MessageLog();
    ~MessageLog();

    /// Returns the lines that were logged since the last call, each as "warning: text".
    QStringList take();

private:
    Q_DISABLE_COPY(MessageLog)

    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &text);

    QtMessageHandler m_before;
};
