// SPDX-License-Identifier: MIT
// Setting up and tearing down a test's desktop.
#include "world.h"

#include "system/descriptor.h"
#include "tests/support/privatebus/privatebus.h"
#include "tests/support/temporaryfolder.h"

#include <gtest/gtest.h>

#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <gio/gio.h>
#include <stdexcept>

namespace fs = std::filesystem;

namespace endtoend {

namespace {

template <auto free>
struct Freer {
    template <typename T>
    void operator()(T* object) const {
        free(object);
    }
};
using Launcher = std::unique_ptr<GSubprocessLauncher, Freer<g_object_unref>>;
using Process = std::unique_ptr<GSubprocess, Freer<g_object_unref>>;
using Text = std::unique_ptr<char, Freer<g_free>>;

std::string takeError(GError* error) {
    std::string message = error != nullptr ? error->message : "unknown";
    g_clear_error(&error);
    return message;
}

} // namespace

struct World::Parts {
    testsupport::TemporaryFolder folder;
    std::unique_ptr<testsupport::PrivateBus> bus;
    std::map<std::string, std::string> environment;
};

World::World() : parts_(std::make_unique<Parts>()) {
    for (const char* name : {"home", "data", "cache", "config", "state", "runtime", "installed",
                             "library", "documents", "share/applications"}) {
        fs::create_directories(folder() / name);
    }
    fs::permissions(folder() / "runtime", fs::perms::owner_all);
    write("fonts.conf", "<?xml version=\"1.0\"?><fontconfig><dir>" +
                            (folder() / "installed").string() +
                            "</dir><dir prefix=\"xdg\">fonts</dir>"
                            "<cachedir prefix=\"xdg\">fontconfig</cachedir></fontconfig>");
    parts_->bus = std::make_unique<testsupport::PrivateBus>();
    setEnvironment("HOME", (folder() / "home").string());
    setEnvironment("XDG_DATA_HOME", (folder() / "data").string());
    setEnvironment("XDG_CACHE_HOME", (folder() / "cache").string());
    setEnvironment("XDG_CONFIG_HOME", (folder() / "config").string());
    setEnvironment("XDG_STATE_HOME", (folder() / "state").string());
    setEnvironment("XDG_RUNTIME_DIR", (folder() / "runtime").string());
    setEnvironment("XDG_DATA_DIRS", GLYPHORA_BUILD "/share");
    setEnvironment("FONTCONFIG_FILE", (folder() / "fonts.conf").string());
    setEnvironment("DBUS_SESSION_BUS_ADDRESS", parts_->bus->address());
    setEnvironment("LC_ALL", "C.UTF-8");
    setEnvironment("GLYPHORA_REPLY_TIME", "20000"); // however slow the machine is
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        setEnvironment(name, "");
    }
}

World::~World() {
    manager({"quit"});
    parts_->bus.reset();
}

fs::path World::folder() const {
    return parts_->folder.path();
}

void World::setEnvironment(const std::string& name, const std::string& value) {
    parts_->environment[name] = value;
}

void World::place(const std::string& family, const fs::path& folder) const {
    // The machine's own fonts are the material, so the environment is the test's own here.
    const std::string command =
        "unset FONTCONFIG_FILE; fc-list --format '%{file}\\n' ':family=" + family + ":width=100'";
    const std::unique_ptr<FILE, int (*)(FILE*)> list(popen(command.c_str(), "r"), pclose);
    std::array<char, 4096> line{};
    std::size_t count = 0;
    fs::create_directories(folder);
    while (list && std::fgets(line.data(), line.size(), list.get()) != nullptr) {
        std::string file = line.data();
        file.erase(file.find_last_not_of('\n') + 1);
        fs::copy_file(file, folder / fs::path(file).filename(),
                      fs::copy_options::overwrite_existing);
        ++count;
    }
    if (count == 0) {
        throw std::runtime_error("the machine has no font of the family " + family);
    }
}

void World::stock(const std::string& family, const std::string& subfolder) {
    place(family, library() / subfolder);
    for (const fs::directory_entry& file : fs::directory_iterator(library() / subfolder)) {
        std::ofstream(file.path(), std::ios::binary | std::ios::app) << subfolder;
    }
}

void World::stockFile(const fs::path& font, const std::string& subfolder) {
    fs::create_directories(library() / subfolder);
    fs::copy_file(font, library() / subfolder / font.filename());
}

fs::path World::write(const std::string& name, std::string_view text) {
    fs::path path = folder() / name;
    std::ofstream file(path, std::ios::binary);
    file << text;
    return path;
}

fs::path World::draw(const std::string& name, const std::vector<std::string>& families) {
    std::string text = "<svg xmlns=\"http://www.w3.org/2000/svg\"><g id=\"layer\">\n";
    for (const std::string& family : families) {
        text += "<text font-family=\"'" + family + "'\">Harbour</text>\n";
    }
    return write("documents/" + name, text + "</g></svg>\n");
}

void World::launchInstead(const std::string& command) {
    setEnvironment("XDG_DATA_DIRS", (folder() / "share").string());
    if (command.empty()) {
        return;
    }
    for (const char* suffix : {"3", "2", ""}) {
        write(std::string("share/applications/org.glyphora.Glyphora.Launcher") + suffix +
                  ".desktop",
              "[Desktop Entry]\nType=Application\nName=Glyphora\nExec=" + command + "\n");
    }
}

Outcome World::run(const std::vector<std::string>& arguments) const {
    const Launcher launcher(g_subprocess_launcher_new(static_cast<GSubprocessFlags>(
        G_SUBPROCESS_FLAGS_STDOUT_PIPE | G_SUBPROCESS_FLAGS_STDERR_PIPE)));
    for (const auto& [name, value] : parts_->environment) {
        g_subprocess_launcher_setenv(launcher.get(), name.c_str(), value.c_str(), 1);
    }
    std::vector<const char*> words;
    words.reserve(arguments.size() + 1);
    for (const std::string& argument : arguments) {
        words.push_back(argument.c_str());
    }
    words.push_back(nullptr);
    GError* error = nullptr;
    const Process process(g_subprocess_launcher_spawnv(launcher.get(), words.data(), &error));
    if (!process) {
        throw std::runtime_error(arguments.front() + ": " + takeError(error));
    }
    GBytes* output = nullptr;
    GBytes* errors = nullptr;
    if (g_subprocess_communicate(process.get(), nullptr, nullptr, &output, &errors, &error) == 0) {
        throw std::runtime_error(arguments.front() + ": " + takeError(error));
    }
    const auto take = [](GBytes* bytes) {
        const std::unique_ptr<GBytes, Freer<g_bytes_unref>> owner(bytes);
        gsize size = 0;
        const auto* data = static_cast<const char*>(g_bytes_get_data(bytes, &size));
        return std::string(data == nullptr ? "" : data, size);
    };
    Outcome outcome;
    outcome.output = take(output);
    outcome.errors = take(errors);
    outcome.status = g_subprocess_get_if_exited(process.get()) != 0
                         ? g_subprocess_get_exit_status(process.get())
                         : 128 + g_subprocess_get_term_sig(process.get());
    return outcome;
}

Outcome World::manager(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), GLYPHORA_MANAGER);
    return run(arguments);
}

void World::awaitDeed(const std::string& words, int times) const {
    for (int count = 0; count < times;) {
        const std::string told = manager({"history"}).output;
        count = 0;
        for (auto at = told.find(words); at != std::string::npos; at = told.find(words, at + 1)) {
            ++count;
        }
    }
}

void World::killManager() const {
    const auto status = nlohmann::json::parse(manager({"status", "--json"}).output);
    const auto process = status.at("server").get<pid_t>();
    const sys::Descriptor ended(static_cast<int>(syscall(SYS_pidfd_open, process, 0)));
    ASSERT_TRUE(ended);
    ASSERT_EQ(kill(process, SIGKILL), 0);
    pollfd watched{ended.get(), POLLIN, 0};
    EXPECT_EQ(poll(&watched, 1, -1), 1);
}

Outcome World::open(const std::vector<std::string>& arguments) const {
    std::vector<std::string> words{GLYPHORA_HOST,   "open",     "--plugin",
                                   GLYPHORA_BUNDLE, "--report", "json"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return run(words);
}

Outcome World::list(const fs::path& drawing) const {
    return run({GLYPHORA_HOST, "open", "--no-plugin", "--report", "json", drawing.string()});
}

std::map<std::string, nlohmann::json> facesOf(const Outcome& outcome, std::size_t document) {
    std::map<std::string, nlohmann::json> faces;
    const auto report = nlohmann::json::parse(outcome.output, nullptr, false);
    if (report.is_discarded()) {
        ADD_FAILURE() << "no report:\n" << outcome.output << outcome.errors;
        return faces;
    }
    for (const auto& face : report.at("documents").at(document).at("faces")) {
        faces[face.at("family").get<std::string>()] = face;
    }
    return faces;
}

} // namespace endtoend
