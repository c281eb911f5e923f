// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "interpreter.h"
#include "literals.h"
#include "messagelog.h"
#include "transcript.h"
#include "words.h"

#include <QSignalSpy>
#include <QTest>

#include <chrono>
#include <memory>

class TestInterpreter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void runsLinesInOrder();
    void waitsForACommandToEnd();
    void splitsArguments_data();
    void splitsArguments();
    void joinsWords_data();
    void joinsWords();
    void makesOneLineOfSeveral();
    void countsArguments_data();
    void countsArguments();
    void goesOnAfterAFailureOrStops_data();
    void goesOnAfterAFailureOrStops();
    void quitsBeforeTheRest_data();
    void quitsBeforeTheRest();
    void runsNothingBeforeItIsStarted();
    void seesWhatHasHappened();
    void seesWhatHappensLater();
    void seesWholeLinesOnly();
    void readsQuotesInAnExpectation_data();
    void readsQuotesInAnExpectation();
    void expectsSomething();
    void forgetsWhatEarlierCommandsDid();
    void skipsWhatIsExpectedOfASkippedCommand();
    void runsManyLines();
    void runsATranscript();
    void keepsTheCommandsOfATranscript_data();
    void keepsTheCommandsOfATranscript();
    void replaysItsTranscript();
    void describesCommands_data();
    void describesCommands();
    void alignsTheListOfCommands();
    void completesWords_data();
    void completesWords();

private:
    void make(Interpreter::AtFailure atFailure = Interpreter::AtFailure::GoOn);
    /// Runs \a lines to the end. Returns whether the run succeeded.
    bool run(const QStringList &lines);

    std::unique_ptr<MessageLog> m_log;
    std::unique_ptr<Transcript> m_transcript;
    std::unique_ptr<Interpreter> m_interpreter;
    QVector<QStringList> m_called;
    QStringList m_printed;
    Finish m_finish; ///< Ends the command that is under way.
};

void TestInterpreter::init()
{
    m_log.reset();
    m_log = std::make_unique<MessageLog>();
    m_called.clear();
    make();
}

void TestInterpreter::cleanup()
{
    QCOMPARE(m_log->take(), QStringList());
}

void TestInterpreter::make(Interpreter::AtFailure atFailure)
{
    m_interpreter.reset();
    m_transcript = std::make_unique<Transcript>();
    m_interpreter = std::make_unique<Interpreter>(*m_transcript, atFailure);
    m_interpreter->setPatience(std::chrono::milliseconds(50));
    const auto ending = [this](Outcome outcome) {
        return [this, outcome](const QStringList &arguments, const Finish &finish) {
            m_called << arguments;
            finish(outcome, u"said "_s + arguments.join(u'|'));
        };
    };
    m_interpreter->add({
        {u"do"_s, {u"[WHAT...]"_s}, u"does"_s, ending(Outcome::Done)},
        {u"fail"_s, {}, u"fails"_s, ending(Outcome::Failed)},
        {u"skip"_s, {}, u"is skipped"_s, ending(Outcome::Skipped)},
        {u"two"_s, {u"A"_s, u"[B]"_s}, u"takes one or two"_s, ending(Outcome::Done)},
        {u"of words"_s, {u"A"_s}, u"has a long name"_s, ending(Outcome::Done)},
        {u"later"_s,
         {},
         u"takes its time"_s,
         [this](const QStringList &arguments, const Finish &finish) {
             m_called << arguments;
             m_finish = finish;
         }},
    });
}

bool TestInterpreter::run(const QStringList &lines)
{
    QSignalSpy finished(m_interpreter.get(), &Interpreter::finished);
    for (const QString &line : lines)
        m_interpreter->enqueue(line);
    m_interpreter->endInput();
    m_interpreter->start();
    return (!finished.isEmpty() || finished.wait(30000)) && finished.count() == 1
        && finished.at(0).at(0).toBool();
}

void TestInterpreter::runsLinesInOrder()
{
    QVERIFY(run({u"do 1"_s, QString(), u"# do 2"_s, u"  do 3  "_s}));
    QCOMPARE(m_called, QVector<QStringList>({{u"1"_s}, {u"3"_s}}));
}

void TestInterpreter::waitsForACommandToEnd()
{
    m_interpreter->enqueue(u"later"_s);
    m_interpreter->enqueue(u"do 1"_s);
    m_interpreter->start();
    QTRY_COMPARE(m_called.size(), 1);
    QCoreApplication::processEvents();
    QCOMPARE(m_called.size(), 1);
    m_finish(Outcome::Done, {});
    QTRY_COMPARE(m_called.size(), 2);
}

void TestInterpreter::splitsArguments_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QStringList>("arguments");

    QTest::newRow("none") << u"do"_s << QStringList();
    QTest::newRow("blanks") << u"do  a   b"_s << QStringList{u"a"_s, u"b"_s};
    QTest::newRow("quotes") << u"do \"a b\" c"_s << QStringList{u"a b"_s, u"c"_s};
    QTest::newRow("empty") << u"do \"\" c"_s << QStringList{QString(), u"c"_s};
    QTest::newRow("name of two words") << u"of  words words"_s << QStringList{u"words"_s};
    QTest::newRow("escapes") << u"do \"say \\\"hi\\\" \\\\ \\n\""_s
                             << QStringList{u"say \"hi\" \\ \\n"_s};
    QTest::newRow("backslash outside of quotes")
        << u"do a\\b \\\"c d\""_s << QStringList{u"a\\b"_s, u"\\c d"_s};
    QTest::newRow("quotes not closed") << u"do \"a b"_s << QStringList{u"a b"_s};
    QTest::newRow("backslash at the end") << u"do \"a\\"_s << QStringList{u"a\\"_s};
    QTest::newRow("number sign") << u"do *#06#"_s << QStringList{u"*#06#"_s};
}

void TestInterpreter::splitsArguments()
{
    QFETCH(QString, line);
    QFETCH(QStringList, arguments);

    QVERIFY(run({line}));
    QCOMPARE(m_called, QVector<QStringList>{arguments});
}

void TestInterpreter::joinsWords_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QString>("line");

    QTest::newRow("plain") << QStringList{u"dial"_s, u"*#06#"_s} << u"dial *#06#"_s;
    QTest::newRow("blanks") << QStringList{u"dial"_s, u"+49 30"_s} << u"dial \"+49 30\""_s;
    QTest::newRow("empty") << QStringList{u"dial"_s, QString()} << u"dial \"\""_s;
    QTest::newRow("quotes") << QStringList{u"do"_s, u"\"a\""_s} << u"do \"\\\"a\\\"\""_s;
    QTest::newRow("backslashes") << QStringList{u"a\\b"_s, u"a\\ b"_s, u"\\"_s, u" \\"_s}
                                 << u"a\\b \"a\\\\ b\" \\ \" \\\\\""_s;
    QTest::newRow("no remark") << QStringList(u"#1"_s) << u"\"#1\""_s;
}

void TestInterpreter::joinsWords()
{
    QFETCH(QStringList, words);
    QFETCH(QString, line);

    QCOMPARE(joinWords(words), line);
    QCOMPARE(splitWords(line), words);
}

void TestInterpreter::makesOneLineOfSeveral()
{
    QCOMPARE(joinWords({u"do"_s, u"a\nb\rc"_s}), u"do \"a b c\""_s);
}

void TestInterpreter::countsArguments_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("said");

    QTest::newRow("one") << u"two a"_s << u"said a"_s;
    QTest::newRow("two") << u"two a b"_s << u"said a|b"_s;
    QTest::newRow("too few") << u"two"_s
                             << u"usage: two A [B] (an argument with blanks in double quotes)"_s;
    QTest::newRow("too many") << u"two a b c"_s
                              << u"usage: two A [B] (an argument with blanks in double quotes)"_s;
    QTest::newRow("none taken") << u"fail a"_s
                                << u"usage: fail (an argument with blanks in double quotes)"_s;
    QTest::newRow("unknown") << u"Do"_s << u"there is no command \"Do\"; help lists them"_s;
    QTest::newRow("too few after a name of two words")
        << u"of words"_s << u"usage: of words A (an argument with blanks in double quotes)"_s;
    QTest::newRow("half a name") << u"of"_s << u"there is no command \"of\"; help lists them"_s;
    QTest::newRow("half a name and an argument")
        << u"of word"_s << u"there is no command \"of word\"; help lists them"_s;
    QTest::newRow("name in quotes")
        << u"\"of words\" a"_s << u"there is no command \"of words a\"; help lists them"_s;
}

void TestInterpreter::countsArguments()
{
    QFETCH(QString, line);
    QFETCH(QString, said);

    run({line});
    QCOMPARE(m_transcript->happened(), QStringList(said));
}

void TestInterpreter::goesOnAfterAFailureOrStops_data()
{
    QTest::addColumn<bool>("stops");
    QTest::addColumn<QString>("failing");

    for (const QString &failing : {u"fail"_s, u"unknown"_s, u"two"_s}) {
        QTest::newRow(qUtf8Printable(failing + u", goes on"_s)) << false << failing;
        QTest::newRow(qUtf8Printable(failing + u", stops"_s)) << true << failing;
    }
}

void TestInterpreter::goesOnAfterAFailureOrStops()
{
    QFETCH(bool, stops);
    QFETCH(QString, failing);

    make(stops ? Interpreter::AtFailure::Stop : Interpreter::AtFailure::GoOn);
    QCOMPARE(run({failing, u"do 1"_s}), !stops);
    QCOMPARE(m_called.contains({u"1"_s}), !stops);
}

void TestInterpreter::quitsBeforeTheRest_data()
{
    QTest::addColumn<QString>("command");

    QTest::newRow("quit") << u"quit"_s;
    QTest::newRow("exit") << u"exit"_s;
}

void TestInterpreter::quitsBeforeTheRest()
{
    QFETCH(QString, command);

    QVERIFY(run({u"do 1"_s, command, u"do 2"_s}));
    QCOMPARE(m_called, QVector<QStringList>({{u"1"_s}}));
}

void TestInterpreter::runsNothingBeforeItIsStarted()
{
    m_interpreter->enqueue(u"do 1"_s);
    QCoreApplication::processEvents();
    QVERIFY(m_called.isEmpty());
    m_interpreter->start();
    QTRY_COMPARE(m_called.size(), 1);
}

void TestInterpreter::seesWhatHasHappened()
{
    make(Interpreter::AtFailure::Stop);
    QVERIFY(run({u"do 1 2"_s, u"expect said 1|2"_s, u"expect said *"_s, u"expect *2"_s,
                 u"expect s*d*1*"_s}));
}

void TestInterpreter::seesWhatHappensLater()
{
    m_interpreter->enqueue(u"do 1"_s);
    m_interpreter->enqueue(u"expect \"[a] (b) \\\"c\\\" .?\""_s);
    m_interpreter->enqueue(u"do 2"_s);
    m_interpreter->start();
    m_interpreter->setPatience(std::chrono::minutes(1));
    QTRY_COMPARE(m_called.size(), 1);
    m_transcript->record(u"ui"_s, u"[a] (b) \"c\" xx"_s);
    QCoreApplication::processEvents();
    QCOMPARE(m_called.size(), 1);
    m_transcript->record(u"ui"_s, u"[a] (b) \"c\" .?"_s);
    QTRY_COMPARE(m_called.size(), 2);
}

void TestInterpreter::seesWholeLinesOnly()
{
    make(Interpreter::AtFailure::Stop);
    QVERIFY(!run({u"do 12"_s, u"expect said 1"_s}));
}

void TestInterpreter::readsQuotesInAnExpectation_data()
{
    QTest::addColumn<QString>("expectation");
    QTest::addColumn<bool>("isMet");

    QTest::newRow("without quotes") << u"expect said a  b"_s << false;
    QTest::newRow("around it") << u"expect \"said a  b\""_s << true;
    QTest::newRow("around a word") << u"expect said \"a  b\""_s << true;
    QTest::newRow("pattern") << u"expect \"s* a  *\""_s << true;
    QTest::newRow("quotes that were not said") << u"expect \"said \\\"a  b\\\"\""_s << false;
}

/// They mean the same as in any other command.
void TestInterpreter::readsQuotesInAnExpectation()
{
    QFETCH(QString, expectation);
    QFETCH(bool, isMet);

    make(Interpreter::AtFailure::Stop);
    QCOMPARE(run({u"do \"a  b\""_s, expectation}), isMet);
}

void TestInterpreter::expectsSomething()
{
    run({u"expect"_s});
    QCOMPARE(m_transcript->happened(),
             QStringList(u"usage: expect TEXT... (an argument with blanks in double quotes)"_s));
}

void TestInterpreter::forgetsWhatEarlierCommandsDid()
{
    make(Interpreter::AtFailure::Stop);
    QVERIFY(!run({u"do 1"_s, u"do 2"_s, u"expect said 1"_s}));
}

void TestInterpreter::skipsWhatIsExpectedOfASkippedCommand()
{
    make(Interpreter::AtFailure::Stop);
    QVERIFY(run({u"skip"_s, u"expect nothing like it"_s, u"expect nor this"_s, u"do 1"_s,
                 u"expect said 1"_s}));
    QCOMPARE(m_called.size(), 2);
}

void TestInterpreter::runsManyLines()
{
    QStringList lines;
    for (int i = 0; i < 5000; ++i)
        lines << u"do %1"_s.arg(i);
    QVERIFY(run(lines));
    QCOMPARE(m_called.size(), 5000);
    QCOMPARE(m_called.constLast(), QStringList(u"4999"_s));
}

/// As a user pastes it, one line after another.
void TestInterpreter::runsATranscript()
{
    QVERIFY(run({u"> do 1"_s, u"  reply: said 1"_s, u"# remark"_s, u"  do 2"_s, QString(),
                 u"  do 3"_s, u">  do 4"_s, u"do 5"_s, u"  do 6"_s}));
    QCOMPARE(m_called, QVector<QStringList>({{u"1"_s}, {u"4"_s}, {u"5"_s}, {u"6"_s}}));
}

void TestInterpreter::keepsTheCommandsOfATranscript_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QStringList>("lines");

    QTest::newRow("script") << u"do 1\n  do 2\n# do 3\n\n>do 4"_s
                            << QStringList{u"do 1"_s, u"  do 2"_s, u"# do 3"_s, QString(),
                                           u">do 4"_s};
    QTest::newRow("transcript")
        << u"The call UI is on the bus after 9 ms.\n> do 1\n  reply: said\n\n# remark\ndo 2\n"
           "> expect said 1\n  as expected: said 1\n"_s
        << QStringList{u"do 1"_s, u"# remark"_s, u"expect said 1"_s};
    QTest::newRow("nothing") << QString() << QStringList(QString());
}

void TestInterpreter::keepsTheCommandsOfATranscript()
{
    QFETCH(QString, script);
    QFETCH(QStringList, lines);

    QCOMPARE(Transcript::linesOf(script), lines);
}

/// What is printed runs again, with what was expected.
void TestInterpreter::replaysItsTranscript()
{
    const QStringList script{u"# remark"_s, u"do \"a b\""_s, u"expect \"said a b\""_s, u"do 2"_s};
    for (int i = 0; i < 2; ++i) {
        make(Interpreter::AtFailure::Stop);
        QStringList printed;
        connect(m_transcript.get(), &Transcript::said, this,
                [&printed](const QString &line) { printed.append(line); });
        m_called.clear();
        QVERIFY(run(i == 0 ? script : Transcript::linesOf(m_printed.join(u'\n'))));
        QCOMPARE(m_called, QVector<QStringList>({{u"a b"_s}, {u"2"_s}}));
        QCOMPARE(printed.filter(u"as expected: said a b"_s).size(), 1);
        m_printed = printed;
    }
}

void TestInterpreter::describesCommands_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QStringList>("described");

    QTest::newRow("one") << u"help two"_s << QStringList(u"two A [B]"_s);
    QTest::newRow("of two words") << u"help of words"_s << QStringList(u"of words A"_s);
    QTest::newRow("beginning") << u"help of"_s << QStringList(u"of words A"_s);
    QTest::newRow("none") << u"help bogus"_s << QStringList();
    QTest::newRow("none of two words") << u"help of word"_s << QStringList();
}

void TestInterpreter::describesCommands()
{
    QFETCH(QString, line);
    QFETCH(QStringList, described);

    QStringList printed;
    connect(m_transcript.get(), &Transcript::said, this, [&printed](const QString &one) {
        if (one.startsWith(u"  "_s) && !one.startsWith(u"  failed"_s))
            printed.append(one.mid(2).section(u"  "_s, 0, 0));
    });
    run({line});
    QCOMPARE(printed, described);
    const QString problem =
        u"there is no command \"%1\"; help lists them"_s.arg(line.section(u' ', 1));
    QCOMPARE(m_transcript->happened(), described.isEmpty() ? QStringList(problem) : QStringList());
}

/// The descriptions begin in one column, those of long commands in the next line.
void TestInterpreter::alignsTheListOfCommands()
{
    m_interpreter->add({{u"with-a-name-that-is-long"_s, {u"AND-A-PARAMETER"_s}, u"longest"_s, {}}});
    QStringList printed;
    connect(m_transcript.get(), &Transcript::said, this,
            [&printed](const QString &line) { printed.append(line); });
    QVERIFY(run({u"help"_s}));
    const int column = 32;
    int described = 0;
    for (const QString &line : printed.mid(1)) {
        if (line == u"  with-a-name-that-is-long AND-A-PARAMETER"_s)
            continue;
        ++described;
        QVERIFY2(line.at(column - 1) == u' ' && line.at(column) != u' ', qUtf8Printable(line));
    }
    QCOMPARE(described, 11); // Four of the interpreter, and seven of the test.
    QCOMPARE(printed.constLast(), QString(column, u' ') + u"longest"_s);
}

void TestInterpreter::completesWords_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QStringList>("words");

    QTest::newRow("command") << u"ski"_s << QStringList(u"skip"_s);
    QTest::newRow("commands") << u"e"_s << QStringList{u"exit"_s, u"expect"_s};
    QTest::newRow("second word") << u"of "_s << QStringList(u"words"_s);
    QTest::newRow("beginning of the second word") << u"of  wo"_s << QStringList(u"words"_s);
    QTest::newRow("whole") << u"of words"_s << QStringList(u"words"_s);
    QTest::newRow("parameter of some words") << u"turn o"_s << QStringList{u"off"_s, u"on"_s};
    QTest::newRow("parameter with values") << u"turn on "_s << QStringList{u"lamp"_s, u"radio"_s};
    QTest::newRow("behind the last parameter") << u"turn on lamp "_s << QStringList();
    QTest::newRow("parameter with none") << u"two "_s << QStringList();
    QTest::newRow("no command") << u"bogus "_s << QStringList();
    QTest::newRow("help") << u"help of "_s << QStringList(u"words"_s);
    QTest::newRow("help, no parameter") << u"help turn "_s << QStringList();
    QTest::newRow("in quotes") << u"\"ski"_s << QStringList();
}

void TestInterpreter::completesWords()
{
    QFETCH(QString, line);
    QFETCH(QStringList, words);

    m_interpreter->add({{u"turn"_s, {u"on|off"_s, u"THING"_s}, u"turns"_s, {}}});
    m_interpreter->addValues(u"THING"_s, [] { return QStringList{u"radio"_s, u"lamp"_s}; });
    QCOMPARE(m_interpreter->completions(line), words);
}

QTEST_GUILESS_MAIN(TestInterpreter)

#include "tst_interpreter.moc"
