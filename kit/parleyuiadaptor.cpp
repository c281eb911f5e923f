// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "parleyuiadaptor.h"

#include "kit.h"

void ParleyUiAdaptor::componentComplete()
{
    if (Kit *kit = Kit::of(this))
        kit->addService(this);
}
