// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantMap>
#include <QVector>

class QDBusMessage;

/// An object of a list that a service has sent, such as a modem or a call.
struct BusObject
{
    QString path;
    QVariantMap properties;
};

/// The most objects of one kind that are read, and the most that are kept.
constexpr int mostBusObjects = 1000;

/// Returns the first objects of \a message, an answer with the signature "a(oa{sv})", or none if
/// the message is invalid.
QVector<BusObject> busObjects(const QDBusMessage &message);

/// Returns the properties in \a message, an answer with the signature "a{sv}", or none if the
/// message is invalid.
QVariantMap busProperties(const QDBusMessage &message);

/// Returns the object of \a message, a signal with the signature "oa{sv}".
BusObject busObject(const QDBusMessage &message);

/// Returns the path in \a message, whose first argument is one.
QString busPath(const QDBusMessage &message);

/// A property that has changed.
struct BusProperty
{
    QString name;
    QVariant value;
};

/// Returns the property of \a message, a signal with the signature "sv".
BusProperty busProperty(const QDBusMessage &message);

/// Returns the text in \a value, or an empty one if it has another type, as safeText().
QString textIn(const QVariant &value);

/// Returns the texts in \a value, or none if it has another type, unchanged. Limits their number.
QStringList textsIn(const QVariant &value);

/// Returns whether \a value is the boolean true.
bool isTrue(const QVariant &value);

/// Returns \a text as it may be shown: without control characters and the marks that change the
/// direction of text, which could make it look like another one. Line ends become spaces. A text
/// that is longer than \a limit is cut.
QString safeText(const QString &text, int limit = 200);

/// Returns the lines of \a text as safeText(), 2,000 characters at most.
QString safeLines(const QString &text);
