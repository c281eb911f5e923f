// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

class QQuickView;

/// Draws the screens of a hidden window before anybody asks for them, as soon as the process has
/// nothing else to do. Their first frame then has what it needs: the native window, its buffer, the
/// scene and its glyphs. Does nothing if the window is shown by then, or if the screens are not
/// drawn by software: only then can a hidden window be drawn without an expense of its own.
void drawAhead(QQuickView &view);
