#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Stats/StatsLevels.hpp>

#include <framework/attribute/NCCResult.hpp>
#include <framework/attribute/PearsonCCResult.hpp>

/// What the correlations of two images share: the statistics of both come first, and their means are handed to the
/// strips.
///
/// Normalized cross correlations sum deviations in single precision over 1024 pixels at most, in 16 lanes, and in
/// double from there on; so results are within 1e-5 of those of double precision for natural images. Sums over two
/// images of one type of 8 or 16 bits are exact. Pearson correlations are computed in double precision; products are
/// summed over one row at most, in 16 lanes. All instruction sets give the same bits, but that the means and deviations
/// of float images may differ in the generic one by the rounding of double additions.
namespace orlix::imaproc::glbmsr
{

using attr::InFactor;
using attr::InImg1;
using attr::InImg2;
using attr::InImg3d1;
using attr::InImg3d2;
using attr::InImgMean1;
using attr::InImgMean2;
using attr::InOffset1;
using attr::InOffset2;
using attr::InSubImg2d1;
using attr::InSubImg2d2;
using attr::InSubImg3d1;
using attr::InSubImg3d2;
using attr::InYStrip2d1;
using attr::InYStrip2d2;
using attr::InZStrip3d1;
using attr::InZStrip3d2;
using attr::NCCResult;
using attr::OutNCCResult;
using attr::OutPearsonCCResult;
using attr::OutPINCCResult;
using attr::OutPIPearsonCCResult;
using attr::PearsonCCResult;
using attr::PlanIndexedNCCResult;
using attr::PlanIndexedPearsonCCResult;

/// A pair of sub images in three stages: the statistics of the first, those of the second, and the strips of both, to
/// which they are handed down.
class ORLIX_API CorrelationLevel : public Level
{
protected:
    struct Deviations
    {
        double mean;
        double stdDev;
    };

    /// Of one sub image.
    virtual const ProcessorClass& getStatisticsClass() const = 0;

    void clearIntermediateDataDerived() override;
    std::size_t retrieveSequenceInfo() const override { return 3; }
    Ptr<BaseProcessor> makeStage(std::size_t index) override;

    /// What the first two stages found of image 0 or 1.
    Deviations getDeviations(std::size_t image) const;

private:
    Ptr<BaseProcessor> statistics_[2];
};

class ORLIX_API NCCLevel : public CorrelationLevel
{
protected:
    void prepareChild(BaseProcessor& child, std::size_t index) override;
};

class ORLIX_API PearsonCCLevel : public CorrelationLevel
{
protected:
    void prepareChild(BaseProcessor& child, std::size_t index) override;
};

/// A pair of strips.
class ORLIX_API NCCStrip : public BaseProcessingAlgorithm
{
public:
    /// Enters the kernels that this machine can run, for every pair of types.
    static void functionRegistration(AlgorithmFunctionSelector& selector);

    template <class T>
    core::ProcessingResult genericProcessFunction(ProcessingInfo info);
};

class ORLIX_API PearsonCCStrip : public BaseProcessingAlgorithm
{
public:
    /// Enters the kernels that this machine can run, for every pair of types.
    static void functionRegistration(AlgorithmFunctionSelector& selector);

    template <class T>
    core::ProcessingResult genericProcessFunction(ProcessingInfo info);
};

/// The normalized cross correlation of a pair of strips of rows.
class ORLIX_API NormalizedCrossCorrelationMsr2dLvl3 final
    : public Algorithm<NormalizedCrossCorrelationMsr2dLvl3, NCCStrip, InYStrip2d1, InYStrip2d2, InOffset1, InOffset2,
                       OutNCCResult>
{
public:
    static AlgorithmClass processorClass;
};

/// The normalized cross correlation of one pair of plans.
class ORLIX_API NormalizedCrossCorrelationMsr2dLvl2 final
    : public Processor<NormalizedCrossCorrelationMsr2dLvl2, NCCLevel, InSubImg2d1, InSubImg2d2, OutNCCResult>
{
public:
    static LevelClass processorClass;

protected:
    const ProcessorClass& getStatisticsClass() const override { return StatsMsr2dLvl2::processorClass; }
};

/// The normalized cross correlation of every pair of plans of two images.
class ORLIX_API NormalizedCrossCorrelationMsr2dLvl1 final
    : public Processor<NormalizedCrossCorrelationMsr2dLvl1, Level, InImg1, InImg2, OutPINCCResult>
{
public:
    static LevelClass processorClass;
};

/// The normalized cross correlation of a pair of slabs of planes.
class ORLIX_API NormalizedCrossCorrelationMsr3dLvl3 final
    : public Algorithm<NormalizedCrossCorrelationMsr3dLvl3, NCCStrip, InZStrip3d1, InZStrip3d2, InOffset1, InOffset2,
                       OutNCCResult>
{
public:
    static AlgorithmClass processorClass;
};

/// The normalized cross correlation of one pair of volumes.
class ORLIX_API NormalizedCrossCorrelationMsr3dLvl2 final
    : public Processor<NormalizedCrossCorrelationMsr3dLvl2, NCCLevel, InSubImg3d1, InSubImg3d2, OutNCCResult>
{
public:
    static LevelClass processorClass;

protected:
    const ProcessorClass& getStatisticsClass() const override { return StatsMsr3dLvl2::processorClass; }
};

/// The normalized cross correlation of every pair of volumes of two images.
class ORLIX_API NormalizedCrossCorrelationMsr3dLvl1 final
    : public Processor<NormalizedCrossCorrelationMsr3dLvl1, Level, InImg3d1, InImg3d2, OutPINCCResult>
{
public:
    static LevelClass processorClass;
};

/// The Pearson correlation of a pair of strips of rows.
class ORLIX_API PearsonCorrelationCoefficient2dLvl3 final
    : public Algorithm<PearsonCorrelationCoefficient2dLvl3, PearsonCCStrip, InYStrip2d1, InYStrip2d2, InImgMean1,
                       InImgMean2, InFactor, OutPearsonCCResult>
{
public:
    static AlgorithmClass processorClass;
};

/// The Pearson correlation of one pair of plans.
class ORLIX_API PearsonCorrelationCoefficient2dLvl2 final
    : public Processor<PearsonCorrelationCoefficient2dLvl2, PearsonCCLevel, InSubImg2d1, InSubImg2d2,
                       OutPearsonCCResult>
{
public:
    static LevelClass processorClass;

protected:
    const ProcessorClass& getStatisticsClass() const override { return StatsMsr2dLvl2::processorClass; }
};

/// The Pearson correlation of every pair of plans of two images.
class ORLIX_API PearsonCorrelationCoefficient2dLvl1 final
    : public Processor<PearsonCorrelationCoefficient2dLvl1, Level, InImg1, InImg2, OutPIPearsonCCResult>
{
public:
    static LevelClass processorClass;
};

/// The Pearson correlation of a pair of slabs of planes.
class ORLIX_API PearsonCorrelationCoefficient3dLvl3 final
    : public Algorithm<PearsonCorrelationCoefficient3dLvl3, PearsonCCStrip, InZStrip3d1, InZStrip3d2, InImgMean1,
                       InImgMean2, InFactor, OutPearsonCCResult>
{
public:
    static AlgorithmClass processorClass;
};

/// The Pearson correlation of one pair of volumes.
class ORLIX_API PearsonCorrelationCoefficient3dLvl2 final
    : public Processor<PearsonCorrelationCoefficient3dLvl2, PearsonCCLevel, InSubImg3d1, InSubImg3d2,
                       OutPearsonCCResult>
{
public:
    static LevelClass processorClass;

protected:
    const ProcessorClass& getStatisticsClass() const override { return StatsMsr3dLvl2::processorClass; }
};

/// The Pearson correlation of every pair of volumes of two images.
class ORLIX_API PearsonCorrelationCoefficient3dLvl1 final
    : public Processor<PearsonCorrelationCoefficient3dLvl1, Level, InImg3d1, InImg3d2, OutPIPearsonCCResult>
{
public:
    static LevelClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
