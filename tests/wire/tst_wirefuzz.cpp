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
/// What may be open at a moment: messages on their way, a file that is being saved.
constexpr int moreDescriptors = 16;

/// What the process may say when services answer nonsense.
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
        // A call need not name its interface.
        "|A call to (?:com\\.nimbo\\.parley\\.ui)?\\.toggleCall from pid .* was rejected"
        // Qt's, of a signature that is empty, which D-Bus allows.
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

/// The built process on buses where nobody behaves: it must answer whatever comes, and say nothing
/// that is not known. PARLEY_WIRE_SEED repeats a run, PARLEY_WIRE_MESSAGES sets how long it is, and
/// PARLEY_WIRE_BLOCK after how many messages the process is looked at.
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
        if ((sent % block == 0 || sent == wanted) && !isWell(sent)) // QVERIFY2 cuts its message
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

/// Whether the process answers on both buses and has said nothing else; \a check is unlike before.
bool TestWireFuzz::isWell(quint64 check)
{
    const QByteArray number = "check " + QByteArray::number(check);
    bool isAlive = answers(number);
    QString strange = claimLog(u"qml: "_s + QString::fromUtf8(number));
    // What ends it may just have begun to be told, at length.
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

/// Claims what has been logged. What there is besides \a expected, which there must be, and the
/// known lines; of that the last lines.
QString TestWireFuzz::claimLog(const QString &expected)
{
    QStringList log = m_ui->takeLog();
    if (!expected.isEmpty() && !log.removeOne(expected))
        log.append(u"(There is no \"%1\".)"_s.arg(expected));
    QStringList strange;
    std::copy_if(log.cbegin(), log.cend(), std::back_inserter(strange),
                 [](const QString &line) { return !knownLines().match(line).hasMatch(); });
    return strange.mid(std::max(0, strange.size() - 80)).join(u'\n');
}

int TestWireFuzz::descriptors() const
{
    return QDir(u"/proc/%1/fd"_s.arg(m_pid))
        .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
        .size();
}

QTEST_GUILESS_MAIN(TestWireFuzz)

#include "tst_wirefuzz.moc"
