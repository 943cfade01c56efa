#pragma once

#include <framework/attribute/HistogramData.hpp>
#include <framework/attribute/ImageAttributes.hpp>
#include <framework/attribute/IndexableUInt64.hpp>
#include <framework/process/Levels.hpp>

/// What the counts of objects share: a label image has an object for every class of width 1 of its histogram that is
/// not empty, but for the first class, which is the background, whatever it holds. Labels beyond 2^24 fail, since a
/// histogram cannot tell all of them apart.
namespace orlix::imaproc::glbmsr
{

using attr::IndexableUInt64;
using attr::InLabelImg;
using attr::InLabelImg3d;
using attr::InSubLabelImg2d;
using attr::InSubLabelImg3d;
using attr::OutIndexableUInt64;
using attr::OutPIIndexableUInt64;
using attr::PlanIndexedIndexableUInt64;

/// The classes but the first that hold a pixel. Fails where a class holds more than one label.
ORLIX_API core::ProcessingResult countObjects(const attr::HistogramData& labels, std::uint64_t& objects);

/// The objects of one plan or volume, from the histogram that the level 1 processor Histogram makes of it.
template <class Self, class Labels, class Histogram, class HistogramImage>
class ObjectCount : public Processor<Self, BaseAsync1Processor, Labels, OutIndexableUInt64>
{
public:
    void clearIntermediateData() override { histogram_.reset(); }

protected:
    core::ProcessingResult retrieveProvider(ePriority, Ptr<ActionProvider>& provider) override
    {
        histogram_ = makePtr<attr::HistogramData>();
        auto collection = makePtr<attr::PlanIndexedHistogramData>();
        collection->insert({0, 0, 0}, histogram_);
        auto processor = makePtr<Histogram>();
        (void)processor->init(eProcessorRulePolicy::eRP_CheckRules);
        processor->setDispatchPolicy(this->getDispatchPolicy());
        processor->template set<HistogramImage>(this->template attribute<Labels>().get());
        processor->template set<attr::InOptHistoMsrParams>(attr::createHistoMsrParamsWithBinWidth(1.0));
        processor->template set<attr::OutPIHistogram>(collection);
        provider = makeSingleActionProvider(processor);
        return {};
    }

    core::ProcessingResult postProcess() override
    {
        return countObjects(*histogram_, this->template value<OutIndexableUInt64>().Value);
    }

private:
    using BaseAsync1Processor::retrieveProvider;

    Ptr<attr::HistogramData> histogram_;
};

} // namespace orlix::imaproc::glbmsr
