// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/SecretKeyring.h"

#include "MossbankCore/Library/SymmetricKey.h"

#include <cstring>
#include <utility>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;
using Status = Keychain::Status;

constexpr const char* kLabel = "Mossbank";
/// The secret is no text.
constexpr const char* kContentType = "application/octet-stream";

[[noreturn]] void refuse(SecretServiceKeychain::Failure failure, const QString& reason)
{
    throw SecretKeyring::Refusal{{failure, reason}};
}

using Value = std::unique_ptr<SecretValue, GlibFree<secret_value_unref>>;

/// What the service knows an item or a keyring by.
template <typename Proxy>
QByteArray pathOf(const GObjectOwned<Proxy>& proxy)
{
    return g_dbus_proxy_get_object_path(G_DBUS_PROXY(proxy.get()));
}

ObjectList lockedCollections(SecretService* service)
{
    const ObjectList all(secret_service_get_collections(service));
    GList* locked = nullptr;
    for (const GList* element = all.get(); element; element = element->next) {
        auto* const collection = static_cast<SecretCollection*>(element->data);
        if (secret_collection_get_locked(collection))
            locked = g_list_prepend(locked, g_object_ref(collection));
    }
    return ObjectList(locked);
}

} // namespace

Keychain::Status SecretKeyring::outOfPatience(const CallLimit& limit)
{
    if (limit.whom() == CallLimit::Whom::TheUser)
        return {SecretServiceKeychain::Locked, u"Nobody unlocked the keyring."_s};
    return {SecretServiceKeychain::Silent, u"The keyring did not answer in time."_s};
}

SecretKeyring::SecretKeyring(const SecretServiceKeychain::Patience& patience, CallLimit& limit,
                             const QString& service, const QString& account)
    : m_patience(patience)
    , m_limit(limit)
    , m_attributes(keyringAttributes(service, account))
{
    GErrorOwned error;
    m_bus.reset(g_bus_get_sync(G_BUS_TYPE_SESSION, m_limit.cancellable(), GErrorPlace(error)));
    if (m_limit.hasPassed())
        check(error);
    if (!m_bus)
        refuse(SecretServiceKeychain::Unavailable,
               u"There is no session bus, and so no keyring."_s);
    // Otherwise GLib ends the program when the bus goes away.
    g_dbus_connection_set_exit_on_close(m_bus.get(), FALSE);
    open();
}

void SecretKeyring::open()
{
    GErrorOwned error;
    // One of our own each time: the shared one answers from what it knew before.
    m_service.reset(secret_service_open_sync(SECRET_TYPE_SERVICE, nullptr,
                                             SECRET_SERVICE_OPEN_SESSION, m_limit.cancellable(),
                                             GErrorPlace(error)));
    check(error);
    // It may be none without an error, too.
    if (!m_service)
        refuse(SecretServiceKeychain::Unavailable, u"No keyring is running on this desktop."_s);
}

void SecretKeyring::check(const GErrorOwned& error) const
{
    if (m_limit.hasPassed() || g_error_matches(error.get(), G_DBUS_ERROR, G_DBUS_ERROR_NO_REPLY) ||
        g_error_matches(error.get(), G_IO_ERROR, G_IO_ERROR_TIMED_OUT))
        throw Refusal{outOfPatience(m_limit)};
    if (!error)
        return;
    if (g_error_matches(error.get(), SECRET_ERROR, SECRET_ERROR_IS_LOCKED))
        refuse(SecretServiceKeychain::Locked, u"The keyring is locked."_s);
    const auto isOf = [&error](int code) {
        return g_error_matches(error.get(), G_DBUS_ERROR, code);
    };
    if (isOf(G_DBUS_ERROR_SERVICE_UNKNOWN) || isOf(G_DBUS_ERROR_NAME_HAS_NO_OWNER) ||
        isOf(G_DBUS_ERROR_DISCONNECTED) ||
        g_error_matches(error.get(), G_IO_ERROR, G_IO_ERROR_CLOSED))
        refuse(SecretServiceKeychain::Unavailable, u"No keyring is running on this desktop."_s);
    g_dbus_error_strip_remote_error(error.get());
    refuse(SecretServiceKeychain::Refused,
           u"The keyring says: %1"_s.arg(QString::fromUtf8(error->message)));
}

SecretKeyring::Items SecretKeyring::search()
{
    GErrorOwned error;
    // Without asking for anything to be unlocked: that hides what stays locked.
    const ObjectList list(secret_service_search_sync(m_service.get(), &kKeyringSchema,
                                                     m_attributes.get(), SECRET_SEARCH_ALL,
                                                     m_limit.cancellable(), GErrorPlace(error)));
    check(error);
    Items found;
    for (const GList* element = list.get(); element; element = element->next)
        found.push_back(shared(static_cast<SecretItem*>(element->data)));
    return found;
}

bool SecretKeyring::unlockEverything()
{
    const auto locked = [this] {
        GErrorOwned error;
        secret_service_load_collections_sync(m_service.get(), m_limit.cancellable(),
                                             GErrorPlace(error));
        check(error);
        return lockedCollections(m_service.get());
    };
    const ObjectList before = locked();
    if (!before)
        return false;
    unlock(before.get());
    if (locked()) {
        refuse(SecretServiceKeychain::Locked,
               u"A keyring is locked, and there may be an encryption key in it."_s);
    }
    return true;
}

SecretKeyring::Item SecretKeyring::item()
{
    Items found = search();
    // What lies in a locked keyring is not told by every service.
    if (found.empty() && unlockEverything())
        found = search();
    if (found.size() == 1 && secret_item_get_locked(found.front().get())) {
        GList only = {found.front().get(), nullptr, nullptr};
        unlock(&only);
        found = search();
        // The key was there a moment ago: where it is not told now, it is no less there.
        if (found.empty() || secret_item_get_locked(found.front().get()))
            refuse(SecretServiceKeychain::Locked, u"The keyring is locked."_s);
    }
    if (found.size() > 1) {
        refuse(SecretServiceKeychain::Ambiguous,
               u"There are several encryption keys in the keyring."_s);
    }
    return found.empty() ? Item() : std::move(found.front());
}

void SecretKeyring::unlock(GList* objects)
{
    // The user is asked, and may be looking for the password.
    m_limit.beginAnew(m_patience.user, CallLimit::Whom::TheUser);
    GErrorOwned error;
    secret_service_unlock_sync(m_service.get(), objects, m_limit.cancellable(), nullptr,
                               GErrorPlace(error));
    if (m_limit.hasPassed())
        throw Refusal{outOfPatience(m_limit)};
    // A refusal or a prompt that cannot be shown is seen by what is still locked.
    m_limit.beginAnew(m_patience.service, CallLimit::Whom::TheCalled);
    open();
}

QByteArray SecretKeyring::secret(SecretItem* item)
{
    GErrorOwned error;
    secret_item_load_secret_sync(item, m_limit.cancellable(), GErrorPlace(error));
    check(error);
    const Value value(secret_item_get_secret(item));
    if (!value)
        refuse(SecretServiceKeychain::Refused, u"The keyring does not tell the key."_s);
    gsize size = 0;
    const gchar* const bytes = secret_value_get(value.get(), &size);
    return QByteArray(bytes, static_cast<qsizetype>(size));
}

SecretKeyring::Collection SecretKeyring::collection(const char* alias) const
{
    GErrorOwned error;
    Collection collection(secret_collection_for_alias_sync(
        m_service.get(), alias, SECRET_COLLECTION_NONE, m_limit.cancellable(), GErrorPlace(error)));
    check(error);
    return collection;
}

SecretKeyring::Item SecretKeyring::create(QByteArrayView secret)
{
    const Collection collection = this->collection(SECRET_COLLECTION_DEFAULT);
    const Collection untilLogout = this->collection(SECRET_COLLECTION_SESSION);
    // A key that is forgotten with the session would leave pictures that nothing opens.
    if (!collection || (untilLogout && pathOf(collection) == pathOf(untilLogout))) {
        refuse(SecretServiceKeychain::Unavailable,
               u"There is no keyring yet; your desktop's program for passwords can make one."_s);
    }
    GErrorOwned error;
    const Value value(
        secret_value_new(secret.data(), static_cast<gssize>(secret.size()), kContentType));
    // Not in the place of another: whose that is, is not known.
    Item item(secret_item_create_sync(collection.get(), &kKeyringSchema, m_attributes.get(), kLabel,
                                      value.get(), SECRET_ITEM_CREATE_NONE, m_limit.cancellable(),
                                      GErrorPlace(error)));
    check(error);
    if (!item)
        refuse(SecretServiceKeychain::Refused, u"The keyring took no key."_s);
    return item;
}

void SecretKeyring::remove(SecretItem* item)
{
    // With a limit of its own: what has used the time up must not leave a key behind.
    const CallLimit limit(m_patience.service);
    // When this fails, it is there, and the next look says so.
    secret_item_delete_sync(item, limit.cancellable(), nullptr);
}

Keychain::Status SecretKeyring::add(QByteArrayView given)
{
    const Item made = create(given);
    try {
        const Items found = search();
        if (found.size() != 1 || pathOf(found.front()) != pathOf(made)) {
            // Somebody who takes no turns. Theirs may be in use already; ours is not.
            remove(made.get());
            return {Status::kDuplicate};
        }
        QByteArray kept = secret(found.front().get());
        const bool isKept = kept == given;
        wipe(kept);
        if (!isKept) {
            refuse(SecretServiceKeychain::Refused,
                   u"The keyring does not keep a key as it was given."_s);
        }
    } catch (const Refusal&) {
        // A key that is not known to be kept is not used.
        remove(made.get());
        throw;
    }
    return {};
}

} // namespace mossbank
