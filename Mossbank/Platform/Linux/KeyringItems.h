// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/GlibOwned.h"

#include <QString>

#include <libsecret/secret.h>

#include <memory>

namespace mossbank {

/// What is known of items is found by these two attributes, and by nothing else that somebody may
/// add.
inline const SecretSchema kKeyringSchema = {
    "org.freedesktop.Secret.Generic",
    SECRET_SCHEMA_DONT_MATCH_NAME,
    {{"service", SECRET_SCHEMA_ATTRIBUTE_STRING},
     {"account", SECRET_SCHEMA_ATTRIBUTE_STRING},
     {nullptr, SECRET_SCHEMA_ATTRIBUTE_STRING}},
    0,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
};

using KeyringAttributes = std::unique_ptr<GHashTable, GlibFree<g_hash_table_unref>>;

inline KeyringAttributes keyringAttributes(const QString& service, const QString& account)
{
    return KeyringAttributes(secret_attributes_build(&kKeyringSchema, "service",
                                                     service.toUtf8().constData(), "account",
                                                     account.toUtf8().constData(), nullptr));
}

struct FreeObjects {
    void operator()(GList* list) const { g_list_free_full(list, g_object_unref); }
};
/// A list with a reference to each of its objects.
using ObjectList = std::unique_ptr<GList, FreeObjects>;

} // namespace mossbank
