#include <support/HardPixels.hpp>
#include <support/Messages.hpp>
#include <support/PixelTypes.hpp>

#include <ORLIX/Measures/Compare.hpp>
#include <ORLIX/Measures/Describe.hpp>
#include <ORLIX/Measures/Regions.hpp>
#include <ORLIX/Measures/Threshold.hpp>

#include <gtest/gtest.h>

#include <algorithm>

namespace orlix::test
{

using namespace measures;

namespace
{

constexpr ImageGeometry size{53, 41, 3};

/// What a state is given of an image: a part of it, or all.
template <class T>
ImageView cut(const std::vector<T>& pixels, const Extent& part)
{
    const Position& a = part.begin;
    const image::ImageStrides strides = image::ImageStrides::contiguous(size, sizeof(T));
    return view(pixels.data() + (a.z * size.y + a.y) * size.x + a.x,
                {part.end.x - a.x, part.end.y - a.y, part.end.z - a.z}, strides);
}

/// The image in boxes, at random.
std::vector<Extent> cutAtRandom(std::mt19937& random)
{
    const auto cuts = [&](std::size_t side) {
        std::vector<std::uint64_t> ends{0, side, random() % side, random() % side};
        std::sort(ends.begin(), ends.end());
        ends.erase(std::unique(ends.begin(), ends.end()), ends.end());
        return ends;
    };
    std::vector<Extent> parts;
    const auto x = cuts(size.x), y = cuts(size.y), z = cuts(size.z);
    for (std::size_t k = 0; k + 1 < z.size(); ++k) {
        for (std::size_t j = 0; j + 1 < y.size(); ++j) {
            for (std::size_t i = 0; i + 1 < x.size(); ++i) {
                parts.push_back({{x[i], y[j], z[k], 0, 0}, {x[i + 1], y[j + 1], z[k + 1], 1, 1}});
            }
        }
    }
    std::shuffle(parts.begin(), parts.end(), random);
    return parts;
}

/// The state of the pieces of a random cut, each in a state of its own on any set and any number of threads, merged as
/// a random tree, pass after pass. `add(state, part)` adds a piece.
template <class State, class Add>
State measureInPieces(const typename State::Options& options, Add add, std::mt19937& random)
{
    State start{options};
    do {
        std::vector<State> states;
        for (const Extent& part : cutAtRandom(random)) {
            const Threads threads{1 + static_cast<unsigned>(random() % 3)};
            const auto set = random() % 2 == 0 ? core::eInstructionSet::eIS_Generic : core::eInstructionSet::eIS_SSE2;
            const ForcedSet forced{random() % 3 == 0 ? core::InstructionSetsIdentifier{} : set};
            State state = start;
            add(state, part);
            states.push_back(State::fromBytes(state.toBytes()));
        }
        while (states.size() > 1) {
            const std::size_t i = random() % (states.size() - 1);
            states[i].merge(states.back());
            states.pop_back();
        }
        start = states.front();
    } while (start.nextPass());
    return start;
}

template <class State, class Add>
void expectSameBytes(const typename State::Options& options, Add add)
{
    State whole{options};
    do {
        add(whole, Extent{{}, {size.x, size.y, size.z, 1, 1}});
    } while (whole.nextPass());
    std::mt19937 random{5};
    for (int i = 0; i < 3; ++i) {
        const State merged = measureInPieces<State>(options, add, random);
        EXPECT_TRUE(merged.toBytes() == whole.toBytes());
        EXPECT_EQ(merged.finish().size(), whole.finish().size());
    }
}

} // namespace

template <class T>
class States : public testing::Test
{
};
TYPED_TEST_SUITE(States, PixelTypes);

// The same pixels in any pieces, in any order, on any set and any number of threads, merged as any tree.
TYPED_TEST(States, HaveTheSameBytesHoweverTheyAreCut)
{
    using T = TypeParam;
    for (const auto& hard : makeHardPixels<T>(size.nbPixels())) {
        const std::string& name = hard.name;
        const auto& pixels = hard.pixels;
        for (const Per per : {Per::Image, Per::Plan}) {
            SCOPED_TRACE(name);
            const auto addTo = [&](auto& state, const Extent& part) { state.add(cut(pixels, part), {}, part.begin); };
            expectSameBytes<DescribeState>({.per = per, .moments = 4, .entropy = EntropyPolicy::Always}, addTo);
            expectSameBytes<ThresholdState>({.per = per}, addTo);
        }
        const auto other = randomValues<unsigned short>(size.nbPixels());
        expectSameBytes<CompareState>({.peak = 255, .bins = 16, .ssim = false}, [&](auto& state, const Extent& part) {
            state.add(cut(pixels, part), cut(other, part), {}, part.begin);
        });
        std::vector<int> labels(size.nbPixels());
        for (std::size_t i = 0; i < labels.size(); ++i) {
            labels[i] = static_cast<int>(i / 11 % 5) * 1000000 - 1000000;
        }
        expectSameBytes<RegionsState>({.median = true}, [&](auto& state, const Extent& part) {
            state.add(cut(labels, part), {cut(pixels, part), cut(other, part)}, part.begin);
        });
    }
}

// So are those of images with NaN and infinities, whole rows of them, under a mask, per volume.
TEST(States, HaveTheSameBytesWhereThereAreNoNumbers)
{
    constexpr float infinity = std::numeric_limits<float>::infinity();
    auto pixels = randomValues<float>(size.nbPixels(), 3);
    auto other = randomValues<float>(size.nbPixels(), 4);
    std::fill_n(pixels.begin(), 30 * size.x, std::numeric_limits<float>::quiet_NaN());
    std::fill_n(other.begin() + 40 * size.x, 9, infinity);
    std::fill_n(pixels.begin() + 60 * size.x, 3 * size.x, -infinity);
    auto mask = randomValues<unsigned char>(size.nbPixels());
    for (unsigned char& each : mask) {
        each = each % 3 != 0;
    }
    std::vector<int> labels(size.nbPixels());
    for (std::size_t i = 0; i < labels.size(); ++i) {
        labels[i] = static_cast<int>(i / 200 % 3);
    }
    for (const Per per : {Per::Image, Per::Volume, Per::Plan}) {
        expectSameBytes<DescribeState>({.per = per, .moments = 4}, [&](auto& state, const Extent& part) {
            state.add(cut(pixels, part), cut(mask, part), part.begin);
        });
        for (const auto* const second : {&other, &pixels}) { // equal ones: no error is larger than none
            expectSameBytes<CompareState>({.per = per, .peak = 1, .ssim = false}, [&](auto& state, const Extent& part) {
                state.add(cut(pixels, part), cut(*second, part), cut(mask, part), part.begin);
            });
        }
        expectSameBytes<RegionsState>({.per = per, .median = true}, [&](auto& state, const Extent& part) {
            state.add(cut(labels, part), {cut(pixels, part)}, part.begin);
        });
    }
}

// Windows across a cut need a margin; without it the state says so.
TEST(States, LookAtMargins)
{
    const auto a = randomValues<unsigned char>(size.nbPixels(), 1);
    const auto b = randomValues<unsigned char>(size.nbPixels(), 2);
    const auto add = [&](CompareState& state, const Extent& part, std::uint64_t margin) {
        Extent wide = part;
        const auto widen = [&](std::uint64_t Position::*side, std::uint64_t end) {
            wide.begin.*side -= std::min(wide.begin.*side, margin);
            wide.end.*side = std::min(wide.end.*side + margin, end);
        };
        widen(&Position::x, size.x);
        widen(&Position::y, size.y);
        state.add(cut(a, wide), cut(b, wide), {}, wide.begin, part);
    };
    expectSameBytes<CompareState>(
        {}, [&](CompareState& state, const Extent& part) { add(state, part, state.getMargin()); });
    CompareState state;
    EXPECT_EQ(state.getMargin(), 3u);
    add(state, {{}, {20, size.y, size.z, 1, 1}}, 0);
    add(state, {{20, 0, 0, 0, 0}, {size.x, size.y, size.z, 1, 1}}, 0);
    EXPECT_EQ(messageOf<MeasureException>([&] { (void)state.finish(); }),
              "structural similarity looked at 4305 windows, but the image has 4935: pieces need a margin of 3 pixels "
              "in x and y, and must make up the whole image (or leave out ssim)");
}

// Bytes that are damaged anywhere, or end early, are refused.
TEST(States, RefuseDamagedBytes)
{
    const auto pixels = randomValues<float>(500);
    DescribeState state;
    state.add(view(pixels, {50, 10}));
    const std::string bytes = state.toBytes();
    EXPECT_EQ(DescribeState::fromBytes(bytes).toBytes(), bytes);
    std::mt19937 random{1};
    for (int i = 0; i < 500; ++i) {
        std::string damaged = bytes;
        damaged[random() % damaged.size()] ^= static_cast<char>(1 << random() % 8);
        EXPECT_THROW((void)DescribeState::fromBytes(damaged), MeasureException);
        EXPECT_THROW((void)DescribeState::fromBytes(bytes.substr(0, random() % bytes.size())), MeasureException);
    }
    for (std::size_t length = 0; length < 64; ++length) {
        EXPECT_THROW((void)DescribeState::fromBytes(bytes.substr(0, length)), MeasureException) << length;
    }
    EXPECT_EQ(messageOf<MeasureException>([&] { (void)CompareState::fromBytes(bytes); }),
              "the state is of describe, not of compare");
}

TEST(States, MergeOnlyWithTheirOwnKind)
{
    const auto pixels = randomValues<unsigned char>(100);
    const auto refusal = [](DescribeState& a, const DescribeState& b) {
        return messageOf<MeasureException>([&] { a.merge(b); });
    };
    DescribeState state;
    state.add(view(pixels, {10, 10}));
    const std::string before = state.toBytes();
    EXPECT_EQ(refusal(state, DescribeState{{.ddof = 1}}), "describe: states that merge have the same options");
    DescribeState other;
    const auto floats = randomValues<float>(100);
    other.add(view(floats, {10, 10}));
    EXPECT_EQ(refusal(state, other), "describe: states that merge have pixels of the same types");
    EXPECT_EQ(messageOf<MeasureException>([&] {
                  state.add(view(floats, {10, 10}));
              }),
              "the state has pixels of other types: all pieces of an image have one type");
    EXPECT_EQ(state.toBytes(), before);
    DescribeState next = other;
    ASSERT_TRUE(next.nextPass());
    EXPECT_EQ(refusal(next, other), "describe: states that merge are in the same pass: this one is in pass 1, not 2");
    EXPECT_EQ(messageOf<MeasureException>([&] { (void)other.finish(); }),
              "all pixels must enter the state once more before there are results");
    EXPECT_EQ(messageOf<MeasureException>([&] {
                  const auto bytes = randomValues<unsigned char>(100);
                  state.add(view(bytes, {10, 10}), {}, {.z = std::uint64_t{1} << 32});
              }),
              "describe: positions are below 2^40 in x and y, and below 2^32 in z, c and t");
    EXPECT_THROW(DescribeState({.mask = view(pixels, {10, 10})}), MeasureException);
    EXPECT_THROW(
        (void)*describe(ImageView{BaseImage::create(image::eImageBufferType::eIBT_UInt8, {0, 0})}, {.per = Per::Plan}),
        MeasureException);
    state.merge(DescribeState{}); // nothing
    EXPECT_EQ(state.toBytes(), before);
}

} // namespace orlix::test
