// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "literals.h"
#include "uiundertest.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QTest>

#include <memory>

namespace {

const QByteArray defaults = "[\n    \"parley-me-please_call_later\",\n"
                            "    \"parley-me-cant_talk_at_the_moment\",\n"
                            "    \"parley-me-will_call_back\"\n]\n";

const QStringList defaultTexts{u"Please call later"_s, u"I can't talk at the moment"_s,
                               u"I will call back"_s};

constexpr int patience = 30000;

} // namespace

/// The messages in the QML of the built process.
class TestQuickMessages : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void showsTheDefaultsTranslated();
    void keepsWhatIsSaved();
    void losesWhatIsNotSaved();
    void showsWhatAnotherProcessWrites();
    void isControlledByTheQml();
    void complainsInTheLog();
    void givesTheMemoryOfAHugeFileBack();

private:
    bool startUi();
    QStringList texts();
    void write(const QByteArray &content);
    QByteArray content() const;

    std::unique_ptr<UiUnderTest> m_ui;
    QString m_file;
};

void TestQuickMessages::init()
{
    m_ui = std::make_unique<UiUnderTest>();
    QVERIFY(m_ui->isValid());
    m_ui->sandbox().place(u"/usr/share/translations"_s, QStringLiteral(PARLEY_CATALOGUES));
    m_file = m_ui->folder() + u"/home/.local/share/system/privileged/Phone/quick-replies.json"_s;
}

void TestQuickMessages::cleanup()
{
    m_ui->stop();
    QCOMPARE(m_ui->takeLog().join(u'\n'), QString());
    m_ui.reset();
}

bool TestQuickMessages::startUi()
{
    return m_ui->startScreens(QStringLiteral(PARLEY_QUICK_MESSAGES_SCREENS), {u"-prestart"_s});
}

QStringList TestQuickMessages::texts()
{
    return m_ui->evaluate(u"texts()"_s).toVariant().toStringList();
}

void TestQuickMessages::write(const QByteArray &content)
{
    QVERIFY(QDir().mkpath(QFileInfo(m_file).path()));
    QFile file(m_file);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), qint64(content.size()));
}

QByteArray TestQuickMessages::content() const
{
    QFile file(m_file);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot be read");
}

void TestQuickMessages::showsTheDefaultsTranslated()
{
    QVERIFY(startUi());
    QCOMPARE(texts(), defaultTexts);
    QCOMPARE(m_ui->evaluate(u"shown.itemAt(2).editedText"_s), QJsonValue(u"I will call back"_s));
    QCOMPARE(m_ui->evaluate(u"[messages.filePath, messages.active, messages.hasError,"
                            " messages.count, messages.defaultValue[1]]"_s)
                 .toArray(),
             QJsonArray({m_file, true, false, 3, u"parley-me-cant_talk_at_the_moment"_s}));
    QVERIFY(!QFile::exists(m_file));

    // They are saved as their ids.
    m_ui->evaluate(u"messages.save()"_s);
    QCOMPARE(content(), defaults);
}

void TestQuickMessages::keepsWhatIsSaved()
{
    QVERIFY(startUi());
    m_ui->evaluate(u"messages.remove(1)"_s);
    QVERIFY(m_ui->logs(u"qml: told count: 2"_s));
    m_ui->evaluate(u"messages.append('  \u4e2d \"Busy\"\\n')"_s);
    QVERIFY(m_ui->logs(u"qml: told count: 3"_s));
    m_ui->evaluate(u"messages.append('')"_s);
    QVERIFY(m_ui->logs(u"qml: told count: 4"_s));
    m_ui->evaluate(u"messages.save()"_s);
    QCOMPARE(content(),
             QByteArray("[\n    \"parley-me-please_call_later\",\n"
                        "    \"parley-me-will_call_back\",\n"
                        "    \"\xe4\xb8\xad \\\"Busy\\\"\"\n]\n"));
    QCOMPARE(
        texts(),
        QStringList({defaultTexts.at(0), defaultTexts.at(2), u"  \u4e2d \"Busy\"\n"_s, QString()}));

    m_ui->stop();
    QVERIFY(startUi());
    QCOMPARE(texts(), QStringList({defaultTexts.at(0), defaultTexts.at(2), u"\u4e2d \"Busy\""_s}));

    m_ui->evaluate(u"messages.reset()"_s);
    QVERIFY(m_ui->logs(u"qml: told count: 3"_s));
    QCOMPARE(texts(), defaultTexts);
    m_ui->evaluate(u"messages.save()"_s);
    QCOMPARE(content(), defaults);
}

void TestQuickMessages::losesWhatIsNotSaved()
{
    write(R"(["One"])");
    QVERIFY(startUi());
    m_ui->evaluate(u"messages.append('Two')"_s);
    QVERIFY(m_ui->logs(u"qml: told count: 2"_s));
    m_ui->stop();
    QCOMPARE(content(), QByteArray(R"(["One"])"));
    QVERIFY(startUi());
    QCOMPARE(texts(), QStringList(u"One"_s));
}

void TestQuickMessages::showsWhatAnotherProcessWrites()
{
    QVERIFY(startUi());
    write(R"(["One", "Two"])");
    QTRY_COMPARE_WITH_TIMEOUT(texts(), QStringList({u"One"_s, u"Two"_s}), patience);

    const QString other = m_ui->writeFile(u"other"_s, R"(["Three", " parley-me-will_call_back",
                                                          "parley-me-will_call_back", 5])");
    QCOMPARE(std::rename(qUtf8Printable(other), qUtf8Printable(m_file)), 0);
    QTRY_COMPARE_WITH_TIMEOUT(
        texts(), QStringList({u"Three"_s, u" parley-me-will_call_back"_s, defaultTexts.at(2)}),
        patience);

    const QString empty = m_ui->writeFile(u"empty"_s, {});
    QCOMPARE(std::rename(qUtf8Printable(empty), qUtf8Printable(m_file)), 0);
    QTRY_COMPARE_WITH_TIMEOUT(texts(), defaultTexts, patience);
    m_ui->takeLog(); // The log has each reported count, even of half a file.
}

void TestQuickMessages::isControlledByTheQml()
{
    const QString other = m_ui->writeFile(u"other.json"_s, R"(["Other"])");
    QVERIFY(startUi());
    m_ui->evaluate(u"messages.filePath = '"_s + other + u"'"_s);
    QVERIFY(m_ui->logs(u"qml: told count: 1"_s));
    QCOMPARE(texts(), QStringList(u"Other"_s));
    m_ui->evaluate(u"messages.active = false"_s);
    QVERIFY(m_ui->logs(u"qml: told active: false"_s));
    m_ui->evaluate(u"messages.defaultValue = ['Mine', 'Yours']"_s);
    m_ui->evaluate(u"messages.reset()"_s);
    QVERIFY(m_ui->logs(u"qml: told count: 2"_s));
    QCOMPARE(texts(), QStringList({u"Mine"_s, u"Yours"_s}));
    m_ui->evaluate(u"messages.active = true"_s);
    QVERIFY(m_ui->logs(u"qml: told active: true"_s));
    QVERIFY(m_ui->logs(u"qml: told count: 1"_s));
    QCOMPARE(texts(), QStringList(u"Other"_s));
}

void TestQuickMessages::complainsInTheLog()
{
    QVERIFY(QDir().mkpath(m_file));
    QVERIFY(startUi());
    QCOMPARE(m_ui->evaluate(u"messages.hasError"_s), QJsonValue(true));
    QCOMPARE(texts(), defaultTexts);
    m_ui->evaluate(u"messages.save()"_s);
    QVERIFY(m_ui->logs(u"void QuickMessagesModel::save() can't open file \""_s + m_file + u'"'));
    m_ui->evaluate(u"messages.active = false"_s);
    QVERIFY(m_ui->logs(u"qml: told active: false"_s));
    m_ui->evaluate(u"messages.save()"_s);
    QVERIFY(m_ui->logs(u"void QuickMessagesModel::save() inactive, can't save file \""_s + m_file
                       + u'"'));
    m_ui->evaluate(u"messages.filePath = ''"_s);
    m_ui->evaluate(u"messages.active = true"_s);
    QVERIFY(m_ui->logs(u"qml: told active: true"_s));
    QVERIFY(m_ui->logs(u"void QuickMessagesModel::load() file path is empty, can't load file"_s));
    m_ui->evaluate(u"messages.save()"_s);
    QVERIFY(m_ui->logs(u"void QuickMessagesModel::save() filePath is not set, can't save"_s));
}

void TestQuickMessages::givesTheMemoryOfAHugeFileBack()
{
    if (!qEnvironmentVariableIsSet("PARLEY_UI_OPTIMIZED"))
        QSKIP("a sanitizer does not return freed memory");

    write(R"(["small"])");
    QVERIFY(startUi());
    QCOMPARE(texts(), QStringList(u"small"_s));
    // Hide the messages from the delegates, whose memory belongs to the screens.
    m_ui->evaluate(u"shown.model = null"_s);
    const qint64 before = m_ui->residentMemory();
    QVERIFY(before > 0);

    const QByteArray message = "\"Message of forty characters, all the same\"";
    constexpr int count = (16 << 20) / 44; // This is the most that is read.
    write('[' + QByteArray(message + ',').repeated(count - 1) + message + ']');
    QTRY_COMPARE_WITH_TIMEOUT(m_ui->evaluate(u"messages.count"_s), QJsonValue(count), 60000);
    const qint64 peak = m_ui->residentMemory();
    QVERIFY(peak > before + 50000);
    write(R"(["small again"])");
    QTRY_COMPARE_WITH_TIMEOUT(m_ui->evaluate(u"messages.count"_s), QJsonValue(1), 60000);
    const qint64 after = m_ui->residentMemory();
    qInfo("%lld KiB before, %lld with the huge file, %lld after", before, peak, after);
    m_ui->takeLog(); // The log has each reported count.
    QVERIFY(after < before + 20000);
}

QTEST_GUILESS_MAIN(TestQuickMessages)

#include "tst_quickmessages.moc"
