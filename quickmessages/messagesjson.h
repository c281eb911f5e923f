// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QByteArray>
#include <QStringList>

/// Returns the messages in \a json (RFC 8259), an array of strings, unchanged and in their order.
/// Values that are not strings, and strings of white space only, are left out. Returns an empty
/// list if \a json is anything else.
QStringList messagesFromJson(const QByteArray &json);

/// Returns \a messages as such an array. White space around a message, and messages of white space
/// only, are left out.
QByteArray messagesToJson(const QStringList &messages);
