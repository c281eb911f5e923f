// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

namespace Maemo::Timed {

class Exception
{
};

} // namespace Maemo::Timed
