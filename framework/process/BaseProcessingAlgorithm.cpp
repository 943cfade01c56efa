#include <framework/process/BaseProcessingAlgorithm.hpp>

#include <framework/core/Settings.hpp>

#include <algorithm>

namespace orlix::imaproc
{

using core::ProcessingResult;

namespace
{

std::string toString(const image::DataTypeIdentifierColl& types)
{
    std::string names;
    for (std::size_t i = 0; i < types.size(); ++i) {
        names += (i == 0 ? "" : " and ") + std::string{image::getName(types[i])};
    }
    return names;
}

} // namespace

AlgorithmClass::AlgorithmClass(const std::type_info& type, Origin origin, const ProcessorCreators& creators,
                               void (*functionRegistration)(AlgorithmFunctionSelector&))
    : ProcessorClass{type, std::move(origin), creators}
{
    core::guarded(ORLIX_HERE, [&] { functionRegistration(selector_); });
}

void AlgorithmClass::forceInstructionSets(core::InstructionSetsIdentifier sets)
{
    const std::lock_guard lock{ForcedInstructionSetsMutex()};
    forced_ = sets;
}

const AlgorithmFunctionSelector& BaseProcessingAlgorithm::getFunctionSelector() const
{
    return static_cast<AlgorithmClass&>(getProcessorClass()).getFunctionSelector();
}

core::InstructionSetsIdentifier BaseProcessingAlgorithm::getForcedInstructionSets() const
{
    return static_cast<AlgorithmClass&>(getProcessorClass()).getForcedInstructionSets();
}

void BaseProcessingAlgorithm::getDataTypeIdColl(image::DataTypeIdentifierColl& dataTypes) const
{
    for (const attr::BaseAttribute* const attribute : getAttributes()) {
        if (attribute->isStrip() && attribute->isSet() && !attribute->isMask()) {
            dataTypes.add(image::ImageBufferTypeIdentifier{attribute->getImage()->getType()});
        }
    }
}

void BaseProcessingAlgorithm::initDataParserColl(StripParserColl& parsers) const
{
    for (const attr::BaseAttribute* const attribute : getAttributes()) {
        if (attribute->isStrip() && attribute->isSet()) {
            parsers.push_back(image::StripParser{attribute->getStripBox()});
        }
    }
}

ProcessingResult BaseProcessingAlgorithm::runDerived(const RunContext& context)
{
    ProcessingResult result = preProcess();
    if (result) {
        result = mainProcess();
    }
    if (result) {
        result = postProcess();
    }
    context.advance();
    return result;
}

core::InstructionSetsIdentifier BaseProcessingAlgorithm::getEffectiveSets() const
{
    const core::InstructionSetsIdentifier own = getForcedInstructionSets();
    return own.empty() ? core::settings::getForcedInstructionSets() : own;
}

ProcessingResult BaseProcessingAlgorithm::mainProcess()
{
    image::DataTypeIdentifierColl types;
    getDataTypeIdColl(types);
    const core::InstructionSetsIdentifier forced = getEffectiveSets();
    const AlgorithmFunctionIdentifier* const kernel = getFunctionSelector().select(types, forced);
    if (kernel == nullptr) {
        const core::InstructionSetsIdentifier sets = getFunctionSelector().getInstructionSets(types);
        return ProcessingResult::failure(
            sets.empty() ? core::formatMessage(eProcessorMessage::eNoKernel, getObjectName(), toString(types))
                         : core::formatMessage(eProcessorMessage::eNoForcedKernel, getObjectName(),
                                               core::toString(forced), toString(types), core::toString(sets)));
    }

    clearDataParserColl(parsers_);
    std::size_t load = 0;
    std::size_t planeBytes = 0;
    for (const attr::BaseAttribute* const attribute : getAttributes()) {
        if (const std::size_t bytes = attribute->getStripLoad(); bytes != 0) {
            const image::BaseImage& image = *attribute->getImage();
            load += bytes;
            planeBytes = std::max(planeBytes, image.getGeometry().x * image.getGeometry().y * image.getPixelSize());
        }
    }
    const image::LoadRoom room{load, planeBytes};
    initDataParserColl(parsers_);
    ProcessingInfo info =
        parsers_.empty() ? getNoParseInfo() : ProcessingInfo{parsers_[0].nbPixels(), parsers_[0].longestRun()};
    for (const image::StripParser& parser : parsers_) {
        if (!parser.hasShapeOf(parsers_[0])) {
            clearDataParserColl(parsers_);
            return ProcessingResult::failure(core::formatMessage(eProcessorMessage::eUnequalStrips, getObjectName()));
        }
        info.rowSize = std::min(info.rowSize, parser.longestRun());
    }
    domain_ = kernel->instructionSets.highest();
    ProcessingResult result = (this->*kernel->function)(info);
    clearDataParserColl(parsers_);
    return result;
}

} // namespace orlix::imaproc
