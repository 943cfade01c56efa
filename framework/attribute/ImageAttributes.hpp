#pragma once

#include <framework/attribute/Attribute.hpp>

/// The image attributes that measures share.
namespace orlix::imaproc::attr
{

class ORLIX_API InImg final : public ImageInput<InImg, image::ePlanKind::ePK_Plan2d, eExtent::eE_AllPlans>
{
public:
    static constexpr const char* name = "InImg";
};

class ORLIX_API InImg3d final : public ImageInput<InImg3d, image::ePlanKind::ePK_Volume3d, eExtent::eE_AllPlans>
{
public:
    static constexpr const char* name = "InImg3d";
};

class ORLIX_API InSubImg2d final : public ImageInput<InSubImg2d, image::ePlanKind::ePK_Plan2d, eExtent::eE_OnePlan>
{
public:
    static constexpr const char* name = "InSubImg2d";
};

class ORLIX_API InSubImg3d final : public ImageInput<InSubImg3d, image::ePlanKind::ePK_Volume3d, eExtent::eE_OnePlan>
{
public:
    static constexpr const char* name = "InSubImg3d";
};

class ORLIX_API InYStrip2d final : public StripInput<InYStrip2d, image::YStrip2d>
{
public:
    static constexpr const char* name = "InYStrip2d";
};

class ORLIX_API InZStrip3d final : public StripInput<InZStrip3d, image::ZStrip3d>
{
public:
    static constexpr const char* name = "InZStrip3d";
};

} // namespace orlix::imaproc::attr
