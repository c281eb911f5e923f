// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "document.h"
#include "examplerunner.h"
#include "literals.h"

#include "callaudio.h"
#include "calls.h"
#include "messages.h"
#include "parleyuiadaptor.h"
#include "quickmessagesmodel.h"
#include "reminder.h"
#include "reminders.h"
#include "ringer.h"
#include "simfiltershelper.h"

#include <QDir>
#include <QFileInfo>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

#include <algorithm>

namespace {

/// The kit's own object is among them.
const QStringList rootContext{u"__window"_s, u"__prestart"_s, u"__specials"_s,
                              u"simFiltersHelper"_s, u"__kit"_s};

const QDir source(QStringLiteral(PARLEY_SOURCE_DIR));

QStringList pages()
{
    return QDir(source.filePath(u"docs"_s)).entryList({u"*.md"_s});
}

QString pathOf(const QString &page)
{
    return source.filePath(u"docs/"_s + page);
}

/// Returns the texts in backticks in \a cell.
QStringList codeIn(const QString &cell)
{
    static const QRegularExpression code(u"`([^`]*)`"_s);
    QStringList words;
    for (auto it = code.globalMatch(cell); it.hasNext();)
        words.append(it.next().captured(1));
    return words;
}

QString documentedType(const QMetaProperty &property)
{
    static const QMap<QString, QString> names{{u"QString"_s, u"string"_s},
                                              {u"QStringList"_s, u"list of strings"_s},
                                              {u"QDateTime"_s, u"date"_s},
                                              {u"QVariantMap"_s, u"map"_s},
                                              {u"Reminders*"_s, u"RemindersBase"_s},
                                              {u"ServiceDialogue*"_s, u"ServiceDialogue"_s},
                                              {u"Telephony::Status"_s, u"Telephony"_s}};
    const QString type = QString::fromLatin1(property.typeName());
    return names.value(type, type) + (property.isWritable() ? QString() : u", read only"_s);
}

QString callOf(const QMetaMethod &method)
{
    QStringList names;
    const QList<QByteArray> parameters = method.parameterNames();
    for (const QByteArray &name : parameters)
        names.append(QString::fromLatin1(name));
    return QString::fromLatin1(method.name()) + u'(' + names.join(u", "_s) + u')';
}

bool isQml(const Document::Block &block)
{
    return block.kind == u"qml"_s || block.kind.startsWith(u"qml "_s);
}

/// Returns what qmllint says of \a fileName with the arguments that qml-api.md names, without its
/// warnings of the root context.
QString lint(const QString &fileName)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral(PARLEY_QMLLINT),
                  {u"-U"_s, u"-I"_s, QStringLiteral(PARLEY_QML_IMPORT_PATH), u"-i"_s,
                   source.filePath(u"qml/com/nimbo/parley/plugins.qmltypes"_s), u"-i"_s,
                   source.filePath(u"qml/com/nimbo/calls/plugins.qmltypes"_s), fileName});
    if (!process.waitForFinished())
        return u"qmllint does not end"_s;
    QString said = QString::fromUtf8(process.readAll());
    static const QRegularExpression expected(u"Warning: unqualified access at \\d+:\\d+\n"
                                             u"( *)[^\n]*\n *\\^+\n+"_s);
    for (decltype(said.size()) at = 0; at >= 0;) {
        const QRegularExpressionMatch match = expected.match(said, at);
        at = match.capturedStart();
        const QStringList lines = match.captured().split(u'\n');
        const auto from = lines.value(2).indexOf(u'^');
        const QString name = lines.value(1).mid(from, lines.value(2).count(u'^'));
        if (rootContext.contains(name))
            said.remove(at, match.capturedLength());
        else if (at >= 0)
            at = match.capturedEnd();
    }
    return said;
}

/// Returns a line for each member that QML sees, without the inherited ones.
QStringList membersOf(const QMetaObject &type)
{
    QStringList members;
    QVector<int> notifications;
    for (int i = type.propertyOffset(); i < type.propertyCount(); ++i) {
        const QMetaProperty property = type.property(i);
        notifications.append(property.notifySignalIndex());
        members.append(u"property "_s + QString::fromLatin1(property.name()) + u": "_s
                       + documentedType(property));
    }
    for (int i = type.methodOffset(); i < type.methodCount(); ++i) {
        const QMetaMethod method = type.method(i);
        // A method is there once more for each argument that may be left out.
        const bool isShorter = (method.attributes() & QMetaMethod::Cloned) != 0;
        if (method.access() != QMetaMethod::Public || notifications.contains(i) || isShorter)
            continue;
        const bool isSignal = method.methodType() == QMetaMethod::Signal;
        members.append((isSignal ? u"signal "_s : u"method "_s) + callOf(method));
    }
    std::sort(members.begin(), members.end());
    return members;
}

/// Returns the same lines from the page.
QStringList documentedMembers(const Document &page, const QString &type)
{
    QStringList members;
    for (const Document::Row &row : page.rows()) {
        if (row.section != type)
            continue;
        const QString name = codeIn(row.cells.at(0)).value(0);
        if (row.column == u"property"_s)
            members.append(u"property "_s + name + u": "_s + row.cells.at(1));
        else if (row.column == u"method"_s)
            members.append(u"method "_s + name);
        else if (row.column == u"signal"_s)
            members.append(u"signal "_s + name + u'(' + codeIn(row.cells.at(1)).join(u", "_s)
                           + u')');
    }
    std::sort(members.begin(), members.end());
    return members;
}

} // namespace

class TestDocs : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void runsItsExamples_data();
    void runsItsExamples();
    void hasExamplesThatToolsUnderstand_data();
    void hasExamplesThatToolsUnderstand();
    void lintsWithWarningsOfTheRootContextAlone_data();
    void lintsWithWarningsOfTheRootContextAlone();
    void leavesOutTheInstallationAlone();
    void hasEveryMember_data();
    void hasEveryMember();
    void hasEveryContextProperty();
    void hasEveryMethodOfTheService();
    void leadsToWhatIsThere_data();
    void leadsToWhatIsThere();
};

void TestDocs::runsItsExamples_data()
{
    QTest::addColumn<QString>("page");
    const QStringList names = pages();
    for (const QString &name : names)
        QTest::newRow(qUtf8Printable(name)) << name;
}

void TestDocs::runsItsExamples()
{
    QFETCH(QString, page);

    const Document document(pathOf(page));
    QVERIFY(!document.blocks().isEmpty());
    ExampleRunner runner;
    QVERIFY(runner.start());
    for (const Document::Block &block : document.blocks()) {
        const QString problem = runner.run(block);
        QVERIFY2(problem.isEmpty(),
                 qUtf8Printable(u"%1:%2: %3"_s.arg(page).arg(block.number).arg(problem)));
    }
    QCOMPARE(runner.end(), QStringList());
}

void TestDocs::hasExamplesThatToolsUnderstand_data()
{
    runsItsExamples_data();
}

/// With the description of our types, the linter knows every one of them that is used.
void TestDocs::hasExamplesThatToolsUnderstand()
{
    QFETCH(QString, page);
    if (!ExampleRunner::hasLinter())
        QSKIP("The documentation uses the qmllint of Qt 5");

    const QTemporaryDir folder;
    const Document document(pathOf(page));
    for (const Document::Block &block : document.blocks()) {
        if (!isQml(block))
            continue;
        QFile file(folder.filePath(u"example.qml"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(block.lines.join(u'\n').toUtf8());
        file.close();
        QProcess lint;
        lint.setProcessChannelMode(QProcess::MergedChannels);
        lint.start(source.filePath(u"tests/lint/check-qml"_s),
                   {QStringLiteral(PARLEY_QMLLINT), folder.path(), source.filePath(u"qml"_s)});
        QVERIFY(lint.waitForFinished());
        QCOMPARE(QString::fromUtf8(lint.readAll()), QString());
        QCOMPARE(lint.exitCode(), 0);
    }
}

void TestDocs::lintsWithWarningsOfTheRootContextAlone_data()
{
    runsItsExamples_data();
}

void TestDocs::lintsWithWarningsOfTheRootContextAlone()
{
    QFETCH(QString, page);
    if (!ExampleRunner::hasLinter())
        QSKIP("The documentation uses the qmllint of Qt 5");

    const QTemporaryDir folder;
    const Document document(pathOf(page));
    for (const Document::Block &block : document.blocks()) {
        if (!isQml(block))
            continue;
        QFile file(folder.filePath(u"example.qml"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(block.lines.join(u'\n').toUtf8());
        file.close();
        QCOMPARE(lint(file.fileName()), QString());
    }
}

void TestDocs::leavesOutTheInstallationAlone()
{
    const QStringList names = pages();
    QStringList notRun;
    for (const QString &name : names) {
        const Document document(pathOf(name));
        for (const Document::Block &block : document.blocks()) {
            if (block.kind == u"sh not-run"_s)
                notRun += block.lines;
        }
    }
    QCOMPARE(notRun,
             QStringList({u"cmake -B build && cmake --build build && ctest --test-dir build"_s,
                          u"cmake --install build"_s,
                          u"sudo dpkg --add-architecture arm64 && sudo apt-get update"_s,
                          u"sudo apt-get install crossbuild-essential-arm64 qemu-user-static"_s,
                          u"sudo apt-get build-dep --host-architecture=arm64 ."_s,
                          u"dpkg-buildpackage -b -us -uc --host-arch=arm64"_s,
                          u"systemd-sysusers"_s, u"systemctl reload dbus"_s,
                          u"systemctl enable --now parley-time-daemon.service"_s,
                          u"systemctl --global enable parley-alarm.service"_s}));
}

void TestDocs::hasEveryMember_data()
{
    QTest::addColumn<QString>("page");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QStringList>("members");

    const auto add = [](const QString &page, const QString &type, const QStringList &members) {
        QTest::newRow(qUtf8Printable(type)) << page << type << members;
    };
    const QString types = u"qml-api.md"_s;
    add(types, u"ParleyUiAdaptor"_s, membersOf(ParleyUiAdaptor::staticMetaObject));
    add(types, u"RemindersBase"_s, membersOf(Reminders::staticMetaObject));
    add(types, u"Reminder"_s, membersOf(Reminder::staticMetaObject));
    add(types, u"QuickMessagesModel"_s, membersOf(QuickMessagesModel::staticMetaObject));
    add(types, u"simFiltersHelper"_s, membersOf(SimFiltersHelper::staticMetaObject));

    const QString calls = u"calls.md"_s;
    QStringList members =
        membersOf(CallModel::staticMetaObject) + membersOf(Calls::staticMetaObject);
    std::sort(members.begin(), members.end());
    add(calls, u"Calls"_s, members);
    add(calls, u"ServiceDialogue"_s, membersOf(ServiceDialogue::staticMetaObject));
    add(calls, u"Messages"_s, membersOf(Messages::staticMetaObject));
    add(calls, u"Ringer"_s, membersOf(Ringer::staticMetaObject));
    add(calls, u"CallAudio"_s, membersOf(CallAudio::staticMetaObject));
}

void TestDocs::hasEveryMember()
{
    QFETCH(QString, page);
    QFETCH(QString, type);
    QFETCH(QStringList, members);

    QVERIFY(!members.isEmpty());
    QCOMPARE(documentedMembers(Document(pathOf(page)), type), members);
}

void TestDocs::hasEveryContextProperty()
{
    QFile code(source.filePath(u"app/rootcontext.cpp"_s));
    QVERIFY(code.open(QIODevice::ReadOnly));
    static const QRegularExpression call(u"setContextProperty\\(QStringLiteral\\(\"(\\w+)\"\\)"_s);
    QStringList set;
    for (auto it = call.globalMatch(QString::fromUtf8(code.readAll())); it.hasNext();)
        set.append(it.next().captured(1));
    QVERIFY(!set.isEmpty());

    const Document page(pathOf(u"qml-api.md"_s));
    QStringList documented;
    for (const Document::Row &row : page.rows()) {
        if (row.section == u"The root context"_s)
            documented += codeIn(row.cells.constFirst());
    }
    std::sort(set.begin(), set.end());
    std::sort(documented.begin(), documented.end());
    QCOMPARE(documented, set);
}

/// The table of the page matches what busctl prints on the same page.
void TestDocs::hasEveryMethodOfTheService()
{
    const Document page(pathOf(u"bus-api.md"_s));
    QStringList documented;
    for (const Document::Row &row : page.rows()) {
        if (row.column == u"method"_s)
            documented.append(codeIn(row.cells.at(0)).join(QString()) + u' '
                              + codeIn(row.cells.at(1)).join(QString()) + u' '
                              + codeIn(row.cells.at(2)).join(QString()));
    }
    static const QRegularExpression method(u"^\\.(\\w+) +method +(\\S+) +(\\S+) "_s);
    QStringList printed;
    for (const Document::Block &block : page.blocks()) {
        for (const QString &line : block.lines) {
            const QRegularExpressionMatch match = method.match(line);
            if (match.hasMatch())
                printed.append(
                    QString(match.captured(1) + u' ' + match.captured(2) + u' ' + match.captured(3))
                        .remove(u'-'));
        }
    }
    QVERIFY(!printed.isEmpty());
    std::sort(documented.begin(), documented.end());
    std::sort(printed.begin(), printed.end());
    QCOMPARE(documented, printed);
}

void TestDocs::leadsToWhatIsThere_data()
{
    runsItsExamples_data();
}

void TestDocs::leadsToWhatIsThere()
{
    QFETCH(QString, page);

    const Document document(pathOf(page));
    for (const QString &link : document.links()) {
        const QString name = link.section(u'#', 0, 0);
        const QString anchor = link.section(u'#', 1);
        const QString target = name.isEmpty() ? pathOf(page) : pathOf(name);
        QVERIFY2(QFileInfo::exists(target), qUtf8Printable(link));
        QVERIFY2(anchor.isEmpty() || Document(target).anchors().contains(anchor),
                 qUtf8Printable(link));
    }
}

QTEST_GUILESS_MAIN(TestDocs)

#include "tst_docs.moc"
