// SPDX-License-Identifier: MIT
// Runs of glyphora-desktop: a request goes to its standard input, and lines come back.
#include "manager/activation/desktopfonts.h"

#include "manager/library/error.h"
#include "manager/library/fields.h"
#include "manager/library/places.h"
#include "system/child.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <functional>
#include <optional>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>

namespace manager {

namespace {

using Fields = std::vector<std::string>;

// A reader that tells nothing for so long hangs in a file system. What computes is ended by the
// limits that it sets itself.
constexpr int patienceMilliseconds = 120'000;

bool awaitSocket(int socket, short events) {
    pollfd watched{socket, events, 0};
    int count = 0;
    while ((count = poll(&watched, 1, patienceMilliseconds)) < 0 && errno == EINTR) {
    }
    return count > 0;
}

bool sendAll(int socket, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t sent = send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(sent));
        } else if (errno != EAGAIN || !awaitSocket(socket, POLLOUT)) {
            return false;
        }
    }
    return shutdown(socket, SHUT_WR) == 0;
}

/// What a run came to: nothing, or why it did not get to its end; without the program's path.
using Failure = std::optional<std::string>;

Failure endingOf(sys::Child& child) {
    const sys::Ending ending = child.end();
    return ending.signal != 0 ? std::string("ended by ") + strsignal(ending.signal)
                              : "ended with status " + std::to_string(ending.status);
}

Failure runReader(const std::filesystem::path& program, const std::string& mode,
                  const std::string& root, std::span<const std::string> paths,
                  const std::function<void(const Fields&)>& receive) {
    std::string request;
    for (const std::string& path : paths) {
        request += joinFields({path});
    }
    try {
        const std::vector<std::string> arguments = {mode, root};
        sys::Child child(program, arguments);
        std::string text;
        char block[65536];
        bool ended = false;
        if (!sendAll(child.socket(), request)) {
            return endingOf(child);
        }
        while (!ended) {
            const ssize_t count = recv(child.socket(), block, sizeof block, 0);
            if (count < 0 && errno == EAGAIN && awaitSocket(child.socket(), POLLIN)) {
                continue;
            }
            if (count <= 0) {
                return endingOf(child);
            }
            text.append(block, static_cast<std::size_t>(count));
            const std::size_t whole = text.rfind('\n') + 1;
            for (const std::string_view line :
                 splitLines(std::string_view(text).substr(0, whole))) {
                const auto fields = splitFields(line);
                ended = fields && fields->front() == "end";
                if (fields && !ended) {
                    receive(*fields);
                }
            }
            text.erase(0, whole);
        }
    } catch (const std::system_error& error) {
        return error.code().message();
    }
    return std::nullopt;
}

void throwOn(const Failure& failure, const std::filesystem::path& program) {
    if (failure) {
        throw Error("the desktop's fonts: cannot be read by fontconfig: " + program.string() +
                    ": " + *failure);
    }
}

std::optional<NamedFace> faceOf(const Fields& fields) {
    const auto type = fields.size() == 4 && fields[0] == "face" ? toNumber<std::uint8_t>(fields[2])
                                                                : std::nullopt;
    return type ? std::optional(
                      NamedFace{fields[1], {fields[3], static_cast<faces::Technology>(*type)}})
                : std::nullopt;
}

/// Paths that no reader began, and why.
struct Unbegun {
    std::span<const std::string> paths;
    std::string why;
};

/// Runs readers until one gets to the end of the paths. Those that a reader does not get past are
/// told to `stopped`, with the reason.
Unbegun readPaths(const std::filesystem::path& program, const std::string& mode,
                  const std::string& root, std::span<const std::string> paths,
                  const std::function<void(const Fields&)>& receive,
                  const std::function<void(const std::string&, const std::string&)>& stopped) {
    do {
        std::size_t begun = 0;
        const Failure failure = runReader(program, mode, root, paths, [&](const Fields& fields) {
            begun += fields[0] == "at" ? 1 : 0;
            receive(fields);
        });
        if (!failure) {
            break;
        }
        if (begun == 0 || begun > paths.size()) {
            return {paths, program.string() + ": " + *failure};
        }
        stopped(paths[begun - 1], *failure);
        paths = paths.subspan(begun);
    } while (!paths.empty());
    return {};
}

std::vector<std::string> filesIn(const std::string& folder) {
    std::vector<std::string> files;
    std::error_code code;
    for (std::filesystem::directory_iterator entry(folder, code), end; !code && entry != end;
         entry.increment(code)) {
        const std::string name = entry->path().filename().string();
        if (name.front() != '.') {
            files.push_back(entry->path().string());
        }
    }
    return files;
}

} // namespace

std::filesystem::path desktopProgram() {
    std::error_code error;
    const auto folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    auto beside = folder / "glyphora-desktop";
    return std::filesystem::exists(beside, error)
               ? beside
               : folder.parent_path() / "libexec" / "glyphora" / "glyphora-desktop";
}

std::int64_t changeTime(const std::string& path) {
    constexpr std::int64_t nanoseconds = 1'000'000'000;
    struct stat status {};
    return stat(path.c_str(), &status) == 0
               ? status.st_mtim.tv_sec * nanoseconds + status.st_mtim.tv_nsec
               : 0;
}

const std::vector<DesktopFace>& DesktopFaces::find(const std::string& postScriptName) const {
    static const std::vector<DesktopFace> none;
    const auto found = faces_.find(postScriptName);
    return found == faces_.end() ? none : found->second;
}

std::set<std::string> DesktopFaces::namesIn(const std::string& file) const {
    std::set<std::string> names;
    const auto known = names_.find(folderOf(file));
    for (const std::string& name : known != names_.end() ? known->second : Fields()) {
        const auto& namesakes = find(name);
        if (std::any_of(namesakes.begin(), namesakes.end(),
                        [&](const DesktopFace& face) { return face.file == file; })) {
            names.insert(name);
        }
    }
    return names;
}

void DesktopFaces::replaceFolders(std::span<const std::string> folders,
                                  std::span<const NamedFace> faces) {
    for (const std::string& folder : folders) {
        const auto known = names_.find(folder);
        for (const std::string& name : known != names_.end() ? known->second : Fields()) {
            const auto namesakes = faces_.find(name);
            if (namesakes != faces_.end() &&
                std::erase_if(
                    namesakes->second,
                    [&](const DesktopFace& face) { return folderOf(face.file) == folder; }) != 0 &&
                namesakes->second.empty()) {
                faces_.erase(namesakes);
            }
        }
        if (known != names_.end()) {
            names_.erase(known);
        }
    }
    for (const auto& [name, face] : faces) {
        if (!name.empty()) {
            faces_[name].push_back(face);
            names_[folderOf(face.file)].push_back(name);
        }
    }
}

bool DesktopFaces::isAsWatched(const std::string& path) const {
    const auto watched = watched_.find(path);
    return watched != watched_.end() && watched->second == changeTime(path);
}

bool DesktopFaces::isOutdated() const {
    return watched_.empty() || std::any_of(watched_.begin(), watched_.end(), [](const auto& path) {
               return changeTime(path.first) != path.second;
           });
}

FolderReading readFolders(const std::filesystem::path& program, const std::string& root,
                          std::span<const std::string> folders) {
    FolderReading reading;
    const auto receive = [&](const Fields& fields) {
        if (auto face = faceOf(fields)) {
            reading.faces.push_back(std::move(*face));
        } else if (fields[0] == "looks") {
            reading.isLookedAt = true;
        }
    };
    const auto leaveUnread = [&](const std::string& folder, const std::string& why) {
        reading.unread.emplace(folder, folder + ": cannot be read by fontconfig: " + why);
    };
    const Unbegun rest = readPaths(
        program, "folders", root, folders, receive,
        [&](const std::string& folder, const std::string& why) {
            // One of its files did that. It is found by reading them one by one.
            const Fields files = filesIn(folder);
            const std::size_t before = reading.endless.size();
            readPaths(
                program, "files", root, files, [](const Fields&) {},
                [&](const std::string& file, const std::string&) { reading.endless.insert(file); });
            if (reading.endless.size() == before) {
                return leaveUnread(folder, why);
            }
            // The others can be seen once those are gone. Their names are told then.
            for (const std::string& file : files) {
                if (!reading.endless.contains(file)) {
                    reading.faces.push_back({{}, {file, {}}});
                }
            }
        });
    for (const std::string& folder : rest.paths) {
        leaveUnread(folder, rest.why);
    }
    return reading;
}

DesktopFaces readDesktop(const std::filesystem::path& program, const std::string& root) {
    DesktopFaces faces;
    std::vector<NamedFace> named;
    const Failure failure = runReader(program, "all", root, {}, [&](const Fields& fields) {
        if (auto face = faceOf(fields)) {
            named.push_back(std::move(*face));
        } else if (fields[0] == "watch" && fields.size() == 3) {
            faces.watch(fields[1], toNumber<std::int64_t>(fields[2]).value_or(0));
        }
    });
    throwOn(failure, program);
    faces.replaceFolders({}, named);
    return faces;
}

std::vector<std::string> findDesktopFiles(const std::filesystem::path& program,
                                          const std::string& name) {
    std::vector<std::string> files;
    const auto receive = [&](const Fields& fields) {
        if (fields.size() == 2 && fields[0] == "file") {
            files.push_back(fields[1]);
        }
    };
    throwOn(runReader(program, "named", {}, std::vector{name}, receive), program);
    return files;
}

} // namespace manager
