// SPDX-License-Identifier: MIT
// From a layout to a dialog.
#include "host/adm/dialog.h"

#include <algorithm>
#include <utility>

namespace host {

Item::Item(Dialog& of, const LayoutItem& layout)
    : dialog(of), id(layout.id), kind(layout.kind), bounds(layout.bounds), text(layout.text) {
    if (kind == ItemKind::List || kind == ItemKind::HierarchyList) {
        tree = std::make_unique<Tree>(*this, kind == ItemKind::List ? Tree::Kind::Flat
                                                                    : Tree::Kind::Hierarchy);
    }
}

Dialog::Dialog(PluginNumber owner, std::string dialogName, Layout dialogLayout)
    : plugin(owner), name(std::move(dialogName)), layout(std::move(dialogLayout)),
      title(layout.title), bounds(layout.bounds) {
    items.reserve(layout.items.size());
    for (const LayoutItem& each : layout.items) {
        items.push_back(std::make_unique<Item>(*this, each));
    }
}

Item* Dialog::item(std::int32_t id) noexcept {
    const auto found =
        std::find_if(items.begin(), items.end(), [id](const auto& each) { return each->id == id; });
    return found != items.end() ? found->get() : nullptr;
}

} // namespace host
