// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "arguments.h"

#include <QCommandLineParser>
#include <QCoreApplication>

Arguments Arguments::parse(const QStringList &words)
{
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Displays this help."));
    const QCommandLineOption version({QStringLiteral("v"), QStringLiteral("version")},
                                     QStringLiteral("Displays the version."));
    const QCommandLineOption translations(
        QStringLiteral("translations"),
        QStringLiteral("Reads the texts from a folder other than /usr/share/translations."),
        QStringLiteral("folder"), QStringLiteral("/usr/share/translations"));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Shows the due alarms of the time daemon as notifications until their user has answered\n"
        "them. Runs once in each session, on its session bus and the system bus."));
    parser.addOptions({help, version, translations});

    Arguments arguments;
    if (!parser.parse(words))
        arguments.error = parser.errorText();
    else if (!parser.positionalArguments().isEmpty())
        arguments.error = QStringLiteral("Unexpected argument '%1'.")
                              .arg(parser.positionalArguments().constFirst());
    else if (parser.isSet(help))
        arguments.text = parser.helpText();
    else if (parser.isSet(version))
        arguments.text = QStringLiteral("%1 %2\n").arg(QCoreApplication::applicationName(),
                                                       QCoreApplication::applicationVersion());
    arguments.translations = parser.value(translations);
    return arguments;
}
