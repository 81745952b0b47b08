// SPDX-License-Identifier: MIT
// Fonts to choose from, each in its own face, and the document's words beside them.
#include "windowfixture.h"

#include "preview/qt/faces.h"

#include <QAccessible>
#include <QAccessibleInterface>
#include <QFrame>
#include <QLabel>
#include <QListView>
#include <QScrollBar>

#include <csignal>
#include <fstream>

namespace host::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string folderOfFonts = "/usr/share/fonts/truetype/dejavu/";
const FaceFile sans{"Sans", folderOfFonts + "DejaVuSans.ttf"};
const FaceFile serif{"Serif", folderOfFonts + "DejaVuSerif.ttf"};

class AFontChooser : public WindowFixture {
protected:
    AFontChooser() {
        folder.write("1.ui", R"(<ui version="4.0"><widget class="QDialog" name="dialog">
            <property name="geometry"><rect><width>700</width><height>400</height></rect></property>
            <layout class="QVBoxLayout"><item><widget class="QListView" name="item4">
            <property name="itemID" stdset="0"><number>4</number></property>
            <property name="fontNames" stdset="0"><bool>true</bool></property>
            <property name="uniformItemSizes"><bool>true</bool></property>
            </widget></item>)" + widget("QPushButton", 1) +
                                 "</layout></widget></ui>");
        ref = create();
        fonts.face = [this](const std::string& name) -> std::optional<FaceFile> {
            asked.push_back(name);
            const auto found = known.find(name);
            return found != known.end() ? std::optional(found->second) : std::nullopt;
        };
        fonts.someCharacters = [](const FaceFile& /*face*/) { return "\u0394\u03A9"; };
    }

    void add(const std::string& name) {
        Tree& tree = *item(ref, 4).tree;
        dialogs.insertRow(tree.top(), tree.top().rows.size()).text = name;
    }
    void add(const std::string& name, const FaceFile& face) {
        add(name);
        known.insert_or_assign(name, face);
    }
    static QListView& view() { return shown<QListView>(4); }
    /// Shows it without the marks of a focus, all rows at once.
    void showRows(const std::function<void()>& steps) {
        look(ref, [&] {
            shown(1).setFocus();
            view().viewport()->grab(); // asks for all of them before any can come
            settle();
            steps();
        });
    }
    static QImage imageOf(int row) {
        const QModelIndex index = view().model()->index(row, 0);
        return view().viewport()->grab(view().visualRect(index)).toImage();
    }
    /// The first rows as they are while no face is known.
    std::vector<QImage> plainRows(int count) {
        std::vector<QImage> images;
        const auto faces = std::exchange(known, {});
        showRows([&] {
            for (int row = 0; row < count; ++row) {
                images.push_back(imageOf(row));
            }
        });
        known = faces;
        windows->forget(*dialogs.find(ref));
        return images;
    }
    static bool becomes(const std::function<bool()>& condition) {
        return QTest::qWaitFor(condition, 60'000);
    }
    static void select(int row) {
        view().setCurrentIndex(view().model()->index(row, 0));
        settle();
    }
    static QWidget& pane() { return *window().findChild<QWidget*>(QStringLiteral("samples")); }
    /// From the top.
    static std::vector<std::string> textsOfPane() {
        std::map<int, std::string> texts;
        for (const QLabel* const label : pane().findChildren<QLabel*>()) {
            if (label->isVisible()) {
                texts[label->y()] = label->text().toStdString();
            }
        }
        std::vector<std::string> result;
        std::transform(texts.begin(), texts.end(), std::back_inserter(result),
                       [](const auto& text) { return text.second; });
        return result;
    }
    /// The words "before" or "after".
    static QImage words(const char* when) {
        auto* const box = pane().findChild<QFrame*>(QLatin1String(when));
        return box->grab(box->contentsRect()).toImage();
    }
    static std::vector<pid_t> children() {
        std::ifstream file("/proc/thread-self/children");
        return {std::istream_iterator<pid_t>(file), {}};
    }

    ADMDialogRef ref = nullptr;
    std::map<std::string, FaceFile> known;
    std::vector<std::string> asked;
};

/// Where an image is not as its first pixel; empty where nothing is.
QRect inkOf(const QImage& image) {
    QRect ink;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) != image.pixel(0, 0)) {
                ink |= QRect(x, y, 1, 1);
            }
        }
    }
    return ink;
}

TEST_F(AFontChooser, ShowsNamesInTheirFacesAndPlainOnesWhereThereIsNone) {
    const std::string broken = folder.write("broken.ttf", "no font").string();
    add("Harbour", sans);
    add("Nowhere");
    add("Broken", {"", broken});
    add("\u6e2f\u53e3", sans); // it lacks these
    add("Signs", {"", sans.file, 0, true});
    const std::vector<QImage> plain = plainRows(5);
    QImage inSans;
    showRows([&] {
        // Who was asked for last has come by then.
        EXPECT_TRUE(becomes([&] { return imageOf(0) != plain[0]; }));
        inSans = imageOf(0);
        EXPECT_EQ(imageOf(1), plain[1]);
        EXPECT_EQ(imageOf(2), plain[2]);
        for (const int signs : {3, 4}) {
            const QImage image = imageOf(signs);
            const QRect name = inkOf(plain[static_cast<std::size_t>(signs)]);
            EXPECT_EQ(image.copy(name), plain[static_cast<std::size_t>(signs)].copy(name));
            EXPECT_GT(inkOf(image).right(), name.right() + 10);
        }
        QAccessibleInterface* const list = QAccessible::queryAccessibleInterface(&view());
        EXPECT_EQ(list->child(0)->text(QAccessible::Name), "Harbour");
        QTest::keyClick(&view(), Qt::Key_B);
        settle();
        EXPECT_EQ(item(ref, 4).tree->active()->text, "Broken");
    });
    known["Harbour"] = serif;
    windows->forget(*dialogs.find(ref));
    showRows([&] {
        EXPECT_TRUE(becomes([&] { return imageOf(0) != plain[0]; }));
        EXPECT_NE(imageOf(0), inSans);
    });
}

TEST_F(AFontChooser, AsksForWhatIsSeenAndForgetsWhatScrolledAway) {
    for (int i = 0; i < 2000; ++i) {
        add("Font " + std::to_string(i), i % 2 == 0 ? sans : serif);
    }
    const std::vector<QImage> plain = plainRows(1);
    asked.clear();
    showRows([&] {
        settle();
        const auto page = static_cast<std::size_t>(
            view().viewport()->height() / view().visualRect(view().indexAt({})).height() + 1);
        EXPECT_THAT(asked, Contains("Font 0"));
        EXPECT_LE(asked.size(), page);
        EXPECT_TRUE(becomes([&] { return imageOf(0) != plain[0]; }));
        asked.clear();
        view().scrollTo(view().model()->index(1000, 0), QAbstractItemView::PositionAtTop);
        imageOf(1000); // painted, but nothing can have come yet
        view().scrollToBottom();
        imageOf(1999);
        EXPECT_THAT(asked, Contains("Font 1000"));
        EXPECT_LE(asked.size(), 2 * page);
        asked.clear();
        view().scrollTo(view().model()->index(1000, 0), QAbstractItemView::PositionAtTop);
        imageOf(1000);
        EXPECT_THAT(asked, Contains("Font 1000")) << "it is still waited for";
        asked.clear();
        view().scrollToTop();
        imageOf(0);
        EXPECT_THAT(asked, IsEmpty()) << "pictures are not kept";
    });
}

TEST_F(AFontChooser, FollowsThePalette) {
    add("Harbour", sans);
    add("Harbour 2", sans);
    const std::vector<QImage> plain = plainRows(1);
    showRows([&] {
        EXPECT_TRUE(becomes([&] { return imageOf(0) != plain[0]; }));
        QPalette dark = view().palette();
        dark.setColor(QPalette::Base, Qt::black);
        dark.setColor(QPalette::Text, Qt::yellow);
        dark.setColor(QPalette::Highlight, Qt::blue);
        dark.setColor(QPalette::HighlightedText, Qt::green);
        view().setPalette(dark);
        select(1);
        const auto has = [](const QImage& image, const QColor& color) {
            for (int i = 0; i < image.width() * image.height(); ++i) {
                if (image.pixelColor(i % image.width(), i / image.width()) == color) {
                    return true;
                }
            }
            return false;
        };
        EXPECT_TRUE(has(imageOf(0), Qt::yellow));
        EXPECT_TRUE(becomes([&] { return has(imageOf(1), Qt::green); }));
        EXPECT_FALSE(has(imageOf(1), Qt::yellow));
    });
}

TEST_F(AFontChooser, SurvivesTheProcessThatDraws) {
    for (int i = 0; i < 100; ++i) {
        add("Font " + std::to_string(i), sans);
    }
    const std::vector<QImage> plain = plainRows(1);
    showRows([&] {
        EXPECT_TRUE(becomes([&] { return imageOf(0) != plain[0]; }));
        ASSERT_EQ(children().size(), 1U);
        kill(children().front(), SIGSTOP);
        view().scrollToBottom();
        const QImage hanging = imageOf(99);
        select(99);
        EXPECT_EQ(item(ref, 4).tree->active()->text, "Font 99");
        select(98);
        EXPECT_EQ(imageOf(99), hanging);
        kill(children().front(), SIGKILL);
        EXPECT_TRUE(becomes([&] { return imageOf(97) != plain[0] && !children().empty(); }));
        view().scrollTo(view().model()->index(50, 0), QAbstractItemView::PositionAtTop);
        const QImage waiting = imageOf(50);
        EXPECT_TRUE(becomes([&] { return imageOf(50) != waiting; }));
    });
    windows.reset();
    EXPECT_TRUE(becomes([] { return sys::Child::lingering() == 0; }));
    EXPECT_THAT(children(), IsEmpty());
}

TEST_F(AFontChooser, SavesPicturesWithAllFacesInThem) {
    add("Harbour", sans);
    const std::vector<QImage> plain = plainRows(1);
    windows->savePictures(folder.path());
    showRows([&] {
        const QPoint at = view().viewport()->mapTo(&window(), QPoint());
        const QImage saved(QString::fromStdString((folder / "01-shown.png").string()));
        EXPECT_NE(saved.copy(QRect(at, plain[0].size())).convertToFormat(QImage::Format_RGB32),
                  plain[0].convertToFormat(QImage::Format_RGB32));
    });
}

TEST_F(AFontChooser, ShowsTheDocumentsWordsBeforeAndAfter) {
    std::vector<RowTexts> around;
    fonts.samples = [&](const std::vector<RowTexts>& rows) {
        around = rows;
        return std::vector<Sample>{{"PIER 7", "Quay", sans}, {"\u05D7\u05D5\u05E3", "Old", sans}};
    };
    add("Serif", serif);
    add("Sans", sans);
    add("Unknown");
    add("Broken", {"", folder.write("broken.ttf", "no font").string()});
    add("Mono", {"", folderOfFonts + "DejaVuSansMono.ttf"});
    showRows([&] {
        EXPECT_THAT(textsOfPane(),
                    ElementsAre("Vorher", "Quay, Old, dargestellt in Sans", "Nachher",
                                "Wählen Sie eine Schrift aus der Liste."));
        const QImage empty = words("after");
        EXPECT_TRUE(becomes([&] { return !inkOf(words("before")).isEmpty(); }));
        EXPECT_TRUE(inkOf(empty).isEmpty()); // nothing is chosen
        select(0);
        EXPECT_TRUE(becomes([&] { return words("after") != empty; }));
        EXPECT_TRUE(becomes([&] { return textsOfPane().size() == 5; }));
        EXPECT_EQ(textsOfPane()[3], "Serif");
        EXPECT_EQ(textsOfPane()[4], "Nicht in dieser Schrift: \u05D7\u05D5\u05E3");
        select(1);
        EXPECT_TRUE(becomes([&] { return words("after") == words("before"); }))
            << "it is the same face";
        EXPECT_EQ(textsOfPane().size(), 4U);
        for (const auto& [box, name] : {std::pair("before", "Vorher"), {"after", "Nachher"}}) {
            auto* const said = QAccessible::queryAccessibleInterface(
                pane().findChild<QFrame*>(QLatin1String(box)));
            EXPECT_EQ(said->text(QAccessible::Name), name);
            EXPECT_EQ(said->text(QAccessible::Description), "PIER 7\n\u05D7\u05D5\u05E3");
        }
        // One line at the left, and one from the right.
        const QImage both = words("before");
        EXPECT_LT(inkOf(both.copy(0, 0, both.width() / 2, both.height())).left(), 20);
        EXPECT_GT(inkOf(both).right(), both.width() - 20);
        for (const int bad : {2, 3}) {
            select(bad);
            EXPECT_TRUE(becomes([&] {
                return textsOfPane().back() == "Diese Schrift kann nicht dargestellt werden.";
            })) << bad;
            EXPECT_TRUE(inkOf(words("after")).isEmpty());
        }
    });
    EXPECT_THAT(around, IsEmpty());
}

TEST_F(AFontChooser, TellsWhatIsSelectedAroundItAndHidesWhatItDoesNotKnow) {
    std::vector<RowTexts> around;
    fonts.samples = [&](const std::vector<RowTexts>& rows) {
        around = rows;
        return std::vector<Sample>();
    };
    add("Sans", sans);
    const ADMDialogRef inner = create();
    Tree& outside = *item(ref, 4).tree;
    outside.multiSelect = true;
    add("Serif", serif);
    showRows([&] {
        dialogs.select(outside, {outside.top().rows[1].get()}, outside.top().rows[1].get());
        EXPECT_FALSE(pane().isVisible());
        look(inner, [&] { EXPECT_FALSE(pane().isVisible()); });
    });
    EXPECT_THAT(around, ElementsAre(ElementsAre("Serif")));
}

TEST_F(AFontChooser, ShowsMoreWordsThanItHasRoomFor) {
    std::vector<Sample> samples(12, {"PIER 7", "Quay", sans});
    samples.back().text = "\u05D7\u05D5\u05E3";
    fonts.samples = [&](const std::vector<RowTexts>& /*rows*/) { return samples; };
    add("Serif", serif);
    showRows([&] {
        select(0);
        EXPECT_TRUE(becomes(
            [&] { return textsOfPane().back() == "Nicht in dieser Schrift: \u05D7\u05D5\u05E3"; }));
        auto* const box = pane().findChild<QAbstractScrollArea*>(QStringLiteral("before"));
        const auto isAtRight = [&] {
            const QImage seen = box->viewport()->grab().toImage();
            return inkOf(seen).right() > seen.width() - 20;
        };
        EXPECT_FALSE(isAtRight());
        box->setFocus();
        for (int i = 0; i < 12; ++i) {
            QTest::keyClick(box, Qt::Key_Down);
        }
        EXPECT_TRUE(becomes(isAtRight)) << "the last line is seen";
        samples.resize(1);
    });
    showRows([&] {
        EXPECT_EQ(pane().findChild<QWidget*>(QStringLiteral("before"))->focusPolicy(), Qt::NoFocus);
    });
}

TEST_F(AFontChooser, HasRoomForAnyWords) {
    std::string text;
    for (int i = 0; i < 80; ++i) {
        text += "\u6e2f";
    }
    std::vector<Sample> samples(12, {text, std::string(300, 'Q'), sans});
    fonts.samples = [&](const std::vector<RowTexts>& /*rows*/) { return samples; };
    add(std::string(300, 'W'), sans);
    showRows([&] {
        EXPECT_TRUE(becomes([&] { return !inkOf(words("before")).isEmpty(); }));
        EXPECT_EQ(window().size(), QSize(700, 400));
        for (const QSize size : {QSize(500, 300), QSize(1000, 700)}) {
            window().resize(size);
            settle();
            EXPECT_EQ(window().size(), size);
            EXPECT_TRUE(
                window().rect().contains(QRect(pane().mapTo(&window(), QPoint()), pane().size())));
        }
    });
}

TEST_F(AFontChooser, ShowsWhatIsChosenByAScript) {
    add("Sans", sans);
    add("Serif", serif);
    showRows([&] {
        Tree& tree = *item(ref, 4).tree;
        dialogs.select(tree, {tree.top().rows[1].get()}, tree.top().rows[1].get());
        settle();
        EXPECT_EQ(view().currentIndex().row(), 1);
        EXPECT_TRUE(view().selectionModel()->isSelected(view().currentIndex()));
    });
}

TEST_F(AFontChooser, GetsNothingFromAProcessThatCannotBeStarted) {
    preview::Faces faces({.program = folder / "nothing"});
    std::vector<std::string> problems;
    const auto note = [&](const preview::SharedAnswer& answer) {
        problems.push_back(answer->problem);
    };
    const preview::Faces::Id first = faces.ask({sans.file, 0, "a", 20, 1}, note);
    const preview::Faces::Id second = faces.ask({sans.file, 0, "b", 20, 1}, note);
    EXPECT_NE(first, second);
    faces.cancel(first);
    EXPECT_TRUE(faces.finish());
    EXPECT_FALSE(faces.finish());
    EXPECT_THAT(problems, ElementsAre(testing::StartsWith(sans.file + ": ")));
}

} // namespace
} // namespace host::test
