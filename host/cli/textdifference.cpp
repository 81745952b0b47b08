// SPDX-License-Identifier: MIT
// Runs diff over two files that have no names but those of this process.
#include "host/cli/textdifference.h"

#include "system/descriptor.h"

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <glib.h>
#include <memory>
#include <stdexcept>
#include <system_error>

namespace host {

namespace {

sys::Descriptor fileOf(const std::string& text) {
    sys::Descriptor file(::memfd_create("drawing", MFD_CLOEXEC));
    if (!file || !sys::writeAll(file.get(), text)) {
        throw std::system_error(errno, std::generic_category(), "a copy to compare");
    }
    return file;
}

std::string pathOf(const sys::Descriptor& file) {
    return "/proc/" + std::to_string(::getpid()) + "/fd/" + std::to_string(file.get());
}

struct Free {
    void operator()(char* text) const { g_free(text); }
    void operator()(GError* error) const { g_error_free(error); }
};

} // namespace

std::string differenceOf(const std::string& before, const std::string& after,
                         const std::string& name) {
    const sys::Descriptor old = fileOf(before);
    const sys::Descriptor changed = fileOf(after);
    std::array<std::string, 9> words{"diff", "-u", "--label",   name,           "--label",
                                     name,   "--", pathOf(old), pathOf(changed)};
    std::array<char*, 10> arguments{};
    for (std::size_t i = 0; i < words.size(); ++i) {
        arguments[i] = words[i].data();
    }
    char* output = nullptr;
    int state = 0;
    GError* error = nullptr;
    const gboolean run = g_spawn_sync(nullptr, arguments.data(), nullptr, G_SPAWN_SEARCH_PATH,
                                      nullptr, nullptr, &output, nullptr, &state, &error);
    const std::unique_ptr<char, Free> text(output);
    const std::unique_ptr<GError, Free> problem(error);
    constexpr int trouble = 2; // 1: they differ
    if (run == FALSE || !WIFEXITED(state) || WEXITSTATUS(state) >= trouble) {
        throw std::runtime_error(std::string("diff cannot be run") +
                                 (problem ? std::string(": ") + problem->message : std::string()));
    }
    return text.get();
}

} // namespace host
