#ifndef CONTENT_GLIB_OWNER_H
#define CONTENT_GLIB_OWNER_H

#include <gio/gio.h>

#include <memory>

// What GLib hands out, released at the end of a scope.

template <auto Release>
struct GlibRelease {
    template <typename T>
    void operator()(T *value) const {
        Release(value);
    }
};

template <typename T>
using GObjectOwner = std::unique_ptr<T, GlibRelease<g_object_unref>>;
using GDirOwner = std::unique_ptr<GDir, GlibRelease<g_dir_close>>;
using GErrorOwner = std::unique_ptr<GError, GlibRelease<g_error_free>>;
using GRegexOwner = std::unique_ptr<GRegex, GlibRelease<g_regex_unref>>;
using GTextOwner = std::unique_ptr<char, GlibRelease<g_free>>;

#endif
