#pragma once

#include <framework/attribute/Doubles.hpp>
#include <framework/attribute/ImageAttributes.hpp>
#include <framework/process/Level.hpp>

/// What area and volume percentages share: element v of a result is the share of the plan's (volume's) pixels that have
/// the value v, in percent. A binary image has the values 0 and 1; a label image (uint8, uint16, uint32) those up to
/// its largest label. All pixels outside a mask, where it is 0, have the value 0, and on purpose they count.
///
/// All instruction sets, and any number of threads, give the same bits. A strip keeps a number per label: labels that
/// need more than the memory limit fail before they allocate, and so do the results of all plans together.
namespace orlix::imaproc::glbmsr
{

using attr::Doubles;
using attr::InBinLabImg;
using attr::InBinLabImg3d;
using attr::InBinLabYStrip2d1;
using attr::InBinLabZStrip3d;
using attr::InOptMaskImg;
using attr::InOptMaskSubImg2d;
using attr::InOptMaskSubImg3d;
using attr::InOptMaskYStrip2d;
using attr::InOptMaskZStrip3d;
using attr::InSubBinLabImg2d;
using attr::InSubBinLabImg3d;
using attr::OutPIValues;
using attr::OutValues;
using attr::PlanIndexedDoubles;

/// The number of pixels of each value in one strip, as a share of the pixels of the whole plan or volume.
class ORLIX_API PercentStrip : public BaseProcessingAlgorithm
{
public:
    /// Enters the kernels that this machine can run.
    static void functionRegistration(AlgorithmFunctionSelector& selector);

    template <class T>
    core::ProcessingResult genericProcessFunction(ProcessingInfo info);

protected:
    /// A binary image is read as bytes.
    void getDataTypeIdColl(image::DataTypeIdentifierColl& dataTypes) const override;
    core::ProcessingResult postProcess() override;

private:
    core::ProcessingResult processBinary(ProcessingInfo info);
    template <class T>
    core::ProcessingResult processLabel(ProcessingInfo info);

    std::vector<std::uint32_t> tables_; // that live on from strip to strip
};

/// One plan or volume. Each strip keeps a number per label: they have so many pixels that there are few.
class ORLIX_API PercentSubImage : public Level
{
protected:
    std::size_t getMinStripPixels() const override;
    core::ProcessingResult postProcess() override;
};

/// The shares of the values in one strip of rows.
class ORLIX_API AreaPercent2dMsrLvl3 final
    : public Algorithm<AreaPercent2dMsrLvl3, PercentStrip, InBinLabYStrip2d1, InOptMaskYStrip2d, OutValues>
{
public:
    static AlgorithmClass processorClass;
};

/// The percentages of the values in one 2d plan.
class ORLIX_API AreaPercent2dMsrLvl2 final
    : public Processor<AreaPercent2dMsrLvl2, PercentSubImage, InSubBinLabImg2d, InOptMaskSubImg2d, OutValues>
{
public:
    static LevelClass processorClass;
};

/// The percentages of the values in every 2d plan of an image.
class ORLIX_API AreaPercent2dMsrLvl1 final
    : public Processor<AreaPercent2dMsrLvl1, Level, InBinLabImg, InOptMaskImg, OutPIValues>
{
public:
    static LevelClass processorClass;
};

/// The shares of the values in one slab of planes.
class ORLIX_API VolumePercent3dMsrLvl3 final
    : public Algorithm<VolumePercent3dMsrLvl3, PercentStrip, InBinLabZStrip3d, InOptMaskZStrip3d, OutValues>
{
public:
    static AlgorithmClass processorClass;
};

/// The percentages of the values in one volume.
class ORLIX_API VolumePercent3dMsrLvl2 final
    : public Processor<VolumePercent3dMsrLvl2, PercentSubImage, InSubBinLabImg3d, InOptMaskSubImg3d, OutValues>
{
public:
    static LevelClass processorClass;
};

/// The percentages of the values in every volume of an image.
class ORLIX_API VolumePercent3dMsrLvl1 final
    : public Processor<VolumePercent3dMsrLvl1, Level, InBinLabImg3d, InOptMaskImg, OutPIValues>
{
public:
    static LevelClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
