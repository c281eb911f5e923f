// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "kit.h"

#include "phonewindow.h"
#include "simfiltershelper.h"

#include <QDateTime>
#include <QDebug>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QQmlContext>

namespace {

const QLatin1String contextName("__kit");

/// Returns \a reminder with a date that is due.
QVariantMap withDate(QVariantMap reminder)
{
    const QString key = QStringLiteral("when");
    bool isNumber = false;
    const double seconds = reminder.value(key).toDouble(&isNumber);
    const QDateTime when = isNumber && reminder.value(key).userType() != QMetaType::QDateTime
        ? QDateTime::currentDateTime().addMSecs(static_cast<qint64>(seconds * 1000))
        : reminder.value(key).toDateTime();
    reminder.insert(key, when);
    return reminder;
}

} // namespace

Kit *Kit::of(const QObject *object)
{
    const QQmlEngine *engine = qmlEngine(object);
    return engine ? engine->rootContext()->contextProperty(contextName).value<Kit *>() : nullptr;
}

Kit::Kit(QQmlEngine *engine)
    : QObject(engine)
    , m_engine(engine)
    , m_filters(new SimFiltersHelper(this))
    , m_window(new PhoneWindow(this))
{
    QQmlContext *context = engine->rootContext();
    context->setContextProperty(contextName, this);
    context->setContextProperty(QStringLiteral("__window"), m_window);
    context->setContextProperty(QStringLiteral("simFiltersHelper"), m_filters);
    reset();
}

QObject *Kit::service() const
{
    return m_services.value(0);
}

void Kit::addService(QObject *service)
{
    connect(service, &QObject::destroyed, this, &Kit::removeService);
    m_services.append(service);
    if (m_services.size() == 1)
        Q_EMIT serviceChanged();
}

void Kit::removeService(const QObject *service)
{
    const QObject *before = this->service();
    m_services.removeAll(const_cast<QObject *>(service));
    if (this->service() != before)
        Q_EMIT serviceChanged();
}

void Kit::setReminders(const QVariantList &reminders)
{
    m_reminders.clear();
    for (const QVariant &reminder : reminders)
        m_reminders.append(withDate(reminder.toMap()));
    Q_EMIT remindersChanged();
}

void Kit::setReplies(const QStringList &replies)
{
    m_replies = replies;
    Q_EMIT repliesChanged();
}

void Kit::setSims(const QVariantMap &sims)
{
    m_sims = sims;
    m_filters->set(sims);
    Q_EMIT simsChanged();
}

void Kit::setSpecials(const QVariantMap &specials)
{
    m_specials = specials;
    m_engine->rootContext()->setContextProperty(QStringLiteral("__specials"), specials);
    Q_EMIT specialsChanged();
}

void Kit::setPrestart(bool prestart)
{
    m_prestart = prestart;
    m_engine->rootContext()->setContextProperty(QStringLiteral("__prestart"), prestart);
    Q_EMIT prestartChanged();
}

void Kit::reset()
{
    setReminders({});
    setReplies({});
    setSims({});
    setSpecials({});
    setPrestart(false);
    readData();
    if (m_prestart)
        m_window->hide();
    else
        m_window->showFullScreen();
}

void Kit::readData()
{
    const QString name = qEnvironmentVariable("PARLEY_KIT_DATA");
    if (name.isEmpty())
        return;
    QFile file(name);
    QJsonParseError error{};
    const QVariantMap values = file.open(QIODevice::ReadOnly)
        ? QJsonDocument::fromJson(file.readAll(), &error).object().toVariantMap()
        : QVariantMap();
    if (!file.isOpen() || error.error != QJsonParseError::NoError)
        qWarning().noquote() << name << "cannot be read:"
                             << (file.isOpen() ? error.errorString() : file.errorString());
    for (auto it = values.cbegin(); it != values.cend(); ++it) {
        // Not setProperty(), which would add a property that does not exist.
        const int index = staticMetaObject.indexOfProperty(it.key().toUtf8().constData());
        if (index < 0 || !staticMetaObject.property(index).write(this, it.value()))
            qWarning().noquote() << name << "has an unknown value:" << it.key();
    }
}
