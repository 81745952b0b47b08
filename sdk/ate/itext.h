// SPDX-License-Identifier: MIT
// The text engine's objects as classes: each method makes one suite call and throws ATE::Exception
// if its result is not zero. [main-thread] The suites must stay acquired while any object lives.
#pragma once

#include "suitepointers.h"

#include <stdexcept>
#include <utility>

namespace ATE {

/// The non-zero result of a suite call.
class Exception : public std::runtime_error {
public:
    explicit Exception(ATEErr errorCode);

    ATEErr error;
};

/// Throws ATE::Exception if `result` is not zero.
void check(ATEErr result);

/// Owns one count of a text-engine object: a copy counts one more, destruction gives one back.
/// `suite` is the pointer to the table that counts references of this type. Throws ATE::Exception
/// when a copy cannot be counted.
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
            (*suite)->Release(ref_); // if that fails, there is nothing left to try
        }
    }

    /// The reference, which this object goes on owning.
    [[nodiscard]] Ref GetRef() const noexcept { return ref_; }
    [[nodiscard]] bool IsNull() const noexcept { return ref_ == nullptr; }

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
    [[nodiscard]] std::int32_t GetSize() const;
    [[nodiscard]] IFont Item(std::int32_t index) const;
};

class ICharInspector : public Counted<CharInspectorRef, CharInspectorSuite, &sCharInspector> {
public:
    using Counted::Counted;
    [[nodiscard]] IArrayFontRef GetFont() const;
};

class ICharFeatures : public Counted<CharFeaturesRef, CharFeaturesSuite, &sCharFeatures> {
public:
    using Counted::Counted;
    /// A new, empty set of features.
    [[nodiscard]] static ICharFeatures Create();
    void SetFont(const IFont& font) const;
};

class ITextRunsIterator;

class ITextRange : public Counted<TextRangeRef, TextRangeSuite, &sTextRange> {
public:
    using Counted::Counted;
    [[nodiscard]] ITextRunsIterator GetTextRunsIterator() const;
    [[nodiscard]] bool HasLocalCharFeatures() const;
    [[nodiscard]] ICharInspector GetCharInspector() const;
    void ReplaceOrAddLocalCharFeatures(const ICharFeatures& features) const;
};

class ITextRunsIterator
    : public Counted<TextRunsIteratorRef, TextRunsIteratorSuite, &sTextRunsIterator> {
public:
    using Counted::Counted;
    [[nodiscard]] bool IsDone() const;
    [[nodiscard]] ITextRange Item() const;
    void Next() const;
};

class ITextFrame : public Counted<TextFrameRef, TextFrameSuite, &sTextFrame> {
public:
    using Counted::Counted;
    [[nodiscard]] ITextRange GetTextRange(bool includeOverflow) const;
};

} // namespace ATE
