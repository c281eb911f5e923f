// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// A text message, or a part of one, that a modem is told to send (SMS-SUBMIT, 3GPP TS 23.040,
/// 9.2.2.2).
struct SubmittedMessage
{
    QString number;
    QString text;
    int reference = 0; ///< What the parts of one message have in common.
    int parts = 1;
    int part = 1; ///< From 1 on.

    /// Reads a message in the form that +CMGS takes, hexadecimal with the address of the service
    /// centre before it. \a length is that of the message without this address. Returns nothing if
    /// it cannot be read.
    static std::optional<SubmittedMessage> read(const QByteArray &hex, int length);
};
