// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "qmltypes.h"

#include <QQmlExtensionPlugin>

/// The QML types of the process as a plugin, for the tool that describes the types of a plugin.
class TypesPlugin : public QQmlExtensionPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QQmlExtensionInterface_iid)

public:
    void registerTypes(const char *) override { registerQmlTypes(); }
};

#include "typesplugin.moc"
