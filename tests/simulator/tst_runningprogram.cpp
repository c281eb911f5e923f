// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "childprocess.h"
#include "literals.h"
#include "runningprogram.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTest>

#include <cstring>

#include <unistd.h>

namespace {

/// The argument with which this program does nothing, and does not end.
constexpr char waitForever[] = "wait-forever";

/// Returns the loader of this process; empty if it has none.
QString loader()
{
    QFile maps(u"/proc/self/maps"_s);
    if (!maps.open(QIODevice::ReadOnly))
        return {};
    const QRegularExpression line(u" (/\\S*/ld-[^/\\s]+)$"_s, QRegularExpression::MultilineOption);
    return line.match(QString::fromLocal8Bit(maps.readAll())).captured(1);
}

} // namespace

class TestRunningProgram : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void knowsItsExecutable();
    void knowsWhatALoaderRuns();
    void knowsNoProcess();
};

void TestRunningProgram::knowsItsExecutable()
{
    const QString program = QFileInfo(QCoreApplication::applicationFilePath()).canonicalFilePath();
    QVERIFY(runsProgram(QCoreApplication::applicationPid(), program));
    QVERIFY(!runsProgram(QCoreApplication::applicationPid(), program.chopped(1)));
    QVERIFY(!runsProgram(QCoreApplication::applicationPid(), program.mid(1)));
}

/// The executable is the loader, as it is the emulator where the program is emulated.
void TestRunningProgram::knowsWhatALoaderRuns()
{
    // Of a program of this build, because the tools of the system may be for another processor.
    const QString program = QFileInfo(QCoreApplication::applicationFilePath()).canonicalFilePath();
    QVERIFY(!loader().isEmpty());
    ChildProcess process;
    process.start(loader(), {program, QString::fromLatin1(waitForever)});
    QVERIFY(process.waitForStarted());
    QTRY_VERIFY(runsProgram(process.processId(), program));
    QVERIFY(!QFile::symLinkTarget(u"/proc/%1/exe"_s.arg(process.processId())).endsWith(program));
}

void TestRunningProgram::knowsNoProcess()
{
    QVERIFY(!runsProgram(0, QCoreApplication::applicationFilePath()));
}

int main(int argc, char *argv[])
{
    if (argc == 2 && std::strcmp(argv[1], waitForever) == 0)
        return pause();
    const QCoreApplication application(argc, argv);
    TestRunningProgram test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_runningprogram.moc"
