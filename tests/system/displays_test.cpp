// SPDX-License-Identifier: MIT
// Displays that are named: dead, deaf and alive.
#include "system/displays.h"

#include "system/descriptor.h"
#include "tests/support/temporaryfolder.h"

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <string>
#include <thread>

namespace sys::test {
namespace {

/// A socket that takes connections, and says something to whoever greets it if told so.
class Server {
public:
    explicit Server(const std::string& name) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::copy(name.begin(), name.end(), std::begin(address.sun_path));
        EXPECT_EQ(bind(socket_.get(), reinterpret_cast<const sockaddr*>(&address),
                       static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size())),
                  0);
        EXPECT_EQ(listen(socket_.get(), 2), 0);
    }
    void answer() const {
        const sys::Descriptor guest(accept(socket_.get(), nullptr, nullptr));
        char greeting[12];
        EXPECT_EQ(recv(guest.get(), greeting, sizeof greeting, MSG_WAITALL), 12);
        send(guest.get(), "welcome", 7, MSG_NOSIGNAL); // it may have gone
    }

private:
    sys::Descriptor socket_{socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)};
};

TEST(ADisplay, IsLeftOutUnlessItAnswers) {
    const testsupport::TemporaryFolder folder;
    const testsupport::Variable runtime("XDG_RUNTIME_DIR", folder.path().string());
    const testsupport::Variable x("DISPLAY", "");
    const testsupport::Variable wayland("WAYLAND_DISPLAY", "");
    const testsupport::Variable chosen("QT_QPA_PLATFORM", "");
    EXPECT_EQ(livingPlatforms(1), "");

    const std::string number = std::to_string(100'000 + getpid());
    const std::tuple<const char*, std::string, std::string, std::string> kinds[] = {
        {"DISPLAY", ":" + number + ".0", std::string(1, '\0') + "/tmp/.X11-unix/X" + number, "xcb"},
        {"WAYLAND_DISPLAY", "wayland-7", (folder / "wayland-7").string(), "wayland"},
    };
    for (const auto& [name, value, socketName, platform] : kinds) {
        SCOPED_TRACE(name);
        const testsupport::Variable display(name, value);
        EXPECT_EQ(livingPlatforms(10'000), "") << "nobody is there";

        const Server server(socketName);
        EXPECT_EQ(livingPlatforms(1), "") << "nobody answers";
        {
            const testsupport::Variable both("QT_QPA_PLATFORM", platform + "-egl;minimal");
            EXPECT_EQ(livingPlatforms(1), "minimal;offscreen");
        }

        std::thread answering([&] {
            server.answer(); // the two that were not patient
            server.answer();
            server.answer();
        });
        EXPECT_EQ(livingPlatforms(10'000), platform + ";offscreen");
        answering.join();
        EXPECT_EQ(std::getenv(name), value) << "others read the environment";
    }
    const testsupport::Variable elsewhere("DISPLAY", "elsewhere.invalid:0");
    EXPECT_EQ(livingPlatforms(1), "xcb;offscreen");
    const testsupport::Variable asked("QT_QPA_PLATFORM", "offscreen");
    EXPECT_EQ(livingPlatforms(1), "offscreen");
}

} // namespace
} // namespace sys::test
