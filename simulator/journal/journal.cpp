// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "journal.h"

#include "valuetext.h"

#include <QDateTime>
#include <QFileInfo>
#include <QLocale>
#include <QStandardPaths>

#include <algorithm>
#include <chrono>
#include <utility>

namespace {

constexpr int maxEntries = 1000;
constexpr int usualCount = 20; ///< The number of lines that the command prints by default.
/// How long the commands wait for messages that are under way.
constexpr std::chrono::seconds patience(2);

QString keyOf(const QString &bus, const QString &caller, quint32 cookie)
{
    return bus + caller + QLatin1Char('#') + QString::number(cookie);
}

QString outcomeOf(const BusMessage &reply)
{
    if (reply.type == BusMessage::Type::Error)
        return ValueText::of(reply.errorName + QLatin1String(": ") + reply.strings.value(0));
    return reply.values.isEmpty() ? QStringLiteral("done") : reply.values;
}

/// Has the same digits in every language.
QString timeOfDay(qint64 microseconds)
{
    return QLocale::c().toString(QDateTime::fromMSecsSinceEpoch(microseconds / 1000),
                                 QStringLiteral("hh:mm:ss.zzz"));
}

/// Finds a program as a shell does.
QString canonical(const QString &program)
{
    return QFileInfo(program.contains(QLatin1Char('/')) ? program
                                                        : QStandardPaths::findExecutable(program))
        .canonicalFilePath();
}

QString place(const QString &path)
{
    return path == QLatin1String("/") ? QString() : QLatin1String(" at ") + path;
}

} // namespace

Journal::Journal(Transcript &transcript, QObject *parent)
    : QAbstractListModel(parent)
    , m_transcript(transcript)
{
    m_patience.setSingleShot(true);
    m_patience.setInterval(patience);
    connect(&m_patience, &QTimer::timeout, this, &Journal::caughtUp);
}

Journal::~Journal() = default;

void Journal::watch(const WatchedBus::Bus &bus, const QString &uiProgram)
{
    auto watched = std::make_unique<WatchedBus>(bus, canonical(uiProgram));
    connect(watched.get(), &WatchedBus::seen, this,
            [this, name = bus.name](const BusMessage &message, bool incoming, const QString &peer) {
                add(name, message, incoming, peer);
            });
    connect(watched.get(), &WatchedBus::marked, this, [this](const QString &mark) {
        if (mark == QString::number(m_mark) && --m_awaited == 0)
            caughtUp();
    });
    connect(watched.get(), &WatchedBus::ended, this, [this](const QString &why) {
        m_transcript.say(why);
        if (m_whenCaughtUp)
            catchUp(); // This bus will not show the mark.
    });
    watched->start();
    m_buses.push_back(std::move(watched));
}

void Journal::add(const QString &bus, const BusMessage &message, bool incoming, const QString &peer)
{
    const bool isCall = message.type == BusMessage::Type::Call;
    if (!isCall && message.type != BusMessage::Type::Signal) {
        complete(keyOf(bus, message.destination, message.replyCookie), message);
        return;
    }
    const bool isOpen = isCall && message.wantsReply;
    append({message.type, message.time, bus, incoming, peer, message.path, message.interface,
            message.member, message.values,
            isOpen ? keyOf(bus, message.sender, message.cookie) : QString(),
            isCall && !isOpen ? QStringLiteral("no reply wanted") : QString(), false, -1});
}

void Journal::clear()
{
    beginResetModel();
    m_removed += static_cast<qint64>(m_entries.size());
    m_entries.clear();
    m_open.clear();
    endResetModel();
}

QString Journal::line(int row) const
{
    const Entry &entry = m_entries.at(static_cast<std::size_t>(row));
    QString text = timeOfDay(entry.time) + QLatin1Char(' ') + entry.bus
        + (entry.isIncoming ? QLatin1String(" -> ") : QLatin1String(" <- ")) + entry.member
        + QLatin1Char('(') + entry.arguments + QLatin1Char(')') + place(entry.path);
    if (entry.type == BusMessage::Type::Signal)
        return text;
    if (!entry.call.isEmpty() && entry.outcome.isEmpty())
        return text + QLatin1String(", no reply yet");
    if (entry.call.isEmpty())
        return text + QLatin1String(", ") + entry.outcome;
    return text + QLatin1String(" = ") + entry.outcome + QLatin1String(", ")
        + QString::number(entry.milliseconds, 'f', 1) + QLatin1String(" ms");
}

QVector<Command> Journal::commands()
{
    return {
        {QStringLiteral("journal clear"),
         {},
         QStringLiteral("forget the messages so far"),
         [this](const QStringList &, const Finish &finish) {
             m_whenCaughtUp = [this, finish] {
                 clear();
                 finish(Outcome::Done, QStringLiteral("done"));
             };
             catchUp();
         }},
        {QStringLiteral("journal"),
         {QStringLiteral("[COUNT]")},
         QStringLiteral("list the last messages to (->) and from (<-) the call UI"),
         [this](const QStringList &arguments, const Finish &finish) { print(arguments, finish); }}};
}

int Journal::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_entries.size());
}

QVariant Journal::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const Entry &entry = m_entries.at(static_cast<std::size_t>(index.row()));
    switch (role) {
    case Qt::DisplayRole:
        return line(index.row());
    case TimeRole:
        return timeOfDay(entry.time);
    case BusRole:
        return entry.bus;
    case KindRole:
        return entry.type == BusMessage::Type::Signal ? QStringLiteral("signal")
                                                      : QStringLiteral("call");
    case IncomingRole:
        return entry.isIncoming;
    case PeerRole:
        return entry.peer;
    case InterfaceRole:
        return entry.interface;
    case MemberRole:
        return entry.member;
    case PathRole:
        return entry.path;
    case ArgumentsRole:
        return entry.arguments;
    case OutcomeRole:
        return entry.outcome;
    case FailedRole:
        return entry.hasFailed;
    case MillisecondsRole:
        return entry.milliseconds;
    default:
        return {};
    }
}

QHash<int, QByteArray> Journal::roleNames() const
{
    return {{TimeRole, QByteArrayLiteral("time")},
            {BusRole, QByteArrayLiteral("bus")},
            {KindRole, QByteArrayLiteral("kind")},
            {IncomingRole, QByteArrayLiteral("incoming")},
            {PeerRole, QByteArrayLiteral("peer")},
            {InterfaceRole, QByteArrayLiteral("interface")},
            {MemberRole, QByteArrayLiteral("member")},
            {PathRole, QByteArrayLiteral("path")},
            {ArgumentsRole, QByteArrayLiteral("arguments")},
            {OutcomeRole, QByteArrayLiteral("outcome")},
            {FailedRole, QByteArrayLiteral("failed")},
            {MillisecondsRole, QByteArrayLiteral("milliseconds")}};
}

void Journal::append(const Entry &entry)
{
    if (m_entries.size() == maxEntries) {
        beginRemoveRows({}, 0, 0);
        m_open.remove(m_entries.front().call);
        m_entries.pop_front();
        ++m_removed;
        endRemoveRows();
    }
    const int row = rowCount();
    beginInsertRows({}, row, row);
    if (!entry.call.isEmpty())
        m_open.insert(entry.call, m_removed + row);
    m_entries.push_back(entry);
    endInsertRows();
}

void Journal::complete(const QString &call, const BusMessage &reply)
{
    const auto open = m_open.find(call);
    if (open == m_open.end())
        return;
    const int row = static_cast<int>(*open - m_removed);
    m_open.erase(open);

    Entry &entry = m_entries.at(static_cast<std::size_t>(row));
    entry.outcome = outcomeOf(reply);
    entry.hasFailed = reply.type == BusMessage::Type::Error;
    // The clock may have been set back meanwhile.
    entry.milliseconds = std::max(0.0, static_cast<double>(reply.time - entry.time) / 1000);
    Q_EMIT dataChanged(index(row), index(row),
                       {Qt::DisplayRole, OutcomeRole, FailedRole, MillisecondsRole});
}

void Journal::print(const QStringList &arguments, const Finish &finish)
{
    bool isNumber = true;
    const int count = arguments.isEmpty() ? usualCount : arguments.constFirst().toInt(&isNumber);
    if (!isNumber || count < 1) {
        finish(Outcome::Failed,
               QStringLiteral("\"%1\" is no number of lines").arg(arguments.constFirst()));
        return;
    }
    m_whenCaughtUp = [this, count, finish] { printLast(count, finish); };
    catchUp();
}

void Journal::printLast(int count, const Finish &finish)
{
    for (int row = std::max(0, rowCount() - count); row < rowCount(); ++row)
        m_transcript.record(QStringLiteral("journal"), line(row));
    finish(Outcome::Done, m_entries.empty() ? QStringLiteral("the journal is empty") : QString());
}

/// Sends a mark on each bus. When all marks have been seen, so have all messages before them.
void Journal::catchUp()
{
    const QString mark = QString::number(++m_mark);
    m_awaited = 0;
    for (const auto &bus : m_buses) {
        if (!bus->isWatched())
            continue;
        ++m_awaited;
        bus->mark(mark);
    }
    if (m_awaited == 0)
        caughtUp();
    else
        m_patience.start();
}

void Journal::caughtUp()
{
    m_patience.stop();
    if (const auto whenCaughtUp = std::exchange(m_whenCaughtUp, nullptr))
        whenCaughtUp();
}
