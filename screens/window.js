// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

// Shows the window above all others: full screen on a handset, and as a window on a desk.
function bringToFront() {
    if (Qt.application.arguments.indexOf("-windowed") >= 0) {
        __window.visible = true;
        __window.requestActivate();
    } else {
        // A Wayland compositor raises a window only when it is shown anew.
        if (!__window.active)
            __window.hide();
        __window.showFullScreen(); // This activates it as well.
    }
    __window.raise(); // X11 raises it on request, also if it is active but covered.
}
