// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "literals.h"
#include "runservice.h"
#include "sandbox.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

namespace {

constexpr int patience = 120'000;

} // namespace

/// Plays each script in the folder "scripts" on the simulated telephony and on the real oFono.
/// Those in "scripts/screens" are for the screens that are installed.
class TestTelephonyScripts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void plays_data();
    void plays();
    void saysThatOfonoIsMissing();
};

void TestTelephonyScripts::plays_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QStringList>("screens");
    QTest::addColumn<bool>("isReal");

    const QString folder = QStringLiteral(PARLEY_SCRIPTS);
    const QStringList phone{u"--qml"_s, folder + u"/phone.qml"_s};
    for (const bool isOurs : {false, true}) {
        const QDir place(isOurs ? folder + u"/screens"_s : folder);
        const QFileInfoList scripts = place.entryInfoList({u"*.script"_s}, QDir::Files);
        QVERIFY(!scripts.isEmpty());
        for (const QFileInfo &script : scripts) {
            const QString name = (isOurs ? u"screens: "_s : QString()) + script.baseName();
            const QStringList screens = isOurs ? QStringList() : phone;
            for (const bool isReal : {false, true}) {
                QTest::addRow("%s, %s", qUtf8Printable(name), isReal ? "oFono" : "simulated")
                    << script.filePath() << screens << isReal;
            }
        }
    }
}

void TestTelephonyScripts::plays()
{
    QFETCH(QString, script);
    QFETCH(QStringList, screens);
    QFETCH(bool, isReal);

    const QString why = isReal ? whyNoOfono() : QString();
    if (!why.isEmpty())
        QSKIP(qUtf8Printable(why));
    const QTemporaryDir folder;
    QProcess handset;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"TMPDIR"_s, folder.path());
    environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s); // The scripts expect English texts.
    environment.insert(u"QML2_IMPORT_PATH"_s, qEnvironmentVariable("PARLEY_QML_MODULES"));
    handset.setProcessEnvironment(environment);
    handset.setProcessChannelMode(QProcess::MergedChannels);
    QStringList arguments = screens + QStringList{u"--no-panel"_s, u"--script"_s, script};
    if (isReal)
        arguments.append(u"--ofono"_s);
    handset.start(qEnvironmentVariable("PARLEY_HANDSET"), arguments);
    QVERIFY(handset.waitForFinished(patience));
    const QByteArray transcript = handset.readAll();
    // QtTest cuts off long texts; what went wrong is at the end.
    const QByteArray end = transcript.right(600);
    QVERIFY2(handset.exitStatus() == QProcess::NormalExit && handset.exitCode() == 0,
             end.constData());
    QVERIFY2(!transcript.contains("skipped:"), end.constData());
}

/// The handset says which package it is in.
void TestTelephonyScripts::saysThatOfonoIsMissing()
{
    if (!Sandbox::isPossible())
        QSKIP("Without bwrap, the program cannot be hidden.");
    Sandbox sandbox;
    const QTemporaryDir empty;
    QStringList command{qEnvironmentVariable("PARLEY_HANDSET"), u"--ofono"_s, u"--no-panel"_s};
    for (const QString &folder : {u"/usr/sbin"_s, u"/sbin"_s})
        sandbox.place(folder, empty.path());
    command = sandbox.wrap(command);
    QProcess handset;
    const QString program = command.takeFirst();
    handset.start(program, command);
    QVERIFY(handset.waitForFinished(patience));
    QCOMPARE(handset.readAllStandardError(),
             QByteArray("parley-handset: oFono is not installed; it is in the package ofono.\n"));
    QCOMPARE(handset.exitCode(), 1);
}

QTEST_GUILESS_MAIN(TestTelephonyScripts)

#include "tst_telephonyscripts.moc"
