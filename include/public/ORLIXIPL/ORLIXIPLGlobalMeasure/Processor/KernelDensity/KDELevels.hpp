#pragma once

#include <framework/attribute/ImageAttributes.hpp>
#include <framework/attribute/KDEDataSet.hpp>
#include <framework/process/ImageValueExtraction.hpp>
#include <framework/process/Level.hpp>

/// What the density samples of plans and of volumes share. Positions are drawn with replacement, each axis uniformly,
/// with the random generator of the process (framework/core/Random.hpp). On purpose, plans that run at once draw from
/// it in any order: the samples of an image of several plans come again in the next run only where one thread runs them
/// all, or for the same seed and one plan.
namespace orlix::imaproc::glbmsr
{

using attr::eKDEBandwidth;
using attr::InImg;
using attr::InImg3d;
using attr::InKDEBandwidthPolicy;
using attr::InKDENbSamples;
using attr::InOptKDEBandwidthPolicy;
using attr::InOptKDENbSamples;
using attr::InSubImg2d;
using attr::InSubImg3d;
using attr::KDEBandwidthPolicy;
using attr::KDEDataSet;
using attr::OutKDEDataSet;
using attr::OutPIKDEDataSet;
using attr::PlanIndexedKDEDataSet;

/// One plan or volume, read at positions that are drawn: a list of a kind, which an extraction takes as InPositions.
template <class InPositions>
class ORLIX_API DensitySample : public BaseAsync1Processor
{
protected:
    virtual const ProcessorClass& getExtractionClass() const = 0;

    void clearIntermediateDataDerived() override;
    core::ProcessingResult preProcess() override;
    core::ProcessingResult retrieveProvider(ePriority priority, Ptr<ActionProvider>& provider) override;
    core::ProcessingResult postProcess() override;

private:
    using BaseAsync1Processor::retrieveProvider;

    Ptr<typename InPositions::Value> positions_;
    Ptr<BaseProcessor> extraction_;
};

/// The sample of one 2d plan.
class ORLIX_API KernelDensityEstimator2dLvl2 final
    : public Processor<KernelDensityEstimator2dLvl2, DensitySample<attr::InPixels2d>, InSubImg2d, InKDENbSamples,
                       InKDEBandwidthPolicy, OutKDEDataSet>
{
public:
    static ProcessorClass processorClass;

protected:
    const ProcessorClass& getExtractionClass() const override;
};

/// The samples of every 2d plan of an image.
class ORLIX_API KernelDensityEstimator2dLvl1 final
    : public Processor<KernelDensityEstimator2dLvl1, Level, InImg, InOptKDENbSamples, InOptKDEBandwidthPolicy,
                       OutPIKDEDataSet>
{
public:
    static LevelClass processorClass;

protected:
    bool takesAnyOrder() const override { return false; } // they share a generator
};

/// The sample of one volume.
class ORLIX_API KernelDensityEstimator3dLvl2 final
    : public Processor<KernelDensityEstimator3dLvl2, DensitySample<attr::InVoxels3d>, InSubImg3d, InKDENbSamples,
                       InKDEBandwidthPolicy, OutKDEDataSet>
{
public:
    static ProcessorClass processorClass;

protected:
    const ProcessorClass& getExtractionClass() const override;
};

/// The samples of every volume of an image.
class ORLIX_API KernelDensityEstimator3dLvl1 final
    : public Processor<KernelDensityEstimator3dLvl1, Level, InImg3d, InOptKDENbSamples, InOptKDEBandwidthPolicy,
                       OutPIKDEDataSet>
{
public:
    static LevelClass processorClass;

protected:
    bool takesAnyOrder() const override { return false; } // they share a generator
};

} // namespace orlix::imaproc::glbmsr
