// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "childprocess.h"

#include <QElapsedTimer>
#include <QStringList>
#include <QVector>

/// Runs the scripts of a folder, each on a handset of its own without a display, and sums up.
///
/// A script passes if it runs to its end. The scripts are the files named "*.script", and are run
/// in the order of their names.
class ScreenTests : public QObject
{
    Q_OBJECT

public:
    struct Options
    {
        QString folder; ///< The folder with the scripts.
        QString reportFile; ///< Gets a report in the form of JUnit; empty for none.
        QStringList arguments; ///< The other arguments of each handset, such as "--qml FILE".
    };

    explicit ScreenTests(Options options, QObject *parent = nullptr);

    /// Starts the first script. ended() follows, even if there is none.
    void start();

Q_SIGNALS:
    /// \a succeeded says whether there was a script, all of them have passed, and the report is
    /// written.
    void ended(bool succeeded);

private:
    struct Result
    {
        QString name; ///< The name of the script without its folder and suffix.
        double seconds;
        QString failure; ///< Why it has failed, in one line; empty if it has passed.
        QString output;
    };

    void runNext();
    void scriptEnded(const QString &failure);
    bool sumUp() const;
    bool writeReport() const;

    const Options m_options;
    QStringList m_scripts; ///< The files that have not been run yet.
    QVector<Result> m_results;
    ChildProcess m_handset;
    QElapsedTimer m_sinceStart;
    QString m_running;
    QString m_output;
};
