// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "handsetpart.h"

#include "runservice.h"
#include "toggleas.h"

#include <QCoreApplication>

namespace {

const QLatin1String serviceOption("--service");
const QLatin1String stateOption("--state");
const QLatin1String toggleOption("--toggle-as");

} // namespace

std::optional<int> runHandsetPart(int argc, char *argv[])
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    const bool isService =
        arguments.size() == 4 && arguments.at(0) == serviceOption && arguments.at(2) == stateOption;
    const bool isToggle = arguments.size() == 3 && arguments.at(0) == toggleOption;
    if (!isService && !isToggle)
        return std::nullopt;
    const QCoreApplication application(argc, argv);
    return isService ? runService(arguments.at(1), arguments.at(3))
                     : toggleCallAs(arguments.at(1), arguments.at(2));
}

QStringList serviceArguments(const QString &name, const QString &stateFolder)
{
    return {serviceOption, name, stateOption, stateFolder};
}

QStringList toggleArguments(const QString &user, const QString &group)
{
    return {toggleOption, user, group};
}
