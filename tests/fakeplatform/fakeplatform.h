// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <QVector>

#include <functional>

/// What the platform's clients do while the object lives, and what they have been asked to.
///
/// The time daemon's calls themselves go over the system bus, where a test answers them as it
/// likes.
class FakePlatform
{
public:
    FakePlatform();
    ~FakePlatform();

    /// The one that lives. There must be one when a client is used.
    static FakePlatform &instance();

    /// The calls of clients in the order in which they came, as "function(argument, ...)".
    QStringList takeCalls();
    void record(const QString &call) { m_calls.append(call); }

    /// What the settings store has.
    QVariantMap settings;

    /// The contacts cache's keys of a number. As set here, they can be told apart, and from the
    /// number.
    std::function<QString(const QString &number)> normalize = [](const QString &number) {
        return number;
    };
    std::function<QString(const QString &number)> minimize = [](const QString &number) {
        return number;
    };

    /// The SIMs that the watchers tell of, by their subscriber identities. A test has a watcher
    /// emit its signals.
    QStringList sims;
    bool simsValid = false;

    /// Thrown by the next call of these, and then no more.
    bool throwFromSetAttribute = false;
    bool throwFromSending = false;

    /// The id that the next publish() gives; 0 for no answer. Counted up by each.
    uint nextNotificationId = 1;
    /// What happens while the next publish(), and no other, waits for its answer.
    std::function<void()> whilePublishing;

private:
    Q_DISABLE_COPY(FakePlatform)

    QStringList m_calls;
};
