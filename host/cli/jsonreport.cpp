// SPDX-License-Identifier: MIT
// The report for programs.
#include "host/cli/report.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>

namespace host {

namespace {

using Json = nlohmann::ordered_json;

template <typename Items, typename Function>
Json listOf(const Items& items, Function function) {
    Json list = Json::array();
    std::transform(items.begin(), items.end(), std::back_inserter(list), function);
    return list;
}

Json jsonOfFace(const FaceOutcome& face) {
    return {{"family", face.family},
            {"style", face.style},
            {"postScriptName", face.postScriptName},
            {"before", face.before ? Json(textOf(*face.before)) : Json()},
            {"after", textOf(face.after)},
            {"runs", face.runs},
            {"runsNow", face.runsNow}};
}

Json jsonOfDialog(const ShownDialog& dialog) {
    return {{"plugin", dialog.plugin},
            {"title", dialog.title},
            {"rows", listOf(dialog.rows,
                            [](const ShownDialog::Row& row) {
                                return Json{{"level", row.level}, {"words", row.words}};
                            })},
            {"buttons", listOf(dialog.buttons,
                               [](const ShownDialog::Button& button) {
                                   return Json{{"item", button.item},
                                               {"text", button.text},
                                               {"enabled", button.enabled}};
                               })},
            {"endedBy", dialog.ending.item},
            {"cancelled", dialog.ending.cancelled},
            {"givenUp", dialog.givenUp}};
}

Json jsonOfDocument(const DocumentReport& document) {
    Json json{{"file", document.file}, {"opened", document.opened}};
    if (!document.error.empty()) {
        json["error"] = document.error;
    }
    if (!document.opened) {
        return json;
    }
    json["closedByPlugin"] = document.closedByPlugin;
    json["checkFailed"] = document.checkFailed;
    json["dialogs"] = listOf(document.dialogs, jsonOfDialog);
    json["missesFonts"] = document.missesFonts();
    json["faces"] = listOf(document.faces, jsonOfFace);
    if (!document.savedAs.empty()) {
        json["savedAs"] = document.savedAs;
    }
    json["timingsMs"] = {{"open", document.timings.open},
                         {"plugins", document.timings.plugins},
                         {"startToOutcome", document.timings.outcome}};
    return json;
}

Json jsonOfAlert(const Alert& alert) {
    constexpr std::array<const char*, 3> kinds{"about", "error", "message"};
    return {{"kind", kinds[static_cast<std::size_t>(alert.kind)]},
            {"plugin", alert.plugin},
            {"title", alert.title},
            {"text", alert.text}};
}

} // namespace

std::string jsonOf(const RunReport& report) {
    const Json json{
        {"plugin", report.plugin.empty() ? Json() : Json(report.plugin)},
        {"pluginFailed", report.pluginFailed},
        {"answersFailed", report.answersFailed},
        {"fonts", report.fonts},
        {"documents", listOf(report.documents, jsonOfDocument)},
        {"alerts", listOf(report.alerts, jsonOfAlert)},
        {"errors", report.errors},
        {"misbehaviour", listOf(report.misbehaviour,
                                [](const Misbehaviour& entry) {
                                    return Json{{"plugin", entry.plugin},
                                                {"what", entry.what},
                                                {"times", entry.times}};
                                })},
        {"suiteCalls",
         listOf(report.calls,
                [](const CallSite::Count& call) {
                    return Json{{"suite", call.suite}, {"call", call.call}, {"count", call.count}};
                })},
        {"reloads", report.reloads},
        {"timingsMs", {{"startUp", report.startUpMs}, {"total", report.totalMs}}}};
    // Paths and plug-ins' texts may hold any bytes.
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace host
