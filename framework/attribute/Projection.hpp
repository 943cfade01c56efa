#pragma once

#include <framework/attribute/Doubles.hpp>

/// What projections take and give.
namespace orlix::imaproc::attr
{

/// The statistic of a projection; any other value stands for the maximum.
enum class eProjStatType : unsigned
{
    ePST_Max = 0,
    ePST_Mean = 1,
    ePST_Median = 2, ///< the element of rank n / 2: of an even number the upper one of the middle
    ePST_Min = 3,
    ePST_StdDev = 4, ///< of the population
    ePST_Sum = 5,
    ePST_Var = 6 ///< of the population
};

inline std::span<const char* const> namesOf(eProjStatType)
{
    static constexpr const char* names[] = {"max", "mean", "median", "min", "stddev", "sum", "var"};
    return names;
}

class ORLIX_API InProjStatType final : public ValueInput<InProjStatType, eProjStatType>
{
public:
    static constexpr const char* name = "InProjStatType";
    static constexpr data::FieldInfo info{
        .name = name, .help = "max, mean, median, min, stddev, sum or var", .option = "stat"};
};

class ORLIX_API OutProjStat final : public ObjectOutput<OutProjStat, Doubles>
{
public:
    static constexpr const char* name = "OutProjStat";
};

/// Sums, where a statistic needs squares as well.
class ORLIX_API OutProjStat1 final : public ObjectOutput<OutProjStat1, Doubles>
{
public:
    static constexpr const char* name = "OutProjStat1";
};

/// Sums of squares.
class ORLIX_API OutProjStat2 final : public ObjectOutput<OutProjStat2, Doubles>
{
public:
    static constexpr const char* name = "OutProjStat2";
};

} // namespace orlix::imaproc::attr
