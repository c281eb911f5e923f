// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QByteArray>
#include <QObject>

class QSocketNotifier;

/// Reads lines of UTF-8 from a terminal or a pipe as they arrive.
class LineReader : public QObject
{
    Q_OBJECT

public:
    /// The caller keeps the ownership of \a descriptor.
    explicit LineReader(int descriptor, QObject *parent = nullptr);

Q_SIGNALS:
    void lineRead(const QString &line);
    /// The input has ended. A last line without a newline has been reported before.
    void ended();

private:
    void read();

    const int m_descriptor;
    QSocketNotifier *const m_notifier;
    QByteArray m_pending;
};
