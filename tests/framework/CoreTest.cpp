#include <support/TestImages.hpp>

#include <framework/core/Message.hpp>
#include <framework/process/AlgorithmFunctionSelector.hpp>
#include <framework/process/BaseProcessingException.hpp>
#include <framework/process/ProcessorMessages.hpp>
#include <framework/process/Rule.hpp>

#include <gtest/gtest.h>
#include <log4cplus/appender.h>
#include <log4cplus/logger.h>
#include <log4cplus/spi/loggingevent.h>

namespace orlix::test
{

using namespace imaproc;
using core::ProcessingResult;

namespace
{

/// Keeps what is logged below a logger while it lives.
class Captured
{
public:
    explicit Captured(const log4cplus::Logger& logger) : logger_{logger}, appender_{new Appender{records}}
    {
        logger_.addAppender(appender_);
    }
    ~Captured() { logger_.removeAppender(appender_); }
    Captured(const Captured&) = delete;
    Captured& operator=(const Captured&) = delete;

    std::vector<std::string> records;

private:
    class Appender final : public log4cplus::Appender
    {
    public:
        explicit Appender(std::vector<std::string>& records) : records_{records} {}
        ~Appender() override { destructorImpl(); }
        void close() override {}

    protected:
        void append(const log4cplus::spi::InternalLoggingEvent& event) override
        {
            records_.push_back(event.getLoggerName() + "|" + std::to_string(event.getLogLevel()) + "|" +
                               event.getMessage() + "|" + event.getFile());
        }

    private:
        std::vector<std::string>& records_;
    };

    log4cplus::Logger logger_;
    log4cplus::SharedAppenderPtr appender_;
};

struct Unprintable
{
    friend std::ostream& operator<<(std::ostream&, const Unprintable&) { throw std::logic_error{"cannot print"}; }
};

} // namespace

// Formatted, logged at error level with its place, and thrown as the layer's own type.
TEST(ErrorPattern, LogsAndThrows)
{
    Captured log{core::getBaseLogger()};
    try {
        core::raise<ORLIXBaseProcessingException>(getBaseProcessingLogger(), ORLIX_HERE,
                                                  eProcessorMessage::eNoSuchAttribute, "P", "InImg");
    } catch (const ORLIXBaseProcessingException& error) {
        EXPECT_STREQ(error.what(), "P has no attribute InImg");
        EXPECT_EQ(error.getFile(), "tests/framework/CoreTest.cpp");
        EXPECT_NE(error.getFunction().find("TestBody"), std::string::npos);
        EXPECT_GT(error.getLine(), 0);
    }
    ASSERT_EQ(log.records.size(), 1u);
    EXPECT_EQ(log.records[0], "ORLIX.BaseProcessing|40000|P has no attribute InImg|tests/framework/CoreTest.cpp");
}

// What goes wrong on the way is the cause of a BaseException.
TEST(ErrorPattern, WrapsWhatGoesWrongInside)
{
    Captured log{core::getBaseLogger()};
    const auto causeOf = [](const auto& call) -> std::string {
        try {
            call();
        } catch (const core::BaseException& error) {
            EXPECT_STREQ(error.what(), "Exception thrown while processing message");
            EXPECT_EQ(typeid(error), typeid(core::BaseException));
            try {
                std::rethrow_exception(error.getCause());
            } catch (const core::UnHandleException&) {
                return "unhandled";
            } catch (const std::exception& cause) {
                return cause.what();
            }
        }
        return "nothing thrown";
    };
    EXPECT_EQ(causeOf([] {
                  core::raise<ORLIXBaseProcessingException>(getBaseProcessingLogger(), ORLIX_HERE,
                                                            eProcessorMessage::eFailedRun, Unprintable{});
              }),
              "cannot print");
    EXPECT_EQ(causeOf([] { core::guarded(ORLIX_HERE, [] { throw 5; }); }), "unhandled");
    EXPECT_NE(causeOf([] {
                  core::raise<ORLIXBaseProcessingException>(getBaseProcessingLogger(), ORLIX_HERE,
                                                            eProcessorMessage::eUnsetInput, "an argument is missing");
              }),
              "nothing thrown");
    ASSERT_EQ(log.records.size(), 3u);
    EXPECT_EQ(log.records[0], "ORLIX|40000|Exception thrown while processing message|tests/framework/CoreTest.cpp");
}

TEST(SourceRoot, PathsAreRelativeToIt)
{
    EXPECT_EQ(core::getRelativeFromRoot(__FILE__), "tests/framework/CoreTest.cpp");
    EXPECT_EQ(core::getRelativeFromRoot("/somewhere/else.cpp"), "/somewhere/else.cpp");
    // Errors that are raised in installed headers.
    EXPECT_EQ(core::getRelativeFromRoot("/usr/include/orlix/framework/process/X.hpp"), "framework/process/X.hpp");
}

TEST(Rule, CombinesLikeLogic)
{
    const auto yes = [] { return none(); };
    const auto no = [](const std::string& message) {
        return Rule{[message] { return ProcessingResult::failure(message); }};
    };
    struct Case
    {
        Rule rule;
        std::string message; // empty for success
    };
    const Case cases[] = {
        {yes() && yes(), ""},
        {yes() && no("b"), "b"},
        {no("a") && no("b"), "a"},
        {no("a") || yes(), ""},
        {yes() || no("b"), ""},
        {no("a") || no("b"), "a, or b"},
        {If(yes(), no("then"), yes()), "then"},
        {If(no("a"), no("then"), no("else")), "else"},
        {If(no("a"), no("then"), none()), ""},
        {(no("a") || yes()) && (yes() || no("b")), ""},
    };
    for (const Case& each : cases) {
        const ProcessingResult result = each.rule.check();
        EXPECT_EQ(result.getMessage(), each.message);
        EXPECT_EQ(static_cast<bool>(result), each.message.empty());
    }
}

// The best kernel of the forced sets; a class that has generic kernels alone takes no notice.
TEST(AlgorithmFunctionSelector, TakesTheMostEfficientThatIsForced)
{
    using Set = core::eInstructionSet;
    using image::eImageBufferType;
    const auto types = [](eImageBufferType type) {
        return image::DataTypeIdentifierColl{image::ImageBufferTypeIdentifier{type}};
    };
    const auto bytes = types(eImageBufferType::eIBT_UInt8);
    AlgorithmFunctionSelector selector;
    selector.registerFunction({bytes, Set::eIS_Generic, 1, nullptr});
    ASSERT_NE(selector.select(bytes, Set::eIS_AVX2), nullptr);
    EXPECT_EQ(selector.select(types(eImageBufferType::eIBT_Int8), {}), nullptr);
    selector.registerFunction({bytes, Set::eIS_AVX2, 3, nullptr});
    selector.registerFunction({bytes, Set::eIS_SSE2, 2, nullptr});
    EXPECT_EQ(selector.select(bytes, {})->efficiency, 3u);
    EXPECT_EQ(selector.select(bytes, Set::eIS_SSE2)->efficiency, 2u);
    EXPECT_EQ(selector.select(bytes, core::InstructionSetsIdentifier{Set::eIS_SSE2} | Set::eIS_Generic)->efficiency,
              2u);
    EXPECT_EQ(selector.select(bytes, Set::eIS_AVX), nullptr);
}

// A set is asked for by every kernel; what has AVX-512 has all that is below it.
TEST(InstructionSets, AreNamedAndOrdered)
{
    for (const auto set : allSets) {
        EXPECT_EQ(core::findInstructionSet(core::getName(set)), set);
        for (const auto lower : allSets) {
            EXPECT_TRUE(!core::isAvailable(set) || lower > set || core::isAvailable(lower));
        }
    }
    EXPECT_EQ(core::findInstructionSet("avx3"), std::nullopt);
    EXPECT_EQ(core::toString(core::InstructionSetsIdentifier{core::eInstructionSet::eIS_AVX} |
                             core::eInstructionSet::eIS_SSE2),
              "sse2, avx");
}

} // namespace orlix::test
