// Loads and unloads the measure library: its classes come and go with it, a first question may come from many threads
// at once, and dlclose really unloads. This program is not linked to the library.

#include <support/Maps.hpp>

#include <framework/attribute/ImageAttributes.hpp>
#include <framework/attribute/StatsResult.hpp>
#include <framework/data/Archive.hpp>
#include <framework/data/DynamicObjectFactory.hpp>
#include <framework/process/BaseProcessor.hpp>
#include <framework/process/ProcessorFactory.hpp>

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <set>
#include <string>
#include <thread>
#include <vector>

namespace orlix::test
{

using namespace imaproc;

TEST(Library, LoadsAndUnloads)
{
    const std::string name = "libORLIXIPLGlobalMeasure_4_1_0_2_x64.so";
    const std::size_t dataClasses = data::DynamicObjectFactory::getInstance().getTypeNames().size();
    for (int round = 0; round < 2; ++round) {
        EXPECT_TRUE(ProcessorFactory::getInstance().getProcessors().empty());
        EXPECT_FALSE(isMapped(name));
        void* const library = dlopen(ORLIX_LIBRARY, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(library, nullptr) << dlerror();
        EXPECT_FALSE(ProcessorFactory::getInstance().getProcessors().empty());

        std::vector<std::string> answers(8);
        std::vector<std::thread> threads;
        for (std::string& answer : answers) {
            threads.emplace_back([&answer] {
                const auto processor =
                    ProcessorFactory::getInstance().createProcessor("orlix::imaproc::glbmsr::StatsMsr2dLvl1");
                (void)processor->init(eProcessorRulePolicy::eRP_CheckRules);
                answer = processor->getToolTip();
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        EXPECT_EQ(std::set<std::string>(answers.begin(), answers.end()).size(), 1u);
        EXPECT_EQ(answers[0], "Level 1 algorithm: measure of common statistics indicators in an image (mean, max, "
                              "etc.) for each 2d plan");

        // A run that nobody waits for still uses the library's code: unloading waits for it.
        auto processor = ProcessorFactory::getInstance().createProcessor("orlix::imaproc::glbmsr::StatsMsrLvl1");
        (void)processor->init(eProcessorRulePolicy::eRP_CheckRules);
        processor->set<attr::InImg>(image::BaseImage::create(image::eImageBufferType::eIBT_Float32, {4096, 4096}));
        ASSERT_TRUE(processor->run(eSynchroType::eST_Asynchronous));
        processor.reset();

        // What a host still holds when the library is closed.
        processor = ProcessorFactory::getInstance().createProcessor("orlix::imaproc::glbmsr::StatsMsr2dLvl1");
        (void)processor->init(eProcessorRulePolicy::eRP_CheckRules);
        processor->set<attr::InImg>(image::BaseImage::create(image::eImageBufferType::eIBT_UInt8, {9, 9, 2}));
        executeSyncRun(processor);
        const auto held = processor->getStorage<attr::OutPIStatsResult>();
        processor.reset();

        EXPECT_EQ(dlclose(library), 0);
        EXPECT_FALSE(isMapped(name));
        EXPECT_EQ(boost::dynamic_pointer_cast<attr::PlanIndexedStatsResult>(held->duplicateShared())
                      ->getStorage({1, 0, 0})
                      ->NbPixels,
                  81u);
        data::OutputArchive archive;
        EXPECT_TRUE(archive.write("result", held.get()));
        EXPECT_EQ(data::DynamicObjectFactory::getInstance().getTypeNames().size(), dataClasses);
    }
}

} // namespace orlix::test
