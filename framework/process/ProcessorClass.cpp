#include <framework/process/ProcessorClass.hpp>

#include <framework/core/Message.hpp>
#include <framework/core/SourceLocation.hpp>

namespace orlix::imaproc
{

core::Mutex& ToolTipMutex()
{
    static core::Mutex mutex;
    return mutex;
}

core::Mutex& DispatchPolicyMutex()
{
    static core::Mutex mutex;
    return mutex;
}

core::Mutex& VersionMutex()
{
    static core::Mutex mutex;
    return mutex;
}

core::Mutex& ForcedInstructionSetsMutex()
{
    static core::Mutex mutex;
    return mutex;
}

ProcessorClass::ProcessorClass(Identity identity, const ProcessorCreators& creators) : identity_{std::move(identity)}
{
    core::guarded(ORLIX_HERE, [&] {
        if (identity_.isListed) {
            ProcessorFactory::getInstance().registerProcessor(
                getTypeName(), {getTypeName(), getObjectName(), getToolTip(), identity_.libraryName,
                                core::getRelativeFromRoot(identity_.sourceFile), creators.processor});
        }
        data::DynamicObjectFactory::getInstance().registerClass(getTypeName(), creators.plain, creators.shared);
    });
}

ProcessorClass::~ProcessorClass()
{
    if (identity_.isListed) {
        ProcessorFactory::getInstance().unRegisterProcessor(getTypeName());
    }
    data::DynamicObjectFactory::getInstance().unRegisterClass(getTypeName());
}

const std::string& ProcessorClass::getToolTip()
{
    return toolTip_.get(ToolTipMutex(), identity_.toolTip);
}

unsigned ProcessorClass::getVersion()
{
    return version_.get(VersionMutex(), [] { return 1u; });
}

const ProcessorDispatchPolicy& ProcessorClass::getDefaultDispatchPolicy()
{
    return dispatchPolicy_.get(DispatchPolicyMutex(), [] {
        ProcessorDispatchPolicy policy;
        policy.initDefault();
        return policy;
    });
}

AlgorithmClass::AlgorithmClass(Identity identity, const ProcessorCreators& creators,
                               void (*functionRegistration)(AlgorithmFunctionSelector&))
    : ProcessorClass{std::move(identity), creators}
{
    core::guarded(ORLIX_HERE, [&] { functionRegistration(selector_); });
}

void AlgorithmClass::forceInstructionSets(core::InstructionSetsIdentifier sets)
{
    const std::lock_guard lock{ForcedInstructionSetsMutex()};
    forced_ = sets;
}

} // namespace orlix::imaproc
