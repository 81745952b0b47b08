// SPDX-License-Identifier: MIT
// Where there is no session bus: a private one that ends with the program that started it.
#include "tests/platform/events.h"
#include "tests/platform/peerprocess.h"
#include "tests/support/privatebus/privatebus.h"
#include "tests/support/temporaryfolder.h"

#include <gio/gio.h>
#include <gmock/gmock.h>

#include <ostream>
#include <poll.h>

namespace {

using platformtest::PeerProcess;
using platformtest::RawConnection;
using testing::HasSubstr;
using testsupport::TemporaryFolder;
using testsupport::Variable;

struct Surroundings {
    const char* name;
    std::optional<std::string> busAddress;
    std::string how;
    std::string message;
};

class ASessionWithoutABus : public testing::TestWithParam<Surroundings> {
protected:
    /// Waits until the other side of the connection is gone.
    static void awaitHangUp(RawConnection& connection) {
        auto* stream = g_dbus_connection_get_stream(connection.get());
        GSocket* socket = g_socket_connection_get_socket(G_SOCKET_CONNECTION(stream));
        pollfd watched{g_socket_get_fd(socket), POLLRDHUP, 0};
        while (g_dbus_connection_is_closed(connection.get()) == 0 && poll(&watched, 1, -1) != 1) {
        }
    }
    TemporaryFolder folder;
    Variable address{"DBUS_SESSION_BUS_ADDRESS", GetParam().busAddress};
    Variable runtime{"XDG_RUNTIME_DIR", (folder / "").string()};
};

TEST_P(ASessionWithoutABus, HasOneForAsLongAsTheProgramLives) {
    for (const bool killed : {false, true}) {
        PeerProcess peer({GetParam().how, "PEER"}, PeerProcess::Errors::Captured);
        ASSERT_EQ(peer.readLine(), "0");
        const std::string said = peer.readErrorLine();
        const std::string beforeAddress =
            GetParam().message + "; started a private one for this process: ";
        ASSERT_THAT(said, HasSubstr(beforeAddress));
        RawConnection visitor(said.substr(said.find(beforeAddress) + beforeAddress.size()));
        const std::string name =
            "org.glyphora.AppleEvents1.PEER.instance" + std::to_string(peer.processID());
        EXPECT_EQ(visitor.errorOf(name, "/", nullptr, "Handle", nullptr)
                      .find("org.freedesktop.DBus.Error.ServiceUnknown"),
                  std::string::npos)
            << "the program is on that bus";
        if (killed) {
            peer.kill();
        } else {
            EXPECT_EQ(peer.wait(), 0);
        }
        awaitHangUp(visitor);
        EXPECT_EQ(peer.readErrorLine(), "") << "one line and no more";
    }
}

INSTANTIATE_TEST_SUITE_P(
    When, ASessionWithoutABus,
    testing::Values(Surroundings{"Unset", std::nullopt, "serve-one", "there is no session bus"},
                    Surroundings{"Empty", "", "serve-one", "there is no session bus"},
                    Surroundings{"Gone", "unix:path=/nonexistent/bus", "serve-many",
                                 "the session bus at unix:path=/nonexistent/bus cannot be reached "
                                 "(Could not connect: No such file or directory)"}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST(ASessionWithABusInItsRuntimeFolder, NeedsNoAddress) {
    const TemporaryFolder folder;
    const testsupport::PrivateBus bus("unix:path=" + (folder / "bus").string());
    const Variable address("DBUS_SESSION_BUS_ADDRESS", std::nullopt);
    const Variable runtime("XDG_RUNTIME_DIR", (folder / "").string());
    PeerProcess peer({"serve-one", "PEER"}, PeerProcess::Errors::Captured);
    ASSERT_EQ(peer.readLine(), "0");
    EXPECT_EQ(platformtest::TestEvent("PEER", "who ").ask(), peer.processID());
}

TEST(ASessionWithoutADaemon, HasNoServices) {
    const Variable address("DBUS_SESSION_BUS_ADDRESS", std::nullopt);
    const Variable runtime("XDG_RUNTIME_DIR", std::nullopt);
    const Variable programs("PATH", "/nonexistent");
    PeerProcess peer({"serve-one", "PEER"}, PeerProcess::Errors::Captured);
    EXPECT_EQ(peer.readLine(), std::to_string(connectionInvalid));
    EXPECT_THAT(peer.readErrorLine(),
                HasSubstr("there is no session bus, and no private bus could be started: "
                          "dbus-daemon is not installed"));
}

} // namespace
