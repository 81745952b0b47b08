// SPDX-License-Identifier: MIT
// The toolkit: started once, its loop serving dialogs, timers and the desktop together.
#include "host/qt/windows.h"

#include "host/core/timers.h"
#include "host/qt/dialogwindow.h"
#include "host/qt/translators.h"
#include "platform/application.h"
#include "system/displays.h"

#include <QApplication>
#include <QFontMetrics>
#include <QMessageBox>
#include <QPixmap>
#include <QSocketNotifier>
#include <QTimer>
#include <QWindow>

#include <algorithm>
#include <array>
#include <clocale>
#include <cstdio>
#include <exception>
#include <map>
#include <utility>
#include <vector>

namespace host {

namespace {

class FontMetrics : public TextMetrics {
public:
    std::int32_t width(std::string_view utf8) const override {
        return QFontMetrics(QApplication::font())
            .horizontalAdvance(QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size())));
    }
    std::int32_t lineHeight() const override {
        return QFontMetrics(QApplication::font()).lineSpacing();
    }
};

/// What the toolkit says to programmers is of no use to users.
void handleMessage(QtMsgType type, const QMessageLogContext& /*context*/, const QString& text) {
    if (type == QtCriticalMsg || type == QtFatalMsg) {
        static_cast<void>(std::fprintf(stderr, "error: %s\n", qUtf8Printable(text)));
    }
}

/// Not before so many ticks have passed; about ten hours at most.
int milliseconds(std::uint32_t ticks) {
    constexpr std::uint32_t most = 0x7FFFFFFF / 1000;
    return static_cast<int>((std::min(ticks, most) * 1000 + ticksPerSecond - 1) / ticksPerSecond);
}

class QtWindows : public Windows {
public:
    QtWindows(std::unique_ptr<QApplication> application, Dialogs& dialogs, FontSource fonts,
              DesktopEvents events)
        : application_(std::move(application)), dialogs_(dialogs), fonts_(std::move(fonts)),
          events_(std::move(events)) {
        timer_.setSingleShot(true);
        QObject::connect(&timer_, &QTimer::timeout, [this] {
            serveUser();
            serve([this] {
                dialogs_.runTimers();
                dialogs_.core().runTimers();
            });
        });
        synchronization_.setSingleShot(true);
        QObject::connect(&synchronization_, &QTimer::timeout, [this] { synchronize(); });
        current_ = this;
        PLBeforeDelay([] { current_->paint(); });
        userTimer_.setSingleShot(true);
        QObject::connect(&userTimer_, &QTimer::timeout, [this] { askUser(); });
    }

    ~QtWindows() override { PLBeforeDelay(nullptr); }

    void runModal(Dialog& dialog) override;
    void endModal(Dialog& dialog) override;
    void dialogChanged(Dialog& dialog) override { noteChange(dialog); }
    void itemChanged(Item& item) override { noteChange(item.dialog); }
    void forget(Dialog& dialog) override { windows_.erase(&dialog); }
    const TextMetrics& metrics() const override { return metrics_; }
    void showAlert(const Alert& alert) override;
    void savePictures(std::filesystem::path folder) override { pictures_ = std::move(folder); }
    void setUser(DialogUser* user) override { user_ = user; }

private:
    /// Throws LayoutError as DialogWindow::make().
    DialogWindow& window(Dialog& dialog);
    void noteChange(Dialog& dialog);
    void serve(const std::function<void()>& work);
    void serveUser();
    void synchronize();
    void paint();
    void watchDesktop();
    void setTimer();
    void askUser();
    void askUserAgain(std::uint32_t ticks);
    void savePicture(QWidget& window, const char* moment);

    static inline QtWindows* current_ = nullptr;

    struct OpenAlert {
        QMessageBox* box;
        std::size_t depth; ///< how many dialogs ran around it
    };

    std::unique_ptr<QApplication> application_;
    Translators translators_;
    Dialogs& dialogs_;
    FontSource fonts_;
    preview::Faces faces_;
    DesktopEvents events_;
    FontMetrics metrics_;
    std::map<Dialog*, std::unique_ptr<DialogWindow>> windows_;
    std::vector<OpenAlert> alerts_;
    QTimer timer_;
    DialogUser* user_ = nullptr;
    QTimer userTimer_;
    std::unique_ptr<QSocketNotifier> notifier_;
    QTimer synchronization_;
    std::filesystem::path pictures_; ///< empty: none
    unsigned pictureCount_ = 0;
};

DialogWindow& QtWindows::window(Dialog& dialog) {
    auto found = windows_.find(&dialog);
    if (found == windows_.end()) {
        found = windows_
                    .emplace(&dialog, DialogWindow::make(dialogs_, dialog, {faces_, fonts_},
                                                         [this](const std::function<void()>& work) {
                                                             serve(work);
                                                         }))
                    .first;
    }
    return *found->second;
}

void QtWindows::runModal(Dialog& dialog) {
    DialogWindow* shown = nullptr;
    try {
        shown = &window(dialog);
    } catch (const LayoutError& problem) {
        dialogs_.core().frontend().reportError(problem.what());
        dialogs_.endModal(dialog, kADMCancelItemID, true);
        return;
    }
    QWidget* const around = QApplication::activeModalWidget();
    synchronize(); // the windows around it are drawn meanwhile, too
    if (around != nullptr) {
        shown->winId(); // makes the window's handle
        shown->windowHandle()->setTransientParent(around->windowHandle());
    }
    if (user_ != nullptr) {
        user_->begun(dialog);
        askUserAgain(0);
    }
    shown->run([&] { savePicture(*shown, "shown"); });
    if (user_ != nullptr) {
        user_->ended(dialog);
    }
    if (shown->isVisible()) {
        savePicture(*shown, "closing");
        shown->hide();
    }
}

void QtWindows::endModal(Dialog& dialog) {
    const auto& running = dialogs_.running();
    const auto depth = static_cast<std::size_t>(std::find(running.begin(), running.end(), &dialog) -
                                                running.begin());
    for (const OpenAlert& alert : alerts_) {
        if (alert.depth > depth) {
            alert.box->done(0);
        }
    }
    if (const auto found = windows_.find(&dialog); found != windows_.end()) {
        found->second->end();
    }
}

void QtWindows::showAlert(const Alert& alert) {
    QMessageBox box;
    box.setTextFormat(Qt::PlainText);
    box.setIcon(alert.kind == AlertKind::Error ? QMessageBox::Critical : QMessageBox::Information);
    box.setWindowTitle(QString::fromStdString(alert.title.empty() ? alert.plugin : alert.title));
    box.setText(QString::fromStdString(alert.text));
    alerts_.push_back({&box, dialogs_.running().size()});
    synchronize();
    QTimer shown;
    shown.setSingleShot(true);
    QObject::connect(&shown, &QTimer::timeout, &box, [&] { savePicture(box, "shown"); });
    shown.start();
    box.exec();
    alerts_.pop_back();
}

void QtWindows::noteChange(Dialog& dialog) {
    const auto found = windows_.find(&dialog);
    if (found == windows_.end()) {
        return;
    }
    found->second->noteChange();
    synchronization_.start();
}

/// Whatever may call a plug-in from the loop goes through here: nothing is thrown through the
/// toolkit, and nothing is drawn before the windows have what the plug-in has changed.
void QtWindows::serve(const std::function<void()>& work) {
    try {
        work();
    } catch (const std::exception& problem) {
        dialogs_.core().frontend().reportError(problem.what());
    } catch (...) {
        dialogs_.core().frontend().reportError("an event could not be served");
    }
    synchronize();
    askUserAgain(0);
}

/// What has been done to rows comes before what may take them away.
void QtWindows::serveUser() {
    if (!dialogs_.running().empty()) {
        if (const auto found = windows_.find(dialogs_.running().back()); found != windows_.end()) {
            found->second->act();
        }
    }
}

void QtWindows::askUser() {
    const auto& running = dialogs_.running();
    if (user_ == nullptr || running.empty() || running.back()->ending) {
        return;
    }
    const std::uint32_t ticks = user_->act(*running.back());
    synchronize();
    askUserAgain(ticks);
}

void QtWindows::askUserAgain(std::uint32_t ticks) {
    if (user_ != nullptr && ticks != DialogUser::forEver) {
        userTimer_.start(milliseconds(ticks));
    }
}

void QtWindows::synchronize() {
    synchronization_.stop();
    for (const auto& [dialog, window] : windows_) {
        if (dialog->running) {
            window->synchronize();
        }
    }
    watchDesktop();
    setTimer();
}

/// A plug-in is about to let everything stand still for a while.
void QtWindows::paint() {
    synchronize();
    for (const auto& [dialog, window] : windows_) {
        window->paint();
    }
}

void QtWindows::watchDesktop() {
    const int descriptor = events_.descriptor ? events_.descriptor() : -1;
    if (notifier_ != nullptr && notifier_->socket() == descriptor) {
        return;
    }
    // It may be the one that is being served.
    if (notifier_ != nullptr) {
        notifier_->setEnabled(false);
        notifier_.release()->deleteLater();
    }
    if (descriptor >= 0) {
        notifier_ = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
        QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] {
            serveUser();
            serve([this] { events_.dispatch(); });
        });
    }
}

void QtWindows::setTimer() {
    const auto ofDialogs = dialogs_.ticksToNextTimer();
    const auto ofPlugins = dialogs_.core().timers().ticksToNext();
    if (!ofDialogs && !ofPlugins) {
        timer_.stop();
        return;
    }
    timer_.start(milliseconds(std::min(ofDialogs.value_or(DialogUser::forEver),
                                       ofPlugins.value_or(DialogUser::forEver))));
}

void QtWindows::savePicture(QWidget& window, const char* moment) {
    if (pictures_.empty()) {
        return;
    }
    std::string number = std::to_string(++pictureCount_);
    number.insert(0, number.size() < 2 ? 1 : 0, '0');
    const std::filesystem::path file = pictures_ / (number + "-" + moment + ".png");
    QPixmap picture = window.grab();
    while (faces_.finish()) {
        picture = window.grab();
    }
    if (!picture.save(QString::fromStdString(file.string()), "PNG")) {
        dialogs_.core().frontend().reportError(file.string() + ": cannot be written");
    }
}

} // namespace

} // namespace host

extern "C" host::Windows* glyphoraMakeWindows(host::Dialogs& dialogs, host::FontSource fonts,
                                              host::DesktopEvents events,
                                              const std::string& platforms) {
    qInstallMessageHandler(host::handleMessage);
    // Not by the environment, which applications that are launched inherit, and other threads read.
    static std::string tried;
    tried = platforms;
    static char name[] = "glyphora-host";
    static char option[] = "-platform";
    static std::array<char*, 4> arguments;
    arguments = {name, option, tried.data(), nullptr}; // the toolkit takes out what it reads
    static int argumentCount = 0;
    argumentCount = 3;
    auto application = std::make_unique<QApplication>(argumentCount, arguments.data());
    std::setlocale(LC_NUMERIC, "C"); // it has taken the user's
    std::setlocale(LC_MESSAGES, "C");
    QApplication::setQuitOnLastWindowClosed(false);
    if (platforms != sys::offscreenPlatform &&
        QApplication::platformName() == QLatin1String(sys::offscreenPlatform)) {
        return nullptr;
    }
    return new host::QtWindows(std::move(application), dialogs, std::move(fonts),
                               std::move(events));
}
