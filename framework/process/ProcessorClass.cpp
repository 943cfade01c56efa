#include <framework/process/ProcessorClass.hpp>

#include <framework/core/Message.hpp>
#include <framework/core/SourceLocation.hpp>

#include <boost/core/demangle.hpp>

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

ProcessorClass::ProcessorClass(const std::type_info& type, Origin origin, const ProcessorCreators& creators)
    : typeName_{boost::core::demangle(type.name())},
      objectName_{typeName_.substr(typeName_.rfind(':') + 1)}, origin_{std::move(origin)}, creators_{creators}
{
    core::guarded(ORLIX_HERE, [&] {
        if (origin_.isListed) {
            ProcessorFactory::getInstance().registerProcessor(
                typeName_, {typeName_, objectName_, getToolTip(), origin_.libraryName,
                            core::getRelativeFromRoot(origin_.sourceFile), creators.processor});
        }
        data::DynamicObjectFactory::getInstance().registerClass(typeName_, creators.plain, creators.shared);
    });
}

ProcessorClass::~ProcessorClass()
{
    if (origin_.isListed) {
        ProcessorFactory::getInstance().unRegisterProcessor(typeName_);
    }
    data::DynamicObjectFactory::getInstance().unRegisterClass(typeName_);
}

const std::string& ProcessorClass::getToolTip()
{
    return toolTip_.get(ToolTipMutex(), origin_.toolTip);
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

} // namespace orlix::imaproc
