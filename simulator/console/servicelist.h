// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QAbstractListModel>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariantList>

#include <functional>

class QDBusServiceWatcher;

/// A list of what a service of the handset has, for a view. The service is asked when it appears on
/// the bus and when refresh() is called. The list is empty while the service is absent. If the
/// service does not answer, the list stays as it is.
///
/// The model has a row for each item, which is the role "entry". An update keeps the rows of items
/// that stay, so that a button in such a row can be pressed while other rows come and go.
class ServiceList : public QAbstractListModel
{
    Q_OBJECT
    /// The items are maps. The class that makes the list documents their keys.
    Q_PROPERTY(QVariantList items READ items NOTIFY itemsChanged)

public:
    struct Source
    {
        QDBusMessage question;
        QString signature; ///< The D-Bus signature of the answer.
        std::function<QVariantList(const QVariantList &values)> read; ///< Returns the items.
        QString key; ///< The key in an item whose value identifies it.
        std::function<QString(const QVariantMap &item)> describe; ///< Returns a line.
    };

    ServiceList(QDBusConnection bus, Source source, QObject *parent = nullptr);

    const Source &source() const { return m_source; }
    QVariantList items() const { return m_items; }
    /// Returns what identifies each item.
    QStringList keys() const;
    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// Keeps the list up to date from now on. Before this call the service is not asked.
    void follow();
    /// Asks the service again, because something may have changed.
    void refresh();

Q_SIGNALS:
    void itemsChanged();

private:
    void ask();
    void answered();
    void setItems(const QVariantList &items);
    int rowOf(const QVariant &item, int firstRow) const;
    void insertRow(int row, const QVariant &item);
    void replaceRow(int row, const QVariant &item);
    void removeRowsBetween(int firstRow, int endRow);

    QDBusConnection m_bus;
    const Source m_source;
    QDBusServiceWatcher *m_watcher = nullptr; ///< Null before follow().
    QVariantList m_items;
    bool m_isAsking = false;
    bool m_asksAgain = false; ///< The answer under way may be out of date.
};
