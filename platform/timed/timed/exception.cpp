// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "exception.h"

#include <utility>

namespace Maemo::Timed {

Exception::Exception(std::string what)
    : m_what(std::move(what))
{
}

} // namespace Maemo::Timed
