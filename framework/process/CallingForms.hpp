#pragma once

#include <framework/process/Processor.hpp>

namespace orlix::imaproc
{

/// The calling forms of a measure with level 1 class Lvl1; Inputs are the attributes of their parameters. The entry
/// functions are one line each over them; they catch nothing.
template <class Lvl1>
class CallingForms
{
    using Output = typename Lvl1::Output;
    static constexpr bool isPerPlan = requires { typename Output::Element; };

public:
    /// The result of the whole image, or of plan (0, 0, 0) where there is one result per plan.
    template <class... Inputs>
    static auto single(const typename Inputs::Storage&... inputs)
    {
        if constexpr (isPerPlan) {
            // The processor writes into this very object.
            auto result = data::makeRecord<typename Output::Element>();
            executeSyncRun(makeForFirstPlan<Inputs...>(result, inputs...));
            return result;
        } else {
            return everyPlan<Inputs...>(inputs...);
        }
    }

    template <class... Inputs>
    static Ptr<Lvl1> singleAsync(const typename Inputs::Storage&... inputs)
    {
        if constexpr (isPerPlan) {
            return start(makeForFirstPlan<Inputs...>(data::makeRecord<typename Output::Element>(), inputs...));
        } else {
            return start(make<Inputs...>(inputs...));
        }
    }

    template <class... Inputs>
    static typename Output::Storage everyPlan(const typename Inputs::Storage&... inputs)
    {
        const Ptr<Lvl1> processor = make<Inputs...>(inputs...);
        executeSyncRun(processor);
        return processor->template getStorage<Output>();
    }

    template <class... Inputs>
    static Ptr<Lvl1> everyPlanAsync(const typename Inputs::Storage&... inputs)
    {
        return start(make<Inputs...>(inputs...));
    }

    /// The output of a processor that has ended, null if it failed; neither getter waits.
    static auto output(const Ptr<Lvl1>& processor)
    {
        if constexpr (isPerPlan) {
            const auto collection = multiSliceOutput(processor);
            return collection ? collection->getStorage({0, 0, 0}) : nullptr;
        } else {
            return processor->template getStorage<Output>();
        }
    }
    static typename Output::Storage multiSliceOutput(const Ptr<Lvl1>& processor)
    {
        return processor->template getStorage<Output>();
    }

private:
    template <class... Inputs>
    static Ptr<Lvl1> make(const typename Inputs::Storage&... inputs)
    {
        auto processor = Lvl1::createProcessor();
        (void)processor->init(eProcessorRulePolicy::eRP_CheckRules);
        (processor->template set<Inputs>(inputs), ...);
        return processor;
    }

    template <class... Inputs, class Element>
    static Ptr<Lvl1> makeForFirstPlan(const Ptr<Element>& result, const typename Inputs::Storage&... inputs)
    {
        auto collection = data::makeRecord<typename Output::Value>();
        collection->insert({0, 0, 0}, result);
        auto processor = make<Inputs...>(inputs...);
        processor->template set<Output>(collection);
        return processor;
    }

    static Ptr<Lvl1> start(Ptr<Lvl1> processor)
    {
        (void)processor->run(eSynchroType::eST_Asynchronous);
        return processor;
    }
};

} // namespace orlix::imaproc
