#pragma once

#include <framework/attribute/Attribute.hpp>
#include <framework/core/Api.hpp>
#include <framework/core/ProcessingResult.hpp>

#include <functional>

namespace orlix::imaproc
{

/// What the attributes of a processor must satisfy before it runs. The default is always satisfied.
class ORLIX_API Rule
{
public:
    Rule() = default;
    explicit Rule(std::function<core::ProcessingResult()> check) : check_{std::move(check)} {}

    /// Success, or a failure with the rule's message.
    core::ProcessingResult check() const { return check_ ? check_() : core::ProcessingResult{}; }

    /// The message is that of the first part that fails.
    friend ORLIX_API Rule operator&&(Rule first, Rule second);
    /// The message names what each part wanted.
    friend ORLIX_API Rule operator||(Rule first, Rule second);

private:
    std::function<core::ProcessingResult()> check_;
};

/// Nothing to check.
inline Rule none()
{
    return {};
}

/// `then` where `condition` is satisfied, else `otherwise`.
ORLIX_API Rule If(Rule condition, Rule then, Rule otherwise);

// What the rules below check.
ORLIX_API core::ProcessingResult checkImagePlans(const attr::BaseAttribute& output, const attr::BaseAttribute& input);
ORLIX_API core::ProcessingResult checkOutputSize(const attr::BaseAttribute& output, const attr::BaseAttribute& input);
ORLIX_API core::ProcessingResult checkSize(const attr::BaseAttribute& first, const attr::BaseAttribute& second);

/// A collection that the caller supplied has exactly the plans of the input image, or plan (0, 0, 0) only, as the
/// single-result entry functions make it. Both attributes outlive the rule.
ORLIX_API Rule matchImagePlans(const attr::BaseAttribute& output, const attr::BaseAttribute& input);

/// An output image that the caller supplied has the sizes that follow from those of the input image. Both attributes
/// outlive the rule.
ORLIX_API Rule matchOutputSize(const attr::BaseAttribute& output, const attr::BaseAttribute& input);

/// Both images have the same size; satisfied where one is not set. The attributes outlive the rule.
ORLIX_API Rule matchSize(const attr::BaseAttribute& first, const attr::BaseAttribute& second);

/// Both images have the same pixel type; satisfied where one is not set. The attributes outlive the rule.
ORLIX_API Rule matchType(const attr::BaseAttribute& first, const attr::BaseAttribute& second);

} // namespace orlix::imaproc
