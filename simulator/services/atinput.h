// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QByteArray>

#include <functional>

/// Splits what a modem receives into lines, which end with a carriage return, and messages, which
/// end with Ctrl-Z (3GPP TS 27.005, 3.5.1). Takes any bytes.
class AtInput
{
public:
    /// A longer line is not one.
    static constexpr int LongestLine = 2048;

    enum class Kind {
        Line,
        Message,
        NoMessage, ///< The message was taken back with Escape.
        TooLong,
    };

    using Handler = std::function<void(Kind kind, const QByteArray &text)>;

    explicit AtInput(Handler handler);

    void receive(const QByteArray &bytes);
    /// What comes next is a message.
    void expectMessage();
    /// Forgets what has not ended yet.
    void clear();

private:
    void end(Kind kind);

    Handler m_handler;
    QByteArray m_text;
    bool m_isMessage = false;
    bool m_isTooLong = false;
};
