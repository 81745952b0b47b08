// SPDX-License-Identifier: MIT
// The dumps of fonts and messages for diagnosis. Each is put together first and written at once.
#include "protocol.h"

#include <cstdint>
#include <initializer_list>
#include <iostream>

namespace Protocol {

namespace {

/// Collects the lines of one dump.
class Dump {
public:
    explicit Dump(const std::string& prefix) : prefix_(prefix) {}
    Dump(const Dump&) = delete;
    Dump& operator=(const Dump&) = delete;
    ~Dump() { std::cerr << text_; }

    void line(std::initializer_list<std::string_view> parts) {
        text_ += prefix_;
        for (const std::string_view part : parts) {
            text_ += part;
        }
        text_ += '\n';
    }
    /// Truth values are 1 and 0.
    void number(std::string_view label, std::uint32_t value) {
        line({label, std::to_string(value)});
    }
    void quoted(std::string_view label, const std::string& value) {
        if (!value.empty()) {
            line({label, "'", value, "'"});
        }
    }
    void unquoted(std::string_view label, const std::string& value) {
        if (!value.empty()) {
            line({label, value});
        }
    }
    void fontInfos(const std::list<Font::Info>& infos) {
        if (infos.empty()) {
            return;
        }
        line({"  ", std::to_string(infos.size()), " fontInfos: "});
        for (const Font::Info& info : infos) {
            line({"    ", info.name, " => ", info.value});
        }
    }
    void write(const Font& font) {
        line({"Font: "});
        quoted("  syncID: ", font.syncID);
        line({"  type: ", Font::typeToString(font.type)});
        quoted("  psName: ", font.psName);
        quoted("  styleName: ", font.styleName);
        quoted("  familyName: ", font.familyName);
        number("  count: ", font.count);
        number("  isActive: ", font.isActive);
        number("  typeMatchingCount: ", font.typeMatchingCount);
        number("  isTypeMatchingActive: ", font.isTypeMatchingActive);
        quoted("  typeMatchingContainerID: ", font.typeMatchingContainerID);
        fontInfos(font.fontInfos);
        number("  handled: ", font.handled);
        quoted("  containerID: ", font.containerID);
        number("  activationSuccessful: ", font.activationSuccessful);
        line({"Font END"});
    }
    void write(const FontList& fonts) {
        line({"FontList: ", std::to_string(fonts.size()), " fonts:"});
        indented([&] {
            for (const Font& each : fonts) {
                write(each);
            }
        });
        line({"FontList END"});
    }
    /// A message of the name; `scalars()` writes its own lines.
    template <typename Fonts, typename Scalars>
    void message(std::string_view name, const Fonts& content, Scalars scalars) {
        line({name, ": "});
        scalars();
        indented([&] { write(content); });
        line({name, " END"});
    }
    template <typename Fonts>
    void message(std::string_view name, const Fonts& content) {
        message(name, content, [] {});
    }

private:
    template <typename Write>
    void indented(Write writeContent) {
        prefix_ += "  ";
        writeContent();
        prefix_.resize(prefix_.size() - 2);
    }

    std::string prefix_;
    std::string text_;
};

} // namespace

void Font::debugPrint(const std::string& prefix) const {
    Dump(prefix).write(*this);
}

void debugPrint(const FontList& fonts, const std::string& prefix) {
    Dump(prefix).write(fonts);
}

void FontRequest::debugPrint(const std::string& prefix) const {
    Dump dump(prefix);
    dump.message("FontRequest", fonts, [&] {
        dump.number("  mustMatchFontType: ", mustMatchFontType);
        dump.unquoted("  targetApp: ", targetApp);
        dump.unquoted("  targetClass: ", targetClass);
    });
}

void FontReply::debugPrint(const std::string& prefix) const {
    Dump dump(prefix);
    dump.message("FontReply", fonts, [&] { dump.number("  showWindow: ", showWindow); });
}

void ShowRequest::debugPrint(const std::string& prefix) const {
    Dump dump(prefix);
    dump.message("ShowRequest", fonts,
                 [&] { dump.number("  mustMatchFontType: ", mustMatchFontType); });
}

void ShowReply::debugPrint(const std::string& prefix) const {
    Dump(prefix).message("ShowReply", fonts);
}

void ActivationRequest::debugPrint(const std::string& prefix) const {
    Dump(prefix).message("ActivationRequest", fonts);
}

void ActivationReply::debugPrint(const std::string& prefix) const {
    Dump(prefix).message("ActivationReply", fonts);
}

void BuyRequest::debugPrint(const std::string& prefix) const {
    Dump(prefix).message("BuyRequest", font);
}

void BuyReply::debugPrint(const std::string& prefix) const {
    Dump(prefix).message("BuyReply", font);
}

} // namespace Protocol
