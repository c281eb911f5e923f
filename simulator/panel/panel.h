// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QAbstractItemModel>
#include <QObject>
#include <QQmlApplicationEngine>
#include <QVariantList>

class HandsetServices;
class Interpreter;
class Journal;
class QQuickWindow;
class QmlErrors;
class Transcript;

/// The control panel: a window beside the phone with what the rest of the handset would do. It
/// shows the handset's state as it is, and whatever it does is a command line that the interpreter
/// runs as if it had been typed.
class Panel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QObject *alarms READ alarms CONSTANT)
    Q_PROPERTY(QObject *notifications READ notifications CONSTANT)
    Q_PROPERTY(QObject *sims READ sims CONSTANT)
    Q_PROPERTY(QObject *dialRules READ dialRules CONSTANT)
    Q_PROPERTY(QObject *incomingRules READ incomingRules CONSTANT)
    /// Each a ServiceProcess.
    Q_PROPERTY(QVariantList services READ services CONSTANT)
    Q_PROPERTY(QObject *qmlErrors READ qmlErrors CONSTANT)
    Q_PROPERTY(QAbstractItemModel *journal READ journal CONSTANT)
    Q_PROPERTY(QString repliesPath READ repliesPath CONSTANT)
    /// How the call UI ended, a sentence; empty while it runs.
    Q_PROPERTY(QString uiEnd READ uiEnd NOTIFY uiEndChanged)

public:
    /// What of the handset it shows, and what runs its commands. All of it outlives the panel.
    struct Parts
    {
        Transcript &transcript;
        Interpreter &interpreter;
        HandsetServices &services;
        QmlErrors &qmlErrors;
        Journal &journal;
        QString repliesPath; ///< Of the file with the quick replies.
    };

    /// Chooses how the panel is drawn. To be called before the application is made.
    static void prepare();

    explicit Panel(const Parts &handset, QObject *parent = nullptr);

    /// The call UI is started, for the first time or again. The window opens after the first time,
    /// so that the call UI need not wait for it.
    void uiStarting();
    void setUiEnd(const QString &how);

    QObject *alarms() const;
    QObject *notifications() const;
    QObject *sims() const;
    QObject *dialRules() const;
    QObject *incomingRules() const;
    QVariantList services() const;
    QObject *qmlErrors() const;
    QAbstractItemModel *journal() const;
    QString repliesPath() const { return m_handset.repliesPath; }
    QString uiEnd() const { return m_uiEnd; }

    /// Null while it is not open.
    QQuickWindow *window() const;

    /// Has the interpreter run the command of these words.
    Q_INVOKABLE void run(const QStringList &words);
    /// Has it run a line that the user has typed.
    Q_INVOKABLE void type(const QString &line);
    /// What has been printed so far.
    Q_INVOKABLE QString printedSoFar() const;
    /// The commands that were run, a line each, as a script takes them.
    Q_INVOKABLE QString script() const;
    /// Puts the script on the clipboard.
    Q_INVOKABLE void copyScript() const;

Q_SIGNALS:
    void uiEndChanged();
    void printed(const QString &line);

private:
    void open();

    const Parts m_handset;
    QQmlApplicationEngine m_engine;
    QString m_uiEnd;
    QStringList m_lines;
    QStringList m_commands;
};
