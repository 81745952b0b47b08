// SPDX-License-Identifier: MIT
// Any bytes as a command: what is read reads the same when written again, and whatever text it
// holds makes a reply that its reader can parse.
#include "fuzz/require.h"
#include "manager/exchange/commandtext.h"
#include "manager/exchange/replytext.h"
#include "tests/support/foldedreply.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

using namespace manager;

namespace {

void append(std::string& text, const char* name, const std::optional<std::string>& value) {
    if (value) {
        text.append("<").append(name).append(">").append(*value);
        text.append("</").append(name).append(">\n");
    }
}

std::string textOf(const Command& command) {
    std::string text;
    append(text, "cmd", command.word);
    if (command.targetPid) {
        append(text, "targetPid", std::to_string(*command.targetPid));
    }
    append(text, "targetClass", command.targetClass);
    for (const CommandFont& font : command.fonts) {
        text += "<font>\n";
        append(text, "syncID", font.syncId);
        append(text, "psName", font.postScriptName);
        append(text, "type", font.type ? std::string(typeKeyword(*font.type)) : "all");
        append(text, "familyName", font.familyName);
        append(text, "styleName", font.styleName);
        append(text, "containerID", font.containerId);
        text += "</font>\n";
    }
    return text + "</cmd>\n";
}

bool isPlain(std::string_view value) {
    return std::all_of(value.begin(), value.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

void checkReply(const std::string& word, const std::string& value) {
    ReplyText reply(word);
    reply.beginFont();
    reply.element("psName", value);
    reply.fontInfo(value, value);
    reply.endFont();
    const testsupport::ReplyNode root = testsupport::parseFolded(reply.finish());
    const auto fonts = root.all("font");
    REQUIRE(root.name == "cmd" && fonts.size() == 1);
    if (isPlain(value)) {
        REQUIRE(fonts.front()->value("psName") == value);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    try {
        const Command command = parseCommand(text);
        for (const std::string& problem : command.problems) {
            REQUIRE(problem.starts_with("command, line "));
        }
        const std::string written = textOf(command);
        const Command again = parseCommand(written);
        REQUIRE(again.problems.empty() && again.kind == command.kind);
        REQUIRE(textOf(again) == written);
        for (const CommandFont& font : command.fonts) {
            for (const auto* value : {&font.postScriptName, &font.familyName, &font.styleName}) {
                checkReply(command.word, value->value_or(""));
            }
        }
    } catch (const MalformedCommand& malformed) {
        const std::string_view what = malformed.what();
        REQUIRE(what.starts_with("command, line ") && !what.starts_with("command, line 0:"));
        checkReply(malformed.word().empty() ? "error" : malformed.word(), std::string(what));
    }
    return 0;
}
