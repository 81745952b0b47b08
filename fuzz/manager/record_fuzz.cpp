// SPDX-License-Identifier: MIT
// Any bytes as a set record: none leads out of its folder, and what is read reads the same when
// written again.
#include "fuzz/manager/memoryfile.h"
#include "manager/activation/setrecord.h"
#include "manager/library/error.h"
#include "manager/library/places.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const fuzz::MemoryFile file(data, size);
    try {
        const auto record = manager::readSetRecordFile(file.path());
        REQUIRE(record && record->id != manager::ContainerId{});
        for (const manager::SetFile& listed : record->files) {
            const std::filesystem::path place = std::filesystem::path("/set") / listed.name;
            REQUIRE(place.lexically_normal().parent_path() == "/set");
            REQUIRE(listed.name.find('\0') == std::string::npos && listed.name != ".");
        }
        manager::writeFile(file.path(), manager::recordText(*record));
        REQUIRE(manager::readSetRecordFile(file.path()) == record);
    } catch (const manager::Error& error) {
        REQUIRE(std::string_view(error.what()).starts_with(file.path() + ": "));
    }
    return 0;
}
