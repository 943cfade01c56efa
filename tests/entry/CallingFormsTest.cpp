#include <support/Messages.hpp>
#include <support/TestImages.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsMsr.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr2d/StatsMsr2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr3d/StatsMsr3d.hpp>
#include <framework/process/ProcessorFactory.hpp>

#include <gtest/gtest.h>

#include <condition_variable>
#include <functional>
#include <mutex>
#include <set>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

namespace orlix::test
{

using namespace imaproc;
using namespace imaproc::glbmsr;
using image::eImageBufferType;

namespace
{

template <class A, class P>
constexpr bool canSet = requires(P& processor)
{
    processor.template set<A>({});
};
template <class A, class P>
constexpr bool canGet = requires(P& processor)
{
    processor.template getStorage<A>();
};

// On a concrete class an attribute that it lacks does not compile; on the base it is looked up.
static_assert(canSet<InImg, StatsMsr2dLvl1> && canGet<OutPIStatsResult, StatsMsr2dLvl1>);
static_assert(!canSet<InImg3d, StatsMsr2dLvl1> && !canGet<OutStatsResult, StatsMsr2dLvl1>);
static_assert(canSet<InImg3d, BaseProcessor> && canGet<OutStatsResult, BaseProcessor>);

} // namespace

TEST(CallingForms, SingleFormsMeasureThePlanZeroAlone)
{
    const auto image = makeRamp({10, 10, 3, 2});
    EXPECT_EQ(statsMsr2d(image)->Max, 99);
    EXPECT_EQ(statsMsr3d(image)->Max, 299);
    EXPECT_EQ(statsMsr(image)->Max, 599);
    EXPECT_EQ(multiSlice_statsMsr2d(image)->getStorage({2, 1, 0})->Max, 599);
}

TEST(CallingForms, AsynchronousFormsHandBackTheRunningProcessor)
{
    const auto image = makeRamp({100, 100, 5});
    const auto single = statsMsr2d_async(image);
    const auto preMade = getAsyncProcessorOutput(single); // there before the run has ended, and the same afterwards
    ASSERT_NE(preMade, nullptr);
    EXPECT_TRUE(single->wait());
    EXPECT_EQ(getAsyncProcessorOutput(single), preMade);
    EXPECT_EQ(preMade->NbPixels, 10000u);
    EXPECT_EQ(getAsyncProcessorMultiSliceOutput(single)->size(), 1u);

    const auto every = multiSlice_statsMsr2d_async(image);
    EXPECT_TRUE(every->wait());
    EXPECT_EQ(getAsyncProcessorMultiSliceOutput(every)->size(), 5u);
    EXPECT_EQ(getAsyncProcessorOutput(every)->Max, 9999);
    EXPECT_EQ(every->getProgress(), 1);
    EXPECT_FALSE(every->isRunning());

    const auto plain = statsMsr_async(image);
    EXPECT_TRUE(plain->wait());
    EXPECT_EQ(getAsyncProcessorOutput(plain)->NbPixels, 50000u);
    const auto volume = multiSlice_statsMsr3d_async(image);
    EXPECT_TRUE(volume->wait());
    EXPECT_EQ(getAsyncProcessorOutput(volume)->NbPixels, 50000u);
}

// What is wrong is named, from the synchronous forms by exception, from an asynchronous run by wait().
TEST(CallingForms, FailuresReachTheCaller)
{
    const Ptr<const BaseImage> none;
    const Ptr<const BaseImage> binary = BaseImage::create(eImageBufferType::eIBT_Binary, {4, 4});
    EXPECT_EQ(messageOf([&] { statsMsr2d(none); }), "StatsMsr2dLvl1: InImg is not set");
    EXPECT_EQ(messageOf([&] { multiSlice_statsMsr3d(none); }), "StatsMsr3dLvl1: InImg3d is not set");
    EXPECT_EQ(messageOf([&] { statsMsr(binary); }),
              "StatsMsrLvl1: InImg does not take a binary image: convert it to one of uint8, int8, uint16, int16, "
              "uint32, int32, float32");
    const auto failing = multiSlice_statsMsr2d_async(none);
    const core::ProcessingResult result = failing->wait();
    EXPECT_FALSE(result);
    EXPECT_EQ(result.getMessage(), "StatsMsr2dLvl1: InImg is not set");
    EXPECT_EQ(getAsyncProcessorMultiSliceOutput(failing), nullptr);
    EXPECT_EQ(getAsyncProcessorOutput(failing), nullptr);
}

TEST(CallingForms, ASuppliedCollectionHasTheImagesPlans)
{
    const auto image = makeRamp({8, 8, 3});
    const auto run = [&](std::initializer_list<image::PlanIndex> plans, eProcessorRulePolicy policy) {
        auto collection = makePtr<PlanIndexedStatsResult>();
        for (const auto& plan : plans) {
            collection->insert(plan, makePtr<StatsResult>());
        }
        auto processor = makePtr<StatsMsr2dLvl1>();
        EXPECT_TRUE(processor->init(policy));
        processor->set<InImg>(image);
        processor->set<OutPIStatsResult>(collection);
        const core::ProcessingResult result = processor->run(eSynchroType::eST_Synchronous);
        return result ? std::to_string(collection->getElement(collection->size() - 1)->Max) : result.getMessage();
    };
    constexpr auto rules = eProcessorRulePolicy::eRP_CheckRules;
    EXPECT_EQ(run({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}, rules), "191.000000");
    EXPECT_EQ(run({{0, 0, 0}}, rules), "63.000000");
    const std::string refusal = "StatsMsr2dLvl1: OutPIStatsResult holds 2 plans that are not those of InImg, which "
                                "has 3: pass a collection of just these plans, or leave it unset";
    EXPECT_EQ(run({{0, 0, 0}, {2, 0, 0}}, rules), refusal);
    EXPECT_NE(run({{1, 0, 0}}, rules).find("holds 1 plans"), std::string::npos);
    // Without rules it is not refused, and a plan that does not exist fails by itself.
    EXPECT_EQ(run({{0, 0, 0}, {2, 0, 0}}, eProcessorRulePolicy::eRP_NoRules), "191.000000");
    EXPECT_NE(run({{0, 0, 0}, {3, 0, 0}}, eProcessorRulePolicy::eRP_NoRules).find("no plan (3, 0, 0)"),
              std::string::npos);
}

// The plans of a 3d measure are the volumes.
TEST(CallingForms, ASuppliedCollectionHasTheImagesVolumes)
{
    for (const unsigned channels : {2u, 3u}) {
        auto collection = makePtr<PlanIndexedStatsResult>();
        for (unsigned c = 0; c < channels; ++c) {
            collection->insert({0, c, 0}, makePtr<StatsResult>());
        }
        auto processor = makePtr<StatsMsr3dLvl1>();
        ASSERT_TRUE(processor->init(eProcessorRulePolicy::eRP_CheckRules));
        processor->set<InImg3d>(makeRamp({4, 4, 3, 2}));
        processor->set<OutPIStatsResult>(collection);
        EXPECT_EQ(static_cast<bool>(processor->run(eSynchroType::eST_Synchronous)), channels == 2);
    }
}

// A strip that its image does not have is refused before a pixel is read.
TEST(Processor, RefusesAStripOutsideTheImage)
{
    const auto strip = makePtr<StatsMsr2dLvl3>();
    ASSERT_TRUE(strip->init(eProcessorRulePolicy::eRP_CheckRules));
    constexpr auto far = std::numeric_limits<std::size_t>::max();
    for (const auto& [first, count] : {std::pair<std::size_t, std::size_t>{0, 5}, {4, 1}, {5, 0}, {far, 2}, {1, far}}) {
        strip->set<InYStrip2d>({makeRamp({4, 4}), first, count});
        EXPECT_NE(strip->run(eSynchroType::eST_Synchronous).getMessage().find("but the image has 4 rows"),
                  std::string::npos);
    }
}

TEST(Processor, IsLookedUpByNameAndUsedThroughItsBase)
{
    const auto processor = ProcessorFactory::getInstance().createProcessor("orlix::imaproc::glbmsr::StatsMsrLvl2");
    ASSERT_NE(processor, nullptr);
    EXPECT_EQ(messageOf([&] { (void)processor->getStorage<OutStatsResult>(); }),
              "StatsMsrLvl2 is not initialised: call init before its attributes are set or read");
    const core::ProcessingResult early = processor->run(eSynchroType::eST_Synchronous);
    EXPECT_EQ(early.getMessage(), "StatsMsrLvl2 was run before it was initialised: call init first");

    ASSERT_TRUE(processor->init(eProcessorRulePolicy::eRP_CheckRules));
    EXPECT_EQ(messageOf([&] { processor->set<InImg3d>(nullptr); }), "StatsMsrLvl2 has no attribute InImg3d");
    processor->set<InSubImg2d>(makeRamp({4, 4}));
    executeSyncRun(processor);
    EXPECT_EQ(processor->getStorage<OutStatsResult>()->Mean, 7.5);

    processor->set<InSubImg2d>(makeRamp({4, 4, 2}));
    EXPECT_EQ(messageOf([&] { executeSyncRun(processor); }),
              "StatsMsrLvl2: InSubImg2d is an image of 4 x 4, 2 planes: one 2d plan is needed");
    EXPECT_EQ(processor->getStorage<OutStatsResult>(), nullptr); // nothing half-written is left
}

// A second run of a processor makes its own output anew, and leaves the first one to its holder.
TEST(Processor, RunsAgain)
{
    auto processor = makePtr<StatsMsr2dLvl1>();
    ASSERT_TRUE(processor->init(eProcessorRulePolicy::eRP_CheckRules));
    processor->set<InImg>(makeRamp({4, 4}));
    executeSyncRun(processor);
    const auto first = processor->getStorage<OutPIStatsResult>();
    processor->set<InImg>(makeRamp({4, 4, 3}));
    executeSyncRun(processor);
    EXPECT_EQ(first->size(), 1u);
    EXPECT_EQ(processor->getStorage<OutPIStatsResult>()->size(), 3u);
}

TEST(Processor, KeepsItselfAliveAndReportsToNobody)
{
    const auto image = makeRamp({2000, 2000});
    for (int i = 0; i < 20; ++i) {
        (void)statsMsr_async(image); // dropped while it runs
    }
    executor::waitForSubmitted();
    EXPECT_EQ(image.use_count(), 1);
}

// A child of fork() has none of the parent's threads, and waits for none of its runs.
TEST(Processor, MeasuresInAForkedChild)
{
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "the thread sanitizer takes no threads in forked children";
#endif
    const auto image = makeRamp({2000, 2000});
    const auto expected = statsMsr(image);
    const auto pending = statsMsr_async(image);
    const ::pid_t child = ::fork();
    if (child == 0) {
        ::alarm(60);
        executor::waitForSubmitted();
        const auto asynchronous = statsMsr_async(image);
        const bool right = statsMsr(image)->Sum == expected->Sum && asynchronous->wait() &&
                           getAsyncProcessorOutput(asynchronous)->Sum == expected->Sum;
        ::_exit(right ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(pending->wait());
}

// Many callers at once, synchronous and asynchronous, share nothing.
TEST(Processor, ServesManyThreadsAtOnce)
{
    const auto image = makeRamp({701, 699, 3});
    const auto expected = statsMsr(image);
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&, i] {
            for (int k = 0; k < 5; ++k) {
                const auto asynchronous = statsMsr_async(image);
                wrong += statsMsr(image)->Sum != expected->Sum;
                wrong += multiSlice_statsMsr2d(image)->size() != 3;
                wrong += !asynchronous->wait() || getAsyncProcessorOutput(asynchronous)->StdDev != expected->StdDev;
                wrong += StatsMsrLvl1::getToolTipStr().empty() || i < 0;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
}

namespace
{

/// Stops its run after the first of its strips, until it is told to go on.
class Gate
{
public:
    void pass()
    {
        std::unique_lock lock{mutex_};
        ++passed_;
        changed_.notify_all();
        changed_.wait(lock, [this] { return open_; });
    }
    void waitForOne()
    {
        std::unique_lock lock{mutex_};
        changed_.wait(lock, [this] { return passed_ > 0; });
    }
    void open()
    {
        const std::lock_guard lock{mutex_};
        open_ = true;
        changed_.notify_all();
    }
    int passed() const { return passed_; }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool open_ = false;
    int passed_ = 0;
};

Origin getOrigin()
{
    return {"test", __FILE__, [] { return std::string{"of a test"}; }, false};
}

/// A child whose runs pass the gate; it stands for a strip.
class Slow final : public Processor<Slow, BaseProcessor, OutStatsResult>
{
public:
    static Gate* gate;
    static ProcessorClass processorClass;

    bool isComplexAction() const override { return false; }
    eProcessorType getProcessorType() const override { return eProcessorType::ePT_Synchronous; }

protected:
    core::ProcessingResult runDerived(const RunContext& context) override
    {
        gate->pass();
        context.advance();
        return {};
    }
};
Gate* Slow::gate = nullptr;
ProcessorClass Slow::processorClass{typeid(Slow), getOrigin(), creators()};

/// Takes an image; its run throws.
class Throwing final : public Processor<Throwing, BaseProcessor, InImg>
{
public:
    static ProcessorClass processorClass;

    bool isComplexAction() const override { return false; }
    eProcessorType getProcessorType() const override { return eProcessorType::ePT_Synchronous; }

protected:
    core::ProcessingResult runDerived(const RunContext&) override { throw std::runtime_error{"thrown inside"}; }
};
ProcessorClass Throwing::processorClass{typeid(Throwing), getOrigin(), creators()};

/// Runs a slow child per plan.
class Parent final : public Processor<Parent, Level, InImg, OutStatsResult>
{
public:
    static LevelClass processorClass;
};
LevelClass Parent::processorClass{typeid(Parent), getOrigin(), creators(), {childOf<Parent, Slow>()}, byItself};

/// 100 children, each in a range of its own.
void prepare(Parent& parent)
{
    ASSERT_TRUE(parent.init(eProcessorRulePolicy::eRP_CheckRules));
    parent.set<InImg>(makeRamp({1, 1, 100}));
    parent.setDispatchPolicy({1});
}

} // namespace

// What a run throws is its result; an image without pixels does not even reach it.
TEST(Processor, TurnsExceptionsIntoResults)
{
    Throwing processor;
    ASSERT_TRUE(processor.init(eProcessorRulePolicy::eRP_CheckRules));
    BaseProcessor& base = processor;
    base.set<InImg>(makeRamp({2, 2}));
    EXPECT_EQ(base.run(eSynchroType::eST_Synchronous).getMessage(), "Throwing: thrown inside");
    base.set<InImg>(makeRamp({2, 2, 0}));
    EXPECT_EQ(base.run(eSynchroType::eST_Synchronous).getMessage(),
              "Throwing: InImg is empty (2 x 2, 0 planes): an image with pixels is needed");
    EXPECT_FALSE(base.isRunning());
}

// One thread is the caller's own; any number runs every range once.
TEST(Executor, KeepsToTheSetting)
{
    for (const unsigned threads : {1u, 2u, 5u}) {
        const Threads setting{threads};
        std::mutex mutex;
        std::multiset<std::size_t> met;
        std::set<std::thread::id> ids;
        const auto body = [&](std::size_t begin, std::size_t end) {
            const std::lock_guard lock{mutex};
            ids.insert(std::this_thread::get_id());
            for (std::size_t i = begin; i < end; ++i) {
                met.insert(i);
            }
        };
        executor::parallelFor(1000, 7, ePriority::eP_High, RangeBody{body});
        EXPECT_EQ(met.size(), 1000u);
        EXPECT_EQ(std::set<std::size_t>(met.begin(), met.end()).size(), 1000u);
        EXPECT_LE(ids.size(), threads);
        EXPECT_TRUE(threads != 1 || *ids.begin() == std::this_thread::get_id());
    }
}

// A cancelled run ends before its next strip, and fails.
TEST(Processor, IsCancelledBetweenStrips)
{
    Gate gate;
    Slow::gate = &gate;
    auto parent = makePtr<Parent>();
    const std::string parentName = parent->getClassName();
    Parent alone;
    prepare(alone); // nothing keeps it alive, so it cannot be left alone
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(alone.run(eSynchroType::eST_Asynchronous).getMessage(),
                  parentName + " runs asynchronously only where a shared pointer holds it");
    }
    prepare(*parent);
    ASSERT_TRUE(parent->run(eSynchroType::eST_Asynchronous));
    gate.waitForOne();
    EXPECT_TRUE(parent->isRunning());
    EXPECT_EQ(parent->run(eSynchroType::eST_Synchronous).getMessage(),
              parentName + " is already running: wait for it first");
    // Nothing changes it while it runs.
    data::OutputArchive archive;
    EXPECT_TRUE(alone.write(archive));
    data::InputArchive written{archive.str()};
    EXPECT_FALSE(parent->init(eProcessorRulePolicy::eRP_CheckRules));
    EXPECT_FALSE(parent->read(written));
    const std::function<void()> changes[] = {[&] { parent->set<attr::InImg>(nullptr); },
                                             [&] { parent->clearInputData(); },
                                             [&] { parent->clearIntermediateData(); },
                                             [&] { parent->clearOutputData(); },
                                             [&] { parent->copy(alone); },
                                             [&] { parent->setDispatchPolicy({}); }};
    for (const auto& change : changes) {
        EXPECT_EQ(messageOf(change), "Parent is already running: wait for it first");
    }
    parent->requestCancellation();
    gate.open();
    EXPECT_EQ(parent->wait().getMessage(), "The run was cancelled");
    EXPECT_LE(gate.passed(), static_cast<int>(core::settings::getNbThreads()));
    EXPECT_LT(parent->getProgress(), 1);
    EXPECT_NEAR(parent->getProgress(), gate.passed() / 100.0, 1e-12);

    ASSERT_TRUE(parent->run(eSynchroType::eST_Synchronous)); // and it can run again
    EXPECT_EQ(parent->getProgress(), 1);
}

} // namespace orlix::test
