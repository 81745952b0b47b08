// SPDX-License-Identifier: MIT
// Acquires the host's suites and gives them back: one table says which, and is walked either way.
#pragma once

#include "sp/types.h"

#include <cstdint>
#include <span>

/// One suite to acquire. A null name ends a table.
struct SuiteRow {
    const char* name;
    std::int32_t version;
    void* pointer; ///< address of the global suite pointer that takes the table
};

/// In the version column of the row that ends the required suites, it says that optional ones
/// follow, up to a further row without a name.
constexpr std::int32_t optionalSuitesFollow = FourChars("OPTS");

/// Needed before all others, acquired first and released first; without an ending row.
extern const std::span<const SuiteRow> gBasicSuites;
/// All other suites, and the ending row.
extern const std::span<const SuiteRow> gImportSuites;

/// Holds the suites for as long as it lives. Several holders share one acquisition, which ends with
/// the last of them. Throws nothing. [main-thread]
class Suites {
public:
    /// Acquires `gBasicSuites` and `gImportSuites`; error() tells the outcome.
    Suites() noexcept;
    /// The same with another import table, which must end with a row without a name and outlive
    /// this object.
    explicit Suites(const SuiteRow* importSuites) noexcept;
    Suites(const Suites&) = delete;
    Suites& operator=(const Suites&) = delete;
    ~Suites();

    /// The error of the first acquisition that failed, or 0. What was acquired before it is held
    /// all the same.
    [[nodiscard]] SPErr error() const noexcept { return error_; }

    /// Tries every optional suite whose pointer is still null, and skips those that the host lacks.
    void acquire_Optional_Suites() noexcept;

    std::uint16_t optionalCount() const noexcept { return optionalCount_; }
    std::uint16_t requiredCount() const noexcept { return requiredCount_; }
    std::uint16_t optionalAcquiredCount() const noexcept { return optionalAcquiredCount_; }

    /// How many holders share the acquisition. Whoever creates the first holder sets it to 1, even
    /// after a failure, so that the holder's end releases what was acquired.
    static std::int16_t fAcquiredCount;

private:
    SPErr AcquireSuites() noexcept;
    SPErr ReleaseSuites() noexcept;
    std::span<const SuiteRow> required() const noexcept;
    std::span<const SuiteRow> optional() const noexcept;

    SPErr error_ = kNoErr;
    std::uint16_t optionalCount_ = 0;
    std::uint16_t requiredCount_ = 0;
    std::uint16_t optionalAcquiredCount_ = 0;
    const SuiteRow* importSuites_;
};
