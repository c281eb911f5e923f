// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QObject>
#include <QQmlEngine>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

class PhoneWindow;
class SimFiltersHelper;

/// The handset around the screens that run in a tool: a few values in memory instead of services.
/// There is one for each QML engine, as "__kit" in the root context. Tests and previews set the
/// values, and the types of the module show them to the screens.
///
/// The values at the start are those of a phone without SIMs and reminders, or those in the JSON
/// file that PARLEY_KIT_DATA names: an object with properties of this class.
class Kit : public QObject
{
    Q_OBJECT
    /// The object of the screens that offers the service, the first one of several; null for none.
    /// Its signals are called to send it a request, as in "__kit.service.dial("5551234")".
    Q_PROPERTY(QObject *service READ service NOTIFY serviceChanged)
    /// The reminders: objects with "phoneNumber", "when", "applicationName", "contactName", "title"
    /// and "description". A number in the place of a date for "when" counts seconds from now.
    Q_PROPERTY(QVariantList reminders READ reminders WRITE setReminders NOTIFY remindersChanged)
    /// The messages that are saved; empty for none, so that the defaults are shown.
    Q_PROPERTY(QStringList replies READ replies WRITE setReplies NOTIFY repliesChanged)
    /// Values for the properties of "simFiltersHelper". The others get those of a phone without a
    /// SIM.
    Q_PROPERTY(QVariantMap sims READ sims WRITE setSims NOTIFY simsChanged)
    /// The value of "__specials".
    Q_PROPERTY(QVariantMap specials READ specials WRITE setSpecials NOTIFY specialsChanged)
    /// The value of "__prestart". While it is true, "__window" begins hidden.
    Q_PROPERTY(bool prestart READ prestart WRITE setPrestart NOTIFY prestartChanged)

public:
    /// Returns the kit of the engine that \a object belongs to; null if there is none.
    static Kit *of(const QObject *object);

    /// Sets the root context of \a engine, which owns the object.
    explicit Kit(QQmlEngine *engine);

    QObject *service() const;
    /// For ParleyUiAdaptor objects.
    void addService(QObject *service);

    QVariantList reminders() const { return m_reminders; }
    void setReminders(const QVariantList &reminders);
    QStringList replies() const { return m_replies; }
    void setReplies(const QStringList &replies);
    QVariantMap sims() const { return m_sims; }
    void setSims(const QVariantMap &sims);
    QVariantMap specials() const { return m_specials; }
    void setSpecials(const QVariantMap &specials);
    bool prestart() const { return m_prestart; }
    void setPrestart(bool prestart);

    /// Sets all values as they were at the start, and hides or shows the window accordingly.
    Q_INVOKABLE void reset();

Q_SIGNALS:
    void serviceChanged();
    void remindersChanged();
    void repliesChanged();
    void simsChanged();
    void specialsChanged();
    void prestartChanged();

private:
    void removeService(const QObject *service);
    void readData();

    QQmlEngine *const m_engine;
    SimFiltersHelper *const m_filters;
    PhoneWindow *const m_window;
    QList<QObject *> m_services;
    QVariantList m_reminders;
    QStringList m_replies;
    QVariantMap m_sims;
    QVariantMap m_specials;
    bool m_prestart = false;
};
