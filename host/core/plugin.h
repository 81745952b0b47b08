// SPDX-License-Identifier: MIT
// One plug-in from its start-up to its shut-down: its code, its state, and the messages to it.
#pragma once

#include "host/core/blocks.h"
#include "host/core/bundle.h"
#include "host/core/stringlists.h"
#include "sp/messages.h"

#include <cstdint>
#include <optional>
#include <string>

namespace host {

class Core;

enum class PluginState : std::uint8_t {
    Mapped,   ///< in memory, not started
    Running,  ///< takes messages
    Unmapped, ///< started, its code not in memory; it keeps its value and its registrations
    Ended     ///< shut down, or failed to start
};

/// [main-thread] Lives as long as its Core.
class Plugin {
public:
    /// Maps the bundle's code. Throws PluginError when it cannot.
    Plugin(Core& core, PluginNumber number, const Bundle& bundle);
    /// A plug-in within the program. `entry` is not null; `resources` may be empty.
    Plugin(Core& core, PluginNumber number, std::string name, SPEntryProc entry,
           std::filesystem::path resources);
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;
    /// Takes the code out of memory, without a message.
    ~Plugin();

    PluginNumber number() const noexcept { return number_; }
    SPPluginRef ref() const noexcept;
    PluginState state() const noexcept { return state_; }
    /// The name that it gave itself, else that of its bundle.
    const std::string& name() const noexcept { return name_; }
    /// For Core::rename, which keeps other threads out.
    void setName(std::string name) { name_ = std::move(name); }
    void* globals() const noexcept { return globals_; }
    StringLists& strings() noexcept { return strings_; }
    /// Where its resources are; empty if it has none.
    const std::filesystem::path& resources() const noexcept { return resources_; }

    /// "SP Interface"/"Startup". Throws PluginError when it failed; it has ended then.
    void startUp();
    /// "SP Interface"/"Shutdown"; takes back what it forgot, its registrations and its code.
    /// Gives the plug-in's answer.
    SPErr shutDown();

    /// "SP Access"/"Unload", then its code is taken out of memory. False, with an error
    /// reported, when it is being used, does not run or refuses.
    [[nodiscard]] bool unload();
    /// Maps the code afresh, then "SP Access"/"Reload", and gives the plug-in's answer. Throws
    /// PluginError when it cannot be mapped, and stays unmapped then.
    SPErr reload();

    /// Sends one message and gives the plug-in's answer. `message` is a record of the kind that
    /// goes with caller and selector; its first member is filled in here. What the plug-in throws
    /// is noted as misbehaviour; a thrown number other than 0 is then the answer, kUnhandledMsgErr
    /// for all else.
    template <typename Message>
    SPErr send(const char* caller, const char* selector, Message& message) {
        return deliver(caller, selector, message.d, &message);
    }

    /// While a use is counted, the code is not unloaded.
    void addUse() noexcept { ++uses_; }
    void dropUse() noexcept { --uses_; }

private:
    SPErr deliver(const char* caller, const char* selector, SPMessageData& data, void* message);
    SPErr callEntry(const char* caller, const char* selector, void* message);
    /// Ends it: its code goes, and what it forgot is taken back.
    void leave();
    void unmap();
    void misbehaves(const std::string& what);

    Core& core_;
    PluginNumber number_;
    std::string name_;
    std::optional<Bundle> bundle_;
    std::optional<Module> module_;
    SPEntryProc entry_ = nullptr;
    PluginState state_ = PluginState::Mapped;
    void* globals_ = nullptr;
    std::filesystem::path resources_;
    StringLists strings_;
    std::uint32_t uses_ = 0;
};

} // namespace host
