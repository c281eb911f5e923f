// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QObject>
#include <QQmlParserStatus>
#include <QStringList>

/// The requests of other processes, which a test sends by calling the signals. Nothing is on a bus.
class ParleyUiAdaptor : public QObject, public QQmlParserStatus
{
    Q_OBJECT
    Q_INTERFACES(QQmlParserStatus)

public:
    using QObject::QObject;

    void classBegin() override { }
    void componentComplete() override;

Q_SIGNALS:
    void show(QStringList args);
    void showOngoing();
    void openUrl(QStringList arg);
    void dial(QString number);
    void dialViaModem(QString modemPath, QString number);
    void showCellularErrorDialog();
    void openContactCard(QString number);
    void toggleCall();
};
