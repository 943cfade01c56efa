#pragma once

#include <framework/core/InstructionSet.hpp>
#include <framework/image/Strip.hpp>
#include <framework/process/AlgorithmFunctionSelector.hpp>
#include <framework/process/BaseProcessor.hpp>

#include <boost/container/static_vector.hpp>

namespace orlix::imaproc
{

/// The parsers of an algorithm's strips, in the order of its attributes.
using StripParserColl = boost::container::static_vector<image::StripParser, image::DataTypeIdentifierColl::capacity>;

/// A processor that runs one kernel on one strip, in the calling thread.
class ORLIX_API BaseProcessingAlgorithm : public BaseProcessor
{
public:
    bool isComplexAction() const override { return false; }
    eProcessorType getProcessorType() const override { return eProcessorType::ePT_Synchronous; }

    virtual const AlgorithmFunctionSelector& getFunctionSelector() const = 0;
    /// The sets that the class is forced to; empty unless forced.
    virtual core::InstructionSetsIdentifier getForcedInstructionSets() const = 0;

protected:
    core::ProcessingResult runDerived(const RunContext& context) override;

    /// Selects the kernel, parses the strips and calls it.
    virtual core::ProcessingResult mainProcess();
    /// The pixel types of the inputs, the key of the kernel lookup.
    virtual void getDataTypeIdColl(image::DataTypeIdentifierColl& dataTypes) const = 0;
    virtual void initDataParserColl(StripParserColl& parsers) const = 0;
    virtual void clearDataParserColl(StripParserColl& parsers) const { parsers.clear(); }
    virtual core::ProcessingResult preProcess() { return {}; }
    virtual core::ProcessingResult postProcess() { return {}; }

    /// What a kernel without strips is called with.
    virtual ProcessingInfo getNoParseInfo() const { return {}; }

    /// The sets that hold for a run: those that the class is forced to, else those of the settings.
    core::InstructionSetsIdentifier getEffectiveSets() const;

    const image::StripParser& getParser(std::size_t i) const { return parsers_[i]; }

private:
    StripParserColl parsers_;
};

} // namespace orlix::imaproc
