#pragma once

#include <framework/attribute/ImageAttributes.hpp>
#include <framework/attribute/StatsResult.hpp>
#include <framework/process/Level.hpp>
#include <framework/process/MeasureStrip.hpp>

/// What the statistics measures share, with a mask and without. One pass over the pixels gives number, sum, mean,
/// minimum, maximum and standard deviation; the measures differ in how much of the image one result covers.
///
/// Neither threads nor the layout of the pixels in memory change a bit of a result. Integer images give the same bits
/// on every instruction set, float images on every vector instruction set; there the generic kernel adds in another
/// order, so that sum, mean and standard deviation may differ by the rounding of double additions, and a minimum or
/// maximum of zero by its sign. A mask that is set everywhere changes no bit.
///
/// The deviation is sqrt(E[x^2] - Mean^2) in double precision, on purpose without a clamp: NaN for about half of the
/// float images that hold one constant; of few digits where pixels are far from zero compared with their spread (floats
/// between 1e6 and 1e6 + 1: 0.245 for 0.290; uint32 between 4294967195 and 4294967294: 45.3 for 28.8). A NaN pixel
/// makes sum, mean and deviation NaN; as minimum or maximum it stays until the next number, so these depend on where
/// NaN lie. A part without pixels adds nothing to a merge.
///
/// An image on a GPU (framework/gpu) is measured there, without a mask. Its number, minimum, maximum and, where the
/// absolute values sum to less than 2^53, the sum of integers are those of the CPU; other sums, mean and deviation may
/// differ by the rounding of double additions, whose order the GPU's number of multiprocessors decides. Every run on
/// one GPU gives the same bits.
namespace orlix::imaproc::glbmsr
{

using attr::InImg;
using attr::InImg3d;
using attr::InMaskImg;
using attr::InMaskYStrip2d;
using attr::InMaskZStrip3d;
using attr::InSubImg2d;
using attr::InSubImg3d;
using attr::InSubMaskImg2d;
using attr::InSubMaskImg3d;
using attr::InYStrip2d;
using attr::InZStrip3d;
using attr::OutPIStatsResult;
using attr::OutStatsResult;
using attr::PlanIndexedStatsResult;
using attr::StatsResult;

struct PlainStats;
struct MaskedStats;

/// The statistics of a whole image: all its plans merged into one result.
class ORLIX_API StatsMsrLvl1 final : public Processor<StatsMsrLvl1, Level, InImg, OutStatsResult>
{
public:
    static LevelClass processorClass;
};

/// The statistics of one strip of rows.
class ORLIX_API StatsMsr2dLvl3 final
    : public Algorithm<StatsMsr2dLvl3, MeasureStrip<PlainStats>, InYStrip2d, OutStatsResult>
{
public:
    static AlgorithmClass processorClass;
};

/// The statistics of one 2d plan.
class ORLIX_API StatsMsr2dLvl2 final : public Processor<StatsMsr2dLvl2, Level, InSubImg2d, OutStatsResult>
{
public:
    static LevelClass processorClass;
    static GpuVariant gpuVariant;
};

/// The statistics of every 2d plan of an image.
class ORLIX_API StatsMsr2dLvl1 final : public Processor<StatsMsr2dLvl1, Level, InImg, OutPIStatsResult>
{
public:
    static LevelClass processorClass;
};

/// The statistics of one slab of planes.
class ORLIX_API StatsMsr3dLvl3 final
    : public Algorithm<StatsMsr3dLvl3, MeasureStrip<PlainStats>, InZStrip3d, OutStatsResult>
{
public:
    static AlgorithmClass processorClass;
};

/// The statistics of one volume.
class ORLIX_API StatsMsr3dLvl2 final : public Processor<StatsMsr3dLvl2, Level, InSubImg3d, OutStatsResult>
{
public:
    static LevelClass processorClass;
    static GpuVariant gpuVariant;
};

/// The statistics of every volume of an image.
class ORLIX_API StatsMsr3dLvl1 final : public Processor<StatsMsr3dLvl1, Level, InImg3d, OutPIStatsResult>
{
public:
    static LevelClass processorClass;
};

/// The statistics of a whole image under a mask: all its plans merged into one result.
class ORLIX_API StatsMaskMsrLvl1 final : public Processor<StatsMaskMsrLvl1, Level, InImg, InMaskImg, OutStatsResult>
{
public:
    static LevelClass processorClass;
};

/// The statistics of one strip of rows under a mask.
class ORLIX_API StatsMaskMsr2dLvl3 final
    : public Algorithm<StatsMaskMsr2dLvl3, MeasureStrip<MaskedStats>, InYStrip2d, InMaskYStrip2d, OutStatsResult>
{
public:
    static AlgorithmClass processorClass;
};

/// The statistics of one 2d plan under a mask.
class ORLIX_API StatsMaskMsr2dLvl2 final
    : public Processor<StatsMaskMsr2dLvl2, Level, InSubImg2d, InSubMaskImg2d, OutStatsResult>
{
public:
    static LevelClass processorClass;
};

/// The statistics of every 2d plan of an image under a mask.
class ORLIX_API StatsMaskMsr2dLvl1 final
    : public Processor<StatsMaskMsr2dLvl1, Level, InImg, InMaskImg, OutPIStatsResult>
{
public:
    static LevelClass processorClass;
};

/// The statistics of one slab of planes under a mask.
class ORLIX_API StatsMaskMsr3dLvl3 final
    : public Algorithm<StatsMaskMsr3dLvl3, MeasureStrip<MaskedStats>, InZStrip3d, InMaskZStrip3d, OutStatsResult>
{
public:
    static AlgorithmClass processorClass;
};

/// The statistics of one volume under a mask.
class ORLIX_API StatsMaskMsr3dLvl2 final
    : public Processor<StatsMaskMsr3dLvl2, Level, InSubImg3d, InSubMaskImg3d, OutStatsResult>
{
public:
    static LevelClass processorClass;
};

/// The statistics of every volume of an image under a mask.
class ORLIX_API StatsMaskMsr3dLvl1 final
    : public Processor<StatsMaskMsr3dLvl1, Level, InImg3d, InMaskImg, OutPIStatsResult>
{
public:
    static LevelClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
