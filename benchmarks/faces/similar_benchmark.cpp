// SPDX-License-Identifier: MIT
// Reading all font files of some folders, beside fontconfig's scanner, and finding faces that look
// alike among them, beside fontconfig's sorting.
//
// GLYPHORA_FONT_FOLDERS names the folders, with colons between them; /usr/share/fonts without it.
// The more of Debian's packages fonts-* lie there, the more the figures say. The families of the
// table below are in fonts-liberation, fonts-liberation2, fonts-croscore, fonts-crosextra-carlito,
// fonts-lato, fonts-urw-base35, gsfonts, fonts-texgyre, fonts-freefont-otf, fonts-johnsmith-induni,
// fonts-tlwg-mono-otf, fonts-dejavu, ttf-bitstream-vera, fonts-adf-verana, lmodern, fonts-cmu,
// fonts-noto-core, fonts-open-sans and fonts-stix; those of the other table in fonts-hack,
// fonts-sil-gentium, -gentium-basic, -gentiumplus, -gentiumplus-compact, -charis, -charis-compact,
// -doulos, -doulos-compact, -andika, -andikanewbasic and -andika-compact, fonts-ipafont,
// fonts-ipaexfont, fonts-takao, fonts-katex, fonts-mathjax, fonts-lyx, fonts-jsmath, fonts-karla,
// fonts-karmilla, fonts-inconsolata, fonts-ricty-diminished and texlive-fonts-recommended. Those
// that are not there are left out, and the figure "references" falls. GLYPHORA_TELL_MISSES=1 prints
// the faces for which no copy was found.
#include "faces/fontfile.h"
#include "faces/similar.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fontconfig/fontconfig.h>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

// Needs the one above.
#include <fontconfig/fcfreetype.h>

using namespace faces;

namespace {

/// Families of one design, or drawn for the metrics of one.
using Groups = std::vector<std::vector<std::string>>;

/// Those that the numbers in faces/similar.cpp were set by.
const Groups& knownGroups() {
    static const Groups all = {
        {"Liberation Sans", "Arimo", "Nimbus Sans", "Nimbus Sans L", "TeX Gyre Heros", "FreeSans",
         "IndUni-H"},
        {"Liberation Serif", "Tinos", "Nimbus Roman", "Nimbus Roman No9 L", "TeX Gyre Termes",
         "FreeSerif", "STIX", "IndUni-T"},
        {"Liberation Mono", "Cousine"},
        {"Nimbus Mono PS", "Nimbus Mono L", "IndUni-C", "Tlwg Mono", "TeX Gyre Cursor", "FreeMono"},
        {"Liberation Sans Narrow", "Nimbus Sans Narrow", "TeX Gyre Heros Cn"},
        {"P052", "URW Palladio L", "IndUni-P", "TeX Gyre Pagella"},
        {"C059", "Century Schoolbook L", "IndUni-N", "TeX Gyre Schola"},
        {"URW Bookman", "URW Bookman L", "TeX Gyre Bonum"},
        {"URW Gothic", "URW Gothic L", "TeX Gyre Adventor"},
        {"Z003", "URW Chancery L", "TeX Gyre Chorus"},
        {"Carlito", "Lato"},
        {"DejaVu Sans", "Bitstream Vera Sans", "Verana Sans"},
        {"DejaVu Serif", "Bitstream Vera Serif", "Verana"},
        {"DejaVu Sans Mono", "Bitstream Vera Sans Mono"},
        {"LM Roman 10", "CMU Serif"},
        {"LM Sans 10", "CMU Sans Serif"},
        {"LM Mono 10", "CMU Typewriter Text"},
        {"Open Sans", "Noto Sans"},
    };
    return all;
}

/// Those that nothing was set by.
const Groups& otherGroups() {
    static const Groups all = {
        {"Hack", "DejaVu Sans Mono", "Bitstream Vera Sans Mono"},
        {"Gentium", "Gentium Basic", "Gentium Plus", "Gentium Plus Compact"},
        {"Charis SIL", "Charis SIL Compact", "Bitstream Charter"},
        {"Doulos SIL", "Doulos SIL Compact"},
        {"Andika", "Andika New Basic", "Andika Compact"},
        {"IPAGothic", "TakaoGothic"},
        {"IPAPGothic", "TakaoPGothic", "IPAexGothic"},
        {"IPAMincho", "TakaoMincho"},
        {"IPAPMincho", "TakaoPMincho", "IPAexMincho"},
        {"KaTeX_Main", "MathJax_Main", "cmr10", "jsMath-cmr10"},
        {"KaTeX_SansSerif", "MathJax_SansSerif"},
        {"KaTeX_Typewriter", "MathJax_Typewriter"},
        {"Karla", "Karmilla"},
        {"Inconsolata", "Ricty Diminished"},
    };
    return all;
}

struct Candidate {
    std::string file;
    Face face;
    Likeness likeness{};
};

std::vector<std::string> folders() {
    const char* set = std::getenv("GLYPHORA_FONT_FOLDERS");
    std::istringstream text(set == nullptr ? "/usr/share/fonts" : set);
    std::vector<std::string> all;
    for (std::string folder; std::getline(text, folder, ':');) {
        all.push_back(folder);
    }
    return all;
}

const std::vector<std::string>& files() {
    static const std::vector<std::string> all = [] {
        std::vector<std::string> found;
        for (const std::string& folder : folders()) {
            for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
                if (entry.is_regular_file() && !entry.is_symlink() &&
                    hasFontFileName(entry.path().string())) {
                    found.push_back(entry.path());
                }
            }
        }
        std::sort(found.begin(), found.end());
        return found;
    }();
    return all;
}

void readAllFiles(benchmark::State& state) {
    for (auto _ : state) {
        std::size_t faces = 0;
        for (const std::string& file : files()) {
            try {
                faces += readFontFile(file).faces.size();
            } catch (const UnreadableFont&) { // NOLINT(bugprone-empty-catch): as a scan does
            }
        }
        benchmark::DoNotOptimize(faces);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(files().size()));
}
BENCHMARK(readAllFiles)->Unit(benchmark::kMillisecond);

void readAllFilesByFontconfig(benchmark::State& state) {
    for (auto _ : state) {
        for (const std::string& file : files()) {
            FcFontSet* set = FcFontSetCreate();
            int count = 0;
            FcFreeTypeQueryAll(reinterpret_cast<const FcChar8*>(file.c_str()),
                               static_cast<unsigned>(-1), nullptr, &count, set);
            FcFontSetDestroy(set);
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(files().size()));
}
BENCHMARK(readAllFilesByFontconfig)->Unit(benchmark::kMillisecond);

/// All faces that can be compared.
const std::vector<Candidate>& candidates() {
    static const std::vector<Candidate> all = [] {
        std::vector<Candidate> found;
        for (const std::string& file : files()) {
            try {
                for (Face& face : readFontFile(file).faces) {
                    if (const auto likeness = likenessOf(face)) {
                        found.push_back({file, std::move(face), *likeness});
                    }
                }
            } catch (const UnreadableFont&) { // NOLINT(bugprone-empty-catch): as a scan does
            }
        }
        return found;
    }();
    return all;
}

const std::string& familyOf(const Face& face) {
    return face.names.front().family;
}

/// What is looked for: a face of this style of one of the other families of its group.
struct Question {
    const Candidate* reference = nullptr;
    std::set<std::string> clones;
};

std::vector<Question> questions(const Groups& groups) {
    std::vector<Question> all;
    std::set<std::string> asked;
    for (const auto& group : groups) {
        std::set<std::string> present;
        for (const Candidate& one : candidates()) {
            if (std::find(group.begin(), group.end(), familyOf(one.face)) != group.end()) {
                present.insert(familyOf(one.face));
            }
        }
        for (const Candidate& one : candidates()) {
            const std::string& family = familyOf(one.face);
            const std::string key = family + "/" + std::to_string(one.face.style.weight) + "/" +
                                    std::to_string(one.face.style.slant != Slant::Upright);
            const bool plain = one.face.style.width == 100 &&
                               (one.face.style.weight == 400 || one.face.style.weight == 700);
            if (present.size() > 1 && present.contains(family) && plain &&
                asked.insert(key).second) {
                all.push_back({&one, present});
                all.back().clones.erase(family);
            }
        }
    }
    return all;
}

bool isOfThisStyle(double weight, bool slanted, const Face& reference) {
    return std::abs(weight - reference.style.weight) <= 150 &&
           slanted == (reference.style.slant != Slant::Upright);
}

constexpr std::size_t looked = 5; ///< how many families of an answer are looked at

bool findsByLikeness(const Question& question, const std::vector<Likeness>& likenesses) {
    std::set<std::string> seen;
    for (const auto& [place, distance] :
         similarFaces(question.reference->likeness, likenesses, 200)) {
        const Face& face = candidates()[place].face;
        const std::string& family = familyOf(face);
        if (family == familyOf(question.reference->face) || seen.size() >= looked) {
            continue;
        }
        seen.insert(family);
        if (question.clones.contains(family) &&
            isOfThisStyle(face.style.weight, face.style.slant != Slant::Upright,
                          question.reference->face)) {
            return true;
        }
    }
    return false;
}

void findClones(benchmark::State& state, const Groups& groups) {
    const std::vector<Question> asked = questions(groups);
    std::vector<Likeness> likenesses;
    for (const Candidate& one : candidates()) {
        likenesses.push_back(one.likeness);
    }
    if (asked.empty()) {
        state.SkipWithError("none of the families of the table has another there");
        return;
    }
    std::size_t found = 0;
    for (auto _ : state) {
        found = 0;
        for (const Question& question : asked) {
            const bool hit = findsByLikeness(question, likenesses);
            found += hit ? 1 : 0;
            if (!hit && std::getenv("GLYPHORA_TELL_MISSES") != nullptr) {
                std::fprintf(stderr, "not found: %s %s\n",
                             familyOf(question.reference->face).c_str(),
                             question.reference->face.names.front().style.c_str());
            }
        }
    }
    state.counters["recall"] = static_cast<double>(found) / static_cast<double>(asked.size());
    state.counters["references"] = static_cast<double>(asked.size());
    state.counters["faces"] = static_cast<double>(likenesses.size());
}
BENCHMARK_CAPTURE(findClones, known, knownGroups())->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK_CAPTURE(findClones, others, otherGroups())->Unit(benchmark::kMillisecond)->Iterations(1);

struct ConfigDeleter {
    void operator()(FcConfig* config) const { FcConfigDestroy(config); }
};
struct PatternDeleter {
    void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
};
struct SetDeleter {
    void operator()(FcFontSet* set) const { FcFontSetSortDestroy(set); }
};

bool findsBySorting(const Question& question, FcConfig* config) {
    const Face& reference = question.reference->face;
    const std::unique_ptr<FcPattern, PatternDeleter> pattern(FcPatternCreate());
    FcPatternAddString(pattern.get(), FC_FAMILY,
                       reinterpret_cast<const FcChar8*>(familyOf(reference).c_str()));
    FcPatternAddDouble(pattern.get(), FC_WEIGHT,
                       FcWeightFromOpenTypeDouble(reference.style.weight));
    FcPatternAddInteger(pattern.get(), FC_SLANT,
                        reference.style.slant == Slant::Upright ? FC_SLANT_ROMAN : FC_SLANT_ITALIC);
    FcConfigSubstitute(config, pattern.get(), FcMatchPattern);
    FcDefaultSubstitute(pattern.get());
    FcResult result{};
    const std::unique_ptr<FcFontSet, SetDeleter> sorted(
        FcFontSort(config, pattern.get(), FcFalse, nullptr, &result));
    std::set<std::string> seen;
    for (int i = 0; sorted && i < sorted->nfont && seen.size() <= looked; ++i) {
        FcChar8* text = nullptr;
        double weight = 0;
        int slant = 0;
        FcPatternGetString(sorted->fonts[i], FC_FAMILY, 0, &text);
        FcPatternGetDouble(sorted->fonts[i], FC_WEIGHT, 0, &weight);
        FcPatternGetInteger(sorted->fonts[i], FC_SLANT, 0, &slant);
        const std::string family = text == nullptr ? "" : reinterpret_cast<const char*>(text);
        if (family == familyOf(reference) || (seen.insert(family).second && seen.size() > looked)) {
            continue;
        }
        if (question.clones.contains(family) &&
            isOfThisStyle(FcWeightToOpenTypeDouble(weight), slant != FC_SLANT_ROMAN, reference)) {
            return true;
        }
    }
    return false;
}

// With the desktop's settings, whose aliases know many of these families by name. Faces of the
// family itself are passed over, as if it were not there.
void findClonesByFontconfig(benchmark::State& state, const Groups& groups) {
    std::string settings = "<?xml version=\"1.0\"?><!DOCTYPE fontconfig SYSTEM "
                           "\"urn:fontconfig:fonts.dtd\"><fontconfig>"
                           "<include ignore_missing=\"yes\">/etc/fonts/conf.d</include>";
    for (const std::string& folder : folders()) {
        settings += "<dir>" + folder + "</dir>";
    }
    settings += "<cachedir>" +
                (std::filesystem::temp_directory_path() / "glyphora-benchmark-fonts").string() +
                "</cachedir></fontconfig>";
    const std::unique_ptr<FcConfig, ConfigDeleter> config(FcConfigCreate());
    FcConfigParseAndLoadFromMemory(config.get(), reinterpret_cast<const FcChar8*>(settings.c_str()),
                                   FcTrue);
    FcConfigBuildFonts(config.get());
    const std::vector<Question> asked = questions(groups);
    if (asked.empty()) {
        state.SkipWithError("none of the families of the table has another there");
        return;
    }
    std::size_t found = 0;
    for (auto _ : state) {
        found = static_cast<std::size_t>(
            std::count_if(asked.begin(), asked.end(), [&](const Question& question) {
                return findsBySorting(question, config.get());
            }));
    }
    state.counters["recall"] = static_cast<double>(found) / static_cast<double>(asked.size());
    state.counters["references"] = static_cast<double>(asked.size());
}
BENCHMARK_CAPTURE(findClonesByFontconfig, known, knownGroups())
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK_CAPTURE(findClonesByFontconfig, others, otherGroups())
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

void searchOneHundredThousandFaces(benchmark::State& state) {
    std::vector<Likeness> many(100'000);
    for (std::size_t i = 0; i < many.size(); ++i) {
        for (std::size_t part = 0; part < many[i].parts.size(); ++part) {
            many[i].parts[part] = static_cast<float>((i * 7919 + part * 104'729) % 1000) / 50;
        }
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(similarFaces(many[12'345], many, looked));
    }
}
BENCHMARK(searchOneHundredThousandFaces)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
