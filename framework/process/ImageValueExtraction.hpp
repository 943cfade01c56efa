#pragma once

#include <framework/attribute/Doubles.hpp>
#include <framework/attribute/ImageAttributes.hpp>
#include <framework/attribute/Pixels.hpp>
#include <framework/process/Processor.hpp>

namespace orlix::imaproc
{

/// How the value of an image at a position is found; any other value stands for the nearest pixel.
enum class eImageValueExtraction : unsigned
{
    eIVE_NearestPixel = 0
};

inline std::span<const char* const> namesOf(eImageValueExtraction)
{
    static constexpr const char* names[] = {"nearest"};
    return names;
}

class ORLIX_API ImageValueExtractionMethod final : public data::DataItem<ImageValueExtractionMethod>
{
public:
    static constexpr const char* typeName = "orlix::imaproc::ImageValueExtractionMethod";

    eImageValueExtraction Method = eImageValueExtraction::eIVE_NearestPixel;

    void visitFields(data::FieldVisitor& field) override
    {
        field({"Method", "how the value at a position is found"}, Method);
    }
};

/// The pixel at the position.
ORLIX_API Ptr<const ImageValueExtractionMethod> createDefaultImageValueExtractionMethod();

class ORLIX_API InValueExtractionMethod final
    : public attr::ObjectInput<InValueExtractionMethod, ImageValueExtractionMethod>
{
public:
    static constexpr const char* name = "InValueExtractionMethod";
};

/// The values of a plan or a volume at the positions of a list, in their order. A position outside fails.
template <class Self, class SubImage, class Positions>
class ImageValueExtraction
    : public Processor<Self, BaseProcessor, SubImage, Positions, InValueExtractionMethod, attr::OutValues>
{
public:
    eProcessorType getProcessorType() const final { return eProcessorType::ePT_Synchronous; }
    bool isComplexAction() const final { return false; }

protected:
    core::ProcessingResult runDerived(const RunContext& context) final;
};

class ORLIX_API ImageValueExtraction2d final
    : public ImageValueExtraction<ImageValueExtraction2d, attr::InSubImg2d, attr::InPixels2d>
{
public:
    static ProcessorClass processorClass;
};

class ORLIX_API ImageValueExtraction3d final
    : public ImageValueExtraction<ImageValueExtraction3d, attr::InSubImg3d, attr::InVoxels3d>
{
public:
    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc
