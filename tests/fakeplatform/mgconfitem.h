// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QString>
#include <QVariant>

class MGConfItem
{
public:
    explicit MGConfItem(const QString &key);

    QVariant value() const;

private:
    Q_DISABLE_COPY(MGConfItem)

    const QString m_key;
};
