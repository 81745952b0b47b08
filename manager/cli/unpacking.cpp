// SPDX-License-Identifier: MIT
#include "manager/cli/unpacking.h"

#include "manager/activation/filesteps.h"
#include "manager/cli/progress.h"
#include "manager/library/error.h"
#include "manager/library/places.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace manager {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t mostRemarks = 20;

/// Writes one file after the other.
class FileWriter {
public:
    explicit FileWriter(const std::string& folder) : folder_(folder) {}

    void begin(const std::string& entry) {
        EntryPlace place = placeOf(entry);
        if (place.path.empty()) { // the reader would have passed it over
            throw Error(entry + ": has no place in the library");
        }
        std::string path = joinPath(folder_, std::to_string(files.size()));
        file_ = sys::Descriptor(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
        if (!file_) {
            throw systemError(path, "cannot be written", errno);
        }
        files.push_back({entry, std::move(place), std::move(path)});
        tellProgress(Work::Unpack, files.size(), 0);
    }

    void take(std::string_view bytes) {
        while (!bytes.empty()) {
            const ssize_t count = write(file_.get(), bytes.data(), bytes.size());
            if (count < 0 && errno != EINTR) {
                throw systemError(files.back().path, "cannot be written", errno);
            }
            bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        }
    }

    std::vector<UnpackedFile> files;

private:
    const std::string& folder_;
    sys::Descriptor file_;
};

} // namespace

std::vector<UnpackedFile> Unpacking::unpack(const std::string& folder,
                                            const ArchiveLimits& limits) {
    FileWriter writer(folder);
    readArchive(archive_,
                {.begin = [&](const std::string& entry) { writer.begin(entry); },
                 .take = [&](std::string_view bytes) { writer.take(bytes); },
                 .passOver = [this](const std::string& entry,
                                    const std::string& why) { passOver(entry, why); }},
                limits);
    return std::move(writer.files);
}

std::size_t Unpacking::putInPlace(const std::vector<UnpackedFile>& files,
                                  const std::string& folder) {
    std::size_t fonts = 0;
    for (const UnpackedFile& file : files) {
        const fs::path target = fs::path(folder) / file.place.path;
        std::error_code code;
        fs::create_directories(target.parent_path(), code);
        if (code == std::errc::not_a_directory || code == std::errc::file_exists) {
            passOver(file.entry, "another entry has the name of its folder");
        } else if (code) {
            throw systemError(target.parent_path().string(), "cannot be made", code.value());
        } else if (renameToFree(file.path, target)) {
            fonts += file.place.kind == EntryKind::Font ? 1 : 0;
        } else if (errno == EEXIST || exists(target)) {
            passOver(file.entry, "another entry has its name");
        } else {
            throw systemError(target.string(), "cannot be given its name", errno);
        }
    }
    return fonts;
}

void Unpacking::passOver(const std::string& entry, const std::string& why) {
    if (++passedOver_ <= mostRemarks) {
        tally_.remark(archive_ + ": " + entry + ": passed over: " + why);
    }
}

void Unpacking::finish() {
    if (passedOver_ > mostRemarks) {
        tally_.remark(archive_ + ": " + std::to_string(passedOver_ - mostRemarks) +
                      " more were passed over");
    }
}

} // namespace manager
