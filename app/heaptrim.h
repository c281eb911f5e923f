// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QFile>
#include <QObject>

class QQmlEngine;

/// Gives memory back to the system that requests have taken and nobody uses any more. Others may
/// send any number of them, and large ones; what they leave behind, the engine keeps until it has
/// reason to look for garbage, and the C library keeps whatever is below something that is in use.
///
/// It looks at the process's size whenever the event loop is about to wait, and acts where that has
/// grown by 32 MiB. For the thread that runs the event loop.
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
    qint64 residentPages() const;

    QQmlEngine &m_engine;
    QFile m_size;
    qint64 m_pagesBefore = 0; ///< After the last time; 0 before the first look.
    bool m_isDue = false;
};
