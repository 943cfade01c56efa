#pragma once

#include <framework/attribute/Attribute.hpp>
#include <framework/gpu/GpuMessages.hpp>

namespace orlix::imaproc::attr
{

/// A plan or a volume on a GPU.
class ORLIX_API InSubGpuImg final : public ImageInput<InSubGpuImg, image::ePlanKind::ePK_Volume3d, eExtent::eE_OnePlan>
{
public:
    static constexpr const char* name = "InSubGpuImg";

    core::ProcessingResult check() const override
    {
        return value_->isGpuImage()
                   ? ImageInput::check()
                   : core::ProcessingResult::failure(core::formatMessage(gpu::eGpuMessage::eGM_NotOnGpu, name));
    }
};

} // namespace orlix::imaproc::attr
