// SPDX-License-Identifier: MIT
// inotify watches, one per folder.
#include "manager/cli/folderwatch.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <sys/inotify.h>
#include <unistd.h>

namespace manager {

namespace {

constexpr std::uint32_t heardEvents = IN_CREATE | IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM |
                                      IN_DELETE | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

} // namespace

FolderWatch::FolderWatch(const Places& places)
    : own_(places.own()), inotify_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)),
      ownWatch_(inotify_ ? inotify_add_watch(inotify_.get(), own_.c_str(), IN_MOVED_TO) : -1) {}

FolderWatch::Result FolderWatch::watch(const std::vector<std::string>& folders) {
    std::map<std::string, int> wanted;
    Result result;
    for (const std::string& folder : folders) {
        // Adding a folder that is watched already gives its watch again.
        const int id =
            inotify_ ? inotify_add_watch(inotify_.get(), folder.c_str(), heardEvents) : -1;
        if (id < 0) {
            ++result.missed;
            continue;
        }
        wanted.emplace(folder, id);
        const auto known = watches_.find(folder);
        if (known == watches_.end() || known->second != id) {
            ++result.added; // new, or another folder of the same name
        } else {
            watches_.erase(known);
        }
    }
    for (const auto& [folder, id] : watches_) {
        inotify_rm_watch(inotify_.get(), id);
    }
    watches_ = std::move(wanted);
    return result;
}

bool FolderWatch::drain() {
    bool heard = false;
    alignas(inotify_event) std::array<char, 16384> block{};
    for (;;) {
        const ssize_t count = read(inotify_.get(), block.data(), block.size());
        if (count <= 0) {
            return heard;
        }
        for (ssize_t position = 0; position < count;) {
            inotify_event event{};
            std::memcpy(&event, block.data() + position, sizeof event);
            const char* name = block.data() + position + sizeof event;
            if (event.wd != ownWatch_) {
                heard = heard || (event.mask & IN_IGNORED) == 0;
            } else if (event.len > 0 && std::string_view(name) == "folders") {
                heard = true;
            }
            position += static_cast<ssize_t>(sizeof event + event.len);
        }
    }
}

} // namespace manager
