#include <support/Messages.hpp>
#include <support/PixelTypes.hpp>
#include <support/TestImages.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/GaussianNoiseMsr/GaussianNoiseMsr.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsMsr.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr2d/StatsMsr2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr3d/StatsMsr3d.hpp>
#include <framework/data/Archive.hpp>
#include <framework/gpu/Gpu.hpp>
#include <framework/gpu/GpuAttributes.hpp>
#include <framework/gpu/GpuImage.hpp>
#include <framework/process/ProcessorFactory.hpp>

#include <gtest/gtest.h>

#include <cstring>

namespace orlix::test
{

using namespace imaproc;
using namespace imaproc::glbmsr;

namespace
{

/// Why there is no GPU; empty where there is one.
std::string missingGpu()
{
    gpu::GpuDescription description;
    return gpu::describeGpu(0, description).getMessage();
}

/// GPU support as long as it lives.
class ActivatedGpu
{
public:
    ActivatedGpu() : result_{gpu::activateGpuSupport()} {}
    ~ActivatedGpu() { gpu::deactivateGpuSupport(); }
    ActivatedGpu(const ActivatedGpu&) = delete;
    ActivatedGpu& operator=(const ActivatedGpu&) = delete;
    bool operator!() const { return !result_; }

private:
    core::ProcessingResult result_;
};

/// An image that claims to lie on a GPU.
Ptr<const BaseImage> pretendGpuImage(const Ptr<BaseImage>& host)
{
    return BaseImage::wrapGpu(host->getRow(0), host->getType(), host->getGeometry(), host->getStrides(), host);
}

/// A level that finds a sum of 42, in the place of the GPU's.
class FortyTwo final : public Processor<FortyTwo, BaseProcessor, OutStatsResult>
{
public:
    static ProcessorClass processorClass;

    bool isComplexAction() const override { return false; }
    eProcessorType getProcessorType() const override { return eProcessorType::ePT_Synchronous; }

protected:
    core::ProcessingResult runDerived(const RunContext&) override
    {
        value<OutStatsResult>().Sum = 42;
        return {};
    }
};
ProcessorClass FortyTwo::processorClass{
    typeid(FortyTwo), {"test", __FILE__, [] { return std::string{"of a test"}; }, false}, creators()};

} // namespace

// Without a GPU everything says so, in the words of the CUDA runtime, and nothing is activated.
TEST(Gpu, SaysWhyThereIsNone)
{
    const std::string reason = missingGpu();
    if (reason.empty()) {
        GTEST_SKIP() << "there is a GPU";
    }
    EXPECT_EQ(reason.rfind("GPU support is not available: ", 0), 0u) << reason;
    EXPECT_GT(reason.size(), std::string{"GPU support is not available: "}.size());
    EXPECT_EQ(gpu::activateGpuSupport().getMessage(), reason);
    EXPECT_FALSE(gpu::isGpuSupportActivated());
    const auto image = makeImage<short>({3, 2}, {1, 2, 3, 4, 5, 6});
    EXPECT_THROW((void)gpu::copyToGpu(*image), gpu::GpuException);
    EXPECT_THROW(
        (void)gpu::wrapGpuImage(image->getRow(0), image->getType(), image->getGeometry(), image->getStrides(), nullptr),
        gpu::GpuException);
    EXPECT_EQ(statsMsr2d(image)->Sum, 21); // on the CPU, as ever

    // The GPU level by itself fails, with the same reason.
    const auto processor = ProcessorFactory::getInstance().createProcessor("orlix::imaproc::glbmsr::StatsMsr3dGpuLvl3");
    ASSERT_TRUE(processor->init(eProcessorRulePolicy::eRP_CheckRules));
    processor->set<attr::InSubGpuImg>(pretendGpuImage(image));
    const core::ProcessingResult result = processor->run(eSynchroType::eST_Synchronous);
    EXPECT_FALSE(result);
    EXPECT_EQ(result.getMessage(), reason);
    EXPECT_EQ(processor->getStorage<OutStatsResult>(), nullptr);
}

// The levels above hand images of a GPU, and no others, to the GPU level; its outcome is theirs.
TEST(Gpu, LevelsHandItsImagesOn)
{
    const std::string reason = missingGpu();
    if (reason.empty()) {
        GTEST_SKIP() << "there is a GPU";
    }
    const auto image = makeImage<short>({3, 2}, {1, 2, 3, 4, 5, 6});
    for (GpuVariant* const variant : {&StatsMsr2dLvl2::gpuVariant, &StatsMsr3dLvl2::gpuVariant}) {
        const GpuVariant before = *variant;
        variant->isActivated = [] { return true; };
        const bool is2d = variant == &StatsMsr2dLvl2::gpuVariant;
        const auto measure = [is2d](const Ptr<const BaseImage>& it) { return is2d ? statsMsr2d(it) : statsMsr3d(it); };
        EXPECT_EQ(messageOf([&] { measure(pretendGpuImage(image)); }), reason);
        EXPECT_EQ(measure(image)->Sum, 21);
        // What the GPU level writes is the result: nothing is merged over it.
        variant->child = childOf<StatsMsr2dLvl2, FortyTwo>();
        EXPECT_EQ(measure(pretendGpuImage(image))->Sum, 42);
        EXPECT_EQ(measure(image)->Sum, 21);
        *variant = before;
    }
}

// Pixels on a GPU are not read by the CPU: neither by measures that have no GPU variant, nor before it is activated.
TEST(Gpu, ItsImagesAreRefusedElsewhere)
{
    gpu::deactivateGpuSupport(); // whatever ran before
    const auto image = pretendGpuImage(makeImage<float>({3, 2}, {1, 2, 3, 4, 5, 6}));
    const std::string text =
        " lies on a GPU: activate GPU support, where the measure runs there, or copy it to the host";
    EXPECT_EQ(messageOf([&] { statsMsr2d(image); }), "StatsMsr2dLvl1: InImg" + text);
    EXPECT_EQ(messageOf([&] { statsMsr3d(image); }), "StatsMsr3dLvl1: InImg3d" + text);
    EXPECT_EQ(messageOf([&] { statsMsr(image); }), "StatsMsrLvl1: InImg" + text);
    const ActivatedGpu activated;
    EXPECT_EQ(messageOf([&] { gaussianNoiseMsr(image); }), "GaussianNoiseMsrLvl1: InImg" + text);
    data::OutputArchive archive;
    EXPECT_EQ(archive.write("it", image.get()).getMessage(), "The pixels lie on a GPU: copy them to the host first");
    // And pixels of the host are not read by the GPU level.
    const auto processor = ProcessorFactory::getInstance().createProcessor("orlix::imaproc::glbmsr::StatsMsrGpuLvl3");
    ASSERT_TRUE(processor->init(eProcessorRulePolicy::eRP_CheckRules));
    processor->set<attr::InSubGpuImg>(makeImage<float>({1, 1}, {1}));
    EXPECT_EQ(processor->run(eSynchroType::eST_Synchronous).getMessage(),
              "StatsMsrGpuLvl3: InSubGpuImg does not lie on a GPU: copy it there first");
}

template <class T>
class GpuStats : public testing::Test
{
};
TYPED_TEST_SUITE(GpuStats, PixelTypes);

// Where there is a GPU: what the CPU finds, in every form, with gaps and without, the same in every run.
TYPED_TEST(GpuStats, AreThoseOfTheCpu)
{
    using T = TypeParam;
    const ActivatedGpu activated;
    if (!activated) {
        GTEST_SKIP() << missingGpu();
    }
    const auto compare = [](const StatsResult& gpu, const StatsResult& cpu) {
        const bool isExact = std::is_integral_v<T> && std::abs(cpu.Sum) < 0x1p52;
        EXPECT_EQ(gpu.NbPixels, cpu.NbPixels);
        EXPECT_EQ(gpu.Min, cpu.Min);
        EXPECT_EQ(gpu.Max, cpu.Max);
        EXPECT_NEAR(gpu.Sum, cpu.Sum, isExact ? 0 : 1e-12 * std::abs(cpu.Sum));
        EXPECT_NEAR(gpu.Mean, cpu.Mean, 1e-12 * std::abs(cpu.Mean));
        EXPECT_NEAR(gpu.StdDev, cpu.StdDev, 1e-9 * cpu.StdDev);
    };
    EXPECT_EQ(statsMsr2d(gpu::copyToGpu(*makeImage<T>({0, 5}, {})))->NbPixels, 0u);
    for (const ImageGeometry& size :
         {ImageGeometry{1, 1}, {3, 5}, {1023, 7}, {64, 64, 5, 2, 2}, {4096, 1500}, {333, 100, 20}}) {
        SCOPED_TRACE(toString(size));
        const auto values = randomValues<T>(size.nbPixels());
        const auto host = makeImage(size, values);
        const auto onGpu = gpu::copyToGpu(*host);
        ASSERT_TRUE(gpu::isGpuImage(*onGpu));
        EXPECT_EQ(std::memcmp(gpu::copyToHost(*onGpu)->getRow(0), host->getRow(0), values.size() * sizeof(T)), 0);
        // The left half has gaps between its rows.
        image::ImageStrides strides = onGpu->getStrides();
        const ImageGeometry half{(size.x + 1) / 2, size.y, size.z, size.c, size.t};
        const auto gapped = gpu::wrapGpuImage(onGpu->getRow(0), onGpu->getType(), half, strides, onGpu);
        const auto hostGapped = BaseImage::wrap(host->getRow(0), host->getType(), half, host->getStrides(), host);
        for (const auto& [a, b] : {std::pair{onGpu, host}, {gapped, hostGapped}}) {
            compare(*statsMsr(a), *statsMsr(b));
            const auto plans = multiSlice_statsMsr2d(a);
            const auto expected = multiSlice_statsMsr2d(b);
            const auto again = multiSlice_statsMsr2d(a);
            for (std::size_t i = 0; i < plans->size(); ++i) {
                compare(*plans->getElement(i), *expected->getElement(i));
                EXPECT_EQ(plans->getElement(i)->Sum, again->getElement(i)->Sum);
            }
            compare(*statsMsr3d(a), *statsMsr3d(b));
        }
    }
}

} // namespace orlix::test
