// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "childprocess.h"
#include "display.h"
#include "literals.h"

#include <QColor>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace {

constexpr int patience = 30000;
const QSize phoneSize(360, 640);
const QColor screensColor(u"lime"_s);
const QString wayland = u"Wayland"_s;

/// They ask for the whole display, and for more of it than there is.
const QByteArray screens = R"(
import QtQuick 2.15
import com.nimbo.parley 1.0

Rectangle {
    color: "lime"
    height: 2000
    width: 1000

    ParleyUiAdaptor {
        onShow: function(args) { __window.showFullScreen(); }
        onDial: function(number) { __window.visibility = 4; }
        onToggleCall: __window.hide()
    }
}
)";

} // namespace

/// The window of the call UI on the display of a desk.
class TestPhone : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hasTheSizeOfThePhone_data();
    void hasTheSizeOfThePhone();

private:
    bool shows(int pixels) const;

    std::unique_ptr<OwnDisplay> m_display;
};

bool TestPhone::shows(int pixels) const
{
    return QTest::qWaitFor([&] { return m_display->count(screensColor) == pixels; }, patience);
}

void TestPhone::hasTheSizeOfThePhone_data()
{
    QTest::addColumn<QString>("display");

    QTest::newRow("Wayland") << wayland;
    QTest::newRow("X11") << u"X11"_s;
}

/// On Wayland, the compositor makes windows full screen that ask for it.
void TestPhone::hasTheSizeOfThePhone()
{
    QFETCH(QString, display);

    const QSize displaySize(900, 960);
    if (display == wayland)
        m_display = std::make_unique<WaylandDisplay>(displaySize);
    else
        m_display = std::make_unique<XDisplay>(displaySize);
    const QStringList missing = m_display->missing();
    if (!missing.isEmpty())
        QSKIP(qUtf8Printable(missing.join(u", "_s) + u" not installed"_s));
    const QString error = m_display->start();
    QVERIFY2(error.isEmpty(), qUtf8Printable(error));

    const QTemporaryDir folder;
    QFile file(folder.filePath(u"screens.qml"_s));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(screens) == screens.size());
    file.close();
    ChildProcess handset;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"TMPDIR"_s, folder.path());
    environment.insert(u"XDG_RUNTIME_DIR"_s, folder.path());
    environment.insert(u"QT_QUICK_BACKEND"_s, u"software"_s);
    for (const QString &name : {u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s})
        environment.remove(name);
    const QMap<QString, QString> variables = m_display->environment();
    for (auto it = variables.cbegin(); it != variables.cend(); ++it)
        environment.insert(it.key(), it.value());
    handset.setProcessEnvironment(environment);
    handset.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    handset.setStandardOutputFile(QProcess::nullDevice());
    handset.start(qEnvironmentVariable("PARLEY_HANDSET"),
                  {u"--no-panel"_s, u"--qml"_s, file.fileName()}, QIODevice::ReadWrite);

    const int size = phoneSize.width() * phoneSize.height();
    for (const char *request : {"show\n", "dial 1\n", "show\n"}) {
        handset.write(request);
        QVERIFY(shows(size));
        handset.write("toggle\n");
        QVERIFY(shows(0));
    }
    handset.write("show\n");
    QVERIFY(shows(size));
    handset.write("restart\n");
    QVERIFY(shows(0));
    handset.write("show\nrestart keep\n");
    QVERIFY(shows(size));
    handset.write("quit\n");
    QTRY_COMPARE_WITH_TIMEOUT(handset.state(), QProcess::NotRunning, patience);
    QCOMPARE(handset.exitCode(), 0);
}

QTEST_GUILESS_MAIN(TestPhone)

#include "tst_phone.moc"
