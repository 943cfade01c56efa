#pragma once

#include <framework/attribute/HistogramData.hpp>
#include <framework/attribute/ImageAttributes.hpp>
#include <framework/attribute/StatsResult.hpp>
#include <framework/process/Levels.hpp>

#include <cstdint>
#include <vector>

/// What the histogram measures share, with a mask and without: which classes a histogram has, and how pixels are
/// counted into them. The measures differ in how much of the image one result covers.
///
/// Range: Min and Max of the parameters where they are user-defined, in order and within the pixel type; else minimum
/// and maximum of what is measured. Integer images span Max - Min + 1, float images Max - Min. Width: the parameters'
/// BinWidth, or span / NbClasses, or without either span / 256; at least 1 for integer images, and span / 256 where
/// the wish is too small. A float range of one value makes one class of width 0; a plan whose mask is empty makes one
/// class of nothing. NaN is never counted, and where one stays the minimum or maximum of the statistics it narrows
/// the range, so that pixels outside are not counted, either: give bounds. Pixels are compared with the bounds in
/// single precision, and a class is found in double precision and rounded to single, so that a value just below Max may
/// be lost above the last class, and values beyond 2^24 share classes. That is the same for every number of threads and
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

/// The number of classes of a range and a width (1.0 stands for a width of 0), modulo 2^32. Throws
/// ORLIXBaseProcessingException if the processor's image is not set.
ORLIX_API std::uint32_t countHistogramClasses(const BaseProcessor& processor, const attr::BaseAttribute& image,
                                              double min, double max, double binWidth);

/// Whether the parameters, which may be null, define a range that the pixel type allows.
ORLIX_API bool hasUserRange(const HistoMsrParams* params, image::eImageBufferType type);

/// Gives the histogram of a range its classes, at zero, and a guard class. Fails where there are none or too many.
ORLIX_API core::ProcessingResult makeClasses(HistogramData& histogram, image::eImageBufferType type,
                                             const HistoMsrParams* params, double min, double max);
/// One class for a range in which there is no pixel, and a guard class.
ORLIX_API void makeEmptyClass(HistogramData& histogram, image::eImageBufferType type, double min, double max);

/// How many partial histograms of these classes the memory limit allows at once; at least 1.
ORLIX_API std::size_t getMaxPartialHistograms(const HistogramData& histogram);
/// Pixels that a strip should have for its counting to outweigh its classes, and for the memory limit to hold.
ORLIX_API std::size_t getMinStripPixels(const HistogramData& histogram, const image::BaseImage& image);

/// A BinWidth that is used is above 0, or 0 for float pixels whose range may be one value.
ORLIX_API Rule matchBinWidth(const InOptHistoMsrParams& params, const attr::BaseAttribute& image);
/// The histogram has a class and a guard class, at least, and fewer than 2^31.
ORLIX_API core::ProcessingResult checkHasClasses(const attr::BaseAttribute& output, const HistogramData& histogram);
/// The histogram has classes, and they fit the pixels.
ORLIX_API Rule matchClasses(const attr::BaseAttribute& output, const Ptr<HistogramData>& histogram,
                            const attr::BaseAttribute& pixels);

/// One strip: counts into the classes of its output. Strip is the strip attribute, Mask that of the mask's strip or
/// nothing.
template <class Self, class Out, class Strip, class... Mask>
class HistogramStrip : public Algorithm<Self, Strip, Mask..., Out>
{
    static constexpr bool isMasked = sizeof...(Mask) != 0;

public:
    /// Enters the kernels that this machine can run.
    static void functionRegistration(AlgorithmFunctionSelector& selector);

    template <class T, core::eInstructionSet::domain D>
    core::ProcessingResult genericProcessFunction(ProcessingInfo info);

    /// The histogram brings its classes along: it is the caller's, whatever it was written by.
    core::ProcessingResult read(data::InputArchive& archive) override
    {
        core::ProcessingResult result = Algorithm<Self, Strip, Mask..., Out>::read(archive);
        this->template attribute<Out>().init(this->template attribute<Out>().get());
        return result;
    }

protected:
    Rule makeRule() const override
    {
        return matchClasses(this->template attribute<Out>(), this->template attribute<Out>().get(),
                            this->template attribute<Strip>());
    }
    core::ProcessingResult preProcess() override
    {
        this->template value<Out>().clear();
        return {};
    }

private:
    static const auto& getKernels();

    std::vector<std::uint32_t> tables_; ///< what the kernels count into, kept from strip to strip
};

/// A plan in strips that are large enough for their classes.
template <class Self, class Child, class Out, class Image, class... Inputs>
class HistogramStrips : public StripsLvl2<Self, Child, Pass<Out>, AddUp, Image, Inputs...>
{
    using Base = StripsLvl2<Self, Child, Pass<Out>, AddUp, Image, Inputs...>;

protected:
    Rule makeRule() const override
    {
        if constexpr (Out::role == attr::eAttributeRole::eAR_InputOutput) {
            return Base::makeRule() &&
                   matchClasses(this->template attribute<Out>(), this->template attribute<Out>().get(),
                                this->template attribute<typename Image::Source>());
        } else {
            return Base::makeRule();
        }
    }
    std::size_t getMinStripPixels() const override
    {
        return glbmsr::getMinStripPixels(this->template value<Out>(), this->template value<typename Image::Source>());
    }
};

/// All plans of an image into one histogram.
template <class Self, class Child, class... Inputs>
class HistogramPlans
    : public MergedLvl1<Self, Child, Pass<OutHistogram, InOutHistogram>, AddUp, Inputs..., Keep<InOptHistoMsrParams>>
{
protected:
    std::size_t getMaxParallelPlans() const override
    {
        return getMaxPartialHistograms(this->template value<OutHistogram>()) / 2; // a plan's own and its strip's
    }
};

/// A level that fixes the classes before it counts. Its first stage runs the processor Statistics on the same image and
/// mask, unless the user gave the range; at the end it drops the guard class.
template <class Counting, class Statistics, class Image, class... Mask>
class Histogram : public Counting
{
public:
    std::uint32_t getHistoNbClasses(double min, double max, double binWidth) const
    {
        return countHistogramClasses(*this, this->template attribute<Image>(), min, max, binWidth);
    }

protected:
    void clearIntermediateDataDerived() override
    {
        Counting::clearIntermediateDataDerived();
        statistics_.reset();
    }

    Rule makeRule() const override
    {
        return Counting::makeRule() &&
               matchBinWidth(this->template attribute<InOptHistoMsrParams>(), this->template attribute<Image>());
    }

    std::size_t retrieveSequenceInfo() const override { return 2; }

    Ptr<BaseProcessor> makeStage(std::size_t) override
    {
        statistics_.reset();
        if (hasUserRange(params(), this->template value<Image>().getType())) {
            return nullptr;
        }
        statistics_ = this->template makeStageProcessor<Statistics, Image, Mask...>(
            this->template attribute<Image>().get(), this->template attribute<Mask>().get()...);
        return statistics_;
    }

    core::ProcessingResult retrieveProvider(ePriority priority, Ptr<ActionProvider>& provider) override
    {
        const image::eImageBufferType type = this->template value<Image>().getType();
        HistogramData& histogram = this->template value<OutHistogram>();
        core::ProcessingResult result;
        if (!statistics_) {
            result = makeClasses(histogram, type, params(), params()->Min, params()->Max);
        } else {
            const auto range = statistics_->template getStorage<attr::OutStatsResult>();
            statistics_.reset();
            if (range->NbPixels == 0) {
                makeEmptyClass(histogram, type, range->Min, range->Max);
                return {};
            }
            result = makeClasses(histogram, type, params(), range->Min, range->Max);
        }
        return result ? Counting::retrieveProvider(priority, provider) : result;
    }

    core::ProcessingResult postProcess() override
    {
        core::ProcessingResult result = Counting::postProcess();
        this->template value<OutHistogram>().Frequencies.pop_back();
        return result;
    }

private:
    using BaseAsync1Processor::retrieveProvider;

    const HistoMsrParams* params() const { return this->template attribute<InOptHistoMsrParams>().get().get(); }

    Ptr<Statistics> statistics_;
};

/// One histogram per plan or volume; the parameters are for all of them.
template <class Self, class Child, class Image, class... Inputs>
class HistogramPerPlan : public PlanIndexedLvl1<Self, Child, Pass<OutPIHistogram, OutHistogram>, Image, Inputs...,
                                                Pass<InOptHistoMsrParams>>
{
    using Base =
        PlanIndexedLvl1<Self, Child, Pass<OutPIHistogram, OutHistogram>, Image, Inputs..., Pass<InOptHistoMsrParams>>;

protected:
    Rule makeRule() const override
    {
        return Base::makeRule() && matchBinWidth(this->template attribute<InOptHistoMsrParams>(),
                                                 this->template attribute<typename Image::Source>());
    }
};

} // namespace orlix::imaproc::glbmsr
