// SPDX-License-Identifier: MIT
// The tables of suites and the loops over them.
#include "Suites.h"

#include "suitepointers.h"

#include <array>
#include <cstring>

namespace {

#define GLYPHORA_SUITE_ROW(type, pointer, name, version) SuiteRow{name, version, &(pointer)},

constexpr std::array basicSuites{GLYPHORA_BASIC_SUITES(GLYPHORA_SUITE_ROW)};
constexpr std::array importSuites{GLYPHORA_IMPORT_SUITES(GLYPHORA_SUITE_ROW)
                                      SuiteRow{nullptr, 0, nullptr}};

#undef GLYPHORA_SUITE_ROW

static_assert(basicSuites.size() == 5);
static_assert(importSuites.size() == 121 + 1);

// The globals are pointers of many types, all to structures and so of one representation: their
// bytes are copied, no pointer is read through another's type.
const void* suiteOf(const SuiteRow& row) noexcept {
    const void* suite = nullptr;
    std::memcpy(&suite, row.pointer, sizeof suite);
    return suite;
}

void setSuite(const SuiteRow& row, const void* suite) noexcept {
    std::memcpy(row.pointer, &suite, sizeof suite);
}

SPErr acquire(const SuiteRow& row) noexcept {
    const void* suite = nullptr;
    const SPErr error = sSPBasic->AcquireSuite(row.name, row.version, &suite);
    if (error == kNoErr) {
        setSuite(row, suite);
    }
    return error;
}

SPErr release(const SuiteRow& row) noexcept {
    const SPErr error = sSPBasic->ReleaseSuite(row.name, row.version);
    if (error == kNoErr) {
        setSuite(row, nullptr);
    }
    return error;
}

std::uint16_t countRows(const SuiteRow* row) noexcept {
    std::uint16_t count = 0;
    while (row[count].name != nullptr) {
        ++count;
    }
    return count;
}

} // namespace

const std::span<const SuiteRow> gBasicSuites = basicSuites;
const std::span<const SuiteRow> gImportSuites = importSuites;

std::int16_t Suites::fAcquiredCount = 0;

Suites::Suites() noexcept : Suites(importSuites.data()) {}

Suites::Suites(const SuiteRow* importTable) noexcept
    : requiredCount_(countRows(importTable)), importSuites_(importTable) {
    if (importTable[requiredCount_].version == optionalSuitesFollow) {
        optionalCount_ = countRows(importTable + requiredCount_ + 1);
    }
    error_ = AcquireSuites();
    if (error_ == kNoErr) {
        acquire_Optional_Suites();
    }
}

Suites::~Suites() {
    ReleaseSuites(); // nobody is left to be told of a failure
}

std::span<const SuiteRow> Suites::required() const noexcept {
    return {importSuites_, requiredCount_};
}

std::span<const SuiteRow> Suites::optional() const noexcept {
    return {importSuites_ + requiredCount_ + (optionalCount_ > 0 ? 1 : 0), optionalCount_};
}

SPErr Suites::AcquireSuites() noexcept {
    if (fAcquiredCount == 0) {
        for (const std::span<const SuiteRow> table : {std::span(gBasicSuites), required()}) {
            for (const SuiteRow& row : table) {
                if (const SPErr error = acquire(row); error != kNoErr) {
                    return error;
                }
            }
        }
    }
    ++fAcquiredCount;
    return kNoErr;
}

void Suites::acquire_Optional_Suites() noexcept {
    for (const SuiteRow& row : optional()) {
        if (suiteOf(row) == nullptr && acquire(row) == kNoErr) {
            ++optionalAcquiredCount_;
        }
    }
}

SPErr Suites::ReleaseSuites() noexcept {
    --fAcquiredCount;
    if (fAcquiredCount != 0) {
        return kNoErr;
    }
    const std::array tables{std::span(gBasicSuites), required(), optional()};
    for (std::size_t i = 0; i < tables.size(); ++i) {
        for (const SuiteRow& row : tables[i]) {
            if (suiteOf(row) == nullptr) {
                continue;
            }
            if (const SPErr error = release(row); error != kNoErr) {
                return error;
            }
            if (i + 1 == tables.size()) {
                --optionalAcquiredCount_;
            }
        }
    }
    return kNoErr;
}
