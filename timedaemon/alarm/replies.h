// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

class QDBusMessage;
class QString;

/// Returns whether \a answer is a reply whose arguments have exactly this D-Bus signature. Reading
/// the arguments of any other answer could end the process.
bool isReply(const QDBusMessage &answer, const char *signature);

/// Describes for the log what is wrong with an \a answer that is not the expected reply.
QString problemOf(const QDBusMessage &answer);
