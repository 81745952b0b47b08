// SPDX-License-Identifier: MIT
#include "manager/cli/progress.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <string>

namespace manager {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds interval{100};
constexpr std::chrono::seconds patience{1};

constexpr std::array words = {"unpack", "read", "compare", "copy", "activate", "deactivate"};
constexpr std::array texts = {"files unpacked", "font files read",      "files compared",
                              "fonts copied",   "containers activated", "containers deactivated"};

ProgressForm form = ProgressForm::None;
Clock::time_point next;
bool isShown = false;

} // namespace

void setProgress(ProgressForm wanted) {
    form = wanted;
    next = Clock::now();
    if (form == ProgressForm::Terminal) {
        next += patience;
    }
}

void tellProgress(Work work, std::size_t done, std::size_t total) {
    const auto now = Clock::now();
    if (form == ProgressForm::None || now < next) {
        return;
    }
    next = now + interval;
    const auto which = static_cast<std::size_t>(work);
    if (form == ProgressForm::Lines) {
        std::fprintf(stderr, "{\"work\":\"%s\",\"done\":%zu,\"total\":%zu}\n", words.at(which),
                     done, total);
        return;
    }
    const std::string of = total == 0 ? std::string() : " of " + std::to_string(total);
    std::fprintf(stderr, "\r%zu%s %s\x1b[K", done, of.c_str(), texts.at(which));
    isShown = true;
}

void wipeProgress() {
    if (isShown) {
        std::fputs("\r\x1b[K", stderr);
        isShown = false;
    }
}

} // namespace manager
