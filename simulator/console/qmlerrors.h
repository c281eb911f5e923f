// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QObject>
#include <QVariantList>

/// What the QML engine of the call UI has complained about, as found in its log.
class QmlErrors : public QObject
{
    Q_OBJECT
    /// Maps with "file" (path), "line", "column" (0 if not told) and "text"; the oldest first.
    /// After a hundred no more are taken.
    Q_PROPERTY(QVariantList items READ items NOTIFY itemsChanged)

public:
    using QObject::QObject;

    QVariantList items() const { return m_items; }

    /// Takes a line of the log, and whether it was a complaint.
    bool read(const QString &line);
    /// Forgets them.
    void clear();

Q_SIGNALS:
    void itemsChanged();

private:
    QVariantList m_items;
};
