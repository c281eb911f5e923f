// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "literals.h"
#include "networkcalls.h"

#include <QRandomGenerator>
#include <QTest>

#include <functional>
#include <map>
#include <memory>

using State = NetworkCall::State;

namespace {

using Action = std::function<bool(NetworkCalls &calls)>;

/// Describes a call, such as "1 active in a conference".
QString describe(const NetworkCall &call)
{
    return QString::number(call.id) + u' ' + nameOf(call.state)
        + (call.isInConference ? u" in a conference"_s : QString())
        + (call.isHeldByRemote ? u" held by the other side"_s : QString());
}

QStringList describe(const NetworkCalls &calls)
{
    QStringList all;
    for (const auto &[id, call] : calls.all())
        all.append(describe(call));
    return all;
}

/// Brings about an active call, and a held one before it if there are to be two.
void connectCalls(NetworkCalls &calls, int count)
{
    for (int i = 0; i < count; ++i)
        calls.answerRemote(calls.dial(u"555010%1"_s.arg(i)));
}

} // namespace

Q_DECLARE_METATYPE(Action)

class TestNetworkCalls : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void dials();
    void rings();
    void letsOneCallWait();
    void acts_data();
    void acts();
    void refuses_data();
    void refuses();
    void hasAConferenceOfFive();
    void endsAConferenceOfOne();
    void usesIdsAgain();
    void tellsWhatChanges();
    void isConsistent();

private:
    std::unique_ptr<NetworkCalls> m_calls;
    QStringList m_heard;
};

void TestNetworkCalls::init()
{
    m_calls = std::make_unique<NetworkCalls>();
    m_heard.clear();
    connect(m_calls.get(), &NetworkCalls::added, this,
            [this](const NetworkCall &call) { m_heard.append(u"new: "_s + describe(call)); });
    connect(m_calls.get(), &NetworkCalls::changed, this,
            [this](const NetworkCall &call) { m_heard.append(describe(call)); });
    connect(m_calls.get(), &NetworkCalls::ended, this,
            [this](const NetworkCall &call, NetworkCalls::Ending ending) {
                m_heard.append(QString::number(call.id) + u" ended: "_s + nameOf(ending));
            });
}

void TestNetworkCalls::dials()
{
    QCOMPARE(m_calls->dial(u"5550100"_s), 1);
    QCOMPARE(m_calls->find(1)->number, u"5550100"_s);
    QVERIFY(!m_calls->find(1)->isIncoming);
    QCOMPARE(m_calls->dial(u"5550101"_s), 0);
    QCOMPARE(m_calls->ring(u"5550101"_s), 0);
    QVERIFY(m_calls->alertRemote(1));
    QVERIFY(!m_calls->alertRemote(1));
    QCOMPARE(m_calls->dial(u"5550101"_s), 0);
    QVERIFY(m_calls->answerRemote(1));
    QVERIFY(!m_calls->answerRemote(1));
    QCOMPARE(m_calls->dial(u"5550101"_s), 2);
    QVERIFY(!m_calls->swap()); // The first one cannot come back meanwhile.
    QVERIFY(!m_calls->endActive());
    QVERIFY(m_calls->answerRemote(2));
    QCOMPARE(m_calls->dial(u"5550102"_s), 0); // One is active, and one is held.
    QCOMPARE(m_heard,
             QStringList({u"new: 1 dialing"_s, u"1 alerting"_s, u"1 active"_s, u"1 held"_s,
                          u"new: 2 dialing"_s, u"2 active"_s}));
}

void TestNetworkCalls::rings()
{
    QCOMPARE(m_calls->ring({}), 1);
    QVERIFY(m_calls->find(1)->isIncoming);
    QCOMPARE(m_calls->dial(u"5550100"_s), 0);
    QVERIFY(m_calls->answer());
    QVERIFY(!m_calls->answer());
    QCOMPARE(m_heard, QStringList({u"new: 1 incoming"_s, u"1 active"_s}));
}

void TestNetworkCalls::letsOneCallWait()
{
    connectCalls(*m_calls, 1);
    QCOMPARE(m_calls->ring(u"5550102"_s), 2);
    QCOMPARE(m_calls->ring(u"5550103"_s), 0);
    QCOMPARE(m_calls->dial(u"5550103"_s), 0);
    QVERIFY(!m_calls->answer());
    m_heard.clear();
    // A call that waits alone is an incoming one.
    QVERIFY(m_calls->endRemote(1));
    QCOMPARE(m_heard, QStringList({u"1 ended: remote"_s, u"2 incoming"_s}));
}

void TestNetworkCalls::acts_data()
{
    QTest::addColumn<int>("connected");
    QTest::addColumn<bool>("waits");
    QTest::addColumn<Action>("action");
    QTest::addColumn<QStringList>("result");

    const auto row = [](const char *name, int connected, bool waits, const Action &action,
                        const QStringList &result) {
        QTest::newRow(name) << connected << waits << action << result;
    };
    const auto hangUp = [](NetworkCalls &calls) { return calls.hangUp(); };
    const auto endHeld = [](NetworkCalls &calls) { return calls.endHeldOrWaiting(); };
    const auto endActive = [](NetworkCalls &calls) { return calls.endActive(); };
    const auto swap = [](NetworkCalls &calls) { return calls.swap(); };
    const auto join = [](NetworkCalls &calls) { return calls.join(); };
    const auto transfer = [](NetworkCalls &calls) { return calls.transfer(); };
    row("hang up one", 1, false, hangUp, {});
    row("hang up two", 2, false, hangUp, {});
    row("hang up two while one waits", 2, true, hangUp, {u"3 incoming"_s});
    row("end what is held", 2, false, endHeld, {u"2 active"_s});
    row("reject", 2, true, endHeld, {u"1 held"_s, u"2 active"_s});
    row("end what is active", 2, false, endActive, {u"1 active"_s});
    row("end and answer", 1, true, endActive, {u"2 active"_s});
    row("end and answer, one held", 2, true, endActive, {u"1 held"_s, u"3 active"_s});
    row("hold", 1, false, swap, {u"1 held"_s});
    row("swap", 2, false, swap, {u"1 active"_s, u"2 held"_s});
    row("hold and answer", 1, true, swap, {u"1 held"_s, u"2 active"_s});
    row("join", 2, false, join, {u"1 active in a conference"_s, u"2 active in a conference"_s});
    row("join while one waits", 2, true, join,
        {u"1 active in a conference"_s, u"2 active in a conference"_s, u"3 waiting"_s});
    row("transfer", 2, false, transfer, {});
    row("end one", 2, false, [](NetworkCalls &calls) { return calls.end(1); }, {u"2 active"_s});
    row("split", 2, false, [](NetworkCalls &calls) { return calls.join() && calls.split(1); },
        {u"1 active"_s, u"2 held"_s});
    row("hold a conference", 2, false,
        [](NetworkCalls &calls) { return calls.join() && calls.swap(); },
        {u"1 held in a conference"_s, u"2 held in a conference"_s});
    row("end a conference", 2, true,
        [](NetworkCalls &calls) { return calls.join() && calls.endConference(); },
        {u"3 incoming"_s});
    row("hold on the other side", 1, false,
        [](NetworkCalls &calls) { return calls.holdRemote(1, true); },
        {u"1 active held by the other side"_s});
    row("resume on the other side", 1, false,
        [](NetworkCalls &calls) { return calls.holdRemote(1, true) && calls.holdRemote(1, false); },
        {u"1 active"_s});
}

void TestNetworkCalls::acts()
{
    QFETCH(int, connected);
    QFETCH(bool, waits);
    QFETCH(Action, action);
    QFETCH(QStringList, result);

    connectCalls(*m_calls, connected);
    if (waits)
        QVERIFY(m_calls->ring(u"5550109"_s) != 0);
    QVERIFY(action(*m_calls));
    QCOMPARE(describe(*m_calls), result);
}

void TestNetworkCalls::refuses_data()
{
    QTest::addColumn<int>("connected");
    QTest::addColumn<bool>("waits");
    QTest::addColumn<Action>("action");

    const auto row = [](const char *name, int connected, bool waits, const Action &action) {
        QTest::newRow(name) << connected << waits << action;
    };
    row("hang up nothing", 0, false, [](NetworkCalls &calls) { return calls.hangUp(); });
    row("end nothing held", 1, false, [](NetworkCalls &calls) { return calls.endHeldOrWaiting(); });
    row("end nothing active", 0, false, [](NetworkCalls &calls) { return calls.endActive(); });
    row("end nothing", 1, false, [](NetworkCalls &calls) { return calls.end(2); });
    row("swap nothing", 0, false, [](NetworkCalls &calls) { return calls.swap(); });
    row("hold two and answer", 2, true, [](NetworkCalls &calls) { return calls.swap(); });
    row("join one", 1, false, [](NetworkCalls &calls) { return calls.join(); });
    row("join with a waiting one", 1, true, [](NetworkCalls &calls) { return calls.join(); });
    row("split one", 1, false, [](NetworkCalls &calls) { return calls.split(1); });
    row("split what is held", 2, false, [](NetworkCalls &calls) { return calls.split(1); });
    row("split nothing", 2, false, [](NetworkCalls &calls) { return calls.split(7); });
    row("end no conference", 2, false, [](NetworkCalls &calls) { return calls.endConference(); });
    row("transfer one", 1, false, [](NetworkCalls &calls) { return calls.transfer(); });
    row("end nothing on the other side", 1, false,
        [](NetworkCalls &calls) { return calls.endRemote(2); });
    row("hold what waits on the other side", 1, true,
        [](NetworkCalls &calls) { return calls.holdRemote(2, true); });
    row("resume what is not held", 1, false,
        [](NetworkCalls &calls) { return calls.holdRemote(1, false); });
    row("answer what comes in, on the other side", 1, true,
        [](NetworkCalls &calls) { return calls.answerRemote(2); });
}

void TestNetworkCalls::refuses()
{
    QFETCH(int, connected);
    QFETCH(bool, waits);
    QFETCH(Action, action);

    connectCalls(*m_calls, connected);
    if (waits)
        QVERIFY(m_calls->ring(u"5550109"_s) != 0);
    const QStringList before = describe(*m_calls);
    m_heard.clear();
    QVERIFY(!action(*m_calls));
    QCOMPARE(describe(*m_calls), before);
    QCOMPARE(m_heard, QStringList());
}

void TestNetworkCalls::hasAConferenceOfFive()
{
    connectCalls(*m_calls, 1);
    for (int others = 1; others < NetworkCalls::MostInConference; ++others) {
        QVERIFY(m_calls->answerRemote(m_calls->dial(u"5550102"_s)));
        QVERIFY(m_calls->join());
    }
    QCOMPARE(m_calls->all().size(), std::size_t(NetworkCalls::MostInConference));
    QVERIFY(m_calls->answerRemote(m_calls->dial(u"5550103"_s)));
    QVERIFY(!m_calls->join());
    QCOMPARE(m_calls->ring(u"5550104"_s), NetworkCalls::MostCalls);
    QVERIFY(m_calls->endActive());
    QCOMPARE(m_calls->find(NetworkCalls::MostCalls)->state, State::Active);
}

void TestNetworkCalls::endsAConferenceOfOne()
{
    connectCalls(*m_calls, 2);
    QVERIFY(m_calls->join());
    m_heard.clear();
    QVERIFY(m_calls->endRemote(1));
    QCOMPARE(m_heard, QStringList({u"1 ended: remote"_s, u"2 active"_s}));
}

void TestNetworkCalls::usesIdsAgain()
{
    connectCalls(*m_calls, 2);
    QVERIFY(m_calls->end(1));
    QCOMPARE(m_calls->dial(u"5550103"_s), 1);
    m_calls->lose();
    QVERIFY(m_calls->all().empty());
    QCOMPARE(m_calls->ring(u"5550103"_s), 1);
}

/// Those who follow the signals know the same calls as the object.
void TestNetworkCalls::tellsWhatChanges()
{
    connectCalls(*m_calls, 2);
    m_heard.clear();
    QVERIFY(m_calls->swap());
    QCOMPARE(m_heard, QStringList({u"1 active"_s, u"2 held"_s}));
    m_heard.clear();
    m_calls->lose();
    QCOMPARE(m_heard, QStringList({u"1 ended: network"_s, u"2 ended: network"_s}));
}

/// Whatever is done in whatever order, the calls are possible ones, and the signals tell of all.
void TestNetworkCalls::isConsistent()
{
    std::map<int, QString> known;
    connect(m_calls.get(), &NetworkCalls::added, this, [&known](const NetworkCall &call) {
        QVERIFY(known.emplace(call.id, describe(call)).second);
    });
    connect(m_calls.get(), &NetworkCalls::changed, this, [&known](const NetworkCall &call) {
        QVERIFY(known.at(call.id) != describe(call));
        known[call.id] = describe(call);
    });
    connect(m_calls.get(), &NetworkCalls::ended, this,
            [&known](const NetworkCall &call) { QCOMPARE(known.erase(call.id), std::size_t(1)); });

    QRandomGenerator random(20261122);
    for (int i = 0; i < 20000; ++i) {
        const int id = random.bounded(1, NetworkCalls::MostCalls + 1);
        const QVector<Action> actions{
            [](NetworkCalls &calls) { return calls.dial(u"5550100"_s) != 0; },
            [](NetworkCalls &calls) { return calls.ring(u"5550101"_s) != 0; },
            [](NetworkCalls &calls) { return calls.answer(); },
            [](NetworkCalls &calls) { return calls.endHeldOrWaiting(); },
            [](NetworkCalls &calls) { return calls.endActive(); },
            [](NetworkCalls &calls) { return calls.swap(); },
            [](NetworkCalls &calls) { return calls.join(); },
            [](NetworkCalls &calls) { return calls.join(); },
            [id](NetworkCalls &calls) { return calls.end(id); },
            [id](NetworkCalls &calls) { return calls.split(id); },
            [id](NetworkCalls &calls) { return calls.alertRemote(id); },
            [id](NetworkCalls &calls) { return calls.answerRemote(id); },
            [id](NetworkCalls &calls) { return calls.answerRemote(id); },
            [id](NetworkCalls &calls) { return calls.endRemote(id); },
            [id](NetworkCalls &calls) { return calls.holdRemote(id, id % 2 == 0); }};
        m_heard.clear();
        const QStringList before = describe(*m_calls);
        const bool isDone = actions.at(random.bounded(actions.size()))(*m_calls);
        QCOMPARE(isDone, !m_heard.isEmpty());
        QCOMPARE(isDone, describe(*m_calls) != before);

        int beingSetUp = 0;
        QMap<State, int> together;
        for (const auto &[callId, call] : m_calls->all()) {
            QCOMPARE(known.at(callId), describe(call));
            if (call.state != State::Active && call.state != State::Held)
                ++beingSetUp;
            ++together[call.state];
        }
        QCOMPARE(known.size(), m_calls->all().size());
        QVERIFY(beingSetUp <= 1);
        for (const auto &[callId, call] : m_calls->all()) {
            const bool isConference = (call.state == State::Active || call.state == State::Held)
                && together.value(call.state) > 1;
            QCOMPARE(call.isInConference, isConference);
        }
    }
}

QTEST_GUILESS_MAIN(TestNetworkCalls)

#include "tst_networkcalls.moc"
