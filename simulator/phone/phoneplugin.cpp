// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "phonedisplay.h"

#include <QGenericPlugin>

/// Qt loads this into the process of the call UI, whose environment asks for it. The process itself
/// does not know it.
class PhonePlugin : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "phone.json")

public:
    QObject *create(const QString &, const QString &) override { return new PhoneDisplay; }
};

#include "phoneplugin.moc"
