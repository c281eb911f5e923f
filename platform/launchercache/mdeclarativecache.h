// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

class QGuiApplication;
class QQuickView;

/// Provides the application and the view of a process.
///
/// On a handset, a launcher may have created both in advance, in a process that waits for its
/// program. This implementation creates them on request.
class MDeclarativeCache
{
public:
    /// Returns the application object of this process, which the caller owns. \a argc and \a argv
    /// are those of main() and must outlive the object. Qt removes its own arguments from them.
    /// Call this function only once.
    static QGuiApplication *qApplication(int &argc, char **argv);

    /// Returns a hidden view without a source. The caller owns it and deletes it before the
    /// application.
    static QQuickView *qQuickView();
};
