// SPDX-License-Identifier: MIT
// Displays that are named: dead, deaf and alive.
#include "host/qt/displays.h"

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

namespace host::test {
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
        EXPECT_EQ(listen(socket_.get(), 1), 0);
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

TEST(ADisplay, IsForgottenUnlessItAnswers) {
    const testsupport::TemporaryFolder folder;
    const testsupport::Variable runtime("XDG_RUNTIME_DIR", folder.path().string());
    const std::string number = std::to_string(100'000 + getpid());
    const std::tuple<const char*, std::string, std::string> kinds[] = {
        {"DISPLAY", ":" + number + ".0", std::string(1, '\0') + "/tmp/.X11-unix/X" + number},
        {"WAYLAND_DISPLAY", "wayland-7", (folder / "wayland-7").string()},
    };
    for (const auto& [name, value, socketName] : kinds) {
        SCOPED_TRACE(name);
        const testsupport::Variable display(name, value);
        forgetDeadDisplays(10'000);
        EXPECT_EQ(std::getenv(name), nullptr) << "nobody is there";

        const Server server(socketName);
        setenv(name, value.c_str(), 1);
        forgetDeadDisplays(1);
        EXPECT_EQ(std::getenv(name), nullptr) << "nobody answers";

        setenv(name, value.c_str(), 1);
        std::thread answering([&] {
            server.answer(); // the one that was not patient
            server.answer();
        });
        forgetDeadDisplays(10'000);
        answering.join();
        EXPECT_STREQ(std::getenv(name), value.c_str());
    }
    const testsupport::Variable elsewhere("DISPLAY", "elsewhere.invalid:0");
    forgetDeadDisplays(1);
    EXPECT_STREQ(std::getenv("DISPLAY"), "elsewhere.invalid:0");
}

} // namespace
} // namespace host::test
