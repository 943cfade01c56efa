#pragma once

#include <framework/attribute/ImageAttributes.hpp>
#include <framework/attribute/Projection.hpp>
#include <framework/process/Processor.hpp>

namespace orlix::imaproc::glbmsr
{

using attr::eProjStatType;
using attr::InYStrip2d;
using attr::OutProjStat;

/// The part of a Y projection that one strip is: a number for each of its rows. Self has `static constexpr
/// eProjStatType statistic`.
template <class Self>
class YProjectionStrip : public Algorithm<Self, InYStrip2d, OutProjStat>
{
public:
    /// Enters the kernels that this machine can run; of the median, the generic one alone.
    static void functionRegistration(AlgorithmFunctionSelector& selector);

    template <class T, core::eInstructionSet::domain D>
    core::ProcessingResult genericProcessFunction(ProcessingInfo info);
};

/// The maximum of every row of a strip of rows.
class ORLIX_API YProjectionMax2dLvl3 final : public YProjectionStrip<YProjectionMax2dLvl3>
{
public:
    static constexpr eProjStatType statistic = eProjStatType::ePST_Max;

    YProjectionMax2dLvl3();
    ~YProjectionMax2dLvl3() override;

    static AlgorithmClass processorClass;
};

/// The mean of every row of a strip of rows.
class ORLIX_API YProjectionMean2dLvl3 final : public YProjectionStrip<YProjectionMean2dLvl3>
{
public:
    static constexpr eProjStatType statistic = eProjStatType::ePST_Mean;

    YProjectionMean2dLvl3();
    ~YProjectionMean2dLvl3() override;

    static AlgorithmClass processorClass;
};

/// The median of every row of a strip of rows.
class ORLIX_API YProjectionMedian2dLvl3 final : public YProjectionStrip<YProjectionMedian2dLvl3>
{
public:
    static constexpr eProjStatType statistic = eProjStatType::ePST_Median;

    YProjectionMedian2dLvl3();
    ~YProjectionMedian2dLvl3() override;

    static AlgorithmClass processorClass;
};

/// The minimum of every row of a strip of rows.
class ORLIX_API YProjectionMin2dLvl3 final : public YProjectionStrip<YProjectionMin2dLvl3>
{
public:
    static constexpr eProjStatType statistic = eProjStatType::ePST_Min;

    YProjectionMin2dLvl3();
    ~YProjectionMin2dLvl3() override;

    static AlgorithmClass processorClass;
};

/// The standard deviation of every row of a strip of rows.
class ORLIX_API YProjectionStdDev2dLvl3 final : public YProjectionStrip<YProjectionStdDev2dLvl3>
{
public:
    static constexpr eProjStatType statistic = eProjStatType::ePST_StdDev;

    YProjectionStdDev2dLvl3();
    ~YProjectionStdDev2dLvl3() override;

    static AlgorithmClass processorClass;
};

/// The sum of every row of a strip of rows.
class ORLIX_API YProjectionSum2dLvl3 final : public YProjectionStrip<YProjectionSum2dLvl3>
{
public:
    static constexpr eProjStatType statistic = eProjStatType::ePST_Sum;

    YProjectionSum2dLvl3();
    ~YProjectionSum2dLvl3() override;

    static AlgorithmClass processorClass;
};

/// The variance of every row of a strip of rows.
class ORLIX_API YProjectionVar2dLvl3 final : public YProjectionStrip<YProjectionVar2dLvl3>
{
public:
    static constexpr eProjStatType statistic = eProjStatType::ePST_Var;

    YProjectionVar2dLvl3();
    ~YProjectionVar2dLvl3() override;

    static AlgorithmClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
