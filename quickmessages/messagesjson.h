// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QByteArray>
#include <QStringList>

/// The messages in \a json (RFC 8259), an array of strings, as they stand and in their order. What
/// is no string, or has nothing but white space, is left out. None where \a json is anything else.
QStringList messagesFromJson(const QByteArray &json);

/// The other way round. White space around a message, and messages of nothing else, are left out.
QByteArray messagesToJson(const QStringList &messages);
