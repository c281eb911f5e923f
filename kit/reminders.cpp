// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "reminders.h"

#include "kit.h"

#include <QRegularExpression>

namespace {

const QLatin1String numberKey("phoneNumber");

/// Returns what is the same in all forms of a number: its last seven digits. A text without a digit
/// has only one form.
QString keyOf(const QString &number)
{
    static const QRegularExpression noDigits(QStringLiteral("\\D"));
    const QString digits = QString(number).remove(noDigits);
    return digits.isEmpty() ? number : digits.right(7);
}

} // namespace

void Reminders::classBegin()
{
    m_kit = Kit::of(this);
}

void Reminders::createWithStrings(const QString &phoneNumber, const QDateTime &when,
                                  const QString &applicationName, const QString &contactName,
                                  const QString &title, const QString &description)
{
    const QVariantMap reminder{{numberKey, phoneNumber},
                               {QStringLiteral("when"), when},
                               {QStringLiteral("applicationName"), applicationName},
                               {QStringLiteral("contactName"), contactName},
                               {QStringLiteral("title"), title},
                               {QStringLiteral("description"), description}};
    const auto add = [this, phoneNumber, reminder] {
        QVariantList reminders = m_kit->reminders();
        if (const int index = indexOf(phoneNumber); index >= 0)
            reminders.removeAt(index);
        reminders.append(reminder);
        m_kit->setReminders(reminders);
    };
    if (m_kit)
        QMetaObject::invokeMethod(this, add, Qt::QueuedConnection);
}

QDateTime Reminders::dueTime(const QString &number) const
{
    const int index = indexOf(number);
    return index < 0
        ? QDateTime()
        : m_kit->reminders().at(index).toMap().value(QStringLiteral("when")).toDateTime();
}

void Reminders::remove(const QString &number)
{
    const int index = indexOf(number);
    if (index < 0)
        return;
    QVariantList reminders = m_kit->reminders();
    reminders.removeAt(index);
    m_kit->setReminders(reminders);
}

int Reminders::indexOf(const QString &number) const
{
    if (!m_kit || number.isEmpty())
        return -1;
    const QVariantList reminders = m_kit->reminders();
    for (int i = 0; i < reminders.size(); ++i) {
        if (keyOf(reminders.at(i).toMap().value(numberKey).toString()) == keyOf(number))
            return i;
    }
    return -1;
}
