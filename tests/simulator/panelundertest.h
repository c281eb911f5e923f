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

/// The base class of tests of the control panel. Each test function has a folder, and after start()
/// a handset with a panel in it. PARLEY_UI names the call UI.
class PanelUnderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

protected:
    /// Starts a handset with the screens in a file. Waits until the call UI and the panel have
    /// started.
    bool start(const QString &qmlFile);
    /// Writes the screens to the file "screens.qml" in the folder and calls start().
    bool startWith(const QByteArray &qml);
    bool writeScreens(const QByteArray &qml) const;

    Panel *panel() const;
    /// Returns an item of the panel, or null.
    QQuickItem *item(const QString &name) const;
    bool isShown(const QString &name) const;
    QString textOf(const QString &name) const;
    bool setText(const QString &name, const QString &text) const;
    bool isLit(const QString &name) const;
    void press(const QString &name);
    /// Clicks a button and waits for the end of its command, which must be \a line.
    void click(const QString &name, const QString &line);
    bool runsToTheEnd(const QString &line);
    /// Waits for a line of the transcript, ignoring the blanks around it.
    bool prints(const QString &line);

    /// Returns the process of the call UI, which runs within the sandbox, or 0.
    pid_t uiProcess() const;

    const QString m_tempPath = QDir::tempPath();
    std::unique_ptr<MessageLog> m_log;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<Handset> m_handset;
    QStringList m_lines; ///< The lines of the transcript.
    QStringList m_commands;
};
