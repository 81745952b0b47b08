// SPDX-License-Identifier: MIT
// Which text stands in a face that lacks letters of the one that is wanted.
#include "manager/qt/waterfall.h"
#include "preview/qt/faces.h"
#include "tests/manager/qt/windowfixture.h"

#include <gtest/gtest.h>

#include <string>

using namespace manager;

namespace managertest {

namespace {

TEST(AWaterfall, ShowsWhatAFaceHasButTheUsersTextAsItIs) {
    application();
    Sandbox sandbox;
    preview::Faces faces;
    Waterfall waterfall(faces);
    waterfall.resize(600, 400);
    waterfall.setFaces({{{}, "Test", sandbox.write("a.ttf", testsupport::makeFont({}))}});
    const auto isHeard = [&](const std::string& text) {
        return await([&] {
            waterfall.grab(); // as far as it is seen
            return waterfall.accessibleDescription() == QString::fromStdString("Test: " + text);
        });
    };
    const std::string lacked = "l\u0416";
    waterfall.setSampleTexts({lacked});
    EXPECT_TRUE(await([&] {
        waterfall.grab();
        return !waterfall.accessibleDescription().contains(QString::fromStdString(lacked));
    }));
    waterfall.setSampleTexts({lacked, "LILY", "ILL"});
    EXPECT_TRUE(isHeard("LILY"));
    const QImage sample = waterfall.grab().toImage();
    waterfall.setText(lacked);
    EXPECT_TRUE(isHeard(lacked));
    EXPECT_TRUE(await([&] { return waterfall.grab().toImage() != sample; }));
    waterfall.setText("ILL");
    EXPECT_TRUE(isHeard("ILL"));
}

} // namespace

} // namespace managertest
