// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QByteArray>
#include <QMap>
#include <QMutex>
#include <QTemporaryDir>
#include <QThread>

/// A bus with one client, and one service that owns every name. It answers calls of set methods
/// with anything that D-Bus allows, and all other calls so that the client goes on.
class FakeBus : public QThread
{
public:
    /// Starts to listen at once.
    FakeBus();
    ~FakeBus() override;

    QByteArray address() const;
    /// Sets the answer to the next calls of \a method: values in little-endian wire form, aligned
    /// from the start of \a body.
    void setAnswer(const QByteArray &signature, const QByteArray &body,
                   const QByteArray &method = QByteArrayLiteral("GetAll"));
    /// Sends the client a signal of the service, with such values.
    void emitSignal(const QByteArray &path, const QByteArray &interface, const QByteArray &member,
                    const QByteArray &signature, const QByteArray &body);

protected:
    void run() override;

private:
    Q_DISABLE_COPY(FakeBus)

    struct Answer
    {
        QByteArray signature;
        QByteArray body;
    };

    bool read(char *data, qint64 size) const;
    bool writeMessage(const QByteArray &message);
    bool authenticate();
    bool serve();
    QByteArray reply(quint32 serial, const QByteArray &member);

    QTemporaryDir m_folder;
    int m_listening = -1;
    int m_client = -1;
    QMutex m_mutex;
    QMap<QByteArray, Answer> m_answers; ///< By method.
};
