// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "panelundertest.h"

#include "literals.h"
#include "places.h"
#include "runningprogram.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QQuickWindow>
#include <QRegularExpression>
#include <QTest>

namespace {

constexpr int patience = 30000;

/// Qt logs this if a scroll bar is destroyed while it fades. It has no effect.
const QString scrollBarWentAway =
    u"warning: QUnifiedTimer::stopAnimationDriver: driver is not running"_s;

QQuickItem *findItem(QQuickItem *root, const QString &name)
{
    if (root->objectName() == name)
        return root;
    const QList<QQuickItem *> children = root->childItems();
    for (QQuickItem *child : children) {
        if (QQuickItem *found = findItem(child, name))
            return found;
    }
    return nullptr;
}

} // namespace

void PanelUnderTest::init()
{
    m_log.reset();
    m_log = std::make_unique<MessageLog>();
    m_folder = std::make_unique<QTemporaryDir>(m_tempPath + u"/tst_panel-XXXXXX"_s);
    QVERIFY(m_folder->isValid());
    QFile::setPermissions(m_folder->path(),
                          QFile::Permissions(0x7111)); // Another user calls as well.
    qputenv("TMPDIR", m_folder->path().toUtf8());
    qputenv("LC_ALL", "C.UTF-8"); // The texts of the handset's processes are checked.
    qunsetenv("LANGUAGE");
    m_lines.clear();
    m_commands.clear();
}

/// QML has logged no warning, and no process and no file is left.
void PanelUnderTest::cleanup()
{
    m_handset.reset();
    QCOMPARE(uiProcess(), 0);
    QFile::remove(m_folder->filePath(u"screens.qml"_s));
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList());
    QStringList log = m_log->take();
    log.removeAll(scrollBarWentAway);
    QCOMPARE(log.join(u'\n'), QString());
}

bool PanelUnderTest::writeScreens(const QByteArray &qml) const
{
    QFile file(m_folder->filePath(u"screens.qml"_s));
    return file.open(QIODevice::WriteOnly) && file.write(qml) == qml.size();
}

bool PanelUnderTest::startWith(const QByteArray &qml)
{
    return writeScreens(qml) && start(m_folder->filePath(u"screens.qml"_s));
}

bool PanelUnderTest::start(const QString &qmlFile)
{
    Handset::Options options;
    options.uiProgram = qEnvironmentVariable("PARLEY_UI");
    options.qmlFile = qmlFile;
    options.catalogueFolder = QStringLiteral(PARLEY_TRANSLATIONS);
    options.phoneFolder = Places::find().phone;
    options.hasPanel = true;
    m_handset = std::make_unique<Handset>(options);
    connect(&m_handset->transcript(), &Transcript::said, this,
            [this](const QString &line) { m_lines.append(line.trimmed()); });
    connect(&m_handset->transcript(), &Transcript::commandBegun, this,
            [this](const QString &line) { m_commands.append(line); });
    if (!m_handset->start())
        return false;
    const QRegularExpression settled(u"^The call UI is (on the bus after|not on the bus yet).*"_s);
    return QTest::qWaitFor(
        [&] {
            return panel()->window() && panel()->window()->isExposed()
                && m_lines.indexOf(settled) >= 0;
        },
        patience);
}

Panel *PanelUnderTest::panel() const
{
    return m_handset->panel();
}

QQuickItem *PanelUnderTest::item(const QString &name) const
{
    return findItem(panel()->window()->contentItem(), name);
}

bool PanelUnderTest::isShown(const QString &name) const
{
    const QQuickItem *found = item(name);
    return found && found->isVisible();
}

QString PanelUnderTest::textOf(const QString &name) const
{
    const QQuickItem *found = item(name);
    return found ? found->property("text").toString() : QString();
}

bool PanelUnderTest::setText(const QString &name, const QString &text) const
{
    QQuickItem *found = item(name);
    return found && found->setProperty("text", text);
}

bool PanelUnderTest::isLit(const QString &name) const
{
    const QQuickItem *found = item(name);
    return found && found->property("highlighted").toBool();
}

/// A remark is printed when the command before it has ended.
bool PanelUnderTest::runsToTheEnd(const QString &line)
{
    const auto remark = u"# after %1"_s.arg(m_lines.size());
    panel()->type(remark);
    return QTest::qWaitFor([&] { return m_lines.contains(remark); }, patience)
        && !m_commands.isEmpty() && m_commands.constLast() == line;
}

void PanelUnderTest::press(const QString &name)
{
    item(name)->forceActiveFocus();
    QTest::keyClick(panel()->window(), Qt::Key_Space);
}

void PanelUnderTest::click(const QString &name, const QString &line)
{
    QTRY_VERIFY2(isShown(name), qUtf8Printable(name));
    QTRY_VERIFY2(item(name)->isEnabled(), qUtf8Printable(name));
    const auto before = m_commands.size();
    press(name);
    QVERIFY2(runsToTheEnd(line), qUtf8Printable(m_commands.join(u'\n')));
    QCOMPARE(m_commands.size(), before + 1);
}

pid_t PanelUnderTest::uiProcess() const
{
    const QString program = QFileInfo(qEnvironmentVariable("PARLEY_UI")).canonicalFilePath();
    const QByteArray folder = "TMPDIR=" + m_folder->path().toUtf8();
    const QStringList entries = QDir(u"/proc"_s).entryList({u"[0-9]*"_s}, QDir::Dirs);
    for (const QString &entry : entries) {
        QFile environment(u"/proc/"_s + entry + u"/environ"_s);
        if (environment.open(QIODevice::ReadOnly)
            && environment.readAll().split('\0').contains(folder)
            && runsProgram(entry.toInt(), program))
            return entry.toInt();
    }
    return 0;
}

bool PanelUnderTest::prints(const QString &line)
{
    return QTest::qWaitFor([&] { return m_lines.contains(line); }, patience);
}
