// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QString>
#include <QStringList>

/// A message as it was seen on a bus.
struct BusMessage
{
    enum class Type { Call = 1, Return, Error, Signal };

    Type type = Type::Signal;
    bool wantsReply = true; ///< Of a call.
    quint32 cookie = 0; ///< Tells a connection's messages apart.
    quint32 replyCookie = 0; ///< That of the call which this answers; 0 for none.
    qint64 time = 0; ///< When it was seen, in microseconds since 1970.
    QString sender; ///< A connection's own name (":1.5"), or the bus's.
    QString destination; ///< Empty for all who care.
    QString path;
    QString interface; ///< May be empty in a call.
    QString member;
    QString errorName;
    QString values; ///< In a short line, as ValueText writes it; empty where there are none.
    QStringList strings; ///< The strings that are the first values; long ones are cut.
};
