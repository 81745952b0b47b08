// SPDX-License-Identifier: MIT
// The process that draws, as windows use it: order, cancelling, keeping, and what it survives.
#include "preview/previewer.h"
#include "tests/support/fontmaker.h"
#include "tests/support/temporaryfolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>

#include <limits>
#include <memory>
#include <thread>

using namespace preview;
using testing::ElementsAre;
using testing::EndsWith;
using testing::StartsWith;

namespace {

class APreview : public testing::Test {
protected:
    /// Waits until `count` requests are answered.
    static std::vector<Finished> await(Previewer& previewer, std::size_t count = 1) {
        std::vector<Finished> all;
        while (all.size() < count) {
            pollfd event{previewer.descriptor(), POLLIN, 0};
            poll(&event, 1, -1);
            for (Finished& finished : previewer.take()) {
                all.push_back(std::move(finished));
            }
        }
        return all;
    }
    static SharedAnswer answer(Previewer& previewer, const Request& request) {
        const RequestId id = previewer.request(request);
        const Finished finished = await(previewer).front();
        EXPECT_EQ(finished.id, id);
        return finished.answer;
    }
    Request say(const std::string& text, const std::string& file = "font") const {
        return {.file = folder_ / file, .text = text};
    }
    static std::vector<RequestId> idsOf(const std::vector<Finished>& all) {
        std::vector<RequestId> ids;
        for (const Finished& finished : all) {
            ids.push_back(finished.id);
        }
        return ids;
    }

    testsupport::TemporaryFolder folder_;
    std::string font_ = folder_.write("font", "x");
    std::string other_ = folder_.write("other", "x");
    /// No machine is so busy that a line takes longer.
    static constexpr std::chrono::minutes patience{2};
    PreviewSettings awkward_{
        .program = GLYPHORA_AWKWARD_PEER, .timePerLine = patience, .timeUntilRetry = patience};
};

TEST_F(APreview, ComesFromTheProgram) {
    folder_.write("font", testsupport::makeFont({}));
    Previewer previewer({.program = GLYPHORA_PREVIEW, .timePerLine = patience});
    const SharedAnswer drawn = answer(previewer, say("HAMBURG\u6F22"));
    EXPECT_EQ(drawn->problem, "");
    EXPECT_EQ(drawn->missing, U"\u6F22");
    EXPECT_NE(drawn->picture.pixels.find('\xFF'), std::string::npos);
    folder_.write("font", "no font");
    EXPECT_THAT(answer(previewer, say("HAMBURG"))->problem, StartsWith(font_ + ": no font"));
}

TEST_F(APreview, IsOfTheNewestRequestFirstAndOfNoneThatWasCancelled) {
    Previewer previewer(awkward_);
    const RequestId first = previewer.request(say("a"));
    const RequestId second = previewer.request(say("b"));
    const RequestId third = previewer.request(say("c"));
    previewer.cancel(second);
    EXPECT_THAT(idsOf(previewer.take()), ElementsAre()); // the third is being drawn
    const RequestId fourth = previewer.request(say("d"));
    const RequestId fifth = previewer.request(say("c")); // which the third answers
    previewer.cancel(third);
    previewer.cancel(second); // which brings nothing back
    EXPECT_THAT(idsOf(await(previewer, 3)), ElementsAre(fifth, fourth, first));
    EXPECT_EQ(answer(previewer, say("b"))->picture.pixels, "\4");
}

TEST_F(APreview, IsKeptUntilItsFileChangesOrTheBoundIsReached) {
    PreviewSettings settings = awkward_;
    settings.cached = 3 * (350 + font_.size()); // three answers
    Previewer previewer(settings);
    const SharedAnswer first = answer(previewer, say("a"));
    static_cast<void>(answer(previewer, say("b")));
    EXPECT_EQ(answer(previewer, say("a")), first);
    Request different = say("a");
    different.scale = 2;
    EXPECT_NE(answer(previewer, different), first);
    static_cast<void>(answer(previewer, say("c")));
    EXPECT_EQ(answer(previewer, say("a")), first) << "it was used lately";
    EXPECT_EQ(answer(previewer, say("b"))->picture.pixels, "\5") << "it was kept beyond the bound";
    folder_.write("font", "changed");
    const SharedAnswer changed = answer(previewer, say("a"));
    EXPECT_EQ(changed->picture.pixels, "\6");
    EXPECT_EQ(answer(previewer, say("a")), changed);
}

struct Misdeed {
    std::string name;
    std::string text;
    std::string problem;
    bool ofTheFace = true; ///< which is not tried again
};

class APeer : public APreview, public testing::WithParamInterface<Misdeed> {};

TEST_P(APeer, CostsItsOwnPictureOnly) {
    PreviewSettings settings = awkward_;
    if (GetParam().text == "wait") {
        settings.timePerLine = std::chrono::seconds(10); // for the good one to be drawn in
    } else if (GetParam().text == "spin") {
        settings.processorSeconds = 0; // the rest of the first
    }
    Previewer previewer(settings);
    const RequestId good = previewer.request(say("draw", "other"));
    const RequestId bad = previewer.request(say(GetParam().text));
    const std::vector<Finished> all = await(previewer, 2);
    ASSERT_THAT(idsOf(all), ElementsAre(bad, good));
    EXPECT_EQ(all[0].answer->problem, font_ + ": " + GetParam().problem);
    EXPECT_EQ(all[1].answer->picture.pixels, "\1");
    const SharedAnswer again = answer(previewer, say("draw"));
    EXPECT_EQ(again->problem, GetParam().ofTheFace ? all[0].answer->problem : "");
    Request sibling = say("draw");
    sibling.face = 1;
    EXPECT_EQ(answer(previewer, sibling)->problem, "");
}

INSTANTIATE_TEST_SUITE_P(
    ThatMisbehaves, APeer,
    testing::Values(Misdeed{"Crashing", "crash",
                            "the preview process ended while drawing it (Segmentation fault)"},
                    Misdeed{"Killed", "be killed",
                            "the preview process ended while drawing it (Killed)", false},
                    Misdeed{"Leaving", "leave",
                            "the preview process ended while drawing it with status 3", false},
                    Misdeed{"Waiting", "wait", "drawing it took longer than 10000 ms"},
                    Misdeed{"Spinning", "spin",
                            "the preview process ended while drawing it (CPU time limit exceeded)"},
                    Misdeed{"SayingTooMuch", "say too much",
                            "what the preview process said of it is no answer"},
                    Misdeed{"SayingNonsense", "say nonsense",
                            "what the preview process said of it is no answer"},
                    Misdeed{"GoingOn", "say more than it said",
                            "what the preview process said of it is no answer"}),
    [](const auto& misdeed) { return misdeed.param.name; });

TEST_F(APreview, IsTriedAgainWhereItTookTooLongButNotWhereItCrashed) {
    PreviewSettings settings = awkward_;
    settings.timePerLine = std::chrono::seconds(2);
    settings.timeUntilRetry = std::chrono::milliseconds(0);
    Previewer previewer(settings);
    EXPECT_THAT(answer(previewer, say("wait"))->problem, StartsWith(font_ + ": drawing it took"));
    EXPECT_EQ(answer(previewer, say("draw"))->problem, "");
    const std::string crash = answer(previewer, say("crash"))->problem;
    EXPECT_EQ(answer(previewer, say("draw"))->problem, crash);
    folder_.write("font", "changed");
    EXPECT_EQ(answer(previewer, say("draw"))->problem, "");
}

TEST_F(APreview, LetsItsProcessAloneLookAtAFile) {
    Previewer previewer(awkward_);
    static_cast<void>(previewer.request(say("draw", "elsewhere")));
    static_cast<void>(previewer.request(say("draw", "elsewhere")));
    const std::vector<Finished> both = await(previewer, 2); // of one look
    const SharedAnswer there = both[0].answer;
    EXPECT_EQ(there->problem, "");
    EXPECT_EQ(both[1].answer, there);
    EXPECT_EQ(answer(previewer, say("draw", "elsewhere")), there);
    EXPECT_NE(answer(previewer, say("draw", "elsewhere")), there) << "it is another one now";

    PreviewSettings impatient = awkward_;
    impatient.timePerLine = std::chrono::milliseconds(200);
    Previewer hindered(impatient);
    const SharedAnswer hung = answer(hindered, say("draw", "hung"));
    EXPECT_THAT(hung->problem, EndsWith("hung: drawing it took longer than 200 ms"));
    EXPECT_EQ(answer(hindered, say("something else", "hung")), hung) << "it was looked at again";
}

TEST_F(APreview, WaitsForNoProcessToEnd) {
    const std::string pipe = folder_ / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), S_IRUSR | S_IWUSR), 0);
    while (sys::Child::lingering() != 0) { // those of tests before
        std::this_thread::yield();
    }
    std::optional<Previewer> previewer(awkward_);
    if (answer(*previewer, say("linger", "pipe"))->problem == "no tracing") {
        GTEST_SKIP() << "no process can be had that does not end";
    }
    PreviewSettings settings = awkward_;
    settings.timePerLine = std::chrono::seconds(10); // for it to leave in
    previewer.emplace(settings);
    EXPECT_EQ(answer(*previewer, say("linger and leave", "pipe"))->problem,
              pipe + ": drawing it took longer than 10000 ms");
    previewer.emplace(awkward_);
    Request request = say("linger and say nonsense", "pipe");
    std::string problem;
    do {
        EXPECT_EQ(sys::Child::lingering(), 2 + request.face++);
        problem = answer(*previewer, request)->problem;
    } while (problem == pipe + ": what the preview process said of it is no answer");
    EXPECT_EQ(problem, pipe + ": too many processes hang that were to draw others");
    EXPECT_EQ(sys::Child::lingering(), 8U) << "a window may have many rows";
    // It opens as there are readers, and those that come later read until it is closed.
    const sys::Descriptor release(open(pipe.c_str(), O_WRONLY | O_CLOEXEC));
    while (sys::Child::lingering() != 0) {
        std::this_thread::yield();
    }
    EXPECT_EQ(answer(*previewer, say("draw"))->problem, "");
}

TEST_F(APreview, MayTakeNoMoreMemoryThanItsProcessHas) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizers' own memory has no bounds";
#endif
    PreviewSettings settings = awkward_;
    settings.memory = std::size_t{1} << 29U;
    Previewer previewer(settings);
    EXPECT_EQ(answer(previewer, say("take memory"))->problem,
              font_ + ": drawing it takes too much memory");
    EXPECT_EQ(answer(previewer, say("draw"))->picture.pixels, "\1");
}

TEST_F(APreview, GivesItsProcessNoDescriptorOfTheWindows) {
    const sys::Descriptor inherited(open("/dev/null", O_RDONLY)); // NOLINT: not closed by exec
    Previewer previewer(awkward_);
    EXPECT_EQ(answer(previewer, say("tell descriptors"))->problem, "0");
}

TEST_F(APreview, IsRefusedWhereNothingCanBeDrawn) {
    const double none = std::numeric_limits<double>::quiet_NaN();
    const std::vector<std::pair<Request, std::string>> refused = {
        {{.file = font_, .text = std::string(maximumText + 1, 'x')}, "the text is longer"},
        {{.file = font_, .others = {std::string(maximumText + 1, 'x')}}, "the text is longer"},
        {{.file = font_, .others = {maximumOthers + 1, "x"}}, "the axes, features"},
        {{.file = font_, .pixels = 0}, "the size is none"},
        {{.file = font_, .scale = none}, "the size is none"},
        {{.file = font_, .axes = {{"wght", none}}}, "the axes, features"},
        {{.file = font_, .axes = {{"wg", 1}}}, "the axes, features"},
        {{.file = font_, .features = {maximumFeatures + 1, "kern"}}, "the axes, features"},
        {{.file = "/nowhere"}, "No such file or directory"},
    };
    Previewer previewer(awkward_);
    for (const auto& [request, problem] : refused) {
        EXPECT_THAT(answer(previewer, request)->problem, StartsWith(request.file + ": " + problem));
    }
    Previewer without({.program = "/nowhere"});
    EXPECT_THAT(answer(without, say("draw"))->problem,
                StartsWith(font_ + ": it cannot be drawn: /nowhere: No such file"));
}

} // namespace
