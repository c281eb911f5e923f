// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "literals.h"
#include "randomtraffic.h"
#include "uiundertest.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <memory>
#include <random>

namespace {

constexpr int patience = 30000;
/// How many more descriptors may be open for a moment: of messages on their way, and of a file that
/// is being saved.
constexpr int moreDescriptors = 16;

/// The lines that the process may log when services answer nonsense.
const QRegularExpression &knownLines()
{
    static const QRegularExpression lines(QStringLiteral(
        "^(?:"
        "Unable to query reminder (?:alarms|notifications) QDBusError\\(.*\\)"
        "|Unable to read reminder notifications of the form \".*\" instead of \".*\""
        "|Failed to create alarm"
        "|\\((?:dial|incoming)\\) GetAll\\(\\) failed: .*"
        "|Could not ask oFono for \"(?:GetModems|GetProperties)\" QDBusError\\(.*\\)"
        "|oFono has answered \"(?:GetModems|GetProperties)\" with \".*\""
        // A call does not have to name its interface.
        "|A call to (?:com\\.nimbo\\.parley\\.ui)?\\.toggleCall from pid .* was rejected"
        // Qt logs this for an empty signature, which D-Bus allows.
        "|QDBusSignature: invalid signature \"\""
        ")$"));
    return lines;
}

quint64 numberFromEnvironment(const char *name, quint64 otherwise)
{
    bool isNumber = false;
    const quint64 number = qEnvironmentVariable(name).toULongLong(&isNumber);
    return isNumber ? number : otherwise;
}

} // namespace

/// The built process on buses where no process behaves. It has to answer, whatever it gets, and to
/// log known lines only. PARLEY_WIRE_SEED repeats a run, PARLEY_WIRE_MESSAGES sets its length, and
/// PARLEY_WIRE_BLOCK sets after how many messages the process is checked.
class TestWireFuzz : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void survivesWhateverComes();

private:
    bool isWell(quint64 check);
    bool answers(const QByteArray &number);
    QString claimLog(const QString &expected);
    int descriptors() const;

    std::unique_ptr<UiUnderTest> m_ui;
    std::unique_ptr<RandomTraffic> m_traffic;
    qint64 m_pid = 0;
    QString m_complaint;
};

void TestWireFuzz::survivesWhateverComes()
{
    const quint64 seed = numberFromEnvironment("PARLEY_WIRE_SEED", std::random_device()());
    const quint64 wanted = numberFromEnvironment("PARLEY_WIRE_MESSAGES", 20000);
    const quint64 block = std::max<quint64>(numberFromEnvironment("PARLEY_WIRE_BLOCK", 200), 1);
    const QString settings =
        u"PARLEY_WIRE_SEED=%1 PARLEY_WIRE_MESSAGES=%2 PARLEY_WIRE_BLOCK=%3"_s.arg(seed)
            .arg(wanted)
            .arg(block);
    qInfo("%s", qPrintable(settings));

    m_ui = std::make_unique<UiUnderTest>();
    QVERIFY(m_ui->isValid());
    m_traffic = std::make_unique<RandomTraffic>(m_ui->sessionBus().address(),
                                                m_ui->systemBus().address(), seed);
    m_ui->setHasTelephony();
    QTimer pump;
    connect(&pump, &QTimer::timeout, this, [this] { m_traffic->pump(); });
    pump.start(0);
    const bool hasStarted =
        m_ui->startScreens(QStringLiteral(PARLEY_WIRE_SCREENS), {u"-prestart"_s});
    QVERIFY2(hasStarted, qPrintable(settings + u'\n' + m_ui->takeLog().join(u'\n')));
    QTRY_VERIFY_WITH_TIMEOUT(m_traffic->findUi(), patience);
    pump.stop();

    m_pid = m_ui->processId();
    QVERIFY2(isWell(0), qPrintable(settings + m_complaint));
    const int descriptorsBefore = descriptors();
    const qint64 memoryBefore = m_ui->residentMemory();
    QElapsedTimer timer;
    timer.start();
    for (quint64 sent = 1; sent <= wanted; ++sent) {
        m_traffic->sendOne();
        m_traffic->pump();
        // QVERIFY2 would cut its message.
        if ((sent % block == 0 || sent == wanted) && !isWell(sent))
            QFAIL(qPrintable(u"%1, by message %2%3\nThe last messages:\n%4"_s.arg(
                settings, QString::number(sent), m_complaint, m_traffic->lastMessages())));
    }
    const int descriptorsAfter = descriptors();
    qInfo("%llu messages and the answers to %d calls in %.1f s; memory before: %lld KiB, after: "
          "%lld KiB; descriptors before: %d, after: %d",
          wanted, m_traffic->callCount(), static_cast<double>(timer.elapsed()) / 1e3, memoryBefore,
          m_ui->residentMemory(), descriptorsBefore, descriptorsAfter);
    QVERIFY(descriptorsBefore > 0);
    QVERIFY(descriptorsAfter <= descriptorsBefore + moreDescriptors);

    QVERIFY(m_ui->isRunning());
    m_ui->stop();
    QCOMPARE(claimLog({}), QString());
}

/// Returns whether the process answers on both buses and has logged known lines only. Each call
/// needs another \a check.
bool TestWireFuzz::isWell(quint64 check)
{
    const QByteArray number = "check " + QByteArray::number(check);
    bool isAlive = answers(number);
    QString strange = claimLog(u"qml: "_s + QString::fromUtf8(number));
    // The process may just have begun to log at length why it ends.
    if (isAlive && !strange.isEmpty())
        isAlive = answers({});
    if (!isAlive) {
        m_ui->waitForEnd();
        strange += u'\n' + claimLog({});
    }
    m_complaint.clear();
    if (!m_ui->isRunning())
        m_complaint += u"\nThe process has ended."_s;
    else if (!isAlive)
        m_complaint += u"\nThe process does not answer."_s;
    if (!strange.isEmpty())
        m_complaint += u"\nIts log, where it is not known:\n"_s + strange;
    return m_complaint.isEmpty();
}

bool TestWireFuzz::answers(const QByteArray &number)
{
    return m_traffic->isUiAlive(number, m_ui->isRunning() ? patience : 0,
                                [] { QCoreApplication::processEvents(); });
}

/// Claims the log, which must have \a expected. Returns the last of the other lines that are not
/// known.
QString TestWireFuzz::claimLog(const QString &expected)
{
    QStringList log = m_ui->takeLog();
    if (!expected.isEmpty() && !log.removeOne(expected))
        log.append(u"(There is no \"%1\".)"_s.arg(expected));
    QStringList strange;
    std::copy_if(log.cbegin(), log.cend(), std::back_inserter(strange),
                 [](const QString &line) { return !knownLines().match(line).hasMatch(); });
    return strange.mid(std::max<decltype(strange.size())>(0, strange.size() - 80)).join(u'\n');
}

int TestWireFuzz::descriptors() const
{
    const QStringList names =
        QDir(u"/proc/%1/fd"_s.arg(m_pid))
            .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    return static_cast<int>(names.size());
}

QTEST_GUILESS_MAIN(TestWireFuzz)

#include "tst_wirefuzz.moc"
