// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "childprocess.h"

#include <QImage>
#include <QMap>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/// A display of a test's own, without a screen.
class OwnDisplay
{
public:
    OwnDisplay() = default;
    virtual ~OwnDisplay() = default;

    /// Returns what has to be installed and is not.
    virtual QStringList missing() const = 0;
    /// Starts the display. Returns an error message, or an empty text.
    virtual QString start() = 0;
    /// Returns the variables with which a process draws on the display.
    virtual QMap<QString, QString> environment() const = 0;
    /// Switches to an empty workspace if the display has workspaces, as a user does who opens
    /// another program while a window is full screen. Returns false if it fails.
    virtual bool showOtherWorkspace() const { return true; }
    /// Returns what the display shows.
    virtual QImage picture() const = 0;
    /// Returns how many pixels of the picture have a colour.
    int count(const QColor &color) const;

private:
    Q_DISABLE_COPY(OwnDisplay)
};

/// An X11 display.
class XDisplay : public OwnDisplay
{
public:
    /// Without a window manager, \a windowManager is empty.
    explicit XDisplay(const QSize &size, QString windowManager = {});

    QStringList missing() const override;
    QString start() override;
    QMap<QString, QString> environment() const override;
    QImage picture() const override;

private:
    const QSize m_size;
    const QString m_windowManagerName;
    const QTemporaryDir m_folder;
    QString m_name;
    ChildProcess m_server;
    ChildProcess m_windowManager;
};

/// A Wayland display. Windows that do not fill it have the size that they want.
class WaylandDisplay : public OwnDisplay
{
public:
    explicit WaylandDisplay(const QSize &size);

    QStringList missing() const override;
    QString start() override;
    QMap<QString, QString> environment() const override;
    bool showOtherWorkspace() const override;
    QImage picture() const override;

private:
    const QSize m_size;
    const QTemporaryDir m_folder;
    QString m_socket;
    ChildProcess m_compositor;
};
