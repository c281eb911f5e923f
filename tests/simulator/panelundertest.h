// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "handset.h"
#include "messagelog.h"
#include "panel.h"

#include <QDir>
#include <QObject>
#include <QQuickItem>
#include <QTemporaryDir>

#include <memory>

#include <sys/types.h>

/// What a test of the control panel derives from: for each of its functions a folder, and in it,
/// when it is started, a handset with a panel. The call UI is the one that PARLEY_UI names.
class PanelUnderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

protected:
    /// Starts a handset with the screens in a file, and its panel. Waits until both are there.
    bool start(const QString &qmlFile);
    /// The same with screens that are written to a file, "screens.qml" in the folder.
    bool startWith(const QByteArray &qml);
    bool writeScreens(const QByteArray &qml) const;

    Panel *panel() const;
    /// Of the panel; null if there is none.
    QQuickItem *item(const QString &name) const;
    bool isShown(const QString &name) const;
    QString textOf(const QString &name) const;
    bool setText(const QString &name, const QString &text) const;
    bool isLit(const QString &name) const;
    void press(const QString &name);
    /// Clicks a button and waits for the end of the command, which is \a line.
    void click(const QString &name, const QString &line);
    bool runsToTheEnd(const QString &line);
    /// Waits for a line of the transcript, without the blanks around it.
    bool prints(const QString &line);

    /// The call UI's process, within its sandbox; 0 if there is none.
    pid_t uiProcess() const;

    const QString m_tempPath = QDir::tempPath();
    std::unique_ptr<MessageLog> m_log;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<Handset> m_handset;
    QStringList m_lines; ///< That were printed.
    QStringList m_commands;
};
