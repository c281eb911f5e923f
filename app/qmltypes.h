// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

/// Registers the native types that QML imports as "com.nimbo.parley" 1.0.
void registerQmlTypes();
