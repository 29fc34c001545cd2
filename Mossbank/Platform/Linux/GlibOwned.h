// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gio/gio.h>

#include <memory>

namespace mossbank {

/// Frees with a function of GLib's.
template <auto free>
struct GlibFree {
    template <typename T>
    void operator()(T* pointer) const
    {
        free(pointer);
    }
};

/// A reference to a GObject of our own.
template <typename T>
using GObjectOwned = std::unique_ptr<T, GlibFree<g_object_unref>>;
using GVariantOwned = std::unique_ptr<GVariant, GlibFree<g_variant_unref>>;
using GErrorOwned = std::unique_ptr<GError, GlibFree<g_error_free>>;

/// Another reference to an object that somebody else has.
template <typename T>
GObjectOwned<T> shared(T* object)
{
    return GObjectOwned<T>(static_cast<T*>(g_object_ref(object)));
}

/// Where a call puts its error, owned from then on.
class GErrorPlace {
public:
    explicit GErrorPlace(GErrorOwned& owner)
        : m_owner(owner)
    {
    }
    ~GErrorPlace() { m_owner.reset(m_error); }
    GErrorPlace(const GErrorPlace&) = delete;
    GErrorPlace& operator=(const GErrorPlace&) = delete;

    operator GError**() { return &m_error; } // NOLINT(google-explicit-constructor)

private:
    GErrorOwned& m_owner;
    GError* m_error = nullptr;
};

} // namespace mossbank
