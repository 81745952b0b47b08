// SPDX-License-Identifier: MIT
// From JSON to requests, and from replies to JSON.
#include "tools/protocol/protocoljson.h"

#include "protocolhandler.h"

#include <algorithm>
#include <initializer_list>
#include <stdexcept>
#include <string_view>

namespace ProtocolTool {

namespace {

using Protocol::Font;

/// Reads the members of one object; says which one is wrong.
class Members {
public:
    Members(const Json& object, std::string place) : object_(object), place_(std::move(place)) {
        if (!object.is_object()) {
            throw std::invalid_argument(place_ + ": an object is expected");
        }
    }

    void allow(std::initializer_list<std::string_view> names) const {
        for (const auto& [name, value] : object_.items()) {
            if (std::find(names.begin(), names.end(), name) == names.end()) {
                throw std::invalid_argument(place_ + ": '" + name + "' is not known");
            }
        }
    }
    void forbid(std::initializer_list<const char*> names, const std::string& kind) const {
        for (const char* const name : names) {
            if (object_.contains(name)) {
                throw std::invalid_argument(place_ + ": '" + name +
                                            "' has no place in a request of kind '" + kind + "'");
            }
        }
    }
    std::string text(const char* name) const {
        return member<std::string>(name, &Json::is_string, "a text");
    }
    bool flag(const char* name) const {
        return member<bool>(name, &Json::is_boolean, "true or false");
    }
    Json list(const char* name) const {
        return member<Json>(name, &Json::is_array, "a list", Json::array());
    }

private:
    template <typename T>
    T member(const char* name, bool (Json::*isOfKind)() const noexcept, const std::string& kind,
             T absent = {}) const {
        const auto found = object_.find(name);
        if (found == object_.end()) {
            return absent;
        }
        if (!((*found).*isOfKind)()) {
            throw std::invalid_argument(place_ + ": '" + name + "' must be " + kind);
        }
        return found->template get<T>();
    }

    const Json& object_;
    std::string place_;
};

Font readFont(const Json& object, std::size_t number) {
    const Members members(object, "font " + std::to_string(number));
    members.allow({"syncID", "psName", "type", "familyName", "styleName", "containerID"});
    Font font;
    font.syncID = members.text("syncID");
    font.psName = members.text("psName");
    font.familyName = members.text("familyName");
    font.styleName = members.text("styleName");
    font.containerID = members.text("containerID");
    if (const std::string type = members.text("type"); !type.empty()) {
        font.type = Font::stringToType(type);
    }
    return font;
}

Protocol::FontList readFonts(const Json& list) {
    Protocol::FontList fonts;
    for (const Json& object : list) {
        fonts.push_back(readFont(object, fonts.size() + 1));
    }
    return fonts;
}

Json describe(const Font& font) {
    Json infos = Json::array();
    for (const Font::Info& info : font.fontInfos) {
        infos.push_back({{"name", info.name}, {"value", info.value}});
    }
    return {{"syncID", font.syncID},
            {"type", Font::typeToString(font.type)},
            {"psName", font.psName},
            {"styleName", font.styleName},
            {"familyName", font.familyName},
            {"count", font.count},
            {"isActive", font.isActive},
            {"typeMatchingCount", font.typeMatchingCount},
            {"isTypeMatchingActive", font.isTypeMatchingActive},
            {"typeMatchingContainerID", font.typeMatchingContainerID},
            {"fontInfos", std::move(infos)},
            {"containerID", font.containerID},
            {"activationSuccessful", font.activationSuccessful}};
}

Json describe(const Protocol::FontList& fonts) {
    Json list = Json::array();
    for (const Font& font : fonts) {
        list.push_back(describe(font));
    }
    return list;
}

} // namespace

std::string encodeRequest(const Json& request) {
    using Protocol::Handler;
    const Members members(request, "request");
    members.allow({"request", "mustMatchFontType", "targetApp", "targetClass", "fonts"});
    const std::string kind = members.text("request");
    const bool mustMatch = members.flag("mustMatchFontType");
    const Protocol::FontList fonts = readFonts(members.list("fonts"));
    if (kind == "font") {
        return Handler::createFontRequest(
            {mustMatch, fonts, members.text("targetApp"), members.text("targetClass")});
    }
    members.forbid({"targetApp", "targetClass"}, kind);
    if (kind == "show") {
        return Handler::createShowRequest({mustMatch, fonts});
    }
    members.forbid({"mustMatchFontType"}, kind);
    if (kind == "activation") {
        return Handler::createActivationRequest(Protocol::ActivationRequest(fonts));
    }
    if (kind == "buy") {
        if (fonts.size() != 1) {
            throw std::invalid_argument("request: a buy request has exactly one font");
        }
        return Handler::createBuyRequest(Protocol::BuyRequest(fonts.front()));
    }
    throw std::invalid_argument("request: kind '" + kind +
                                "' is none of font, show, buy, activation");
}

Json describeReply(const Protocol::ReplyContainer& reply) {
    using Protocol::ReplyContainer;
    switch (reply.type) {
    case ReplyContainer::fontReplyType:
        return {{"reply", "font"},
                {"showWindow", reply.fontReply->showWindow},
                {"fonts", describe(reply.fontReply->fonts)}};
    case ReplyContainer::showReplyType:
        return {{"reply", "show"}, {"fonts", describe(reply.showReply->fonts)}};
    case ReplyContainer::buyReplyType:
        return {{"reply", "buy"}, {"handled", reply.buyReply->font.handled}};
    default:
        return {{"reply", "activation"}, {"fonts", describe(reply.activationReply->fonts)}};
    }
}

} // namespace ProtocolTool
