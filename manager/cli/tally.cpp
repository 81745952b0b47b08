// SPDX-License-Identifier: MIT
// Telling and counting.
#include "manager/cli/tally.h"

#include "manager/cli/arguments.h"
#include "manager/cli/report.h"
#include "manager/view/problemwords.h"

#include <utility>

namespace manager {

void Tally::add(std::string_view line, nlohmann::ordered_json item) {
    if (!json_) {
        printLine(line);
    }
    done_.push_back(std::move(item));
}

void Tally::add(std::string_view deed, const Container& container) {
    add(std::string(deed) + " " + called(container), toJson(container));
}

void Tally::fail(std::string_view problem) {
    failed_ = true;
    remark(problem);
}

void Tally::remark(std::string_view problem) {
    const std::string words = problemInWords(problem);
    warn(words);
    problems_.push_back(words);
}

int Tally::finish(const char* whenEmpty) {
    const bool anything = !done_.empty();
    if (json_) {
        auto document = nlohmann::ordered_json::object();
        if (key_ != nullptr) {
            document[key_] = std::move(done_);
        }
        document.update(more_);
        document["problems"] = std::move(problems_);
        printJson(document);
    }
    if (!failed_) {
        if (whenEmpty != nullptr && !anything && !json_) {
            warn(whenEmpty);
        }
        return exitSuccess;
    }
    return anything ? exitPartly : exitFailure;
}

} // namespace manager
