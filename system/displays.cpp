// SPDX-License-Identifier: MIT
// Greeting a display server as its clients do.
#include "system/displays.h"

#include "system/descriptor.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sstream>
#include <string>
#include <string_view>

namespace sys {

namespace {

using namespace std::string_view_literals;

constexpr bool isLittle = std::endian::native == std::endian::little;

/// The byte order, version 11.0, no authorization: accepted or refused, the server answers.
constexpr std::string_view greetingX =
    isLittle ? "l\0\x0B\0\0\0\0\0\0\0\0\0"sv : "B\0\0\x0B\0\0\0\0\0\0\0\0"sv;

/// What a variable of the environment says, or nothing.
std::string_view valueOf(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr ? value : "";
}

/// A name that begins with a zero byte is one of no file.
bool answers(std::string_view socketName, std::string_view greeting, int milliseconds) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (socketName.size() >= sizeof address.sun_path) {
        return false;
    }
    std::copy(socketName.begin(), socketName.end(), std::begin(address.sun_path));
    const bool isFile = socketName.front() != '\0';
    const auto size = offsetof(sockaddr_un, sun_path) + socketName.size() + (isFile ? 1 : 0);
    const sys::Descriptor connection(
        socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (connect(connection.get(), reinterpret_cast<const sockaddr*>(&address),
                static_cast<socklen_t>(size)) != 0 ||
        send(connection.get(), greeting.data(), greeting.size(), MSG_NOSIGNAL) !=
            static_cast<ssize_t>(greeting.size())) {
        return false;
    }
    pollfd answer{connection.get(), POLLIN, 0};
    int count = -1;
    do {
        count = poll(&answer, 1, milliseconds);
    } while (count < 0 && errno == EINTR);
    return count > 0;
}

/// ":0", "unix:0.1"
bool isDeadX(std::string_view display, int milliseconds) {
    const std::size_t colon = display.rfind(':');
    if (colon == std::string_view::npos || (colon != 0 && display.substr(0, colon) != "unix")) {
        return false;
    }
    const std::string_view screen = display.substr(colon + 1);
    const std::string name = "/tmp/.X11-unix/X" + std::string(screen.substr(0, screen.find('.')));
    return !answers('\0' + name, greetingX, milliseconds) &&
           !answers(name, greetingX, milliseconds);
}

/// It has one object, the display, which is asked to say when it has got so far.
bool isDeadWayland(std::string_view display, int milliseconds) {
    constexpr std::uint32_t object = 1;
    constexpr std::uint32_t size = 12;
    constexpr std::uint32_t newObject = 2;
    const std::array<std::uint32_t, 3> request{object, size << 16U, newObject};
    std::array<char, size> greeting{};
    std::memcpy(greeting.data(), request.data(), size);
    const std::filesystem::path name = std::filesystem::path(valueOf("XDG_RUNTIME_DIR")) / display;
    return !answers(name.native(), {greeting.data(), greeting.size()}, milliseconds);
}

} // namespace

bool namesDisplay() {
    return !valueOf("WAYLAND_DISPLAY").empty() || !valueOf("DISPLAY").empty() ||
           !valueOf("QT_QPA_PLATFORM").empty();
}

std::string livingPlatforms(int milliseconds) {
    const std::string_view x = valueOf("DISPLAY");
    const std::string_view wayland = valueOf("WAYLAND_DISPLAY");
    std::string named(valueOf("QT_QPA_PLATFORM"));
    if (named.empty()) {
        named = wayland.empty() ? "" : "wayland;";
        named += x.empty() ? "" : "xcb";
    }
    const bool xIsDead = !x.empty() && isDeadX(x, milliseconds);
    const bool waylandIsDead = !wayland.empty() && isDeadWayland(wayland, milliseconds);

    std::string platforms;
    std::istringstream list(named);
    for (std::string platform; std::getline(list, platform, ';');) {
        const bool isDead = (xIsDead && platform.starts_with("xcb")) ||
                            (waylandIsDead && platform.starts_with("wayland"));
        if (!platform.empty() && !isDead) {
            platforms += platform + ';';
        }
    }
    if (platforms.empty()) {
        return {};
    }
    return platforms.find(offscreenPlatform) != std::string::npos
               ? platforms.substr(0, platforms.size() - 1)
               : platforms + offscreenPlatform;
}

} // namespace sys
