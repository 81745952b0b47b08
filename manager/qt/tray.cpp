// SPDX-License-Identifier: MIT
#include "manager/qt/tray.h"

#include "manager/qt/groupfaces.h"
#include "manager/qt/librarywindow.h"
#include "manager/qt/text.h"
#include "manager/view/texts.h"

#include <QApplication>
#include <QSettings>
#include <QStyle>

#include <algorithm>
#include <map>
#include <set>

namespace manager {

namespace {

/// Of the window's own file, whatever the program that shows it is called.
class KeptSetting {
public:
    [[nodiscard]] bool isOn() const { return settings_.value(name_).toBool(); }
    void set(bool on) { settings_.setValue(name_, on); }

private:
    QString name_ = QStringLiteral("keepInTray");
    QSettings settings_{QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("glyphora"),
                        QStringLiteral("library")};
};

/// Whether each container has an active one among these faces.
bool isAnyOfEachActive(const LibraryView& view, const std::vector<FaceRow>& faces) {
    std::map<ContainerId, bool> isActive;
    for (const FaceRow row : faces) {
        bool& any = isActive[view.table.faces()[row].container];
        any = any || view.states.isActive(row);
    }
    return !isActive.empty() && std::all_of(isActive.begin(), isActive.end(),
                                            [](const auto& known) { return known.second; });
}

} // namespace

void TrayMenu::addActive(const std::string& name, const QString& container) {
    QAction* const action = addAction(text(name).replace('&', QStringLiteral("&&")));
    action->setCheckable(true);
    action->setChecked(true);
    connect(action, &QAction::triggered, this,
            [this, container] { handlers_.deactivate({container}); });
}

void TrayMenu::addSets(const LibraryView& view, const Groups& groups) {
    const auto faces = facesOf(view.table, groups);
    for (std::size_t i = 0; i < groups.size(); ++i) {
        const Group& group = groups[i];
        if (isAnyOfEachActive(view, faces[i])) {
            const std::string kind = group.kind == GroupKind::Tag ? translated("Tag \"%1\"")
                                                                  : translated("Collection \"%1\"");
            addActive(text(kind).arg(text(group.name)).toStdString(),
                      text(GroupTitle{group.kind, group.name}.text()));
        }
    }
}

void TrayMenu::addFolders(const LibraryView& view, const std::vector<std::string>& folders) {
    const std::span<const std::string> places = view.table.folders();
    std::vector<bool> isActive(places.size(), true);
    for (const ListedFace& face : view.table.faces()) {
        isActive[face.folder] = isActive[face.folder] && !view.states.why(face.container).empty();
    }
    for (const std::string& folder : folders) {
        bool isAny = false;
        bool isAll = true;
        for (std::size_t i = 0; i < places.size(); ++i) {
            if (liesUnder(places[i], folder)) {
                isAny = true;
                isAll = isAll && isActive[i];
            }
        }
        if (isAny && isAll) {
            addActive(text(translated("Folder \"%1\"")).arg(text(nameOf(folder))).toStdString(),
                      text("folder:" + folder));
        }
    }
}

void TrayMenu::addContainers(const LibraryView& view) {
    constexpr std::size_t most = 15;
    std::set<ContainerId> met;
    for (const ListedFace& face : view.table.faces()) {
        const auto reasons = view.states.why(face.container);
        if (!reasons.empty() && met.insert(face.container).second && met.size() <= most) {
            addActive(view.table.families()[face.family].name + " – " + whyOf(reasons),
                      QString::number(static_cast<std::int32_t>(face.container)));
        }
    }
    if (met.empty()) {
        addAction(text(translated("No font is active")))->setEnabled(false);
    } else if (met.size() > most) {
        addAction(text(translated("%1 more", "%1 more", met.size() - most)), this,
                  [this] { handlers_.open(); });
    }
}

void TrayMenu::fill(const LibraryView& view, const Groups& groups,
                    const std::vector<std::string>& folders, bool isKept) {
    clear();
    addSets(view, groups);
    addFolders(view, folders);
    addSeparator();
    addContainers(view);
    addSeparator();
    addAction(text(translated("&Open the Font Library")), this, [this] { handlers_.open(); });
    QAction* const keep = addAction(text(translated("&Stay here when the window is closed")));
    keep->setCheckable(true);
    keep->setChecked(isKept);
    connect(keep, &QAction::triggered, this, [this](bool kept) { handlers_.keep(kept); });
    addAction(text(translated("&Quit")), this, [this] { handlers_.quit(); });
}

Tray::Tray(LibraryWindow& window)
    : menu_({[&window](const auto& containers) { window.deeds().change(false, containers); },
             [&window] { window.open({}); },
             [](bool kept) {
                 KeptSetting().set(kept);
                 QApplication::setQuitOnLastWindowClosed(!kept);
             },
             [] { QApplication::quit(); }}) {
    QApplication::setQuitOnLastWindowClosed(!KeptSetting().isOn());
    const auto fill = [this, &window] {
        menu_.fill(window.model().listing().view(), window.groups(), window.folders(),
                   KeptSetting().isOn());
    };
    fill();
    QObject::connect(&menu_, &QMenu::aboutToShow, &menu_, fill);
    QObject::connect(&icon_, &QSystemTrayIcon::activated, &menu_,
                     [&window](QSystemTrayIcon::ActivationReason reason) {
                         if (reason == QSystemTrayIcon::Trigger) {
                             window.open({});
                         }
                     });
    const QIcon own = QApplication::windowIcon(); // of the theme, once it is installed
    icon_.setIcon(own.isNull() ? QApplication::style()->standardIcon(QStyle::SP_FileDialogListView)
                               : own);
    icon_.setToolTip(window.windowTitle());
    icon_.setContextMenu(&menu_);
    icon_.show();
}

} // namespace manager
