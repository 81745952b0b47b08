// SPDX-License-Identifier: MIT
// The manager's side of XSETTINGS, as the desktops have agreed on it: a window owns the selection
// _XSETTINGS_S<screen>, and its property _XSETTINGS_SETTINGS holds the settings.
#include "manager/cli/fonttimestamp.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <string_view>
#include <xcb/xcb.h>

namespace manager {

namespace {

constexpr std::string_view settingName = "Fontconfig/Timestamp";
/// A property by which one run of this program knows another's window.
constexpr const char* ownMark = "_GLYPHORA_FONT_TIMESTAMP";

struct Freer {
    void operator()(void* reply) const { std::free(reply); } // as libxcb has it
};
template <class Reply>
using Owned = std::unique_ptr<Reply, Freer>;

/// One setting in the byte order of this machine.
std::string settingsText(std::uint32_t serial, std::uint32_t value) {
    std::string text;
    const auto add = [&](auto number) {
        text.append(reinterpret_cast<const char*>(&number), sizeof number);
    };
    const std::uint16_t probe = 1;
    const bool littleEndian = *reinterpret_cast<const std::uint8_t*>(&probe) == 1;
    add(std::uint32_t{0});
    text[0] = littleEndian ? 0 : 1;
    add(serial);
    add(std::uint32_t{1}); // settings
    add(std::uint8_t{0});  // a whole number
    add(std::uint8_t{0});
    add(static_cast<std::uint16_t>(settingName.size()));
    static_assert(settingName.size() % 4 == 0, "names are padded to a multiple of 4");
    text += settingName;
    add(serial);
    add(value);
    return text;
}

} // namespace

void FontTimestamp::Closer::operator()(xcb_connection_t* connection) const {
    xcb_disconnect(connection);
}

FontTimestamp::FontTimestamp() {
    if (std::getenv("DISPLAY") == nullptr) {
        return;
    }
    int screenNumber = 0;
    connection_.reset(xcb_connect(nullptr, &screenNumber));
    xcb_connection_t* display = connection_.get();
    if (xcb_connection_has_error(display) != 0) {
        return;
    }
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(display));
    for (int i = 0; i < screenNumber && screens.rem > 0; ++i) {
        xcb_screen_next(&screens);
    }
    const std::uint32_t selection = atom(("_XSETTINGS_S" + std::to_string(screenNumber)).c_str());
    const Owned<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        display, xcb_get_selection_owner(display, selection), nullptr));
    if (screens.rem == 0 || !owner || isAnothers(owner->owner)) {
        return;
    }
    const xcb_window_t root = screens.data->root;
    window_ = xcb_generate_id(display);
    settings_ = atom("_XSETTINGS_SETTINGS");
    xcb_create_window(display, XCB_COPY_FROM_PARENT, window_, root, -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_change_property(display, XCB_PROP_MODE_REPLACE, window_, atom(ownMark), XCB_ATOM_INTEGER, 8,
                        0, nullptr);
    change();
    xcb_set_selection_owner(display, window_, selection, XCB_CURRENT_TIME);
    xcb_client_message_event_t news{};
    news.response_type = XCB_CLIENT_MESSAGE;
    news.format = 32;
    news.window = root;
    news.type = atom("MANAGER");
    news.data.data32[0] = XCB_CURRENT_TIME;
    news.data.data32[1] = selection;
    news.data.data32[2] = window_;
    std::array<char, 32> bytes{};
    static_assert(sizeof news == sizeof bytes);
    std::memcpy(bytes.data(), &news, sizeof news);
    xcb_send_event(display, 0, root, XCB_EVENT_MASK_STRUCTURE_NOTIFY, bytes.data());
    xcb_flush(display);
}

FontTimestamp::~FontTimestamp() = default;

void FontTimestamp::change() {
    if (window_ == 0) {
        return;
    }
    const auto now = static_cast<std::uint32_t>(std::time(nullptr));
    // Also for two changes in a second.
    const std::string text = settingsText(serial_, now + serial_);
    ++serial_;
    xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, window_, settings_, settings_, 8,
                        static_cast<std::uint32_t>(text.size()), text.data());
    xcb_flush(connection_.get());
}

std::uint32_t FontTimestamp::atom(const char* name) const {
    const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        connection_.get(),
        xcb_intern_atom(connection_.get(), 0, static_cast<std::uint16_t>(std::strlen(name)), name),
        nullptr));
    return reply ? reply->atom : 0;
}

bool FontTimestamp::isAnothers(std::uint32_t owner) const {
    if (owner == 0) {
        return false;
    }
    const Owned<xcb_get_property_reply_t> mark(xcb_get_property_reply(
        connection_.get(),
        xcb_get_property(connection_.get(), 0, owner, atom(ownMark), XCB_ATOM_INTEGER, 0, 0),
        nullptr));
    return !mark || mark->type == 0;
}

} // namespace manager
