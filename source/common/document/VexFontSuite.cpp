// SPDX-License-Identifier: MIT
// What is done with the fonts that the walk meets.
#include "VexFontSuite.h"

#include "GLYController.h"
#include "documentwalk.h"
#include "suitepointers.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <set>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace {

using GLY::GLYFontInfo;
using Order = GLYFontInfo::SDescendingInfoSort;
using NameCall = AIErr (*)(AIFontKey, char*, std::int32_t);

constexpr std::size_t nameSize = 1000;
constexpr std::int32_t noTechnology = -1;

AIFontKey keyOf(const ATE::IFont& font) {
    AIFontKey key = nullptr;
    return sAIFont->FontKeyFromFont(font.GetRef(), &key) == kNoErr ? key : nullptr;
}

// Longer names are cut; one that cannot be read is empty.
std::string readName(NameCall call, AIFontKey key) {
    std::array<char, nameSize> buffer{};
    call(key, buffer.data(), static_cast<std::int32_t>(nameSize));
    buffer.back() = '\0';
    return buffer.data();
}

Protocol::Font::Type typeOf(const AIFontStyleRecord& record) {
    using Font = Protocol::Font;
    constexpr std::array<std::array<Font::Type, 2>, 2> types{
        {{Font::T1, Font::OT_T1}, {Font::TT, Font::OT_TT}}};
    if (record.technology != 0 && record.technology != 1) {
        return Font::all;
    }
    return types[static_cast<std::size_t>(record.technology)][record.isOpenType != 0 ? 1 : 0];
}

Orvil::SmartPointer<GLYFontInfo> describe(AIFontKey key) {
    Orvil::SmartPointer<GLYFontInfo> info(new GLYFontInfo);
    Protocol::Font& font = info->font;
    font.psName = readName(sAIFont->GetPostScriptFontName, key);
    font.styleName = readName(sAIFont->GetFontStyleName, key);
    font.familyName = readName(sAIFont->GetFontFamilyName, key);
    info->hostName = readName(sAIFont->GetUserFontName, key);
    // With the style as the host gave it, also when that is empty.
    font.syncID = font.psName + "-" + font.styleName;
    if (font.styleName.empty()) {
        font.styleName = "Regular";
    }
    AIFontStyleRecord record;
    record.technology = noTechnology;
    sAIFont->GetFontStyle(key, &record);
    font.type = typeOf(record);
    font.isActive = record.isPresent != 0;
    return info;
}

} // namespace

AIErr VexFontSuite::getMissingFontInfos(FontInfos& fonts) {
    std::set<Orvil::SmartPointer<GLYFontInfo>, Order> families;
    // A font met again would be dropped with its family: it need not be described again.
    std::unordered_set<AIFontKey> met;
    const WalkResult walk =
        walkDocumentFonts([&](const ATE::ITextRange& /*run*/, const ATE::IFont& font) {
            const AIFontKey key = keyOf(font);
            if (met.insert(key).second) {
                families.insert(describe(key));
            }
        });
    if (walk.finished) {
        fonts.insert(fonts.end(), families.begin(), families.end());
        std::sort(fonts.begin(), fonts.end(), Order());
    }
    return walk.error;
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): by value, like the rest of this interface
std::int32_t VexFontSuite::getNumMissingFonts(FontInfos fonts) {
    return static_cast<std::int32_t>(std::count_if(
        fonts.begin(), fonts.end(), [](const auto& info) { return !info->font.isActive; }));
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): by value, like the rest of this interface
std::int32_t VexFontSuite::getNumFontsNotInstalled(FontInfos fonts) {
    return static_cast<std::int32_t>(std::count_if(
        fonts.begin(), fonts.end(), [](const auto& info) { return info->installed == 0; }));
}

GLY::GLYFontRequestEvent VexFontSuite::requestFonts(const FontInfos& fonts) {
    // Also when that was done a moment ago: fonts can be asked for again at any time, and the user
    // may have quit the font manager in between. A failure shows in the exchange.
    GLY::GLYController::LaunchGlyphora();
    GLY::GLYFontRequestEvent request;
    std::copy_if(fonts.begin(), fonts.end(), std::back_inserter(request.fonts),
                 [](const auto& info) { return !info->font.isActive; });
    request.build();
    request.send();
    return request;
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): by value, like the rest of this interface
void VexFontSuite::replaceFontWithFont(std::string oldPsName, std::string newName) {
    std::unordered_map<AIFontKey, bool> isOld;
    walkDocumentFonts([&](const ATE::ITextRange& run, const ATE::IFont& font) {
        const AIFontKey key = keyOf(font);
        const auto [entry, isNew] = isOld.try_emplace(key, false);
        if (isNew) {
            entry->second = readName(sAIFont->GetPostScriptFontName, key) == oldPsName;
        }
        if (!entry->second) {
            return;
        }
        AIFontKey newKey = nullptr;
        if (const AIErr error = sAIFont->FindFont(newName.c_str(), kAIAnyFontTechnology,
                                                  kAINoFontScript, kAIMatchAllFontNames, &newKey);
            error != kNoErr) {
            throw std::int32_t{error};
        }
        ATE::FontRef newFont = nullptr;
        if (const AIErr error = sAIFont->FontFromFontKey(newKey, &newFont); error != kNoErr) {
            throw std::int32_t{error};
        }
        const ATE::IFont replacement(newFont);
        const ATE::ICharFeatures features = ATE::ICharFeatures::Create();
        features.SetFont(replacement);
        run.ReplaceOrAddLocalCharFeatures(features);
    });
}
