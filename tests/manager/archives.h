// SPDX-License-Identifier: MIT
// Archives of a test's own.
#pragma once

#include <archive.h>
#include <archive_entry.h>

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace managertest {

struct Entry {
    std::string name;
    std::string bytes;
    std::string symbolicLink = {}; ///< to
    std::string hardLink = {};     ///< to
};

/// Writes the archive in the form that its name asks for; with a password only a .zip.
inline void makeArchive(const std::string& path, const std::vector<Entry>& entries,
                        const char* password = nullptr) {
    const std::unique_ptr<archive, int (*)(archive*)> made(archive_write_new(), archive_write_free);
    const bool isZst = path.ends_with(".tar.zst");
    const bool isTgz = path.ends_with(".tgz"); // neither does libarchive know by its name
    if (isZst) {
        archive_write_set_format_pax_restricted(made.get());
        archive_write_add_filter_zstd(made.get());
    }
    ASSERT_EQ(isZst ? ARCHIVE_OK
                    : archive_write_set_format_filter_by_ext(
                          made.get(), (isTgz ? std::string("x.tar.gz") : path).c_str()),
              ARCHIVE_OK)
        << archive_error_string(made.get());
    if (password != nullptr) {
        ASSERT_EQ(archive_write_set_options(made.get(), "zip:encryption=traditional"), ARCHIVE_OK);
        ASSERT_EQ(archive_write_set_passphrase(made.get(), password), ARCHIVE_OK);
    }
    ASSERT_EQ(archive_write_open_filename(made.get(), path.c_str()), ARCHIVE_OK);
    for (const Entry& entry : entries) {
        const std::unique_ptr<archive_entry, void (*)(archive_entry*)> header(archive_entry_new(),
                                                                              archive_entry_free);
        archive_entry_set_pathname(header.get(), entry.name.c_str());
        archive_entry_set_perm(header.get(), 0644);
        archive_entry_set_filetype(header.get(), entry.symbolicLink.empty() ? AE_IFREG : AE_IFLNK);
        if (!entry.symbolicLink.empty()) {
            archive_entry_set_symlink(header.get(), entry.symbolicLink.c_str());
        } else if (!entry.hardLink.empty()) {
            archive_entry_set_hardlink(header.get(), entry.hardLink.c_str());
        } else {
            archive_entry_set_size(header.get(), static_cast<la_int64_t>(entry.bytes.size()));
        }
        ASSERT_EQ(archive_write_header(made.get(), header.get()), ARCHIVE_OK)
            << archive_error_string(made.get());
        archive_write_data(made.get(), entry.bytes.data(), entry.bytes.size());
    }
    ASSERT_EQ(archive_write_close(made.get()), ARCHIVE_OK);
}

} // namespace managertest
