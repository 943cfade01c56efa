#pragma once

#include <framework/attribute/Attribute.hpp>
#include <framework/attribute/PlanIndexedColl.hpp>

#include <cstdint>
#include <vector>

namespace orlix::imaproc::attr
{

/// Where the range of a histogram comes from.
enum class eMinMaxDefinition : unsigned
{
    eMMD_ImgMinMax = 0, ///< minimum and maximum of what is measured; so is any value that is not named here
    eMMD_UserDefinedMinMax =
        1 ///< Min and Max of the parameters, where they fit the pixel type; else those of the image
};

inline std::span<const char* const> namesOf(eMinMaxDefinition)
{
    static constexpr const char* names[] = {"image", "user"};
    return names;
}

/// How a histogram is to be cut into bins.
class ORLIX_API HistoMsrParams final : public data::DataItem<HistoMsrParams>
{
public:
    static constexpr const char* typeName = "orlix::imaproc::attr::HistoMsrParams";

    double Min = 0;
    double Max = 0;
    double BinWidth = 0;
    std::uint32_t NbClasses = 0;
    eMinMaxDefinition MinMaxDefinition = eMinMaxDefinition::eMMD_ImgMinMax;
    bool UseBinWidth = false;

    void visitFields(data::FieldVisitor& field) override
    {
        field({"Min", "lower bound of the range (default: the lowest pixel)", "grey levels", "min"}, Min);
        field({"Max", "upper bound, itself in the last class (default: the highest pixel)", "grey levels", "max"}, Max);
        field({"BinWidth", "width of a class; at least 1 for integers (default: 1 / 256 of the range)", "grey levels",
               "bin-width"},
              BinWidth);
        field({"NbClasses", "number of classes", "", "classes"}, NbClasses);
        field({"MinMaxDefinition", "where the range comes from"}, MinMaxDefinition);
        field({"UseBinWidth", "whether BinWidth holds, or NbClasses"}, UseBinWidth);
    }
    /// A bound makes the range the user's, of 256 classes unless told otherwise; a width is what holds.
    void setParameter(std::string_view name, const data::Value& value) override;
};

/// Classes of this width over the range of the image.
ORLIX_API Ptr<HistoMsrParams> createHistoMsrParamsWithBinWidth(double binWidth);
/// Classes of this width from min to max.
ORLIX_API Ptr<HistoMsrParams> createHistoMsrParamsWithBinWidth(double min, double max, double binWidth);

/// Parameters for some plans of an image.
class ORLIX_API PlanIndexedHistoMsrParams final : public PlanIndexedColl<PlanIndexedHistoMsrParams, HistoMsrParams>
{
public:
    static constexpr const char* typeName = "orlix::imaproc::attr::PlanIndexedHistoMsrParams";
};

/// The number of pixels in bins of equal width: bin i covers [Min + i BinWidth, Min + (i + 1) BinWidth), and Max
/// itself is in the last bin. While it is built, Frequencies has a guard bin at its end.
class ORLIX_API HistogramData final : public data::DataItem<HistogramData>
{
public:
    static constexpr const char* typeName = "orlix::imaproc::attr::HistogramData";

    double Min = 0;
    double Max = 0;
    double BinWidth = 0;
    std::vector<std::uint64_t> Frequencies;

    std::size_t getNbClasses() const { return Frequencies.size(); }

    /// Sets all frequencies to 0.
    void clear();
    /// Adds the frequencies of a histogram of the same bins.
    HistogramData& operator+=(const HistogramData& other);

    void visitFields(data::FieldVisitor& field) override
    {
        field({"Min", "lower bound of the first class", "grey levels"}, Min);
        field({"Max", "upper bound of the range, itself in the last class", "grey levels"}, Max);
        field({"BinWidth", "width of a class", "grey levels"}, BinWidth);
        field({"Frequencies", "pixels in each class", "pixels"}, Frequencies);
    }
};

class ORLIX_API PlanIndexedHistogramData final : public PlanIndexedColl<PlanIndexedHistogramData, HistogramData>
{
public:
    static constexpr const char* typeName = "orlix::imaproc::attr::PlanIndexedHistogramData";
};

class ORLIX_API InOptHistoMsrParams final : public OptionalInput<InOptHistoMsrParams, HistoMsrParams>
{
public:
    static constexpr const char* name = "InOptHistoMsrParams";
};

class ORLIX_API InOptPIHistoMsrParams final
    : public PlanIndexedOptionalInput<InOptPIHistoMsrParams, PlanIndexedHistoMsrParams>
{
public:
    static constexpr const char* name = "InOptPIHistoMsrParams";
};

/// A histogram that comes with its bins, guard bin included, and leaves with their frequencies.
class ORLIX_API InOutHistogram final : public ObjectInputOutput<InOutHistogram, HistogramData>
{
public:
    static constexpr const char* name = "InOutHistogram";
};

class ORLIX_API OutHistogram final : public ObjectOutput<OutHistogram, HistogramData>
{
public:
    static constexpr const char* name = "OutHistogram";
};

class ORLIX_API OutPIHistogram final : public PlanIndexedOutput<OutPIHistogram, PlanIndexedHistogramData>
{
public:
    static constexpr const char* name = "OutPIHistogram";
};

} // namespace orlix::imaproc::attr
