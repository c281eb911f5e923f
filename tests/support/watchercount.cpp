// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "watchercount.h"

#include <QDBusPendingCallWatcher>
#include <QMutex>
#include <QSet>
#include <QThread>

#include <algorithm>

/// Qt has these hooks for tools that watch objects. Its header for them is private.
extern quintptr Q_CORE_EXPORT qtHookData[];

namespace {

constexpr int addObject = 3;
constexpr int removeObject = 4;

QMutex mutex;
QThread *watched = nullptr;
/// The objects that the thread has created. Another thread may destroy them.
QSet<QObject *> objects;

void added(QObject *object)
{
    const QMutexLocker locker(&mutex);
    if (QThread::currentThread() == watched)
        objects.insert(object);
}

void removed(QObject *object)
{
    const QMutexLocker locker(&mutex);
    objects.remove(object);
}

} // namespace

WatcherCount::WatcherCount()
{
    watched = QThread::currentThread();
    qtHookData[addObject] = reinterpret_cast<quintptr>(&added);
    qtHookData[removeObject] = reinterpret_cast<quintptr>(&removed);
}

WatcherCount::~WatcherCount()
{
    qtHookData[addObject] = 0;
    qtHookData[removeObject] = 0;
    const QMutexLocker locker(&mutex);
    objects.clear();
}

int WatcherCount::value() const
{
    const QMutexLocker locker(&mutex); // No object is destroyed meanwhile.
    return static_cast<int>(std::count_if(objects.cbegin(), objects.cend(), [](QObject *object) {
        return qobject_cast<QDBusPendingCallWatcher *>(object) != nullptr;
    }));
}
