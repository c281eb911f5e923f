// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QColor>
#include <QObject>
#include <QQuickItem>
#include <QString>
#include <QWindow>

/// Stands in for the view of the process, which a tool does not have. It shows nothing: it keeps
/// what the screens ask for, so that a test can look at it, and the tool shows the screens.
class PhoneWindow : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool visible READ isVisible WRITE setVisible NOTIFY visibleChanged)
    Q_PROPERTY(
        QWindow::Visibility visibility READ visibility WRITE setVisibility NOTIFY visibilityChanged)
    Q_PROPERTY(bool active READ isActive NOTIFY activeChanged)
    Q_PROPERTY(QQuickItem *activeFocusItem READ activeFocusItem NOTIFY activeFocusItemChanged)
    Q_PROPERTY(QQuickItem *contentItem READ contentItem CONSTANT)
    Q_PROPERTY(QString title MEMBER m_title NOTIFY titleChanged)
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY colorChanged)
    Q_PROPERTY(int resizeMode MEMBER m_resizeMode NOTIFY resizeModeChanged)
    Q_PROPERTY(int width MEMBER m_width NOTIFY widthChanged)
    Q_PROPERTY(int height MEMBER m_height NOTIFY heightChanged)

public:
    explicit PhoneWindow(QObject *parent = nullptr);

    bool isVisible() const { return m_visibility != QWindow::Hidden; }
    QWindow::Visibility visibility() const { return m_visibility; }
    void setVisibility(QWindow::Visibility visibility);
    /// Whether it has the keyboard focus. It has as long as it is visible.
    bool isActive() const { return isVisible(); }
    /// The item of the tool's window that has the keyboard focus.
    QQuickItem *activeFocusItem() const;
    /// The root of the tool's window; null before there is one.
    QQuickItem *contentItem() const;

public Q_SLOTS:
    void setVisible(bool visible);
    void show() { setVisibility(QWindow::Windowed); }
    void showNormal() { setVisibility(QWindow::Windowed); }
    void showFullScreen() { setVisibility(QWindow::FullScreen); }
    void showMaximized() { setVisibility(QWindow::Maximized); }
    void hide() { setVisibility(QWindow::Hidden); }
    bool close();
    void raise() { }
    void lower() { }
    void requestActivate() { }

Q_SIGNALS:
    void visibleChanged(bool visible);
    void visibilityChanged(QWindow::Visibility visibility);
    void activeChanged();
    void activeFocusItemChanged();
    void titleChanged(const QString &title);
    void colorChanged(const QColor &color);
    void resizeModeChanged();
    void widthChanged(int width);
    void heightChanged(int height);

private:
    QWindow::Visibility m_visibility = QWindow::Hidden;
    QString m_title = QStringLiteral("Phone");
    QColor m_color = Qt::white;
    int m_resizeMode = 0;
    int m_width = 360;
    int m_height = 640;
};
