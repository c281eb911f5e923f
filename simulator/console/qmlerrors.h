// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QObject>
#include <QVariantList>

/// The errors and warnings of the QML engine, read from the log of the call UI.
class QmlErrors : public QObject
{
    Q_OBJECT
    /// Maps with "file" (path), "line", "column" (0 if unknown) and "text"; the oldest first.
    /// At most a hundred are kept.
    Q_PROPERTY(QVariantList items READ items NOTIFY itemsChanged)

public:
    using QObject::QObject;

    QVariantList items() const { return m_items; }

    /// Reads a line of the log. Returns whether it was an error or a warning.
    bool read(const QString &line);
    /// Removes all items.
    void clear();

Q_SIGNALS:
    void itemsChanged();

private:
    QVariantList m_items;
};
