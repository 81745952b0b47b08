// SPDX-License-Identifier: MIT
// What a command did, for people line by line and for programs as one document at the end.
#pragma once

#include "manager/library/library.h"

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <utility>

namespace manager {

/// [one-thread] Counts what was done and what was not, which decides how the program ends.
class Tally {
public:
    /// `key` is the name of the document's list of what was done; nullptr: it has none.
    explicit Tally(bool json, const char* key = nullptr) : json_(json), key_(key) {}

    [[nodiscard]] bool isJson() const { return json_; }

    /// One thing done: `line` for people, `item` for programs.
    void add(std::string_view line, nlohmann::ordered_json item);
    /// "DEED NAME (container NUMBER, PATH)".
    void add(std::string_view deed, const Container& container);
    /// The same, where people are told otherwise.
    void addQuietly(nlohmann::ordered_json item) { done_.push_back(std::move(item)); }
    /// One thing that was asked for and not done: on standard error, and in the document.
    void fail(std::string_view problem);
    /// Something that people should know, though nothing asked for has failed by it.
    void remark(std::string_view problem);

    /// Another member of the document.
    void set(const char* key, nlohmann::ordered_json value) { more_[key] = std::move(value); }

    [[nodiscard]] bool isEmpty() const { return done_.empty(); }
    /// How many things were done.
    [[nodiscard]] std::size_t size() const { return done_.size(); }
    /// Prints the document if there is to be one. The ExitStatus. When nothing was done and nothing
    /// has failed, people are told `whenEmpty`.
    [[nodiscard]] int finish(const char* whenEmpty = nullptr);

private:
    bool json_;
    const char* key_;
    nlohmann::ordered_json done_ = nlohmann::ordered_json::array();
    nlohmann::ordered_json problems_ = nlohmann::ordered_json::array();
    nlohmann::ordered_json more_ = nlohmann::ordered_json::object();
    bool failed_ = false;
};

} // namespace manager
