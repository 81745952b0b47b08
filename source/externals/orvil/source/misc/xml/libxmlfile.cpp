// SPDX-License-Identifier: MIT
// Reading in bounds, and writing that leaves either the old file or the new one.
#include "misc/xml/libxmlfile.h"

#include "misc/xml/ixmlparser.h"
#include "misc/xml/libxmlsupport.h"

#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <optional>
#include <random>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace Orvil::LibXml {

namespace {

/// libxml2 unescapes names of files; this undoes it beforehand.
std::string escapePercents(const std::string& name) {
    std::string escaped;
    for (const char byte : name) {
        escaped += byte == '%' ? std::string("%25") : std::string(1, byte);
    }
    return escaped;
}

class Descriptor {
public:
    explicit Descriptor(int number) noexcept : number_(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { close(); }

    int get() const noexcept { return number_; }
    bool close() noexcept {
        const int number = std::exchange(number_, -1);
        return number >= 0 && ::close(number) == 0;
    }

private:
    int number_;
};

bool writeAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(file, bytes.data(), bytes.size());
        if (count >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

/// Where the chain of links ends, be there a file or not.
std::optional<std::filesystem::path> followLinks(std::filesystem::path path) {
    constexpr int longestChain = 40;
    for (int i = 0; i < longestChain; ++i) {
        std::error_code error;
        if (!std::filesystem::is_symlink(std::filesystem::symlink_status(path, error))) {
            return path;
        }
        const std::filesystem::path target = std::filesystem::read_symlink(path, error);
        if (error) {
            return std::nullopt;
        }
        path = path.parent_path() / target;
    }
    return std::nullopt;
}

/// A new file with a name of its own, which vanishes with this object unless it is renamed.
class TemporaryFile {
public:
    TemporaryFile(const std::filesystem::path& folder, mode_t mode) : file_(open(folder, mode)) {}
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        if (!name_.empty()) {
            ::unlink(name_.c_str());
        }
    }

    /// Negative if there is none.
    int get() const noexcept { return file_.get(); }
    bool rename(const std::filesystem::path& name) {
        if (!file_.close() || std::rename(name_.c_str(), name.c_str()) != 0) {
            return false;
        }
        name_.clear();
        return true;
    }

private:
    /// Unlike with mkostemp, the system applies its rules for the mode of a new file.
    int open(const std::filesystem::path& folder, mode_t mode) {
        constexpr int attempts = 100;
        std::random_device random;
        for (int i = 0; i < attempts; ++i) {
            std::string name = (folder / (".orvil-" + std::to_string(random()))).string();
            const int file = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
            if (file >= 0) {
                name_ = std::move(name);
                return file;
            }
            if (errno != EEXIST) {
                break;
            }
        }
        return -1;
    }

    std::string name_;
    Descriptor file_;
};

enum class Outcome { Done, Failed, NotAllowed };

Outcome outcomeOfErrno() {
    const bool isRefused = errno == EACCES || errno == EPERM || errno == EROFS || errno == EBUSY;
    return isRefused ? Outcome::NotAllowed : Outcome::Failed;
}

/// `old` is null for a new file.
Outcome replace(const std::filesystem::path& target, const struct stat* old,
                std::string_view bytes) {
    constexpr mode_t modeOfNew = 0666;
    constexpr mode_t modeWhileWriting = 0600;
    constexpr mode_t allOfMode = 07777;
    TemporaryFile file(target.parent_path(), old == nullptr ? modeOfNew : modeWhileWriting);
    if (file.get() < 0) {
        return outcomeOfErrno();
    }
    if (!writeAll(file.get(), bytes)) {
        return Outcome::Failed;
    }
    if (old != nullptr && (fchown(file.get(), old->st_uid, old->st_gid) != 0 ||
                           fchmod(file.get(), old->st_mode & allOfMode) != 0)) {
        return Outcome::NotAllowed;
    }
    if (fsync(file.get()) != 0) {
        return Outcome::Failed;
    }
    return file.rename(target) ? Outcome::Done : outcomeOfErrno();
}

bool overwrite(const std::filesystem::path& target, std::string_view bytes) {
    Descriptor file(open(target.c_str(), O_WRONLY | O_CLOEXEC));
    if (file.get() < 0) {
        return false;
    }
    const auto size = static_cast<off_t>(bytes.size());
    if (fallocate(file.get(), FALLOC_FL_KEEP_SIZE, 0, size) != 0 && errno != EOPNOTSUPP) {
        return false;
    }
    const bool isWritten =
        writeAll(file.get(), bytes) && ftruncate(file.get(), size) == 0 && fsync(file.get()) == 0;
    return file.close() && isWritten;
}

} // namespace

std::string readFile(const std::string& fileName) {
    struct ContextDeleter {
        void operator()(xmlParserCtxt* context) const noexcept { xmlFreeParserCtxt(context); }
    };
    constexpr std::size_t pieceSize = std::size_t{64} << 10U;
    const Silence silence;
    xmlResetLastError();
    std::error_code ignored; // libxml2 reports what cannot be found
    const bool exists = std::filesystem::exists(fileName, ignored);
    const std::string name = exists ? escapePercents(fileName) : fileName;
    const std::unique_ptr<xmlParserCtxt, ContextDeleter> context(
        xmlCreateURLParserCtxt(name.c_str(), parseOptions));
    if (!context) {
        throw notParsed(xmlGetLastError(), __LINE__);
    }
    const xmlParserInputBuffer& input = *context->input->buf;
    std::string text;
    int count = 1;
    while (count > 0) {
        const std::size_t size = text.size();
        text.resize(size + pieceSize);
        count = input.readcallback(input.context, text.data() + size, static_cast<int>(pieceSize));
        if (count < 0) {
            throw notParsed(xmlGetLastError(), __LINE__);
        }
        text.resize(size + static_cast<std::size_t>(count));
        if (text.size() > IXmlParser::maximumDocumentSize) {
            throw tooLarge("document", __LINE__);
        }
    }
    return text;
}

bool replaceFile(const std::string& fileName, std::string_view bytes) {
    struct stat status {};
    const bool exists = stat(fileName.c_str(), &status) == 0;
    if (exists && !S_ISREG(status.st_mode)) {
        const Descriptor file(open(fileName.c_str(), O_WRONLY | O_CLOEXEC));
        return file.get() >= 0 && writeAll(file.get(), bytes);
    }
    if (exists && faccessat(AT_FDCWD, fileName.c_str(), W_OK, AT_EACCESS) != 0) {
        return false;
    }
    const std::optional<std::filesystem::path> target = followLinks(fileName);
    if (!target) {
        return false;
    }
    const Outcome outcome = replace(*target, exists ? &status : nullptr, bytes);
    return outcome == Outcome::Done ||
           (exists && outcome == Outcome::NotAllowed && overwrite(*target, bytes));
}

} // namespace Orvil::LibXml
