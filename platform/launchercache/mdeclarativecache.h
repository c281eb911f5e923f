// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

class QGuiApplication;
class QQuickView;

/// Hands out the application and the view of a process.
///
/// A handset's launcher may have made both in advance, in a process that waited for its program.
/// Here both are made when they are asked for.
class MDeclarativeCache
{
public:
    /// The application object of this process. \a argc and \a argv are main's and must outlive
    /// it; Qt takes its own arguments out of them. The caller owns the result. To be called once.
    static QGuiApplication *qApplication(int &argc, char **argv);

    /// A view without a source, not yet shown. The caller owns the result and deletes it before the
    /// application.
    static QQuickView *qQuickView();
};
