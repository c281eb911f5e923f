// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "alarmboard.h"
#include "arguments.h"
#include "buses.h"
#include "catalogues.h"
#include "terminationsignal.h"

#include <QCoreApplication>

#include <cstdio>
#include <cstdlib>

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("parley-alarm"));
    QCoreApplication::setApplicationVersion(QStringLiteral(PARLEY_VERSION));

    const Arguments arguments = Arguments::parse(QCoreApplication::arguments());
    if (!arguments.error.isEmpty()) {
        std::fprintf(stderr, "parley-alarm: %s\n", qUtf8Printable(arguments.error));
        return EXIT_FAILURE;
    }
    if (!arguments.text.isEmpty()) {
        std::fputs(qUtf8Printable(arguments.text), stdout);
        return EXIT_SUCCESS;
    }

    const TerminationSignal terminationSignal;
    QObject::connect(&terminationSignal, &TerminationSignal::received, &application,
                     [] { QCoreApplication::exit(EXIT_SUCCESS); });
    const Catalogues catalogues(arguments.translations);
    Buses buses;
    QObject::connect(&buses, &Buses::lost, &application,
                     [] { QCoreApplication::exit(EXIT_FAILURE); });
    switch (buses.claim(QStringLiteral("com.nimbo.parley.alarm"))) {
    case Buses::Claim::Succeeded:
        break;
    case Buses::Claim::Taken:
        return EXIT_SUCCESS;
    case Buses::Claim::Failed:
        return EXIT_FAILURE;
    }

    AlarmBoard board(buses.session(), buses.system());
    board.start();
    return QCoreApplication::exec();
}
