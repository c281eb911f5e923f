// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "display.h"

#include "literals.h"

#include <QColor>
#include <QCoreApplication>
#include <QFile>
#include <QStandardPaths>
#include <QTest>
#include <QtEndian>

#include <algorithm>
#include <iterator>
#include <utility>

#include <unistd.h>

namespace {

constexpr int patience = 30000;
constexpr uint nobody = 65534;

QStringList notInstalled(const QStringList &programs)
{
    QStringList names;
    std::copy_if(
        programs.cbegin(), programs.cend(), std::back_inserter(names),
        [](const QString &name) { return QStandardPaths::findExecutable(name).isEmpty(); });
    return names;
}

/// Returns the environment of this process without its own displays and buses.
QProcessEnvironment bareEnvironment()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString &name :
         {u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"SWAYSOCK"_s, u"DBUS_SESSION_BUS_ADDRESS"_s})
        environment.remove(name);
    return environment;
}

/// Returns whether a window manager says how many desktops it has.
bool isManaged(const QProcessEnvironment &environment)
{
    QProcess xdotool;
    xdotool.setProcessEnvironment(environment);
    xdotool.start(u"xdotool"_s, {u"get_num_desktops"_s});
    return xdotool.waitForFinished(patience) && xdotool.exitStatus() == QProcess::NormalExit
        && xdotool.exitCode() == 0;
}

QByteArray contentOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

int OwnDisplay::count(const QColor &color) const
{
    const QImage shown = picture().convertToFormat(QImage::Format_RGB32);
    int found = 0;
    for (int y = 0; y < shown.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(shown.constScanLine(y));
        found += static_cast<int>(std::count_if(line, line + shown.width(), [&](QRgb pixel) {
            return (pixel | 0xff000000U) == color.rgb();
        }));
    }
    return found;
}

XDisplay::XDisplay(const QSize &size, QString windowManager)
    : m_size(size)
    , m_windowManagerName(std::move(windowManager))
{
}

QStringList XDisplay::missing() const
{
    QStringList programs{u"Xvfb"_s};
    if (!m_windowManagerName.isEmpty())
        programs << m_windowManagerName << u"xdotool"_s;
    return notInstalled(programs);
}

QString XDisplay::start()
{
    // With -r a key that is released late on a busy machine does not repeat.
    m_server.start(u"Xvfb"_s,
                   {u"-r"_s, u"-nocursor"_s, u"-displayfd"_s, u"1"_s, u"-nolisten"_s, u"tcp"_s,
                    u"-fbdir"_s, m_folder.path(), u"-screen"_s, u"0"_s,
                    u"%1x%2x24"_s.arg(m_size.width()).arg(m_size.height())});
    if (!m_server.waitForReadyRead(patience))
        return u"Xvfb: "_s + m_server.errorString();
    m_name = u':' + QString::fromLatin1(m_server.readLine().trimmed());
    if (m_windowManagerName.isEmpty())
        return {};
    QProcessEnvironment environment = bareEnvironment();
    environment.insert(u"DISPLAY"_s, m_name);
    m_windowManager.setProcessEnvironment(environment);
    // If it has ended at its start, another one may not.
    const auto isManagedAtLast = [&] {
        if (m_windowManager.state() == QProcess::NotRunning)
            m_windowManager.start(m_windowManagerName, QStringList());
        return isManaged(environment);
    };
    const bool isReady = QTest::qWaitFor(isManagedAtLast, patience);
    return isReady ? QString() : u"%1 does not manage the display"_s.arg(m_windowManagerName);
}

QMap<QString, QString> XDisplay::environment() const
{
    return {{u"DISPLAY"_s, m_name}, {u"QT_QPA_PLATFORM"_s, u"xcb"_s}};
}

/// The server keeps the picture in a file. Its header consists of numbers with 32 bits, and is
/// followed by a name and a colour map.
QImage XDisplay::picture() const
{
    const QByteArray file = contentOf(m_folder.filePath(u"Xvfb_screen0"_s));
    const auto number = [&file](qsizetype index) {
        return qFromBigEndian<qint32>(file.constData() + 4 * index);
    };
    if (file.size() < 100)
        return {};
    const int bytesPerLine = number(12);
    const qsizetype headerSize = number(0);
    const qsizetype colours = number(19);
    const auto *pixels =
        reinterpret_cast<const uchar *>(file.constData()) + headerSize + 12 * colours;
    return QImage(pixels, m_size.width(), m_size.height(), bytesPerLine, QImage::Format_RGB32)
        .copy();
}

WaylandDisplay::WaylandDisplay(const QSize &size)
    : m_size(size)
{
}

QStringList WaylandDisplay::missing() const
{
    QStringList names = notInstalled({u"sway"_s, u"grim"_s});
    const QStringList pluginFolders = QCoreApplication::libraryPaths();
    const bool hasPlugin =
        std::any_of(pluginFolders.cbegin(), pluginFolders.cend(), [](const QString &folder) {
            return QFile::exists(folder + u"/platforms/libqwayland-generic.so"_s);
        });
    if (!hasPlugin)
        names.append(u"Qt's plugin for Wayland"_s);
    return names;
}

/// The compositor refuses to run as root.
QString WaylandDisplay::start()
{
    QFile configuration(m_folder.filePath(u"config"_s));
    if (!configuration.open(QIODevice::WriteOnly))
        return configuration.errorString();
    configuration.write(u"xwayland disable\n"
                        "output * mode %1x%2\n"
                        "default_border none\n"
                        "default_floating_border none\n"
                        "for_window [title=\".*\"] floating enable\n"
                        "exec printf %s \"$WAYLAND_DISPLAY\" >%3/name && mv %3/name %3/display\n"_s
                            .arg(m_size.width())
                            .arg(m_size.height())
                            .arg(m_folder.path())
                            .toUtf8());
    configuration.close();

    QStringList command{u"sway"_s, u"--config"_s, configuration.fileName()};
    if (geteuid() == 0) {
        for (const QString &path : {m_folder.path(), configuration.fileName()}) {
            if (chown(QFile::encodeName(path).constData(), nobody, nobody) != 0)
                return u"%1 cannot be given away"_s.arg(path);
        }
        // Not every machine lets this user write to the folder of shared memory. The compositor
        // has capabilities, so no signal of a parent's death reaches it: it ends with its
        // namespace.
        const QString asNobody =
            u"bwrap --die-with-parent --unshare-pid --dev-bind / / --perms 1777 --tmpfs /dev/shm"
            " setpriv --reuid=%1 --regid=%1 --clear-groups"_s.arg(nobody);
        command = asNobody.split(u' ') + command;
    }
    QProcessEnvironment environment = bareEnvironment();
    environment.insert(u"HOME"_s, m_folder.path());
    environment.insert(u"XDG_RUNTIME_DIR"_s, m_folder.path());
    environment.insert(u"SWAYSOCK"_s, m_folder.filePath(u"control"_s));
    environment.insert(u"WLR_BACKENDS"_s, u"headless"_s);
    environment.insert(u"WLR_RENDERER"_s, u"pixman"_s);
    environment.insert(u"WLR_LIBINPUT_NO_DEVICES"_s, u"1"_s);
    m_compositor.setProcessEnvironment(environment);
    m_compositor.setProcessChannelMode(QProcess::MergedChannels);
    m_compositor.start(command.takeFirst(), command);
    const QString display = m_folder.filePath(u"display"_s);
    const bool isReady = QTest::qWaitFor(
        [&] { return QFile::exists(display) || m_compositor.state() == QProcess::NotRunning; },
        patience);
    if (!isReady || !QFile::exists(display))
        return u"sway: "_s + QString::fromUtf8(m_compositor.readAll());
    m_socket = m_folder.filePath(QString::fromUtf8(contentOf(display)));
    return {};
}

bool WaylandDisplay::showOtherWorkspace() const
{
    return QProcess::execute(u"swaymsg"_s,
                             {u"--quiet"_s, u"--socket"_s, m_folder.filePath(u"control"_s),
                              u"workspace"_s, u"other"_s})
        == 0;
}

QMap<QString, QString> WaylandDisplay::environment() const
{
    return {{u"WAYLAND_DISPLAY"_s, m_socket}, {u"QT_QPA_PLATFORM"_s, u"wayland"_s}};
}

QImage WaylandDisplay::picture() const
{
    QProcess grim;
    QProcessEnvironment environment = bareEnvironment();
    environment.insert(u"WAYLAND_DISPLAY"_s, m_socket);
    environment.insert(u"XDG_RUNTIME_DIR"_s, m_folder.path());
    grim.setProcessEnvironment(environment);
    grim.start(u"grim"_s, {u"-t"_s, u"ppm"_s, u"-"_s});
    return grim.waitForFinished(patience) ? QImage::fromData(grim.readAllStandardOutput(), "PPM")
                                          : QImage();
}
