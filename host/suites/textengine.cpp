// SPDX-License-Identifier: MIT
// What is said of references that are not in order, and of those that are left.
#include "host/suites/textengine.h"

#include <array>

namespace host {

namespace {

constexpr std::array<const char*, textKindCount> kindNames{
    "text frame", "text range", "text runs iterator", "character inspector", "character features",
    "font array", "font"};

const char* nameOf(TextKind kind) {
    return kindNames[static_cast<std::size_t>(kind)];
}

} // namespace

TextEngine::TextEngine(Core& core, OpenDocuments& documents) : core_(core), documents_(documents) {
    core_.onShutDown([this](Plugin& plugin) { takeBackFrom(plugin); });
}

SPErr TextEngine::count(Handle handle, TextKind kind, int change) {
    TextObject* const object = objects_.find(handle);
    if (object == nullptr || object->kind != kind) {
        refuse(handle, kind, change > 0 ? "added a reference to" : "released");
        return kBadParameterErr;
    }
    object->count += static_cast<std::uint32_t>(change);
    if (object->count == 0) {
        objects_.remove(handle);
    }
    return kNoErr;
}

TextObject* TextEngine::refuse(Handle handle, TextKind kind, const char* action) {
    const TextObject* const object = objects_.find(handle);
    std::string what = std::string(action) + " a " + nameOf(kind) + " reference that is ";
    if (object != nullptr) {
        what += object->kind == kind ? "of a closed document"
                                     : std::string("one of a ") + nameOf(object->kind);
    } else {
        what += objects_.state(handle) == HandleState::Dead ? "dead" : "none of the host's";
    }
    core_.callerMisbehaves(what);
    return nullptr;
}

void TextEngine::takeBackFrom(Plugin& plugin) {
    std::array<std::size_t, textKindCount> leaked{};
    objects_.forEach([&](Handle handle, const TextObject& object) {
        if (object.owner == plugin.number()) {
            ++leaked[static_cast<std::size_t>(object.kind)];
            objects_.remove(handle);
        }
    });
    for (std::size_t kind = 0; kind < textKindCount; ++kind) {
        if (leaked[kind] > 0) {
            core_.ledger().report(plugin.name(), "leaked " + std::to_string(leaked[kind]) + " " +
                                                     kindNames[kind] + " reference(s)");
        }
    }
}

} // namespace host
