// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>

#include <memory>

/// One key of the handset's settings store, which is dconf.
///
/// A key is absolute ("/desktop/..."). A text that is not a dconf key is an unset key.
/// Items that are alive at the same time share one connection to the store.
class MGConfItem
{
public:
    explicit MGConfItem(const QString &key);

    /// Returns the current value of the key: a QString, QStringList, bool, int, uint, qlonglong,
    /// qulonglong or double, depending on the type of the setting. Invalid if the key is unset,
    /// cannot be read, or has any other type.
    QVariant value() const;

private:
    Q_DISABLE_COPY(MGConfItem)

    class Store;

    QByteArray m_key; ///< Empty if the text is not a dconf key.
    std::shared_ptr<Store> m_store;
};
