// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "messagelog.h"
#include "privatebus.h"

#include <QObject>
#include <QTemporaryDir>
#include <QVariantList>

#include <functional>
#include <memory>

class QAbstractItemModel;
class QSignalSpy;

/// A test of the calls module, with a bus of its own, which is both buses of this process. The test
/// has to take the lines of the log that it expects.
class CallsTest : public QObject
{
    Q_OBJECT

protected Q_SLOTS:
    /// Starts the bus.
    void initTestCase();
    /// Collects the log from here on. Call this first.
    virtual void init();
    /// Checks that no line of the log is left. Call this last.
    virtual void cleanup();

protected:
    /// Returns the value of the role with this name in a row of \a model.
    static QVariant role(const QAbstractItemModel &model, int row, const QByteArray &name);
    /// Waits for a signal failed() of \a failures and takes it. Returns what it is about, as
    /// \a subject reads it from the arguments, and the name of the error.
    static QString takeFailure(QSignalSpy &failures,
                               const std::function<QString(const QVariantList &)> &subject);

    PrivateBus m_bus;
    std::unique_ptr<MessageLog> m_log;

private:
    QTemporaryDir m_folder;
};
