// SPDX-License-Identifier: MIT
// glyphora-desktop MODE ROOT: has fontconfig read fonts on behalf of the manager, with limits.
// "all": everything that the desktop shows. "named": the files of faces with a family, full name or
// PostScript name like the one on standard input. "folders", "files": those named on standard
// input, a field line each; each is told before it is read, so that whoever waits knows which one
// it was when this process ends before its time. Everything goes back over the socket that standard
// input is.
#include "faces/fontpattern.h"
#include "faces/namekey.h"
#include "manager/activation/desktopfonts.h"
#include "manager/library/fields.h"
#include "manager/library/places.h"
#include "system/child.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <fontconfig/fcfreetype.h>
#include <fontconfig/fontconfig.h>
#include <functional>
#include <memory>
#include <set>
#include <sys/socket.h>
#include <unistd.h>

using namespace manager;

namespace {

constexpr std::size_t memory = std::size_t{2} << 30U;
constexpr unsigned secondsForAFile = 5;
constexpr unsigned secondsForAFolder = 10;
constexpr unsigned secondsForAll = 120;

struct ConfigDeleter {
    void operator()(FcConfig* config) const { FcConfigDestroy(config); }
};
using ConfigHandle = std::unique_ptr<FcConfig, ConfigDeleter>;

std::string output; // what is yet to be sent

void flush() {
    std::string_view bytes = output;
    while (!bytes.empty()) {
        const ssize_t sent = send(STDIN_FILENO, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0 && errno != EINTR) {
            _exit(EXIT_FAILURE); // nobody listens any more
        }
        bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(sent, 0)));
    }
    output.clear();
}

void tell(std::initializer_list<std::string_view> fields) {
    constexpr std::size_t much = 65536;
    output += joinFields(fields);
    if (output.size() > much) {
        flush();
    }
}

std::vector<std::string> requestedPaths() {
    std::string text;
    std::array<char, 65536> block{};
    ssize_t count = 0;
    while ((count = read(STDIN_FILENO, block.data(), block.size())) > 0) {
        text.append(block.data(), static_cast<std::size_t>(count));
    }
    std::vector<std::string> paths;
    for (const std::string_view line : splitLines(text)) {
        if (const auto fields = splitFields(line)) {
            paths.push_back(fields->front());
        }
    }
    return paths;
}

/// Those after the first `told` ones. How many there are now.
int tellFaces(FcConfig* config, FcSetName set, int told) {
    const FcFontSet* all = FcConfigGetFonts(config, set);
    for (int i = told; all != nullptr && i < all->nfont; ++i) {
        const FcPattern* face = all->fonts[i];
        // Instances of variable fonts go without names of their own.
        if (const auto type = faces::technologyOf(face)) {
            tell({"face", faces::textOf(face, FC_POSTSCRIPT_NAME, 0),
                  std::to_string(static_cast<int>(*type)), faces::textOf(face, FC_FILE, 0)});
        }
    }
    return all != nullptr ? all->nfont : 0;
}

bool isNamed(const FcPattern* face, const std::string& key) {
    for (const char* object : {FC_FAMILY, FC_FULLNAME, FC_POSTSCRIPT_NAME}) {
        for (int i = 0;; ++i) {
            const std::string name = faces::textOf(face, object, i);
            if (name.empty()) {
                break;
            }
            if (faces::nameKey(name) == key) {
                return true;
            }
        }
    }
    return false;
}

void tellFilesNamed(const std::string& name) {
    sys::allowProcessorTime(secondsForAll);
    const ConfigHandle config(FcInitLoadConfigAndFonts());
    const FcFontSet* all = FcConfigGetFonts(config.get(), FcSetSystem);
    const std::string key = faces::nameKey(name);
    std::set<std::string> told;
    for (int i = 0; all != nullptr && i < all->nfont; ++i) {
        const FcPattern* face = all->fonts[i];
        const std::string file = faces::textOf(face, FC_FILE, 0);
        if (isNamed(face, key) && told.insert(file).second) {
            tell({"file", file});
        }
    }
}

void forEach(FcStrList* list, const std::function<void(const std::string&)>& visit) {
    while (const FcChar8* text = list != nullptr ? FcStrListNext(list) : nullptr) {
        visit(reinterpret_cast<const char*>(text));
    }
    if (list != nullptr) {
        FcStrListDone(list);
    }
}

void readAll(const std::string& root) {
    sys::allowProcessorTime(secondsForAll);
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    const std::int64_t begun = std::chrono::duration_cast<std::chrono::nanoseconds>(now).count();
    const ConfigHandle config(FcInitLoadConfigAndFonts());
    // The kernel counts in ticks: what changed in the last ones may change again unseen.
    constexpr std::int64_t ticks = 50'000'000;
    const auto watch = [&](const std::string& path) {
        const std::int64_t changed = changeTime(path);
        tell({"watch", path, std::to_string(changed > begun - ticks ? -1 : changed)});
    };
    forEach(FcConfigGetConfigFiles(config.get()), watch);
    forEach(FcConfigGetFontDirs(config.get()), [&](const std::string& folder) {
        if (folder == root || !liesUnder(folder, root)) {
            watch(folder);
        }
    });
    tellFaces(config.get(), FcSetSystem, 0);
}

void readFoldersOf(const std::string& root) {
    const std::vector<std::string> folders = requestedPaths();
    const ConfigHandle config(FcInitLoadConfig());
    bool looks = false; // as long as nothing is read these are the folders of the settings
    forEach(FcConfigGetFontDirs(config.get()),
            [&](const std::string& folder) { looks = looks || liesUnder(root, folder); });
    if (!looks) {
        return;
    }
    tell({"looks"});
    const auto* const rootPath = reinterpret_cast<const FcChar8*>(root.c_str());
    if (FcCache* cache = FcDirCacheRead(rootPath, FcFalse, config.get())) {
        FcDirCacheUnload(cache);
    }
    int told = 0;
    for (const std::string& folder : folders) {
        tell({"at", folder});
        flush();
        sys::allowProcessorTime(secondsForAFolder);
        FcConfigAppFontAddDir(config.get(), reinterpret_cast<const FcChar8*>(folder.c_str()));
        // At once: the next folder may be the end of this process.
        told = tellFaces(config.get(), FcSetApplication, told);
    }
}

void readFilesOneByOne() {
    for (const std::string& file : requestedPaths()) {
        tell({"at", file});
        flush();
        sys::allowProcessorTime(secondsForAFile);
        int count = 0;
        FcFontSet* faces = FcFontSetCreate();
        FcFreeTypeQueryAll(reinterpret_cast<const FcChar8*>(file.c_str()),
                           static_cast<unsigned>(-1), nullptr, &count, faces);
        FcFontSetDestroy(faces);
    }
}

} // namespace

int main(int argc, char** argv) {
    sys::limitThisProcess(memory);
    const std::vector<std::string> arguments(argv, argv + argc);
    if (arguments.size() != 3) {
        return EXIT_FAILURE;
    }
    if (arguments[1] == "all") {
        readAll(arguments[2]);
    } else if (arguments[1] == "named") {
        for (const std::string& name : requestedPaths()) {
            tellFilesNamed(name);
        }
    } else if (arguments[1] == "folders") {
        readFoldersOf(arguments[2]);
    } else {
        readFilesOneByOne();
    }
    tell({"end"});
    flush();
    _exit(EXIT_SUCCESS); // what fontconfig holds need not be taken apart
}
