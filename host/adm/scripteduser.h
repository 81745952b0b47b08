// SPDX-License-Identifier: MIT
// A user of dialogs that does what a script says, and keeps what it saw.
#pragma once

#include "host/adm/answers.h"
#include "host/adm/dialogs.h"
#include "host/adm/dialoguser.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace host {

/// A dialog as it was when it began to run, and how it ended.
struct ShownDialog {
    struct Row {
        std::uint32_t level = 0; ///< 0 at the top
        std::string words;
    };
    struct Button {
        std::int32_t item = 0;
        std::string text;
        bool enabled = true;
    };
    std::string plugin;
    std::string title;
    std::vector<Row> rows; ///< those below closed rows, too
    std::vector<Button> buttons;
    Dialog::Ending ending;
    bool givenUp = false; ///< by the host, for want of further answers
};

/// [main-thread] One script for all dialogs that come; a wait is over when its dialog has ended,
/// and so are those that would come next when that was the last. A command that cannot be carried
/// out is reported as an error, and gives this dialog and all later ones up.
class ScriptedUser : public DialogUser {
public:
    /// What becomes of a dialog that runs when there are no more commands.
    enum class AtEnd : std::uint8_t { GiveUp, Leave };

    /// `dialogs` outlives it.
    ScriptedUser(Dialogs& dialogs, std::vector<Answer> answers, AtEnd atEnd)
        : dialogs_(dialogs), answers_(std::move(answers)), atEnd_(atEnd) {}

    void begun(Dialog& dialog) override;
    std::uint32_t act(Dialog& dialog) override;
    void ended(Dialog& dialog) override;

    /// [main-thread] Takes a step of a drawing back, or makes it again; false when there is none.
    using Step = std::function<bool()>;
    /// Carries out what the script has next for a drawing whose dialogs have ended. A step that
    /// there is not is reported as an error.
    void edit(const Step& undo, const Step& redo);

    /// No more dialogs will come: a command that is left, other than a wait, is reported as an
    /// error.
    void finish();
    AtEnd atEnd() const noexcept { return atEnd_; }
    void setAtEnd(AtEnd atEnd) noexcept { atEnd_ = atEnd; }
    bool failed() const noexcept { return failed_; }
    /// The dialogs that began to run since the last call; none runs now.
    [[nodiscard]] std::vector<ShownDialog> takeShown() { return std::exchange(shown_, {}); }

private:
    struct Wait {
        const Dialog* dialog;
        std::uint32_t deadline;
        std::uint64_t revision;
    };

    std::uint32_t wait(Dialog& dialog, const Answer& answer);
    void passWaits();
    void fail(const Answer& answer, const std::string& problem);
    void giveUp(Dialog& dialog);

    Dialogs& dialogs_;
    std::vector<Answer> answers_;
    AtEnd atEnd_;
    std::size_t next_ = 0;
    std::optional<Wait> wait_;
    bool failed_ = false;
    std::vector<ShownDialog> shown_;
    std::vector<std::size_t> running_; ///< places in `shown_`, innermost last
};

} // namespace host
