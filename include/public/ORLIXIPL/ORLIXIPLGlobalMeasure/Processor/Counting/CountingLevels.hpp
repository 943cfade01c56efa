#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Histogram/HistogramLevels.hpp>

#include <framework/attribute/IndexableUInt64.hpp>

/// What the counts of objects share: a label image has an object for every bin of width 1 of its histogram that is
/// not empty, but for the first bin, which is the background, whatever it holds. A histogram cannot tell all labels
/// beyond 2^24 apart: where there are such, the labels are told apart by a bit for each from the lowest to the highest,
/// up to 512 MiB.
namespace orlix::imaproc::glbmsr
{

using attr::IndexableUInt64;
using attr::InLabelImg;
using attr::InLabelImg3d;
using attr::InSubLabelImg2d;
using attr::InSubLabelImg3d;
using attr::OutIndexableUInt64;
using attr::OutPIIndexableUInt64;
using attr::PlanIndexedIndexableUInt64;

/// The objects of one plan or volume: the statistics find the range of its labels, and a histogram counts them.
class ORLIX_API ObjectCount : public BaseAsync1Processor
{
protected:
    virtual const ProcessorClass& getStatisticsClass() const = 0;
    virtual const ProcessorClass& getHistogramClass() const = 0;

    void clearIntermediateDataDerived() override;
    std::size_t retrieveSequenceInfo() const override { return 2; }
    Ptr<BaseProcessor> makeStage(std::size_t index) override;
    core::ProcessingResult retrieveProvider(ePriority priority, Ptr<ActionProvider>& provider) override;
    core::ProcessingResult postProcess() override;

private:
    using BaseAsync1Processor::retrieveProvider;

    Ptr<BaseProcessor> statistics_;
    Ptr<attr::HistogramData> histogram_; ///< null where labels are told apart by bits
    std::uint64_t nbLabels_ = 0;
};

/// The objects of one 2d plan.
class ORLIX_API Counting2dMsrLvl2 final
    : public Processor<Counting2dMsrLvl2, ObjectCount, InSubLabelImg2d, OutIndexableUInt64>
{
public:
    static ProcessorClass processorClass;

protected:
    const ProcessorClass& getStatisticsClass() const override { return StatsMsr2dLvl2::processorClass; }
    const ProcessorClass& getHistogramClass() const override { return HistogramMsr2dLvl1::processorClass; }
};

/// The objects of every 2d plan of a label image.
class ORLIX_API Counting2dMsrLvl1 final : public Processor<Counting2dMsrLvl1, Level, InLabelImg, OutPIIndexableUInt64>
{
public:
    static LevelClass processorClass;
};

/// The objects of one volume.
class ORLIX_API Counting3dMsrLvl2 final
    : public Processor<Counting3dMsrLvl2, ObjectCount, InSubLabelImg3d, OutIndexableUInt64>
{
public:
    static ProcessorClass processorClass;

protected:
    const ProcessorClass& getStatisticsClass() const override { return StatsMsr3dLvl2::processorClass; }
    const ProcessorClass& getHistogramClass() const override { return HistogramMsr3dLvl1::processorClass; }
};

/// The objects of every volume of a label image.
class ORLIX_API Counting3dMsrLvl1 final : public Processor<Counting3dMsrLvl1, Level, InLabelImg3d, OutPIIndexableUInt64>
{
public:
    static LevelClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
