// SPDX-License-Identifier: MIT
#include "manager/qt/windows.h"

#include <algorithm>

namespace manager {

Windows::~Windows() {
    for (FontFileWindow* const window : fontFiles()) {
        delete window;
    }
}

std::vector<FontFileWindow*> Windows::fontFiles() const {
    std::vector<FontFileWindow*> open;
    for (const auto& window : fontFiles_) {
        if (window) {
            open.push_back(window);
        }
    }
    return open;
}

FontFileWindow& Windows::windowOf(const std::vector<std::string>& files) {
    std::erase_if(fontFiles_, [](const auto& window) { return window.isNull(); });
    const auto known = std::find_if(fontFiles_.begin(), fontFiles_.end(), [&](const auto& window) {
        return !window->isLeaving() && window->files() == files;
    });
    if (known != fontFiles_.end()) {
        return **known;
    }
    auto* const window = new FontFileWindow(
        options_, files, [this](const std::string& search) { open({.search = search}); });
    fontFiles_.emplace_back(window);
    return *window;
}

void Windows::open(const WindowRequest& request) {
    if (!request.files.empty()) {
        FontFileWindow& window = windowOf(request.files);
        window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
        window.show();
        window.raise();
        window.activateWindow();
        if (request.search.empty() && request.command.empty() && request.drawings.empty()) {
            return;
        }
    }
    if (library_ == nullptr) {
        WindowOptions options = options_;
        options.request = request;
        library_ = std::make_unique<LibraryWindow>(options);
        library_->show();
        if (options_.pictures.empty()) {
            library_->needServer(options_.program);
        }
    } else {
        library_->open(request);
    }
    if (tray_ == nullptr && QSystemTrayIcon::isSystemTrayAvailable()) {
        tray_ = std::make_unique<Tray>(*library_);
    }
}

} // namespace manager
