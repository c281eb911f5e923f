// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "screentests.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QXmlStreamWriter>

#include <algorithm>
#include <cstdio>
#include <utility>

namespace {

void print(const QString &line)
{
    std::puts(qUtf8Printable(line));
    std::fflush(stdout);
}

QString inSeconds(double seconds)
{
    return QString::number(seconds, 'f', 1);
}

/// Returns the reason that the output of a script gives for its failure.
QString failureIn(const QString &output)
{
    const QStringList lines = output.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    const QLatin1String failed("  failed: ");
    const auto found = std::find_if(lines.crbegin(), lines.crend(), [failed](const QString &line) {
        return line.startsWith(failed);
    });
    if (found != lines.crend())
        return found->mid(failed.size());
    return lines.isEmpty() ? QStringLiteral("it says nothing") : lines.constLast().trimmed();
}

/// XML knows no other control characters.
QString forXml(QString text)
{
    const auto isForbidden = [](QChar character) {
        return character < QLatin1Char(' ') && character != QLatin1Char('\n')
            && character != QLatin1Char('\t');
    };
    std::replace_if(text.begin(), text.end(), isForbidden, QLatin1Char('?'));
    return text;
}

QProcessEnvironment withoutDisplay()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(QString::fromLatin1(name));
    return environment;
}

} // namespace

ScreenTests::ScreenTests(Options options, QObject *parent)
    : QObject(parent)
    , m_options(std::move(options))
{
    m_handset.setProcessEnvironment(withoutDisplay());
    m_handset.setProcessChannelMode(QProcess::MergedChannels);
    m_handset.setStandardInputFile(QProcess::nullDevice());
    connect(&m_handset, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            scriptEnded(m_handset.errorString());
    });
    connect(&m_handset, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
            [this](int code, QProcess::ExitStatus status) {
                m_output = QString::fromUtf8(m_handset.readAll());
                if (status == QProcess::CrashExit)
                    scriptEnded(QStringLiteral("the handset was ended by signal %1").arg(code));
                else
                    scriptEnded(code == 0 ? QString() : failureIn(m_output));
            });
}

void ScreenTests::start()
{
    const QDir folder(m_options.folder);
    const QStringList names =
        folder.entryList({QStringLiteral("*.script")}, QDir::Files, QDir::Name);
    for (const QString &name : names)
        m_scripts.append(folder.absoluteFilePath(name));
    if (m_scripts.isEmpty())
        print(QStringLiteral("There is no file named *.script in ") + m_options.folder);
    runNext();
}

void ScreenTests::runNext()
{
    if (m_scripts.isEmpty()) {
        Q_EMIT ended(sumUp());
        return;
    }
    m_running = m_scripts.takeFirst();
    m_output.clear();
    m_sinceStart.start();
    m_handset.start(
        QCoreApplication::applicationFilePath(),
        m_options.arguments
            + QStringList{QStringLiteral("--no-panel"), QStringLiteral("--script"), m_running});
}

void ScreenTests::scriptEnded(const QString &failure)
{
    m_results.append({QFileInfo(m_running).completeBaseName(),
                      static_cast<double>(m_sinceStart.elapsed()) / 1000, failure, m_output});
    const Result &result = m_results.constLast();
    const bool passed = result.failure.isEmpty();
    print(QStringLiteral("%1  %2 (%3 s)")
              .arg(passed ? QLatin1String("pass") : QLatin1String("FAIL"), result.name,
                   inSeconds(result.seconds)));
    if (!passed)
        print(QString(QLatin1String("    ") + result.output.trimmed())
                  .replace(QLatin1Char('\n'), QLatin1String("\n    ")));
    // Queued: the process is not to be started in its own signal.
    QMetaObject::invokeMethod(this, &ScreenTests::runNext, Qt::QueuedConnection);
}

bool ScreenTests::sumUp() const
{
    const auto failed =
        std::count_if(m_results.cbegin(), m_results.cend(),
                      [](const Result &result) { return !result.failure.isEmpty(); });
    print(QStringLiteral("%1 passed, %2 failed").arg(m_results.size() - failed).arg(failed));
    return writeReport() && !m_results.isEmpty() && failed == 0;
}

bool ScreenTests::writeReport() const
{
    if (m_options.reportFile.isEmpty())
        return true;
    const QString suite = QDir(m_options.folder).dirName();
    int failures = 0;
    double seconds = 0;
    for (const Result &result : m_results) {
        failures += result.failure.isEmpty() ? 0 : 1;
        seconds += result.seconds;
    }
    QSaveFile file(m_options.reportFile);
    if (!file.open(QIODevice::WriteOnly)) {
        print(m_options.reportFile + QLatin1String(": ") + file.errorString());
        return false;
    }
    QXmlStreamWriter xml(&file);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("testsuites"));
    xml.writeStartElement(QStringLiteral("testsuite"));
    xml.writeAttribute(QStringLiteral("name"), suite);
    xml.writeAttribute(QStringLiteral("tests"), QString::number(m_results.size()));
    xml.writeAttribute(QStringLiteral("failures"), QString::number(failures));
    xml.writeAttribute(QStringLiteral("time"), QString::number(seconds, 'f', 3));
    for (const Result &result : m_results) {
        xml.writeStartElement(QStringLiteral("testcase"));
        xml.writeAttribute(QStringLiteral("classname"), suite);
        xml.writeAttribute(QStringLiteral("name"), result.name);
        xml.writeAttribute(QStringLiteral("time"), QString::number(result.seconds, 'f', 3));
        if (!result.failure.isEmpty()) {
            xml.writeStartElement(QStringLiteral("failure"));
            xml.writeAttribute(QStringLiteral("message"), forXml(result.failure));
            xml.writeEndElement();
        }
        xml.writeTextElement(QStringLiteral("system-out"), forXml(result.output));
        xml.writeEndElement();
    }
    xml.writeEndDocument();
    if (file.commit())
        return true;
    print(m_options.reportFile + QLatin1String(": ") + file.errorString());
    return false;
}
