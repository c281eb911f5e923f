// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QAbstractItemModel>
#include <QObject>
#include <QQmlApplicationEngine>
#include <QVariantList>

#include <memory>

class HandsetServices;
class Interpreter;
class Journal;
class QLockFile;
class QQuickWindow;
class QmlErrors;
class Transcript;

/// The control panel, a window beside the phone that acts as the rest of the handset. It shows the
/// state of the handset. Each of its actions is a command line that the interpreter runs as if it
/// had been typed.
class Panel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QObject *alarms READ alarms CONSTANT)
    Q_PROPERTY(QObject *notifications READ notifications CONSTANT)
    Q_PROPERTY(QObject *sims READ sims CONSTANT)
    Q_PROPERTY(QObject *dialRules READ dialRules CONSTANT)
    Q_PROPERTY(QObject *incomingRules READ incomingRules CONSTANT)
    /// A list of ServiceProcess objects.
    Q_PROPERTY(QVariantList services READ services CONSTANT)
    Q_PROPERTY(QObject *qmlErrors READ qmlErrors CONSTANT)
    Q_PROPERTY(QAbstractItemModel *journal READ journal CONSTANT)
    Q_PROPERTY(QString repliesPath READ repliesPath CONSTANT)
    /// A sentence that says how the call UI ended. It is empty while the call UI runs.
    Q_PROPERTY(QString uiEnd READ uiEnd NOTIFY uiEndChanged)

public:
    /// The parts of the handset that the panel uses. All of them must outlive it.
    struct Parts
    {
        Transcript &transcript;
        Interpreter &interpreter;
        HandsetServices &services;
        QmlErrors &qmlErrors;
        Journal &journal;
        QString repliesPath; ///< The path of the file with the quick replies.
    };

    /// Chooses how the panel is drawn. Call this before the application object is made.
    static void prepare();

    explicit Panel(const Parts &handset, QObject *parent = nullptr);
    ~Panel() override;

    /// Tells the panel that the call UI has been started. The window opens after the first start,
    /// so that it does not delay the call UI.
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

    /// Returns null before the window is open.
    QQuickWindow *window() const;

    /// Runs a command that consists of \a words.
    Q_INVOKABLE void run(const QStringList &words);
    /// Runs a line that the user has typed.
    Q_INVOKABLE void type(const QString &line);
    /// Returns the transcript so far.
    Q_INVOKABLE QString printedSoFar() const;
    /// Returns the commands that were run as the lines of a script.
    Q_INVOKABLE QString script() const;
    /// Puts the script on the clipboard.
    Q_INVOKABLE void copyScript() const;

Q_SIGNALS:
    void uiEndChanged();
    void printed(const QString &line);

private:
    void open();
    void place();

    const Parts m_handset;
    QQmlApplicationEngine m_engine;
    std::unique_ptr<QLockFile> m_place; ///< No other panel of the machine has it.
    QString m_uiEnd;
    QStringList m_lines;
    QStringList m_commands;
};
