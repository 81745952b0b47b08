// SPDX-License-Identifier: MIT
// The window: places at the left, the list, and the chosen faces at the right.
#pragma once

#include "manager/qt/deeds.h"
#include "manager/qt/facedelegate.h"
#include "manager/qt/facepane.h"
#include "manager/qt/filterpanel.h"
#include "manager/qt/groupdeeds.h"
#include "manager/qt/libraryreader.h"
#include "manager/qt/listposition.h"
#include "manager/qt/problemlist.h"
#include "manager/qt/setchoice.h"
#include "manager/qt/sidebar.h"
#include "manager/view/window.h"

#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPushButton>
#include <QTimer>

#include <set>
#include <string>

class QMenu;
class QSplitter;
class QStackedWidget;

namespace manager {

/// [main-thread]
class LibraryWindow : public QMainWindow {
public:
    explicit LibraryWindow(const WindowOptions& options);
    LibraryWindow(const LibraryWindow&) = delete;
    LibraryWindow& operator=(const LibraryWindow&) = delete;
    ~LibraryWindow() override;

    static constexpr QSize wantedSize{1180, 720}; ///< where the screen has room for it

    /// Comes to the front with what is asked for; as it is, when that is nothing.
    void open(const WindowRequest& request);

    /// Has a server run, which watches the folders that are shown: by the bus where it is
    /// installed, else `program`, this one.
    void needServer(const std::string& program);

    /// Calls `then` once the library is shown, with the drawings that were asked for, or with why
    /// it cannot be.
    void whenShown(std::function<void(const QString& problem)> then) {
        whenShown_ = std::move(then);
    }
    /// Waits until every line that is to be seen is drawn; false when all were.
    bool finishLines() { return faces_.finish(); }
    /// Waits until what is being read of the library has been shown.
    void finishReading();

    [[nodiscard]] QTreeView& list() { return *list_; }
    [[nodiscard]] FaceModel& model() { return model_; }
    [[nodiscard]] QLineEdit& searchField() { return *search_; }
    [[nodiscard]] const Groups& groups() const { return groups_; }
    [[nodiscard]] const std::vector<std::string>& folders() const { return folders_; }
    [[nodiscard]] FilterPanel& filters() { return *filters_; }
    [[nodiscard]] Sidebar& sidebar() { return *sidebar_; }
    [[nodiscard]] Deeds& deeds() { return deeds_; }
    [[nodiscard]] GroupDeeds& groupDeeds() { return groupDeeds_; }
    [[nodiscard]] FacePane& pane() { return *pane_; }
    [[nodiscard]] ProblemList& problems() { return *problems_; }
    /// Why the list is empty, and the button of what to do then.
    [[nodiscard]] QString empty() const { return empty_->text(); }
    [[nodiscard]] QPushButton& way() { return *way_; }

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void take(const WindowRequest& request);
    /// Takes up what the run before has left.
    void recall();
    void remember() const;
    void setExpanded(const QModelIndex& family, bool expanded);
    void showExpanded();
    void makeActions();
    void makeGroupActions(QMenu& fonts);
    /// A menu of the groups of a kind, and of making one, for the chosen fonts.
    void fillGroupMenu(QMenu& menu, GroupKind kind);
    void newGroup(GroupKind kind, const FontChoice& fonts);
    void switchSet(bool on);
    void unmakeGroup();
    void keepOne();
    void showGroupActions();
    [[nodiscard]] FontChoice chosenFonts() const;
    QWidget* makeList();
    void read();
    /// As a deed, with progress, while the window shows what is known.
    void scanWhereOwed();
    void takeSets(Groups groups, std::vector<std::string> folders);
    /// Reads collections, tags and folders, and shows them, with the view that has come before.
    void readSets();
    void takeNews();
    void filter();
    [[nodiscard]] ListFilter filterOf(const SidebarPlace& place);
    void findByFilters();
    void searchIndex();
    void offerTags();
    void showChosen();
    QWidget* makeEmpty();
    void showEmpty();
    /// `way` is what a button says that does `wayOut`; null: there is none.
    void setEmpty(const QString& why, const std::string& way, std::function<void()> wayOut);
    /// Tells what the reader could not do.
    void fail(const QString& problem);
    /// What of the chosen rows can be switched.
    [[nodiscard]] SetChoice choice(bool on) const;
    void switchChosen(const SetChoice& choice);
    /// Switches what the commands know by these names.
    void switchNamed(bool on, const QStringList& containers);
    void tellSwitching(bool on);
    void toggleChosen();
    /// Why nothing of what is chosen can be switched.
    [[nodiscard]] QString whyNotSwitched() const;
    void addFolder();
    void addFiles();
    void add(const QStringList& paths);
    /// Adds what was dropped, and shows what drawings among it use.
    void bring(const QStringList& paths);
    void readDrawings(const QStringList& files);
    void takeDrawings(const QStringList& files, const QJsonObject& read);
    void showDrawing(std::vector<CommandFont> fonts, const QString& name);
    /// Tells who waits for it that all is shown, or what cannot be; nothing while something is to
    /// come.
    void tellShown(const QString& problem);
    /// The containers that hold its fonts, each font once.
    [[nodiscard]] FontChoice fontsOfDrawing() const;
    void makeDrawingAction(QMenu& fonts);
    void showDrawingAction();
    void collect();
    /// Of `problems_`.
    static QString readDeed() { return QStringLiteral("read"); }
    /// In passing.
    void tell(const QString& text);
    void showCount();
    /// What a screen reader is to tell of what has changed while the focus stays where it is.
    void letHear(const QString& text);

    Places places_;
    bool keeps_; ///< how it is left
    preview::Faces faces_;
    FaceModel model_;
    std::shared_ptr<const LibraryView> view_;
    std::shared_ptr<const LibraryView> nextView_; ///< to be shown with its sets
    unsigned drawingNumber_ = 0;                  ///< of the one asked for last
    bool isDrawingAwaited_ = false;               ///< to be chosen once it is there
    bool isDrawingRead_ = true;                   ///< so far as one was asked for
    Groups groups_;
    std::vector<std::string> folders_;
    LibraryReader reader_; ///< it calls the window
    Deeds deeds_;
    GroupDeeds groupDeeds_;
    Sidebar* sidebar_ = nullptr;
    QLineEdit* search_ = nullptr;
    FilterPanel* filters_ = nullptr;
    LibraryReader::FoundFaceIds found_; ///< that pass the filters; null: there are none
    QTreeView* list_ = nullptr;
    QStackedWidget* pages_ = nullptr; ///< the list, or what to do while it is empty
    QLabel* empty_ = nullptr;
    QPushButton* way_ = nullptr; ///< out of being empty
    std::function<void()> wayOut_;
    std::set<std::string> expanded_;  ///< families, shown or not
    std::set<std::string> collapsed_; ///< fonts of the drawing
    ListPosition recalled_;           ///< of the run before, until there are rows
    FaceDelegate* delegate_ = nullptr;
    FacePane* pane_ = nullptr;
    ProblemList* problems_ = nullptr;
    LibraryFaces libraryFaces_{reader_}; ///< only refers to it
    QLabel* count_ = nullptr;
    QSplitter* splitter_ = nullptr;
    QAction* takeOut_ = nullptr;
    QAction* keep_ = nullptr;
    QAction* makeSet_ = nullptr;    ///< of the drawing
    QString drawingName_;           ///< what its collection is called
    std::vector<QAction*> ofGroup_; ///< what can be done with a group that is chosen
    std::vector<QAction*> ofSet_;   ///< or with a folder as well
    std::vector<QAction*> ofFolder_;
    QAction* activate_ = nullptr;
    QAction* deactivate_ = nullptr;
    QAction* collect_ = nullptr;
    std::vector<int> changes_; ///< the tokens of news
    QTimer news_;
    std::function<void(const QString&)> whenShown_;
};

} // namespace manager
