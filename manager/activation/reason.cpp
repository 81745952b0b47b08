// SPDX-License-Identifier: MIT
// Reasons: when they end, and how they are written down.
#include "manager/activation/reason.h"

#include "manager/activation/filesteps.h"
#include "manager/library/error.h"
#include "manager/library/fields.h"
#include "manager/library/places.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <random>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace manager {

namespace {

constexpr std::size_t shortFile = 4096;

/// Without the line end; empty when it cannot be read.
std::string firstLine(const std::string& path) {
    try {
        std::string text = readFile(path, shortFile);
        text.resize(std::min(text.find('\n'), text.size()));
        return text;
    } catch (const Error&) {
        return {};
    }
}

const std::string& bootId() {
    static const std::string id = firstLine("/proc/sys/kernel/random/boot_id");
    return id;
}

std::string processFolder(std::int32_t id) {
    return "/proc/" + std::to_string(id);
}

// The user's runtime folder is made when the user logs in, and gone when no login is left. A file
// in it with a number of its own therefore names one stay.
std::string sessionPath() {
    const char* folder = std::getenv("XDG_RUNTIME_DIR");
    return folder != nullptr && folder[0] == '/' ? std::string(folder) + "/glyphora-session"
                                                 : std::string();
}

std::string newSession(const std::string& path) {
    std::random_device random;
    std::ostringstream name;
    name << std::hex << random() << random() << random() << random();
    const std::string text = name.str() + "\n";
    // Aside, so that nobody ever finds it empty.
    const std::string aside = path + "." + name.str();
    const sys::Descriptor file(
        open(aside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    const bool isMade = file && sys::writeAll(file.get(), text) && renameToFree(aside, path);
    if (!isMade) {
        unlink(aside.c_str());
    }
    return isMade ? name.str() : std::string();
}

constexpr std::array<std::string_view, 5> kindNames = {"hand", "document", "use", "logout", "time"};

} // namespace

std::optional<ProcessMark> markOf(std::int32_t processId) {
    const std::string status = firstLine(processFolder(processId) + "/stat");
    // The second field is the program's name, which may hold anything, in brackets.
    constexpr int fieldsBeforeStart = 19;
    std::istringstream rest(status.substr(std::min(status.rfind(')') + 1, status.size())));
    std::string field;
    for (int i = 0; i <= fieldsBeforeStart; ++i) {
        if (!(rest >> field) || (i == 0 && (field == "Z" || field == "X"))) {
            return std::nullopt; // ended, and only not reaped yet
        }
    }
    const auto started = toNumber<std::int64_t>(field);
    return started ? std::optional(ProcessMark{processId, *started, bootId()}) : std::nullopt;
}

bool isRunning(const ProcessMark& process) {
    return process.boot == bootId() && markOf(process.id) == process;
}

bool isOwn(std::int32_t processId) {
    struct stat status {};
    return stat(processFolder(processId).c_str(), &status) == 0 && status.st_uid == geteuid();
}

std::optional<Reason> Reason::forDocumentOf(std::int32_t processId) {
    auto process = markOf(processId);
    return process ? std::optional(Reason{Kind::Document, std::move(*process)}) : std::nullopt;
}

Reason Reason::untilLogout() {
    const std::string path = sessionPath();
    if (path.empty()) {
        throw Error("until logout: XDG_RUNTIME_DIR names no folder that would tell of it");
    }
    std::string session = firstLine(path);
    if (session.empty() && (session = newSession(path)).empty() &&
        (session = firstLine(path)).empty()) { // or another process was quicker
        throw Error(path + ": cannot be made, so that nothing would tell of the logout");
    }
    return {Kind::UntilLogout, {}, session};
}

Reason Reason::forTime(std::chrono::seconds time) {
    return {Kind::UntilTime, {}, {}, std::time(nullptr) + time.count()};
}

bool stands(const Reason& reason) {
    switch (reason.kind) {
    case Reason::Kind::ByHand:
        return true;
    case Reason::Kind::Document:
    case Reason::Kind::InUse:
        return isRunning(reason.process);
    case Reason::Kind::UntilLogout:
        // Whoever has no runtime folder knows of no logout.
        return sessionPath().empty() || firstLine(sessionPath()) == reason.session;
    case Reason::Kind::UntilTime:
        break;
    }
    return std::time(nullptr) < reason.time;
}

void removeEnded(std::vector<Reason>& reasons) {
    std::erase_if(reasons, [](const Reason& reason) { return !stands(reason); });
}

void addReason(std::vector<Reason>& reasons, const Reason& reason) {
    std::erase_if(reasons, [&](const Reason& known) {
        return known.kind == reason.kind && known.process == reason.process;
    });
    reasons.push_back(reason);
}

ReasonChange changeOf(std::vector<Reason> before, std::vector<Reason> after) {
    removeEnded(before);
    removeEnded(after);
    const auto without = [](std::vector<Reason> reasons, const std::vector<Reason>& others) {
        std::erase_if(reasons, [&](const Reason& reason) {
            return std::find(others.begin(), others.end(), reason) != others.end();
        });
        return reasons;
    };
    return {without(after, before), without(before, after)};
}

std::string programName(std::int32_t processId) {
    return firstLine(processFolder(processId) + "/comm");
}

std::string describe(const Reason& reason) {
    return describeIn(reason, [](const char* text) { return std::string(text); });
}

std::string describeIn(const Reason& reason, std::string (*translated)(const char*)) {
    const auto filled = [](std::string text, const std::string& value) {
        const std::size_t place = text.find("%1");
        return place == std::string::npos ? text : text.replace(place, 2, value);
    };
    const auto program = [&] {
        const std::string name = isRunning(reason.process) ? programName(reason.process.id) : "";
        return (name.empty() ? translated("process") : name) + " (" +
               std::to_string(reason.process.id) + ")";
    };
    switch (reason.kind) {
    case Reason::Kind::ByHand:
        return translated("by hand");
    case Reason::Kind::Document:
        return filled(translated("for a document of %1"), program());
    case Reason::Kind::InUse:
        return filled(translated("in use by %1"), program());
    case Reason::Kind::UntilLogout:
        return translated("until logout");
    case Reason::Kind::UntilTime:
        break;
    }
    const std::time_t time = reason.time;
    std::tm parts{};
    std::array<char, 32> text{};
    const bool isDate = localtime_r(&time, &parts) != nullptr &&
                        std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M", &parts) != 0;
    return filled(translated("until %1"), isDate ? text.data() : std::to_string(reason.time));
}

std::string reasonLine(const Reason& reason) {
    const std::string_view kind = kindNames.at(static_cast<std::size_t>(reason.kind));
    switch (reason.kind) {
    case Reason::Kind::ByHand:
        return joinFields({"reason", kind});
    case Reason::Kind::Document:
    case Reason::Kind::InUse:
        return joinFields({"reason", kind, std::to_string(reason.process.id),
                           std::to_string(reason.process.started), reason.process.boot});
    case Reason::Kind::UntilLogout:
        return joinFields({"reason", kind, reason.session});
    case Reason::Kind::UntilTime:
        break;
    }
    return joinFields({"reason", kind, std::to_string(reason.time)});
}

std::optional<Reason> reasonOf(const std::vector<std::string>& fields) {
    const auto* const name = fields.size() < 2
                                 ? kindNames.end()
                                 : std::find(kindNames.begin(), kindNames.end(), fields[1]);
    if (name == kindNames.end()) {
        return std::nullopt;
    }
    Reason reason{static_cast<Reason::Kind>(name - kindNames.begin())};
    switch (reason.kind) {
    case Reason::Kind::ByHand:
        return fields.size() == 2 ? std::optional(reason) : std::nullopt;
    case Reason::Kind::Document:
    case Reason::Kind::InUse: {
        const auto id = fields.size() == 5 ? toNumber<std::int32_t>(fields[2]) : std::nullopt;
        const auto started = id ? toNumber<std::int64_t>(fields[3]) : std::nullopt;
        if (!started) {
            return std::nullopt;
        }
        reason.process = {*id, *started, fields[4]};
        return reason;
    }
    case Reason::Kind::UntilLogout:
        reason.session = fields.size() == 3 ? fields[2] : std::string();
        return reason.session.empty() ? std::nullopt : std::optional(reason);
    case Reason::Kind::UntilTime:
        break;
    }
    const auto time = fields.size() == 3 ? toNumber<std::int64_t>(fields[2]) : std::nullopt;
    reason.time = time.value_or(0);
    return time ? std::optional(reason) : std::nullopt;
}

} // namespace manager
