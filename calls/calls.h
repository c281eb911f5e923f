// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "callmodel.h"
#include "ofono.h"
#include "servicedialogue.h"

#include <QQmlParserStatus>
#include <QStringList>

#include <map>
#include <memory>
#include <optional>

/// The calls of all modems, and what the user may do with them. It follows oFono's interfaces
/// org.ofono.VoiceCallManager and org.ofono.VoiceCall.
///
/// All functions return at once. What cannot be done is reported by failed(), later.
class Calls : public CallModel, public QQmlParserStatus
{
    Q_OBJECT
    Q_INTERFACES(QQmlParserStatus)
    /// Whether there is a telephony stack.
    Q_PROPERTY(Telephony::Status status READ status NOTIFY statusChanged)
    /// The modems through which calls can be made now, by their paths.
    Q_PROPERTY(QStringList modems READ modems NOTIFY modemsChanged)
    /// The emergency numbers that the stack knows.
    Q_PROPERTY(QStringList emergencyNumbers READ emergencyNumbers NOTIFY emergencyNumbersChanged)
    /// The dialogue with the network, for requests such as *100#.
    Q_PROPERTY(ServiceDialogue *dialogue READ dialogue CONSTANT)

public:
    explicit Calls(QObject *parent = nullptr);

    void classBegin() override { }
    /// Connects to the bus.
    void componentComplete() override { m_ofono.start(); }

    /// Sets how patient this object is with the stack. Call this before componentComplete().
    void setPatience(const Ofono::Patience &patience) { m_ofono.setPatience(patience); }

    Telephony::Status status() const { return m_ofono.status(); }
    QStringList modems() const { return m_modems; }
    QStringList emergencyNumbers() const { return m_emergencyNumbers; }
    ServiceDialogue *dialogue() { return &m_dialogue; }

    /// Calls \a number, in any usual form, through \a modem, or the first that is online,
    /// preferably one with a SIM. If the stack is just starting, this waits for it. A number such
    /// as *100# begins the dialogue instead. An emergency number is dialled whatever it looks like,
    /// and through any modem if \a modem cannot.
    Q_INVOKABLE void dial(const QString &number, const QString &modem = QString());
    /// Answers \a call. If it is waiting, this is the same as holdAndAnswer().
    Q_INVOKABLE void answer(int call);
    /// Holds the active calls and answers \a call, which is waiting.
    Q_INVOKABLE void holdAndAnswer(int call);
    /// Ends the active calls and answers \a call, which is waiting.
    Q_INVOKABLE void endAndAnswer(int call);
    /// Ends \a call, or rejects it.
    Q_INVOKABLE void hangUp(int call);
    /// Ends all calls of \a modem, or of all modems. A waiting call stays.
    Q_INVOKABLE void hangUpAll(const QString &modem = QString());
    /// Holds the active calls and activates the held ones, of \a modem or of that of the ongoing
    /// call.
    Q_INVOKABLE void swap(const QString &modem = QString());
    /// Joins the active and the held calls to a conference.
    Q_INVOKABLE void join(const QString &modem = QString());
    /// Speaks to \a call, one of a conference, alone, and holds the others.
    Q_INVOKABLE void split(int call);
    /// Sends \a tones (0 to 9, *, #, A to D) in the active call. Tones that come while others are
    /// being sent follow them. Whatever else their modem is told meanwhile waits for the tone that
    /// is being sent, a second at most, and drops those that follow.
    Q_INVOKABLE void sendTones(const QString &tones, const QString &modem = QString());

Q_SIGNALS:
    void statusChanged();
    void modemsChanged();
    void emergencyNumbersChanged();
    /// The function \a action, or "reply" or "cancel" of the dialogue, has failed for \a call (0 if
    /// there is none) and \a number. \a explanation tells the user why, in the user's language.
    void failed(const QString &action, int call, const QString &number, int error,
                const QString &explanation);

private:
    /// What the user wants a modem to do.
    struct Wish
    {
        QString action;
        int call; ///< 0 if it is not about one call.
        QString number;
        QString modem;
        Ofono::Command command;
    };
    /// A modem that has calls.
    struct Line
    {
        std::unique_ptr<QObject> context = std::make_unique<QObject>(); ///< Of its answers.
        bool callsKnown = false;
        QStringList emergencyNumbers;
        std::optional<QString> tones; ///< Those that wait while others are being sent.
        int endingCall = 0; ///< The id of the call that oFono was told to end, until it answers.
        QVector<Wish> wishes; ///< Those that wait until oFono takes them.
    };

    void followModem(const QString &modem);
    void readCalls(const QString &modem, const QDBusMessage &answer);
    void setEmergencyNumbers(const QString &modem, const QVariant &numbers);
    void receive(const QDBusMessage &message);
    void receiveFromManager(const QDBusMessage &message);
    void receiveFromCall(const QDBusMessage &message);
    bool updateModems(const QString &modem);
    bool updateEmergencyNumbers(const QStringList &before, const QStringList &now);
    bool tellOfLists(bool modemsChange, bool numbersChange);
    void startCall(const QString &text, const QString &modem);
    void manage(const QString &action, const QString &method, int call);
    void manageOngoing(const QString &action, const QString &method, const QString &modem);
    QString ongoingModem(const QString &wanted) const;
    void sendRemainingTones(const QString &modem);
    void dropTones(const QString &modem, Telephony::Error error);
    void tell(const Wish &wish);
    void keepForLater(Line &line, const Wish &wish);
    void tellWhatWaits(Line &line);
    void give(const Wish &wish);
    void fail(const Wish &wish, Telephony::Error error);
    void fail(const QString &action, int call, const QString &number, Telephony::Error error);

    Ofono m_ofono;
    ServiceDialogue m_dialogue;
    std::map<QString, Line> m_lines; ///< By the path of the modem.
    QStringList m_modems; ///< Sorted.
    QStringList m_emergencyNumbers;
    std::map<QString, int> m_numberUses; ///< How often the modems have each of them.
};
