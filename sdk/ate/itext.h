// SPDX-License-Identifier: MIT
// The text engine's objects as classes: one method, one suite call, a non-zero result thrown as
// ATE::Exception. Main thread only; the suites must be acquired while any object lives.
#pragma once

#include "suitepointers.h"

#include <stdexcept>
#include <utility>

namespace ATE {

/// A suite call's non-zero result.
class Exception : public std::runtime_error {
public:
    explicit Exception(ATEErr errorCode);

    ATEErr error;
};

/// Throws ATE::Exception for a non-zero result.
void check(ATEErr result);

/// Holds one count of a text-engine object: copying counts one more, destruction gives one back.
/// `Suite` tells the table that has AddRef and Release for the reference type.
template <typename Ref, typename Suite, const Suite** suite>
class Counted {
public:
    Counted() noexcept = default;
    /// Takes over the count that a suite call handed out.
    explicit Counted(Ref ref) noexcept : ref_(ref) {}
    Counted(const Counted& other) : ref_(other.ref_) {
        if (ref_ != nullptr) {
            check((*suite)->AddRef(ref_));
        }
    }
    Counted(Counted&& other) noexcept : ref_(std::exchange(other.ref_, nullptr)) {}
    Counted& operator=(Counted other) noexcept {
        std::swap(ref_, other.ref_);
        return *this;
    }
    ~Counted() {
        if (ref_ != nullptr) {
            (*suite)->Release(ref_); // a failed release leaves nothing to mend here
        }
    }

    /// The reference, still owned by this object.
    Ref GetRef() const noexcept { return ref_; }
    bool IsNull() const noexcept { return ref_ == nullptr; }

private:
    Ref ref_ = nullptr;
};

class IFont : public Counted<FontRef, FontSuite, &sFont> {
public:
    using Counted::Counted;
};

class IArrayFontRef : public Counted<ArrayFontRefRef, ArrayFontRefSuite, &sArrayFontRef> {
public:
    using Counted::Counted;
    std::int32_t GetSize() const;
    IFont Item(std::int32_t index) const;
};

class ICharInspector : public Counted<CharInspectorRef, CharInspectorSuite, &sCharInspector> {
public:
    using Counted::Counted;
    IArrayFontRef GetFont() const;
};

class ICharFeatures : public Counted<CharFeaturesRef, CharFeaturesSuite, &sCharFeatures> {
public:
    using Counted::Counted;
    /// A new, empty set of features.
    static ICharFeatures Create();
    void SetFont(const IFont& font) const;
};

class ITextRunsIterator;

class ITextRange : public Counted<TextRangeRef, TextRangeSuite, &sTextRange> {
public:
    using Counted::Counted;
    ITextRunsIterator GetTextRunsIterator() const;
    bool HasLocalCharFeatures() const;
    ICharInspector GetCharInspector() const;
    void ReplaceOrAddLocalCharFeatures(const ICharFeatures& features) const;
};

class ITextRunsIterator
    : public Counted<TextRunsIteratorRef, TextRunsIteratorSuite, &sTextRunsIterator> {
public:
    using Counted::Counted;
    bool IsDone() const;
    ITextRange Item() const;
    void Next() const;
};

class ITextFrame : public Counted<TextFrameRef, TextFrameSuite, &sTextFrame> {
public:
    using Counted::Counted;
    ITextRange GetTextRange(bool includeOverflow) const;
};

} // namespace ATE
