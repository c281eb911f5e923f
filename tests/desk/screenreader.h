// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "scriptedservice.h"

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QVector>

/// The name of an object on the accessibility bus, as AT-SPI writes it.
struct AccessibleReference
{
    QString service;
    QDBusObjectPath path;
};
Q_DECLARE_METATYPE(AccessibleReference)
Q_DECLARE_METATYPE(QVector<AccessibleReference>)

/// An object that a screen reader finds.
struct AccessibleObject
{
    AccessibleReference reference;
    QString role; ///< Such as "push button".
    QString name;
    QString description;
    QStringList actions;
    bool isShowing = false;
    bool isFocusable = false;
    bool isChecked = false;

    /// Returns whether the user can do something with it.
    bool isControl() const;
};

/// A screen reader, with the services that it needs from the desktop. They are all on one bus, the
/// session bus of the process that is read. Start the process first, as a user does who turns the
/// screen reader on.
class ScreenReader : public QObject
{
    Q_OBJECT

public:
    /// Waits for the process to offer its objects. Without any, there is nothing to read.
    explicit ScreenReader(const QString &address);
    ~ScreenReader() override;

    /// Returns all objects that are on the display, each followed by its children.
    QVector<AccessibleObject> objects() const;
    /// Carries out the first action of an object. Returns false if it cannot be done.
    bool act(const AccessibleObject &object) const;

private:
    Q_DISABLE_COPY(ScreenReader)

    QDBusMessage call(const AccessibleReference &object, const QString &interface,
                      const QString &method, const QVariantList &arguments = {}) const;
    QVariant property(const AccessibleReference &object, const QString &interface,
                      const QString &name) const;
    AccessibleObject describe(const AccessibleReference &reference) const;
    void collect(const AccessibleReference &reference, QVector<AccessibleObject> &found) const;

    class Service : public ScriptedService
    {
    public:
        Service(const QString &address, const QString &name, const QString &path,
                ScreenReader &reader);
        void take(const QDBusMessage &call) override;

    private:
        ScreenReader &m_reader;
    };

    QVariantList answerTo(const QDBusMessage &call);

    const QString m_address;
    QDBusConnection m_bus;
    AccessibleReference m_application;
    Service m_accessibilityBus;
    Service m_registry;
};
