// SPDX-License-Identifier: MIT
#include "manager/qt/groupdeeds.h"

#include "manager/library/places.h"
#include "manager/qt/mnemonics.h"
#include "manager/qt/text.h"
#include "manager/view/texts.h"

#include <QUndoCommand>

#include <memory>
#include <utility>

namespace manager {

namespace {

/// The names of the files that the library has of a member.
FilesOfMember filesIn(Desk& desk) {
    return [&desk](const GroupMember& member) {
        std::set<std::string> names;
        if (const auto id = currentNumber(desk.library(), member)) {
            for (const LibraryFile& file : desk.library().files(*id)) {
                names.insert(nameOf(file.path));
            }
        }
        return names;
    };
}

} // namespace

/// A change that was made when it came; undone and done again by turns. What could not be undone,
/// as somebody else has changed the set, is not done again either, and the other way round.
class GroupDeed : public QUndoCommand {
public:
    GroupDeed(GroupDeeds& deeds, GroupChange back, const QString& text)
        : QUndoCommand(text), deeds_(deeds),
          state_(std::make_shared<GroupDeeds::State>(std::move(back))) {}

    void undo() override { start(true); }
    void redo() override {
        if (!std::exchange(isNew_, false)) {
            start(false);
        }
    }

private:
    void start(bool back) { deeds_.deeds_.startWork(text(), deeds_.turn(text(), state_, back)); }

    GroupDeeds& deeds_;
    bool isNew_ = true;
    std::shared_ptr<GroupDeeds::State> state_;
};

LibraryReader::Work GroupDeeds::turn(const QString& deed, const std::shared_ptr<State>& state,
                                     bool back) {
    return [this, deed, places = places_, state, back](Desk& desk) -> std::function<void()> {
        if (state->isDone == back) {
            state->next = changeGroup(places, state->next, filesIn(desk));
            state->isDone = !back;
        }
        return [this, deed] { changed_(deed); };
    };
}

void GroupDeeds::begin(const FontChoice& fonts, Maker make, const QString& text) {
    deeds_.work(text, [this, places = places_, fonts, make = std::move(make), text](Desk& desk) {
        std::vector<GroupMember> members;
        for (const auto& [id, files] : fonts) {
            if (const auto container = desk.library().container(ContainerId{id})) {
                members.push_back(memberOf(*container));
                members.back().files = files;
            }
        }
        GroupChange back = changeGroup(places, make(std::move(members)), filesIn(desk));
        return [this, back = std::move(back), text] {
            if (!back.isEmpty()) { // else what was undone could not be done again
                deeds_.record(new GroupDeed(*this, back, text));
            }
            changed_(text);
        };
    });
}

void GroupDeeds::add(const GroupTitle& title, const FontChoice& fonts) {
    begin(
        fonts,
        [title](std::vector<GroupMember> members) {
            return GroupChange{.title = title, .added = std::move(members), .isMade = true};
        },
        undoText(translated("add to %1"), text(title.name)));
}

void GroupDeeds::remove(const GroupTitle& title, const FontChoice& fonts) {
    begin(
        fonts,
        [title](std::vector<GroupMember> members) {
            return GroupChange{.title = title, .removed = std::move(members)};
        },
        undoText(translated("remove from %1"), text(title.name)));
}

void GroupDeeds::rename(const GroupTitle& title, const std::string& name) {
    begin(
        {}, [title, name](const auto&) { return GroupChange{.title = title, .newName = name}; },
        undoText(translated("rename %1"), text(title.name)));
}

void GroupDeeds::unmake(const GroupTitle& title) {
    begin(
        {},
        [title](const auto&) {
            return GroupChange{.title = title, .isUnmade = true, .isEmptied = true};
        },
        undoText(translated("delete %1"), text(title.name)));
}

} // namespace manager
