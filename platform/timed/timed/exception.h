// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <exception>
#include <string>

namespace Maemo::Timed {

/// Thrown for a value that an event cannot have.
class Exception : public std::exception
{
public:
    explicit Exception(std::string what);

    const char *what() const noexcept override { return m_what.c_str(); }

private:
    std::string m_what;
};

} // namespace Maemo::Timed
