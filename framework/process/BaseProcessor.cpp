#include <framework/process/BaseProcessor.hpp>

#include <framework/core/Settings.hpp>

namespace orlix::imaproc
{

using attr::BaseAttribute;
using attr::eAttributeRole;
using core::ProcessingResult;

BaseProcessor::~BaseProcessor() = default;

ProcessingResult BaseProcessor::init(eProcessorRulePolicy policy)
{
    if (isRunning()) {
        return ProcessingResult::failure(core::formatMessage(eProcessorMessage::eAlreadyRunning, getObjectName()));
    }
    attributes_.clear();
    rule_ = none();
    rulePolicy_ = policy;
    return initDerived(attributes_, dispatchPolicy_, rule_, policy);
}

ProcessingResult BaseProcessor::initDerived(AttributeColl& attributes, ProcessorDispatchPolicy& dispatchPolicy,
                                            Rule& rule, eProcessorRulePolicy rulePolicy)
{
    initAttributeColl(attributes);
    dispatchPolicy = getProcessorClass().getDefaultDispatchPolicy();
    if (rulePolicy != eProcessorRulePolicy::eRP_NoRules) {
        rule = makeRule();
    }
    return {};
}

void BaseProcessor::throwRunning(const core::SourceLocation& where) const
{
    core::raise<ORLIXBaseProcessingException>(getBaseProcessingLogger(), where, eProcessorMessage::eAlreadyRunning,
                                              getObjectName());
}

void BaseProcessor::throwUninitialized(const core::SourceLocation& where) const
{
    core::raise<ORLIXBaseProcessingException>(getBaseProcessingLogger(), where, eProcessorMessage::eUninitialisedAccess,
                                              getObjectName());
}

void BaseProcessor::throwNoSuchAttribute(std::string_view name, const core::SourceLocation& where) const
{
    core::raise<ORLIXBaseProcessingException>(getBaseProcessingLogger(), where, eProcessorMessage::eNoSuchAttribute,
                                              getObjectName(), name);
}

ProcessingResult BaseProcessor::execute(const RunContext& context)
{
    try {
        ProcessingResult result;
        run_ = &context;
        try {
            result = runSteps(context);
        } catch (...) {
            result = ProcessingResult::failure(
                core::formatMessage(eProcessorMessage::eException, getObjectName(), core::describeCurrentException()));
        }
        if (!result) {
            cleanOnErrorDerived();
        }
        globalCleanDerived();
        return result;
    } catch (...) {
        return ProcessingResult::outOfMemory();
    }
}

ProcessingResult BaseProcessor::runSteps(const RunContext& context)
{
    if (attributes_.empty()) {
        return ProcessingResult::failure(core::formatMessage(eProcessorMessage::eRunWithoutInit, getObjectName()));
    }
    ProcessingResult result = initProcess();
    if (result) {
        result = checkInputs();
    }
    if (result) {
        for (BaseAttribute* const attribute : attributes_) {
            attribute->clearInitialized();
        }
        result = rule_.check();
        if (!result) {
            result = ProcessingResult::failure(
                core::formatMessage(eProcessorMessage::eRefusedByRule, getObjectName(), result.getMessage()));
        }
    }
    if (result) {
        for (BaseAttribute* const attribute : attributes_) {
            attribute->initialize(*attributes_.front());
        }
        result = syncInputDataDerived();
    }
    if (result) {
        result = runDerived(context);
    }
    if (result) {
        result = syncOutputDataDerived();
    }
    return result ? endProcess() : result;
}

ProcessingResult BaseProcessor::checkInputs() const
{
    for (const BaseAttribute* const attribute : attributes_) {
        if (!attribute->isSet()) {
            if (attribute->getRole() == eAttributeRole::eAR_Input ||
                attribute->getRole() == eAttributeRole::eAR_InputOutput) {
                return ProcessingResult::failure(
                    core::formatMessage(eProcessorMessage::eUnsetInput, getObjectName(), attribute->getName()));
            }
            continue;
        }
        if (ProcessingResult result = attribute->check(); !result) {
            return ProcessingResult::failure(
                core::formatMessage(eProcessorMessage::eRefusedInput, getObjectName(), result.getMessage()));
        }
        const image::BaseImage* const image = attribute->getImage();
        if (image != nullptr && image->isGpuImage() && !acceptsGpuImages()) {
            return ProcessingResult::failure(
                core::formatMessage(eProcessorMessage::eGpuImage, getObjectName(), attribute->getName()));
        }
        if (image != nullptr && image->getGeometry().empty() && !attributes_.back()->isDefinedWithoutPixels()) {
            return ProcessingResult::failure(core::formatMessage(eProcessorMessage::eEmptyImage, getObjectName(),
                                                                 attribute->getName(), toString(image->getGeometry())));
        }
    }
    return {};
}

ProcessingResult BaseProcessor::reserveResult(std::size_t bytes) const
{
    return getRun().reserve(bytes)
               ? ProcessingResult{}
               : ProcessingResult::failure(core::formatMessage(eProcessorMessage::eLargeResults, getObjectName(),
                                                               core::settings::getMemoryLimit() >> 20));
}

void BaseProcessor::cleanOnErrorDerived()
{
    for (BaseAttribute* const attribute : attributes_) {
        attribute->clearInitialized();
    }
}

void BaseProcessor::clearIntermediateData()
{
    requireIdle(ORLIX_HERE);
    clearIntermediateDataDerived();
}

void BaseProcessor::clearInputData()
{
    requireIdle(ORLIX_HERE);
    for (BaseAttribute* const attribute : attributes_) {
        if (attribute->getRole() != eAttributeRole::eAR_Output) {
            attribute->clear();
        }
    }
}

void BaseProcessor::clearOutputData()
{
    requireIdle(ORLIX_HERE);
    for (BaseAttribute* const attribute : attributes_) {
        if (attribute->getRole() == eAttributeRole::eAR_Output) {
            attribute->clear();
        }
    }
}

void executeSyncRun(const Ptr<BaseProcessor>& processor)
{
    const ProcessingResult result = processor->run(eSynchroType::eST_Synchronous);
    if (!result) {
        core::raise<ORLIXBaseProcessingException>(getBaseProcessingLogger(), ORLIX_HERE, eProcessorMessage::eFailedRun,
                                                  result.getMessage());
    }
}

ProcessingResult BaseAsync1Processor::runDerived(const RunContext& context)
{
    ProcessingResult result = preProcess();
    const std::size_t stages = retrieveSequenceInfo();
    for (std::size_t i = 0; result && i < stages; ++i) {
        if (context.cancelled()) {
            return ProcessingResult::failure(core::formatMessage(eProcessorMessage::eCancelled));
        }
        Ptr<ActionProvider> provider;
        result = retrieveProvider(context.priority, i, stages, provider);
        if (result && provider) {
            result = provider->process(context.part(stages));
        }
    }
    return result ? postProcess() : result;
}

namespace
{

/// Another processor as the only action of a stage.
class SingleActionProvider final : public ActionProvider
{
public:
    explicit SingleActionProvider(Ptr<BaseProcessor> processor) : processor_{std::move(processor)} {}
    ProcessingResult process(const RunContext& context) override { return processor_->execute(context); }

private:
    Ptr<BaseProcessor> processor_;
};

} // namespace

Ptr<BaseProcessor> BaseAsync1Processor::makeStageProcessor(const ProcessorClass& stageClass,
                                                           std::initializer_list<const BaseAttribute*> inputs) const
{
    Ptr<BaseProcessor> stage = stageClass.getCreators().processor();
    (void)stage->init(eProcessorRulePolicy::eRP_CheckRules);
    stage->setDispatchPolicy(getDispatchPolicy());
    std::size_t i = 0;
    for (const BaseAttribute* const input : inputs) {
        stage->getAttributes()[i++]->copy(*input);
    }
    return stage;
}

Ptr<ActionProvider> makeSingleActionProvider(Ptr<BaseProcessor> processor)
{
    return processor ? makePtr<SingleActionProvider>(std::move(processor)) : nullptr;
}

ProcessingResult BaseAsync1Processor::retrieveProvider(ePriority priority, std::size_t index, std::size_t count,
                                                       Ptr<ActionProvider>& provider)
{
    if (index + 1 == count) {
        return retrieveProvider(priority, provider);
    }
    provider = makeSingleActionProvider(makeStage(index));
    return {};
}

} // namespace orlix::imaproc
