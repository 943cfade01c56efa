#pragma once

#include <framework/attribute/ImageAttributes.hpp>
#include <framework/attribute/Pixels.hpp>
#include <framework/process/Level.hpp>

#include <optional>
#include <span>
#include <vector>

/// What the lists of set pixels and voxels share. A list has the positions of the bytes that are not 0, in raster order
/// (x fastest, then y, then z), up to a limit; how the image is cut does not change it.
namespace orlix::imaproc::glbmsr
{

using attr::InBinImg;
using attr::InBinImg3d;
using attr::InBinYStrip2d;
using attr::InBinZStrip3d;
using attr::InNbFeatures;
using attr::InSubBinImg2d;
using attr::InSubBinImg3d;
using attr::OutPIPixels2d;
using attr::OutPIVoxels3d;
using attr::OutPixels2d;
using attr::OutVoxels3d;
using attr::Pixels2d;
using attr::PlanIndexedPixels2d;
using attr::PlanIndexedVoxels3d;
using attr::Voxels3d;

/// The set pixels of one strip; List has their Coords.
template <class List>
class ORLIX_API LocateStrip : public BaseProcessingAlgorithm
{
public:
    using Coords = typename List::Coords;

    /// The one kernel: it reads bytes, on any machine.
    static void functionRegistration(AlgorithmFunctionSelector& selector);

    core::ProcessingResult genericProcessFunction(ProcessingInfo info);

    /// Where the first set pixels of the next strip go, as many as there is room for, instead of into the output.
    void setPlace(std::span<Coords> place) { place_ = place; }

protected:
    void getDataTypeIdColl(image::DataTypeIdentifierColl&) const override {}

private:
    std::optional<std::span<Coords>> place_;
};

/// The set pixels of one plan or volume. They are counted first: so the one list is made when its size is known to be
/// within the limits, and every strip writes straight to its place.
template <class List>
class ORLIX_API LocateSubImage : public Level
{
    using Coords = typename List::Coords;

protected:
    void clearIntermediateDataDerived() override;
    core::ProcessingResult retrieveProvider(ePriority priority, Ptr<ActionProvider>& provider) override;
    void prepareChild(BaseProcessor& child, std::size_t index) override;

private:
    using BaseAsync1Processor::retrieveProvider;

    /// The set pixels of every strip; 0 for strips that come after enough of them.
    std::vector<std::size_t> countStrips(ePriority priority);

    std::vector<std::span<Coords>> places_;
};

/// The set pixels of one strip of rows.
class ORLIX_API LocatePixels2dLvl3 final
    : public Algorithm<LocatePixels2dLvl3, LocateStrip<Pixels2d>, InBinYStrip2d, InNbFeatures, OutPixels2d>
{
public:
    static AlgorithmClass processorClass;
};

/// The set pixels of one 2d plan.
class ORLIX_API LocatePixels2dLvl2 final
    : public Processor<LocatePixels2dLvl2, LocateSubImage<Pixels2d>, InSubBinImg2d, InNbFeatures, OutPixels2d>
{
public:
    static LevelClass processorClass;
};

/// The set pixels of every 2d plan of a binary image.
class ORLIX_API LocatePixels2dLvl1 final
    : public Processor<LocatePixels2dLvl1, Level, InBinImg, InNbFeatures, OutPIPixels2d>
{
public:
    static LevelClass processorClass;
};

/// The set voxels of one slab of planes.
class ORLIX_API LocateVoxels3dLvl3 final
    : public Algorithm<LocateVoxels3dLvl3, LocateStrip<Voxels3d>, InBinZStrip3d, InNbFeatures, OutVoxels3d>
{
public:
    static AlgorithmClass processorClass;
};

/// The set voxels of one volume.
class ORLIX_API LocateVoxels3dLvl2 final
    : public Processor<LocateVoxels3dLvl2, LocateSubImage<Voxels3d>, InSubBinImg3d, InNbFeatures, OutVoxels3d>
{
public:
    static LevelClass processorClass;
};

/// The set voxels of every volume of a binary image.
class ORLIX_API LocateVoxels3dLvl1 final
    : public Processor<LocateVoxels3dLvl1, Level, InBinImg3d, InNbFeatures, OutPIVoxels3d>
{
public:
    static LevelClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
