// SPDX-License-Identifier: MIT
// Each view shows a family that has something to show in it, where the library holds one.
#include "manager/qt/pictures.h"

#include "manager/cli/report.h"
#include "manager/qt/fontfilewindow.h"
#include "manager/qt/librarywindow.h"

#include <QApplication>
#include <QItemSelection>
#include <QPixmap>
#include <QToolButton>

#include <algorithm>
#include <utility>

namespace manager {

namespace {

QPalette darkPalette() {
    const QColor window(0x2b, 0x2b, 0x2e);
    QPalette palette(QColor(0x3a, 0x3a, 0x3e), window); // its edges are made of these
    const QColor base(0x1f, 0x1f, 0x22);
    const QColor light(0xee, 0xee, 0xee);
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText, light);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::Text, light);
    palette.setColor(QPalette::PlaceholderText, QColor(0xa6, 0xa6, 0xa6));
    palette.setColor(QPalette::ButtonText, light);
    palette.setColor(QPalette::ToolTipBase, window);
    palette.setColor(QPalette::ToolTipText, light);
    palette.setColor(QPalette::Highlight, QColor(0x2f, 0x6f, 0xb5));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, QColor(0x8a, 0x8a, 0x8a));
    }
    return palette;
}

/// Grabs the window once all lines that it asks for are drawn. False: it could not be written.
template <class Window>
bool savePicture(Window& window, const std::filesystem::path& file) {
    QPixmap picture;
    do {
        QApplication::processEvents(); // also what the layout before asks for
        picture = window.grab();
    } while (window.finishLines());
    const bool isWritten = picture.save(QString::fromStdString(file.string()), "PNG");
    if (!isWritten) {
        warn(file.string() + ": cannot be written");
    }
    return isWritten;
}

class Pictures {
public:
    Pictures(LibraryWindow& window, std::filesystem::path folder)
        : window_(window), folder_(std::move(folder)), words_(window.searchField().text()) {}

    /// False: one could not be written.
    [[nodiscard]] bool take(const std::string& end) {
        end_ = end;
        window_.resize(LibraryWindow::wantedSize); // whatever screen there is not
        const SidebarPlace begin = window_.sidebar().place();
        if (!words_.isEmpty()) {
            window_.searchField().setText(words_);
            chooseFirst();
            save("search");
        }
        window_.searchField().clear();
        if (begin.kind == SidebarPlace::Kind::Drawing) {
            save("drawing");
            window_.list().setCurrentIndex(window_.model().index(0, 0));
            save("drawing-font");
            window_.sidebar().choose({});
        }
        ofFamilies();
        ofPlaces();
        ofFilters();
        window_.sidebar().choose(begin);
        return !failed_;
    }

private:
    void ofFamilies() {
        const QModelIndex active = familyWith([](const LibraryView& view, FaceRow face) {
            return view.states.of(face) == FaceState::Active;
        });
        window_.list().setCurrentIndex(active);
        window_.list().setExpanded(active, true);
        save("library");
        FacePane& pane = window_.pane();
        pane.views().setCurrentWidget(&pane.characters());
        save("characters");
        pane.views().setCurrentIndex(0);

        window_.list().setCurrentIndex(familyWith([](const LibraryView& view, FaceRow face) {
            return view.table.faces()[face].variable;
        }));
        pane.lookButton().setChecked(true);
        save("look");
        pane.lookButton().setChecked(false);

        window_.list().setExpanded(active, false);
        constexpr int compared = 3;
        const FaceModel& model = window_.model();
        window_.list().selectionModel()->select(
            QItemSelection(model.index(0, 0),
                           model.index(std::min(compared, model.rowCount()) - 1, 0)),
            QItemSelectionModel::ClearAndSelect);
        save("compare");
        window_.list().setCurrentIndex(model.index(0, 0));
    }

    void ofPlaces() {
        if (!window_.groups().empty()) {
            const Group& group = window_.groups().front();
            window_.sidebar().choose(
                {SidebarPlace::Kind::Group, {}, GroupTitle{group.kind, group.name}.text()});
            chooseFirst();
            save("collection");
        }
        if (!window_.model().listing().view().copies.faces().empty()) { // else it is not offered
            window_.sidebar().choose({.kind = SidebarPlace::Kind::Copies});
            chooseFirst();
            save("duplicates");
        }
        window_.sidebar().choose({});
    }

    void ofFilters() {
        window_.filters().set(FilterKind::Weight, "5");
        window_.filters().set(FilterKind::Script, "Latn");
        window_.filters().button().setChecked(true);
        window_.finishReading();
        chooseFirst();
        save("filters");
        window_.filters().clear();
        window_.filters().button().setChecked(false);
        window_.searchField().setText(QStringLiteral("no such font"));
        save("nothing");
    }

    void chooseFirst() {
        const QModelIndex first = window_.model().index(0, 0);
        window_.list().setCurrentIndex(first);
        window_.list().setExpanded(first, true);
    }

    /// The first family whose sample is of that kind; the first of all when none is.
    template <typename IsWanted>
    [[nodiscard]] QModelIndex familyWith(IsWanted isWanted) const {
        const FaceModel& model = window_.model();
        for (int row = 0; row < model.rowCount(); ++row) {
            const QModelIndex family = model.index(row, 0);
            const auto sample = model.row(family).sample;
            if (sample && isWanted(model.listing().view(), *sample)) {
                return family;
            }
        }
        return model.index(0, 0);
    }

    void save(const std::string& name) {
        window_.finishReading();
        failed_ = !savePicture(window_, folder_ / (name + end_ + ".png")) || failed_;
    }

    LibraryWindow& window_;
    std::filesystem::path folder_;
    QString words_; ///< that are searched for at first
    std::string end_;
    bool failed_ = false;
};

} // namespace

bool takePictures(LibraryWindow& window, const std::filesystem::path& folder) {
    makeFolders(folder.string());
    Pictures pictures(window, folder);
    const bool areLight = pictures.take("");
    const QPalette light = QApplication::palette();
    QApplication::setPalette(darkPalette());
    const bool areDark = pictures.take("-dark");
    QApplication::setPalette(light);
    return areLight && areDark;
}

bool takePictures(FontFileWindow& window, const std::filesystem::path& folder) {
    makeFolders(folder.string());
    const bool isLight = savePicture(window, folder / "file.png");
    const QPalette light = QApplication::palette();
    QApplication::setPalette(darkPalette());
    const bool isDark = savePicture(window, folder / "file-dark.png");
    QApplication::setPalette(light);
    return isLight && isDark;
}

} // namespace manager
