// SPDX-License-Identifier: MIT
// What all exchanges share: sending, and the first stage of reading a reply.
#include "GLYEvent.h"

#include "GLYController.h"
#include "GLYNotifyHandler.h"
#include "Logger.h"
#include "misc/text/numbers.h"
#include "textutils.h"

#include <exception>
#include <unistd.h>
#include <utility>

namespace GLY {

namespace {

constexpr const char* parseContext = "GLYController-GLYEvent::parseResult";

} // namespace

std::string GLYEvent::getApplicationInfo() {
    return "<targetApp>ART5</targetApp>\n"
           "<targetClass>FILC</targetClass>\n"
           "<targetPid>" +
           Orvil::toString(getpid()) + "</targetPid>\n";
}

Orvil::IXmlNode* GLYEvent::send() {
    constexpr const char* context = "GLYController-send";
    Logger::log("starting send message", context, 0);
    result = NotifiyHandlerFactory::getNotifyHandler(false)->SendToGly(command);
    Logger::log("ending send message", context, 0);
    succeeded = 0;
    Orvil::IXmlNode* const root = parseResult();
    succeeded = root == nullptr ? 0 : 1;
    return root;
}

Orvil::IXmlNode* GLYEvent::parseResult() {
    document_.reset();
    if (result.empty()) {
        return nullptr;
    }
    try {
        return parseDocument();
    } catch (const std::exception& error) {
        Logger::log(error.what(), parseContext, 0);
    } catch (...) {
        showErrorMessage("unknown error while parsing xml.");
    }
    Logger::log("unable to parse xml", parseContext, 0);
    return nullptr;
}

Orvil::IXmlNode* GLYEvent::parseDocument() {
    auto document = std::make_shared<Orvil::XmlDocumentHolder>("LibXmlParser");
    if (!*document) {
        return nullptr;
    }
    Logger::log("parser instance created", parseContext, 0);
    (*document)->parseString(result);
    Logger::log("response parsed", parseContext, 0);
    Orvil::IXmlNode* const root = (*document)->getRootNode();
    if (root == nullptr) {
        return nullptr;
    }
    const Orvil::IXmlNode* const version = root->getFirstChild("protocolVersion");
    if (version == nullptr) {
        Logger::log("no protocolversion tag suppled", parseContext, 0);
        return nullptr;
    }
    replyVersion = version->getContent();
    unsigned major = 0;
    unsigned minor = 0;
    if (!GLYController::separateVersion(replyVersion, major, minor) || major <= 1) {
        Logger::log("required version too low. version was: " + replyVersion, parseContext, 0);
        return nullptr;
    }
    document_ = std::move(document);
    return root;
}

} // namespace GLY
