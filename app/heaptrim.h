// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QFile>
#include <QObject>
#include <QTimer>

#include <chrono>

class QQmlEngine;

/// Returns memory to the system that was taken for requests and is no longer in use. Other
/// processes may send any number of requests, and large ones. The engine keeps their texts until it
/// collects garbage, and the C library keeps free memory that lies below memory in use.
///
/// The object looks at the size of the process whenever the event loop is about to wait. It acts
/// when the size has grown by 32 MiB. If the process is still as large after that, it acts again
/// five times at most, later each time: a request that was being read meanwhile is no longer in use
/// by then. Create it in the thread that runs the event loop.
class HeapTrim : public QObject
{
    Q_OBJECT

public:
    /// \a engine must live longer.
    explicit HeapTrim(QQmlEngine &engine);

protected:
    void customEvent(QEvent *event) override;

private:
    Q_DISABLE_COPY(HeapTrim)

    void look();
    void actAfterWaitingRequests();
    qint64 residentPages() const;

    QQmlEngine &m_engine;
    QFile m_size;
    /// The smallest size since memory was last returned; 0 before the first look.
    qint64 m_pagesBefore = 0;
    /// The process is too large with so many.
    qint64 m_mostPages = 0;
    bool m_isDue = false;
    QTimer m_later;
    std::chrono::seconds m_wait{}; ///< How long m_later waits the next time.
};
