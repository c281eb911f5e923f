// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "fakeplatform.h"

#include <utility>

namespace {

FakePlatform *living = nullptr;

} // namespace

FakePlatform::FakePlatform()
{
    if (std::exchange(living, this) != nullptr)
        qFatal("There is a fake platform already.");
}

FakePlatform::~FakePlatform()
{
    living = nullptr;
}

FakePlatform &FakePlatform::instance()
{
    if (living == nullptr)
        qFatal("There is no fake platform.");
    return *living;
}

QStringList FakePlatform::takeCalls()
{
    return std::exchange(m_calls, {});
}
