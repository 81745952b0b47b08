// SPDX-License-Identifier: MIT
// What the window keeps from one run to the next. A value that means nothing, as of another
// version, is passed over.
#include "manager/cli/report.h"
#include "manager/qt/librarywindow.h"
#include "manager/qt/text.h"
#include "manager/view/texts.h"

#include <QComboBox>
#include <QSettings>
#include <QSplitter>
#include <QToolButton>

#include <algorithm>
#include <array>

namespace manager {

namespace {

constexpr std::array places{"all", "drawing", "state", "copies", "group", "folder"}; ///< by kind
constexpr std::size_t mostExpanded = 1000;

QString key(const char* name) {
    return QLatin1String(name);
}

/// The file is replaced at one stroke.
class Settings : public QSettings {
public:
    Settings() : QSettings(NativeFormat, UserScope, key("glyphora"), key("library")) {}
    [[nodiscard]] QString read(const char* name) const { return value(key(name)).toString(); }
    [[nodiscard]] bool isSet(const char* name) const { return value(key(name)).toBool(); }
};

SidebarPlace readPlace(const Settings& settings) {
    const std::string kind = settings.read("place/kind").toStdString();
    const auto known = std::find(places.begin(), places.end(), kind);
    const int state = settings.value(key("place/state")).toInt();
    SidebarPlace place;
    if (known != places.end()) {
        place.kind = static_cast<SidebarPlace::Kind>(known - places.begin());
    }
    if (place.kind == SidebarPlace::Kind::State && state >= 0 &&
        state < static_cast<int>(faceStates)) {
        place.state = static_cast<FaceState>(state);
    }
    place.name = settings.read("place/name").toStdString();
    return place;
}

} // namespace

void LibraryWindow::recall() {
    const Settings settings;
    if (settings.status() != QSettings::NoError) {
        problems_->show(QStringLiteral("settings"),
                        {text(translated("%1 cannot be read: the window begins as new"))
                             .arg(settings.fileName())});
        return;
    }
    restoreGeometry(settings.value(key("geometry")).toByteArray());
    splitter_->restoreState(settings.value(key("columns")).toByteArray());
    sidebar_->choose(readPlace(settings));
    search_->setText(settings.read("search"));
    FilterValues filters;
    for (const FilterKind kind : allFilterKinds) {
        const QString name = key("filters/") + key(keyOf(kind));
        const std::string value = settings.value(name).toString().toStdString();
        if (isFilterValue(kind, value)) {
            filters[kind] = value;
        }
    }
    filters_->setAll(filters);
    filters_->button().setChecked(settings.isSet("showFilters"));
    pane_->sampleField().setText(settings.read("text"));
    pane_->paperBox().setCurrentIndex(
        std::clamp(settings.value(key("paper")).toInt(), 0, pane_->paperBox().count() - 1));
    pane_->views().setCurrentIndex(settings.value(key("view")).toInt());
    pane_->lookButton().setChecked(settings.isSet("showLook"));
    const QStringList expanded = settings.value(key("expanded")).toStringList();
    for (const QString& family : expanded) {
        expanded_.insert(family.toStdString());
    }
    recalled_.current.family = settings.read("current").toStdString();
    recalled_.isCurrentSeen = true;
}

void LibraryWindow::remember() const {
    Settings settings;
    settings.setValue(key("geometry"), saveGeometry());
    settings.setValue(key("columns"), splitter_->saveState());
    SidebarPlace place = sidebar_->place();
    if (place.kind == SidebarPlace::Kind::Drawing) {
        place = {}; // it asks again when it is opened again
    }
    settings.setValue(key("place/kind"), key(places.at(static_cast<std::size_t>(place.kind))));
    settings.setValue(key("place/state"), static_cast<int>(place.state));
    settings.setValue(key("place/name"), text(place.name));
    settings.setValue(key("search"), search_->text());
    settings.remove(key("filters"));
    for (const auto& [kind, value] : filters_->values()) {
        settings.setValue(key("filters/") + key(keyOf(kind)), text(value));
    }
    settings.setValue(key("showFilters"), filters_->button().isChecked());
    settings.setValue(key("text"), pane_->sampleField().text());
    settings.setValue(key("paper"), pane_->paperBox().currentIndex());
    settings.setValue(key("view"), pane_->views().currentIndex());
    settings.setValue(key("showLook"), pane_->lookButton().isChecked());
    QStringList expanded;
    for (const std::string& family : expanded_) {
        if (expanded.size() == mostExpanded) {
            break;
        }
        expanded.push_back(text(family));
    }
    settings.setValue(key("expanded"), expanded);
    settings.setValue(key("current"), text(positionOf(*list_, model_).current.family));
    settings.sync();
    if (settings.status() == QSettings::AccessError) {
        warn(settings.fileName().toStdString() + ": cannot be written");
    }
}

} // namespace manager
