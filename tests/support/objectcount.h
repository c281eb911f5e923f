// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QtGlobal>

/// Counts the QObjects of the process that have been made and not destroyed while the object lives,
/// by the hooks that Qt has for debugging tools. One at a time.
class ObjectCount
{
public:
    ObjectCount();
    ~ObjectCount();

    /// Made since the beginning and still there, less those that were there before and have gone.
    int value() const;

private:
    Q_DISABLE_COPY(ObjectCount)
};
