// SPDX-License-Identifier: MIT
#include "manager/cli/buyops.h"

#include "faces/vendorpage.h"
#include "manager/cli/arguments.h"
#include "manager/cli/libraryops.h"
#include "manager/cli/tally.h"
#include "manager/exchange/candidates.h"
#include "manager/exchange/commandtext.h"
#include "manager/exchange/lookup.h"
#include "system/displays.h"
#include "system/translation.h"

#include <gio/gio.h>

#include <memory>
#include <set>

namespace manager {

namespace {

// More would bury the user in pages.
constexpr std::size_t mostPages = 5;
constexpr const char* usualSearch = "https://duckduckgo.com/?q=%1";
constexpr int patienceMilliseconds = 5000;

struct Freer {
    void operator()(gpointer memory) const { g_free(memory); }
    void operator()(GUri* uri) const { g_uri_unref(uri); }
    void operator()(GKeyFile* file) const { g_key_file_unref(file); }
    void operator()(GError* error) const { g_error_free(error); }
    void operator()(GVariant* value) const { g_variant_unref(value); }
    void operator()(GDBusConnection* connection) const { g_object_unref(connection); }
    void operator()(GAppLaunchContext* context) const { g_object_unref(context); }
};
template <class Object>
using Held = std::unique_ptr<Object, Freer>;

constexpr const char* place = "%1"; ///< of what is searched for

/// With the name of the file that tells it.
std::pair<std::string, std::string> searchPattern() {
    const std::string file = std::string(g_get_user_config_dir()) + "/glyphora/glyphora.conf";
    const Held<GKeyFile> settings(g_key_file_new());
    GError* failed = nullptr;
    if (g_key_file_load_from_file(settings.get(), file.c_str(), G_KEY_FILE_NONE, &failed) == 0) {
        const Held<GError> error(failed);
        if (g_error_matches(failed, G_FILE_ERROR, G_FILE_ERROR_NOENT) == 0) {
            throw Error(file + ": " + failed->message);
        }
    }
    const Held<char> value(g_key_file_get_string(settings.get(), "buy", "search", nullptr));
    return {value == nullptr ? usualSearch : value.get(), file};
}

std::string searchPage(const CommandFont& font) {
    std::string words = font.familyName.value_or("");
    words = words.empty() ? font.postScriptName.value_or("")
                          : words + " " + font.styleName.value_or("");
    const Held<char> escaped(g_uri_escape_string((words + " font").c_str(), nullptr, FALSE));
    const auto [pattern, file] = searchPattern();
    std::string page = pattern;
    if (const std::size_t at = page.find(place); at != std::string::npos) {
        page = webAddress(page.replace(at, 2, escaped.get()));
        if (!page.empty()) {
            return page;
        }
    }
    throw Error(file + ", [buy] search: '" + pattern + "' is not an address of the web with " +
                place + " for what is searched for");
}

/// Told by the face itself, or another of its family.
std::string makersPage(Library& library, const CommandFont& font) {
    FamilyFaces families(library);
    LookUp lookUp(families, wantedOf(font));
    for (const faces::Match& match : lookUp.run()) {
        const FaceMatch& face = lookUp.face(match);
        const auto details = face.away ? std::nullopt : library.face(face.id);
        std::string page = details ? webAddress(faces::vendorPage(
                                         joinPath(face.folder, face.fileName), details->face.index))
                                   : "";
        if (!page.empty()) {
            return page;
        }
    }
    return {};
}

/// The desktop's own way, which holds also where this process may not use the net.
bool openByPortal(const std::string& page) {
    const Held<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
    const Held<GVariant> answer(
        bus == nullptr
            ? nullptr
            : g_dbus_connection_call_sync(
                  bus.get(), "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop",
                  "org.freedesktop.portal.OpenURI", "OpenURI",
                  g_variant_new("(ssa{sv})", "", page.c_str(), nullptr), nullptr,
                  G_DBUS_CALL_FLAGS_NONE, patienceMilliseconds, nullptr, nullptr));
    return answer != nullptr;
}

void open(const std::string& page) {
    if (openByPortal(page)) {
        return;
    }
    const Held<GAppLaunchContext> context(g_app_launch_context_new());
    if (const auto language = sys::userLanguage()) {
        g_app_launch_context_setenv(context.get(), "LANGUAGE", language->c_str());
    } else {
        g_app_launch_context_unsetenv(context.get(), "LANGUAGE");
    }
    GError* failed = nullptr;
    if (g_app_info_launch_default_for_uri(page.c_str(), context.get(), &failed) == 0) {
        const Held<GError> error(failed);
        throw Error(page + ": cannot be opened: " + failed->message);
    }
}

} // namespace

std::string webAddress(const std::string& text) {
    const Held<GUri> uri(g_uri_parse(text.c_str(), G_URI_FLAGS_NONE, nullptr));
    if (uri == nullptr) {
        return {};
    }
    const std::string scheme = g_uri_get_scheme(uri.get()); // in small letters
    const char* const host = g_uri_get_host(uri.get());
    return (scheme == "http" || scheme == "https") && host != nullptr && *host != '\0' ? text : "";
}

int buyCommand(const Places& places, const std::vector<std::string>& names, bool asked, bool json) {
    std::vector<CommandFont> fonts;
    if (asked) {
        fonts = parseCommand(readInput()).fonts;
    }
    for (const std::string& name : names) {
        fonts.emplace_back().postScriptName = name;
    }
    if (!sys::namesDisplay()) {
        throw Error("there is no display to open pages on");
    }
    Tally tally(json, "opened");
    const auto library = openKnown(places); // without a page it is searched for
    std::set<std::string> opened;
    for (const CommandFont& font : fonts) {
        const std::string name = font.postScriptName.value_or(font.familyName.value_or(""));
        try {
            const std::string makers = makersPage(*library, font);
            const std::string page = makers.empty() ? searchPage(font) : makers;
            if (opened.contains(page)) {
                continue;
            }
            if (opened.size() == mostPages) {
                tally.fail(name + ": no more than " + std::to_string(mostPages) +
                           " pages are opened at a time");
                break;
            }
            open(page);
            opened.insert(page);
            tally.add(std::string("opened ").append(page).append(" for ").append(name),
                      {{"name", name}, {"page", page}});
        } catch (const Error& error) {
            tally.fail(error.what());
        }
    }
    return tally.finish();
}

} // namespace manager
