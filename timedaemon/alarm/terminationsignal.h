// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QObject>

/// Turns SIGTERM and SIGINT into a Qt signal, so that the program can end in order.
class TerminationSignal : public QObject
{
    Q_OBJECT

public:
    /// Create the object before the first thread is started: a thread that does not block the
    /// signals would receive them.
    explicit TerminationSignal(QObject *parent = nullptr);
    ~TerminationSignal() override;

Q_SIGNALS:
    void received();

private:
    Q_DISABLE_COPY(TerminationSignal)

    int m_descriptor = -1;
};
