// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "telephonyfile.h"

#include "modem.h"

#include <QJsonArray>

#include <optional>

namespace {

std::optional<Sim> toSim(const QJsonValue &value)
{
    const QJsonValue imsi = value.toObject().value(QLatin1String("imsi"));
    const QJsonValue locked = value.toObject().value(QLatin1String("locked"));
    const Sim sim{imsi.toString(), locked.toBool()};
    const bool isSim = imsi.isString() && locked.isBool()
        && (isImsi(sim.imsi) || (sim.imsi.isEmpty() && !sim.locked));
    return isSim ? std::optional<Sim>(sim) : std::nullopt;
}

std::optional<SimsByModem> toSims(const QJsonValue &value)
{
    if (!value.isObject())
        return std::nullopt;
    SimsByModem sims;
    const QJsonObject object = value.toObject();
    for (auto it = object.constBegin(); it != object.constEnd(); ++it) {
        const auto sim = toSim(it.value());
        if (!Modem::isPath(it.key()) || !sim)
            return std::nullopt;
        sims.insert(it.key(), *sim);
    }
    return sims;
}

std::optional<CallFilter::Content> toFilter(const QJsonValue &value)
{
    const QJsonObject object = value.toObject();
    const auto defaultAction = StateFile::toUInt(object.value(QLatin1String("defaultAction")));
    const QJsonValue list = object.value(QLatin1String("rules"));
    if (!defaultAction || !list.isArray())
        return std::nullopt;
    CallFilter::Content content{*defaultAction, {}};
    const QJsonArray array = list.toArray();
    for (const QJsonValue &one : array) {
        const QString imsi = one.toObject().value(QLatin1String("imsi")).toString();
        const auto action = StateFile::toUInt(one.toObject().value(QLatin1String("action")));
        if (!isImsi(imsi) || !action)
            return std::nullopt;
        content.rules.append({imsi, *action});
    }
    return content;
}

std::optional<TelephonyFile::Content> toContent(const QJsonObject &object)
{
    const auto sims = toSims(object.value(QLatin1String("modems")));
    const auto dial = toFilter(object.value(QLatin1String("dial")));
    const auto incoming = toFilter(object.value(QLatin1String("incoming")));
    if (!sims || !dial || !incoming)
        return std::nullopt;
    return TelephonyFile::Content{*sims, *dial, *incoming};
}

QJsonObject toJson(const SimsByModem &sims)
{
    QJsonObject modems;
    for (auto it = sims.cbegin(); it != sims.cend(); ++it)
        modems.insert(it.key(),
                      QJsonObject{{QStringLiteral("imsi"), it->imsi},
                                  {QStringLiteral("locked"), it->locked}});
    return modems;
}

QJsonObject toJson(const CallFilter::Content &filter)
{
    QJsonArray rules;
    for (const FilterRule &rule : filter.rules)
        rules.append(QJsonObject{{QStringLiteral("imsi"), rule.imsi},
                                 {QStringLiteral("action"), static_cast<qint64>(rule.action)}});
    return {{QStringLiteral("defaultAction"), static_cast<qint64>(filter.defaultAction)},
            {QStringLiteral("rules"), rules}};
}

} // namespace

TelephonyFile::TelephonyFile(const QString &folder)
    : m_file(folder, QStringLiteral("telephony.json"), QStringLiteral("SIMs and filter rules"))
{
}

TelephonyFile::Content TelephonyFile::load() const
{
    Content content{{{QStringLiteral("/ril_0"), {}}, {QStringLiteral("/ril_1"), {}}}, {}, {}};
    m_file.load([&content](const QJsonObject &object) {
        const auto read = toContent(object);
        content = read.value_or(content);
        return read.has_value();
    });
    return content;
}

void TelephonyFile::save(const Content &content) const
{
    m_file.save({{QStringLiteral("modems"), toJson(content.sims)},
                 {QStringLiteral("dial"), toJson(content.dial)},
                 {QStringLiteral("incoming"), toJson(content.incoming)}});
}
