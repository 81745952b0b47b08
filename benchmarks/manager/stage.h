// SPDX-License-Identifier: MIT
// A library of 100,000 font files (GLYPHORA_BENCHMARK_FILES: as many) with a data folder and a font
// world of its own, for all benchmarks of this program.
#pragma once

#include "benchmarks/manager/manyfonts.h"
#include "manager/library/places.h"
#include "tests/support/temporaryfolder.h"

#include <chrono>
#include <string>
#include <vector>

namespace benchmarks {

/// A temporary folder that is XDG_DATA_HOME and all that fontconfig looks at while this lives.
class World {
public:
    World();
    [[nodiscard]] std::string root() const { return folder_.path().string(); }
    [[nodiscard]] manager::Places places() const { return {root() + "/data"}; }
    /// Where font files are to lie.
    [[nodiscard]] std::string library() const { return root() + "/library"; }
    /// Records the library folder, scans it as far as it has changed. Throws manager::Error.
    void scan() const;

private:
    testsupport::TemporaryFolder folder_;
    testsupport::Variable data_{"XDG_DATA_HOME", root() + "/data"};
    testsupport::Variable fontconfig_{"FONTCONFIG_FILE", root() + "/fonts.conf"};
};

struct Stage {
    World world;
    ManyFonts fonts;
    bool isScanned = false;
};

/// The one stage, made when it is asked for first.
[[nodiscard]] Stage& stage();
/// The same with an index of it.
[[nodiscard]] Stage& scannedStage();

/// So many of the names of a stage's fonts, from all over the library.
[[nodiscard]] std::vector<std::string> spreadNames(std::size_t count);

inline double secondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

} // namespace benchmarks
