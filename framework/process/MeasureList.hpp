#pragma once

#include <framework/attribute/Attribute.hpp>
#include <framework/process/BaseProcessor.hpp>
#include <framework/process/MeasureState.hpp>

#include <mutex>
#include <string>
#include <vector>

/// The measures that there are: what programs, bindings and documents walk instead of lists of their own.
namespace orlix::imaproc
{

/// What programs that walk the list get of a measure beyond what its classes have.
struct MeasureExtras
{
    std::vector<attr::Parameter> parameters{}; ///< that no attribute has
    std::vector<data::FieldInfo> fields{};     ///< of a result, where they are not those of its record; see `finish`
    /// Throws MeasureException where parameters do not go together.
    void (*check)(const NamedValues& parameters) = nullptr;
    /// Gets a processor ready that has its images and parameters. Throws MeasureException or PixelTypeException where
    /// they do not go together.
    void (*prepare)(BaseProcessor& processor, const NamedValues& parameters) = nullptr;
    /// Makes a result of the fields of a record; `part` is the size of what it covers.
    void (*finish)(NamedFields& fields, const NamedValues& parameters, const image::ImageGeometry& part) = nullptr;
};
/// The number that a parameter is; none where it is not given.
ORLIX_API std::optional<double> findNumber(const NamedValues& parameters, std::string_view option);

/// What the source of a measure says of it; all else follows from its classes.
struct MeasureDescription
{
    const char* name;
    const char* verb; ///< of the command line
    const char* help;
    const char* remark;                         ///< what to beware of
    std::vector<const ProcessorClass*> classes; ///< of level 1, one for each form
    MeasureExtras extras{};
};

/// An image that a form takes.
struct MeasureInput
{
    std::string name; ///< of the attribute
    bool isMask = false;
    bool isOptional = false;
    bool isList = false; ///< any number of images
    image::PixelTypes types = image::numericTypes;
};

/// A form of a measure: what one result covers, and what it takes.
struct ORLIX_API MeasureForm
{
    std::string function; ///< the entry function of the form, without multiSlice_
    std::string per;      ///< "image", "plan" or "volume"
    std::vector<MeasureInput> inputs;
    const ProcessorClass* processorClass; ///< null where the measure is a state
    bool isSingle = true;                 ///< it gives one result: each of several plans or volumes is run by itself

    bool takesMask() const;
    bool needsMask() const;
    /// A level 1 processor, ready for its inputs. Throws BaseException if the measure is a state.
    Ptr<BaseProcessor> create() const;
};

struct ORLIX_API Measure
{
    std::string name;
    std::string verb;
    std::string help;
    std::string remark;
    std::vector<MeasureForm> forms{};
    std::vector<attr::Parameter> parameters{};
    std::vector<data::FieldInfo> fields{}; ///< of one result; none where it is an image
    const StateMeasure* state = nullptr;   ///< of a measure that is one: its forms have no processor
    MeasureExtras extras{};                ///< of one that is none

    /// Whether it knows whole images only: each plan or volume is measured as one then.
    bool isOfWholeImages() const;
};

class ORLIX_API MeasureList
{
public:
    static MeasureList& getInstance();

    /// By verb, ascending.
    std::vector<Measure> getMeasures() const;

private:
    friend class MeasureRegistration;

    mutable std::mutex mutex_;
    std::vector<const MeasureDescription*> descriptions_;
    std::vector<const StateMeasure*> states_;
};

/// Lists a measure as long as it lives.
class ORLIX_API MeasureRegistration
{
public:
    explicit MeasureRegistration(MeasureDescription description);
    explicit MeasureRegistration(const StateMeasure* measure);
    ~MeasureRegistration();
    MeasureRegistration(const MeasureRegistration&) = delete;
    MeasureRegistration& operator=(const MeasureRegistration&) = delete;

private:
    MeasureDescription description_{};
    const StateMeasure* state_ = nullptr;
};

} // namespace orlix::imaproc
