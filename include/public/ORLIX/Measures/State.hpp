#pragma once

#include <framework/process/MeasureState.hpp>

#include <concepts>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// Measures as values: an image and options go in, plain records come out. Each has a state besides, for pixels that
/// come in pieces, on many machines, or from a file larger than memory.
namespace orlix::measures
{

using imaproc::Extent;
using imaproc::MeasureException;
using imaproc::Per;
using imaproc::Position;

/// What NaN pixels do.
enum class NanPolicy
{
    Omit,      ///< they are left out; results tell their number
    Propagate, ///< results that they would take part in are NaN
    Fail       ///< the measure throws MeasureException
};
ORLIX_API std::span<const char* const> namesOf(NanPolicy);

/// Results in the order of their plans or volumes: t slowest, then c, then z. Of a whole image there is one, which *
/// and -> give; they throw MeasureException where there is none, as per plan of an image without pixels. What -> of a
/// temporary leads to goes with it: `for (double p : describe(image)->Percentiles)` looks at what is gone.
template <class Result>
class Results : public std::vector<Result>
{
public:
    using std::vector<Result>::vector;
    explicit Results(std::vector<Result> results) : std::vector<Result>{std::move(results)} {}

    const Result& operator*() const& { return first(); }
    Result operator*() && { return first(); }
    const Result* operator->() const { return &first(); }

private:
    const Result& first() const
    {
        if (this->empty()) {
            throw MeasureException{"there is no result: the image has no pixels", ORLIX_HERE};
        }
        return this->front();
    }
};

/// The state of a measure M. Pixels may enter in any pieces and in any order, and states may merge as any tree: the
/// bytes and the results are the same. Each pixel of an image enters once, or, where another pass is needed, once in
/// every pass.
template <class M>
class State
{
public:
    using Options = typename M::Options;
    using Result = typename M::Result;

    /// Throws MeasureException if an option has a value that the measure does not take, or there is a mask in them:
    /// that goes with each piece.
    explicit State(const Options& options = {});
    State(const State& other);
    State(State&&) noexcept = default;
    State& operator=(State other) noexcept;
    ~State() = default;

    /// The pixels of a piece, those whose mask byte is not 0 if there is a mask. The first one lies at `offset` in the
    /// whole image. Where the measure looks at neighbours, the piece has a margin of them, and `core` is what it is
    /// without it, in positions of the whole image as `offset` is: Extent{{10, 0}, {20, 64, 1, 1, 1}}. Throws
    /// MeasureException; then nothing has entered.
    void add(const ImageView& image, const ImageView& mask = {}, const Position& offset = {},
             const std::optional<Extent>& core = {}) requires(M::nbImages == 1)
    {
        addImages({image}, mask, offset, core);
    }
    void add(const ImageView& image, const ImageView& image2, const ImageView& mask = {}, const Position& offset = {},
             const std::optional<Extent>& core = {}) requires(M::nbImages == 2)
    {
        addImages({image, image2}, mask, offset, core);
    }
    void add(const ImageView& labels, const std::vector<ImageView>& images, const Position& offset = {},
             const std::optional<Extent>& core = {}) requires(M::nbImages < 0)
    {
        std::vector<ImageView> all{labels};
        all.insert(all.end(), images.begin(), images.end());
        addImages(all, {}, offset, core);
    }
    /// Throws MeasureException unless both are of images of the same types, with the same options.
    void merge(const State& other);

    /// How far around a pixel the measure looks, in x and y; 0 for most.
    std::uint64_t getMargin() const;
    /// Whether all pixels must enter once more before there are results.
    bool needsPass() const;
    /// Gets the state ready for the next pass; false where none is needed. States of one image that are to merge begin
    /// their next pass from the one that all of them made.
    bool nextPass();

    /// Throws MeasureException while another pass is needed, and for what the options forbid.
    Results<Result> finish() const;

    /// The same on every machine. What reads it throws MeasureException where bytes are damaged or of another version.
    std::string toBytes() const;
    static State fromBytes(std::string_view bytes);

private:
    State(std::unique_ptr<imaproc::BaseMeasureState> model);
    void addImages(const std::vector<ImageView>& images, const ImageView& mask, const Position& offset,
                   const std::optional<Extent>& core);

    std::unique_ptr<imaproc::BaseMeasureState> model_;
};

} // namespace orlix::measures
