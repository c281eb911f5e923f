// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

// Shows the window above all others: full screen on a handset, and as a window on a desk.
function bringToFront() {
    if (Qt.application.arguments.indexOf("-windowed") >= 0) {
        __window.visible = true;
        __window.requestActivate();
    } else {
        // A Wayland compositor raises a window only when it is shown anew. Some X11 window managers
        // lose a window that is hidden and shown at once, and all of them raise it on request.
        if (Qt.platform.pluginName.startsWith("wayland") && !__window.active)
            __window.hide();
        __window.showFullScreen(); // This activates it as well.
    }
    __window.raise(); // On X11 it may be active but covered.
}
