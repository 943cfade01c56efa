#pragma once

#include <framework/process/MeasureList.hpp>

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Runs of measures that a program knows by their names alone.
namespace orlix::imaproc
{

/// Pixels of a type that a measure does not take.
class ORLIX_API PixelTypeException final : public core::BaseException
{
public:
    PixelTypeException(const std::string& message, bool takesBinary, const core::SourceLocation& where)
        : BaseException{message, where}, takesBinary_{takesBinary}
    {}

    /// Whether it takes binary images.
    bool takesBinary() const { return takesBinary_; }

private:
    bool takesBinary_;
};

/// What is measured, and how, by a measure whose forms have processors. (Of others, Measure::state makes states.)
struct MeasureCall
{
    const Measure& measure;
    const MeasureForm& form;
    Per per = Per::Image;
    std::vector<Ptr<const image::BaseImage>> images; ///< of one size
    Ptr<const image::BaseImage> mask;                ///< null: none
    NamedValues parameters;                          ///< by their options, as "bin-width"
};

/// The form that such a call needs; null where there is none.
ORLIX_API const MeasureForm* findForm(const Measure& measure, Per per, bool isMasked);
/// What results of a measure may cover, the default first.
ORLIX_API std::vector<Per> listPers(const Measure& measure);

/// How often a call runs a processor.
ORLIX_API std::size_t countRuns(const MeasureCall& call);
/// The results in the order of plans. `run` runs a processor, as executeSyncRun() does. Throws PixelTypeException,
/// MeasureException where images and parameters do not go together, and what `run` throws.
ORLIX_API std::vector<ResultRow> measure(const MeasureCall& call,
                                         const std::function<void(const Ptr<BaseProcessor>&)>& run);

/// The planes of an image, which begins at a place, in groups of those that are decoded together: of so many that a
/// state, which keeps what it has of each plane until the end, takes little memory.
ORLIX_API std::vector<Extent> groupPlanes(const image::BaseImage& image, const Position& at);

/// The fields of a record, as a row has them.
ORLIX_API NamedFields listFields(const data::BaseDataItem& record);

} // namespace orlix::imaproc
