// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "heaptrim.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QEvent>
#include <QQmlEngine>

#include <array>
#include <chrono>
#include <cstdlib>
#include <cstring>

#include <unistd.h>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

constexpr std::chrono::seconds shortestWait(5);
constexpr std::chrono::seconds longestWait(80);

} // namespace

HeapTrim::HeapTrim(QQmlEngine &engine)
    : m_engine(engine)
    , m_size(QStringLiteral("/proc/self/statm")) // proc(5)
{
    m_later.setSingleShot(true);
    connect(&m_later, &QTimer::timeout, this, &HeapTrim::actAfterWaitingRequests);
    if (m_size.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
                &HeapTrim::look);
}

void HeapTrim::look()
{
    static const qint64 much = (qint64{32} << 20) / sysconf(_SC_PAGESIZE);
    const qint64 pages = residentPages();
    if (m_pagesBefore == 0 || pages < m_pagesBefore)
        m_pagesBefore = pages;
    if (m_isDue || pages < m_pagesBefore + much)
        return;
    if (!m_later.isActive()) {
        m_mostPages = m_pagesBefore + much;
        m_wait = shortestWait;
    }
    actAfterWaitingRequests();
}

/// Serves the requests that still wait first: their memory is in use.
void HeapTrim::actAfterWaitingRequests()
{
    m_isDue = true;
    QCoreApplication::postEvent(this, new QEvent(QEvent::User), Qt::LowEventPriority);
}

void HeapTrim::customEvent(QEvent *)
{
    m_isDue = false;
    m_engine.collectGarbage();
#ifdef __GLIBC__
    malloc_trim(0);
#endif
    m_pagesBefore = residentPages();
    if (m_pagesBefore >= m_mostPages && m_wait <= longestWait) {
        m_later.start(m_wait);
        m_wait *= 2;
    }
}

/// Reads the second number of the file. This happens at each turn of the event loop, so it has to
/// be cheap.
qint64 HeapTrim::residentPages() const
{
    std::array<char, 128> text{};
    if (::pread(m_size.handle(), text.data(), text.size() - 1, 0) <= 0)
        return 0;
    const char *second = std::strchr(text.data(), ' ');
    return second ? std::strtoll(second, nullptr, 10) : 0;
}
