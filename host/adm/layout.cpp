// SPDX-License-Identifier: MIT
// Reading the widgets of a .ui file, and placing them by boxes of rows and columns.
#include "host/adm/layout.h"

#include "host/core/translation.h"
#include "host/documents/xmlhandles.h"

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string_view>
#include <utility>

namespace host {

namespace {

struct WidgetClass {
    std::string_view name;
    ItemKind kind;
    std::int32_t width;
    std::int32_t height;
    bool grows;
};
constexpr std::array widgetClasses{
    WidgetClass{"QPushButton", ItemKind::PushButton, 100, 28, false},
    WidgetClass{"QLabel", ItemKind::StaticText, 80, 20, false},
    WidgetClass{"QListView", ItemKind::List, 200, 120, true},
    WidgetClass{"QTreeView", ItemKind::HierarchyList, 200, 120, true},
};
constexpr std::int32_t margin = 9;
constexpr std::int32_t spacing = 6;
constexpr std::size_t deepest = 64;

/// A widget, a space, or widgets beside or below each other.
struct Box {
    enum class Kind : std::uint8_t { Item, Space, Rows, Columns };
    Kind kind = Kind::Space;
    std::size_t item = 0; ///< index of the item
    std::int32_t width = 0;
    std::int32_t height = 0;
    bool grows = true;
    std::vector<Box> children;
    std::vector<std::int32_t> stretch; ///< of the children, as far as given
};

std::string_view textOf(const xmlChar* text) {
    return text != nullptr ? reinterpret_cast<const char*>(text) : "";
}

bool isElement(const xmlNode* node, std::string_view name) {
    return node->type == XML_ELEMENT_NODE && textOf(node->name) == name;
}

std::string attribute(const xmlNode* node, const char* name) {
    const xml::Text value(xmlGetProp(node, reinterpret_cast<const xmlChar*>(name)));
    return std::string(textOf(value.get()));
}

/// White space included; empty for nullptr.
std::string content(const xmlNode* node) {
    const xml::Text value(xmlNodeGetContent(node));
    return std::string(textOf(value.get()));
}

std::optional<std::int32_t> readNumber(std::string_view text) {
    std::int32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number)
                                                                    : std::nullopt;
}

/// The first element `name` below `node`.
const xmlNode* find(const xmlNode* node, std::string_view name, std::size_t depth = 0) {
    for (const xmlNode* child = node->children; child != nullptr && depth < deepest;
         child = child->next) {
        const xmlNode* const found = isElement(child, name) ? child : find(child, name, depth + 1);
        if (found != nullptr) {
            return found;
        }
    }
    return nullptr;
}

const xmlNode* property(const xmlNode* widget, std::string_view name) {
    for (const xmlNode* child = widget->children; child != nullptr; child = child->next) {
        if (isElement(child, "property") && attribute(child, "name") == name) {
            return child;
        }
    }
    return nullptr;
}

std::string textProperty(const xmlNode* widget, std::string_view name) {
    const xmlNode* const node = property(widget, name);
    const xmlNode* const text = node != nullptr ? find(node, "string") : nullptr;
    const std::string result = content(text);
    const bool stays = text != nullptr && attribute(text, "notr") == "true";
    return stays ? result : translated(result.c_str());
}

class Reader {
public:
    explicit Reader(std::filesystem::path file) { layout_.file = std::move(file); }

    Layout read();

private:
    [[noreturn]] void fail(long line, const std::string& reason) const {
        throw LayoutError(layout_.file.string() + ":" + std::to_string(line) + ": " + reason);
    }
    [[noreturn]] void fail(const xmlNode* node, const std::string& reason) const {
        fail(xmlGetLineNo(node), reason);
    }
    Box readWidget(const xmlNode* widget, std::size_t depth);
    Box readLayout(const xmlNode* layout, std::size_t depth);
    Box readItem(const xmlNode* widget, std::int32_t id);
    void place(const Box& box, const ADMRect& area);

    Layout layout_;
};

Layout Reader::read() {
    xmlResetLastError();
    const xml::Document document(xmlReadFile(
        layout_.file.c_str(), nullptr, XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
    if (document == nullptr) {
        const xmlError* const error = xmlGetLastError();
        std::string reason = error != nullptr ? error->message : "cannot be read";
        reason.erase(reason.find_last_not_of('\n') + 1);
        fail(error != nullptr ? error->line : 0, reason);
    }
    const xmlNode* const root = xmlDocGetRootElement(document.get());
    const xmlNode* widget = isElement(root, "ui") ? root->children : nullptr;
    while (widget != nullptr && !isElement(widget, "widget")) {
        widget = widget->next;
    }
    if (widget == nullptr) {
        fail(root, "this is no layout of a dialog");
    }
    layout_.title = textProperty(widget, "windowTitle");
    const xmlNode* const geometry = property(widget, "geometry");
    const auto extent = [&](std::string_view name) {
        const auto number =
            geometry != nullptr ? readNumber(content(find(geometry, name))) : std::nullopt;
        if (!number || *number < 1 || *number > 0x7FFF) {
            fail(widget, "the dialog has no " + std::string(name));
        }
        return *number;
    };
    layout_.bounds = {0, 0, extent("width"), extent("height")};
    place(readWidget(widget, 0),
          {margin, margin, layout_.bounds.right - margin, layout_.bounds.bottom - margin});
    return std::move(layout_);
}

/// A widget with a number is an item; any other counts by the layout in it.
Box Reader::readWidget(const xmlNode* widget, std::size_t depth) {
    if (const xmlNode* const number = property(widget, "itemID")) {
        const auto id = readNumber(content(find(number, "number")));
        if (!id || *id < 1) {
            fail(number, "the number of an item is at least 1");
        }
        return readItem(widget, *id);
    }
    for (const xmlNode* child = widget->children; child != nullptr; child = child->next) {
        if (isElement(child, "layout")) {
            return readLayout(child, depth + 1);
        }
    }
    return {};
}

Box Reader::readItem(const xmlNode* widget, std::int32_t id) {
    const std::string name = attribute(widget, "class");
    const auto* const found =
        std::find_if(widgetClasses.begin(), widgetClasses.end(),
                     [&](const WidgetClass& each) { return each.name == name; });
    if (found == widgetClasses.end()) {
        fail(widget, "a " + name + " is no item");
    }
    if (std::any_of(layout_.items.begin(), layout_.items.end(),
                    [id](const LayoutItem& item) { return item.id == id; })) {
        fail(widget, "there is another item " + std::to_string(id));
    }
    layout_.items.push_back({id, found->kind, {}, textProperty(widget, "text")});
    Box box;
    box.kind = Box::Kind::Item;
    box.item = layout_.items.size() - 1;
    box.width = found->width;
    box.height = found->height;
    box.grows = found->grows;
    return box;
}

Box Reader::readLayout(const xmlNode* layout, std::size_t depth) {
    if (depth > deepest) {
        fail(layout, "layouts are nested too deeply");
    }
    Box box;
    box.kind = attribute(layout, "class") == "QHBoxLayout" ? Box::Kind::Columns : Box::Kind::Rows;
    box.grows = false;
    const std::string stretch = attribute(layout, "stretch");
    for (std::size_t at = 0; at < stretch.size();) {
        const std::size_t comma = std::min(stretch.find(',', at), stretch.size());
        box.stretch.push_back(
            std::max(0, readNumber(std::string_view(stretch).substr(at, comma - at)).value_or(0)));
        at = comma + 1;
    }
    for (const xmlNode* item = layout->children; item != nullptr; item = item->next) {
        if (!isElement(item, "item")) {
            continue;
        }
        for (const xmlNode* child = item->children; child != nullptr; child = child->next) {
            if (isElement(child, "widget")) {
                box.children.push_back(readWidget(child, depth));
            } else if (isElement(child, "layout")) {
                box.children.push_back(readLayout(child, depth + 1));
            } else if (isElement(child, "spacer")) {
                box.children.emplace_back();
            }
        }
    }
    const bool across = box.kind == Box::Kind::Columns;
    for (const Box& child : box.children) {
        box.grows = box.grows || (child.grows && child.kind != Box::Kind::Space);
        std::int32_t& along = across ? box.width : box.height;
        std::int32_t& beside = across ? box.height : box.width;
        along += (across ? child.width : child.height) + spacing;
        beside = std::max(beside, across ? child.height : child.width);
    }
    (across ? box.width : box.height) -= box.children.empty() ? 0 : spacing;
    return box;
}

/// What room is left goes to the children by their stretch, else to those that grow, else to all.
void Reader::place(const Box& box, const ADMRect& area) {
    if (box.kind == Box::Kind::Item) {
        layout_.items[box.item].bounds = area;
        return;
    }
    const bool across = box.kind == Box::Kind::Columns;
    std::vector<std::int32_t> shares = box.stretch;
    shares.resize(box.children.size());
    const auto none = [&] {
        return std::all_of(shares.begin(), shares.end(), [](auto share) { return share == 0; });
    };
    if (none()) {
        std::transform(box.children.begin(), box.children.end(), shares.begin(),
                       [](const Box& child) { return child.grows ? 1 : 0; });
    }
    if (none()) {
        std::fill(shares.begin(), shares.end(), 1);
    }
    std::int64_t left =
        across ? area.right - area.left - box.width : area.bottom - area.top - box.height;
    std::int64_t parts = 0;
    for (const std::int32_t share : shares) {
        parts += share;
    }
    std::int32_t at = across ? area.left : area.top;
    for (std::size_t i = 0; i < box.children.size(); ++i) {
        const Box& child = box.children[i];
        const std::int64_t more =
            parts > 0 ? std::max<std::int64_t>(left, 0) * shares[i] / parts : 0;
        left -= more;
        parts -= shares[i];
        const auto end =
            static_cast<std::int32_t>(at + (across ? child.width : child.height) + more);
        place(child, across ? ADMRect{at, area.top, end, area.bottom}
                            : ADMRect{area.left, at, area.right, end});
        at = end + spacing;
    }
}

} // namespace

Layout readLayout(const std::filesystem::path& file) {
    return Reader(file).read();
}

} // namespace host
