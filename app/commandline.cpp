// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "commandline.h"

namespace {

QString mainQmlFile(const QStringList &arguments)
{
    const auto option = arguments.indexOf(QLatin1String("-qml"));
    if (option < 0 || option + 1 == arguments.size())
        return QStringLiteral("/usr/share/parley-ui-nimbo/main.qml");
    return arguments.at(option + 1);
}

} // namespace

CommandLine::CommandLine(const QStringList &arguments)
    : devel(arguments.contains(QLatin1String("-devel")))
    , prestart(arguments.contains(QLatin1String("-prestart")))
    , qmlFile(mainQmlFile(arguments))
{
}
