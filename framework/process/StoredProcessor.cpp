// How processors are created, set by name, copied, written and read.

#include <framework/process/BaseProcessor.hpp>

#include <framework/data/SerializationMessages.hpp>

namespace orlix::imaproc
{

using attr::BaseAttribute;
using core::ProcessingResult;

std::unique_ptr<data::BaseDynamicObject> BaseProcessor::createNew() const
{
    return getProcessorClass().getCreators().plain();
}

Ptr<data::BaseDynamicObject> BaseProcessor::createShared() const
{
    return getProcessorClass().getCreators().shared();
}

BaseAttribute& BaseProcessor::getAttribute(std::string_view name) const
{
    requireInitialized(ORLIX_HERE);
    for (BaseAttribute* const attribute : attributes_) {
        if (name == attribute->getName()) {
            return *attribute;
        }
    }
    throwNoSuchAttribute(name, ORLIX_HERE);
}

void BaseProcessor::setParameter(std::string_view option, const data::Value& value)
{
    requireIdle(ORLIX_HERE);
    requireInitialized(ORLIX_HERE);
    for (BaseAttribute* const attribute : attributes_) {
        std::vector<attr::Parameter> parameters;
        attribute->addParameters(parameters);
        for (const attr::Parameter& parameter : parameters) {
            if (option == parameter.info.option) {
                attribute->setParameter(parameter.info.name, value, *attributes_.front());
                return;
            }
        }
    }
    throwNoSuchAttribute(option, ORLIX_HERE);
}

void BaseProcessor::copy(const BaseDynamicObject& other)
{
    requireIdle(ORLIX_HERE);
    core::guarded(ORLIX_HERE, [&] {
        const auto& from = dynamic_cast<const BaseProcessor&>(other);
        if (from.getClassName() != getClassName()) {
            throw std::bad_cast{};
        }
        if (!from.attributes_.empty()) {
            (void)init(from.rulePolicy_);
        }
        for (std::size_t i = 0; i < from.attributes_.size(); ++i) {
            attributes_[i]->copy(*from.attributes_[i]);
        }
        dispatchPolicy_ = from.dispatchPolicy_;
    });
}

ProcessingResult BaseProcessor::write(data::OutputArchive& archive) const
{
    const std::string& typeName = getClassName();
    if (archive.has("attributes")) {
        return ProcessingResult::failure(core::formatMessage(data::eSerializationMessage::eSM_TakenSection, typeName));
    }
    {
        const auto section = archive.openSection("attributes");
        for (const BaseAttribute* const attribute : attributes_) {
            if (ProcessingResult result = attribute->write(archive); !result) {
                return result;
            }
        }
    }
    if (archive.getVersion(typeName) == 0) {
        const auto section = archive.openRootSection(typeName);
        archive.write("version", std::uint64_t{getClassVersion()});
        archive.registerVersion(typeName, getClassVersion());
    }
    return {};
}

ProcessingResult BaseProcessor::read(data::InputArchive& archive)
{
    if (isRunning()) {
        return ProcessingResult::failure(core::formatMessage(eProcessorMessage::eAlreadyRunning, getObjectName()));
    }
    return core::guarded(ORLIX_HERE, [&]() -> ProcessingResult {
        if (attributes_.empty()) {
            if (ProcessingResult result = init(eProcessorRulePolicy::eRP_CheckRules); !result) {
                return result;
            }
        }
        {
            const auto section = archive.openSection("attributes");
            if (!section) {
                return ProcessingResult::failure(
                    core::formatMessage(data::eSerializationMessage::eSM_MissingKey, "attributes", "a section"));
            }
            // A processor that was never initialised wrote no attributes, and reads none.
            const bool written = !archive.getKeys().empty();
            for (BaseAttribute* const attribute : attributes_) {
                if (ProcessingResult result = written ? attribute->read(archive) : ProcessingResult{}; !result) {
                    return result;
                }
            }
        }
        const std::string& typeName = getClassName();
        unsigned version = archive.getVersion(typeName);
        if (version == 0) {
            const auto section = archive.openRootSection(typeName);
            if (!section) {
                return ProcessingResult::failure(core::formatMessage(data::eSerializationMessage::eSM_MissingKey,
                                                                     typeName, "a section with a \"version\""));
            }
            if (ProcessingResult result = archive.read("version", version); !result) {
                return result;
            }
        }
        if (version > getClassVersion()) {
            return ProcessingResult::failure(core::formatMessage(data::eSerializationMessage::eSM_NewerVersion, version,
                                                                 getClassVersion(), typeName));
        }
        archive.registerVersion(typeName, version);
        return {};
    });
}

} // namespace orlix::imaproc
