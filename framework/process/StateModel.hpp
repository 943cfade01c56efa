#pragma once

#include <framework/core/Settings.hpp>
#include <framework/image/Strip.hpp>
#include <framework/process/Executor.hpp>
#include <framework/process/MeasureState.hpp>
#include <framework/process/ProcessorMessages.hpp>
#include <framework/process/StateBytes.hpp>

#include <boost/container/small_vector.hpp>

#include <algorithm>
#include <array>
#include <atomic>
#include <exception>
#include <map>
#include <mutex>

namespace orlix::imaproc
{

/// The pixel types of images; binary pixels are those of uint8.
using PixelTypeList = std::vector<image::eImageBufferType>;

/// Rows or planes of images of one size that enter a state together: in each image a box of the same place.
struct Piece
{
    std::unique_ptr<image::LoadRoom> room; ///< for what was fetched
    boost::container::small_vector<image::StripParser, 3> images;
    std::span<const image::eImageBufferType> types; ///< of the images
    std::optional<image::StripParser> mask;
    std::vector<ImageView> around;    ///< where the measure has a margin: the rows of the images with those around
    std::uint64_t firstAround = 0;    ///< row of these
    std::span<const ImageView> whole; ///< the images that they are of
    Position at;                      ///< of the first pixel, in those images
    Position offset;                  ///< of the first pixel of those images
    std::size_t runSize = 0;          ///< of the longest runs that all have

    const image::PixelBox& box() const { return images.front().getBox(); }
    std::size_t nbPixels() const { return images.front().nbPixels(); }
    std::size_t nbRuns() const { return nbPixels() / runSize; }
    /// Of pixel `i`, in the order of runs.
    Position positionOf(std::size_t i) const
    {
        const image::PixelBox& size = box();
        return {offset.x + at.x + i % size.x, offset.y + at.y + i / size.x % size.y,
                offset.z + at.z + i / size.x / size.y, offset.c + at.c, offset.t + at.t};
    }
    const std::uint8_t* maskRun(std::size_t run) const
    {
        return mask ? mask->run<std::uint8_t>(run, runSize) : nullptr;
    }
};

/// The images of an addition as pieces, in the order in which they are best read.
class ORLIX_API PieceCut
{
public:
    /// Throws MeasureException where the images are not of one size, or a mask is none. `margin`: so many rows before
    /// and behind a piece are looked at, too.
    PieceCut(const StateMeasure& measure, Per per, std::span<const ImageView> images, const ImageView& mask,
             const Position& offset, const std::optional<Extent>& core, std::uint64_t margin);

    /// The places of the next pieces, so many that they are worth a thread; false when all are taken. Any thread calls
    /// it.
    bool take(std::vector<image::Box>& places);
    /// How many threads they are worth, all together.
    std::size_t countWorkers() const;
    /// The share of all pixels that a place has.
    double getShare(const image::Box& place) const;

    Piece makePiece(const image::Box& place) const;
    const PixelTypeList& getTypes() const { return types_; }
    Extent getExtent() const;
    /// What the results of a place are of.
    image::PlanIndex partOf(const image::Box& place) const;

private:
    /// An axis that is gone through block by block, and a block step by step.
    struct Axis
    {
        std::uint64_t begin = 0;
        std::uint64_t end = 0;
        std::uint64_t block = 1;
        std::uint64_t phase = 0;
        std::uint64_t step = 1;
        std::uint64_t from = 0; ///< of the block
        std::uint64_t to = 0;
        std::uint64_t at = 0;

        /// Where the block of a position begins, and how long it is.
        std::pair<std::uint64_t, std::uint64_t> getBlock(std::uint64_t position) const;
        void enterBlock(std::uint64_t first);
        std::uint64_t count() const { return std::min(step, to - at); }
    };

    void chooseOrder();
    void advance();

    Per per_;
    std::vector<ImageView> images_;
    PixelTypeList types_;
    ImageView mask_;
    Position offset_;
    Extent core_; ///< in the images
    std::uint64_t margin_;
    std::size_t rowBytes_ = 0; ///< of all images
    std::mutex mutex_;
    std::array<Axis, 4> axes_; ///< y, z, c and t
    bool ends_ = false;
};

/// The state of a measure M, which has
///
///     static const StateMeasure& getMeasure();
///     using Options; using Result;     // plain records with visitFields(); options have `per`, results `plan`
///     struct Part;                     // what is kept of a plan, a volume or the image, with pass(stream)
///     static void check(const Options&, const PixelTypeList&);    // throws MeasureException; also without types
///     static void consume(const Options&, const Piece&, Part&);   // on any thread
///     static void combine(const Options&, Part& into, Part from);
///     static Result finish(const Options&, const PixelTypeList&, const Part&, const ResultPlace&);
///     static std::vector<std::string> getNotes(const Result&);
///
/// where a result is a table, `static std::vector<NamedFields> listRows(const Result&)` and `listColumns(options,
/// types, place)`, the fields of a row; and, where it looks at neighbours, `static std::uint64_t getMargin(const
/// Options&)`; where pixels must enter more than once,
///
///     static unsigned countPasses(const Options&, const PixelTypeList&);  // at most
///     static bool needsPass(const Options&, const PixelTypeList&, const Part&);
///     static void nextPass(const Options&, const PixelTypeList&, Part&);
///     static Part fork(const Part&);                  // what looks for the same as a state's part, and is empty
///     static bool isAlike(const Part&, const Part&);  // whether both look for the same
///
/// and, where a part works with more than it keeps, `static void settle(Part&)`.
template <class M>
class StateModel final : public BaseMeasureState
{
public:
    using Options = typename M::Options;
    using Result = typename M::Result;
    using Part = typename M::Part;
    static constexpr bool isTable = requires(const Result& result) { M::listRows(result); };
    static constexpr bool hasPasses = requires(const Part& part) { M::fork(part); };

    explicit StateModel(Options options) : options_{std::move(options)} { M::check(options_, {}); }

    const Options& getOptions() const { return options_; }
    const StateMeasure& getMeasure() const override { return M::getMeasure(); }
    std::unique_ptr<BaseMeasureState> clone() const override { return std::make_unique<StateModel>(*this); }

    void add(std::span<const ImageView> images, const ImageView& mask, const Position& offset,
             const std::optional<Extent>& core, const RunControl& run) override
    {
        PieceCut pieces{getMeasure(), options_.per, images, mask, offset, core, getMargin()};
        const PixelTypeList& types = pieces.getTypes();
        if (!types_.empty() && types != types_) {
            throw MeasureException{"the state has pixels of other types: all pieces of an image have one type",
                                   ORLIX_HERE};
        }
        M::check(options_, types);
        Parts entered;
        std::mutex mutex;
        std::exception_ptr failure;
        std::atomic<bool> ends{false};
        const auto enter = [&](std::size_t, std::size_t) {
            try {
                Parts parts = consume(pieces, run, ends);
                const std::lock_guard lock{mutex};
                combineParts(entered, std::move(parts));
            } catch (...) {
                const std::lock_guard lock{mutex};
                failure = failure ? failure : std::current_exception();
                ends = true;
            }
        };
        executor::parallelFor(pieces.countWorkers(), 1, run.priority, RangeBody{enter}); // each has parts of its own
        if (failure) {
            std::rethrow_exception(failure);
        }
        if (run.isCancelled()) {
            throw MeasureException{core::formatMessage(eProcessorMessage::eCancelled), ORLIX_HERE};
        }
        types_ = types;
        if (pass_ == 0) {
            extent_.extend(pieces.getExtent());
        }
        combineParts(parts_, std::move(entered));
    }

    void merge(const BaseMeasureState& other) override
    {
        const auto fail = [&](const std::string& text) {
            throw MeasureException{std::string{getMeasure().verb} + ": states that merge " + text, ORLIX_HERE};
        };
        const auto* const same = dynamic_cast<const StateModel*>(&other);
        if (same == nullptr) {
            fail(std::string{"are of one measure: this one is of "} + other.getMeasure().verb);
        }
        if (writeOptions(options_) != writeOptions(same->options_)) {
            fail("have the same options");
        }
        if (!types_.empty() && !same->types_.empty() && types_ != same->types_) {
            fail("have pixels of the same types");
        }
        if (pass_ != same->pass_) {
            fail("are in the same pass: this one is in pass " + std::to_string(same->pass_ + 1) + ", not " +
                 std::to_string(pass_ + 1));
        }
        if (pass_ > 0 && (extent_ != same->extent_ || !isAlike(*same))) {
            fail("in a later pass come from one state that merged all of the pass before");
        }
        types_ = types_.empty() ? same->types_ : types_;
        if (pass_ == 0) {
            extent_.extend(same->extent_);
        }
        combineParts(parts_, Parts{same->parts_});
    }

    std::uint64_t getMargin() const override
    {
        if constexpr (requires { M::getMargin(options_); }) {
            return M::getMargin(options_);
        }
        return 0;
    }

    unsigned countPasses(std::span<const image::eImageBufferType> types) const override
    {
        if constexpr (hasPasses) {
            return M::countPasses(options_, {types.begin(), types.end()});
        }
        return 1;
    }

    bool needsPass() const override
    {
        if constexpr (hasPasses) {
            return std::any_of(parts_.begin(), parts_.end(),
                               [&](const auto& each) { return M::needsPass(options_, types_, each.second); });
        }
        return false;
    }

    bool nextPass() override
    {
        if (!needsPass()) {
            return false;
        }
        if constexpr (hasPasses) {
            for (auto& [plan, part] : parts_) {
                M::nextPass(options_, types_, part);
            }
            ++pass_;
        }
        return true;
    }

    /// In the order of the plans. Throws MeasureException while another pass is needed.
    std::vector<Result> finish() const
    {
        if (needsPass()) {
            throw MeasureException{"all pixels must enter the state once more before there are results", ORLIX_HERE};
        }
        std::vector<Result> results;
        if (parts_.empty() && options_.per == Per::Image) {
            results.push_back(M::finish(options_, types_, Part{}, getPlace({})));
        }
        for (const auto& [plan, part] : parts_) {
            results.push_back(M::finish(options_, types_, part, getPlace(plan)));
            results.back().plan = plan;
        }
        return results;
    }

    ResultRows finishRows() const override
    {
        ResultRows results;
        for (const Result& result : finish()) {
            const ResultPlace place = getPlace(result.plan);
            if constexpr (isTable) {
                for (NamedFields& fields : M::listRows(result)) {
                    results.rows.push_back({place, std::move(fields)});
                }
            } else {
                results.rows.push_back({place, {}});
                for (const data::Field& field : data::collectFields(result)) {
                    if (field.isThere) {
                        results.rows.back().fields.emplace_back(field.info.name, field);
                    }
                }
            }
            for (std::string& note : M::getNotes(result)) {
                if (std::find(results.notes.begin(), results.notes.end(), note) == results.notes.end()) {
                    results.notes.push_back(std::move(note));
                }
            }
        }
        if constexpr (isTable) {
            results.columns = M::listColumns(options_, types_, getPlace({}));
        } else {
            for (const data::Field& field : data::collectFields(Result{})) {
                results.columns.emplace_back(field.info.name, field);
            }
        }
        return results;
    }

    std::string toBytes() const override
    {
        data::ByteWriter writer;
        const_cast<StateModel&>(*this).pass(writer);
        return wrapState(getMeasure().verb, writer.take());
    }

    /// Throws MeasureException where the bytes are no state of the measure.
    static StateModel fromBytes(std::string_view bytes)
    {
        std::string verb;
        const std::string_view content = unwrapState(bytes, verb);
        if (verb != M::getMeasure().verb) {
            throw MeasureException{"the state is of " + verb + ", not of " + M::getMeasure().verb, ORLIX_HERE};
        }
        StateModel state{Options{}};
        data::ByteReader reader{content};
        try {
            state.pass(reader);
            if (reader.nbLeft() != 0) {
                reader.fail("there is more than a state");
            }
            M::check(state.options_, state.types_);
        } catch (const data::ByteException& error) {
            throw MeasureException{std::string{"the state is damaged: "} + error.what(), ORLIX_HERE};
        }
        return state;
    }

private:
    using Parts = std::map<image::PlanIndex, Part>;

    ResultPlace getPlace(const image::PlanIndex& plan) const { return {options_.per, plan.z, plan.c, plan.t, extent_}; }

    static std::string writeOptions(Options options)
    {
        data::ByteWriter writer;
        FieldStream fields{writer};
        options.visitFields(fields);
        return writer.take();
    }

    bool isAlike(const StateModel& other) const
    {
        if constexpr (hasPasses) {
            return std::equal(
                parts_.begin(), parts_.end(), other.parts_.begin(), other.parts_.end(),
                [](const auto& a, const auto& b) { return a.first == b.first && M::isAlike(a.second, b.second); });
        }
        return true;
    }

    /// An empty part that goes with that of the state.
    Part beginPart(const image::PlanIndex& plan) const
    {
        if constexpr (hasPasses) {
            const auto found = parts_.find(plan);
            if (pass_ > 0 && found == parts_.end()) {
                throw MeasureException{"pixels of " + toString(plan) + " were not in the pass before", ORLIX_HERE};
            }
            return pass_ > 0 ? M::fork(found->second) : Part{};
        } else {
            return {};
        }
    }

    /// The pieces that one thread takes.
    Parts consume(PieceCut& pieces, const RunControl& run, const std::atomic<bool>& ends) const
    {
        Parts parts;
        Part* part = nullptr;
        image::PlanIndex plan;
        const auto settle = [&] {
            if constexpr (requires { M::settle(*part); }) {
                if (part != nullptr) {
                    M::settle(*part);
                }
            }
        };
        for (std::vector<image::Box> places; pieces.take(places);) {
            for (const image::Box& place : places) {
                if (run.isCancelled() || ends) {
                    return {};
                }
                if (part == nullptr || pieces.partOf(place) != plan) {
                    settle();
                    plan = pieces.partOf(place);
                    part = &parts.try_emplace(plan, beginPart(plan)).first->second;
                }
                M::consume(options_, pieces.makePiece(place), *part);
                run.advance(pieces.getShare(place));
            }
        }
        settle();
        return parts;
    }

    void combineParts(Parts& into, Parts from) const
    {
        for (auto& [plan, part] : from) {
            const auto found = into.find(plan);
            if (found == into.end()) {
                into.emplace(plan, std::move(part));
            } else {
                M::combine(options_, found->second, std::move(part));
            }
        }
    }

    template <class Stream>
    void pass(Stream& stream)
    {
        FieldStream fields{stream};
        options_.visitFields(fields);
        stream(types_);
        stream(extent_);
        stream(pass_);
        std::uint64_t size = parts_.size();
        stream(size);
        if constexpr (Stream::isReader) {
            for (std::uint64_t i = 0; i < size; ++i) {
                image::PlanIndex plan;
                Part part;
                stream(plan.z), stream(plan.c), stream(plan.t);
                stream(part);
                parts_.emplace_hint(parts_.end(), plan, std::move(part));
            }
        } else {
            for (auto& [plan, part] : parts_) {
                stream(plan.z), stream(plan.c), stream(plan.t);
                stream(part);
            }
        }
    }

    Options options_;
    PixelTypeList types_;
    Extent extent_;
    std::uint32_t pass_ = 0;
    Parts parts_;
};

/// Sets the option of a name.
template <class M>
void setOption(typename M::Options& options, const std::string& name, const data::Value& value)
{
    for (const data::Field& field : data::collectFields(options)) {
        if (field.info.option == name || field.info.name == name) {
            data::FieldSetter setter{field.info.name, value, M::getMeasure().verb};
            options.visitFields(setter);
            return;
        }
    }
    throw MeasureException{std::string{M::getMeasure().verb} + " has no option " + name, ORLIX_HERE};
}

/// What the list of measures needs of the model of a measure.
template <class M>
inline constexpr StateEntry stateEntry{
    [] { return data::collectFields(typename M::Options{}); }, [] { return data::collectFields(typename M::Result{}); },
    [](std::span<const std::pair<std::string, data::Value>> values) -> std::unique_ptr<BaseMeasureState> {
        typename M::Options options;
        for (const auto& [name, value] : values) {
            setOption<M>(options, name, value);
        }
        return std::make_unique<StateModel<M>>(std::move(options));
    },
    [](std::string_view bytes) -> std::unique_ptr<BaseMeasureState> {
        return std::make_unique<StateModel<M>>(StateModel<M>::fromBytes(bytes));
    }};

} // namespace orlix::imaproc
