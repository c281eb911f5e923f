// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "sim.h"

#include <QByteArray>
#include <QMap>
#include <QStringList>

/// The files of a SIM that a telephony stack reads (3GPP TS 51.011), as +CRSM answers for them: the
/// number of the card, the length of the network code, emergency numbers, the owner's number and
/// the name of the network.
class SimFiles
{
public:
    SimFiles(const Sim &sim, const QStringList &emergencyNumbers, const QString &networkName);

    /// Returns the parameters of the answer to +CRSM with these parameters (3GPP TS 27.007, 8.18).
    QByteArray answer(int command, int file, int p1, int p2, int length) const;

    /// Returns the number of a card, which has 19 digits that begin with 89 (ITU-T E.118).
    static QString cardIdentifier(const Sim &sim);
    /// Returns the number of its owner.
    static QString ownNumber(const Sim &sim);

private:
    struct File
    {
        QByteArray content;
        int recordLength = 0; ///< 0 if the file has no records.
    };

    QMap<int, File> m_files; ///< By identifier.
};
