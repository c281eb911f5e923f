// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <QVector>

#include <functional>

/// Defines what the platform's clients do while the object lives, and records what they were asked
/// to do.
///
/// The calls to the time daemon do go over the system bus, where a test answers them.
class FakePlatform
{
public:
    FakePlatform();
    ~FakePlatform();

    /// Returns the living object. There must be one when a client is used.
    static FakePlatform &instance();

    /// Returns the calls of clients in their order, as "function(argument, ...)", and forgets them.
    QStringList takeCalls();
    void record(const QString &call) { m_calls.append(call); }

    /// The content of the settings store.
    QVariantMap settings;

    /// The functions that make the contacts cache's keys of a number. By default the keys differ
    /// from each other and from the number.
    std::function<QString(const QString &number)> normalize = [](const QString &number) {
        return number;
    };
    std::function<QString(const QString &number)> minimize = [](const QString &number) {
        return number;
    };

    /// The subscriber identities of the SIMs that the watchers report. A test makes a watcher emit
    /// its signals.
    QStringList sims;
    bool simsValid = false;

    /// The next call of one of these functions throws this, and later ones do not.
    bool throwFromSetAttribute = false;
    bool throwFromSending = false;

    /// The id that the next publish() gets; 0 for no answer. Each publish() increments it.
    uint nextNotificationId = 1;
    /// Called while the next publish() waits for its answer, and by no later one.
    std::function<void()> whilePublishing;

private:
    Q_DISABLE_COPY(FakePlatform)

    QStringList m_calls;
};
