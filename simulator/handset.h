// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "handsetservices.h"
#include "homescreen.h"
#include "interpreter.h"
#include "journal.h"
#include "panel.h"
#include "privatebus.h"
#include "qmlerrors.h"
#include "quickreplies.h"
#include "sandbox.h"
#include "transcript.h"
#include "uiprocess.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTimer>

#include <memory>

/// A handset on a desktop: two private buses, the services on them, the home screen, the call UI,
/// and a control panel for it all. All of it goes when the object goes.
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
        bool hasPanel = false; ///< Has a panel, whose user can start again what has not started.
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
    /// Null where there is none, and before start().
    Panel *panel() { return m_panel.get(); }

Q_SIGNALS:
    /// The commands are through, or a part of the handset has gone without being asked to.
    void ended(bool succeeded);

private:
    bool makeFolder();
    bool startBus(PrivateBus &bus, const QString &name, const QString &connection);
    bool startHomeScreen();
    void makeServices();
    void addCommands();
    void watchUi();
    void watchScreens();
    void makePanel();
    void placeCatalogue();
    void startServicesAndUi();
    void startUi(const Finish &finish);
    void uiSettled(Outcome outcome, const QString &text);
    Command restartCommand();
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
    std::unique_ptr<HandsetServices> m_services;
    std::unique_ptr<HomeScreen> m_homeScreen;
    Sandbox m_sandbox; ///< Of the call UI.
    QuickReplies m_replies;
    std::unique_ptr<UiProcess> m_ui;
    QmlErrors m_qmlErrors;
    std::unique_ptr<Panel> m_panel;
    QElapsedTimer m_sinceUiStart;
    QTimer m_uiPatience;
    bool m_uiHasBeenUp = false;
    Finish m_uiFinish; ///< Of a start of the call UI that is under way.
};
