// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "objectcount.h"

#include <QAtomicInt>
#include <QObject>

/// Qt's own, for tools that watch objects; its header is one of the private ones.
extern quintptr Q_CORE_EXPORT qtHookData[];

namespace {

constexpr int addObject = 3;
constexpr int removeObject = 4;

QAtomicInt count;

void added(QObject *)
{
    count.ref();
}

void removed(QObject *)
{
    count.deref();
}

} // namespace

ObjectCount::ObjectCount()
{
    count.storeRelaxed(0);
    qtHookData[addObject] = reinterpret_cast<quintptr>(&added);
    qtHookData[removeObject] = reinterpret_cast<quintptr>(&removed);
}

ObjectCount::~ObjectCount()
{
    qtHookData[addObject] = 0;
    qtHookData[removeObject] = 0;
}

int ObjectCount::value() const
{
    return count.loadRelaxed();
}
