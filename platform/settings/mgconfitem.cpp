// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "mgconfitem.h"

#include <QStringList>

#include <dconf.h>

#include <cstring>

/// The connection to dconf. Items share it because opening one costs as much as a hundred reads.
class MGConfItem::Store
{
public:
    static std::shared_ptr<Store> shared()
    {
        static std::weak_ptr<Store> current;
        std::shared_ptr<Store> store = current.lock();
        if (!store) {
            store = std::make_shared<Store>();
            current = store;
        }
        return store;
    }

    Store() = default;
    ~Store() { g_object_unref(m_client); }
    Q_DISABLE_COPY(Store)

    GVariant *read(const QByteArray &key) const
    {
        return dconf_client_read(m_client, key.constData());
    }

private:
    DConfClient *const m_client = dconf_client_new();
};

namespace {

/// Returns \a text as a key, or nothing if it is not a key: dconf would abort the process.
QByteArray dconfKey(const QString &text)
{
    const QByteArray key = text.toUtf8();
    return !key.contains('\0') && dconf_is_key(key.constData(), nullptr) ? key : QByteArray();
}

/// Reads the data of the list directly: in normal form it is a sequence of NUL-terminated strings.
/// To get them from GVariant one by one takes a time that grows with the square of their number.
QStringList toStringList(GVariant *list)
{
    const std::unique_ptr<GVariant, decltype(&g_variant_unref)> strings(
        g_variant_get_normal_form(list), g_variant_unref);
    QStringList result;
    const auto size = static_cast<int>(g_variant_n_children(strings.get()));
    const auto *string = static_cast<const char *>(g_variant_get_data(strings.get()));
    result.reserve(size);
    for (int i = 0; i < size; ++i) {
        result.append(QString::fromUtf8(string));
        string += std::strlen(string) + 1;
    }
    return result;
}

QVariant toQVariant(GVariant *value)
{
    switch (g_variant_classify(value)) {
    case G_VARIANT_CLASS_STRING:
        return QString::fromUtf8(g_variant_get_string(value, nullptr));
    case G_VARIANT_CLASS_BOOLEAN:
        return static_cast<bool>(g_variant_get_boolean(value));
    case G_VARIANT_CLASS_BYTE:
        return uint{g_variant_get_byte(value)};
    case G_VARIANT_CLASS_INT16:
        return int{g_variant_get_int16(value)};
    case G_VARIANT_CLASS_UINT16:
        return uint{g_variant_get_uint16(value)};
    case G_VARIANT_CLASS_INT32:
        return int{g_variant_get_int32(value)};
    case G_VARIANT_CLASS_UINT32:
        return uint{g_variant_get_uint32(value)};
    case G_VARIANT_CLASS_INT64:
        return qlonglong{g_variant_get_int64(value)};
    case G_VARIANT_CLASS_UINT64:
        return qulonglong{g_variant_get_uint64(value)};
    case G_VARIANT_CLASS_DOUBLE:
        return g_variant_get_double(value);
    case G_VARIANT_CLASS_ARRAY:
        if (g_variant_is_of_type(value, G_VARIANT_TYPE_STRING_ARRAY))
            return toStringList(value);
        return {};
    default:
        return {};
    }
}

} // namespace

MGConfItem::MGConfItem(const QString &key)
    : m_key(dconfKey(key))
    , m_store(Store::shared())
{
}

QVariant MGConfItem::value() const
{
    if (m_key.isEmpty())
        return {};

    const std::unique_ptr<GVariant, decltype(&g_variant_unref)> value(m_store->read(m_key),
                                                                      g_variant_unref);
    return value ? toQVariant(value.get()) : QVariant();
}
