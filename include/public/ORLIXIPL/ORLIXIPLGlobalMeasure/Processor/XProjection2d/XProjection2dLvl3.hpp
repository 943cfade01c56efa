#pragma once

#include <framework/attribute/ImageAttributes.hpp>
#include <framework/attribute/Projection.hpp>
#include <framework/process/Processor.hpp>

namespace orlix::imaproc::glbmsr
{

using attr::eProjStatType;
using attr::InXStrip2d;
using attr::InYStrip2d;
using attr::OutProjStat;
using attr::OutProjStat1;
using attr::OutProjStat2;

/// What one strip adds to an X projection: a number for every column. Strip is the strip attribute; Self has `static
/// constexpr eProjStatType statistic`.
template <class Self, class Strip, class... Outputs>
class XProjectionStrip : public Algorithm<Self, Strip, Outputs...>
{
public:
    /// Enters the kernels that this machine can run; of a median, the generic one alone.
    static void functionRegistration(AlgorithmFunctionSelector& selector);

    template <class T, core::eInstructionSet::domain D>
    core::ProcessingResult genericProcessFunction(ProcessingInfo info);
};

/// The maximum of every column of a strip of rows.
class ORLIX_API XProjectionMax2dLvl3 final : public XProjectionStrip<XProjectionMax2dLvl3, InYStrip2d, OutProjStat>
{
public:
    static constexpr eProjStatType statistic = eProjStatType::ePST_Max;

    XProjectionMax2dLvl3();
    ~XProjectionMax2dLvl3() override;

    static AlgorithmClass processorClass;
};

/// The mean of every column: the sums over a strip of rows.
class ORLIX_API XProjectionMean2dLvl3 final : public XProjectionStrip<XProjectionMean2dLvl3, InYStrip2d, OutProjStat>
{
public:
    static constexpr eProjStatType statistic = eProjStatType::ePST_Mean;

    XProjectionMean2dLvl3();
    ~XProjectionMean2dLvl3() override;

    static AlgorithmClass processorClass;
};

/// The median of every column of a strip of columns.
class ORLIX_API XProjectionMedian2dLvl3 final
    : public XProjectionStrip<XProjectionMedian2dLvl3, InXStrip2d, OutProjStat>
{
public:
    static constexpr eProjStatType statistic = eProjStatType::ePST_Median;

    XProjectionMedian2dLvl3();
    ~XProjectionMedian2dLvl3() override;

    static AlgorithmClass processorClass;
};

/// The minimum of every column of a strip of rows.
class ORLIX_API XProjectionMin2dLvl3 final : public XProjectionStrip<XProjectionMin2dLvl3, InYStrip2d, OutProjStat>
{
public:
    static constexpr eProjStatType statistic = eProjStatType::ePST_Min;

    XProjectionMin2dLvl3();
    ~XProjectionMin2dLvl3() override;

    static AlgorithmClass processorClass;
};

/// The standard deviation of every column: sums, and sums of squares, over a strip of rows.
class ORLIX_API XProjectionStdDev2dLvl3 final
    : public XProjectionStrip<XProjectionStdDev2dLvl3, InYStrip2d, OutProjStat1, OutProjStat2>
{
public:
    static constexpr eProjStatType statistic = eProjStatType::ePST_StdDev;

    XProjectionStdDev2dLvl3();
    ~XProjectionStdDev2dLvl3() override;

    static AlgorithmClass processorClass;
};

/// The sum of every column: the sums over a strip of rows.
class ORLIX_API XProjectionSum2dLvl3 final : public XProjectionStrip<XProjectionSum2dLvl3, InYStrip2d, OutProjStat>
{
public:
    static constexpr eProjStatType statistic = eProjStatType::ePST_Sum;

    XProjectionSum2dLvl3();
    ~XProjectionSum2dLvl3() override;

    static AlgorithmClass processorClass;
};

/// The variance of every column: sums, and sums of squares, over a strip of rows.
class ORLIX_API XProjectionVar2dLvl3 final
    : public XProjectionStrip<XProjectionVar2dLvl3, InYStrip2d, OutProjStat1, OutProjStat2>
{
public:
    static constexpr eProjStatType statistic = eProjStatType::ePST_Var;

    XProjectionVar2dLvl3();
    ~XProjectionVar2dLvl3() override;

    static AlgorithmClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
