#pragma once

#include <framework/core/Exception.hpp>
#include <framework/data/Fields.hpp>
#include <framework/image/View.hpp>
#include <framework/process/BaseAction.hpp>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Measures that are states: pixels enter them piece by piece, and they merge. What is the same for all of them, and
/// what programs need that know a measure by its name alone.
namespace orlix::imaproc
{

/// What a measure cannot do, and what it could.
class ORLIX_API MeasureException final : public core::BaseException
{
public:
    using BaseException::BaseException;
};

/// What one result covers.
enum class Per
{
    Image,
    Plan,  ///< each (z, c, t)
    Volume ///< each (c, t)
};
ORLIX_API std::span<const char* const> namesOf(Per);

using image::Position;

/// The pixels from `begin` to before `end` in every axis.
struct ORLIX_API Extent
{
    Position begin;
    Position end;

    friend constexpr bool operator==(const Extent&, const Extent&) = default;
    bool empty() const { return begin.x == end.x; }
    /// What encloses both.
    void extend(const Extent& other);
    template <class Stream>
    void pass(Stream& stream)
    {
        stream(begin), stream(end);
    }
};

/// A plan, volume or image: what a result is of.
struct ORLIX_API ResultPlace
{
    Per per = Per::Image;
    std::uint64_t z = 0; ///< per plan
    std::uint64_t c = 0; ///< per plan or volume
    std::uint64_t t = 0;
    Extent image; ///< all pixels that have entered the state

    /// A position as a result gives it: x, y; per volume, and of one volume, and z; of an image of several, and c, t.
    std::vector<std::uint64_t> list(const Position& position) const;
    std::size_t nbAxes() const;
};

/// Fields with the names that they have in a result.
using NamedFields = std::vector<std::pair<std::string, data::Field>>;

/// Parameters by the names that users have for them, as "bin-width".
using NamedValues = std::vector<std::pair<std::string, data::Value>>;

/// A result for programs that walk its fields.
struct ResultRow
{
    ResultPlace place;
    NamedFields fields;
};

/// Results for such programs.
struct ResultRows
{
    std::vector<ResultRow> rows;
    NamedFields columns;            ///< every field that a row of this measure may have
    std::vector<std::string> notes; ///< what a user should know
};

struct StateMeasure;

/// Who watches a run, and may end it.
struct RunControl
{
    RunState* state = nullptr;
    ePriority priority = ePriority::eP_Normal;

    bool isCancelled() const { return state != nullptr && state->cancelled.load(std::memory_order_relaxed); }
    void advance(double share) const
    {
        if (state != nullptr) {
            state->progress.fetch_add(share, std::memory_order_relaxed);
        }
    }
};

/// A state of any measure. What pixels it has seen, however they were cut, decides what it is, bit by bit.
class ORLIX_API BaseMeasureState
{
public:
    virtual ~BaseMeasureState();

    virtual const StateMeasure& getMeasure() const = 0;
    virtual std::unique_ptr<BaseMeasureState> clone() const = 0;

    /// The pixels of images of one size, the first of which lies at `offset` in the whole image. `mask` may be none. Of
    /// a part of the whole image, `core`, pixels enter; others are only looked at as neighbours. Throws
    /// MeasureException if they are not what the measure takes; then nothing has entered.
    virtual void add(std::span<const ImageView> images, const ImageView& mask, const Position& offset,
                     const std::optional<Extent>& core, const RunControl& run) = 0;
    /// Throws MeasureException where the two states are not of one measure, with the same options and pixel types.
    virtual void merge(const BaseMeasureState& other) = 0;

    /// How far around a pixel the measure looks, in x and y: pieces of an image need such a margin, and a core.
    virtual std::uint64_t getMargin() const = 0;
    /// How often pixels of these types, one for each image, must enter at most.
    virtual unsigned countPasses(std::span<const image::eImageBufferType> types) const = 0;
    /// Whether all pixels must enter once more before there are results.
    virtual bool needsPass() const = 0;
    /// Gets the state ready for that; false if none is needed.
    virtual bool nextPass() = 0;

    /// Throws MeasureException while another pass is needed.
    virtual ResultRows finishRows() const = 0;

    /// The same on every machine.
    virtual std::string toBytes() const = 0;
};

/// An image that a measure takes.
struct StateInput
{
    const char* name;
    bool isList = false; ///< any number of them
};

/// What can be done with a measure without its type.
struct StateEntry
{
    std::vector<data::Field> (*getOptions)(); ///< with their defaults
    std::vector<data::Field> (*getFields)();  ///< of one result
    std::unique_ptr<BaseMeasureState> (*create)(std::span<const std::pair<std::string, data::Value>> options);
    std::unique_ptr<BaseMeasureState> (*read)(std::string_view bytes); ///< throws MeasureException
};

/// A measure on the list that is a state.
struct StateMeasure
{
    const char* name;
    const char* verb; ///< and entry function
    const char* help;
    const char* remark;
    std::vector<StateInput> inputs;
    bool takesMask;
    StateEntry entry;
    const char* passReason = ""; ///< what needs another pass
};

/// The measure whose state the bytes are, if they are one's; else MeasureException.
ORLIX_API std::string getVerbOfState(std::string_view bytes);

} // namespace orlix::imaproc
