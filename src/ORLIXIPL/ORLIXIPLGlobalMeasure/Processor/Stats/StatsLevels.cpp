#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Stats/Stats.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Define.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Stats/MomentSums.hpp>
#include <framework/kernel/StripRuns.hpp>

namespace orlix::imaproc::glbmsr
{

namespace
{

/// A kernel on the runs of a strip, as forEachRun visits them.
template <class T, class ForEachRun>
Stats::State measure(ForEachRun forEachRunOf)
{
    Moments moments{};
    Stats::State state;
    moments.min = state.min;
    moments.max = state.max;
    forEachRunOf(moments);
    return {moments.selected, getSum<T>(moments), getSumOfSquares<T>(moments), moments.min, moments.max};
}

} // namespace

struct PlainStats : Stats
{
    static constexpr auto getKernels = &getStatsKernels;

    template <class T>
    static void consume(StatsKernel<T> kernel, const Strips& strips, State& state)
    {
        state = measure<T>([&](Moments& moments) {
            forEachRun<T>(strips.info, strips.parsers[0], [&](const Run<T>& run) { kernel(run, moments); });
        });
        state.nbPixels = strips.info.size;
    }
};

struct MaskedStats : Stats
{
    static constexpr auto getKernels = &getStatsMaskKernels;

    template <class T>
    static void consume(StatsMaskKernel<T> kernel, const Strips& strips, State& state)
    {
        state = measure<T>([&](Moments& moments) {
            forEachRun<T>(strips.info, strips.parsers[0], strips.parsers[1],
                          [&](const MaskedRun<T>& run) { kernel(run, moments); });
        });
    }

    static void finish(const State& state, StatsResult& result)
    {
        Stats::finish(state, result);
        if (state.nbPixels == 0) {
            // On purpose: 0 in a strip, though a merge of nothing gives NaN.
            result.Mean = 0;
            result.StdDev = 0;
        }
    }
};

LevelClass StatsMsrLvl1::processorClass = defineLevel<StatsMsrLvl1, StatsMsrLvl2>(87, inOrder<Stats>);
LevelClass StatsMsrLvl2::processorClass = defineLevel<StatsMsrLvl2, StatsMsrLvl3>(88, inOrder<Stats>);
AlgorithmClass StatsMsrLvl3::processorClass = defineAlgorithm<StatsMsrLvl3>(89);

LevelClass StatsMsr2dLvl1::processorClass = defineLevel<StatsMsr2dLvl1, StatsMsr2dLvl2>(79);
LevelClass StatsMsr2dLvl2::processorClass = defineLevel<StatsMsr2dLvl2, StatsMsr2dLvl3>(80, inOrder<Stats>);
AlgorithmClass StatsMsr2dLvl3::processorClass = defineAlgorithm<StatsMsr2dLvl3>(81);

LevelClass StatsMsr3dLvl1::processorClass = defineLevel<StatsMsr3dLvl1, StatsMsr3dLvl2>(83);
LevelClass StatsMsr3dLvl2::processorClass = defineLevel<StatsMsr3dLvl2, StatsMsr3dLvl3>(84, inOrder<Stats>);
AlgorithmClass StatsMsr3dLvl3::processorClass = defineAlgorithm<StatsMsr3dLvl3>(85);

LevelClass StatsMaskMsrLvl1::processorClass = defineLevel<StatsMaskMsrLvl1, StatsMaskMsrLvl2>(75, inOrder<Stats>);
LevelClass StatsMaskMsrLvl2::processorClass = defineLevel<StatsMaskMsrLvl2, StatsMaskMsrLvl3>(76, inOrder<Stats>);
AlgorithmClass StatsMaskMsrLvl3::processorClass = defineAlgorithm<StatsMaskMsrLvl3>(77);

LevelClass StatsMaskMsr2dLvl1::processorClass = defineLevel<StatsMaskMsr2dLvl1, StatsMaskMsr2dLvl2>(69);
LevelClass StatsMaskMsr2dLvl2::processorClass = defineLevel<StatsMaskMsr2dLvl2, StatsMaskMsr2dLvl3>(70, inOrder<Stats>);
AlgorithmClass StatsMaskMsr2dLvl3::processorClass = defineAlgorithm<StatsMaskMsr2dLvl3>(71);

LevelClass StatsMaskMsr3dLvl1::processorClass = defineLevel<StatsMaskMsr3dLvl1, StatsMaskMsr3dLvl2>(72);
LevelClass StatsMaskMsr3dLvl2::processorClass = defineLevel<StatsMaskMsr3dLvl2, StatsMaskMsr3dLvl3>(73, inOrder<Stats>);
AlgorithmClass StatsMaskMsr3dLvl3::processorClass = defineAlgorithm<StatsMaskMsr3dLvl3>(74);

// Before the GPU levels fill them in.
constinit GpuVariant StatsMsrLvl2::gpuVariant;
constinit GpuVariant StatsMsr2dLvl2::gpuVariant;
constinit GpuVariant StatsMsr3dLvl2::gpuVariant;

namespace
{

const MeasureRegistration registration{
    {"Statistics",
     "stats",
     "number, sum, mean, minimum, maximum and standard deviation of the pixels",
     "With NaN pixels the sum, mean and deviation are NaN, and the minimum and maximum depend on where the NaN lie. "
     "The "
     "deviation is the root of E[x^2] - Mean^2 in double precision: where pixels are far from zero compared with their "
     "spread it has few digits (0.245 for 0.290 where float pixels lie between 1e6 and 1e6 + 1), and of constant "
     "pixels it "
     "may be NaN.",
     {&StatsMsrLvl1::processorClass, &StatsMsr2dLvl1::processorClass, &StatsMsr3dLvl1::processorClass,
      &StatsMaskMsrLvl1::processorClass, &StatsMaskMsr2dLvl1::processorClass, &StatsMaskMsr3dLvl1::processorClass}}};

} // namespace

} // namespace orlix::imaproc::glbmsr
