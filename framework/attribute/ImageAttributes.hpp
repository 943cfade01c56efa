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

/// A mask of the image's size; a pixel counts where its byte is not 0.
class ORLIX_API InMaskImg final
    : public ImageInput<InMaskImg, image::ePlanKind::ePK_Plan2d, eExtent::eE_AllPlans, image::maskTypes>
{
public:
    static constexpr const char* name = "InMaskImg";
};

class ORLIX_API InSubMaskImg2d final
    : public ImageInput<InSubMaskImg2d, image::ePlanKind::ePK_Plan2d, eExtent::eE_OnePlan, image::maskTypes>
{
public:
    static constexpr const char* name = "InSubMaskImg2d";
};

class ORLIX_API InSubMaskImg3d final
    : public ImageInput<InSubMaskImg3d, image::ePlanKind::ePK_Volume3d, eExtent::eE_OnePlan, image::maskTypes>
{
public:
    static constexpr const char* name = "InSubMaskImg3d";
};

/// An image whose pixels are the numbers of objects, 0 being the background.
class ORLIX_API InLabelImg final
    : public ImageInput<InLabelImg, image::ePlanKind::ePK_Plan2d, eExtent::eE_AllPlans, image::labelTypes>
{
public:
    static constexpr const char* name = "InLabelImg";
};

class ORLIX_API InLabelImg3d final
    : public ImageInput<InLabelImg3d, image::ePlanKind::ePK_Volume3d, eExtent::eE_AllPlans, image::labelTypes>
{
public:
    static constexpr const char* name = "InLabelImg3d";
};

class ORLIX_API InSubLabelImg2d final
    : public ImageInput<InSubLabelImg2d, image::ePlanKind::ePK_Plan2d, eExtent::eE_OnePlan, image::labelTypes>
{
public:
    static constexpr const char* name = "InSubLabelImg2d";
};

class ORLIX_API InSubLabelImg3d final
    : public ImageInput<InSubLabelImg3d, image::ePlanKind::ePK_Volume3d, eExtent::eE_OnePlan, image::labelTypes>
{
public:
    static constexpr const char* name = "InSubLabelImg3d";
};

/// An image whose sub images are its 2d plans at all times.
class ORLIX_API InSeqImg final : public ImageInput<InSeqImg, image::ePlanKind::ePK_Sequence2d, eExtent::eE_AllPlans>
{
public:
    static constexpr const char* name = "InSeqImg";
};

class ORLIX_API InSubSeqImg2d final
    : public ImageInput<InSubSeqImg2d, image::ePlanKind::ePK_Sequence2d, eExtent::eE_OnePlan>
{
public:
    static constexpr const char* name = "InSubSeqImg2d";
};

/// An image of one time.
class ORLIX_API OutSingleImg final : public ImageOutput<OutSingleImg>
{
public:
    static constexpr const char* name = "OutSingleImg";
    static constexpr image::ImageGeometry geometryFor(image::ImageGeometry input)
    {
        input.t = 1;
        return input;
    }
};

/// An image of one plane.
class ORLIX_API OutImg2d final : public ImageOutput<OutImg2d>
{
public:
    static constexpr const char* name = "OutImg2d";
    static constexpr image::ImageGeometry geometryFor(image::ImageGeometry input)
    {
        input.z = 1;
        return input;
    }
};

class ORLIX_API InXStrip2d final : public StripInput<InXStrip2d, image::XStrip2d>
{
public:
    static constexpr const char* name = "InXStrip2d";
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

class ORLIX_API InSeqYStrip2d final : public StripInput<InSeqYStrip2d, image::SeqYStrip2d>
{
public:
    static constexpr const char* name = "InSeqYStrip2d";
};

class ORLIX_API OutSingleYStrip2d final : public StripOutput<OutSingleYStrip2d, image::OutputYStrip2d>
{
public:
    static constexpr const char* name = "OutSingleYStrip2d";
};

class ORLIX_API InMaskYStrip2d final : public MaskStripInput<InMaskYStrip2d, image::YStrip2d>
{
public:
    static constexpr const char* name = "InMaskYStrip2d";
};

class ORLIX_API InMaskZStrip3d final : public MaskStripInput<InMaskZStrip3d, image::ZStrip3d>
{
public:
    static constexpr const char* name = "InMaskZStrip3d";
};

/// A mask that the caller may leave out: then every pixel counts.
class ORLIX_API InOptMaskImg final : public ImageInput<InOptMaskImg, image::ePlanKind::ePK_Plan2d, eExtent::eE_AllPlans,
                                                       image::maskTypes, eAttributeRole::eAR_OptionalInput>
{
public:
    static constexpr const char* name = "InOptMaskImg";
};

class ORLIX_API InOptMaskSubImg2d final
    : public ImageInput<InOptMaskSubImg2d, image::ePlanKind::ePK_Plan2d, eExtent::eE_OnePlan, image::maskTypes,
                        eAttributeRole::eAR_OptionalInput>
{
public:
    static constexpr const char* name = "InOptMaskSubImg2d";
};

class ORLIX_API InOptMaskSubImg3d final
    : public ImageInput<InOptMaskSubImg3d, image::ePlanKind::ePK_Volume3d, eExtent::eE_OnePlan, image::maskTypes,
                        eAttributeRole::eAR_OptionalInput>
{
public:
    static constexpr const char* name = "InOptMaskSubImg3d";
};

class ORLIX_API InOptMaskYStrip2d final
    : public MaskStripInput<InOptMaskYStrip2d, image::YStrip2d, eAttributeRole::eAR_OptionalInput>
{
public:
    static constexpr const char* name = "InOptMaskYStrip2d";
};

class ORLIX_API InOptMaskZStrip3d final
    : public MaskStripInput<InOptMaskZStrip3d, image::ZStrip3d, eAttributeRole::eAR_OptionalInput>
{
public:
    static constexpr const char* name = "InOptMaskZStrip3d";
};

/// A binary image, or one of labels.
class ORLIX_API InBinLabImg final
    : public ImageInput<InBinLabImg, image::ePlanKind::ePK_Plan2d, eExtent::eE_AllPlans, image::binaryOrLabelTypes>
{
public:
    static constexpr const char* name = "InBinLabImg";
};

class ORLIX_API InBinLabImg3d final
    : public ImageInput<InBinLabImg3d, image::ePlanKind::ePK_Volume3d, eExtent::eE_AllPlans, image::binaryOrLabelTypes>
{
public:
    static constexpr const char* name = "InBinLabImg3d";
};

class ORLIX_API InSubBinLabImg2d final
    : public ImageInput<InSubBinLabImg2d, image::ePlanKind::ePK_Plan2d, eExtent::eE_OnePlan, image::binaryOrLabelTypes>
{
public:
    static constexpr const char* name = "InSubBinLabImg2d";
};

class ORLIX_API InSubBinLabImg3d final : public ImageInput<InSubBinLabImg3d, image::ePlanKind::ePK_Volume3d,
                                                           eExtent::eE_OnePlan, image::binaryOrLabelTypes>
{
public:
    static constexpr const char* name = "InSubBinLabImg3d";
};

class ORLIX_API InBinLabYStrip2d1 final
    : public StripInput<InBinLabYStrip2d1, image::YStrip2d, image::binaryOrLabelTypes>
{
public:
    static constexpr const char* name = "InBinLabYStrip2d1";
};

class ORLIX_API InBinLabZStrip3d final : public StripInput<InBinLabZStrip3d, image::ZStrip3d, image::binaryOrLabelTypes>
{
public:
    static constexpr const char* name = "InBinLabZStrip3d";
};

class ORLIX_API InBinImg final
    : public ImageInput<InBinImg, image::ePlanKind::ePK_Plan2d, eExtent::eE_AllPlans, image::binaryType>
{
public:
    static constexpr const char* name = "InBinImg";
};

class ORLIX_API InBinImg3d final
    : public ImageInput<InBinImg3d, image::ePlanKind::ePK_Volume3d, eExtent::eE_AllPlans, image::binaryType>
{
public:
    static constexpr const char* name = "InBinImg3d";
};

class ORLIX_API InSubBinImg2d final
    : public ImageInput<InSubBinImg2d, image::ePlanKind::ePK_Plan2d, eExtent::eE_OnePlan, image::binaryType>
{
public:
    static constexpr const char* name = "InSubBinImg2d";
};

class ORLIX_API InSubBinImg3d final
    : public ImageInput<InSubBinImg3d, image::ePlanKind::ePK_Volume3d, eExtent::eE_OnePlan, image::binaryType>
{
public:
    static constexpr const char* name = "InSubBinImg3d";
};

class ORLIX_API InBinYStrip2d final : public StripInput<InBinYStrip2d, image::YStrip2d, image::binaryType>
{
public:
    static constexpr const char* name = "InBinYStrip2d";
};

class ORLIX_API InBinZStrip3d final : public StripInput<InBinZStrip3d, image::ZStrip3d, image::binaryType>
{
public:
    static constexpr const char* name = "InBinZStrip3d";
};

/// Rows whose neighbours are read as well: those of the image, and beyond it its border again.
class ORLIX_API InKnlYStrip2d final : public StripInput<InKnlYStrip2d, image::YStrip2d>
{
public:
    static constexpr const char* name = "InKnlYStrip2d";
    static constexpr std::size_t nbRowsAround = 1;
};

// The first and the second of two images.

class ORLIX_API InImg1 final : public ImageInput<InImg1, image::ePlanKind::ePK_Plan2d, eExtent::eE_AllPlans>
{
public:
    static constexpr const char* name = "InImg1";
};

class ORLIX_API InImg3d1 final : public ImageInput<InImg3d1, image::ePlanKind::ePK_Volume3d, eExtent::eE_AllPlans>
{
public:
    static constexpr const char* name = "InImg3d1";
};

class ORLIX_API InSubImg2d1 final : public ImageInput<InSubImg2d1, image::ePlanKind::ePK_Plan2d, eExtent::eE_OnePlan>
{
public:
    static constexpr const char* name = "InSubImg2d1";
};

class ORLIX_API InSubImg3d1 final : public ImageInput<InSubImg3d1, image::ePlanKind::ePK_Volume3d, eExtent::eE_OnePlan>
{
public:
    static constexpr const char* name = "InSubImg3d1";
};

class ORLIX_API InYStrip2d1 final : public StripInput<InYStrip2d1, image::YStrip2d>
{
public:
    static constexpr const char* name = "InYStrip2d1";
};

class ORLIX_API InZStrip3d1 final : public StripInput<InZStrip3d1, image::ZStrip3d>
{
public:
    static constexpr const char* name = "InZStrip3d1";
};

class ORLIX_API InImg2 final : public ImageInput<InImg2, image::ePlanKind::ePK_Plan2d, eExtent::eE_AllPlans>
{
public:
    static constexpr const char* name = "InImg2";
};

class ORLIX_API InImg3d2 final : public ImageInput<InImg3d2, image::ePlanKind::ePK_Volume3d, eExtent::eE_AllPlans>
{
public:
    static constexpr const char* name = "InImg3d2";
};

class ORLIX_API InSubImg2d2 final : public ImageInput<InSubImg2d2, image::ePlanKind::ePK_Plan2d, eExtent::eE_OnePlan>
{
public:
    static constexpr const char* name = "InSubImg2d2";
};

class ORLIX_API InSubImg3d2 final : public ImageInput<InSubImg3d2, image::ePlanKind::ePK_Volume3d, eExtent::eE_OnePlan>
{
public:
    static constexpr const char* name = "InSubImg3d2";
};

class ORLIX_API InYStrip2d2 final : public StripInput<InYStrip2d2, image::YStrip2d>
{
public:
    static constexpr const char* name = "InYStrip2d2";
};

class ORLIX_API InZStrip3d2 final : public StripInput<InZStrip3d2, image::ZStrip3d>
{
public:
    static constexpr const char* name = "InZStrip3d2";
};

} // namespace orlix::imaproc::attr
