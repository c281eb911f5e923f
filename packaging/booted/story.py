# SPDX-FileCopyrightText: 2026 The Parley developers
# SPDX-License-Identifier: BSD-3-Clause

"""What the booted handset is held to: the checks of these modules, in this order."""

# pylint: disable=unused-import
import starting
import phoning
import keeping
from checks import CHECKS

__all__ = ["CHECKS", "keeping", "phoning", "starting"]
