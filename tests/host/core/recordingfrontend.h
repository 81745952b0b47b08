// SPDX-License-Identifier: MIT
// A frontend that keeps what it is told, and a plug-in within the test that makes suite calls.
#pragma once

#include "host/core/core.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace host::test {

class RecordingFrontend : public Frontend {
public:
    void showAlert(const Alert& alert) override { alerts.push_back(alert); }
    void reportError(std::string_view text) override { errors.emplace_back(text); }
    void reportMisbehaviour(std::string_view plugin, std::string_view what) override {
        misbehaviour.push_back(std::string(plugin) + " " + std::string(what));
    }

    std::vector<Alert> alerts;
    std::vector<std::string> errors;
    std::vector<std::string> misbehaviour;
};

/// A core with a running plug-in "guest", whose answers the test gives.
class CoreFixture : public ::testing::Test {
protected:
    using Handler = std::function<SPErr(std::string_view caller, std::string_view selector, void*)>;

    CoreFixture() {
        guest.startUp();
        serving.emplace(core, &guest);
    }
    ~CoreFixture() override { handler = {}; }

    /// A suite's table, acquired and released at once: the table itself stays.
    template <typename Suite>
    const Suite* suite() {
        const void* table = nullptr;
        const SuiteId id = SuiteIdentity<Suite>::id;
        EXPECT_EQ(basic->AcquireSuite(id.name, id.version, &table), kNoErr);
        EXPECT_EQ(basic->ReleaseSuite(id.name, id.version), kNoErr);
        return static_cast<const Suite*>(table);
    }

    static SPErr entry(const char* caller, const char* selector, void* message) {
        return handler ? handler(caller, selector, message) : kNoErr;
    }

    static inline Handler handler;
    std::uint32_t ticks = 0;
    RecordingFrontend frontend;
    Core core{frontend, {"de_DE", [this] { return ticks; }}};
    Plugin& guest = core.addBuiltIn("guest", entry);
    const SPBasicSuite* basic = &Core::basicSuite();
    std::optional<Core::ServeScope> serving; ///< calls are the guest's until it is reset
};

} // namespace host::test
