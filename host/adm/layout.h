// SPDX-License-Identifier: MIT
// Layouts of dialogs: Qt Designer's .ui files, of which this reads what there is and, roughly,
// where.
#pragma once

#include "adm/types.h"

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace host {

/// A layout cannot be used. what() is one line that names the file.
class LayoutError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

enum class ItemKind : std::uint8_t { PushButton, StaticText, List, HierarchyList };

struct LayoutItem {
    std::int32_t id = 0;
    ItemKind kind = ItemKind::StaticText;
    ADMRect bounds{}; ///< within the dialog
    std::string text;
};

struct Layout {
    std::filesystem::path file; ///< for those who show the dialog as the file says
    std::string title;          ///< this and the items' texts in the user's language
    ADMRect bounds{};
    std::vector<LayoutItem> items; ///< in the file's order; no two have the same number
};

/// Reads the widgets that have a number (the dynamic property "itemID", at least 1). Their places
/// are what boxes of rows and columns give by fixed sizes: a window that is shown has better ones.
/// Throws LayoutError when the file cannot be read, is no layout, repeats a number, or gives one to
/// a widget that is no item.
[[nodiscard]] Layout readLayout(const std::filesystem::path& file);

} // namespace host
