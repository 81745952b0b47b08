// SPDX-License-Identifier: MIT
// Reading one drawing for its faces.
#include "host/check/drawingfaces.h"

#include "host/documents/textline.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <exception>
#include <glib.h>
#include <new>
#include <system_error>
#include <unordered_map>

namespace host {

namespace {

/// Those that draw nothing by themselves, and those that fonts need not have.
bool leavesAMark(gunichar character) {
    constexpr gunichar variationSelectors = 0xFE00;
    constexpr gunichar lastVariationSelector = 0xFE0F;
    return g_unichar_isgraph(character) != 0 && g_unichar_iszerowidth(character) == 0 &&
           (character < variationSelectors || character > lastVariationSelector);
}

void addCharacters(std::u32string& characters, std::string_view text) {
    constexpr unsigned char firstBeyondAscii = 0x80;
    for (const char* c = text.data(); c < text.data() + text.size();) {
        if (static_cast<unsigned char>(*c) < firstBeyondAscii) {
            ++c;
            continue;
        }
        const gunichar character = g_utf8_get_char(c);
        c = g_utf8_next_char(c);
        if (leavesAMark(character) &&
            (characters.empty() || characters.back() != static_cast<char32_t>(character))) {
            characters += static_cast<char32_t>(character);
        }
    }
}

void keepEachOnce(std::u32string& characters) {
    std::sort(characters.begin(), characters.end());
    characters.erase(std::unique(characters.begin(), characters.end()), characters.end());
}

class Survey {
public:
    explicit Survey(const Document& document) : document_(document) {
        for (const Layer& layer : document.layers()) {
            addLayer(layer);
        }
        for (FaceUse& use : uses_) {
            keepEachOnce(use.characters);
        }
    }
    std::vector<FaceUse> take() { return std::move(uses_); }

private:
    void addLayer(const Layer& layer) {
        // In document order, without recursion: groups may be deep.
        std::vector<ArtId> waiting{layer.topGroup};
        while (!waiting.empty()) {
            const Art& art = document_.art(waiting.back());
            waiting.pop_back();
            if (art.nextSibling != noArt) {
                waiting.push_back(art.nextSibling);
            }
            if (art.firstChild != noArt) {
                waiting.push_back(art.firstChild);
            }
            if (art.kind == ArtKind::TextFrame) {
                addFrame(layer, art);
            }
        }
    }

    void addFrame(const Layer& layer, const Art& frame) {
        for (const TextRun& run : document_.runs().subspan(frame.firstRun, frame.runCount)) {
            if (!run.visible) {
                continue;
            }
            FaceUse& use = useOf(run.face);
            ++use.runs;
            const std::string_view text = document_.text(run);
            addCharacters(use.characters, text);
            if (use.places.size() < FaceUse::mostPlaces) {
                use.places.push_back(
                    {layer.name, std::string(document_.idOf(frame)), lineOf(text)});
            }
        }
    }

    FaceUse& useOf(FaceId id) {
        const auto [place, added] = useOfFace_.try_emplace(id, uses_.size());
        if (added) {
            const auto later = document_.laterFamilies(id);
            uses_.push_back({document_.face(id), {later.begin(), later.end()}, 0, {}, {}});
        }
        return uses_[place->second];
    }

    const Document& document_;
    std::vector<FaceUse> uses_;
    std::unordered_map<FaceId, std::size_t> useOfFace_;
};

std::string readStandardInput(std::size_t limit) {
    constexpr const char* name = "standard input";
    std::string bytes;
    std::array<char, 65536> part{};
    for (;;) {
        const ssize_t count = ::read(STDIN_FILENO, part.data(), part.size());
        if (count == 0) {
            return bytes;
        }
        if (count < 0 && errno != EINTR) {
            throw DocumentError(name, std::generic_category().message(errno));
        }
        bytes.append(part.data(), count < 0 ? 0 : static_cast<std::size_t>(count));
        if (bytes.size() > limit) {
            throw DocumentError(name, "larger than " + std::to_string(limit >> 20) + " MiB");
        }
    }
}

Document readDocument(const std::filesystem::path& file, const SvgOptions& options) {
    return file == "-" ? readSvg(readStandardInput(options.maximumSize), "standard input", options)
                       : readSvg(file, options);
}

} // namespace

DrawingFaces readFaces(const std::filesystem::path& file, const SvgOptions& options) {
    DrawingFaces result;
    result.file = file.string();
    try {
        result.faces = Survey(readDocument(file, options)).take();
    } catch (const DocumentError& problem) {
        result.error = problem.what();
    } catch (const std::bad_alloc&) {
        result.error = result.file + ": too large for the memory that there is";
    } catch (const std::exception& problem) {
        result.error = result.file + ": " + problem.what();
    }
    return result;
}

} // namespace host
