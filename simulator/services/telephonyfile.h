// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "callfilter.h"
#include "sim.h"
#include "statefile.h"

/// The file in which the telephony stack keeps its modems, their SIMs and the filter rules.
class TelephonyFile
{
public:
    struct Content
    {
        SimsByModem sims;
        CallFilter::Content dial;
        CallFilter::Content incoming;
    };

    /// The file is "telephony.json" in \a folder; neither needs to exist.
    explicit TelephonyFile(const QString &folder);

    /// Returns the content that was saved last. If the file does not exist or cannot be read, that
    /// is two modems without a SIM, and no rule.
    Content load() const;

    void save(const Content &content) const;

private:
    StateFile m_file;
};
