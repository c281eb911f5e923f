// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QAbstractListModel>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariantList>

#include <functional>

class QDBusServiceWatcher;

/// What a service of the handset has, kept as a list for who shows it. The service is asked when it
/// comes and when refresh() is called; while it is away the list is empty. Nothing waits for it: if
/// it does not answer, the list stays as it was.
///
/// As a model it has a row for each item, whose role "entry" is the item. The row of an item that
/// stays is kept, so that a button in it can be pressed while others come and go.
class ServiceList : public QAbstractListModel
{
    Q_OBJECT
    /// Maps, whose keys are told by whoever made the list.
    Q_PROPERTY(QVariantList items READ items NOTIFY itemsChanged)

public:
    struct Source
    {
        QDBusMessage question;
        QString signature; ///< Of the answer.
        std::function<QVariantList(const QVariantList &values)> read; ///< The answer's items.
        QString key; ///< Of an item's map: items with the same value there are the same one.
        std::function<QString(const QVariantMap &item)> describe; ///< An item in one line.
    };

    ServiceList(QDBusConnection bus, Source source, QObject *parent = nullptr);

    const Source &source() const { return m_source; }
    QVariantList items() const { return m_items; }
    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// Keeps the list from now on. Before that nothing is asked.
    void follow();
    /// Something has changed.
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
    QDBusServiceWatcher *m_watcher = nullptr; ///< Once the list is kept.
    QVariantList m_items;
    bool m_isAsking = false;
    bool m_asksAgain = false; ///< What is being answered may be out of date.
};
