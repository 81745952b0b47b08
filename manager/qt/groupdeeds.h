// SPDX-License-Identifier: MIT
// What the window does to collections and tags. All of it can be undone, without asking before.
#pragma once

#include "manager/cli/groupchange.h"
#include "manager/qt/deeds.h"
#include "manager/qt/fontchoice.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace manager {

/// [main-thread]
class GroupDeeds {
public:
    /// `changed` is called after each change, with what it is called.
    GroupDeeds(Places places, Deeds& deeds, std::function<void(const QString& deed)> changed)
        : places_(std::move(places)), deeds_(deeds), changed_(std::move(changed)) {}

    /// Puts fonts in; the group is made if need be.
    void add(const GroupTitle& title, const FontChoice& fonts);
    void remove(const GroupTitle& title, const FontChoice& fonts);
    void rename(const GroupTitle& title, const std::string& name);
    /// All of it goes; nothing is deactivated.
    void unmake(const GroupTitle& title);

private:
    friend class GroupDeed;

    using Maker = std::function<GroupChange(std::vector<GroupMember>)>;
    /// Makes a change of the fonts, which can be undone by the name of `text`.
    void begin(const FontChoice& fonts, Maker make, const QString& text);
    /// What undoing and redoing need to know; the reader's thread's.
    struct State {
        explicit State(GroupChange back) : next(std::move(back)) {}
        GroupChange next;   ///< takes back what is done, or does what was taken back
        bool isDone = true; ///< it is the former
    };
    /// Makes the change that is next, if it goes `back` or not as is asked for.
    [[nodiscard]] LibraryReader::Work turn(const QString& deed, const std::shared_ptr<State>& state,
                                           bool back);

    Places places_;
    Deeds& deeds_;
    std::function<void(const QString&)> changed_;
};

} // namespace manager
