#pragma once

#include <framework/attribute/Projection.hpp>
#include <framework/process/Level.hpp>

#include <optional>

/// What the projections share: a statistic of every column, row or pixel along an axis. A level has a class of strips
/// for each statistic, in the order of eProjStatType; any value beyond them stands for the first. Neither threads, nor
/// the layout of the pixels in memory, nor the instruction set change a bit of a result.
namespace orlix::imaproc::glbmsr
{

using attr::Doubles;
using attr::eProjStatType;
using attr::InImg3d;
using attr::InProjStatType;
using attr::InSeqImg;
using attr::InSeqYStrip2d;
using attr::InSubImg2d;
using attr::InSubImg3d;
using attr::InSubSeqImg2d;
using attr::InXStrip2d;
using attr::InYStrip2d;
using attr::OutImg2d;
using attr::OutProjStat;
using attr::OutProjStat1;
using attr::OutProjStat2;
using attr::OutSingleImg;
using attr::OutSingleYStrip2d;

class ORLIX_API ProjectionLevel : public Level
{
protected:
    std::size_t chooseChild() const override;
};

/// A strip of a projection, for any statistic.
class ORLIX_API ProjectionStrip : public BaseProcessingAlgorithm
{
protected:
    virtual eProjStatType getStatistic() const = 0;
};

/// What one strip adds to an X projection: a number for every column.
class ORLIX_API XProjectionStrip : public ProjectionStrip
{
public:
    /// Enters the kernels that this machine can run; of a median, only the generic one.
    static void functionRegistration(AlgorithmFunctionSelector& selector, eProjStatType statistic);

    template <class T>
    core::ProcessingResult genericProcessFunction(ProcessingInfo info);
};

/// The part of a Y projection that one strip is: a number for each of its rows.
class ORLIX_API YProjectionStrip : public ProjectionStrip
{
public:
    /// Enters the kernels that this machine can run; of a median, only the generic one.
    static void functionRegistration(AlgorithmFunctionSelector& selector, eProjStatType statistic);

    template <class T>
    core::ProcessingResult genericProcessFunction(ProcessingInfo info);
};

/// What is kept of the pixels of a strip of rows when only some of the times have been there.
struct SequenceSums
{
    std::size_t nbTimes = 0; ///< of the whole sequence
    bool isFirst = true;     ///< of the parts of the times
    bool isLast = true;
    double* sums = nullptr;
    double* squares = nullptr;
    std::byte* extremes = nullptr; ///< pixels
};

/// A statistic of the pixels of a strip of rows over all times, written into the same rows of another image, of any of
/// the seven pixel types.
class ORLIX_API SeqProjectionStrip : public ProjectionStrip
{
public:
    /// The strip has some of the times only, which come in their order; where it has the last ones, pixels are written.
    void continueSums(const SequenceSums& sums) { kept_ = sums; }

    /// Enters the kernels that this machine can run, for every pair of types.
    static void functionRegistration(AlgorithmFunctionSelector& selector, eProjStatType statistic);

    template <class T>
    core::ProcessingResult genericProcessFunction(ProcessingInfo info);

private:
    std::optional<SequenceSums> kept_;
};

/// The strips of one statistic.
template <class Strip, eProjStatType Statistic>
class StatisticStrip : public Strip
{
public:
    static void functionRegistration(AlgorithmFunctionSelector& selector)
    {
        Strip::functionRegistration(selector, Statistic);
    }

protected:
    eProjStatType getStatistic() const final { return Statistic; }
};

/// The maximum of every column of a strip of rows.
class ORLIX_API XProjectionMax2dLvl3 final
    : public Algorithm<XProjectionMax2dLvl3, StatisticStrip<XProjectionStrip, eProjStatType::ePST_Max>, InYStrip2d,
                       OutProjStat>
{
public:
    static AlgorithmClass processorClass;
};

/// The mean of every column: the sums over a strip of rows.
class ORLIX_API XProjectionMean2dLvl3 final
    : public Algorithm<XProjectionMean2dLvl3, StatisticStrip<XProjectionStrip, eProjStatType::ePST_Mean>, InYStrip2d,
                       OutProjStat>
{
public:
    static AlgorithmClass processorClass;
};

/// The median of every column of a strip of columns.
class ORLIX_API XProjectionMedian2dLvl3 final
    : public Algorithm<XProjectionMedian2dLvl3, StatisticStrip<XProjectionStrip, eProjStatType::ePST_Median>,
                       InXStrip2d, OutProjStat>
{
public:
    static AlgorithmClass processorClass;
};

/// The minimum of every column of a strip of rows.
class ORLIX_API XProjectionMin2dLvl3 final
    : public Algorithm<XProjectionMin2dLvl3, StatisticStrip<XProjectionStrip, eProjStatType::ePST_Min>, InYStrip2d,
                       OutProjStat>
{
public:
    static AlgorithmClass processorClass;
};

/// The standard deviation of every column: sums, and sums of squares, over a strip of rows.
class ORLIX_API XProjectionStdDev2dLvl3 final
    : public Algorithm<XProjectionStdDev2dLvl3, StatisticStrip<XProjectionStrip, eProjStatType::ePST_StdDev>,
                       InYStrip2d, OutProjStat1, OutProjStat2>
{
public:
    static AlgorithmClass processorClass;
};

/// The sum of every column: the sums over a strip of rows.
class ORLIX_API XProjectionSum2dLvl3 final
    : public Algorithm<XProjectionSum2dLvl3, StatisticStrip<XProjectionStrip, eProjStatType::ePST_Sum>, InYStrip2d,
                       OutProjStat>
{
public:
    static AlgorithmClass processorClass;
};

/// The variance of every column: sums, and sums of squares, over a strip of rows.
class ORLIX_API XProjectionVar2dLvl3 final
    : public Algorithm<XProjectionVar2dLvl3, StatisticStrip<XProjectionStrip, eProjStatType::ePST_Var>, InYStrip2d,
                       OutProjStat1, OutProjStat2>
{
public:
    static AlgorithmClass processorClass;
};

/// A statistic of every column of a 2d image.
class ORLIX_API XProjection2dLvl1 final
    : public Processor<XProjection2dLvl1, ProjectionLevel, InSubImg2d, InProjStatType, OutProjStat>
{
public:
    static LevelClass processorClass;

protected:
    std::size_t getMinStripElements() const override;
    core::ProcessingResult runDerived(const RunContext& context) override;
    void prepareChild(BaseProcessor& child, std::size_t index) override;
    core::ProcessingResult postProcess() override;
    void clearIntermediateDataDerived() override;

private:
    Ptr<const image::BaseImage> loaded_; ///< for columns of a plan that is fetched
};

/// The maximum of every row of a strip of rows.
class ORLIX_API YProjectionMax2dLvl3 final
    : public Algorithm<YProjectionMax2dLvl3, StatisticStrip<YProjectionStrip, eProjStatType::ePST_Max>, InYStrip2d,
                       OutProjStat>
{
public:
    static AlgorithmClass processorClass;
};

/// The mean of every row of a strip of rows.
class ORLIX_API YProjectionMean2dLvl3 final
    : public Algorithm<YProjectionMean2dLvl3, StatisticStrip<YProjectionStrip, eProjStatType::ePST_Mean>, InYStrip2d,
                       OutProjStat>
{
public:
    static AlgorithmClass processorClass;
};

/// The median of every row of a strip of rows.
class ORLIX_API YProjectionMedian2dLvl3 final
    : public Algorithm<YProjectionMedian2dLvl3, StatisticStrip<YProjectionStrip, eProjStatType::ePST_Median>,
                       InYStrip2d, OutProjStat>
{
public:
    static AlgorithmClass processorClass;
};

/// The minimum of every row of a strip of rows.
class ORLIX_API YProjectionMin2dLvl3 final
    : public Algorithm<YProjectionMin2dLvl3, StatisticStrip<YProjectionStrip, eProjStatType::ePST_Min>, InYStrip2d,
                       OutProjStat>
{
public:
    static AlgorithmClass processorClass;
};

/// The standard deviation of every row of a strip of rows.
class ORLIX_API YProjectionStdDev2dLvl3 final
    : public Algorithm<YProjectionStdDev2dLvl3, StatisticStrip<YProjectionStrip, eProjStatType::ePST_StdDev>,
                       InYStrip2d, OutProjStat>
{
public:
    static AlgorithmClass processorClass;
};

/// The sum of every row of a strip of rows.
class ORLIX_API YProjectionSum2dLvl3 final
    : public Algorithm<YProjectionSum2dLvl3, StatisticStrip<YProjectionStrip, eProjStatType::ePST_Sum>, InYStrip2d,
                       OutProjStat>
{
public:
    static AlgorithmClass processorClass;
};

/// The variance of every row of a strip of rows.
class ORLIX_API YProjectionVar2dLvl3 final
    : public Algorithm<YProjectionVar2dLvl3, StatisticStrip<YProjectionStrip, eProjStatType::ePST_Var>, InYStrip2d,
                       OutProjStat>
{
public:
    static AlgorithmClass processorClass;
};

/// A statistic of every row of a 2d image.
class ORLIX_API YProjection2dLvl1 final
    : public Processor<YProjection2dLvl1, ProjectionLevel, InSubImg2d, InProjStatType, OutProjStat>
{
public:
    static LevelClass processorClass;
};

/// The maximum of every pixel of a strip of rows over all times.
class ORLIX_API SeqProjectionMaxImgLvl3 final
    : public Algorithm<SeqProjectionMaxImgLvl3, StatisticStrip<SeqProjectionStrip, eProjStatType::ePST_Max>,
                       InSeqYStrip2d, OutSingleYStrip2d>
{
public:
    static AlgorithmClass processorClass;
};

/// The mean of every pixel of a strip of rows over all times.
class ORLIX_API SeqProjectionMeanImgLvl3 final
    : public Algorithm<SeqProjectionMeanImgLvl3, StatisticStrip<SeqProjectionStrip, eProjStatType::ePST_Mean>,
                       InSeqYStrip2d, OutSingleYStrip2d>
{
public:
    static AlgorithmClass processorClass;
};

/// The median of every pixel of a strip of rows over all times.
class ORLIX_API SeqProjectionMedianImgLvl3 final
    : public Algorithm<SeqProjectionMedianImgLvl3, StatisticStrip<SeqProjectionStrip, eProjStatType::ePST_Median>,
                       InSeqYStrip2d, OutSingleYStrip2d>
{
public:
    static AlgorithmClass processorClass;
};

/// The minimum of every pixel of a strip of rows over all times.
class ORLIX_API SeqProjectionMinImgLvl3 final
    : public Algorithm<SeqProjectionMinImgLvl3, StatisticStrip<SeqProjectionStrip, eProjStatType::ePST_Min>,
                       InSeqYStrip2d, OutSingleYStrip2d>
{
public:
    static AlgorithmClass processorClass;
};

/// The standard deviation of every pixel of a strip of rows over all times.
class ORLIX_API SeqProjectionStdDevImgLvl3 final
    : public Algorithm<SeqProjectionStdDevImgLvl3, StatisticStrip<SeqProjectionStrip, eProjStatType::ePST_StdDev>,
                       InSeqYStrip2d, OutSingleYStrip2d>
{
public:
    static AlgorithmClass processorClass;
};

/// The sum of every pixel of a strip of rows over all times.
class ORLIX_API SeqProjectionSumImgLvl3 final
    : public Algorithm<SeqProjectionSumImgLvl3, StatisticStrip<SeqProjectionStrip, eProjStatType::ePST_Sum>,
                       InSeqYStrip2d, OutSingleYStrip2d>
{
public:
    static AlgorithmClass processorClass;
};

/// The variance of every pixel of a strip of rows over all times.
class ORLIX_API SeqProjectionVarImgLvl3 final
    : public Algorithm<SeqProjectionVarImgLvl3, StatisticStrip<SeqProjectionStrip, eProjStatType::ePST_Var>,
                       InSeqYStrip2d, OutSingleYStrip2d>
{
public:
    static AlgorithmClass processorClass;
};

/// A statistic of every pixel of a sequence. One that is fetched comes in blocks that fit memory.
class ORLIX_API SequenceLevel : public ProjectionLevel
{
protected:
    core::ProcessingResult preProcess() override;
    core::ProcessingResult retrieveProvider(ePriority priority, Ptr<ActionProvider>& provider) override;
    void prepareChild(BaseProcessor& child, std::size_t index) override;
    void clearIntermediateDataDerived() override;

    virtual Ptr<const image::BaseImage> getSequence() const = 0;

private:
    class Blocks;
    Ptr<const image::BaseImage> sequence_;
};

/// A statistic of every pixel over the times of one 2d sequence.
class ORLIX_API SeqProjectionImgLvl2 final
    : public Processor<SeqProjectionImgLvl2, SequenceLevel, InSubSeqImg2d, InProjStatType, OutSingleImg>
{
public:
    static LevelClass processorClass;

protected:
    Ptr<const image::BaseImage> getSequence() const override { return attribute<InSubSeqImg2d>().get(); }
};

/// A statistic of every pixel over the times of an image.
class ORLIX_API SeqProjectionImgLvl1 final
    : public Processor<SeqProjectionImgLvl1, Level, InSeqImg, InProjStatType, OutSingleImg>
{
public:
    static LevelClass processorClass;
};

/// A statistic of every pixel over the planes of one volume, as over the times of a sequence.
class ORLIX_API ZProjectionImgLvl2 final
    : public Processor<ZProjectionImgLvl2, SequenceLevel, InSubImg3d, InProjStatType, OutImg2d>
{
public:
    static LevelClass processorClass;

protected:
    Ptr<const image::BaseImage> getSequence() const override { return value<InSubImg3d>().getPlanesAsSequence(); }
};

/// A statistic of every pixel over the planes of an image, for each channel and time.
class ORLIX_API ZProjectionImgLvl1 final
    : public Processor<ZProjectionImgLvl1, Level, InImg3d, InProjStatType, OutImg2d>
{
public:
    static LevelClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
