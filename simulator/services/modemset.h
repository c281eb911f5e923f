// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "callfilter.h"
#include "phoneline.h"
#include "sim.h"
#include "telephonyfile.h"

#include <QDBusContext>
#include <QObject>

#include <map>
#include <memory>

/// The modems of the handset with their SIMs and their lines to the network, and the filter rules.
/// They are kept when the process ends. A subclass makes modems of the lines, which the telephony
/// stack or its clients speak with.
class ModemSet : public QObject, public QDBusContext
{
    Q_OBJECT

public:
    ~ModemSet() override;

    /// Returns the path of \a modem, which is given with or without the slash.
    static QString pathOf(const QString &modem);

    /// Returns the SIM of each modem.
    SimsByModem sims() const;

    using Lines = std::map<QString, std::unique_ptr<PhoneLine>>;

    /// Returns the line of each modem by its path.
    const Lines &lines() const { return m_lines; }

    /// Returns whether modems can be added and removed while the handset runs.
    virtual bool isExtensible() const { return true; }
    /// Adds a modem without a SIM. Modem::isPath() must be true for \a path, which must be free.
    void addModem(const QString &path);
    void removeModem(const QString &path);

    /// The following take the path of a modem that exists.
    void insertSim(const QString &path, const QString &imsi);
    void removeSim(const QString &path);
    /// Resets the modem, so that its SIM waits for the PIN.
    void lockSim(const QString &path);
    void unlockSim(const QString &path);
    /// Enters the PIN of a locked SIM as the user does it, which unlocks it, at once or later.
    virtual void enterPin(const QString &path) { unlockSim(path); }

    /// Returns the filter "dial" or "incoming", or null for any other name.
    CallFilter *filter(const QString &name);

Q_SIGNALS:
    void lineAdded(const QString &path);

protected:
    /// Loads the state from \a stateFolder, and keeps changes there.
    explicit ModemSet(const QString &stateFolder);

    /// Makes a modem for a new line.
    virtual void make(const QString &path, PhoneLine &line) = 0;
    /// Removes the modem of a line that is about to go.
    virtual void unmake(const QString &path) = 0;

    CallFilter m_dialFilter;
    CallFilter m_incomingFilter;

private:
    ModemSet(const QString &stateFolder, const TelephonyFile::Content &content);

    PhoneLine &addLine(const QString &path, const Sim &sim);
    void setSim(const QString &path, const Sim &sim);
    void save(const SimsByModem &sims) const;

    const TelephonyFile m_file;
    Lines m_lines;
};
