// SPDX-License-Identifier: MIT
// Lines of text in faces for rows that come and go: what is seen is asked for, what scrolled away
// is not waited for.
#pragma once

#include "preview/qt/faces.h"

#include <functional>
#include <map>

namespace manager {

/// [main-thread] Lines by a number that their user gives them.
class Samples {
public:
    using Key = std::uint64_t;

    /// `changed` is called from the loop when the line of a key has come.
    Samples(preview::Faces& faces, std::function<void(Key)> changed)
        : faces_(faces), changed_(std::move(changed)) {}
    Samples(const Samples&) = delete;
    Samples& operator=(const Samples&) = delete;
    ~Samples() { clear(); }

    /// The line, where it has come; else it is asked for and null is given, or what came before
    /// where only axes and features differ.
    [[nodiscard]] preview::SharedAnswer line(Key key, const preview::FaceLine& line);
    /// What is in the picture of a line that has come; empty: none has.
    [[nodiscard]] std::string drawn(Key key) const;
    /// Whether a line has come that cannot be drawn.
    [[nodiscard]] bool isFailed(Key key) const;
    /// Cancels those that are waited for and not seen any more.
    void keep(const std::function<bool(Key)>& isSeen);
    /// Has those that cannot be drawn asked for again: their file may be back.
    void forgetFailed();
    void clear();

private:
    struct Line {
        preview::FaceLine wanted;
        preview::Faces::Id asked = 0;
        preview::SharedAnswer answer;
    };

    preview::Faces& faces_;
    std::function<void(Key)> changed_;
    std::map<Key, Line> lines_;
};

} // namespace manager
