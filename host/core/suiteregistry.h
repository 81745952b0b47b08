// SPDX-License-Identifier: MIT
// All suites by name and version, and who holds how many acquisitions of them.
#pragma once

#include "host/core/blocks.h"
#include "host/core/suiteidentity.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace host {

/// [main-thread] Begins with every suite of the list, each an empty block until its table is
/// provided.
class SuiteRegistry {
public:
    SuiteRegistry();

    /// Puts a table in its suite's place. It outlives the registry and what was acquired.
    template <typename Suite>
    void provide(const Suite& table) {
        provideAs(SuiteIdentity<Suite>::id.name, SuiteIdentity<Suite>::id.version, &table);
    }
    /// The same under another version, or a suite that the list does not have.
    void provideAs(std::string_view name, std::int32_t version, const void* table);

    /// From now on the suite cannot be acquired. False when there was none.
    [[nodiscard]] bool hide(std::string_view name, std::int32_t version);

    /// Counts one acquisition. nullptr when there is no such suite.
    [[nodiscard]] const void* acquire(std::string_view name, std::int32_t version,
                                      PluginNumber holder);

    enum class Released { Yes, Unknown, NotHeld };
    Released release(std::string_view name, std::int32_t version, PluginNumber holder);

    /// Takes back all acquisitions of a plug-in and returns what it still held: "NAME VERSION",
    /// with " (n times)" after what it held more than once.
    [[nodiscard]] std::vector<std::string> releaseAllOf(PluginNumber holder);

    /// The (name, version) pairs that can be acquired.
    std::size_t size() const noexcept { return suites_.size(); }

private:
    using Key = std::pair<std::string, std::int32_t>;
    struct Suite {
        const void* table = nullptr;
        std::unordered_map<PluginNumber, std::uint32_t> holders;
    };
    std::map<Key, Suite> suites_;
};

} // namespace host
