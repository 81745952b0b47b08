// SPDX-License-Identifier: MIT
// The calls behind the text-engine classes.
#include "ate/itext.h"

#include <string>

namespace ATE {

namespace {

template <typename Ref, typename Call, typename... Arguments>
Ref result(Call call, Arguments... arguments) {
    Ref ref{};
    check(call(arguments..., &ref));
    return ref;
}

} // namespace

Exception::Exception(ATEErr errorCode)
    : std::runtime_error("the text engine reported error " + std::to_string(errorCode)),
      error(errorCode) {}

void check(ATEErr result) {
    if (result != 0) {
        throw Exception(result);
    }
}

std::int32_t IArrayFontRef::GetSize() const {
    return result<std::int32_t>(sArrayFontRef->GetSize, GetRef());
}

IFont IArrayFontRef::Item(std::int32_t index) const {
    return IFont(result<FontRef>(sArrayFontRef->Item, GetRef(), index));
}

IArrayFontRef ICharInspector::GetFont() const {
    return IArrayFontRef(result<ArrayFontRefRef>(sCharInspector->GetFont, GetRef()));
}

ICharFeatures ICharFeatures::Create() {
    return ICharFeatures(result<CharFeaturesRef>(sCharFeatures->Create));
}

void ICharFeatures::SetFont(const IFont& font) const {
    check(sCharFeatures->SetFont(GetRef(), font.GetRef()));
}

ITextRunsIterator ITextRange::GetTextRunsIterator() const {
    return ITextRunsIterator(
        result<TextRunsIteratorRef>(sTextRange->GetTextRunsIterator, GetRef()));
}

bool ITextRange::HasLocalCharFeatures() const {
    return result<AIBoolean>(sTextRange->HasLocalCharFeatures, GetRef()) != 0;
}

ICharInspector ITextRange::GetCharInspector() const {
    return ICharInspector(result<CharInspectorRef>(sTextRange->GetCharInspector, GetRef()));
}

void ITextRange::ReplaceOrAddLocalCharFeatures(const ICharFeatures& features) const {
    check(sTextRange->ReplaceOrAddLocalCharFeatures(GetRef(), features.GetRef()));
}

bool ITextRunsIterator::IsDone() const {
    return result<AIBoolean>(sTextRunsIterator->IsDone, GetRef()) != 0;
}

ITextRange ITextRunsIterator::Item() const {
    return ITextRange(result<TextRangeRef>(sTextRunsIterator->Item, GetRef()));
}

void ITextRunsIterator::Next() const {
    check(sTextRunsIterator->Next(GetRef()));
}

ITextRange ITextFrame::GetTextRange(bool includeOverflow) const {
    return ITextRange(result<TextRangeRef>(sTextFrame->GetTextRange, GetRef(),
                                           static_cast<AIBoolean>(includeOverflow)));
}

} // namespace ATE
