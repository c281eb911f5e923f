// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QVariantList>

#include <functional>

class QDBusServiceWatcher;

/// What a service of the handset has, kept as a list for who shows it. The service is asked when it
/// comes and when refresh() is called; while it is away the list is empty. Nothing waits for it: if
/// it does not answer, the list stays as it was.
class ServiceList : public QObject
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
    };

    ServiceList(QDBusConnection bus, Source source, QObject *parent = nullptr);

    QVariantList items() const { return m_items; }

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

    QDBusConnection m_bus;
    const Source m_source;
    QDBusServiceWatcher *m_watcher = nullptr; ///< Once the list is kept.
    QVariantList m_items;
    bool m_isAsking = false;
    bool m_asksAgain = false; ///< What is being answered may be out of date.
};
