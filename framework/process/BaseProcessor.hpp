#pragma once

#include <framework/attribute/Attribute.hpp>
#include <framework/core/Message.hpp>
#include <framework/process/BaseAction.hpp>
#include <framework/process/BaseProcessingException.hpp>
#include <framework/process/DispatchPolicy.hpp>
#include <framework/process/ProcessorClass.hpp>
#include <framework/process/ProcessorMessages.hpp>
#include <framework/process/Rule.hpp>

#include <boost/container/static_vector.hpp>

#include <string_view>

namespace orlix::imaproc
{

enum class eProcessorRulePolicy
{
    eRP_CheckRules = 0,
    eRP_NoRules = 1
};

enum class eProcessorType
{
    ePT_Synchronous,
    ePT_Asynchronous
};

/// A processor's attributes in their fixed order, inputs first.
using AttributeColl = boost::container::static_vector<attr::BaseAttribute*, 8>;

/// An action on attributes. Created, initialised, given its inputs, run, and asked for its outputs. While it runs, it
/// refuses whatever would change it: init() and read() fail, and the others throw ORLIXBaseProcessingException.
class ORLIX_API BaseProcessor : public BaseAction
{
public:
    ~BaseProcessor() override;

    /// Sets up the attributes and, unless the policy says not to, the rules.
    core::ProcessingResult init(eProcessorRulePolicy policy);

    /// Sets an attribute. Throws ORLIXBaseProcessingException if the processor is not initialised or has none such.
    template <class A>
    void set(typename A::Storage value)
    {
        requireIdle(ORLIX_HERE);
        find<A>().init(std::move(value));
    }
    /// Reads an attribute; throws as set() does.
    template <class A>
    typename A::Storage getStorage() const
    {
        return find<A>().get();
    }
    const AttributeColl& getAttributes() const { return attributes_; }
    /// By name; throws as set() does.
    attr::BaseAttribute& getAttribute(std::string_view name) const;
    /// Sets a parameter by its option, as "bin-width". Images come first: parameters of plans are for all of them.
    /// Throws ORLIXBaseProcessingException if there is none such, BaseException if the value does not fit it.
    void setParameter(std::string_view option, const data::Value& value);

    const ProcessorDispatchPolicy& getDispatchPolicy() const { return dispatchPolicy_; }
    void setDispatchPolicy(const ProcessorDispatchPolicy& policy)
    {
        requireIdle(ORLIX_HERE);
        dispatchPolicy_ = policy;
    }

    core::ProcessingResult execute(const RunContext& context) final;

    void clearInputData();
    /// Drops what a run leaves behind inside the processor.
    void clearIntermediateData();
    void clearOutputData();
    virtual eProcessorType getProcessorType() const = 0;

    /// What all processors of this one's class share.
    virtual ProcessorClass& getProcessorClass() const = 0;
    const std::string& getClassName() const final { return getProcessorClass().getTypeName(); }
    virtual const std::string& getObjectName() const { return getProcessorClass().getObjectName(); }
    virtual const std::string& getToolTip() const { return getProcessorClass().getToolTip(); }
    unsigned getClassVersion() const { return getProcessorClass().getVersion(); }
    std::unique_ptr<data::BaseDynamicObject> createNew() const final;
    Ptr<data::BaseDynamicObject> createShared() const final;

    void copy(const BaseDynamicObject& other) override;
    core::ProcessingResult write(data::OutputArchive& archive) const override;
    core::ProcessingResult read(data::InputArchive& archive) override;

protected:
    BaseProcessor() = default;

    /// Appends the attributes, sets the policy that the class begins with and, unless the rule policy says not to, the
    /// rule.
    virtual core::ProcessingResult initDerived(AttributeColl& attributes, ProcessorDispatchPolicy& dispatchPolicy,
                                               Rule& rule, eProcessorRulePolicy rulePolicy);
    /// Appends the attributes, inputs first; the last is what the processor is run for.
    virtual void initAttributeColl(AttributeColl& attributes) = 0;
    virtual Rule makeRule() const { return none(); }
    /// Before the inputs are looked at.
    virtual core::ProcessingResult initProcess() { return {}; }
    /// Brings inputs to where the processor works, outputs to where the caller reads them.
    virtual core::ProcessingResult syncInputDataDerived() { return {}; }
    virtual core::ProcessingResult syncOutputDataDerived() { return {}; }
    virtual core::ProcessingResult runDerived(const RunContext& context) = 0;
    virtual core::ProcessingResult endProcess() { return {}; }
    /// After every run, whatever its result.
    virtual void globalCleanDerived() { clearIntermediateDataDerived(); }
    virtual void clearIntermediateDataDerived() {}
    /// After a failed run: takes back the outputs that the run itself made.
    virtual void cleanOnErrorDerived();
    /// Whether images may lie on a GPU now.
    virtual bool acceptsGpuImages() const { return false; }

    /// The run that is on.
    const RunContext& getRun() const { return *run_; }
    /// Fails where so many bytes more make the results of the whole run exceed the memory limit.
    core::ProcessingResult reserveResult(std::size_t bytes) const;

    /// The record of the last attribute.
    template <class Record>
    Record& output() const
    {
        return static_cast<Record&>(*attributes_.back()->getRecord());
    }
    /// The attribute of a class; throws as set() does.
    template <class A>
    A& find() const
    {
        requireInitialized(ORLIX_HERE);
        for (attr::BaseAttribute* const attribute : attributes_) {
            if (std::string_view{A::name} == attribute->getName()) {
                return static_cast<A&>(*attribute);
            }
        }
        throwNoSuchAttribute(A::name, ORLIX_HERE);
    }

    /// Throws while the processor runs.
    void requireIdle(const core::SourceLocation& where) const
    {
        if (isRunning()) {
            throwRunning(where);
        }
    }
    /// Throws if init has not run.
    void requireInitialized(const core::SourceLocation& where) const
    {
        if (attributes_.empty()) {
            throwUninitialized(where);
        }
    }

private:
    [[noreturn]] void throwRunning(const core::SourceLocation& where) const;
    [[noreturn]] void throwUninitialized(const core::SourceLocation& where) const;
    [[noreturn]] void throwNoSuchAttribute(std::string_view name, const core::SourceLocation& where) const;

    core::ProcessingResult runSteps(const RunContext& context);
    core::ProcessingResult checkInputs() const;

    const RunContext* run_ = nullptr;
    AttributeColl attributes_;
    ProcessorDispatchPolicy dispatchPolicy_;
    Rule rule_;
    eProcessorRulePolicy rulePolicy_ = eProcessorRulePolicy::eRP_CheckRules;
};

/// Runs a processor in the calling thread. Throws ORLIXBaseProcessingException with the message of a failed result.
ORLIX_API void executeSyncRun(const Ptr<BaseProcessor>& processor);

/// The run of one processor; null for none.
ORLIX_API Ptr<ActionProvider> makeSingleActionProvider(Ptr<BaseProcessor> processor);

/// A processor whose work is done by processors below it: in one stage, or in a chain of stages that begins with runs
/// of whole other processors.
class ORLIX_API BaseAsync1Processor : public BaseProcessor
{
public:
    bool isComplexAction() const override { return true; }
    eProcessorType getProcessorType() const override { return eProcessorType::ePT_Asynchronous; }

protected:
    core::ProcessingResult runDerived(const RunContext& context) override;

    /// The number of stages.
    virtual std::size_t retrieveSequenceInfo() const { return 1; }
    /// The processor, with its inputs set, that stage `index` before the last one runs; null skips the stage.
    virtual Ptr<BaseProcessor> makeStage(std::size_t index) { return (void)index, nullptr; }
    /// A processor of another class to run as a stage, with this one's policy; its first inputs are those of this one's
    /// attributes.
    Ptr<BaseProcessor> makeStageProcessor(const ProcessorClass& stageClass,
                                          std::initializer_list<const attr::BaseAttribute*> inputs) const;
    /// The provider of stage `index` of `count`; a null provider skips the stage.
    virtual core::ProcessingResult retrieveProvider(ePriority priority, std::size_t index, std::size_t count,
                                                    Ptr<ActionProvider>& provider);
    virtual core::ProcessingResult preProcess() { return {}; }
    virtual core::ProcessingResult postProcess() { return {}; }
    /// The provider of the only or last stage.
    virtual core::ProcessingResult retrieveProvider(ePriority priority, Ptr<ActionProvider>& provider) = 0;
};

} // namespace orlix::imaproc
