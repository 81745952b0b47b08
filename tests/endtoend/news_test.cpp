// SPDX-License-Identifier: MIT
// News of the library on its way from the real manager to an observer in this process.
#include "world.h"

#include "GLYNotifyHandler.h"
#include "platform/application.h"
#include "platform/notify.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace endtoend {

namespace {

class Observer : public GLY::IGLYChangeNotifier {
public:
    std::int32_t OnGLYNotify(const std::string& text) override {
        texts.push_back(text);
        return 0;
    }

    std::vector<std::string> texts;
};

/// Counts the postings beside the handler, to know when all are there.
class Witness {
public:
    Witness() {
        EXPECT_EQ(notify_register_check("org.glyphora.Glyphora.FontLibraryChanged", &token_),
                  NOTIFY_STATUS_OK);
    }
    ~Witness() { notify_cancel(token_); }
    Witness(const Witness&) = delete;
    Witness& operator=(const Witness&) = delete;

    bool sawOne() const {
        int check = 0;
        notify_check(token_, &check);
        return check != 0;
    }

private:
    int token_ = 0;
};

TEST(TheLibrarysNews, TellsAnObserverOfEachChange) {
    World world;
    world.stock("DejaVu Serif", "text");
    world.stock("DejaVu Sans Mono", "code");
    ASSERT_EQ(world.manager({"add", world.library().string()}).status, 0);

    ASSERT_EQ(PLRegisterApplication(FourCharCode("ART5"), kPLManyInstances, "observer"), noErr);
    auto* const handler = GLY::NotifiyHandlerFactory::getNotifyHandler(false);
    Observer observer;
    const Witness witness;
    handler->registerNotifer(&observer);
    handler->start();
    ASSERT_EQ(world.manager({"activate", "DejaVu Serif"}).status, 0);
    ASSERT_EQ(world.manager({"activate", "DejaVu Sans Mono"}).status, 0);
    for (int seen = 0; seen < 2; std::this_thread::yield()) {
        seen += witness.sawOne() ? 1 : 0;
    }
    // Each push takes one mark at most; the reader may be a poll behind the witness.
    for (std::size_t told = 0; told < 2; std::this_thread::yield()) {
        handler->push();
        EXPECT_LE(observer.texts.size(), told + 1);
        told = observer.texts.size();
    }
    EXPECT_FALSE(witness.sawOne());
    EXPECT_EQ(observer.texts, std::vector<std::string>(2, "<cmd cmd=\"fontChanged\"></cmd>"));

    handler->end();
    ASSERT_EQ(world.manager({"deactivate", "--all"}).status, 0);
    handler->push();
    EXPECT_EQ(observer.texts.size(), 2U);
    handler->unregisterNotifer(&observer);
    PLUnregisterApplication();
}

} // namespace

} // namespace endtoend
