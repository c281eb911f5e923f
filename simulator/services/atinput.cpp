// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "atinput.h"

#include <utility>

namespace {

constexpr char carriageReturn = '\r';
constexpr char lineFeed = '\n';
constexpr char controlZ = '\x1a';
constexpr char escape = '\x1b';

} // namespace

AtInput::AtInput(Handler handler)
    : m_handler(std::move(handler))
{
}

void AtInput::receive(const QByteArray &bytes)
{
    for (const char byte : bytes) {
        if (m_isMessage && byte == controlZ)
            end(Kind::Message);
        else if (m_isMessage && byte == escape)
            end(Kind::NoMessage);
        else if (!m_isMessage && byte == carriageReturn)
            end(Kind::Line);
        else if (m_text.size() == LongestLine)
            m_isTooLong = true;
        else if (byte != carriageReturn && byte != lineFeed)
            m_text.append(byte);
    }
}

void AtInput::expectMessage()
{
    clear();
    m_isMessage = true;
}

void AtInput::clear()
{
    m_text.clear();
    m_isMessage = false;
    m_isTooLong = false;
}

/// The handler may expect a message next.
void AtInput::end(Kind kind)
{
    const QByteArray text = m_text;
    const bool isTooLong = m_isTooLong;
    clear();
    m_handler(isTooLong ? Kind::TooLong : kind, isTooLong ? QByteArray() : text);
}
