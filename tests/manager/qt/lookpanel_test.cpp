// SPDX-License-Identifier: MIT
// The axes and features that a face is drawn with.
#include "faces/coverage.h"
#include "manager/qt/colours.h"
#include "manager/qt/facepane.h"
#include "manager/qt/lookpanel.h"
#include "tests/manager/qt/windowfixture.h"

#include <QClipboard>
#include <QPushButton>
#include <QSlider>
#include <QStyleOptionButton>
#include <QTabBar>

#include <gmock/gmock.h>

using namespace manager;
using testing::ElementsAre;
using testing::IsEmpty;

namespace managertest {

namespace {

class TheLookPanel : public testing::Test {
protected:
    TheLookPanel() {
        application();
        panel_.emplace([this] { ++changes_; }, nullptr);
        panel_->resize(1000, 300);
        panel_->show();
    }
    void offer(const std::vector<std::string>& features) {
        faces::Face face;
        face.features = features;
        panel_->offer(face, {});
        QApplication::processEvents(); // it lays them out
    }

    Sandbox sandbox_; // whose settings of fonts are none of the machine's
    int changes_ = 0;
    std::optional<LookPanel> panel_;
};

TEST_F(TheLookPanel, KeepsFeaturesOverAChangeOfFaceUntilTheyAreReset) {
    offer({"liga", "onum", "smcp"});
    panel_->feature("smcp")->click();
    panel_->feature("liga")->click();
    panel_->feature("onum")->click();
    EXPECT_EQ(changes_, 3);
    EXPECT_THAT(panel_->features(), ElementsAre("liga=0", "onum", "smcp"));
    offer({"liga", "smcp", "ss01"});
    EXPECT_THAT(panel_->features(), ElementsAre("liga=0", "smcp"));
    panel_->findChild<QPushButton*>()->click();
    EXPECT_EQ(changes_, 4) << "told once";
    EXPECT_THAT(panel_->features(), IsEmpty());
    EXPECT_TRUE(panel_->feature("liga")->isChecked());
}

TEST_F(TheLookPanel, SetsBoxesSideBySideWhereThereIsRoom) {
    offer({"smcp", "onum"});
    const QWidget& first = *panel_->feature("smcp");
    const QWidget& second = *panel_->feature("onum");
    EXPECT_EQ(first.y(), second.y());
    EXPECT_GE(second.x(), first.geometry().right());
    panel_->resize(first.width() + 20, 300);
    EXPECT_TRUE(await([&] { return second.y() > first.y(); }));
}

TEST_F(TheLookPanel, NamesWhereTheFileBegins) {
    faces::Face face;
    face.axes = {{"wght", "", 100, 400, 900, false}};
    faces::Face bold = face;
    bold.names = {{"Vary", "Bold", {}, faces::NameKind::Legacy}};
    bold.position = {{"wght", 700}};
    panel_->offer(face, {bold});
    EXPECT_EQ(panel_->instances()->currentText(), QStringLiteral("Default"));
    EXPECT_EQ(panel_->instances()->count(), 2);
    panel_->offer(bold, {bold}); // which was chosen by its name
    EXPECT_EQ(panel_->instances()->currentText(), QStringLiteral("As chosen"));
    panel_->value("wght")->setValue(400);
    EXPECT_EQ(panel_->instances()->currentText(), QStringLiteral("Default"));
    panel_->value("wght")->setValue(401);
    EXPECT_EQ(panel_->instances()->currentIndex(), -1);
}

TEST_F(TheLookPanel, OffersNoAxisThatIsHiddenOrStandsStill) {
    faces::Face face;
    face.axes = {{"opsz", "", 8, 14, 144, true},
                 {"wdth", "", 100, 100, 100, false},
                 {"wght", "", 100, 400, 900, false}};
    panel_->offer(face, {});
    EXPECT_THAT(panel_->findChildren<QSlider*>(), ElementsAre(panel_->slider("wght")));
}

TEST_F(TheLookPanel, HasBoxesWhoseOutlinesCanBeSeen) {
    const auto style = std::make_unique<ReadableStyle>();
    for (const bool dark : {false, true}) {
        QPalette palette;
        palette.setColor(QPalette::Window, dark ? QColor(0x2b, 0x2b, 0x2e) : Qt::white);
        palette.setColor(QPalette::Base, dark ? QColor(0x1f, 0x1f, 0x22) : Qt::white);
        palette.setColor(QPalette::Text, dark ? Qt::white : Qt::black);
        panel_->setPalette(palette);
        offer({"smcp"});
        QCheckBox& box = *panel_->feature("smcp");
        box.setStyle(style.get());
        EXPECT_LE(panel_->minimumSizeHint().height(), panel_->widget()->sizeHint().height());
        QStyleOptionButton option;
        option.initFrom(&box);
        const QRect mark = box.style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, &box);
        const QImage image = box.grab().toImage();
        const QPoint edge(mark.left(), mark.center().y());
        EXPECT_GE(contrastOf(image.pixelColor(edge), palette.color(QPalette::Window)), 3) << dark;
        EXPECT_GE(contrastOf(image.pixelColor(edge), palette.color(QPalette::Base)), 3) << dark;
        box.setStyle(nullptr);
    }
}

/// Answers when it is told to, and may never.
class AwkwardSource : public FaceSource {
public:
    void readFace(FaceId /*id*/, FaceTaker take) override { looks.push_back(std::move(take)); }
    void readCharacters(FaceId /*id*/, CharacterTaker take) override {
        characters.push_back(std::move(take));
    }
    std::vector<FaceTaker> looks;
    std::vector<CharacterTaker> characters;
};

TEST(TheFacePane, TellsWhereAFontIsOnOneLine) {
    application();
    const Sandbox sandbox;
    preview::Faces faces;
    AwkwardSource source;
    FacePane pane(
        faces, source, [](const QString&) {}, nullptr);
    pane.resize(pane.minimumSizeHint());
    const QString path = "/" + QStringLiteral("folder/").repeated(40) + "One.ttf";
    pane.show({"One", "inactive", path, {{FaceId{1}, "One", path.toStdString(), 0}}});
    const QImage page = pane.grab().toImage(); // laid out
    EXPECT_EQ(pane.width(), pane.minimumSizeHint().width());
    EXPECT_LT(pane.width(), pane.fontMetrics().horizontalAdvance(path));
    EXPECT_LT(pane.path().height(), 2 * pane.fontMetrics().height());
    const QString shown = pane.path().shown();
    EXPECT_TRUE(shown.startsWith("/folder") && shown.contains("…") && shown.endsWith("One.ttf"))
        << shown.toStdString();
    pane.path().actions().front()->trigger();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), path);

    const QTabBar& tabs = *pane.views().tabBar();
    const auto middle = [&pane](const QWidget& widget, const QRect& part) {
        return widget.mapTo(&pane, part.center()).y();
    };
    EXPECT_NEAR(middle(tabs, tabs.tabRect(1)), middle(pane.lookButton(), pane.lookButton().rect()),
                1);
    const QColor ground(0x2b, 0x2b, 0x2e);
    pane.setPalette(QPalette(QColor(0x3a, 0x3a, 0x3e), ground));
    double contrast = 0;
    const auto* const folder = pane.findChild<QToolButton*>({}, Qt::FindDirectChildrenOnly);
    const QImage icon = folder->icon().pixmap(16).toImage();
    for (int y = 0; y < icon.height(); ++y) {
        for (int x = 0; x < icon.width(); ++x) {
            const QColor pixel = icon.pixelColor(x, y);
            contrast = std::max(contrast, pixel.alpha() > 0xC0 ? contrastOf(pixel, ground) : 0);
        }
    }
    EXPECT_GE(contrast, leastContrast);
    pane.show({"Gone", "not in the library", {}, {}});
    const QImage gone = pane.waterfall().grab().toImage();
    pane.show({});
    EXPECT_TRUE(pane.path().isHidden());
    EXPECT_NE(pane.waterfall().grab().toImage(), gone) << "it was chosen";
}

TEST(TheFacePane, AsksAgainForWhatHasNotCome) {
    application();
    const Sandbox sandbox;
    preview::Faces faces;
    AwkwardSource source;
    FacePane pane(
        faces, source, [](const QString&) {}, nullptr);
    pane.lookButton().setChecked(true);
    pane.views().setCurrentWidget(&pane.characters());
    const ChosenFaces one{
        .title = {}, .why = {}, .path = {}, .faces = {{FaceId{1}, "One", "/nowhere", 0}}};
    const ChosenFaces other{
        .title = {}, .why = {}, .path = {}, .faces = {{FaceId{2}, "Two", "/nowhere", 0}}};
    pane.show(one);
    pane.show(one); // the first reading has failed
    ASSERT_EQ(source.looks.size(), 2U);
    ASSERT_EQ(source.characters.size(), 2U);
    faces::Face face;
    face.features = {"smcp"};
    source.looks.back()(face, {});
    source.characters.back()(std::make_shared<const Characters>(faces::Coverage()));
    pane.show(one);
    EXPECT_EQ(source.looks.size(), 2U) << "what has come was asked for";
    EXPECT_EQ(source.characters.size(), 2U);
    pane.show(other);
    pane.show(one);
    source.looks[2]({}, {}); // of the other, too late
    EXPECT_NE(pane.look().feature("smcp"), nullptr);
}

TEST(TheFacePane, DrawsCharactersOfAFontThatIsBack) {
    application();
    Sandbox sandbox;
    preview::Faces faces;
    AwkwardSource source;
    FacePane pane(
        faces, source, [](const QString&) {}, nullptr);
    pane.views().setCurrentWidget(&pane.characters());
    const ChosenFaces one{.title = {},
                          .why = {},
                          .path = {},
                          .faces = {{FaceId{1}, "One", sandbox.library() + "/a.ttf", 0}}};
    pane.show(one);
    faces::Coverage coverage;
    faces::addCharacter(coverage, U'L');
    source.characters.back()(std::make_shared<const Characters>(coverage));
    const auto grab = [&pane] { return pane.characters().grid().grab().toImage(); };
    const QImage asked = grab();
    ASSERT_TRUE(await([&] { return grab() != asked; }));
    const QImage crossed = grab();
    sandbox.write("a.ttf", testsupport::makeFont({}));
    pane.show(one); // as news has it
    EXPECT_TRUE(await([&] {
        const QImage now = grab();
        return now != crossed && now != asked;
    }));
}

} // namespace

} // namespace managertest
