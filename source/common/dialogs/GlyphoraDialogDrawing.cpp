// SPDX-License-Identifier: MIT
// How the rows of the missing-fonts dialog look.
#include "GLYLanguageMgr.h"
#include "GlyphoraDialog.h"
#include "misc/text/utf.h"
#include "suitepointers.h"
#include "textwrapping.h"

#include <algorithm>
#include <array>

namespace {

constexpr float wrapWidth = 690.0F;
constexpr std::int32_t fontRowIndent = 3;
/// Between a column and the next one's heading.
constexpr std::int32_t columnGap = 5;
/// From the left edge to the family at least: room for the disclosure triangle.
constexpr std::int32_t triangleRoom = 20;
constexpr std::int32_t triangleHeight = 12;

constexpr std::int32_t installedText = 1;
constexpr std::int32_t unknownText = 2;
constexpr std::int32_t replacedText = 15;
constexpr std::int32_t severalText = 16;

constexpr std::uint32_t unknownColor = 0xcc3333ff;
constexpr std::uint32_t installedColor = 0x339966ff;
constexpr std::uint32_t severalColor = 0xe58f1cff;
constexpr std::uint32_t replacedColor = 0xff00ff;
constexpr std::uint32_t restingColor = 0xff777777;

struct Status {
    std::int32_t text;
    std::uint32_t color;
};

Status statusOf(const GLY::GLYFontInfo& info) {
    const bool isInstalled = info.installed != 0;
    if (info.replaced != 0) {
        return {replacedText, replacedColor};
    }
    if (info.font.count >= 2) {
        return {severalText, severalColor};
    }
    return {isInstalled ? installedText : unknownText,
            isInstalled && info.font.count == 1 ? installedColor : unknownColor};
}

TextMeasure measuredBy(ADMDrawerRef drawer) {
    return [drawer](std::string_view text) {
        std::int32_t width = 0;
        sADMDrawer->GetTextWidth(drawer, text.data(), static_cast<std::int32_t>(text.size()),
                                 &width);
        return width;
    };
}

std::string textOf(ADMListEntryRef entry) {
    std::array<char, 1024> text{};
    sADMListEntry4->GetText(entry, text.data(), text.size());
    return withoutCutCharacter(text.data());
}

/// Where the texts of family, style, technology and status begin, and where they must end, counted
/// from the list's left edge.
struct Columns {
    explicit Columns(const BaseADMDialog& dialog) {
        ADMRect list{};
        ADMHierarchyListRef rows = nullptr;
        sADMItem->GetHierarchyList(dialog.GetItem(fontListItem), &rows);
        sADMHierarchyList->GetBoundsRect(rows, &list);
        const std::array headings{familyHeading, styleHeading, technologyHeading, statusHeading};
        for (std::size_t i = 0; i < headings.size(); ++i) {
            ADMRect heading{};
            sADMItem->GetBoundsRect(dialog.GetItem(headings[i]), &heading);
            left[i] = heading.left - list.left;
        }
        left.front() = std::max(left.front(), triangleRoom);
        std::transform(left.begin() + 1, left.end(), right.begin(),
                       [](std::int32_t next) { return next - columnGap; });
        right.back() = list.right - list.left;
    }

    std::array<std::int32_t, 4> left{};
    std::array<std::int32_t, 4> right{};
};

class RowPainter {
public:
    RowPainter(ADMListEntryRef entry, ADMDrawerRef drawer) : entry_(entry), drawer_(drawer) {
        sADMDrawer->GetBoundsRect(drawer, &row_);
    }

    void drawBackground() const {
        AIBoolean selected = 0;
        sADMListEntry4->IsSelected(entry_, &selected);
        if (selected != 0) {
            sADMDrawer->SetADMColor(drawer_, kADMHighlightColor);
            sADMDrawer->FillRect(drawer_, &row_);
        }
        sADMDrawer->SetADMColor(drawer_, kADMTextColor);
    }

    void drawLines(std::int32_t left) const {
        float height = 0;
        const std::vector<std::string> lines =
            GlyphoraDialog::breakStringAtWidth(entry_, textOf(entry_), wrapWidth, height);
        const auto total = static_cast<std::int32_t>(height);
        ADMPoint point{row_.left + left, centred(total)};
        for (const std::string& line : lines) {
            sADMDrawer->DrawText(drawer_, line.c_str(), &point);
            point.v += total / static_cast<std::int32_t>(lines.size());
        }
    }

    void drawColumns(const GLY::GLYFontInfo& info, const Columns& columns) const {
        const std::array texts{info.font.familyName, info.font.styleName, info.getTechnology()};
        std::int32_t lineHeight = 0;
        sADMDrawer->GetLineHeight(drawer_, &lineHeight);
        const std::int32_t top = centred(lineHeight);
        const auto fitted = [&](const std::string& text, std::size_t column) {
            return shortenText(text,
                               static_cast<float>(columns.right[column] - columns.left[column]),
                               measuredBy(drawer_));
        };
        for (std::size_t i = 0; i < texts.size(); ++i) {
            const std::u16string text = Orvil::UTF8toUTF16(fitted(texts[i], i));
            const ADMPoint point{row_.left + columns.left[i], top};
            sADMDrawer->DrawTextUTF16(drawer_, text.data(), static_cast<std::int32_t>(text.size()),
                                      &point);
        }
        const Status status = statusOf(info);
        const std::string text = GLYLanguageMgr::getLanguageMgr()->getString(status.text);
        const ADMPoint point{row_.left + columns.left.back(), top};
        sADMDrawer->SetRGBColor(drawer_, status.color);
        sADMDrawer->DrawText(drawer_, fitted(text, texts.size()).c_str(), &point);
    }

    void drawTriangle() const {
        ADMHierarchyListRef candidates = nullptr;
        AIBoolean expanded = 0;
        sADMListEntry4->GetChildList(entry_, &candidates);
        if (candidates != nullptr) {
            sADMListEntry4->IsExpanded(entry_, &expanded);
            const ADMPoint point{row_.left + fontRowIndent, centred(triangleHeight)};
            sADMDrawer->DrawResPicture(
                drawer_, expanded != 0 ? kADMExpandedPicture : kADMCollapsedPicture, &point);
        }
    }

    void rest() const { sADMDrawer->SetRGBColor(drawer_, restingColor); }

private:
    /// The upper edge of something in the middle of the row; what is higher begins at the row's.
    std::int32_t centred(std::int32_t height) const {
        return row_.top + std::max(0, (row_.bottom - row_.top - height) / 2);
    }

    ADMListEntryRef entry_;
    ADMDrawerRef drawer_;
    ADMRect row_{};
};

} // namespace

void GlyphoraDialog::mydrawProc(ADMListEntryRef entry, ADMDrawerRef drawer) {
    guard(dialogOf(entry), AIBoolean{0}, [=](BaseADMDialog& dialog) {
        const RowPainter painter(entry, drawer);
        painter.drawBackground();
        const UserDataContainer* const row = containerOf(entry);
        const bool isFontRow = row != nullptr && row->kind == UserDataContainer::fontRow;
        painter.drawLines(isFontRow ? fontRowIndent : 0);
        if (isFontRow) {
            painter.drawColumns(*row->info, Columns(dialog));
        }
        painter.rest();
        painter.drawTriangle();
        return AIBoolean{1};
    });
}

std::vector<std::string> GlyphoraDialog::breakStringAtWidth(ADMListEntryRef entry,
                                                            const std::string& text, float width,
                                                            float& height) {
    ADMDrawerRef drawer = nullptr;
    std::int32_t lineHeight = 0;
    sADMListEntry4->GetMeasuringDrawer(entry, &drawer);
    sADMDrawer->GetLineHeight(drawer, &lineHeight);
    std::vector<std::string> lines = wrapText(text, width, measuredBy(drawer));
    height = static_cast<float>(lines.size()) * static_cast<float>(lineHeight);
    return lines;
}
