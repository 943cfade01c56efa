#include <support/TestImages.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/ORLIXIPLGlobalMeasureLogMessages.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr2d/StatsMsr2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/ProcessorLogMessages.hpp>
#include <framework/data/Archive.hpp>
#include <framework/data/DynamicObjectFactory.hpp>
#include <framework/process/BaseProcessingAlgorithm.hpp>
#include <framework/process/ProcessorFactory.hpp>

#include <boost/core/demangle.hpp>
#include <gtest/gtest.h>
#include <log4cplus/logger.h>

#include <filesystem>
#include <map>

namespace orlix::test
{

using namespace imaproc;

namespace
{

/// The row of the message table that is each class's tool tip.
const std::map<std::string, unsigned> toolTips{
    {"AreaPercent2dMsrLvl1", 0},
    {"AreaPercent2dMsrLvl2", 1},
    {"AreaPercent2dMsrLvl3", 2},
    {"GaussianNoiseMsrLvl1", 7},
    {"GaussianNoiseMsrLvl2", 8},
    {"GaussianNoiseMsrLvl3", 9},
    {"KernelDensityEstimator2dLvl1", 30},
    {"KernelDensityEstimator2dLvl2", 31},
    {"KernelDensityEstimator3dLvl1", 32},
    {"KernelDensityEstimator3dLvl2", 33},
    {"LocatePixels2dLvl1", 34},
    {"LocatePixels2dLvl2", 35},
    {"LocatePixels2dLvl3", 36},
    {"LocateVoxels3dLvl1", 37},
    {"LocateVoxels3dLvl2", 38},
    {"LocateVoxels3dLvl3", 39},
    {"ParaboloidImgFit2dLvl1", 47},
    {"ParaboloidImgFit2dLvl2", 48},
    {"ParaboloidImgFit2dLvl3", 49},
    {"VolumePercent3dMsrLvl1", 91},
    {"VolumePercent3dMsrLvl2", 92},
    {"VolumePercent3dMsrLvl3", 93},
    {"Counting2dMsrLvl1", 3},
    {"Counting2dMsrLvl2", 4},
    {"Counting3dMsrLvl1", 5},
    {"Counting3dMsrLvl2", 6},
    {"GlobalEntropyMsr2dLvl1", 10},
    {"GlobalEntropyMsr2dLvl2", 11},
    {"HistogramMaskMsr2dLvl1", 12},
    {"HistogramMaskMsr2dLvl2", 13},
    {"HistogramMaskMsr2dLvl3", 14},
    {"HistogramMaskMsr3dLvl1", 15},
    {"HistogramMaskMsr3dLvl2", 16},
    {"HistogramMaskMsr3dLvl3", 17},
    {"HistogramMaskMsrLvl1", 18},
    {"HistogramMaskMsrLvl2", 19},
    {"HistogramMaskMsrLvl3", 20},
    {"HistogramMsr2dLvl1", 21},
    {"HistogramMsr2dLvl2", 22},
    {"HistogramMsr2dLvl3", 23},
    {"HistogramMsr3dLvl1", 24},
    {"HistogramMsr3dLvl2", 25},
    {"HistogramMsr3dLvl3", 26},
    {"HistogramMsrLvl1", 27},
    {"HistogramMsrLvl2", 28},
    {"HistogramMsrLvl3", 29},
    {"StatsMaskMsr2dLvl1", 69},
    {"StatsMaskMsr2dLvl2", 70},
    {"StatsMaskMsr2dLvl3", 71},
    {"StatsMaskMsr3dLvl1", 72},
    {"StatsMaskMsr3dLvl2", 73},
    {"StatsMaskMsr3dLvl3", 74},
    {"StatsMaskMsrLvl1", 75},
    {"StatsMaskMsrLvl2", 76},
    {"StatsMaskMsrLvl3", 77},
    {"StatsMsr2dLvl1", 79},
    {"StatsMsr2dLvl2", 80},
    {"StatsMsr2dLvl3", 81},
    {"StatsMsr3dLvl1", 83},
    {"StatsMsr3dLvl2", 84},
    {"StatsMsr3dLvl3", 85},
    {"SeqProjectionImgLvl1", 57},
    {"SeqProjectionImgLvl2", 58},
    {"SeqProjectionMaxImgLvl3", 59},
    {"SeqProjectionMeanImgLvl3", 60},
    {"SeqProjectionMedianImgLvl3", 61},
    {"SeqProjectionMinImgLvl3", 62},
    {"SeqProjectionStdDevImgLvl3", 63},
    {"SeqProjectionSumImgLvl3", 64},
    {"SeqProjectionVarImgLvl3", 65},
    {"XProjection2dLvl1", 94},
    {"XProjectionMax2dLvl3", 96},
    {"XProjectionMean2dLvl3", 97},
    {"XProjectionMedian2dLvl3", 98},
    {"XProjectionMin2dLvl3", 99},
    {"XProjectionStdDev2dLvl3", 100},
    {"XProjectionSum2dLvl3", 101},
    {"XProjectionVar2dLvl3", 102},
    {"YProjection2dLvl1", 103},
    {"YProjectionMax2dLvl3", 104},
    {"YProjectionMean2dLvl3", 105},
    {"YProjectionMedian2dLvl3", 106},
    {"YProjectionMin2dLvl3", 107},
    {"YProjectionStdDev2dLvl3", 108},
    {"YProjectionSum2dLvl3", 109},
    {"YProjectionVar2dLvl3", 110},
    {"ZProjectionImgLvl1", 111},
    {"ZProjectionImgLvl2", 112},
    {"NormalizedCrossCorrelationMsr2dLvl1", 41},
    {"NormalizedCrossCorrelationMsr2dLvl2", 42},
    {"NormalizedCrossCorrelationMsr2dLvl3", 43},
    {"NormalizedCrossCorrelationMsr3dLvl1", 44},
    {"NormalizedCrossCorrelationMsr3dLvl2", 45},
    {"NormalizedCrossCorrelationMsr3dLvl3", 46},
    {"PearsonCorrelationCoefficient2dLvl1", 50},
    {"PearsonCorrelationCoefficient2dLvl2", 51},
    {"PearsonCorrelationCoefficient2dLvl3", 52},
    {"PearsonCorrelationCoefficient3dLvl1", 53},
    {"PearsonCorrelationCoefficient3dLvl2", 54},
    {"PearsonCorrelationCoefficient3dLvl3", 55},
    {"SimilarityMsrLvl1", 66},
    {"SimilarityMsrLvl2", 67},
    {"SimilarityMsrLvl3", 68},
#ifdef ORLIX_HAS_CUDA
    {"StatsMsr2dGpuLvl3", 78},
    {"StatsMsr3dGpuLvl3", 82},
    {"StatsMsrGpuLvl3", 86},
#endif
    {"StatsMsrLvl1", 87},
    {"StatsMsrLvl2", 88},
    {"StatsMsrLvl3", 89},
};

std::string textOf(unsigned number)
{
    return core::formatMessage(static_cast<glbmsr::eProcessorMessage>(number));
}

} // namespace

// Names are archive keys, so they are written by hand; this finds one that is not its class's.
TEST(Registry, EveryClassIsWhoItSaysItIs)
{
    std::size_t classes = 0;
    for (const ProcessorInfo& info : ProcessorFactory::getInstance().getProcessors()) {
        SCOPED_TRACE(info.typeName);
        const auto processor = ProcessorFactory::getInstance().createProcessor(info.typeName);
        const BaseProcessor& object = *processor;
        EXPECT_EQ(boost::core::demangle(typeid(object).name()), info.typeName);
        EXPECT_EQ(object.getClassName(), info.typeName);
        EXPECT_EQ("orlix::imaproc::glbmsr::" + info.objectName, info.typeName);
        EXPECT_EQ(object.getObjectName(), info.objectName);
        ASSERT_TRUE(toolTips.contains(info.objectName));
        EXPECT_EQ(object.getToolTip(), textOf(toolTips.at(info.objectName)));
        EXPECT_EQ(info.toolTip, object.getToolTip());
        EXPECT_EQ(object.getClassVersion(), 1u);
        EXPECT_EQ(info.libraryName, "ORLIXIPLGlobalMeasure");
        EXPECT_EQ(info.sourceLocation.rfind("src/ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/", 0), 0u);
        EXPECT_TRUE(info.sourceLocation.ends_with(".cpp")) << info.sourceLocation;
        const bool level3 = info.objectName.ends_with("Lvl3");
        const bool onGpu = info.objectName.ends_with("GpuLvl3");
        EXPECT_EQ(dynamic_cast<const BaseProcessingAlgorithm*>(&object) != nullptr, level3 && !onGpu);
        EXPECT_EQ(object.isComplexAction(), !level3);

        const auto dynamic = data::DynamicObjectFactory::getInstance().createSharedObject(info.typeName);
        ASSERT_NE(dynamic, nullptr);
        EXPECT_EQ(dynamic->getClassName(), info.typeName);
        EXPECT_EQ(dynamic->createNew()->getClassName(), info.typeName);
        ++classes;
    }
    EXPECT_EQ(classes, toolTips.size());
}

TEST(Registry, EveryClassIsCopiedWrittenAndRead)
{
    for (const ProcessorInfo& info : ProcessorFactory::getInstance().getProcessors()) {
        SCOPED_TRACE(info.typeName);
        const auto processor = ProcessorFactory::getInstance().createProcessor(info.typeName);
        ASSERT_TRUE(processor->init(eProcessorRulePolicy::eRP_CheckRules));
        data::OutputArchive archive;
        ASSERT_TRUE(archive.write("it", processor.get()));
        data::InputArchive back{archive.str()};
        Ptr<BaseProcessor> read;
        ASSERT_TRUE(back.read("it", read));
        EXPECT_EQ(read->getClassName(), info.typeName);
        EXPECT_EQ(read->getAttributes().size(), processor->getAttributes().size());
        EXPECT_EQ(processor->duplicate()->getClassName(), info.typeName);
    }
}

// What this machine can run is registered, and nothing else.
TEST(Registry, KernelsFollowTheMachine)
{
    for (const ProcessorInfo& info : ProcessorFactory::getInstance().getProcessors()) {
        const auto processor = ProcessorFactory::getInstance().createProcessor(info.typeName);
        if (const auto* const algorithm = dynamic_cast<const BaseProcessingAlgorithm*>(processor.get())) {
            SCOPED_TRACE(info.typeName);
            using Set = core::eInstructionSet;
            std::map<unsigned, std::size_t> kernels;
            for (const auto& kernel : algorithm->getFunctionSelector().getFunctions()) {
                for (const Set::domain set :
                     {Set::eIS_Generic, Set::eIS_SSE2, Set::eIS_AVX, Set::eIS_AVX2, Set::eIS_AVX512}) {
                    kernels[set] += kernel.instructionSets == set ? 1 : 0;
                }
                if (kernel.instructionSets == Set::eIS_AVX) {
                    EXPECT_EQ(kernel.dataTypes[0], image::eImageBufferType::eIBT_Float32);
                }
            }
            // One for every type, for every pair of types, for those of labels, or for bytes.
            const auto starts = [&](const char* name) { return info.objectName.starts_with(name); };
            const bool ofPairs = starts("SeqProjection") || starts("NormalizedCross") || starts("Pearson");
            const bool ofLabels = info.objectName.find("Percent") != std::string::npos;
            const bool ofBytes = starts("Locate");
            const std::size_t each = ofPairs ? 49 : ofLabels ? 3 : ofBytes ? 1 : 7;
            const bool isGeneric = info.objectName.find("ProjectionMedian2d") != std::string::npos || ofBytes;
            EXPECT_EQ(kernels[Set::eIS_Generic], each);
            for (const Set::domain set : {Set::eIS_SSE2, Set::eIS_AVX2, Set::eIS_AVX512}) {
                EXPECT_EQ(kernels[set], core::isAvailable(set) && !isGeneric ? each : 0) << core::getName(set);
            }
            const bool hasAvx = core::isAvailable(Set::eIS_AVX) && !ofPairs && !ofLabels && !isGeneric &&
                                !starts("StatsMask") && !starts("Similarity") && !starts("Paraboloid");
            EXPECT_EQ(kernels[Set::eIS_AVX], hasAvx ? 1u : 0u);
        }
    }
}

TEST(Messages, TheTableIsWhole)
{
    using glbmsr::eProcessorMessage;
    EXPECT_TRUE(core::MsgMapRegistrator<eProcessorMessage>::registerMessageMap());
    EXPECT_TRUE((core::MessageMapRegistrator<eProcessorMessage, glbmsr::eORLIXIPLGlobalMeasureMessage>::process()));
    const auto& manager = glbmsr::getORLIXIPLGlobalMeasureLogMessageManager();
    EXPECT_EQ(manager.getNbMessages(typeid(eProcessorMessage).name()), 116u);
    EXPECT_EQ(manager.getNbMessages(typeid(glbmsr::eORLIXIPLGlobalMeasureMessage).name()), 0u);
    // Every letter counts: the FNV-1a hash of all rows, each with a line end, as they were agreed.
    std::uint64_t hash = 14695981039346656037u;
    for (unsigned number = 0; number < 116; ++number) {
        for (const char letter : textOf(number) + "\n") {
            hash = (hash ^ static_cast<unsigned char>(letter)) * 1099511628211u;
        }
    }
    EXPECT_EQ(hash, 16864963540613765972u);
    EXPECT_EQ(glbmsr::getORLIXIPLGlobalMeasureLoggerName(), "ORLIX.ORLIXIPLGlobalMeasure");
    EXPECT_EQ(glbmsr::getORLIXIPLGlobalMeasureLogger().getName(), "ORLIX.ORLIXIPLGlobalMeasure");
}

} // namespace orlix::test
