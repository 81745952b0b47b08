// SPDX-License-Identifier: MIT
// The windows of the one process that has any: the library's, made when it is wanted first, and one
// for each opening of font files.
#pragma once

#include "manager/qt/fontfilewindow.h"
#include "manager/qt/librarywindow.h"
#include "manager/qt/tray.h"

#include <QPointer>

#include <memory>
#include <vector>

namespace manager {

/// [main-thread]
class Windows {
public:
    explicit Windows(WindowOptions options) : options_(std::move(options)) {}
    Windows(const Windows&) = delete;
    Windows& operator=(const Windows&) = delete;
    ~Windows();

    /// Has the window of what is asked for come to the front. Files that a window shows already
    /// are shown by it.
    void open(const WindowRequest& request);

    /// nullptr: nobody has asked for it.
    [[nodiscard]] LibraryWindow* library() { return library_.get(); }
    /// Those that are open, the newest last.
    [[nodiscard]] std::vector<FontFileWindow*> fontFiles() const;

private:
    FontFileWindow& windowOf(const std::vector<std::string>& files);

    WindowOptions options_;
    std::unique_ptr<LibraryWindow> library_;
    std::unique_ptr<Tray> tray_;                      ///< of that; null: the desktop has none
    std::vector<QPointer<FontFileWindow>> fontFiles_; ///< null: it was closed
};

} // namespace manager
