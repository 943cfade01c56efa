#pragma once

#include <framework/attribute/HistogramData.hpp>
#include <framework/attribute/ImageAttributes.hpp>
#include <framework/process/Level.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Stats/StatsLevels.hpp>

#include <cstdint>
#include <vector>

/// What the histogram measures share, with a mask and without: which bins a histogram has, and how pixels are
/// counted into them. The measures differ in how much of the image one result covers.
///
/// Range: Min and Max of the parameters where they are user-defined, in order and within the pixel type; else minimum
/// and maximum of what is measured. Integer images span Max - Min + 1, float images Max - Min. Width: the parameters'
/// BinWidth, or span / NbClasses, or without either span / 256; at least 1 for integer images, and span / 256 where
/// the wish is too small. A float range of one value makes one bin of width 0; a plan whose mask is empty makes one
/// bin of nothing. NaN is never counted, and where one stays the minimum or maximum of the statistics it narrows
/// the range, so that pixels outside are not counted, either: give bounds. Pixels are compared with the bounds in
/// single precision, and a bin is found in double precision and rounded to single, so that a value just below Max may
/// be lost above the last bin, and values beyond 2^24 share bins. That is the same for every number of threads and
/// instruction set.
namespace orlix::imaproc::glbmsr
{

using attr::createHistoMsrParamsWithBinWidth;
using attr::eMinMaxDefinition;
using attr::HistogramData;
using attr::HistoMsrParams;
using attr::InImg;
using attr::InImg3d;
using attr::InMaskImg;
using attr::InMaskYStrip2d;
using attr::InMaskZStrip3d;
using attr::InOptHistoMsrParams;
using attr::InOutHistogram;
using attr::InSubImg2d;
using attr::InSubImg3d;
using attr::InSubMaskImg2d;
using attr::InSubMaskImg3d;
using attr::InYStrip2d;
using attr::InZStrip3d;
using attr::OutHistogram;
using attr::OutPIHistogram;
using attr::PlanIndexedHistogramData;

/// One strip: counts into the bins of its output.
template <bool IsMasked>
class ORLIX_API HistogramStrip : public BaseProcessingAlgorithm
{
public:
    /// Enters the kernels that this machine can run.
    static void functionRegistration(AlgorithmFunctionSelector& selector);

    template <class T>
    core::ProcessingResult genericProcessFunction(ProcessingInfo info);

    /// The histogram brings its bins along: it is the caller's, whatever it was written by.
    core::ProcessingResult read(data::InputArchive& archive) override;

protected:
    Rule makeRule() const override;
    core::ProcessingResult preProcess() override;

private:
    std::vector<std::uint32_t> tables_; ///< what the kernels count into, kept from strip to strip
};

/// Strips, or plans, into one histogram whose bins are known.
class ORLIX_API HistogramCount : public Level
{
protected:
    Rule makeRule() const override;
    /// Strips are large enough for their bins.
    std::size_t getMinStripPixels() const override;
    std::size_t getMaxParallelPlans() const override;
};

/// A level that fixes the bins before it counts. Its first stage runs the statistics of the same image and mask,
/// unless the user gave the range; at the end it drops the guard bin.
class ORLIX_API Histogram : public HistogramCount
{
public:
    /// The number of bins of a range and a width (1.0 stands for a width of 0), modulo 2^32. Throws
    /// ORLIXBaseProcessingException if the processor's image is not set.
    std::uint32_t getHistoNbClasses(double min, double max, double binWidth) const;

protected:
    virtual const ProcessorClass& getStatisticsClass() const = 0;

    void clearIntermediateDataDerived() override;
    Rule makeRule() const override;
    std::size_t retrieveSequenceInfo() const override { return 2; }
    Ptr<BaseProcessor> makeStage(std::size_t index) override;
    core::ProcessingResult retrieveProvider(ePriority priority, Ptr<ActionProvider>& provider) override;
    core::ProcessingResult postProcess() override;

private:
    using BaseAsync1Processor::retrieveProvider;

    Ptr<BaseProcessor> statistics_;
};

/// One histogram per plan or volume; the parameters are for all of them.
class ORLIX_API HistogramPerPlan : public Level
{
protected:
    Rule makeRule() const override;
};

/// One histogram for all plans of an image.
class ORLIX_API HistogramMsrLvl1 final
    : public Processor<HistogramMsrLvl1, Histogram, InImg, InOptHistoMsrParams, OutHistogram>
{
public:
    static LevelClass processorClass;

protected:
    const ProcessorClass& getStatisticsClass() const override { return StatsMsrLvl1::processorClass; }
};

/// The histogram of one strip of rows.
class ORLIX_API HistogramMsr2dLvl3 final
    : public Algorithm<HistogramMsr2dLvl3, HistogramStrip<false>, InYStrip2d, OutHistogram>
{
public:
    static AlgorithmClass processorClass;
};

/// The histogram of one 2d plan.
class ORLIX_API HistogramMsr2dLvl2 final
    : public Processor<HistogramMsr2dLvl2, Histogram, InSubImg2d, InOptHistoMsrParams, OutHistogram>
{
public:
    static LevelClass processorClass;

protected:
    const ProcessorClass& getStatisticsClass() const override { return StatsMsr2dLvl2::processorClass; }
};

/// The histogram of every 2d plan of an image.
class ORLIX_API HistogramMsr2dLvl1 final
    : public Processor<HistogramMsr2dLvl1, HistogramPerPlan, InImg, InOptHistoMsrParams, OutPIHistogram>
{
public:
    static LevelClass processorClass;
};

/// The histogram of one slab of planes.
class ORLIX_API HistogramMsr3dLvl3 final
    : public Algorithm<HistogramMsr3dLvl3, HistogramStrip<false>, InZStrip3d, OutHistogram>
{
public:
    static AlgorithmClass processorClass;
};

/// The histogram of one volume.
class ORLIX_API HistogramMsr3dLvl2 final
    : public Processor<HistogramMsr3dLvl2, Histogram, InSubImg3d, InOptHistoMsrParams, OutHistogram>
{
public:
    static LevelClass processorClass;

protected:
    const ProcessorClass& getStatisticsClass() const override { return StatsMsr3dLvl2::processorClass; }
};

/// The histogram of every volume of an image.
class ORLIX_API HistogramMsr3dLvl1 final
    : public Processor<HistogramMsr3dLvl1, HistogramPerPlan, InImg3d, InOptHistoMsrParams, OutPIHistogram>
{
public:
    static LevelClass processorClass;
};

/// One histogram for all plans of an image under a mask.
class ORLIX_API HistogramMaskMsrLvl1 final
    : public Processor<HistogramMaskMsrLvl1, Histogram, InImg, InMaskImg, InOptHistoMsrParams, OutHistogram>
{
public:
    static LevelClass processorClass;

protected:
    const ProcessorClass& getStatisticsClass() const override { return StatsMaskMsrLvl1::processorClass; }
};

/// The histogram of one strip of rows under a mask.
class ORLIX_API HistogramMaskMsr2dLvl3 final
    : public Algorithm<HistogramMaskMsr2dLvl3, HistogramStrip<true>, InYStrip2d, InMaskYStrip2d, OutHistogram>
{
public:
    static AlgorithmClass processorClass;
};

/// The histogram of one 2d plan under a mask.
class ORLIX_API HistogramMaskMsr2dLvl2 final
    : public Processor<HistogramMaskMsr2dLvl2, Histogram, InSubImg2d, InSubMaskImg2d, InOptHistoMsrParams, OutHistogram>
{
public:
    static LevelClass processorClass;

protected:
    const ProcessorClass& getStatisticsClass() const override { return StatsMaskMsr2dLvl2::processorClass; }
};

/// The histogram of every 2d plan of an image under a mask.
class ORLIX_API HistogramMaskMsr2dLvl1 final
    : public Processor<HistogramMaskMsr2dLvl1, HistogramPerPlan, InImg, InMaskImg, InOptHistoMsrParams, OutPIHistogram>
{
public:
    static LevelClass processorClass;
};

/// The histogram of one slab of planes under a mask.
class ORLIX_API HistogramMaskMsr3dLvl3 final
    : public Algorithm<HistogramMaskMsr3dLvl3, HistogramStrip<true>, InZStrip3d, InMaskZStrip3d, OutHistogram>
{
public:
    static AlgorithmClass processorClass;
};

/// The histogram of one volume under a mask.
class ORLIX_API HistogramMaskMsr3dLvl2 final
    : public Processor<HistogramMaskMsr3dLvl2, Histogram, InSubImg3d, InSubMaskImg3d, InOptHistoMsrParams, OutHistogram>
{
public:
    static LevelClass processorClass;

protected:
    const ProcessorClass& getStatisticsClass() const override { return StatsMaskMsr3dLvl2::processorClass; }
};

/// The histogram of every volume of an image under a mask.
class ORLIX_API HistogramMaskMsr3dLvl1 final : public Processor<HistogramMaskMsr3dLvl1, HistogramPerPlan, InImg3d,
                                                                InMaskImg, InOptHistoMsrParams, OutPIHistogram>
{
public:
    static LevelClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
