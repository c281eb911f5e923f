// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QByteArray>
#include <QObject>

class QSocketNotifier;

/// Reads lines of UTF-8 from a file descriptor as they come, a terminal's or a pipe's.
class LineReader : public QObject
{
    Q_OBJECT

public:
    /// \a descriptor stays the caller's.
    explicit LineReader(int descriptor, QObject *parent = nullptr);

Q_SIGNALS:
    void lineRead(const QString &line);
    /// There is no more; a last line without a newline has been read.
    void ended();

private:
    void read();

    const int m_descriptor;
    QSocketNotifier *const m_notifier;
    QByteArray m_pending;
};
