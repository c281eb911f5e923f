// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "canopy.h"
#include "interpreter.h"
#include "journal.h"
#include "privatebus.h"
#include "qmlerrors.h"
#include "quickreplies.h"
#include "sandbox.h"
#include "services.h"
#include "transcript.h"
#include "uiprocess.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTimer>

#include <memory>

/// A handset on a desktop: two private buses, the services on them, the home screen, and the call
/// UI. All of it goes when the object goes.
class Handset : public QObject
{
    Q_OBJECT

public:
    struct Options
    {
        QString uiProgram;
        QString qmlFile;
        QString catalogueFolder; ///< Of the call UI's texts.
        QString stateFolder; ///< Keeps what outlives the session; empty to keep nothing.
        Interpreter::AtFailure atFailure = Interpreter::AtFailure::GoOn;
        bool hasPanel = false; ///< Its user can start again what has not started.
        bool watches = false; ///< Starts the call UI again when its QML code changes.
    };

    explicit Handset(const Options &options, QObject *parent = nullptr);
    ~Handset() override;

    /// Starts everything. Commands run as soon as the call UI is on the bus. Where something cannot
    /// be started, says so and returns false.
    bool start();

    /// Takes command lines, from now on.
    Interpreter &interpreter() { return m_interpreter; }

    const Transcript &transcript() const { return m_transcript; }
    /// Null before start().
    Services *services() { return m_services.get(); }
    QmlErrors &qmlErrors() { return m_qmlErrors; }
    Journal *journal() { return &m_journal; }
    QString repliesPath() const { return m_replies.filePath(); }

Q_SIGNALS:
    /// The call UI is started, for the first time or again.
    void uiStarting();
    /// The call UI has ended without being asked to, and the handset goes on; \a how is a sentence.
    void uiEnded(const QString &how);
    /// The commands are through, or a part of the handset has gone without being asked to.
    void ended(bool succeeded);

private:
    bool startBus(PrivateBus &bus, const QString &name);
    bool startCanopy(const QDBusConnection &session);
    void startServices(const QDBusConnection &session);
    void placeCatalogue();
    void startUi(const Finish &finish);
    void uiSettled(Outcome outcome, const QString &text);
    Command restartCommand();
    void watchScreens();
    void recordLog(const QString &line);
    void uiDied(const QString &how);
    void partDied(const QString &what);

    const Options m_options;
    Transcript m_transcript;
    Interpreter m_interpreter;
    QTemporaryDir m_folder;
    PrivateBus m_sessionBus;
    PrivateBus m_systemBus;
    Journal m_journal;
    std::unique_ptr<Services> m_services;
    std::unique_ptr<Canopy> m_canopy;
    Sandbox m_sandbox; ///< Of the call UI.
    QuickReplies m_replies;
    std::unique_ptr<UiProcess> m_ui;
    QmlErrors m_qmlErrors;
    QElapsedTimer m_sinceUiStart;
    QTimer m_uiPatience;
    bool m_uiHasBeenUp = false;
    Finish m_uiFinish; ///< Of a start of the call UI that is under way.
};
