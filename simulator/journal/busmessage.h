// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QMetaType>
#include <QString>
#include <QStringList>

/// A message that was seen on a bus.
struct BusMessage
{
    enum class Type { Call = 1, Return, Error, Signal };

    Type type = Type::Signal;
    bool wantsReply = true; ///< For a call.
    quint32 cookie = 0; ///< The serial, unique among the messages of the sender.
    quint32 replyCookie = 0; ///< The serial of the call that this answers; 0 for none.
    qint64 time = 0; ///< The time it was seen, in microseconds since 1970-01-01 00:00 UTC.
    QString sender; ///< A connection's own name (":1.5"), or the bus's.
    QString destination; ///< Empty for a broadcast.
    QString path;
    QString interface; ///< May be empty in a call.
    QString member;
    QString errorName;
    QString values; ///< All values as a short line (ValueText); empty if there are none.
    QStringList strings; ///< The leading values that are strings; long ones are cut.
};

Q_DECLARE_METATYPE(BusMessage)
