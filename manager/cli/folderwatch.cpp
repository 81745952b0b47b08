// SPDX-License-Identifier: MIT
// inotify watches, one per folder.
#include "manager/cli/folderwatch.h"

#include "faces/fontfile.h"
#include "manager/library/error.h"
#include "manager/library/fields.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <iterator>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

namespace manager {

namespace {

constexpr std::uint32_t contentEvents = IN_CREATE | IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM |
                                        IN_DELETE | IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF;
// Also that it goes again, which may be before the folder itself is watched.
constexpr std::uint32_t arrivalEvents =
    IN_CREATE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE | IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF;
constexpr std::uint32_t appearance = IN_CREATE | IN_MOVED_TO;

// A millisecond's work: commands wait no longer for it.
constexpr std::size_t folderPortion = 200;

bool isLink(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

constexpr const char* mountInfo = "/proc/self/mountinfo";

// Blanks, line ends and backslashes stand there as \\ and three octal digits.
std::string withoutEscapes(std::string_view text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned code = 0;
        if (text[i] == '\\' && i + 3 < text.size() &&
            std::from_chars(&text[i + 1], &text[i + 1] + 3, code, 8).ptr == &text[i + 1] + 3) {
            plain += static_cast<char>(code);
            i += 3;
        } else {
            plain += text[i];
        }
    }
    return plain;
}

} // namespace

Mounts readMounts(std::string_view text) {
    Mounts mounts;
    for (std::string_view line : splitLines(text)) {
        // number, parent, device, root, path, options, more of them, "-", type, ...
        std::array<std::string_view, 5> fields;
        const auto next = [&line] {
            const std::string_view field = line.substr(0, line.find(' '));
            line.remove_prefix(std::min(line.size(), field.size() + 1));
            return field;
        };
        std::generate(fields.begin(), fields.end(), next);
        while (!line.empty() && next() != "-") {
        }
        if (fields[4].starts_with('/')) {
            mounts.insert({std::string(fields[0]), withoutEscapes(fields[4]), std::string(next())});
        }
    }
    return mounts;
}

bool isMountChangedNear(const Mounts& before, const Mounts& after,
                        const std::vector<std::string>& folders) {
    Mounts changed;
    std::set_symmetric_difference(before.begin(), before.end(), after.begin(), after.end(),
                                  std::inserter(changed, changed.end()));
    return std::any_of(changed.begin(), changed.end(), [&](const auto& mount) {
        return std::any_of(folders.begin(), folders.end(), [&](const std::string& folder) {
            return liesUnder(mount.path, folder) || liesUnder(folder, mount.path);
        });
    });
}

bool isChangedSilently(const Mounts& mounts, std::string_view folder) {
    constexpr std::array<std::string_view, 17> types = {
        "9p",     "afs", "beegfs", "ceph",  "cifs", "coda",  "fuse",   "gfs2",    "gpfs",
        "lustre", "nfs", "nfs4",   "ocfs2", "smb3", "smbfs", "vboxsf", "virtiofs"};
    std::size_t longest = 0;
    bool silently = false;
    for (const Mount& mount : mounts) {
        if (!liesUnder(folder, mount.path) || mount.path.size() < longest) {
            continue;
        }
        const bool isSilent = mount.type.starts_with("fuse.") ||
                              std::find(types.begin(), types.end(), mount.type) != types.end();
        // Of several at one place the list does not tell simply which is on top.
        silently = isSilent || (silently && mount.path.size() == longest);
        longest = mount.path.size();
    }
    return silently;
}

FolderWatch::FolderWatch(const Places& places)
    : list_(places.folders()), inotify_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)),
      mountInfo_(open(mountInfo, O_RDONLY | O_CLOEXEC)) {
    checkMounts();
    begin({}, {});
    goOn();
}

void FolderWatch::checkMounts() {
    try {
        Mounts now = readMounts(readFile(mountInfo, std::size_t{64} << 20U));
        mountHeard_ = mountHeard_ || isMountChangedNear(mounts_, now, roots_);
        mounts_ = std::move(now);
    } catch (const Error&) { // NOLINT(bugprone-empty-catch): then nothing is heard of mounts
    }
}

// nullptr: it cannot be watched. A folder that is watched already keeps its watch.
FolderWatch::Interest* FolderWatch::add(const std::string& path, std::uint32_t events) {
    const int id = inotify_ ? inotify_add_watch(inotify_.get(), path.c_str(),
                                                events | IN_ONLYDIR | IN_MASK_ADD)
                            : -1;
    return id < 0 ? nullptr
                  : &round_->wanted.try_emplace(id, Interest{path, false, {}}).first->second;
}

// A folder does not hear that one above it is moved, so those are asked themselves. When it is away
// the nearest folder above it that there is hears of the next step of its return. False: none does.
bool FolderWatch::addWay(const std::string& root) {
    bool here = round_->watched.contains(root);
    for (std::string path = root; path != "/";) {
        const std::string name = nameOf(path);
        path = folderOf(path);
        Interest* interest = add(path, here ? IN_MOVE_SELF : arrivalEvents);
        if (interest != nullptr && !here) {
            interest->names.insert(name);
            here = true;
        }
    }
    return here;
}

void FolderWatch::begin(std::vector<std::string> folders, std::vector<std::string> roots) {
    round_ = Round{std::move(folders), 0, {}, {}, {}};
    roots_ = std::move(roots);
    isAsSet_ = true;
}

std::optional<FolderWatch::Result> FolderWatch::goOn() {
    const std::size_t end = std::min(round_->folders.size(), round_->next + folderPortion);
    for (; round_->next < end; ++round_->next) {
        addFolder(round_->folders[round_->next]);
    }
    if (end < round_->folders.size()) {
        return std::nullopt;
    }
    for (const std::string& root : roots_) {
        const bool isFolder = std::find(round_->folders.begin(), round_->folders.end(), root) !=
                              round_->folders.end();
        // One that is here was counted.
        round_->result.missed += addWay(root) || isFolder ? 0 : 1;
        round_->result.isDeaf = round_->result.isDeaf || isChangedSilently(mounts_, root);
    }
    addList();
    replaceInterests();
    Result result = round_->result;
    result.isDeaf = result.isDeaf || result.missed != 0;
    isAsSet_ = isAsSet_ && !result.isDeaf;
    round_.reset();
    return result;
}

void FolderWatch::addFolder(const std::string& folder) {
    if (Interest* interest = add(folder, contentEvents)) {
        interest->contents = true;
        round_->watched.insert(folder);
    } else if (!inotify_ || errno != ENOENT) {
        ++round_->result.missed; // one that is gone is of no interest
    }
    round_->result.isDeaf = round_->result.isDeaf || isChangedSilently(mounts_, folder);
}

void FolderWatch::addList() {
    std::error_code code;
    for (const std::string& path :
         {list_, std::filesystem::weakly_canonical(list_, code).string()}) {
        if (Interest* holder = code ? nullptr : add(folderOf(path), appearance)) {
            holder->names.insert(nameOf(path));
        }
    }
}

void FolderWatch::replaceInterests() {
    for (const auto& [id, interest] : round_->wanted) {
        const auto known = interests_.find(id);
        const bool same = known != interests_.end() && known->second.path == interest.path &&
                          known->second.contents >= interest.contents &&
                          std::includes(known->second.names.begin(), known->second.names.end(),
                                        interest.names.begin(), interest.names.end());
        round_->result.added += same ? 0 : 1;
    }
    for (const auto& [id, interest] : interests_) {
        if (!round_->wanted.contains(id)) {
            inotify_rm_watch(inotify_.get(), id);
        }
    }
    interests_ = std::move(round_->wanted);
    folders_ = std::move(round_->watched);
}

bool FolderWatch::isOfInterest(const Interest& interest, std::uint32_t events,
                               std::string_view name) const {
    if (name.empty()) { // of the folder itself
        return interest.contents || (events & IN_ATTRIB) == 0;
    }
    if (interest.names.contains(std::string(name))) {
        return true;
    }
    if (!interest.contents || name.front() == '.') {
        return false;
    }
    if ((events & IN_ISDIR) != 0 || faces::hasFontFileName(name)) {
        return true;
    }
    // Left are links to folders.
    const std::string path = interest.path + "/" + std::string(name);
    return folders_.contains(path) || ((events & appearance) != 0 && isLink(path));
}

bool FolderWatch::drain() {
    bool heard = std::exchange(mountHeard_, false);
    alignas(inotify_event) std::array<char, 16384> block{};
    for (;;) {
        const ssize_t count = read(inotify_.get(), block.data(), block.size());
        if (count <= 0) {
            isAsSet_ = isAsSet_ && !heard;
            return heard;
        }
        for (ssize_t position = 0; position < count;) {
            inotify_event event{};
            std::memcpy(&event, block.data() + position, sizeof event);
            const char* name = block.data() + position + sizeof event;
            const auto interest = interests_.find(event.wd);
            const bool lost = (event.mask & IN_Q_OVERFLOW) != 0;
            const bool ended = (event.mask & IN_IGNORED) != 0;
            heard = heard || lost ||
                    (!ended && interest != interests_.end() &&
                     isOfInterest(interest->second, event.mask, event.len > 0 ? name : ""));
            position += static_cast<ssize_t>(sizeof event + event.len);
        }
    }
}

} // namespace manager
