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

/// A handset on a desktop: two private buses with their services, the home screen, the call UI and
/// a control panel. All of them end when the object is destroyed.
class Handset : public QObject
{
    Q_OBJECT

public:
    struct Options
    {
        QString uiProgram;
        QString qmlFile;
        QString catalogueFolder; ///< The folder with the translations of the call UI.
        QString phoneFolder; ///< The folder of the plugin that is the display of the phone.
        QString moduleFolder; ///< The folder of the QML modules of the screens, or empty.
        QString kitFolder; ///< The folder of the QML modules that are not for the call UI.
        QString stateFolder; ///< Keeps the state of the services; empty to discard it.
        bool hasOfono = false; ///< The telephony is the real oFono.
        Interpreter::AtFailure atFailure = Interpreter::AtFailure::GoOn;
        bool hasPrompt = false; ///< Its user types on a terminal, where words are completed.
        bool hasPanel = false; ///< Its user can start again what did not start.
        bool watches = false; ///< Starts the call UI again when its QML code changes.
        bool replays = false; ///< Sends the last request again after that.
    };

    explicit Handset(const Options &options, QObject *parent = nullptr);
    ~Handset() override;

    /// Starts all parts. Commands run as soon as the call UI is on the bus. Prints a message and
    /// returns false if a bus or the home screen cannot be started.
    bool start();

    /// Command lines may be enqueued at any time.
    Interpreter &interpreter() { return m_interpreter; }

    const Transcript &transcript() const { return m_transcript; }
    /// Null before start(), and if the handset has no panel.
    Panel *panel() { return m_panel.get(); }

Q_SIGNALS:
    /// All commands have run, or a part of the handset has ended unexpectedly.
    void ended(bool succeeded);

private:
    bool makeFolder();
    bool startBus(PrivateBus &bus, const QString &name, const QString &connection);
    bool startHomeScreen();
    void makeServices();
    void addCommands();
    void addValues();
    void watchUi();
    void watchScreens();
    void makePanel();
    void placeCatalogue();
    void placeControlGroups();
    void startServicesAndUi();
    QProcessEnvironment uiEnvironment(const QProcessEnvironment &world) const;
    void startUi(const Finish &finish);
    void uiSettled(Outcome outcome, const QString &text);
    QVector<Command> restartCommands();
    void recordLog(const QString &line);
    void phoneReported(const QString &what);
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
    Sandbox m_sandbox; ///< For the call UI.
    QuickReplies m_replies;
    std::unique_ptr<UiProcess> m_ui;
    QmlErrors m_qmlErrors;
    std::unique_ptr<Panel> m_panel;
    QElapsedTimer m_sinceUiStart;
    QTimer m_uiPatience;
    bool m_uiHasBeenUp = false;
    bool m_uiIsShown = false; ///< Whether its window is, or is to be shown at the start.
    Finish m_uiFinish; ///< Null unless the call UI is being started.
};
