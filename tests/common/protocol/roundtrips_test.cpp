// SPDX-License-Identifier: MIT
// Random models: a reply written from one, in any of the ways there are, is read back as it was.
#include "protocolhandler.h"
#include "protocolschema.h"
#include "samplefonts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <random>

using namespace Protocol;

namespace {

constexpr int models = 2000;

/// The same models in every run, so that no run passes or fails by luck. Set GLYPHORA_SEED to a
/// number to look further.
unsigned makeSeed() {
    const char* const given = std::getenv("GLYPHORA_SEED");
    return given == nullptr ? 20'261 : static_cast<unsigned>(std::strtoul(given, nullptr, 10));
}

/// Makes models and writes them by hand, independent of the codec.
class Generator {
public:
    explicit Generator(unsigned seed) : engine_(seed) {}

    int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(engine_); }
    bool flag() { return below(2) == 1; }
    std::string text() {
        static const std::vector<std::string> pieces{"a",
                                                     "Z9",
                                                     " ",
                                                     "&",
                                                     "<",
                                                     ">",
                                                     "\"",
                                                     "'",
                                                     "]]>",
                                                     "\xc3\xa4",
                                                     "\xe2\x82\xac",
                                                     "\xf0\x9f\x98\x80",
                                                     "\n",
                                                     "\t",
                                                     "\r",
                                                     "-",
                                                     "&amp;",
                                                     "cmd"};
        std::string result;
        for (int count = below(6); count > 0; --count) {
            result += pieces[static_cast<std::size_t>(below(static_cast<int>(pieces.size())))];
        }
        return result;
    }
    std::uint32_t number() { return static_cast<std::uint32_t>(engine_()) >> below(32); }

    Font font(int number_) {
        Font font;
        font.syncID = std::to_string(number_) + text();
        font.type = static_cast<Font::Type>(below(4));
        font.psName = "p" + text();
        font.styleName = text();
        font.familyName = text();
        font.count = number();
        font.isActive = flag();
        font.typeMatchingCount = number();
        font.isTypeMatchingActive = flag();
        font.typeMatchingContainerID = text();
        for (int count = 1 + below(3); count > 0; --count) {
            font.fontInfos.push_back({text(), text()});
        }
        font.containerID = text();
        font.activationSuccessful = flag();
        return font;
    }
    FontList fonts() {
        FontList list;
        for (int count = 1 + below(4); count > 0; --count) {
            list.push_back(font(count));
        }
        return list;
    }

    std::string write(const FontList& list) {
        std::string xml = "<fonts>";
        for (const Font& font : list) {
            xml += blank() + write(font);
        }
        return xml + blank() + "</fonts>";
    }
    std::string element(const std::string& name, const std::string& text) {
        if (text.empty() && flag()) {
            return "<" + name + "/>";
        }
        return "<" + name + ">" + content(text) + "</" + name + ">";
    }
    std::string truth(bool value) {
        return flag() ? (value ? "true" : "false") : (value ? "1" : "0");
    }
    std::string blank() {
        static const std::vector<std::string> blanks{"", " ", "\n\t", "<!-- &x; -->"};
        return blanks[static_cast<std::size_t>(below(static_cast<int>(blanks.size())))];
    }

private:
    std::string escape(char character) {
        switch (character) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return "&#34;";
        case '\n':
        case '\t':
        case '\r':
            return "&#" + std::to_string(int{character}) + ";";
        default:
            return {character};
        }
    }
    std::string escape(const std::string& text) {
        std::string escaped;
        for (const char character : text) {
            escaped += escape(character);
        }
        return escaped;
    }
    /// As it stands, or as CDATA where that can be.
    std::string content(const std::string& text) {
        const bool canBeCdata =
            text.find("]]>") == std::string::npos && text.find('\r') == std::string::npos;
        return canBeCdata && below(4) == 0 ? "<![CDATA[" + text + "]]>" : escape(text);
    }
    std::string write(const Font& font) {
        std::vector<std::string> children{
            element("type", Font::typeToString(font.type)),
            element("psName", font.psName),
            element("styleName", font.styleName),
            element("familyName", font.familyName),
            element("count", blankNumber(font.count)),
            element("isActive", truth(font.isActive)),
            element("typeMatchingCount", blankNumber(font.typeMatchingCount)),
            element("isTypeMatchingActive", truth(font.isTypeMatchingActive)),
            element("typeMatchingContainerID", font.typeMatchingContainerID),
            element("containerID", font.containerID),
            element("activationSuccessfull", truth(font.activationSuccessful)),
        };
        std::string infos = "<fontInfos>";
        for (const Font::Info& info : font.fontInfos) {
            infos += blank() + "<fontInfo>" + blank() + element("name", info.name) + blank() +
                     element("value", info.value) + blank() + "</fontInfo>";
        }
        children.push_back(infos + blank() + "</fontInfos>");
        std::shuffle(children.begin(), children.end(), engine_);
        std::string xml = "<font syncID=\"" + escape(font.syncID) + "\">";
        for (const std::string& child : children) {
            xml += blank() + child;
        }
        return xml + blank() + "</font>";
    }
    std::string blankNumber(std::uint32_t value) {
        return (flag() ? " " : "") + std::to_string(value);
    }

    std::mt19937 engine_;
};

std::string document(const std::string& content) {
    return "<cmd xmlns=\"http://glyphora.org/schema/GlyPluginCommunication_1.0\">" + content +
           "</cmd>";
}

class ARandomModel : public testing::Test {
protected:
    ARandomModel() : seed_(makeSeed()), generator_(seed_) { std::printf("seed %u\n", seed_); }

    unsigned seed_;
    Generator generator_;
    Handler handler_{schemaText};
};

} // namespace

TEST_F(ARandomModel, OfAReplyIsDecodedToItself) {
    for (int i = 0; i < models; ++i) {
        const FontList fonts = generator_.fonts();
        const std::string list = generator_.write(fonts);
        const bool flag = generator_.flag();
        std::string xml;
        ReplyContainer reply;
        switch (generator_.below(4)) {
        case 0: {
            const std::string window = generator_.element("showWindow", generator_.truth(flag));
            xml = document("<fontRequestReply>" +
                           (generator_.flag() ? window + list : list + window) +
                           "</fontRequestReply>");
            reply = handler_.parseReply(xml);
            ASSERT_EQ(reply.type, 0) << "seed " << seed_;
            ASSERT_EQ(reply.fontReply->showWindow, flag) << "seed " << seed_ << '\n' << xml;
            ASSERT_EQ(reply.fontReply->fonts, fonts) << "seed " << seed_ << '\n' << xml;
            break;
        }
        case 1:
            xml = document("<showRequestReply>" + list + "</showRequestReply>");
            reply = handler_.parseReply(xml);
            ASSERT_EQ(reply.showReply->fonts, fonts) << "seed " << seed_ << '\n' << xml;
            break;
        case 2:
            xml = document("<activationRequestReply>" + list + "</activationRequestReply>");
            reply = handler_.parseReply(xml);
            ASSERT_EQ(reply.activationReply->fonts, fonts) << "seed " << seed_ << '\n' << xml;
            break;
        default:
            xml = document("<buyRequestReply>" +
                           generator_.element("handled", generator_.truth(flag)) +
                           "</buyRequestReply>");
            reply = handler_.parseReply(xml);
            ASSERT_EQ(reply.buyReply->font.handled, flag) << "seed " << seed_ << '\n' << xml;
        }
    }
}

TEST_F(ARandomModel, OfARequestMakesADocumentThatTheSchemaAccepts) {
    // Requests are no replies: what gets as far as the kind has passed the schema.
    for (int i = 0; i < models / 4; ++i) {
        const FontList fonts = generator_.fonts();
        const std::string app = generator_.text();
        const std::vector<std::pair<std::string, std::string>> requests{
            {"fontRequest", Handler::createFontRequest({generator_.flag(), fonts, app, app})},
            {"showRequest", Handler::createShowRequest({generator_.flag(), fonts})},
            {"activationRequest", Handler::createActivationRequest(ActivationRequest(fonts))},
            {"buyRequest", Handler::createBuyRequest(BuyRequest(fonts.front()))}};
        for (const auto& request : requests) {
            const std::string& kind = request.first;
            ASSERT_EQ(failureOf([&] { handler_.parseReply(request.second); }),
                      protocolFailure(
                          std::string("could not parse root node '").append(kind).append("'"), 923))
                << "seed " << seed_ << '\n'
                << request.second;
        }
    }
}
