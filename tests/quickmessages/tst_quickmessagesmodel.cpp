// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "literals.h"
#include "messagelog.h"
#include "quickmessagesmodel.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QTranslator>

#include <functional>
#include <memory>
#include <optional>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

const QStringList ids{u"parley-me-please_call_later"_s, u"parley-me-cant_talk_at_the_moment"_s,
                      u"parley-me-will_call_back"_s};

/// Qt notices changes late. A watcher of the same file shows when it has noticed them.
constexpr int patience = 30000;

constexpr uid_t nobody = 65534;

/// While the object lives, this thread has only the rights of a user that owns no file.
class WithoutRights
{
public:
    WithoutRights()
    {
        // Do not use setresuid(), which changes all threads.
        if (m_isRoot)
            syscall(SYS_setresuid, nobody, nobody, 0);
    }
    ~WithoutRights()
    {
        if (m_isRoot)
            syscall(SYS_setresuid, 0, 0, 0);
    }

private:
    Q_DISABLE_COPY(WithoutRights)

    const bool m_isRoot = geteuid() == 0;
};

} // namespace

/// The model, with files in a home of its own.
class TestQuickMessagesModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void declaresWhatQmlUses();

    void startsWithTheDefaults();
    void startsWithItsFile();
    void takesItsHomeFromTheEnvironment();
    void translatesTheDefaults();
    void showsIdsWithoutACatalogue();

    void readsAnyContent_data();
    void readsAnyContent();
    void readsAnyEncoding_data();
    void readsAnyEncoding();
    void leavesEqualContentAlone();
    void isResetForOtherContent();

    void savesThis_data();
    void savesThis();
    void savesWhatItHasTrimmed();
    void savesOverALongerFile();
    void savesToANewFile();
    void savesInPlace();
    void savesNothingByItself();

    void addsRows();
    void removesRows();
    void resetsToTheDefaultValue();
    void isEditedAsAnyModel();

    void doesNothingWhileInactive();
    void readsWhenItBecomesActive();
    void changesItsFile();
    void makesTheDirectory();
    void staysSilentAboutADirectoryThatCannotBeMade();
    void hasNoFile();
    void takesUnusualPaths_data();
    void takesUnusualPaths();
    void changesItsDefaultValue();
    void keepsItsRowsForAnotherDefaultValue();

    void reportsErrorsOfReading();
    void reportsErrorsOfWriting();
    void clearsAnErrorWhenWriting();
    void reportsAFileThatItMayNotRead();
    void keepsItsRowsBesideAFileThatItMayNotRead();
    void takesRegularFilesAlone_data();
    void takesRegularFilesAlone();
    void takesFilesUpToALimit_data();
    void takesFilesUpToALimit();
    void reportsAFileThatItMayNotWrite();
    void worksInADirectoryThatItMayNotList();
    void writesAFileThatItMayNotRead();
    void takesAFolderForAFile();
    void takesADanglingLinkForNoFile();
    void outlivesAHugeFile_data();
    void outlivesAHugeFile();

    void followsAWriteInPlace();
    void followsAReplacement();
    void followsADeletion();
    void followsAFileThatComesLate();
    void followsALink();
    void followsWhileInactive();
    void followsAFileChosenWhileInactive();
    void followsALateFileWhileInactive();
    void stopsFollowingAnotherFile();
    void doesNotFollowItself_data();
    void doesNotFollowItself();
    void followsAfterItsOwnWrite();
    void endsWithTheLastContent_data();
    void endsWithTheLastContent();

    void ignoresOtherPaths_data();
    void ignoresOtherPaths();
    void takesTheStepsOfADirectory();
    void takesTheStepsOfAFile();

    void survivesItsHandlers_data();
    void survivesItsHandlers();
    void readsWhatAHandlerSaves();
    void savesWhatAHandlerAdds();
    void leavesAFileWholeThatAHandlerLeaves();

private:
    void make();
    void write(const QByteArray &content) { writeTo(m_file, content); }
    static void writeTo(const QString &path, const QByteArray &content);
    static QByteArray contentOf(const QString &path);
    QByteArray content() const { return contentOf(m_file); }
    QStringList rows() const { return m_model->stringList(); }
    QStringList texts() const;
    void notify(const char *slot, const QString &path);
    /// Makes \a change, and waits until all watchers of the file or folder at \a path have noticed
    /// it.
    static void changeAndSettle(const QString &path, const std::function<void()> &change);
    QStringList takeEvents() { return std::exchange(m_events, {}); }
    QStringList log() { return m_log->take(); }
    QString elsewhere(const QString &name) const { return m_home->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_home;
    QString m_file;
    std::unique_ptr<MessageLog> m_log;
    std::unique_ptr<QuickMessagesModel> m_model;
    QStringList m_events;
};

void TestQuickMessagesModel::init()
{
    m_home = std::make_unique<QTemporaryDir>();
    QVERIFY(m_home->isValid());
    qputenv("HOME", QFile::encodeName(m_home->path()));
    m_file = elsewhere(u".local/share/system/privileged/Phone/quick-replies.json"_s);
    m_log.reset();
    m_log = std::make_unique<MessageLog>();
}

void TestQuickMessagesModel::cleanup()
{
    m_model.reset();
    m_events.clear();
    QVERIFY(QDir::setCurrent(QDir::rootPath()));
    m_home.reset();
    QCOMPARE(log().join(u'\n'), QString());
}

/// Makes a model whose signals are recorded.
void TestQuickMessagesModel::make()
{
    m_model.reset();
    m_model = std::make_unique<QuickMessagesModel>();
    m_events.clear();
    QuickMessagesModel *model = m_model.get();
    connect(model, &QuickMessagesModel::filePathChanged, this,
            [this] { m_events.append(u"filePath "_s + m_model->filePath()); });
    connect(model, &QuickMessagesModel::defaultValueChanged, this,
            [this] { m_events.append(u"defaultValue "_s + m_model->defaultValue().join(u',')); });
    connect(model, &QuickMessagesModel::activeChanged, this,
            [this] { m_events.append(m_model->active() ? u"active"_s : u"inactive"_s); });
    connect(model, &QuickMessagesModel::hasErrorChanged, this,
            [this] { m_events.append(m_model->hasError() ? u"error"_s : u"no error"_s); });
    connect(model, &QuickMessagesModel::countChanged, this,
            [this] { m_events.append(u"count "_s + QString::number(m_model->count())); });
    connect(model, &QAbstractItemModel::modelReset, this, [this] { m_events.append(u"reset"_s); });
    connect(model, &QAbstractItemModel::rowsInserted, this,
            [this] { m_events.append(u"inserted"_s); });
    connect(model, &QAbstractItemModel::rowsRemoved, this,
            [this] { m_events.append(u"removed"_s); });
    connect(model, &QAbstractItemModel::dataChanged, this,
            [this] { m_events.append(u"changed"_s); });
}

void TestQuickMessagesModel::writeTo(const QString &path, const QByteArray &content)
{
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), qint64(content.size()));
}

QByteArray TestQuickMessagesModel::contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot be read");
}

QStringList TestQuickMessagesModel::texts() const
{
    QStringList texts;
    for (int row = 0; row < m_model->count(); ++row)
        texts.append(m_model->data(m_model->index(row), Qt::DisplayRole).toString());
    return texts;
}

void TestQuickMessagesModel::notify(const char *slot, const QString &path)
{
    QVERIFY(
        QMetaObject::invokeMethod(m_model.get(), slot, Qt::DirectConnection, Q_ARG(QString, path)));
}

void TestQuickMessagesModel::changeAndSettle(const QString &path,
                                             const std::function<void()> &change)
{
    QFileSystemWatcher watcher;
    bool seen = false;
    connect(&watcher, &QFileSystemWatcher::fileChanged, &watcher, [&seen] { seen = true; });
    connect(&watcher, &QFileSystemWatcher::directoryChanged, &watcher, [&seen] { seen = true; });
    QVERIFY(watcher.addPath(path));
    change();
    // All watchers are notified in the same round of the event loop, or in the next one.
    QTRY_VERIFY_WITH_TIMEOUT(seen, patience);
    QCoreApplication::processEvents();
}

void TestQuickMessagesModel::declaresWhatQmlUses()
{
    const QMetaObject &type = QuickMessagesModel::staticMetaObject;
    QCOMPARE(type.superClass(), &QStringListModel::staticMetaObject);
    QCOMPARE(type.enumeratorCount(), type.enumeratorOffset());
    QCOMPARE(type.classInfoCount(), type.classInfoOffset());
    QStringList properties;
    for (int i = type.propertyOffset(); i < type.propertyCount(); ++i) {
        const QMetaProperty property = type.property(i);
        QVERIFY(property.isReadable() && !property.isResettable() && !property.isConstant());
        properties.append(QString::fromLatin1(property.typeName()) + u' '
                          + QString::fromLatin1(property.name()) + u' '
                          + (property.isWritable() ? u"writable "_s : u"read-only "_s)
                          + QString::fromLatin1(property.notifySignal().methodSignature()));
    }
    QCOMPARE(properties,
             QStringList({u"QString filePath writable filePathChanged()"_s,
                          u"QStringList defaultValue writable defaultValueChanged()"_s,
                          u"int count read-only countChanged()"_s,
                          u"bool active writable activeChanged()"_s,
                          u"bool hasError read-only hasErrorChanged()"_s}));

    const QStringList access{u"private"_s, u"protected"_s, u"public"_s};
    const QStringList kinds{u"method"_s, u"signal"_s, u"slot"_s, u"constructor"_s};
    QStringList methods;
    for (int i = type.methodOffset(); i < type.methodCount(); ++i) {
        const QMetaMethod method = type.method(i);
        methods.append(access.at(method.access()) + u' ' + kinds.at(method.methodType()) + u' '
                       + QString::fromLatin1(method.typeName()) + u' '
                       + QString::fromLatin1(method.methodSignature()) + u' '
                       + QString::fromLatin1(method.parameterNames().join(',')));
    }
    QCOMPARE(methods,
             QStringList({u"public signal void filePathChanged() "_s,
                          u"public signal void defaultValueChanged() "_s,
                          u"public signal void activeChanged() "_s,
                          u"public signal void hasErrorChanged() "_s,
                          u"public signal void countChanged() "_s,
                          u"private slot void directoryChanged(QString) path"_s,
                          u"private slot void fileChanged(QString) path"_s,
                          u"public method void save() "_s, u"public method void reset() "_s,
                          u"public method void append(QString) string"_s,
                          u"public method void remove(int) index"_s}));
}

void TestQuickMessagesModel::startsWithTheDefaults()
{
    make();
    QCOMPARE(m_model->filePath(), m_file);
    QCOMPARE(m_model->defaultValue(), ids);
    QCOMPARE(rows(), ids);
    QCOMPARE(m_model->count(), 3);
    QCOMPARE(static_cast<QAbstractItemModel &>(*m_model).columnCount(), 1);
    QVERIFY(m_model->active());
    QVERIFY(!m_model->hasError());
    QVERIFY(QFileInfo(m_file).dir().exists());
    QVERIFY(!QFile::exists(m_file));
    QVERIFY(m_model->children().isEmpty());
    QVERIFY(!m_model->parent());

    QObject parent;
    auto *const child = new QuickMessagesModel(&parent);
    QCOMPARE(child->parent(), &parent);
}

void TestQuickMessagesModel::startsWithItsFile()
{
    write(R"(["One", "Two"])");
    make();
    QCOMPARE(rows(), QStringList({u"One"_s, u"Two"_s}));
    QVERIFY(!m_model->hasError());
    QCOMPARE(content(), QByteArray(R"(["One", "Two"])"));
}

void TestQuickMessagesModel::takesItsHomeFromTheEnvironment()
{
    const QString home = elsewhere(u"\u00e9 home"_s);
    QVERIFY(QDir().mkpath(home));
    qputenv("HOME", QFile::encodeName(home));
    make();
    QCOMPARE(m_model->filePath(),
             home + u"/.local/share/system/privileged/Phone/quick-replies.json"_s);
    QVERIFY(QFileInfo(m_model->filePath()).dir().exists());
}

void TestQuickMessagesModel::translatesTheDefaults()
{
    write(R"(["Busy", "parley-me-will_call_back", "Parley-me-will_call_back",
              " parley-me-will_call_back", "parley-ap-name"])");
    make();
    QTranslator translator;
    QVERIFY(translator.load(u"parley_eng_en"_s, QStringLiteral(PARLEY_CATALOGUES)));
    QCoreApplication::installTranslator(&translator);
    QCOMPARE(texts(),
             QStringList({u"Busy"_s, u"I will call back"_s, u"Parley-me-will_call_back"_s,
                          u" parley-me-will_call_back"_s, u"parley-ap-name"_s}));
    m_model->reset();
    QCOMPARE(texts(),
             QStringList(
                 {u"Please call later"_s, u"I can't talk at the moment"_s, u"I will call back"_s}));
    const QModelIndex first = m_model->index(0);
    QCOMPARE(m_model->data(first, Qt::EditRole), QVariant(u"Please call later"_s));
    for (const int role : {int(Qt::DecorationRole), int(Qt::ToolTipRole), int(Qt::UserRole), -1})
        QVERIFY(!m_model->data(first, role).isValid());
    QVERIFY(!m_model->data({}, Qt::DisplayRole).isValid());
    QVERIFY(!m_model->data(m_model->index(3), Qt::DisplayRole).isValid());

    // The model keeps the ids.
    QCOMPARE(rows(), ids);
    m_model->save();
    QCOMPARE(content(),
             QByteArray("[\n    \"parley-me-please_call_later\",\n"
                        "    \"parley-me-cant_talk_at_the_moment\",\n"
                        "    \"parley-me-will_call_back\"\n]\n"));
}

void TestQuickMessagesModel::showsIdsWithoutACatalogue()
{
    make();
    QCOMPARE(texts(), ids);
}

void TestQuickMessagesModel::readsAnyContent_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QStringList>("messages");

    QTest::newRow("empty file") << QByteArray() << ids;
    QTest::newRow("white space") << QByteArray(" \n\t ") << ids;
    QTest::newRow("empty array") << QByteArray("[]") << ids;
    QTest::newRow("object") << QByteArray(R"({"a": "b"})") << ids;
    QTest::newRow("object with a list") << QByteArray(R"({"a": ["b"]})") << ids;
    QTest::newRow("bare string") << QByteArray(R"("Busy")") << ids;
    QTest::newRow("bare number") << QByteArray("1") << ids;
    QTest::newRow("null") << QByteArray("null") << ids;
    QTest::newRow("no JSON") << QByteArray("Busy") << ids;
    QTest::newRow("cut off") << QByteArray(R"(["Busy", "La)") << ids;
    QTest::newRow("not closed") << QByteArray(R"(["Busy")") << ids;
    QTest::newRow("comma at the end") << QByteArray(R"(["Busy",])") << ids;
    QTest::newRow("something behind") << QByteArray(R"(["Busy"] x)") << ids;
    QTest::newRow("two documents") << QByteArray(R"(["Busy"]["Later"])") << ids;
    QTest::newRow("blank strings")
        << QByteArray(R"(["", " ", "\t\n\r", "\u00a0\u2003\u3000"])") << ids;
    QTest::newRow("numbers") << QByteArray("[1, 2.5, -3e99, 0]") << ids;
    QTest::newRow("no strings") << QByteArray(R"([null, true, false, {}, [], ["Busy"]])") << ids;
    QTest::newRow("one string") << QByteArray(R"(["Busy"])") << QStringList(u"Busy"_s);
    QTest::newRow("among others") << QByteArray(R"([1, "  ", " Busy "])")
                                  << QStringList(u" Busy "_s);
    QTest::newRow("in order, twice")
        << QByteArray(R"(["b", null, "a", "", "b"])") << QStringList({u"b"_s, u"a"_s, u"b"_s});
    QTest::newRow("untrimmed") << QByteArray(R"(["\t a b \n"])") << QStringList(u"\t a b \n"_s);
    QTest::newRow("ids") << QByteArray(R"(["parley-me-will_call_back"])") << QStringList(ids.at(2));
    QTest::newRow("escapes") << QByteArray(R"(["\"\\\/\b\f\n\r\t\u00e9"])")
                             << QStringList(u"\"\\/\b\f\n\r\t\u00e9"_s);
    QTest::newRow("line ends") << QByteArray("[\r\n\"a\",\r\n\"b\"\r\n]\r\n")
                               << QStringList({u"a"_s, u"b"_s});
    QTest::newRow("deep") << QByteArray("[\"a\", ") + QByteArray(900, '[') + QByteArray(900, ']')
            + "]" << QStringList(u"a"_s);
    QTest::newRow("too deep") << QByteArray("[\"a\", ") + QByteArray(1000000, '[')
            + QByteArray(1000000, ']')
            + "]" << ids;
    QTest::newRow("too deep and not closed") << QByteArray(1000000, '[') << ids;
}

void TestQuickMessagesModel::readsAnyContent()
{
    QFETCH(QByteArray, json);
    QFETCH(QStringList, messages);

    write(json);
    make();
    QCOMPARE(rows(), messages);
    QVERIFY(!m_model->hasError());
    // The defaults also replace other messages.
    m_model->setStringList({u"before"_s});
    takeEvents();
    notify("fileChanged", m_file);
    QCOMPARE(rows(), messages);
    QCOMPARE(takeEvents(),
             QStringList({u"count "_s + QString::number(messages.size()), u"reset"_s}));
    QCOMPARE(content(), json);
}

void TestQuickMessagesModel::readsAnyEncoding_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QStringList>("messages");

    QTest::newRow("UTF-8") << QByteArray("[\"\xe4\xb8\xad \xf0\x9f\x98\x80\"]")
                           << QStringList(u"\u4e2d \U0001f600"_s);
    QTest::newRow("byte-order mark")
        << QByteArray("\xef\xbb\xbf[\"Busy\"]") << QStringList(u"Busy"_s);
    QTest::newRow("UTF-16") << QByteArray("\xff\xfe[\0\"\0a\0\"\0]\0", 12) << ids;
    QTest::newRow("Latin-1") << QByteArray("[\"\xe9\"]") << ids;
    QTest::newRow("cut off") << QByteArray("[\"\xe4\xb8\"]") << ids;
    QTest::newRow("overlong") << QByteArray("[\"\xc0\xaf\"]") << ids;
    QTest::newRow("surrogate") << QByteArray("[\"\xed\xa0\x80\"]") << ids;
    QTest::newRow("escaped pair") << QByteArray(R"(["\ud83d\ude00"])")
                                  << QStringList(u"\U0001f600"_s);
    QTest::newRow("escaped half") << QByteArray(R"(["a\ud83d"])")
                                  << QStringList(QString(u'a') + QChar(0xd83d));
    QTest::newRow("escaped NUL") << QByteArray(R"(["a\u0000b"])")
                                 << QStringList(QString(u'a') + QChar(0) + u'b');
    QTest::newRow("only NULs") << QByteArray(100, '\0') << ids;
    QTest::newRow("NUL behind") << QByteArray("[\"a\"]\0", 6) << ids;
}

void TestQuickMessagesModel::readsAnyEncoding()
{
    readsAnyContent();
    if (QTest::currentTestFailed())
        return;
    // The saved file can be read.
    m_model->save();
    const int count = m_model->count();
    make();
    QCOMPARE(m_model->count(), count);
}

void TestQuickMessagesModel::leavesEqualContentAlone()
{
    write(R"(["One", " Two"])");
    make();
    const QPersistentModelIndex second(m_model->index(1));
    write("[ \"One\",\n\n 3, \" Two\", \"\" ]");
    notify("fileChanged", m_file);
    m_model->setActive(false);
    m_model->setActive(true);
    QCOMPARE(takeEvents(), QStringList({u"inactive"_s, u"active"_s}));
    QVERIFY(second.isValid());
    QCOMPARE(rows(), QStringList({u"One"_s, u" Two"_s}));
}

void TestQuickMessagesModel::isResetForOtherContent()
{
    write(R"(["One", "Two"])");
    make();
    write(R"(["Two", "One"])");
    notify("fileChanged", m_file);
    QCOMPARE(takeEvents(), QStringList({u"count 2"_s, u"reset"_s}));
    QCOMPARE(rows(), QStringList({u"Two"_s, u"One"_s}));

    // The default value is set again even if it is shown.
    write("[]");
    notify("fileChanged", m_file);
    notify("fileChanged", m_file);
    QCOMPARE(takeEvents(), QStringList({u"count 3"_s, u"reset"_s, u"count 3"_s, u"reset"_s}));
    QVERIFY(QFile::remove(m_file));
    notify("fileChanged", m_file);
    QCOMPARE(takeEvents(), QStringList({u"count 3"_s, u"reset"_s}));
}

void TestQuickMessagesModel::savesThis_data()
{
    QTest::addColumn<QStringList>("messages");
    QTest::addColumn<QByteArray>("json");

    QTest::newRow("nothing") << QStringList() << QByteArray("[\n]\n");
    QTest::newRow("one") << QStringList(u"Busy"_s) << QByteArray("[\n    \"Busy\"\n]\n");
    QTest::newRow("two") << QStringList({u"b"_s, u"a"_s})
                         << QByteArray("[\n    \"b\",\n    \"a\"\n]\n");
    QTest::newRow("the same twice")
        << QStringList({u"a"_s, u"a"_s}) << QByteArray("[\n    \"a\",\n    \"a\"\n]\n");
    QTest::newRow("trimmed") << QStringList({u"  a b\t"_s, u"\n\u00a0c\u3000"_s})
                             << QByteArray("[\n    \"a b\",\n    \"c\"\n]\n");
    QTest::newRow("blanks alone") << QStringList({QString(), u" "_s, u"\t\u2003\n"_s})
                                  << QByteArray("[\n]\n");
    QTest::newRow("blanks among others")
        << QStringList({u" "_s, u"a"_s, QString()}) << QByteArray("[\n    \"a\"\n]\n");
    QTest::newRow("an id") << QStringList(ids.at(0))
                           << QByteArray("[\n    \"parley-me-please_call_later\"\n]\n");
    QTest::newRow("escapes") << QStringList(u"\"\\/\u0001\nb"_s)
                             << QByteArray("[\n    \"\\\"\\\\/\\u0001\\nb\"\n]\n");
    QTest::newRow("not ASCII") << QStringList(u"\u4e2d \U0001f600"_s)
                               << QByteArray("[\n    \"\xe4\xb8\xad \xf0\x9f\x98\x80\"\n]\n");
    QTest::newRow("NUL") << QStringList(QString(u'a') + QChar(0) + u'b')
                         << QByteArray("[\n    \"a\\u0000b\"\n]\n");
}

void TestQuickMessagesModel::savesThis()
{
    QFETCH(QStringList, messages);
    QFETCH(QByteArray, json);

    make();
    m_model->setStringList(messages);
    takeEvents();
    m_model->save();
    QCOMPARE(content(), json);
    QCOMPARE(rows(), messages);
    QCOMPARE(takeEvents(), QStringList());
}

void TestQuickMessagesModel::savesWhatItHasTrimmed()
{
    write(R"([1, "  ", " Busy "])");
    make();
    QCOMPARE(rows(), QStringList(u" Busy "_s));
    m_model->append({});
    m_model->save();
    QCOMPARE(content(), QByteArray("[\n    \"Busy\"\n]\n"));
    QCOMPARE(rows(), QStringList({u" Busy "_s, QString()}));
}

void TestQuickMessagesModel::savesOverALongerFile()
{
    write('"' + QByteArray(100000, 'x') + '"');
    make();
    m_model->setStringList({u"a"_s});
    m_model->save();
    QCOMPARE(content(), QByteArray("[\n    \"a\"\n]\n"));
}

void TestQuickMessagesModel::savesToANewFile()
{
    make();
    changeAndSettle(QFileInfo(m_file).path(), [this] { m_model->save(); });
    QCOMPARE(takeEvents(), QStringList());
    // The user's file mode creation mask applies.
    const mode_t mask = umask(0);
    umask(mask);
    struct stat status = {};
    QCOMPARE(stat(QFile::encodeName(m_file).constData(), &status), 0);
    QCOMPARE(status.st_mode & 0777U, 0666U & ~mask);
    // The file is known, so a change of the directory does not matter.
    m_model->setStringList({u"unsaved"_s});
    notify("directoryChanged", QFileInfo(m_file).path());
    QCOMPARE(rows(), QStringList(u"unsaved"_s));
    // The file is watched as well.
    write(R"(["theirs"])");
    QTRY_COMPARE_WITH_TIMEOUT(rows(), QStringList(u"theirs"_s), patience);
}

void TestQuickMessagesModel::savesInPlace()
{
    write("[]");
    QVERIFY(QFile::setPermissions(m_file, QFile::ReadOwner | QFile::WriteOwner));
    struct stat before = {};
    QCOMPARE(stat(QFile::encodeName(m_file).constData(), &before), 0);
    make();
    m_model->save();
    struct stat after = {};
    QCOMPARE(stat(QFile::encodeName(m_file).constData(), &after), 0);
    QCOMPARE(after.st_ino, before.st_ino);
    QCOMPARE(after.st_mode, before.st_mode);
    QCOMPARE(QDir(QFileInfo(m_file).path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList(u"quick-replies.json"_s));
}

void TestQuickMessagesModel::savesNothingByItself()
{
    const QByteArray json = R"([" One "])";
    write(json);
    make();
    m_model->append(u"Two"_s);
    m_model->remove(0);
    m_model->reset();
    m_model->setDefaultValue({u"Three"_s});
    m_model->setActive(false);
    m_model.reset();
    QCOMPARE(content(), json);
}

void TestQuickMessagesModel::addsRows()
{
    make();
    m_model->append(u"Busy"_s);
    QCOMPARE(takeEvents(), QStringList({u"count 4"_s, u"inserted"_s, u"changed"_s}));
    m_model->append({});
    m_model->append(u""_s);
    QCOMPARE(takeEvents(), QStringList({u"count 5"_s, u"inserted"_s, u"count 6"_s, u"inserted"_s}));
    m_model->append(u"  "_s);
    QCOMPARE(rows(), ids + QStringList({u"Busy"_s, QString(), QString(), u"  "_s}));
    QVERIFY(!QFile::exists(m_file));
}

void TestQuickMessagesModel::removesRows()
{
    write(R"(["a", "b", "c"])");
    make();
    m_model->remove(1);
    QCOMPARE(rows(), QStringList({u"a"_s, u"c"_s}));
    QCOMPARE(takeEvents(), QStringList({u"count 2"_s, u"removed"_s}));
    for (const int index :
         {2, -1, 1000, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
        m_model->remove(index);
    QCOMPARE(takeEvents(), QStringList());
    m_model->remove(0);
    m_model->remove(0);
    m_model->remove(0);
    QCOMPARE(takeEvents(), QStringList({u"count 1"_s, u"removed"_s, u"count 0"_s, u"removed"_s}));
    QCOMPARE(rows(), QStringList());
}

void TestQuickMessagesModel::resetsToTheDefaultValue()
{
    write(R"(["a"])");
    make();
    m_model->reset();
    QCOMPARE(rows(), ids);
    m_model->reset();
    QCOMPARE(takeEvents(), QStringList({u"count 3"_s, u"reset"_s, u"count 3"_s, u"reset"_s}));
    QCOMPARE(content(), QByteArray(R"(["a"])"));

    m_model->setDefaultValue({});
    m_model->setActive(false);
    takeEvents();
    m_model->reset();
    QCOMPARE(takeEvents(), QStringList({u"count 0"_s, u"reset"_s}));
}

void TestQuickMessagesModel::isEditedAsAnyModel()
{
    make();
    QVERIFY(m_model->setData(m_model->index(0), u"Busy"_s, Qt::EditRole));
    QCOMPARE(takeEvents(), QStringList(u"changed"_s));
    QVERIFY(m_model->insertRows(1, 2));
    QVERIFY(m_model->removeRows(3, 2));
    QCOMPARE(takeEvents(), QStringList({u"count 5"_s, u"inserted"_s, u"count 3"_s, u"removed"_s}));
    QCOMPARE(rows(), QStringList({u"Busy"_s, QString(), QString()}));
}

void TestQuickMessagesModel::doesNothingWhileInactive()
{
    const QByteArray json = R"(["a"])";
    write(json);
    make();
    m_model->setActive(false);
    m_model->setActive(false);
    QCOMPARE(takeEvents(), QStringList(u"inactive"_s));
    QCOMPARE(rows(), QStringList(u"a"_s));

    m_model->append(u"b"_s);
    m_model->save();
    QCOMPARE(log(),
             QStringList(u"warning: void QuickMessagesModel::save() "
                         "inactive, can't save file \""_s
                         + m_file + u'"'));
    QCOMPARE(content(), json);
    QVERIFY(!m_model->hasError());

    notify("fileChanged", m_file);
    QCOMPARE(log(),
             QStringList(u"debug: void QuickMessagesModel::load() "
                         "inactive, can't load file \""_s
                         + m_file + u'"'));
    const QString other = elsewhere(u"other.json"_s);
    writeTo(other, R"(["c"])");
    takeEvents();
    m_model->setFilePath(other);
    QCOMPARE(takeEvents(), QStringList(u"filePath "_s + other));
    QCOMPARE(log(),
             QStringList(u"debug: void QuickMessagesModel::load() "
                         "inactive, can't load file \""_s
                         + other + u'"'));
    QCOMPARE(rows(), QStringList({u"a"_s, u"b"_s}));
}

void TestQuickMessagesModel::readsWhenItBecomesActive()
{
    write(R"(["a"])");
    make();
    m_model->setActive(false);
    m_model->append(u"unsaved"_s);
    takeEvents();
    m_model->setActive(true);
    QCOMPARE(takeEvents(), QStringList({u"active"_s, u"count 1"_s, u"reset"_s}));
    QCOMPARE(rows(), QStringList(u"a"_s));
    m_model->setActive(true);
    QCOMPARE(takeEvents(), QStringList());
}

void TestQuickMessagesModel::changesItsFile()
{
    const QString other = elsewhere(u"other.json"_s);
    writeTo(other, R"(["b"])");
    write(R"(["a"])");
    make();
    m_model->setFilePath(m_file);
    QCOMPARE(takeEvents(), QStringList());
    m_model->setFilePath(other);
    QCOMPARE(takeEvents(), QStringList({u"filePath "_s + other, u"count 1"_s, u"reset"_s}));
    QCOMPARE(rows(), QStringList(u"b"_s));
    m_model->append(u"c"_s);
    m_model->save();
    QCOMPARE(contentOf(other), QByteArray("[\n    \"b\",\n    \"c\"\n]\n"));
    QCOMPARE(content(), QByteArray(R"(["a"])"));
    m_model->setFilePath(elsewhere(u"missing.json"_s));
    QCOMPARE(rows(), ids);
    QVERIFY(!m_model->hasError());
}

void TestQuickMessagesModel::makesTheDirectory()
{
    make();
    const QString deep = elsewhere(u"x/y/\u00e9 z/file.json"_s);
    m_model->setFilePath(deep);
    QVERIFY(QFileInfo(deep).dir().exists());
    QVERIFY(!m_model->hasError());
    m_model->save();
    QVERIFY(QFile::exists(deep));

    // A relative path is below the home.
    m_model->setFilePath(u"below/home.json"_s);
    QVERIFY(QFileInfo(elsewhere(u"below"_s)).isDir());
}

void TestQuickMessagesModel::staysSilentAboutADirectoryThatCannotBeMade()
{
    make();
    writeTo(elsewhere(u"file"_s), {});
    const QString impossible = elsewhere(u"file/directory/messages.json"_s);
    m_model->setFilePath(impossible);
    QCOMPARE(takeEvents(), QStringList({u"filePath "_s + impossible, u"count 3"_s, u"reset"_s}));
    QVERIFY(m_model->hasError());
    QCOMPARE(rows(), ids);

    m_model->save();
    QCOMPARE(log(),
             QStringList(u"warning: void QuickMessagesModel::save() can't open file \""_s
                         + impossible + u'"'));
    QCOMPARE(takeEvents(), QStringList());

    // Nothing is watched, so the model does not notice the file.
    QVERIFY(QFile::remove(elsewhere(u"file"_s)));
    changeAndSettle(m_home->path(), [this, &impossible] { writeTo(impossible, R"(["a"])"); });
    QCOMPARE(takeEvents(), QStringList());
    m_model->setFilePath({});
    m_model->setFilePath(impossible);
    QCOMPARE(takeEvents(),
             QStringList({u"filePath "_s, u"filePath "_s + impossible, u"no error"_s, u"count 1"_s,
                          u"reset"_s}));
}

void TestQuickMessagesModel::hasNoFile()
{
    write(R"(["a"])");
    make();
    m_model->setFilePath({});
    QCOMPARE(takeEvents(), QStringList(u"filePath "_s));
    m_model->setFilePath(u""_s);
    QCOMPARE(takeEvents(), QStringList());
    QCOMPARE(rows(), QStringList(u"a"_s));
    changeAndSettle(m_file, [this] { write(R"(["b"])"); });
    changeAndSettle(QFileInfo(m_file).path(), [this] { QFile::remove(m_file); });
    QCOMPARE(rows(), QStringList(u"a"_s));

    m_model->save();
    QCOMPARE(log(),
             QStringList(u"warning: void QuickMessagesModel::save() "
                         "filePath is not set, can't save"_s));
    m_model->setActive(false);
    m_model->save();
    QCOMPARE(log(),
             QStringList(u"warning: void QuickMessagesModel::save() "
                         "inactive, can't save file \"\""_s));
    m_model->setActive(true);
    QCOMPARE(log(),
             QStringList(u"debug: void QuickMessagesModel::load() "
                         "file path is empty, can't load file"_s));
    QVERIFY(!m_model->hasError());

    // Without a file there is no default value to show.
    m_model->setStringList({});
    takeEvents();
    m_model->setDefaultValue({u"b"_s});
    QCOMPARE(takeEvents(), QStringList(u"defaultValue b"_s));
    QCOMPARE(rows(), QStringList());
}

void TestQuickMessagesModel::takesUnusualPaths_data()
{
    QTest::addColumn<QString>("path");

    QTest::newRow("up and down") << u"HOME/folder/../folder/./messages.json"_s;
    QTest::newRow("two slashes") << u"HOME//folder//messages.json"_s;
    QTest::newRow("link to a folder") << u"HOME/link/messages.json"_s;
    QTest::newRow("link to a file") << u"HOME/folder/link.json"_s;
    QTest::newRow("not ASCII") << u"HOME/folder/\u4e2d %1 #?\n.json"_s;
    QTest::newRow("hidden") << u"HOME/folder/.json"_s;
    QTest::newRow("relative") << u"folder/messages.json"_s;
    QTest::newRow("a name alone") << u"messages.json"_s;
}

void TestQuickMessagesModel::takesUnusualPaths()
{
    QFETCH(QString, path);
    path.replace(u"HOME"_s, m_home->path());

    QVERIFY(QDir(m_home->path()).mkdir(u"folder"_s));
    QVERIFY(QFile::link(u"folder"_s, elsewhere(u"link"_s)));
    QVERIFY(QFile::link(u"messages.json"_s, elsewhere(u"folder/link.json"_s)));
    QVERIFY(QDir::setCurrent(m_home->path()));
    make();
    m_model->setFilePath(path);
    QCOMPARE(m_model->filePath(), path);
    QCOMPARE(rows(), ids);
    m_model->append(u"mine"_s);
    m_model->save();
    QVERIFY(contentOf(path).contains("mine"));
    writeTo(path, R"(["in place"])");
    QTRY_COMPARE_WITH_TIMEOUT(rows(), QStringList(u"in place"_s), patience);
    // Wait for the deletion: the target of a link stays, so a replacement alone would not be
    // noticed.
    changeAndSettle(QFileInfo(path).path(), [&path] { QFile::remove(path); });
    writeTo(path, R"(["anew"])");
    QTRY_COMPARE_WITH_TIMEOUT(rows(), QStringList(u"anew"_s), patience);
}

void TestQuickMessagesModel::changesItsDefaultValue()
{
    make();
    m_model->setDefaultValue(ids);
    QCOMPARE(takeEvents(), QStringList());
    m_model->setStringList({});
    takeEvents();
    m_model->setDefaultValue({u"a"_s, u" "_s});
    QCOMPARE(takeEvents(), QStringList({u"defaultValue a, "_s, u"count 2"_s, u"reset"_s}));
    QCOMPARE(rows(), QStringList({u"a"_s, u" "_s}));
    m_model->setDefaultValue({});
    QCOMPARE(takeEvents(), QStringList(u"defaultValue "_s));
    QCOMPARE(rows(), QStringList({u"a"_s, u" "_s}));

    m_model->setStringList({});
    m_model->setActive(false);
    takeEvents();
    m_model->setDefaultValue({u"b"_s});
    QCOMPARE(takeEvents(), QStringList(u"defaultValue b"_s));
    QCOMPARE(rows(), QStringList());
    m_model->setActive(true);
    QCOMPARE(rows(), QStringList(u"b"_s));
    // Texts of the caller are shown unchanged.
    QCOMPARE(texts(), QStringList(u"b"_s));
}

void TestQuickMessagesModel::keepsItsRowsForAnotherDefaultValue()
{
    make();
    m_model->setDefaultValue({u"a"_s});
    QCOMPARE(takeEvents(), QStringList(u"defaultValue a"_s));
    QCOMPARE(rows(), ids);
    write(R"(["b"])");
    QTRY_COMPARE_WITH_TIMEOUT(rows(), QStringList(u"b"_s), patience);
    write("[]");
    QTRY_COMPARE_WITH_TIMEOUT(rows(), QStringList(u"a"_s), patience);
}

void TestQuickMessagesModel::reportsErrorsOfReading()
{
    write(R"(["a"])");
    make();
    const QString folder = elsewhere(u"folder"_s);
    QVERIFY(QDir().mkpath(folder));
    m_model->setFilePath(folder);
    QVERIFY(m_model->hasError());
    QCOMPARE(takeEvents(),
             QStringList({u"filePath "_s + folder, u"error"_s, u"count 3"_s, u"reset"_s}));
    QCOMPARE(rows(), ids);
    m_model->setActive(false);
    m_model->setActive(true);
    QCOMPARE(takeEvents(), QStringList({u"inactive"_s, u"active"_s, u"count 3"_s, u"reset"_s}));

    // A missing file does not clear the error. A file that can be opened does.
    m_model->setFilePath(elsewhere(u"missing.json"_s));
    QVERIFY(m_model->hasError());
    takeEvents();
    m_model->setFilePath(m_file);
    QVERIFY(!m_model->hasError());
    QCOMPARE(takeEvents(),
             QStringList({u"filePath "_s + m_file, u"no error"_s, u"count 1"_s, u"reset"_s}));
}

void TestQuickMessagesModel::reportsErrorsOfWriting()
{
    make();
    const QString path = elsewhere(u"gone/messages.json"_s);
    m_model->setFilePath(path);
    QVERIFY(QDir(elsewhere(u"gone"_s)).removeRecursively());
    takeEvents();
    m_model->save();
    m_model->save();
    const QString line =
        u"warning: void QuickMessagesModel::save() can't open file \""_s + path + u'"';
    QCOMPARE(log(), QStringList({line, line}));
    QCOMPARE(takeEvents(), QStringList(u"error"_s));
    QVERIFY(m_model->hasError());
}

void TestQuickMessagesModel::clearsAnErrorWhenWriting()
{
    make();
    const QString folder = elsewhere(u"folder"_s);
    QVERIFY(QDir().mkpath(folder));
    m_model->setFilePath(folder);
    m_model->setFilePath(elsewhere(u"new.json"_s));
    QVERIFY(m_model->hasError());
    takeEvents();
    m_model->save();
    QVERIFY(!m_model->hasError());
    QCOMPARE(takeEvents(), QStringList(u"no error"_s));
}

void TestQuickMessagesModel::reportsAFileThatItMayNotRead()
{
    write(R"(["a"])");
    QVERIFY(QFile::setPermissions(m_home->path(), QFile::Permissions(0x7755)));
    QVERIFY(QFile::setPermissions(m_file, QFile::WriteOwner));
    {
        const WithoutRights rights;
        make();
        QVERIFY(m_model->hasError());
        QCOMPARE(rows(), ids);
        QVERIFY(QFileInfo(m_file).exists());
    }
    takeEvents();
    QVERIFY(QFile::setPermissions(m_file, QFile::Permissions(0x4444)));
    const WithoutRights rights;
    QTRY_COMPARE_WITH_TIMEOUT(rows(), QStringList(u"a"_s), patience);
    QCOMPARE(takeEvents(), QStringList({u"no error"_s, u"count 1"_s, u"reset"_s}));
    QCOMPARE(rows(), QStringList(u"a"_s));
}

void TestQuickMessagesModel::keepsItsRowsBesideAFileThatItMayNotRead()
{
    write(R"(["a"])");
    QVERIFY(QFile::setPermissions(m_home->path(), QFile::Permissions(0x7755)));
    QVERIFY(QFile::setPermissions(m_file, QFile::WriteOwner));
    const QString folder = QFileInfo(m_file).path();
    QVERIFY(QFile::setPermissions(folder, QFile::Permissions(0x7777)));
    {
        const WithoutRights rights;
        make();
        m_model->append(u"not saved"_s);
        takeEvents();
        changeAndSettle(folder, [&] { writeTo(folder + u"/unrelated"_s, "x"); });
        QCOMPARE(takeEvents(), QStringList());
    }
    QCOMPARE(rows(), ids + QStringList(u"not saved"_s));
    QVERIFY(m_model->hasError());

    QVERIFY(QFile::setPermissions(m_file, QFile::Permissions(0x6644)));
    QTRY_COMPARE_WITH_TIMEOUT(rows(), QStringList(u"a"_s), patience);
    write(R"(["b"])"); // The file is watched from then on.
    QTRY_COMPARE_WITH_TIMEOUT(rows(), QStringList(u"b"_s), patience);
}

void TestQuickMessagesModel::takesRegularFilesAlone_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("FIFO") << u"FIFO"_s;
    QTest::newRow("FIFO that somebody reads") << u"read FIFO"_s;
    QTest::newRow("endless device") << u"/dev/zero"_s;
    QTest::newRow("device that takes everything") << u"/dev/null"_s;
    QTest::newRow("full device") << u"/dev/full"_s;
}

/// A file on which a process would block, or which never ends, counts as one that cannot be opened.
void TestQuickMessagesModel::takesRegularFilesAlone()
{
    QFETCH(QString, kind);

    QVERIFY(QDir().mkpath(QFileInfo(m_file).path()));
    if (kind.startsWith(u'/'))
        QVERIFY(QFile::link(kind, m_file));
    else
        QCOMPARE(mkfifo(qUtf8Printable(m_file), 0600), 0);
    const int reader =
        kind == u"read FIFO"_s ? ::open(qUtf8Printable(m_file), O_RDONLY | O_NONBLOCK) : -1;
    make();
    QVERIFY(m_model->hasError());
    QCOMPARE(rows(), ids);
    m_model->append(u"not saved"_s);
    m_model->save();
    QCOMPARE(log(),
             QStringList(u"warning: void QuickMessagesModel::save() can't open file \""_s + m_file
                         + u'"'));
    QCOMPARE(rows(), ids + QStringList(u"not saved"_s));
    if (reader >= 0)
        ::close(reader);

    changeAndSettle(QFileInfo(m_file).path(), [this] { QFile::remove(m_file); });
    takeEvents();
    write(R"(["a"])");
    QTRY_COMPARE_WITH_TIMEOUT(rows(), QStringList(u"a"_s), patience);
    QVERIFY(takeEvents().contains(u"no error"_s));
}

void TestQuickMessagesModel::takesFilesUpToALimit_data()
{
    QTest::addColumn<qint64>("size");
    QTest::addColumn<bool>("isTaken");

    constexpr qint64 limit = 16 << 20;
    QTest::newRow("16 MiB") << limit << true;
    QTest::newRow("a byte more") << limit + 1 << false;
    QTest::newRow("1 TB of nothing") << (qint64{1} << 40) << false;
}

void TestQuickMessagesModel::takesFilesUpToALimit()
{
    QFETCH(qint64, size);
    QFETCH(bool, isTaken);

    write(R"(["a"])");
    QFile file(m_file);
    if (size > 1 << 30)
        QVERIFY(file.resize(size)); // The file is sparse.
    else
        write(R"(["a")" + QByteArray(static_cast<int>(size) - 5, ' ') + ']');
    QCOMPARE(QFileInfo(m_file).size(), size);
    make();
    QCOMPARE(m_model->hasError(), !isTaken);
    QCOMPARE(rows(), isTaken ? QStringList(u"a"_s) : ids);
    // The model may write the file, which makes it smaller again.
    m_model->append(u"b"_s);
    m_model->save();
    QVERIFY(!m_model->hasError());
    QVERIFY(content().endsWith("\n    \"b\"\n]\n"));
    write(R"(["c"])");
    QTRY_COMPARE_WITH_TIMEOUT(rows(), QStringList(u"c"_s), patience);
}

void TestQuickMessagesModel::reportsAFileThatItMayNotWrite()
{
    const QByteArray json = R"(["a"])";
    write(json);
    QVERIFY(QFile::setPermissions(m_home->path(), QFile::Permissions(0x7755)));
    QVERIFY(QFile::setPermissions(m_file, QFile::Permissions(0x4444)));
    const QString other = QFileInfo(m_file).path() + u"/new.json"_s;
    QVERIFY(QFile::setPermissions(QFileInfo(m_file).path(), QFile::Permissions(0x5555)));
    {
        const WithoutRights rights;
        make();
        QCOMPARE(rows(), QStringList(u"a"_s));
        QVERIFY(!m_model->hasError());
        m_model->save();
        QCOMPARE(takeEvents(), QStringList(u"error"_s));
        m_model->setFilePath(other);
        m_model->save();
        m_model->setFilePath(u"/proc/nowhere/messages.json"_s);
        m_model->save();
    }
    const QString line = u"warning: void QuickMessagesModel::save() can't open file \""_s;
    QCOMPARE(log(),
             QStringList({line + m_file + u'"', line + other + u'"',
                          line + u"/proc/nowhere/messages.json\""_s}));
    QCOMPARE(content(), json);
    QVERIFY(!QFile::exists(other));
    QVERIFY(QFile::setPermissions(QFileInfo(m_file).path(), QFile::Permissions(0x7755)));
}

void TestQuickMessagesModel::worksInADirectoryThatItMayNotList()
{
    write(R"(["a"])");
    QVERIFY(QFile::setPermissions(m_file, QFile::Permissions(0x6666)));
    QVERIFY(QFile::setPermissions(m_home->path(), QFile::Permissions(0x7755)));
    QVERIFY(QFile::setPermissions(QFileInfo(m_file).path(), QFile::Permissions(0x1111)));
    {
        const WithoutRights rights;
        make();
        QCOMPARE(rows(), QStringList(u"a"_s));
        m_model->append(u"b"_s);
        m_model->save();
        QVERIFY(!m_model->hasError());
    }
    QVERIFY(QFile::setPermissions(QFileInfo(m_file).path(), QFile::Permissions(0x7755)));
    QCOMPARE(content(), QByteArray("[\n    \"a\",\n    \"b\"\n]\n"));
    write(R"(["theirs"])");
    QTRY_COMPARE_WITH_TIMEOUT(rows(), QStringList(u"theirs"_s), patience);
}

void TestQuickMessagesModel::writesAFileThatItMayNotRead()
{
    write(R"(["a"])");
    QVERIFY(QFile::setPermissions(m_home->path(), QFile::Permissions(0x7755)));
    QVERIFY(QFile::setPermissions(m_file, QFile::Permissions(0x2222)));
    {
        const WithoutRights rights;
        make();
        QVERIFY(m_model->hasError());
        m_model->setStringList({u"b"_s});
        takeEvents();
        m_model->save();
        QCOMPARE(takeEvents(), QStringList(u"no error"_s));
    }
    QVERIFY(QFile::setPermissions(m_file, QFile::ReadOwner | QFile::WriteOwner));
    QCOMPARE(content(), QByteArray("[\n    \"b\"\n]\n"));
}

void TestQuickMessagesModel::takesAFolderForAFile()
{
    QVERIFY(QDir().mkpath(m_file));
    make();
    QVERIFY(m_model->hasError());
    QCOMPARE(rows(), ids);
    m_model->save();
    QCOMPARE(log(),
             QStringList(u"warning: void QuickMessagesModel::save() can't open file \""_s + m_file
                         + u'"'));
    QVERIFY(QFileInfo(m_file).isDir());
    // The folder is watched as a folder.
    writeTo(m_file + u"/file"_s, {});
    const QString unexpected =
        u"warning: undexpected directoryChanged signal for path: \""_s + m_file + u'"';
    QStringList lines;
    QTRY_VERIFY_WITH_TIMEOUT(!(lines += log()).isEmpty(), patience);
    changeAndSettle(QFileInfo(m_file).path(), [this] { QDir(m_file).removeRecursively(); });
    write(R"(["a"])");
    QTRY_COMPARE_WITH_TIMEOUT(rows(), QStringList(u"a"_s), patience);
    lines += log();
    QVERIFY(lines.removeAll(unexpected) > 0);
    QCOMPARE(lines, QStringList());
}

void TestQuickMessagesModel::takesADanglingLinkForNoFile()
{
    QVERIFY(QDir().mkpath(QFileInfo(m_file).path()));
    QVERIFY(QFile::link(u"target.json"_s, m_file));
    make();
    QVERIFY(!m_model->hasError());
    QCOMPARE(rows(), ids);
    writeTo(QFileInfo(m_file).path() + u"/target.json"_s, R"(["a"])");
    QTRY_COMPARE_WITH_TIMEOUT(rows(), QStringList(u"a"_s), patience);
    // A file in a missing folder cannot be written.
    QVERIFY(QFile::remove(m_file));
    QVERIFY(QFile::link(u"nowhere/target.json"_s, m_file));
    m_model->save();
    QCOMPARE(log(),
             QStringList(u"warning: void QuickMessagesModel::save() can't open file \""_s + m_file
                         + u'"'));
}

void TestQuickMessagesModel::outlivesAHugeFile_data()
{
    QTest::addColumn<QByteArray>("element");
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("rows");

    constexpr int size = 15 << 20;
    QTest::newRow("strings") << QByteArray("\"Message of forty characters, all the same\"")
                             << size / 44 << size / 44;
    QTest::newRow("one string") << QByteArray("\"" + QByteArray(size, 'x') + '"') << 1 << 1;
    QTest::newRow("numbers") << QByteArray("1234567890") << size / 11 << 3;
    QTest::newRow("nothing") << QByteArray(size, ' ') << 1 << 3;
}

void TestQuickMessagesModel::outlivesAHugeFile()
{
    QFETCH(QByteArray, element);
    QFETCH(int, count);
    QFETCH(int, rows);

    make();
    write('[' + QByteArray(element + ',').repeated(count - 1) + element + ']');
    QTRY_COMPARE_WITH_TIMEOUT(m_model->count(), rows, patience);
    write(R"(["small"])");
    QTRY_COMPARE_WITH_TIMEOUT(this->rows(), QStringList(u"small"_s), patience);
}

void TestQuickMessagesModel::followsAWriteInPlace()
{
    write(R"(["a"])");
    make();
    for (int i = 0; i < 10; ++i) {
        const QString message = QString::number(i);
        write("[\"" + message.toUtf8() + "\"]");
        QTRY_COMPARE_WITH_TIMEOUT(rows(), QStringList(message), patience);
    }
    QFile file(m_file);
    QVERIFY(file.resize(0));
    QTRY_COMPARE_WITH_TIMEOUT(rows(), ids, patience);
}

void TestQuickMessagesModel::followsAReplacement()
{
    write(R"(["a"])");
    make();
    for (int i = 0; i < 10; ++i) {
        const QString message = QString::number(i);
        const QString other = elsewhere(u"other"_s);
        writeTo(other, "[\"" + message.toUtf8() + "\"]");
        QCOMPARE(std::rename(qUtf8Printable(other), qUtf8Printable(m_file)), 0);
        QTRY_COMPARE_WITH_TIMEOUT(rows(), QStringList(message), patience);
    }
    write(R"(["in place again"])");
    QTRY_COMPARE_WITH_TIMEOUT(rows(), QStringList(u"in place again"_s), patience);
}

void TestQuickMessagesModel::followsADeletion()
{
    write(R"(["a"])");
    make();
    for (int i = 0; i < 10; ++i) {
        changeAndSettle(QFileInfo(m_file).path(), [this] { QFile::remove(m_file); });
        // The changes of the file and of the directory come in any order.
        QVERIFY(rows() == ids || rows() == QStringList(i == 0 ? u"a"_s : QString::number(i - 1)));
        const QString message = QString::number(i);
        write("[\"" + message.toUtf8() + "\"]");
        QTRY_COMPARE_WITH_TIMEOUT(rows(), QStringList(message), patience);
    }
    // A removed directory is not created again.
    changeAndSettle(QFileInfo(m_file).path(),
                    [this] { QDir(elsewhere(u".local"_s)).removeRecursively(); });
    QVERIFY(!m_model->hasError());
    m_model->save();
    QVERIFY(m_model->hasError());
    QCOMPARE(log(),
             QStringList(u"warning: void QuickMessagesModel::save() can't open file \""_s + m_file
                         + u'"'));
}

void TestQuickMessagesModel::followsAFileThatComesLate()
{
    make();
    write(R"(["a"])");
    QTRY_COMPARE_WITH_TIMEOUT(rows(), QStringList(u"a"_s), patience);
    write(R"(["b"])");
    QTRY_COMPARE_WITH_TIMEOUT(rows(), QStringList(u"b"_s), patience);
    // Other files in the folder do not matter.
    const QString folder = QFileInfo(m_file).path();
    takeEvents();
    changeAndSettle(folder, [&folder] { writeTo(folder + u"/other"_s, "[\"c\"]"); });
    changeAndSettle(folder, [&folder] { QFile::remove(folder + u"/other"_s); });
    QCOMPARE(takeEvents(), QStringList());
}

void TestQuickMessagesModel::followsALink()
{
    const QString target = elsewhere(u"target.json"_s);
    writeTo(target, R"(["a"])");
    QVERIFY(QDir().mkpath(QFileInfo(m_file).path()));
    QVERIFY(QFile::link(target, m_file));
    make();
    QCOMPARE(rows(), QStringList(u"a"_s));
    writeTo(target, R"(["b"])");
    QTRY_COMPARE_WITH_TIMEOUT(rows(), QStringList(u"b"_s), patience);
    m_model->append(u"c"_s);
    m_model->save();
    QVERIFY(QFileInfo(m_file).isSymLink());
    QCOMPARE(contentOf(target), QByteArray("[\n    \"b\",\n    \"c\"\n]\n"));
}

void TestQuickMessagesModel::followsWhileInactive()
{
    write(R"(["a"])");
    make();
    m_model->setActive(false);
    takeEvents();
    write(R"(["b"])");
    const QString line =
        u"debug: void QuickMessagesModel::load() inactive, can't load file \""_s + m_file + u'"';
    QStringList lines;
    QTRY_VERIFY_WITH_TIMEOUT(!(lines += log()).isEmpty(), patience);
    QCOMPARE(takeEvents(), QStringList());
    QCOMPARE(rows(), QStringList(u"a"_s));
    m_model->setActive(true);
    QCOMPARE(rows(), QStringList(u"b"_s));
    lines += log();
    lines.removeAll(line);
    QCOMPARE(lines, QStringList());
}

void TestQuickMessagesModel::followsAFileChosenWhileInactive()
{
    const QString other = elsewhere(u"other.json"_s);
    writeTo(other, R"(["a"])");
    make();
    m_model->setActive(false);
    m_model->setFilePath(other);
    const QString line =
        u"debug: void QuickMessagesModel::load() inactive, can't load file \""_s + other + u'"';
    QCOMPARE(log(), QStringList(line));
    changeAndSettle(other, [&other] { writeTo(other, R"(["b"])"); });
    QStringList lines = log();
    QVERIFY(lines.removeAll(line) > 0);
    QCOMPARE(lines, QStringList());
    QCOMPARE(rows(), ids);
}

void TestQuickMessagesModel::followsALateFileWhileInactive()
{
    make();
    m_model->setActive(false);
    const QString folder = QFileInfo(m_file).path();
    changeAndSettle(folder, [this] { write(R"(["a"])"); });
    const QString line =
        u"debug: void QuickMessagesModel::load() inactive, can't load file \""_s + m_file + u'"';
    QStringList lines = log();
    QVERIFY(lines.removeAll(line) > 0);
    QCOMPARE(lines, QStringList());
    // The file is known and watched from then on.
    changeAndSettle(folder, [&folder] { writeTo(folder + u"/other"_s, {}); });
    QCOMPARE(log(), QStringList());
    changeAndSettle(m_file, [this] { write(R"(["b"])"); });
    lines = log();
    QVERIFY(lines.removeAll(line) > 0);
    QCOMPARE(lines, QStringList());
    QCOMPARE(rows(), ids);
}

void TestQuickMessagesModel::stopsFollowingAnotherFile()
{
    write(R"(["a"])");
    make();
    const QString other = elsewhere(u"folder/other.json"_s);
    writeTo(other, R"(["b"])");
    m_model->setFilePath(other);
    takeEvents();
    changeAndSettle(m_file, [this] { write(R"(["c"])"); });
    changeAndSettle(QFileInfo(m_file).path(), [this] { QFile::remove(m_file); });
    QCOMPARE(takeEvents(), QStringList());
    writeTo(other, R"(["d"])");
    QTRY_COMPARE_WITH_TIMEOUT(rows(), QStringList(u"d"_s), patience);
}

void TestQuickMessagesModel::doesNotFollowItself_data()
{
    QTest::addColumn<bool>("exists");

    QTest::newRow("a file that is there") << true;
    QTest::newRow("a new file") << false;
}

void TestQuickMessagesModel::doesNotFollowItself()
{
    QFETCH(bool, exists);

    if (exists)
        write(R"([" Busy "])");
    make();
    for (int i = 0; i < 20; ++i) {
        // The file has the trimmed text, so that reading it would show.
        m_model->setStringList({u" Busy "_s, QString::number(i)});
        takeEvents();
        changeAndSettle(exists || i > 0 ? m_file : QFileInfo(m_file).path(),
                        [this] { m_model->save(); });
        QCOMPARE(takeEvents(), QStringList());
        QCOMPARE(rows().first(), u" Busy "_s);
    }
}

void TestQuickMessagesModel::followsAfterItsOwnWrite()
{
    make();
    for (int i = 0; i < 20; ++i) {
        m_model->setStringList({u" mine "_s});
        m_model->save();
        const QString message = QString::number(i);
        write("[\"" + message.toUtf8() + "\"]");
        QTRY_COMPARE_WITH_TIMEOUT(rows(), QStringList(message), patience);
    }
}

void TestQuickMessagesModel::endsWithTheLastContent_data()
{
    QTest::addColumn<QString>("way");

    for (const QString &way :
         {u"in-place"_s, u"by-rename"_s, u"by-deletion"_s, u"truncated-first"_s}) {
        for (int run = 1; run <= 5; ++run)
            QTest::newRow(qUtf8Printable(u"%1 %2"_s.arg(way).arg(run))) << way;
    }
}

void TestQuickMessagesModel::endsWithTheLastContent()
{
    QFETCH(QString, way);

    write(R"(["a"])");
    make();
    QProcess writer;
    writer.start(QStringLiteral(PARLEY_WRITER), {m_file, way, u"1000"_s});
    QTRY_COMPARE_WITH_TIMEOUT(writer.state(), QProcess::NotRunning, patience);
    QCOMPARE(writer.exitStatus(), QProcess::NormalExit);
    QCOMPARE(writer.exitCode(), 0);
    QStringList expected;
    for (int i = 0; i < 10; ++i)
        expected += u"version 999"_s;
    QTRY_COMPARE_WITH_TIMEOUT(rows(), expected, patience);
    QVERIFY(!m_model->hasError());
    // The model still follows the file, and still does not follow its own writes.
    m_model->setStringList({u" mine "_s});
    takeEvents();
    changeAndSettle(m_file, [this] { m_model->save(); });
    QCOMPARE(takeEvents(), QStringList());
    write(R"(["theirs"])");
    QTRY_COMPARE_WITH_TIMEOUT(rows(), QStringList(u"theirs"_s), patience);
}

void TestQuickMessagesModel::ignoresOtherPaths_data()
{
    QTest::addColumn<QByteArray>("slot");
    QTest::addColumn<QString>("path");

    QTest::newRow("another directory") << QByteArray("directoryChanged") << u"/tmp"_s;
    QTest::newRow("the file") << QByteArray("directoryChanged") << u"FILE"_s;
    QTest::newRow("no directory") << QByteArray("directoryChanged") << QString();
    QTest::newRow("a slash more") << QByteArray("directoryChanged") << u"FOLDER/"_s;
    QTest::newRow("another file") << QByteArray("fileChanged") << u"FILE.new"_s;
    QTest::newRow("the directory") << QByteArray("fileChanged") << u"FOLDER"_s;
    QTest::newRow("no file") << QByteArray("fileChanged") << QString();
    QTest::newRow("a quote") << QByteArray("fileChanged") << u"a\"b"_s;
}

void TestQuickMessagesModel::ignoresOtherPaths()
{
    QFETCH(QByteArray, slot);
    QFETCH(QString, path);

    write(R"(["a"])");
    make();
    m_model->setStringList({u"b"_s});
    takeEvents();
    path.replace(u"FILE"_s, m_file).replace(u"FOLDER"_s, QFileInfo(m_file).path());
    notify(slot.constData(), path);
    QCOMPARE(log(),
             QStringList(u"warning: undexpected "_s + QString::fromLatin1(slot)
                         + u" signal for path: \""_s + QString(path).replace(u"\""_s, u"\\\""_s)
                         + u'"'));
    QCOMPARE(takeEvents(), QStringList());
}

void TestQuickMessagesModel::takesTheStepsOfADirectory()
{
    const QString folder = QFileInfo(m_file).path();
    make();
    m_model->setStringList({u"unsaved"_s});
    takeEvents();

    // There is no file, as before.
    notify("directoryChanged", folder);
    QCOMPARE(takeEvents(), QStringList());
    // A file has appeared.
    write(R"(["a"])");
    notify("directoryChanged", folder);
    QCOMPARE(takeEvents(), QStringList({u"count 1"_s, u"reset"_s}));
    // The file was known.
    m_model->setStringList({u"unsaved"_s});
    takeEvents();
    notify("directoryChanged", folder);
    QCOMPARE(takeEvents(), QStringList());
    // The file is gone, and the rows stay.
    QVERIFY(QFile::remove(m_file));
    notify("directoryChanged", folder);
    QCOMPARE(takeEvents(), QStringList());
    QCOMPARE(rows(), QStringList(u"unsaved"_s));
    // Another file has come while the model is inactive.
    m_model->setActive(false);
    takeEvents();
    write(R"(["b"])");
    notify("directoryChanged", folder);
    QCOMPARE(takeEvents(), QStringList());
    QCOMPARE(log(),
             QStringList(u"debug: void QuickMessagesModel::load() inactive, can't load file \""_s
                         + m_file + u'"'));
    m_model->setActive(true);
    QCOMPARE(rows(), QStringList(u"b"_s));
    takeEvents();
    // The queued notifications of these changes find nothing new.
    changeAndSettle(m_file, [this] { write(R"(["b"])"); });
    QCOMPARE(rows(), QStringList(u"b"_s));
}

void TestQuickMessagesModel::takesTheStepsOfAFile()
{
    const QString folder = QFileInfo(m_file).path();
    write(R"(["a"])");
    make();
    write(R"(["b", "c"])");
    notify("fileChanged", m_file);
    QCOMPARE(takeEvents(), QStringList({u"count 2"_s, u"reset"_s}));
    // After the file is known to be gone, another one is read.
    QVERIFY(QFile::remove(m_file));
    notify("fileChanged", m_file);
    QCOMPARE(takeEvents(), QStringList({u"count 3"_s, u"reset"_s}));
    write(R"(["d"])");
    notify("directoryChanged", folder);
    QCOMPARE(takeEvents(), QStringList({u"count 1"_s, u"reset"_s}));
    QCOMPARE(rows(), QStringList(u"d"_s));
}

void TestQuickMessagesModel::survivesItsHandlers_data()
{
    QTest::addColumn<QString>("signal");
    QTest::addColumn<QString>("reaction");

    for (const char *signal : {"filePath", "error", "no error", "count", "reset", "active",
                               "inactive", "defaultValue", "inserted", "removed"}) {
        for (const char *reaction : {"other file", "no file", "reset", "remove", "append",
                                     "deactivate", "reactivate", "save", "default value"})
            QTest::addRow("%s: %s", signal, reaction)
                << QString::fromLatin1(signal) << QString::fromLatin1(reaction);
    }
}

void TestQuickMessagesModel::survivesItsHandlers()
{
    QFETCH(QString, signal);
    QFETCH(QString, reaction);

    const QString other = elsewhere(u"other.json"_s);
    const QString folder = elsewhere(u"folder"_s);
    QVERIFY(QDir().mkpath(folder));
    writeTo(other, R"(["other"])");
    write(R"(["a", "b"])");
    make();
    QuickMessagesModel &model = *m_model;
    const QMap<QString, std::function<void()>> reactions{
        {u"other file"_s, [&] { model.setFilePath(other); }},
        {u"no file"_s, [&] { model.setFilePath({}); }},
        {u"reset"_s, [&] { model.reset(); }},
        {u"remove"_s, [&] { model.remove(0); }},
        {u"append"_s, [&] { model.append(u"appended"_s); }},
        {u"deactivate"_s, [&] { model.setActive(false); }},
        {u"reactivate"_s,
         [&] {
             model.setActive(!model.active());
             model.setActive(!model.active());
         }},
        {u"save"_s, [&] { model.save(); }},
        {u"default value"_s, [&] { model.setDefaultValue({u"default"_s}); }},
    };
    // React only once, because the reaction emits signals, too.
    bool reacted = false;
    const auto react = [&](bool applies) {
        if (!applies || reacted)
            return;
        reacted = true;
        reactions.value(reaction)();
    };
    connect(&model, &QuickMessagesModel::filePathChanged, this,
            [&] { react(signal == u"filePath"_s); });
    connect(&model, &QuickMessagesModel::hasErrorChanged, this,
            [&] { react(signal == (model.hasError() ? u"error"_s : u"no error"_s)); });
    connect(&model, &QuickMessagesModel::countChanged, this, [&] { react(signal == u"count"_s); });
    connect(&model, &QAbstractItemModel::modelReset, this, [&] { react(signal == u"reset"_s); });
    connect(&model, &QuickMessagesModel::activeChanged, this,
            [&] { react(signal == (model.active() ? u"active"_s : u"inactive"_s)); });
    connect(&model, &QuickMessagesModel::defaultValueChanged, this,
            [&] { react(signal == u"defaultValue"_s); });
    connect(&model, &QAbstractItemModel::rowsInserted, this,
            [&] { react(signal == u"inserted"_s); });
    connect(&model, &QAbstractItemModel::rowsRemoved, this, [&] { react(signal == u"removed"_s); });

    model.setFilePath(folder); // This emits filePath, error, count and reset.
    model.setFilePath(m_file); // This emits no error.
    model.append(u"c"_s); // This emits inserted.
    model.remove(0); // This emits removed.
    model.setDefaultValue({u"x"_s});
    model.setActive(false);
    model.setActive(true);
    QVERIFY(reacted);
    log(); // The log has what is refused without a file.

    // In the end the file in use is shown and followed, as without the reaction.
    disconnect(&model, nullptr, this, nullptr);
    m_model->setActive(true);
    m_model->setFilePath(m_file);
    log();
    write(R"(["last"])");
    QTRY_COMPARE_WITH_TIMEOUT(rows(), QStringList(u"last"_s), patience);
    QCOMPARE(model.count(), 1);
    QVERIFY(!model.hasError());
    model.setStringList({u" mine "_s});
    changeAndSettle(m_file, [&model] { model.save(); });
    QCOMPARE(rows(), QStringList(u" mine "_s));
    QCOMPARE(content(), QByteArray("[\n    \"mine\"\n]\n"));
    QVERIFY(contentOf(other).contains("other") || reaction == u"other file"_s);
}

void TestQuickMessagesModel::readsWhatAHandlerSaves()
{
    write(R"(["a"])");
    const QString folder = elsewhere(u"folder"_s);
    QVERIFY(QDir().mkpath(folder));
    make();
    m_model->setFilePath(folder);
    QVERIFY(m_model->hasError());
    connect(m_model.get(), &QuickMessagesModel::hasErrorChanged, m_model.get(), [this] {
        m_model->setStringList({u"saved by the handler"_s});
        m_model->save();
    });
    m_model->setFilePath(m_file);
    QCOMPARE(rows(), QStringList(u"saved by the handler"_s));
    QCOMPARE(content(), QByteArray("[\n    \"saved by the handler\"\n]\n"));
}

void TestQuickMessagesModel::savesWhatAHandlerAdds()
{
    const QString folder = elsewhere(u"folder"_s);
    QVERIFY(QDir().mkpath(folder));
    make();
    m_model->setFilePath(folder);
    m_model->setFilePath(elsewhere(u"new.json"_s));
    QVERIFY(m_model->hasError());
    m_model->setStringList({u"a"_s});
    connect(m_model.get(), &QuickMessagesModel::hasErrorChanged, m_model.get(), [this] {
        m_model->append(u"added by the handler"_s);
        m_model->save();
    });
    m_model->save();
    QCOMPARE(contentOf(elsewhere(u"new.json"_s)),
             QByteArray("[\n    \"a\",\n    \"added by the handler\"\n]\n"));
}

void TestQuickMessagesModel::leavesAFileWholeThatAHandlerLeaves()
{
    const QString folder = elsewhere(u"folder"_s);
    QVERIFY(QDir().mkpath(folder));
    write(R"(["other"])");
    make();
    m_model->setFilePath(folder);
    const QString path = elsewhere(u"new.json"_s);
    m_model->setFilePath(path);
    QVERIFY(m_model->hasError());
    m_model->setStringList({u"a"_s});
    connect(m_model.get(), &QuickMessagesModel::hasErrorChanged, m_model.get(),
            [this] { m_model->setFilePath(m_file); });
    m_model->save();
    QCOMPARE(contentOf(path), QByteArray("[\n    \"a\"\n]\n"));
    QCOMPARE(content(), QByteArray(R"(["other"])"));
    QCOMPARE(rows(), QStringList(u"other"_s));
    write(R"(["theirs"])");
    QTRY_COMPARE_WITH_TIMEOUT(rows(), QStringList(u"theirs"_s), patience);
}

QTEST_GUILESS_MAIN(TestQuickMessagesModel)

#include "tst_quickmessagesmodel.moc"
