#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/XProjection2d/XProjection2dLvl1.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Projection/ProjectionTables.hpp>

#include <algorithm>
#include <cmath>

namespace orlix::imaproc::glbmsr
{

using enum eProjStatType;

ProcessorClass XProjection2dLvl1::processorClass = declare<XProjection2dLvl1>("XProjection2dLvl1", 94);

XProjection2dLvl1::XProjection2dLvl1() = default;
XProjection2dLvl1::~XProjection2dLvl1() = default;

void XProjection2dLvl1::clearIntermediateDataDerived()
{
    parts_.clear();
    squares_.clear();
}

core::ProcessingResult XProjection2dLvl1::retrieveProvider(ePriority priority, Ptr<ActionProvider>& provider)
{
    const Ptr<const image::BaseImage>& image = attribute<InSubImg2d>().get();
    const ProcessorDispatchPolicy& policy = getDispatchPolicy();
    const auto makeProvider = [&]<class Lvl3>(std::type_identity<Lvl3>) {
        if constexpr (Lvl3::statistic == ePST_Median) {
            // No narrower than two cache lines.
            cut_.emplace(StripCut::of<image::XStrip2d>(*image, policy.stripBytes, 128 / image->getPixelSize()));
            parts_.resize(cut_->size());
            provider = makeDynamicDispatcher<Lvl3>(
                priority, policy, cut_->size(), DynamicByCreationResultSplit<Lvl3, OutProjStat>{parts_},
                ImageXStrip2dSplit<Lvl3, const image::BaseImage, InXStrip2d>{image, *cut_});
            return;
        } else {
            // A strip leaves a number for every column: it has rows enough to be worth it, and there are not too many.
            const std::size_t rows = std::max<std::size_t>(64, image->getGeometry().y / 256);
            cut_.emplace(StripCut::of<image::YStrip2d>(*image, policy.stripBytes, rows));
            parts_.resize(cut_->size());
            const ImageYStrip2dSplit<Lvl3, const image::BaseImage, InYStrip2d> strips{image, *cut_};
            if constexpr (Lvl3::statistic == ePST_StdDev || Lvl3::statistic == ePST_Var) {
                squares_.resize(cut_->size());
                provider = makeDynamicDispatcher<Lvl3>(
                    priority, policy, cut_->size(), DynamicByCreationResultSplit<Lvl3, OutProjStat1>{parts_},
                    DynamicByCreationResultSplit<Lvl3, OutProjStat2>{squares_}, strips);
            } else {
                provider = makeDynamicDispatcher<Lvl3>(priority, policy, cut_->size(),
                                                       DynamicByCreationResultSplit<Lvl3, OutProjStat>{parts_}, strips);
            }
        }
    };
    visitStatistic<XProjectionMax2dLvl3, XProjectionMean2dLvl3, XProjectionMedian2dLvl3, XProjectionMin2dLvl3,
                   XProjectionStdDev2dLvl3, XProjectionSum2dLvl3, XProjectionVar2dLvl3>(value<InProjStatType>(),
                                                                                        makeProvider);
    return {};
}

namespace
{

/// The sums of the strips' numbers.
std::vector<double> addUp(const std::vector<Ptr<Doubles>>& parts, std::size_t size)
{
    std::vector<double> sums(size, 0);
    for (const Ptr<Doubles>& part : parts) {
        std::transform(sums.begin(), sums.end(), part->Values.begin(), sums.begin(), std::plus{});
    }
    return sums;
}

} // namespace

core::ProcessingResult XProjection2dLvl1::postProcess()
{
    const image::BaseImage& image = value<InSubImg2d>();
    const image::ImageGeometry& size = image.getGeometry();
    const auto [lowest, highest] = image::getValueRange(image.getType());
    const auto n = static_cast<double>(size.y);
    std::vector<double>& values = value<OutProjStat>().Values;
    switch (value<InProjStatType>()) {
    case ePST_Median:
        values = concatenate(parts_);
        break;
    case ePST_Sum:
        values = addUp(parts_, size.x);
        break;
    case ePST_Mean:
        values = addUp(parts_, size.x);
        for (double& x : values) {
            x /= n;
        }
        break;
    case ePST_Var:
    case ePST_StdDev: {
        values = addUp(parts_, size.x);
        const std::vector<double> squares = addUp(squares_, size.x);
        for (std::size_t i = 0; i < values.size(); ++i) {
            // On purpose: no clamp. Rounding may make the variance negative, and the deviation NaN.
            values[i] = (squares[i] - values[i] * values[i] / n) / n;
            values[i] = value<InProjStatType>() == ePST_StdDev ? std::sqrt(values[i]) : values[i];
        }
        break;
    }
    case ePST_Min:
        values.assign(size.x, highest);
        for (const Ptr<Doubles>& part : parts_) {
            std::transform(values.begin(), values.end(), part->Values.begin(), values.begin(),
                           [](double m, double x) { return x < m ? x : m; });
        }
        break;
    default:
        values.assign(size.x, lowest);
        for (const Ptr<Doubles>& part : parts_) {
            std::transform(values.begin(), values.end(), part->Values.begin(), values.begin(),
                           [](double m, double x) { return x > m ? x : m; });
        }
        break;
    }
    return {};
}

} // namespace orlix::imaproc::glbmsr
