#include <support/TestImages.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr2d/StatsMsr2d.hpp>
#include <framework/attribute/ImageAttributes.hpp>
#include <framework/attribute/StatsResult.hpp>
#include <framework/data/Archive.hpp>
#include <framework/data/DynamicObjectFactory.hpp>
#include <framework/image/BaseImage.hpp>
#include <framework/process/BaseProcessor.hpp>
#include <framework/process/ProcessorFactory.hpp>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>

namespace orlix::test
{

using namespace imaproc;
using data::InputArchive;
using data::OutputArchive;

namespace
{

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

Ptr<BaseProcessor> makeProcessor(const std::string& name)
{
    auto processor = ProcessorFactory::getInstance().createProcessor("orlix::imaproc::glbmsr::" + name);
    (void)processor->init(eProcessorRulePolicy::eRP_CheckRules);
    return processor;
}

std::string replaced(std::string text, const std::string& what, const std::string& with)
{
    const std::size_t at = text.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    return at == std::string::npos ? text : text.replace(at, what.size(), with);
}

} // namespace

TEST(Archive, DoublesComeBackAsTheyWere)
{
    for (const double value : {0.1, -0.0, 1e308, 5e-324, 1.0 / 3, nan, infinity, -infinity}) {
        OutputArchive out;
        out.write("x", value);
        double back = 0;
        ASSERT_TRUE(InputArchive{out.str()}.read("x", back));
        EXPECT_TRUE(std::isnan(value) ? std::isnan(back) : back == value && std::signbit(back) == std::signbit(value));
    }
}

TEST(Archive, BytesComeBackAsTheyWere)
{
    for (const std::size_t size : {0, 1, 2, 3, 4, 255, 256}) {
        std::vector<std::byte> bytes(size);
        for (std::size_t i = 0; i < size; ++i) {
            bytes[i] = static_cast<std::byte>(i * 37);
        }
        OutputArchive out;
        out.write("bytes", bytes);
        std::vector<std::byte> back(7);
        ASSERT_TRUE(InputArchive{out.str()}.read("bytes", back));
        EXPECT_EQ(back, bytes);
    }
    OutputArchive out; // the test vectors of RFC 4648
    out.write("bytes", std::vector<std::byte>{std::byte{'f'}, std::byte{'o'}, std::byte{'o'}, std::byte{'b'}});
    EXPECT_NE(out.str().find("\"Zm9vYg==\""), std::string::npos);
}

// A processor with its image and its results; the image is packed whatever its strides.
TEST(Archive, AProcessorComesBackWithItsValues)
{
    const auto values = randomValues<short>(5 * 3 * 2);
    const auto processor = makeProcessor("StatsMsr2dLvl1");
    processor->set<attr::InImg>(makeStrided<short>({5, 3, 2}, values, true, true, true));
    executeSyncRun(processor);
    OutputArchive out;
    ASSERT_TRUE(out.write("processor", processor.get()));

    InputArchive in{out.str()};
    Ptr<BaseProcessor> back;
    const core::ProcessingResult result = in.read("processor", back);
    ASSERT_TRUE(result) << result.getMessage();
    const auto image = back->getStorage<attr::InImg>();
    EXPECT_EQ(image->getGeometry(), (ImageGeometry{5, 3, 2}));
    EXPECT_EQ(std::memcmp(image->getRow(0), values.data(), values.size() * sizeof(short)), 0);
    const auto written = processor->getStorage<attr::OutPIStatsResult>();
    const auto read = back->getStorage<attr::OutPIStatsResult>();
    ASSERT_EQ(read->size(), 2u);
    EXPECT_EQ(read->getStorage({1, 0, 0})->StdDev, written->getStorage({1, 0, 0})->StdDev);

    // A copy holds values of its own, and the very image.
    const auto copy = boost::dynamic_pointer_cast<BaseProcessor>(processor->duplicateShared());
    EXPECT_EQ(copy->getStorage<attr::InImg>()->getRow(0), processor->getStorage<attr::InImg>()->getRow(0));
    written->getStorage({1, 0, 0})->Sum = 4711;
    EXPECT_NE(copy->getStorage<attr::OutPIStatsResult>()->getStorage({1, 0, 0})->Sum, 4711);
    EXPECT_THROW(makeProcessor("StatsMsr3dLvl1")->copy(*processor), core::BaseException);
}

TEST(Archive, OneSectionHoldsOneProcessor)
{
    OutputArchive archive;
    ASSERT_TRUE(makeProcessor("StatsMsrLvl1")->write(archive));
    const core::ProcessingResult second = makeProcessor("GaussianNoiseMsrLvl1")->write(archive);
    EXPECT_NE(second.getMessage().find("write the orlix::imaproc::glbmsr::GaussianNoiseMsrLvl1 into a section of its"),
              std::string::npos);
    const auto section = archive.openSection("another");
    EXPECT_TRUE(makeProcessor("GaussianNoiseMsrLvl1")->write(archive));
}

TEST(Archive, AStripComesBack)
{
    const auto strip = makeProcessor("StatsMsr3dLvl3");
    strip->set<attr::InZStrip3d>({makeImage<short>({2, 2, 4}, randomValues<short>(16)), 1, 2});
    OutputArchive out;
    ASSERT_TRUE(out.write("strip", strip.get()));
    InputArchive in{out.str()};
    Ptr<BaseProcessor> back;
    ASSERT_TRUE(in.read("strip", back));
    const auto& read = back->getStorage<attr::InZStrip3d>();
    EXPECT_EQ(read.first, 1u);
    EXPECT_EQ(read.nbPixels(), 8u);
}

TEST(Archive, AVersionIsWrittenOnceAndANewerOneIsRefused)
{
    const std::string typeName = "orlix::imaproc::glbmsr::StatsMsr2dLvl1";
    OutputArchive out;
    for (const char* const key : {"one", "two"}) {
        ASSERT_TRUE(out.write(key, makeProcessor("StatsMsr2dLvl1").get()));
    }
    EXPECT_EQ(out.getVersion(typeName), 1u);
    const std::string text = out.str();
    EXPECT_EQ(text.find("\"version\""), text.rfind("\"version\""));
    EXPECT_EQ(nlohmann::json::parse(text)[typeName]["version"], 1);

    InputArchive in{text}; // the second alone, without the first
    Ptr<BaseProcessor> back;
    EXPECT_TRUE(in.read("two", back));
    EXPECT_EQ(in.getVersion(typeName), 1u);

    InputArchive newer{replaced(text, "\"version\": 1", "\"version\": 2")};
    const core::ProcessingResult result = newer.read("one", back);
    EXPECT_FALSE(result);
    EXPECT_EQ(result.getMessage(),
              "The archive holds version 2 of " + typeName + ", but no version above 1 can be read here");
}

// A damaged archive is refused by name, and nothing crashes.
TEST(Archive, DamageIsNamed)
{
    for (const char* const text : {"", "[1]", "{\"a\":", "null"}) {
        EXPECT_THROW(InputArchive{text}, data::SerializationException) << text;
    }
    OutputArchive out;
    const auto processor = makeProcessor("StatsMsr2dLvl1");
    processor->set<attr::InImg>(makeImage<short>({2, 2}, {1, 2, 3, 4}));
    ASSERT_TRUE(out.write("p", processor.get()));
    struct Case
    {
        std::string what;
        std::string with;
        std::string message;
    };
    const Case cases[] = {
        {"\"int16\"", "\"int64\"", "\"int64\" is no pixel type"},
        {"\"x\": 2", "\"x\": 3", "The archive holds 8 bytes of pixels where 12 are needed"},
        {"\"x\": 2", "\"x\": 99999999999", "too large"},
        {"\"x\": 2", "\"y\": 2", "no \"x\" that is a whole number"},
        {"AQAC", "A*AC", "no \"pixels\" that is a text in base64"},
        {"image::BaseImage", "image::Nothing", "class orlix::image::Nothing, which is not known"},
        {"orlix::image::BaseImage", "orlix::imaproc::attr::StatsResult",
         "\"InImg\" in the archive cannot hold an object of the class orlix::imaproc::attr::StatsResult"},
        {"\"attributes\": {", "\"else\": {", "no \"attributes\" that is a section"},
        {"\"OutPIStatsResult\": null", "\"OutPIStatsResult\": 5", "\"OutPIStatsResult\""},
        {"\"version\": 1", "\"version\": -1", "\"version\""},
    };
    for (const Case& each : cases) {
        InputArchive in{replaced(out.str(), each.what, each.with)};
        Ptr<BaseProcessor> back;
        const core::ProcessingResult result = in.read("p", back);
        EXPECT_FALSE(result) << each.with;
        EXPECT_EQ(back, nullptr);
        EXPECT_NE(result.getMessage().find(each.message), std::string::npos) << result.getMessage();
    }
}

// An archive of objects in objects, deeper than any processor's, ends in an error and not in the stack's end.
TEST(Archive, DepthIsBounded)
{
    const std::string head = "{\"class\":\"orlix::imaproc::attr::PlanIndexedStatsResult\",\"size\":1,\"0\":{\"z\":0,"
                             "\"c\":0,\"t\":0,\"element\":";
    std::string text = "{\"p\":";
    for (int i = 0; i < 20000; ++i) {
        text += head;
    }
    text += "null" + std::string(40000, '}') + "}";
    InputArchive in{text};
    Ptr<attr::PlanIndexedStatsResult> back;
    EXPECT_FALSE(in.read("p", back));
    EXPECT_EQ(back, nullptr);
}

// A copy or an archive carries the outputs of a run, but the next run makes its own; a supplied output stays.
TEST(Processor, CopiesMeasureAnew)
{
    const auto original = makeProcessor("StatsMsr2dLvl1");
    original->set<attr::InImg>(makeImage<short>({2, 2}, {1, 2, 3, 4}));
    executeSyncRun(original);
    OutputArchive out;
    ASSERT_TRUE(out.write("p", original.get()));
    InputArchive in{out.str()};
    Ptr<BaseProcessor> read;
    ASSERT_TRUE(in.read("p", read));
    const auto copy = boost::dynamic_pointer_cast<BaseProcessor>(original->duplicateShared());
    for (const auto& processor : {copy, read}) {
        processor->set<attr::InImg>(makeImage<short>({2, 2, 2}, randomValues<short>(8)));
        executeSyncRun(processor);
        EXPECT_EQ(processor->getStorage<attr::OutPIStatsResult>()->size(), 2u);
    }
    EXPECT_EQ(original->getStorage<attr::OutPIStatsResult>()->size(), 1u);

    const auto free = makePtr<glbmsr::StatsMsr2dLvl1>(); // its copy has no rules, either
    ASSERT_TRUE(free->init(eProcessorRulePolicy::eRP_NoRules));
    auto plans = makePtr<attr::PlanIndexedStatsResult>();
    plans->insert({1, 0, 0}, makePtr<attr::StatsResult>());
    free->set<attr::OutPIStatsResult>(plans);
    free->set<attr::InImg>(makeImage<short>({2, 2, 2}, randomValues<short>(8)));
    const auto freeCopy = boost::dynamic_pointer_cast<BaseProcessor>(free->duplicateShared());
    EXPECT_TRUE(freeCopy->run(eSynchroType::eST_Synchronous));
}

TEST(PlanIndexedColl, KeepsTheOrderOfPlans)
{
    attr::PlanIndexedStatsResult collection;
    for (const image::PlanIndex& plan :
         {image::PlanIndex{0, 0, 1}, image::PlanIndex{5, 0, 0}, image::PlanIndex{0, 1, 0}, image::PlanIndex{0, 0, 0},
          image::PlanIndex{5, 0, 0}}) {
        collection.insert(plan, makePtr<attr::StatsResult>());
    }
    ASSERT_EQ(collection.size(), 4u);
    EXPECT_EQ(collection.getPlan(1), (image::PlanIndex{5, 0, 0}));
    EXPECT_EQ(collection.getPlan(2), (image::PlanIndex{0, 1, 0}));
    EXPECT_EQ(collection.getPlan(3), (image::PlanIndex{0, 0, 1}));
    EXPECT_EQ(collection.getStorage({1, 1, 1}), nullptr);
    attr::BasePlanIndexedColl& base = collection;
    EXPECT_THROW(base.insert({0, 0, 0}, nullptr), core::BaseException);
    EXPECT_THROW(base.insert({0, 0, 0}, makePtr<attr::PlanIndexedStatsResult>()), core::BaseException);
}

} // namespace orlix::test
