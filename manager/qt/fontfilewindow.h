// SPDX-License-Identifier: MIT
// Font files that were opened by themselves: their faces, what they say of themselves, and what can
// be done with them. The library need not have them.
#pragma once

#include "manager/qt/deeds.h"
#include "manager/qt/facepane.h"
#include "manager/qt/facesource.h"
#include "manager/qt/fontfilestanding.h"
#include "manager/qt/libraryreader.h"
#include "manager/view/window.h"

#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QWidget>

class QProcess;
class QVBoxLayout;

namespace manager {

class ProgressLine;

/// [main-thread] Hides when it is closed, and deletes itself once what it began has ended.
class FontFileWindow : public QWidget, private FaceSource {
public:
    /// Shows a file of the library in the library's window, by what is to be searched for there.
    using ShowInLibrary = std::function<void(const std::string& search)>;

    /// `files` are absolute paths.
    FontFileWindow(const WindowOptions& options, std::vector<std::string> files,
                   ShowInLibrary showInLibrary);
    FontFileWindow(const FontFileWindow&) = delete;
    FontFileWindow& operator=(const FontFileWindow&) = delete;
    ~FontFileWindow() override;

    [[nodiscard]] const std::vector<std::string>& files() const { return files_; }
    /// Whether it is about to be deleted, and not to be shown again.
    [[nodiscard]] bool isLeaving() const { return isLeaving_; }
    /// Whether the files, and what the library knows of them, have been read.
    [[nodiscard]] bool isRead() const { return isRead_; }
    /// Calls `then` once they have been, or with why the library cannot be read.
    void whenRead(std::function<void(const QString& problem)> then) { whenRead_ = std::move(then); }
    /// Waits until every line that is to be seen is drawn; false when all were.
    bool finishLines() { return faces_.finish(); }

    [[nodiscard]] QListWidget& list() { return *list_; }
    [[nodiscard]] FacePane& pane() { return *pane_; }
    [[nodiscard]] QPushButton& addButton() { return *add_; }
    /// Activates for the session, or deactivates.
    [[nodiscard]] QPushButton& switchButton() { return *switch_; }
    [[nodiscard]] QPushButton& showButton() { return *show_; }
    [[nodiscard]] ProgressLine& progress() { return *progress_; }
    /// What the window says of the chosen file's place, and of what has gone wrong.
    [[nodiscard]] QString standing() const { return standing_->text(); }
    [[nodiscard]] QString problems() const { return problems_->text(); }

protected:
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    /// A face of one of the files.
    struct Entry {
        std::size_t file;
        faces::Face face;
    };

    void readFace(FaceId id, FaceTaker take) override;
    void readCharacters(FaceId id, CharacterTaker take) override;
    [[nodiscard]] const Entry* entry(FaceId id) const;

    void makeContent();
    QLayout* makeButtons();
    void startReading();
    void take(const std::vector<FontFileOutcome>& outcomes);
    void readStandings();
    void leaveWhenIdle();
    void showChosen();
    void showStanding();
    [[nodiscard]] const Entry* chosen() const;
    void addChosen();
    void switchChosen();
    void tell(const QStringList& problems);

    std::vector<std::string> files_;
    std::string program_;
    ShowInLibrary showInLibrary_;
    preview::Faces faces_;
    std::vector<Entry> entries_;
    std::vector<FileStanding> standings_;           ///< of each file
    std::vector<faces::FontFileContents> contents_; ///< of each file; empty: it is no font
    QStringList bad_;                               ///< what is wrong with the files
    bool isRead_ = false;
    bool isLeaving_ = false;
    std::function<void(const QString&)> whenRead_;
    QWidget* content_ = nullptr;
    QListWidget* list_ = nullptr;
    FacePane* pane_ = nullptr;
    QLabel* problems_ = nullptr;
    ProgressLine* progress_ = nullptr;
    QLabel* standing_ = nullptr;
    QPushButton* add_ = nullptr;
    QPushButton* switch_ = nullptr;
    QPushButton* show_ = nullptr;
    QProcess* reading_ = nullptr;
    LibraryReader reader_; ///< it calls the window
    Deeds deeds_;
};

} // namespace manager
