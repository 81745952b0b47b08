// SPDX-License-Identifier: MIT
// A small desktop of its own for one test: settings, fonts, desktop entries and a message bus, in
// which the real programs run.
#pragma once

#include <nlohmann/json.hpp>

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace endtoend {

/// What a program left behind.
struct Outcome {
    int status = -1; ///< exit status; 128 and the signal when one ended it
    std::string output;
    std::string errors;
};

class World {
public:
    World();
    World(const World&) = delete;
    World& operator=(const World&) = delete;
    /// Ends the bus, and waits for the font manager that was launched into it.
    ~World();

    std::filesystem::path folder() const;
    std::filesystem::path library() const { return folder() / "library"; }

    /// Puts faces of a family of the machine (found by fontconfig) where the desktop sees them.
    void install(const std::string& family) { place(family, folder() / "installed"); }
    /// Puts them into a folder of the library, as an edition of its own: files with the same bytes
    /// would be one font.
    void stock(const std::string& family, const std::string& subfolder);
    /// Puts one file there.
    void stockFile(const std::filesystem::path& font, const std::string& subfolder);

    /// Writes a drawing with one line of text per family; returns its path.
    std::filesystem::path draw(const std::string& name, const std::vector<std::string>& families);
    std::filesystem::path write(const std::string& name, std::string_view text);

    /// Makes the three launchers start `command` instead of the font manager; empty: none is found.
    void launchInstead(const std::string& command);
    void setEnvironment(const std::string& name, const std::string& value);

    Outcome run(const std::vector<std::string>& arguments) const;
    Outcome manager(std::vector<std::string> arguments) const;
    /// Returns when the manager has told so often that it did something.
    void awaitDeed(const std::string& words, int times) const;
    /// Returns when its sockets are closed: a process that is being torn down may look alive.
    void killManager() const;
    /// glyphora-host open --report json ...
    Outcome open(const std::vector<std::string>& arguments) const;
    /// The same without the plug-in.
    Outcome list(const std::filesystem::path& drawing) const;

private:
    void place(const std::string& family, const std::filesystem::path& folder) const;

    struct Parts;
    std::unique_ptr<Parts> parts_;
};

/// The faces of one document of a report, by family.
std::map<std::string, nlohmann::json> facesOf(const Outcome& outcome, std::size_t document = 0);

} // namespace endtoend
