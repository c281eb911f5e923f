// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "callaudio.h"
#include "callstest.h"
#include "literals.h"
#include "rawconnection.h"
#include "ringer.h"
#include "scriptedservice.h"
#include "watchercount.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>

namespace {

const QString feedback = u"org.sigxcpu.Feedback"_s;
const QString feedbackPath = u"/org/sigxcpu/Feedback"_s;
const QString audio = u"org.mobian_project.CallAudio"_s;
const QString audioPath = u"/org/mobian_project/CallAudio"_s;

} // namespace

/// The ringing and the path of the sound, with services that are scripted message by message.
class TestCallSound : public CallsTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void cleanup() override;

    void rings();
    void doesNotRingWithoutFeedbackd();
    void endsWhatBeginsTooLate();
    void endsWithTheObject();
    void endsWhatBeginsAfterTheObject();
    void knowsThatItHasEnded();
    void knowsThatItHasEndedAtOnce();
    void believesOnlyFeedbackd();
    void ringsAgainWithANewFeedbackd();
    void survivesItsEndInAHandler();

    void setsThePath();
    void setsWhatIsTrueWhenItIsComplete();
    void returnsToWhatItWas_data();
    void returnsToWhatItWas();
    void returnsWithoutCallaudiod();
    void keepsTheLastRequest();
    void tellsANewCallaudiod();
    void believesANewCallaudiod();
    void endsThePathWithTheObject();

private:
    void startFeedbackd();
    void startCallaudiod();
    void startAudio();

    std::unique_ptr<ScriptedService> m_service;
    std::unique_ptr<Ringer> m_ringer;
    std::unique_ptr<CallAudio> m_audio;
};

void TestCallSound::init()
{
    CallsTest::init();
    m_ringer = std::make_unique<Ringer>();
    m_audio = std::make_unique<CallAudio>();
}

void TestCallSound::cleanup()
{
    m_ringer.reset();
    m_audio.reset();
    m_service.reset();
    CallsTest::cleanup();
}

void TestCallSound::startFeedbackd()
{
    m_service = std::make_unique<ScriptedService>(m_bus.address(), feedback, feedbackPath);
    if (!m_ringer->isActive())
        m_ringer->componentComplete();
}

void TestCallSound::startCallaudiod()
{
    m_service = std::make_unique<ScriptedService>(m_bus.address(), audio, audioPath);
}

void TestCallSound::startAudio()
{
    startCallaudiod();
    m_audio->componentComplete();
}

void TestCallSound::rings()
{
    startFeedbackd();
    const QSignalSpy changes(m_ringer.get(), &Ringer::ringingChanged);
    m_ringer->setActive(true);
    const QDBusMessage call = m_service->next(u"TriggerFeedback"_s);
    QCOMPARE(call.interface(), feedback);
    QCOMPARE(call.path(), feedbackPath);
    QCOMPARE(call.signature(), u"ssa{sv}i"_s);
    QCOMPARE(call.arguments().at(1).toString(), u"phone-incoming-call"_s);
    QCOMPARE(call.arguments().at(3).toInt(), 0);
    QVERIFY(!m_ringer->isRinging());
    m_service->reply(call, {7U});
    QTRY_VERIFY(m_ringer->isRinging());
    m_ringer->setActive(false);
    QVERIFY(!m_ringer->isRinging());
    QCOMPARE(m_service->next(u"EndFeedback"_s).arguments(), QVariantList({7U}));
    QCOMPARE(changes.count(), 2);
}

void TestCallSound::doesNotRingWithoutFeedbackd()
{
    const WatcherCount watchers;
    m_ringer->componentComplete();
    m_ringer->setActive(true);
    QVERIFY(watchers.value() > 0);
    QTRY_COMPARE(watchers.value(), 0);
    QVERIFY(m_ringer->isActive());
    QVERIFY(!m_ringer->isRinging());
    // It rings as soon as there is one.
    startFeedbackd();
    QVERIFY(m_service->next(u"TriggerFeedback"_s).type() == QDBusMessage::MethodCallMessage);
}

void TestCallSound::endsWhatBeginsTooLate()
{
    startFeedbackd();
    m_ringer->setActive(true);
    const QDBusMessage call = m_service->next(u"TriggerFeedback"_s);
    m_ringer->setActive(false);
    m_service->reply(call, {7U});
    QCOMPARE(m_service->next(u"EndFeedback"_s).arguments(), QVariantList({7U}));
    QVERIFY(!m_ringer->isRinging());
    // The answer to the first of two does not make the second one ring.
    m_ringer->setActive(true);
    const QDBusMessage first = m_service->next(u"TriggerFeedback"_s);
    m_ringer->setActive(false);
    m_ringer->setActive(true);
    const QDBusMessage second = m_service->next(u"TriggerFeedback"_s);
    m_service->reply(first, {8U});
    QCOMPARE(m_service->next(u"EndFeedback"_s).arguments(), QVariantList({8U}));
    QVERIFY(!m_ringer->isRinging());
    m_service->reply(second, {9U});
    QTRY_VERIFY(m_ringer->isRinging());
}

void TestCallSound::endsWithTheObject()
{
    startFeedbackd();
    m_ringer->setActive(true);
    m_service->reply(m_service->next(u"TriggerFeedback"_s), {7U});
    QTRY_VERIFY(m_ringer->isRinging());
    m_ringer.reset();
    QCOMPARE(m_service->next(u"EndFeedback"_s).arguments(), QVariantList({7U}));
}

void TestCallSound::endsWhatBeginsAfterTheObject()
{
    startFeedbackd();
    m_ringer->setActive(true);
    const QDBusMessage call = m_service->next(u"TriggerFeedback"_s);
    m_ringer.reset();
    m_service->reply(call, {7U});
    QCOMPARE(m_service->next(u"EndFeedback"_s).arguments(), QVariantList({7U}));
}

void TestCallSound::knowsThatItHasEnded()
{
    startFeedbackd();
    m_ringer->setActive(true);
    m_service->reply(m_service->next(u"TriggerFeedback"_s), {7U});
    QTRY_VERIFY(m_ringer->isRinging());
    m_service->emitSignal(feedback, u"FeedbackEnded"_s, {8U, 0U});
    m_service->emitSignal(feedback, u"FeedbackEnded"_s, {7U});
    m_service->settle();
    QVERIFY(m_ringer->isRinging());
    m_service->emitSignal(feedback, u"FeedbackEnded"_s, {7U, 0U});
    QTRY_VERIFY(!m_ringer->isRinging());
    QVERIFY(m_ringer->isActive());
    m_ringer->setActive(false);
    m_service->settle();
    QCOMPARE(m_service->waiting(), 0);
}

/// feedbackd ends at once what the user's profile keeps silent.
void TestCallSound::knowsThatItHasEndedAtOnce()
{
    startFeedbackd();
    const WatcherCount watchers;
    m_ringer->setActive(true);
    QVERIFY(watchers.value() > 0);
    const QDBusMessage call = m_service->next(u"TriggerFeedback"_s);
    m_service->reply(call, {7U});
    m_service->emitSignal(feedback, u"FeedbackEnded"_s, {7U, 1U});
    // Then the answer is handled.
    QTRY_COMPARE(watchers.value(), 0);
    m_service->settle();
    QVERIFY(!m_ringer->isRinging());
    m_ringer->setActive(false);
    m_service->settle();
    QCOMPARE(m_service->waiting(), 0);
}

void TestCallSound::believesOnlyFeedbackd()
{
    startFeedbackd();
    m_ringer->setActive(true);
    m_service->reply(m_service->next(u"TriggerFeedback"_s), {7U});
    QTRY_VERIFY(m_ringer->isRinging());
    RawConnection stranger(m_bus.address());
    const RawMessage message = RawConnection::makeSignal({}, "/org/sigxcpu/Feedback",
                                                         "org.sigxcpu.Feedback", "FeedbackEnded");
    const quint32 id = 7;
    const quint32 reason = 0;
    dbus_message_append_args(message.get(), DBUS_TYPE_UINT32, &id, DBUS_TYPE_UINT32, &reason,
                             DBUS_TYPE_INVALID);
    stranger.send(message.get());
    QVERIFY(stranger.call(RawConnection::makeCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                  "org.freedesktop.DBus", "GetId")
                              .get(),
                          30000));
    m_service->settle();
    QVERIFY(m_ringer->isRinging());
}

void TestCallSound::ringsAgainWithANewFeedbackd()
{
    startFeedbackd();
    m_ringer->setActive(true);
    m_service->reply(m_service->next(u"TriggerFeedback"_s), {7U});
    QTRY_VERIFY(m_ringer->isRinging());
    m_service.reset();
    QTRY_VERIFY(!m_ringer->isRinging());
    m_service = std::make_unique<ScriptedService>(m_bus.address(), feedback, feedbackPath);
    m_service->reply(m_service->next(u"TriggerFeedback"_s), {1U});
    QTRY_VERIFY(m_ringer->isRinging());
}

void TestCallSound::survivesItsEndInAHandler()
{
    startFeedbackd();
    connect(m_ringer.get(), &Ringer::ringingChanged, this, [this] { m_ringer.reset(); });
    m_ringer->setActive(true);
    m_service->reply(m_service->next(u"TriggerFeedback"_s), {7U});
    QTRY_VERIFY(!m_ringer);
    QCOMPARE(m_service->next(u"EndFeedback"_s).arguments(), QVariantList({7U}));
}

void TestCallSound::setsThePath()
{
    startAudio();
    m_audio->setVoiceCall(true);
    QDBusMessage call = m_service->next(u"SelectMode"_s);
    QCOMPARE(call.interface(), audio);
    QCOMPARE(call.path(), audioPath);
    QCOMPARE(call.signature(), u"u"_s);
    QCOMPARE(call.arguments(), QVariantList({1U}));
    m_service->reply(call, {true});
    m_audio->setSpeaker(true);
    call = m_service->next(u"EnableSpeaker"_s);
    QCOMPARE(call.arguments(), QVariantList({true}));
    m_service->reply(call, {true});
    m_audio->setMuted(true);
    call = m_service->next(u"MuteMic"_s);
    QCOMPARE(call.arguments(), QVariantList({true}));
    m_service->reply(call, {true});
    m_audio->setSpeaker(false);
    call = m_service->next(u"EnableSpeaker"_s);
    QCOMPARE(call.arguments(), QVariantList({false}));
    m_service->reply(call, {true});
    m_service->settle();
    QVERIFY(m_audio->voiceCall() && !m_audio->speaker() && m_audio->muted());
}

void TestCallSound::setsWhatIsTrueWhenItIsComplete()
{
    startCallaudiod();
    m_audio->setSpeaker(true);
    m_audio->setVoiceCall(true);
    m_service->settle();
    QCOMPARE(m_service->waiting(), 0);
    m_audio->componentComplete();
    QCOMPARE(m_service->next().member(), u"SelectMode"_s);
    QCOMPARE(m_service->next().member(), u"EnableSpeaker"_s);
    m_service->settle();
    QCOMPARE(m_service->waiting(), 0);
}

void TestCallSound::returnsToWhatItWas_data()
{
    QTest::addColumn<QVariantList>("answer");

    QTest::newRow("refused") << QVariantList{false};
    QTest::newRow("of another shape") << QVariantList{1};
    QTest::newRow("empty") << QVariantList();
}

void TestCallSound::returnsToWhatItWas()
{
    QFETCH(QVariantList, answer);

    startAudio();
    const QSignalSpy changes(m_audio.get(), &CallAudio::speakerChanged);
    m_audio->setSpeaker(true);
    QVERIFY(m_audio->speaker());
    m_service->reply(m_service->next(u"EnableSpeaker"_s), answer);
    QTRY_VERIFY(!m_audio->speaker());
    QCOMPARE(changes.count(), 2);
}

void TestCallSound::returnsWithoutCallaudiod()
{
    m_audio->componentComplete();
    m_audio->setVoiceCall(true);
    QVERIFY(m_audio->voiceCall());
    QTRY_VERIFY(!m_audio->voiceCall());
}

void TestCallSound::keepsTheLastRequest()
{
    startAudio();
    m_audio->setSpeaker(true);
    const QDBusMessage on = m_service->next(u"EnableSpeaker"_s);
    m_audio->setSpeaker(false);
    const QDBusMessage off = m_service->next(u"EnableSpeaker"_s);
    m_audio->setSpeaker(true);
    const QDBusMessage again = m_service->next(u"EnableSpeaker"_s);
    m_service->reply(on, {false});
    m_service->reply(off, {false});
    m_service->reply(again, {true});
    m_service->settle();
    QVERIFY(m_audio->speaker());
}

void TestCallSound::tellsANewCallaudiod()
{
    startAudio();
    m_audio->setVoiceCall(true);
    m_service->reply(m_service->next(u"SelectMode"_s), {true});
    m_service->settle();
    m_service.reset();
    startCallaudiod();
    QCOMPARE(m_service->next(u"SelectMode"_s).arguments(), QVariantList({1U}));
}

/// What the former callaudiod has done is no longer done.
void TestCallSound::believesANewCallaudiod()
{
    startAudio();
    m_audio->setMuted(true);
    m_service->reply(m_service->next(u"MuteMic"_s), {true});
    m_service->settle();
    m_service.reset();
    startCallaudiod();
    QVERIFY(m_audio->muted());
    m_service->reply(m_service->next(u"MuteMic"_s), {false});
    QTRY_VERIFY(!m_audio->muted());
}

void TestCallSound::endsThePathWithTheObject()
{
    startAudio();
    m_audio->setVoiceCall(true);
    m_service->reply(m_service->next(u"SelectMode"_s), {true});
    m_audio->setMuted(true);
    m_service->reply(m_service->next(u"MuteMic"_s), {true});
    m_service->settle();
    m_audio.reset();
    QCOMPARE(m_service->next(u"MuteMic"_s).arguments(), QVariantList({false}));
    QCOMPARE(m_service->next(u"SelectMode"_s).arguments(), QVariantList({0U}));
}

QTEST_GUILESS_MAIN(TestCallSound)

#include "tst_callsound.moc"
