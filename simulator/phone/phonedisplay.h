// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QObject>

class QWindow;

/// The display of the phone: the window of the call UI has the size of the phone on the desk,
/// whatever the screens ask for, full screen included. Its user may resize it.
///
/// It tells the simulated handset what becomes of the window, in lines on standard error: "phone:
/// loaded" when the screens have been loaded, and then "phone: shown" and "phone: hidden". If the
/// environment has PARLEY_PHONE_SHOWN, the window is shown as soon as the screens have been loaded.
class PhoneDisplay : public QObject
{
    Q_OBJECT

public:
    explicit PhoneDisplay(QObject *parent = nullptr);

    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void screensLoaded();
    void fit(QWindow *window);
    void keepSmall(QWindow *window, Qt::WindowState state);
};
