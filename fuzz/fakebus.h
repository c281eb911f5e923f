// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QByteArray>
#include <QMutex>
#include <QTemporaryDir>
#include <QThread>

/// A bus with one client, whose calls of "GetAll" get any answer that D-Bus allows, and all others
/// one that keeps the client going.
class FakeBus : public QThread
{
public:
    /// Listens at once.
    FakeBus();
    ~FakeBus() override;

    QByteArray address() const;
    /// What the next calls get: values in little-endian wire form, aligned from the start of
    /// \a body.
    void setAnswer(const QByteArray &signature, const QByteArray &body);

protected:
    void run() override;

private:
    Q_DISABLE_COPY(FakeBus)

    bool read(char *data, qint64 size) const;
    bool authenticate();
    bool serve();
    QByteArray reply(quint32 serial, const QByteArray &member);

    QTemporaryDir m_folder;
    int m_listening = -1;
    int m_client = -1;
    QMutex m_mutex;
    QByteArray m_signature;
    QByteArray m_body;
};
