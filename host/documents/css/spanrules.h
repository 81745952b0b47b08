// SPDX-License-Identifier: MIT
// Whether a drawing's own rules would catch a span that is put around some of its text.
#pragma once

#include <string_view>

namespace host::css {

/// True when the sheet has a rule that gives a `tspan` or `flowSpan` without id and class more than
/// a face, or that may no longer match others when one more stands among them. When in doubt
/// true: the media and other conditions of a rule are not looked at.
[[nodiscard]] bool hasRulesForSpans(std::string_view sheet);

} // namespace host::css
