// SPDX-License-Identifier: MIT
// What substitution adds behind a family and binds as strongly as that is told by the settings;
// what any family falls back to is bound weakly.
#include "manager/exchange/familyaliases.h"

#include <algorithm>

namespace manager {

namespace {

struct PatternDeleter {
    void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
};
using PatternHandle = std::unique_ptr<FcPattern, PatternDeleter>;

const FcChar8* bytesOf(const std::string& text) {
    return reinterpret_cast<const FcChar8*>(text.c_str());
}

} // namespace

void FamilyAliases::learn(const std::set<std::string>& families) {
    constexpr std::size_t most =
        10'000; // names that were asked for need not be remembered for ever
    if (!config_ || FcConfigUptoDate(config_.get()) == FcFalse || aliases_.size() > most) {
        config_.reset(FcInitLoadConfig());
        aliases_.clear();
    }
    std::vector<std::string> asked;
    std::copy_if(families.begin(), families.end(), std::back_inserter(asked),
                 [&](const std::string& family) { return !aliases_.contains(family); });
    if (asked.empty() || !config_) {
        return;
    }
    // Substitution takes a time that grows with the square of their number.
    constexpr std::size_t portion = 200;
    for (std::span<const std::string> rest(asked); !rest.empty();) {
        const auto some = rest.first(std::min(portion, rest.size()));
        learnTogether(some);
        rest = rest.subspan(some.size());
    }
}

void FamilyAliases::learnTogether(std::span<const std::string> families) {
    static const std::string mark =
        "\n"; // what is bound to a family comes before the mark behind it
    const PatternHandle pattern(FcPatternCreate());
    for (const std::string& family : families) {
        FcPatternAddString(pattern.get(), FC_FAMILY, bytesOf(family));
        FcPatternAddString(pattern.get(), FC_FAMILY, bytesOf(mark));
    }
    FcConfigSubstitute(config_.get(), pattern.get(), FcMatchPattern);
    FcValue value{};
    FcValueBinding binding{};
    auto next = families.begin();
    std::vector<std::string>* found = nullptr;
    for (int i = 0;
         FcPatternGetWithBinding(pattern.get(), FC_FAMILY, i, &value, &binding) == FcResultMatch;
         ++i) {
        const std::string family =
            value.type == FcTypeString ? reinterpret_cast<const char*>(value.u.s) : "";
        if (family == mark) {
            found = nullptr;
        } else if (found == nullptr && next != families.end() && family == *next) {
            found = &aliases_[*next++];
        } else if (found != nullptr && binding != FcValueBindingWeak) {
            found->push_back(family);
        }
    }
}

const std::vector<std::string>& FamilyAliases::of(const std::string& family) const {
    static const std::vector<std::string> none;
    const auto found = aliases_.find(family);
    return found == aliases_.end() || family.empty() ? none : found->second;
}

} // namespace manager
