#include <support/Masks.hpp>
#include <support/Messages.hpp>
#include <support/ReferenceHistogram.hpp>
#include <support/TestImages.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMaskMsr/HistogramMaskMsr.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMaskMsr2d/HistogramMaskMsr2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMaskMsr3d/HistogramMaskMsr3d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr/HistogramMsr.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr2d/HistogramMsr2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr3d/HistogramMsr3d.hpp>

#include <framework/process/ProcessorFactory.hpp>

#include <gtest/gtest.h>

#include <numeric>

namespace orlix::test
{

using namespace imaproc;
using namespace imaproc::glbmsr;
using attr::eMinMaxDefinition;

namespace
{

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double inf = std::numeric_limits<double>::infinity();

Ptr<HistoMsrParams> params(double min, double max, double binWidth, unsigned nbClasses = 0)
{
    auto record = attr::createHistoMsrParamsWithBinWidth(min, max, binWidth);
    record->NbClasses = nbClasses;
    record->UseBinWidth = nbClasses == 0;
    return record;
}

Ptr<HistoMsrParams> ofImage(double binWidth, unsigned nbClasses = 0)
{
    auto record = params(0, 0, binWidth, nbClasses);
    record->MinMaxDefinition = eMinMaxDefinition::eMMD_ImgMinMax;
    return record;
}

template <class T>
Ptr<BaseImage> makeRow(const std::vector<T>& values)
{
    return makeImage({values.size(), 1}, values);
}

template <class T>
std::vector<T> ramp(T first, std::size_t count, double step = 1)
{
    std::vector<T> values(count);
    for (std::size_t i = 0; i < count; ++i) {
        values[i] = static_cast<T>(first + step * static_cast<double>(i));
    }
    return values;
}

/// The record of a case, and what must come out.
struct Case
{
    std::string name;
    Ptr<const BaseImage> image;
    Ptr<const HistoMsrParams> params;
    double min;
    double max;
    double width;
    std::size_t classes;
    std::vector<std::pair<std::size_t, std::uint64_t>> frequencies; ///< some of them
    std::uint64_t total;
};

std::uint64_t sumOf(const std::vector<std::uint64_t>& frequencies)
{
    return std::accumulate(frequencies.begin(), frequencies.end(), std::uint64_t{0});
}

} // namespace

// Range, width and number of bins, as the parameters, the pixel type and the pixels make them.
TEST(HistogramMeasure, FixesTheClasses)
{
    const auto bytes = makeRow(ramp<unsigned char>(0, 256));
    const auto ten = makeRow(ramp<unsigned char>(10, 10));
    const auto words = makeRow(ramp<unsigned short>(0, 65536));
    const auto signedBytes = makeRow(ramp<signed char>(-128, 256));
    const auto unit = makeRow(ramp<float>(0, 257, 1. / 256));
    const auto constant = makeRow(std::vector<float>(9, 2.5f));
    const auto holed = makeRow<float>({0, 1, static_cast<float>(nan), 4, 2});
    auto undefined = params(50, 100, 10);
    undefined->MinMaxDefinition = static_cast<eMinMaxDefinition>(7);
    const auto noClasses = ofImage(0);
    noClasses->UseBinWidth = false;
    const double tinyMax = 1e-20f;
    const auto tiny = makeRow<float>({0, 1e-20f / 2, 1e-20f});
    const Case cases[] = {
        {"bytes", bytes, nullptr, 0, 255, 1, 256, {{0, 1}, {255, 1}}, 256},
        {"narrow bytes", ten, nullptr, 10, 19, 1, 10, {{0, 1}, {9, 1}}, 10},
        {"words", words, nullptr, 0, 65535, 256, 256, {{0, 256}, {255, 256}}, 65536},
        {"negative", signedBytes, nullptr, -128, 127, 1, 256, {{0, 1}, {255, 1}}, 256},
        {"constant bytes", makeRow(std::vector<unsigned char>(5, 7)), nullptr, 7, 7, 1, 1, {{0, 5}}, 5},
        {"constant floats", constant, nullptr, 2.5, 2.5, 0, 1, {{0, 9}}, 9},
        {"floats of 0 to 1", unit, nullptr, 0, 1, 1. / 256, 256, {{0, 1}, {254, 1}, {255, 2}}, 257},
        {"NaN", holed, params(0, 4, 1), 0, 4, 1, 4, {{0, 1}, {1, 1}, {2, 1}, {3, 1}}, 4},
        {"user range", bytes, params(50, 100, 10), 50, 100, 10, 6, {{0, 10}, {5, 1}}, 51},
        {"width of the image's range", bytes, ofImage(100), 0, 255, 100, 3, {{0, 100}, {2, 56}}, 256},
        {"number of classes", bytes, ofImage(0, 4), 0, 255, 64, 4, {{0, 64}, {3, 64}}, 256},
        {"more classes than values", ten, ofImage(0, 1000), 10, 19, 1, 10, {{0, 1}, {9, 1}}, 10},
        {"user classes", unit, params(0, 0.5, 0, 5), 0, 0.5, 0.1, 5, {{0, 26}}, 129},
        {"a width of 0 for a constant", constant, ofImage(0), 2.5, 2.5, 0, 1, {{0, 9}}, 9},
        {"user point", unit, params(0.5, 0.5, 0), 0.5, 0.5, 0, 1, {{0, 1}}, 1},
        // Bounds that are no range, or not of the type, are silently those of the image.
        {"reversed", bytes, params(100, 50, 10), 0, 255, 10, 26, {{0, 10}, {25, 6}}, 256},
        {"below the type", bytes, params(-1, 100, 10), 0, 255, 10, 26, {{0, 10}}, 256},
        {"above the type", bytes, params(0, 256, 10), 0, 255, 10, 26, {{0, 10}}, 256},
        {"bounds of NaN", bytes, params(nan, nan, 10), 0, 255, 10, 26, {{0, 10}}, 256},
        {"infinite bounds", unit, params(-inf, inf, 0.5), 0, 1, 0.5, 2, {{0, 128}, {1, 129}}, 257},
        {"a definition that is none", bytes, undefined, 0, 255, 10, 26, {{0, 10}}, 256},
        // A wish that makes no sense, or too many bins, is silently span / 256.
        {"width of nothing", unit, params(0, 1, 1e-17), 0, 1, 1. / 256, 256, {{255, 2}}, 257},
        {"2^31 classes", unit, params(0, 1, 0x1p-31), 0, 1, 1. / 256, 256, {{255, 2}}, 257},
        {"more than 2^32 classes", unit, params(0, 1, 0x1p-33), 0, 1, 1. / 256, 256, {{255, 2}}, 257},
        {"no class asked for", bytes, noClasses, 0, 255, 1, 256, {{7, 1}}, 256},
        {"no wish", unit, makePtr<HistoMsrParams>(), 0, 1, 1. / 256, 256, {{255, 2}}, 257},
        {"a range below the epsilon", tiny, nullptr, 0, tinyMax, tinyMax / 256, 256, {{0, 1}, {128, 1}, {255, 1}}, 3},
        {"infinite width", unit, params(0, 1, inf), 0, 1, inf, 1, {{0, 257}}, 257},
        {"a width below 1", bytes, params(0, 9, 0.25), 0, 9, 1, 10, {{0, 1}, {9, 1}}, 10},
        {"odd width", words, ofImage(3), 0, 65535, 3, 21846, {{0, 3}, {21845, 1}}, 65536},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        const std::vector<Ptr<const HistogramData>> results{histogramMsr(each.image, each.params),
                                                            histogramMsr2d(each.image, each.params),
                                                            histogramMsr3d(each.image, each.params)};
        for (const auto& result : results) {
            EXPECT_EQ(result->Min, each.min);
            EXPECT_EQ(result->Max, each.max);
            EXPECT_EQ(result->BinWidth, each.width);
            ASSERT_EQ(result->getNbClasses(), each.classes);
            EXPECT_EQ(sumOf(result->Frequencies), each.total);
            for (const auto& [index, count] : each.frequencies) {
                EXPECT_EQ(result->Frequencies[index], count) << index;
            }
        }
    }
}

// What a vector of bins cannot hold is a clear error, before anything is allocated.
TEST(HistogramMeasure, RefusesWhatHasNoClasses)
{
    const auto unit = makeRow<float>({0, 1});
    const auto labels = makeRow<unsigned int>({0, 2000000000});
    const std::pair<std::function<void()>, std::string> cases[] = {
        {[&] { histogramMsr(unit, params(0, 1, 0)); },
         "HistogramMsrLvl1: InOptHistoMsrParams has the BinWidth 0: a width above 0 is needed"},
        {[&] { histogramMsr(unit, ofImage(0)); }, "InOptHistoMsrParams has the BinWidth 0"},
        {[&] { histogramMsr2d(unit, ofImage(-3)); }, "HistogramMsr2dLvl1: InOptHistoMsrParams has the BinWidth -3"},
        {[&] { histogramMsr3d(unit, ofImage(nan)); }, "HistogramMsr3dLvl1: InOptHistoMsrParams has the BinWidth nan"},
        {[&] {
             histogramMsr(makeRow<float>({0, static_cast<float>(inf)}));
         },
         "the image ranges from 0 to inf: pass bounds of your own"},
        {[&] { histogramMsr2d(makeRow(std::vector<float>(3, static_cast<float>(nan)))); },
         "the image ranges from nan to nan"},
        {[&] { histogramMsr(unit, params(0, 1e-320, 0, 4)); }, "is too narrow for classes"},
        {[&] {
             auto unused = makePtr<HistoMsrParams>();
             unused->BinWidth = 5;
             histogramMsr(unit, unused);
         },
         "InOptHistoMsrParams has the BinWidth 5, but neither UseBinWidth nor a number of classes"},
        {[&] { histogramMsr(labels, ofImage(1)); },
         "2000000001 classes need 22889 MiB, and the memory limit is 2048 MiB"},
        {[&] {
             histogramMsr(BaseImage::create(image::eImageBufferType::eIBT_Int8, {0, 3}));
         },
         "is empty"},
        {[&] { histogramMsr(nullptr); }, "HistogramMsrLvl1: InImg is not set"},
    };
    for (const auto& [call, message] : cases) {
        EXPECT_NE(messageOf(call).find(message), std::string::npos) << messageOf(call) << "\nexpected " << message;
    }
    core::settings::setMemoryLimit(1000);
    EXPECT_NE(messageOf([&] { histogramMsr(unit); }), "nothing was thrown");
    core::settings::setMemoryLimit(0);
    EXPECT_EQ(messageOf([&] { histogramMsr(unit); }), "nothing was thrown");
}

TEST(HistogramMeasure, TellsTheNumberOfClasses)
{
    const auto processor = makePtr<HistogramMsr2dLvl2>();
    ASSERT_TRUE(processor->init(eProcessorRulePolicy::eRP_CheckRules));
    EXPECT_EQ(messageOf([&] { (void)processor->getHistoNbClasses(0, 1, 1); }),
              "HistogramMsr2dLvl2: InSubImg2d is not set");
    processor->set<InSubImg2d>(makeRow<float>({0, 1}));
    EXPECT_EQ(processor->getHistoNbClasses(0, 1, 0.3), 4u);
    EXPECT_EQ(processor->getHistoNbClasses(0, 1, 0), 1u);
    EXPECT_EQ(processor->getHistoNbClasses(3, 3, 1), 1u);
    EXPECT_EQ(processor->getHistoNbClasses(0, 1, 0x1p-31), 0x80000000u);
    EXPECT_EQ(processor->getHistoNbClasses(0, 5, 0x1p-32), 1u); // of 5 * 2^32 the low 32 bits, which are none
    processor->set<InSubImg2d>(makeRow<unsigned char>({0, 1}));
    EXPECT_EQ(processor->getHistoNbClasses(0, 1, 0.5), 4u); // integers span one more
    EXPECT_EQ(processor->getHistoNbClasses(50, 100, 10), 6u);
}

// One histogram over all plans, one per plan, one per volume: the bins of the unmasked pixels and of the masked
// ones.
TEST(HistogramMeasure, CoversImagePlansAndVolumes)
{
    const ImageGeometry shape{61, 37, 3, 2, 2};
    const std::size_t plan = shape.x * shape.y;
    auto values = randomValues<short>(shape.nbPixels(), 3);
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = static_cast<short>(values[i] / static_cast<int>(i / plan + 1)); // every plan has another range
    }
    auto mask = makeMask(MaskPattern::Half, shape.nbPixels());
    std::fill_n(mask.begin() + static_cast<std::ptrdiff_t>(plan), plan, std::uint8_t{0});
    const auto image = makeStrided(shape, values, true, false, true);
    const auto maskImage = makeStrided(shape, mask, false, true, false);
    const auto expectHistogram = [](const HistogramData& result, const std::vector<short>& pixels) {
        const auto [min, max] = std::minmax_element(pixels.begin(), pixels.end());
        EXPECT_EQ(result.Min, *min);
        EXPECT_EQ(result.Max, *max);
        auto expected =
            referenceFrequencies(pixels, result.Min, result.Max, result.BinWidth, result.getNbClasses() + 1);
        expected.pop_back();
        EXPECT_EQ(result.Frequencies, expected);
    };
    const auto part = [](const auto& all, std::size_t first, std::size_t size) {
        return std::vector(all.begin() + static_cast<std::ptrdiff_t>(first),
                           all.begin() + static_cast<std::ptrdiff_t>(first + size));
    };
    expectHistogram(*histogramMsr(image), values);
    expectHistogram(*histogramMaskMsr(image, maskImage), select(values, mask));
    const auto plans = multiSlice_histogramMsr2d(image);
    const auto maskedPlans = multiSlice_histogramMaskMsr2d(image, maskImage);
    ASSERT_EQ(plans->size(), 12u);
    for (std::size_t i = 0; i < plans->size(); ++i) {
        expectHistogram(*plans->getElement(i), part(values, i * plan, plan));
        if (i != 1) {
            expectHistogram(*maskedPlans->getElement(i),
                            select(part(values, i * plan, plan), part(mask, i * plan, plan)));
        }
    }
    const HistogramData& nothing = *maskedPlans->getElement(1);
    EXPECT_EQ(nothing.Frequencies, std::vector<std::uint64_t>{0});
    EXPECT_EQ(nothing.Min, highest<double>);
    EXPECT_EQ(nothing.Max, lowest<double>);
    const auto volumes = multiSlice_histogramMsr3d(image);
    const auto maskedVolumes = multiSlice_histogramMaskMsr3d(image, maskImage);
    ASSERT_EQ(volumes->size(), 4u);
    for (std::size_t i = 0; i < volumes->size(); ++i) {
        const auto pixels = part(values, i * plan * 3, plan * 3);
        expectHistogram(*volumes->getElement(i), pixels);
        expectHistogram(*maskedVolumes->getElement(i), select(pixels, part(mask, i * plan * 3, plan * 3)));
    }
    // The pixels outside the mask do not count, inside a user's range or not.
    const auto user = params(-100, 100, 10);
    EXPECT_EQ(sumOf(histogramMaskMsr(image, maskImage, user)->Frequencies),
              sumOf(referenceFrequencies(select(values, mask), -100, 100, 10, 22)));
}

// A histogram of many bins, in many strips and plans, is the same for any number of threads.
TEST(HistogramMeasure, DoesNotDependOnThreads)
{
    const ImageGeometry shape{1021, 997, 3, 2};
    const auto image = makeImage(shape, randomValues<unsigned short>(shape.nbPixels(), 5));
    for (const auto& record : {ofImage(1), ofImage(17)}) {
        Ptr<HistogramData> one;
        {
            const Threads single{1};
            one = histogramMsr(image, record);
        }
        EXPECT_EQ(sumOf(one->Frequencies), shape.nbPixels());
        for (const unsigned threads : {2u, 16u}) {
            const Threads many{threads};
            EXPECT_EQ(histogramMsr(image, record)->Frequencies, one->Frequencies);
            const auto volumes = multiSlice_histogramMsr3d(image, record);
            auto sum = volumes->getElement(0)->Frequencies;
            std::transform(sum.begin(), sum.end(), volumes->getElement(1)->Frequencies.begin(), sum.begin(),
                           std::plus<>{});
            EXPECT_EQ(sum, one->Frequencies);
        }
    }
    // Strips are no more than the memory limit has room for.
    core::settings::setMemoryLimit(2 * 65537 * 12);
    EXPECT_EQ(sumOf(histogramMsr(image, ofImage(1))->Frequencies), shape.nbPixels());
    core::settings::setMemoryLimit(0);
}

// One processor measures one image after the other, whatever happened before.
TEST(HistogramMeasure, RunsAgain)
{
    const auto processor = makePtr<HistogramMsrLvl1>();
    ASSERT_TRUE(processor->init(eProcessorRulePolicy::eRP_CheckRules));
    const auto run = [&](const Ptr<const BaseImage>& image, const Ptr<const HistoMsrParams>& record) {
        processor->set<InImg>(image);
        processor->set<InOptHistoMsrParams>(record);
        const auto result = processor->run(eSynchroType::eST_Synchronous);
        return result ? processor->getStorage<OutHistogram>()->Frequencies : std::vector<std::uint64_t>{};
    };
    const auto bytes = makeRow<unsigned char>({3, 4, 4});
    const auto floats = makeRow<float>({0, 1, static_cast<float>(inf)});
    using Frequencies = std::vector<std::uint64_t>;
    EXPECT_EQ(run(bytes, nullptr), (Frequencies{1, 2}));
    EXPECT_EQ(run(bytes, params(4, 5, 1)), (Frequencies{2, 0}));
    EXPECT_EQ(run(floats, nullptr), Frequencies{});
    EXPECT_EQ(run(floats, params(0, 1, 0.5)), (Frequencies{1, 1}));
    EXPECT_EQ(run(bytes, nullptr), (Frequencies{1, 2}));
}

// The levels below, as a host may create them by name.
TEST(HistogramMeasure, TheLevelsOfTheWholeImageRunAlone)
{
    const auto create = [](const char* name) {
        auto processor =
            ProcessorFactory::getInstance().createProcessor(std::string{"orlix::imaproc::glbmsr::"} + name);
        EXPECT_TRUE(processor->init(eProcessorRulePolicy::eRP_CheckRules));
        return processor;
    };
    const auto image = makeImage<unsigned char>({3, 2}, {1, 2, 3, 3, 2, 3});
    const auto histogram = makePtr<HistogramData>();
    const auto plan = create("HistogramMsrLvl2");
    plan->set<InSubImg2d>(image);
    EXPECT_NE(plan->run(eSynchroType::eST_Synchronous).getMessage().find("InOutHistogram is not set"),
              std::string::npos);
    plan->set<InOutHistogram>(histogram);
    EXPECT_NE(plan->run(eSynchroType::eST_Synchronous).getMessage().find("has no classes"), std::string::npos);
    histogram->Min = histogram->BinWidth = 1;
    histogram->Max = 3;
    histogram->Frequencies.assign(4, 9);
    EXPECT_TRUE(plan->run(eSynchroType::eST_Synchronous));
    EXPECT_EQ(histogram->Frequencies, (std::vector<std::uint64_t>{1, 2, 3, 0}));

    const auto strip = create("HistogramMaskMsrLvl3");
    strip->set<InYStrip2d>({image, 1, 1});
    strip->set<InMaskYStrip2d>({makeImage<unsigned char>({3, 2}, {1, 1, 1, 0, 1, 1}), 1, 1});
    strip->set<InOutHistogram>(histogram);
    EXPECT_TRUE(strip->run(eSynchroType::eST_Synchronous));
    EXPECT_EQ(histogram->Frequencies, (std::vector<std::uint64_t>{0, 1, 1, 0}));
}

TEST(HistogramParams, AreCopiedAndArchived)
{
    const auto record = params(-0.5, inf, 3, 12);
    data::OutputArchive archive;
    ASSERT_TRUE(archive.write("it", record.get()));
    ASSERT_TRUE(archive.write("histogram", histogramMsr(makeRow<unsigned char>({1, 2, 2})).get()));
    data::InputArchive back{archive.str()};
    Ptr<HistoMsrParams> read;
    ASSERT_TRUE(back.read("it", read));
    EXPECT_EQ(read->Min, -0.5);
    EXPECT_EQ(read->Max, inf);
    EXPECT_EQ(read->NbClasses, 12u);
    EXPECT_EQ(read->MinMaxDefinition, eMinMaxDefinition::eMMD_UserDefinedMinMax);
    EXPECT_FALSE(read->UseBinWidth);
    Ptr<HistogramData> histogram;
    ASSERT_TRUE(back.read("histogram", histogram));
    EXPECT_EQ(histogram->Frequencies, (std::vector<std::uint64_t>{1, 2}));
    data::InputArchive broken{R"({"Min": 0, "Max": 1, "BinWidth": 1, "Frequencies": [1, "x"]})"};
    const auto result = makePtr<HistogramData>()->read(broken);
    EXPECT_EQ(result.getMessage(), "The archive has no \"Frequencies\" that is a list of whole numbers");
}

} // namespace orlix::test
