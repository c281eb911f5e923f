// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <notification.h>

#include <QVector>

/// The D-Bus signature is a(susssasa{sv}i).
using NotificationList = QVector<NotificationData>;

Q_DECLARE_METATYPE(NotificationList)
