// SPDX-License-Identifier: MIT
// Languages come from fontconfig's tables, scripts from HarfBuzz's.
#include "faces/coverage.h"

#include <algorithm>
#include <fontconfig/fontconfig.h>
#include <hb.h>
#include <iterator>
#include <map>
#include <memory>
#include <span>

namespace faces {

namespace {

constexpr std::size_t keptAnswers = 256;
constexpr char32_t lastWithScript = 0x323AF; ///< the end of the last block of letters

struct StringSetDeleter {
    void operator()(FcStrSet* set) const { FcStrSetDestroy(set); }
};
struct StringListDeleter {
    void operator()(FcStrList* list) const { FcStrListDone(list); }
};

hb_script_t scriptOf(char32_t character) {
    return hb_unicode_script(hb_unicode_funcs_get_default(), character);
}

std::string tagOf(hb_script_t script) {
    std::array<char, 5> text{};
    hb_tag_to_string(hb_script_to_iso15924_tag(script), text.data());
    return text.data();
}

bool isOfOneScript(hb_script_t script) {
    return script != HB_SCRIPT_COMMON && script != HB_SCRIPT_INHERITED &&
           script != HB_SCRIPT_UNKNOWN && script != HB_SCRIPT_INVALID;
}

// Many of a script's characters: half of a small one; the letters of an alphabet; of Chinese about
// as many as are taught at school.
std::size_t enoughOf(std::size_t characters) {
    return std::min(characters / 2, std::max<std::size_t>(40, characters / 50));
}

} // namespace

void addCharacter(Coverage& coverage, char32_t character) {
    if (!coverage.empty() && coverage.back().second + 1 == character) {
        coverage.back().second = character;
    } else {
        coverage.emplace_back(character, character);
    }
}

bool covers(const Coverage& coverage, char32_t character) {
    const auto after = std::upper_bound(
        coverage.begin(), coverage.end(), character,
        [](char32_t one, const std::pair<char32_t, char32_t>& range) { return one < range.first; });
    return after != coverage.begin() && std::prev(after)->second >= character;
}

LanguageFinder::LanguageFinder() {
    readLanguages();
    readScripts();
}

void LanguageFinder::readLanguages() {
    const std::unique_ptr<FcStrSet, StringSetDeleter> all(FcGetLangs());
    const std::unique_ptr<FcStrList, StringListDeleter> list(FcStrListCreate(all.get()));
    while (const FcChar8* name = list ? FcStrListNext(list.get()) : nullptr) {
        const FcCharSet* characters = FcLangGetCharSet(name);
        if (characters == nullptr) {
            continue;
        }
        Language& language = languages_.emplace_back();
        language.name = reinterpret_cast<const char*>(name);
        std::map<hb_script_t, int> scripts;
        FcChar32 next = 0;
        Page page{};
        for (FcChar32 base = FcCharSetFirstPage(characters, page.data(), &next);
             base != FC_CHARSET_DONE; base = FcCharSetNextPage(characters, page.data(), &next)) {
            language.pages.emplace_back(base >> 8U, page);
            for (FcChar32 i = 0; i < 256; ++i) {
                if (const auto script = scriptOf(base + i);
                    (page[i / 32] >> (i % 32) & 1U) != 0 && isOfOneScript(script)) {
                    ++scripts[script];
                }
            }
        }
        const auto most =
            std::max_element(scripts.begin(), scripts.end(),
                             [](const auto& a, const auto& b) { return a.second < b.second; });
        language.script = most == scripts.end() ? std::string() : tagOf(most->first);
    }
    std::sort(languages_.begin(), languages_.end(),
              [](const Language& a, const Language& b) { return a.name < b.name; });
}

void LanguageFinder::readScripts() {
    std::map<hb_script_t, std::size_t> places;
    std::vector<std::size_t> counts;
    for (char32_t character = 0; character <= lastWithScript; ++character) {
        const hb_script_t script = scriptOf(character);
        if (!isOfOneScript(script)) {
            continue;
        }
        const auto [entry, isNew] = places.try_emplace(script, places.size());
        if (isNew) {
            scripts_.push_back({tagOf(script), 0});
            counts.push_back(0);
        }
        ++counts[entry->second];
        if (!ranges_.empty() && ranges_.back().last + 1 == character &&
            ranges_.back().script == entry->second) {
            ranges_.back().last = character;
        } else {
            ranges_.push_back({character, character, entry->second});
        }
    }
    std::transform(counts.begin(), counts.end(), scripts_.begin(), scripts_.begin(),
                   [](std::size_t count, Script script) {
                       script.enough = enoughOf(count);
                       return script;
                   });
}

std::vector<std::string> LanguageFinder::scriptsByCount(const Coverage& coverage) const {
    std::vector<std::size_t> counts(scripts_.size());
    auto range = ranges_.begin();
    for (const auto& [first, last] : coverage) {
        while (range != ranges_.end() && range->last < first) {
            ++range;
        }
        for (auto one = range; one != ranges_.end() && one->first <= last; ++one) {
            counts[one->script] += std::min(last, one->last) - std::max(first, one->first) + 1;
        }
    }
    std::vector<std::string> names;
    for (std::size_t i = 0; i < counts.size(); ++i) {
        if (counts[i] > 0 && counts[i] >= scripts_[i].enough) {
            names.push_back(scripts_[i].name);
        }
    }
    return names;
}

Languages LanguageFinder::ask(const Coverage& coverage) const {
    std::vector<std::uint16_t> places(0x1100, 0); // of each page in `pages`; 0: an empty one
    std::vector<Page> pages(1);
    for (const auto& [first, last] : coverage) {
        for (char32_t character = first; character <= last && character < 0x110000; ++character) {
            std::uint16_t& place = places[character >> 8U];
            if (place == 0) {
                place = static_cast<std::uint16_t>(pages.size());
                pages.emplace_back();
            }
            pages[place][character >> 5U & 7U] |= 1U << (character & 31U);
        }
    }
    Languages found;
    for (const Language& language : languages_) {
        const bool covered =
            std::all_of(language.pages.begin(), language.pages.end(), [&](const auto& wanted) {
                const Page& had = pages[places[wanted.first]];
                return std::equal(
                    wanted.second.begin(), wanted.second.end(), had.begin(),
                    [](std::uint32_t want, std::uint32_t have) { return (want & ~have) == 0; });
            });
        if (covered) {
            found.languages.push_back(language.name);
            found.scripts.push_back(language.script);
        }
    }
    std::vector<std::string> counted = scriptsByCount(coverage);
    std::move(counted.begin(), counted.end(), std::back_inserter(found.scripts));
    std::erase(found.scripts, std::string());
    std::sort(found.scripts.begin(), found.scripts.end());
    found.scripts.erase(std::unique(found.scripts.begin(), found.scripts.end()),
                        found.scripts.end());
    return found;
}

const Languages& LanguageFinder::find(const Coverage& coverage) {
    const std::string key(reinterpret_cast<const char*>(coverage.data()),
                          coverage.size() * sizeof(Coverage::value_type));
    if (known_.size() >= keptAnswers && !known_.contains(key)) {
        known_.clear();
    }
    const auto [entry, isNew] = known_.try_emplace(key);
    if (isNew) {
        entry->second = ask(coverage);
    }
    return entry->second;
}

} // namespace faces
