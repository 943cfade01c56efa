#pragma once

#include <framework/attribute/Attribute.hpp>
#include <framework/gpu/GpuMessages.hpp>

namespace orlix::imaproc::attr
{

/// A plan or a volume on a GPU.
class ORLIX_API InSubGpuImg final : public BaseImageAttribute<InSubGpuImg, const image::BaseImage,
                                                              image::ePlanKind::ePK_Volume3d, eAttributeRole::eAR_Input>
{
public:
    static constexpr const char* name = "InSubGpuImg";

    core::ProcessingResult check() const override
    {
        if (!value_->isGpuImage()) {
            return core::ProcessingResult::failure(core::formatMessage(gpu::eGpuMessage::eGM_NotOnGpu, name));
        }
        core::ProcessingResult result = checkPixelType(*this, *value_, image::numericTypes);
        return result ? checkOnePlan(*this, *value_, kind) : result;
    }
};

} // namespace orlix::imaproc::attr
