// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

// What has no way of writing that both Qt 5 and Qt 6 take. The call UI and the time daemon need
// none of it; the simulator and the tests do.

#include <QMetaType>
#include <QProcess>

/// A process that begins with a function of its class, before its program is executed.
class PreparedProcess : public QProcess
{
public:
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    using QProcess::QProcess;
#else
    explicit PreparedProcess(QObject *parent = nullptr)
        : QProcess(parent)
    {
        setChildProcessModifier([this] { prepare(); });
    }
#endif

protected:
    /// Runs in the new process, where only async-signal-safe functions may be called.
    virtual void prepare() = 0;

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
private:
    void setupChildProcess() final
    {
        prepare();
    }
#endif
};

/// Returns the id of the type that is registered under \a name, or 0 if there is none.
inline int metaTypeNamed(const char *name)
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    return QMetaType::type(name);
#else
    return QMetaType::fromName(name).id();
#endif
}
