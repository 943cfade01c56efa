#include <support/Messages.hpp>
#include <support/TestImages.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/ORLIXIPLGlobalMeasure.hpp>
#include <framework/process/MeasureList.hpp>
#include <framework/process/ProcessorFactory.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace orlix::test
{

using namespace imaproc;
using namespace imaproc::glbmsr;

namespace
{

Measure findMeasure(const std::string& verb)
{
    for (Measure& measure : MeasureList::getInstance().getMeasures()) {
        if (measure.verb == verb) {
            return measure;
        }
    }
    throw std::invalid_argument{verb};
}

} // namespace

// Every level 1 class is a form of one measure, and every form can be made.
TEST(MeasureList, HasEveryMeasureOnce)
{
    std::multiset<std::string> listed;
    for (const Measure& measure : MeasureList::getInstance().getMeasures()) {
        SCOPED_TRACE(measure.verb);
        EXPECT_FALSE(measure.name.empty() || measure.help.empty() || measure.forms.empty());
        for (const MeasureForm& form : measure.forms) {
            EXPECT_FALSE(form.inputs.empty());
            if (measure.state == nullptr) {
                listed.insert(form.create()->getClassName());
            }
        }
        if (measure.state != nullptr) {
            EXPECT_EQ(measure.state->entry.create({})->getMeasure().verb, measure.verb);
            EXPECT_THROW((void)measure.forms[0].create(), core::BaseException);
        }
        for (const data::FieldInfo& field : measure.fields) {
            EXPECT_STRNE(field.help, "") << field.name;
        }
    }
    std::multiset<std::string> registered;
    for (const ProcessorInfo& info : ProcessorFactory::getInstance().getProcessors()) {
        if (info.typeName.ends_with("Lvl1")) {
            registered.insert(info.typeName);
        }
    }
    EXPECT_EQ(listed, registered);
}

// What the forms say follows from their classes.
TEST(MeasureList, DescribesForms)
{
    const Measure histogram = findMeasure("histogram");
    std::set<std::tuple<std::string, std::string, bool>> forms;
    for (const MeasureForm& form : histogram.forms) {
        forms.emplace(form.function, form.per, form.needsMask());
    }
    EXPECT_EQ(forms, (std::set<std::tuple<std::string, std::string, bool>>{{"histogramMsr", "image", false},
                                                                           {"histogramMsr2d", "plan", false},
                                                                           {"histogramMsr3d", "volume", false},
                                                                           {"histogramMaskMsr", "image", true},
                                                                           {"histogramMaskMsr2d", "plan", true},
                                                                           {"histogramMaskMsr3d", "volume", true}}));
    std::vector<std::string> options;
    for (const attr::Parameter& parameter : histogram.parameters) {
        options.emplace_back(parameter.info.option);
    }
    EXPECT_EQ(options, (std::vector<std::string>{"min", "max", "bin-width", "classes"}));

    const MeasureForm percent = findMeasure("percent").forms.front();
    EXPECT_TRUE(percent.takesMask());
    EXPECT_FALSE(percent.needsMask());
    EXPECT_EQ(findMeasure("ncc").forms.front().inputs.size(), 2u);
    EXPECT_EQ(findMeasure("project").forms.front().per, "plan");
    const attr::Parameter samples = findMeasure("kde").parameters.front();
    EXPECT_EQ(samples.defaultValue, data::Value{std::uint64_t{1000}});
    EXPECT_TRUE(samples.isWhole);
}

// A program that knows no measure gets what an entry function returns.
TEST(MeasureList, RunsByName)
{
    const auto image = makeRamp({40, 30, 3});
    const auto processor = findMeasure("histogram").forms[1].create();
    processor->getAttribute("InImg").setImage(image);
    processor->setParameter("classes", std::uint64_t{7});
    executeSyncRun(processor);
    auto params = makePtr<attr::HistoMsrParams>();
    params->NbClasses = 7;
    const auto expected = multiSlice_histogramMsr2d(image, params);
    const auto* const found = processor->getAttributes().back()->getCollection();
    ASSERT_EQ(found->size(), 3u);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_TRUE(found->getElement(i)->getField("Frequencies") == data::Value(expected->getElement(i)->Frequencies));
    }
    // Parameters of plans are for all of them.
    const auto entropy = findMeasure("entropy").forms[0].create();
    entropy->getAttribute("InImg").setImage(image);
    entropy->setParameter("bin-width", 2.0);
    EXPECT_EQ(entropy->getStorage<attr::InOptPIHistoMsrParams>()->getStorage({2, 0, 0})->BinWidth, 2);
    // Enumerators go by their names.
    const auto projection = findMeasure("project").forms[0].create();
    projection->setParameter("stat", std::string{"median"});
    EXPECT_EQ(*projection->getStorage<attr::InProjStatType>(), attr::eProjStatType::ePST_Median);
}

TEST(MeasureList, RefusesByName)
{
    const auto processor = findMeasure("histogram").forms[0].create();
    EXPECT_EQ(messageOf([&] { processor->setParameter("colour", 1.0); }), "HistogramMsrLvl1 has no attribute colour");
    EXPECT_EQ(messageOf<core::BaseException>([&] { processor->setParameter("classes", -1.0); }),
              "NbClasses of orlix::imaproc::attr::HistoMsrParams takes a number");
    EXPECT_EQ(messageOf([&] { processor->getAttribute("InImage"); }), "HistogramMsrLvl1 has no attribute InImage");
    EXPECT_EQ(messageOf<core::BaseException>([&] { processor->getAttribute("OutHistogram").setImage(nullptr); }),
              "OutHistogram does not take an image to read");
    const auto projection = findMeasure("project").forms[0].create();
    EXPECT_EQ(messageOf<core::BaseException>([&] { projection->setParameter("stat", std::string{"mode"}); }),
              "InProjStatType of InProjStatType takes one of max, mean, median, min, stddev, sum, var");
}

// A record is read and written field by field.
TEST(Fields, AreReachedByName)
{
    attr::HistoMsrParams params;
    params.setField("MinMaxDefinition", std::string{"user"});
    params.setField("UseBinWidth", true);
    params.setField("Min", std::uint64_t{3});
    EXPECT_EQ(params.MinMaxDefinition, attr::eMinMaxDefinition::eMMD_UserDefinedMinMax);
    EXPECT_TRUE(params.UseBinWidth);
    EXPECT_EQ(params.getField("Min"), data::Value{3.0});
    EXPECT_EQ(params.getField("MinMaxDefinition"), data::Value{std::string{"user"}});
    EXPECT_EQ(messageOf<core::BaseException>([&] { (void)params.getField("min"); }),
              "orlix::imaproc::attr::HistoMsrParams has no field min, but Min, Max, BinWidth, NbClasses, "
              "MinMaxDefinition, UseBinWidth");
    EXPECT_EQ(messageOf<core::BaseException>([&] { params.setField("UseBinWidth", 1.0); }),
              "UseBinWidth of orlix::imaproc::attr::HistoMsrParams takes true or false");

    attr::Pixels2d pixels;
    pixels.Coordinates = {{1, 2}, {3, 4}};
    EXPECT_EQ(pixels.getField("Coordinates"), data::Value(std::vector<double>{1, 2, 3, 4}));
    EXPECT_EQ(pixels.getFields()[0].columns, 2u);
}

// A program may create processors of any class by itself.
TEST(Processor, IsMadeOutsideItsLibrary)
{
    const auto image = makeRamp({20, 10});
    for (const Ptr<BaseProcessor>& processor :
         {Ptr<BaseProcessor>{makePtr<HistogramMsrLvl1>()}, Ptr<BaseProcessor>{makePtr<StatsMsr2dLvl1>()},
          Ptr<BaseProcessor>{makePtr<GaussianNoiseMsrLvl1>()}, Ptr<BaseProcessor>{makePtr<ParaboloidImgFit2dLvl1>()}}) {
        ASSERT_TRUE(processor->init(eProcessorRulePolicy::eRP_CheckRules));
        processor->set<attr::InImg>(image);
        EXPECT_TRUE(processor->run(eSynchroType::eST_Synchronous)) << processor->getObjectName();
    }
    EXPECT_EQ(makePtr<LocatePixels2dLvl2>()->getObjectName(), "LocatePixels2dLvl2");
    EXPECT_EQ(makePtr<XProjectionMax2dLvl3>()->getObjectName(), "XProjectionMax2dLvl3");
    EXPECT_EQ(makePtr<HistogramMaskMsr3dLvl3>()->getObjectName(), "HistogramMaskMsr3dLvl3");
    EXPECT_EQ(makePtr<KernelDensityEstimator3dLvl2>()->getObjectName(), "KernelDensityEstimator3dLvl2");
}

} // namespace orlix::test
