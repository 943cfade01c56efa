#pragma once

#include <framework/attribute/ImageAttributes.hpp>
#include <framework/attribute/Projection.hpp>
#include <framework/process/Processor.hpp>

namespace orlix::imaproc::glbmsr
{

using attr::eProjStatType;
using attr::InSeqYStrip2d;
using attr::OutSingleYStrip2d;

/// A statistic of the pixels of a strip of rows over all times, written into the same rows of another image, of any of
/// the seven pixel types. Self has `static constexpr eProjStatType statistic`.
template <class Self>
class SeqProjectionStrip : public Algorithm<Self, InSeqYStrip2d, OutSingleYStrip2d>
{
public:
    /// Enters the kernels that this machine can run, for every pair of types.
    static void functionRegistration(AlgorithmFunctionSelector& selector);

    template <class T, core::eInstructionSet::domain D>
    core::ProcessingResult genericProcessFunction(ProcessingInfo info);
};

/// The maximum of every pixel of a strip of rows over all times.
class ORLIX_API SeqProjectionMaxImgLvl3 final : public SeqProjectionStrip<SeqProjectionMaxImgLvl3>
{
public:
    static constexpr eProjStatType statistic = eProjStatType::ePST_Max;

    SeqProjectionMaxImgLvl3();
    ~SeqProjectionMaxImgLvl3() override;

    static AlgorithmClass processorClass;
};

/// The mean of every pixel of a strip of rows over all times.
class ORLIX_API SeqProjectionMeanImgLvl3 final : public SeqProjectionStrip<SeqProjectionMeanImgLvl3>
{
public:
    static constexpr eProjStatType statistic = eProjStatType::ePST_Mean;

    SeqProjectionMeanImgLvl3();
    ~SeqProjectionMeanImgLvl3() override;

    static AlgorithmClass processorClass;
};

/// The median of every pixel of a strip of rows over all times.
class ORLIX_API SeqProjectionMedianImgLvl3 final : public SeqProjectionStrip<SeqProjectionMedianImgLvl3>
{
public:
    static constexpr eProjStatType statistic = eProjStatType::ePST_Median;

    SeqProjectionMedianImgLvl3();
    ~SeqProjectionMedianImgLvl3() override;

    static AlgorithmClass processorClass;
};

/// The minimum of every pixel of a strip of rows over all times.
class ORLIX_API SeqProjectionMinImgLvl3 final : public SeqProjectionStrip<SeqProjectionMinImgLvl3>
{
public:
    static constexpr eProjStatType statistic = eProjStatType::ePST_Min;

    SeqProjectionMinImgLvl3();
    ~SeqProjectionMinImgLvl3() override;

    static AlgorithmClass processorClass;
};

/// The standard deviation of every pixel of a strip of rows over all times.
class ORLIX_API SeqProjectionStdDevImgLvl3 final : public SeqProjectionStrip<SeqProjectionStdDevImgLvl3>
{
public:
    static constexpr eProjStatType statistic = eProjStatType::ePST_StdDev;

    SeqProjectionStdDevImgLvl3();
    ~SeqProjectionStdDevImgLvl3() override;

    static AlgorithmClass processorClass;
};

/// The sum of every pixel of a strip of rows over all times.
class ORLIX_API SeqProjectionSumImgLvl3 final : public SeqProjectionStrip<SeqProjectionSumImgLvl3>
{
public:
    static constexpr eProjStatType statistic = eProjStatType::ePST_Sum;

    SeqProjectionSumImgLvl3();
    ~SeqProjectionSumImgLvl3() override;

    static AlgorithmClass processorClass;
};

/// The variance of every pixel of a strip of rows over all times.
class ORLIX_API SeqProjectionVarImgLvl3 final : public SeqProjectionStrip<SeqProjectionVarImgLvl3>
{
public:
    static constexpr eProjStatType statistic = eProjStatType::ePST_Var;

    SeqProjectionVarImgLvl3();
    ~SeqProjectionVarImgLvl3() override;

    static AlgorithmClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
