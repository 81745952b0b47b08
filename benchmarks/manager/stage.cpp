// SPDX-License-Identifier: MIT
// The stage is made once: to write the files takes longer than most of what is measured.
#include "benchmarks/manager/stage.h"

#include "manager/library/folders.h"
#include "manager/library/update.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

namespace benchmarks {

namespace {

constexpr std::uint32_t seed = 1;

std::size_t fileCount() {
    const char* text = std::getenv("GLYPHORA_BENCHMARK_FILES");
    return text == nullptr ? 100'000 : std::stoul(text);
}

} // namespace

World::World() {
    std::filesystem::create_directories(library());
    std::filesystem::create_directories(root() + "/data/fonts");
    std::ofstream(root() + "/fonts.conf")
        << "<?xml version=\"1.0\"?><fontconfig><dir>" << root() << "/data/fonts</dir><cachedir>"
        << root() << "/cache</cachedir></fontconfig>";
}

void World::scan() const {
    const std::array<std::string, 1> folders = {library()};
    manager::addFolders(places(), folders);
    manager::FontReaderLimits limits;
    limits.processes = std::clamp(std::thread::hardware_concurrency(), 1U, 8U);
    manager::Library library(places());
    updateLibrary(library, folders, limits);
}

Stage& stage() {
    static Stage stage;
    if (stage.fonts.files == 0) {
        stage.fonts = makeManyFonts(stage.world.library(), fileCount(), seed);
    }
    return stage;
}

Stage& scannedStage() {
    Stage& scanned = stage();
    if (!scanned.isScanned) {
        scanned.world.scan();
        scanned.isScanned = true;
    }
    return scanned;
}

std::vector<std::string> spreadNames(std::size_t count) {
    constexpr std::size_t stride = 7919;
    const auto& names = stage().fonts.postScriptNames;
    std::vector<std::string> spread(count);
    for (std::size_t i = 0; i < count; ++i) {
        spread[i] = names[i * stride % names.size()];
    }
    return spread;
}

} // namespace benchmarks
