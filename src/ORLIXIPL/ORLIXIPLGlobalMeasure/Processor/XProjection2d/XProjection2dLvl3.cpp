#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/XProjection2d/XProjection2dLvl3.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Projection/ProjectionTables.hpp>

#include <framework/core/NumericLimits.hpp>

#include <memory>

namespace orlix::imaproc::glbmsr
{

using enum eProjStatType;

template <class Self, class Strip, class... Outputs>
void XProjectionStrip<Self, Strip, Outputs...>::functionRegistration(AlgorithmFunctionSelector& selector)
{
    XProjectionStrip::registerKernels(selector, []<class T>(std::type_identity<T>, auto domain) {
        return Self::statistic == ePST_Median ? domain == core::eInstructionSet::eIS_Generic
                                              : kernelOf<T>(getColumnKernels().of(domain)).sum != nullptr;
    });
}

template <class Self, class Strip, class... Outputs>
template <class T, core::eInstructionSet::domain D>
core::ProcessingResult XProjectionStrip<Self, Strip, Outputs...>::genericProcessFunction(ProcessingInfo)
{
    const image::PixelBox& box = this->getParser(0).getBox();
    const Columns<T> columns{reinterpret_cast<const T*>(box.origin), box.x, box.y, box.strideY};
    const auto kernel = kernelOf<T>(getColumnKernels().of(D));
    if constexpr (Self::statistic == ePST_StdDev || Self::statistic == ePST_Var) {
        std::vector<double>& sums = this->template value<OutProjStat1>().Values;
        std::vector<double>& squares = this->template value<OutProjStat2>().Values;
        sums.assign(box.x, 0);
        squares.assign(box.x, 0);
        kernel.squares(columns, sums.data(), squares.data());
        return {};
    } else {
        std::vector<double>& values = this->template value<OutProjStat>().Values;
        if constexpr (Self::statistic == ePST_Mean || Self::statistic == ePST_Sum) {
            values.assign(box.x, 0);
            kernel.sum(columns, values.data());
            return {};
        }
        std::vector<T> pixels(box.x);
        if constexpr (Self::statistic == ePST_Median) {
            const auto median = kernelOf<T>(getColumnKernels().of(chooseMedianSet(this->getEffectiveSets())));
            const auto scratch = std::make_unique_for_overwrite<unsigned char[]>(median.scratchBytes(box.x, box.y));
            median.median(columns, scratch.get(), pixels.data());
        } else if constexpr (Self::statistic == ePST_Min) {
            pixels.assign(box.x, core::NumericLimits<T>::s_max);
            kernel.least(columns, pixels.data());
        } else {
            pixels.assign(box.x, core::NumericLimits<T>::s_min);
            kernel.most(columns, pixels.data());
        }
        values.assign(pixels.begin(), pixels.end());
        return {};
    }
}

AlgorithmClass XProjectionMax2dLvl3::processorClass =
    declareAlgorithm<XProjectionMax2dLvl3>("XProjectionMax2dLvl3", 96);
XProjectionMax2dLvl3::XProjectionMax2dLvl3() = default;
XProjectionMax2dLvl3::~XProjectionMax2dLvl3() = default;

AlgorithmClass XProjectionMean2dLvl3::processorClass =
    declareAlgorithm<XProjectionMean2dLvl3>("XProjectionMean2dLvl3", 97);
XProjectionMean2dLvl3::XProjectionMean2dLvl3() = default;
XProjectionMean2dLvl3::~XProjectionMean2dLvl3() = default;

AlgorithmClass XProjectionMedian2dLvl3::processorClass =
    declareAlgorithm<XProjectionMedian2dLvl3>("XProjectionMedian2dLvl3", 98);
XProjectionMedian2dLvl3::XProjectionMedian2dLvl3() = default;
XProjectionMedian2dLvl3::~XProjectionMedian2dLvl3() = default;

AlgorithmClass XProjectionMin2dLvl3::processorClass =
    declareAlgorithm<XProjectionMin2dLvl3>("XProjectionMin2dLvl3", 99);
XProjectionMin2dLvl3::XProjectionMin2dLvl3() = default;
XProjectionMin2dLvl3::~XProjectionMin2dLvl3() = default;

AlgorithmClass XProjectionStdDev2dLvl3::processorClass =
    declareAlgorithm<XProjectionStdDev2dLvl3>("XProjectionStdDev2dLvl3", 100);
XProjectionStdDev2dLvl3::XProjectionStdDev2dLvl3() = default;
XProjectionStdDev2dLvl3::~XProjectionStdDev2dLvl3() = default;

AlgorithmClass XProjectionSum2dLvl3::processorClass =
    declareAlgorithm<XProjectionSum2dLvl3>("XProjectionSum2dLvl3", 101);
XProjectionSum2dLvl3::XProjectionSum2dLvl3() = default;
XProjectionSum2dLvl3::~XProjectionSum2dLvl3() = default;

AlgorithmClass XProjectionVar2dLvl3::processorClass =
    declareAlgorithm<XProjectionVar2dLvl3>("XProjectionVar2dLvl3", 102);
XProjectionVar2dLvl3::XProjectionVar2dLvl3() = default;
XProjectionVar2dLvl3::~XProjectionVar2dLvl3() = default;

} // namespace orlix::imaproc::glbmsr
