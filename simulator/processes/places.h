// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QString>

/// The programs that the handset runs, and the files that it shows. In a build tree, a file beside
/// the running program names those of the build; otherwise they are those of the installation.
struct Places
{
    QString ui; ///< The call UI.
    QString timeDaemon;
    QString alarm; ///< The program that shows due alarms.
    QString phone; ///< The folder of the plugin that is the display of the phone.
    QString screens; ///< The QML file of the call screens.
    QString translations; ///< The folder of the catalogues of texts.
    QString modules; ///< The folder of the QML modules of the screens, unless Qt finds them itself.
    QString kit; ///< The folder of the QML modules for authors of screens.
    QString tour; ///< The script of the tour.

    static Places find();
};
