#pragma once

#include <support/TestImages.hpp>

#include <algorithm>
#include <array>
#include <atomic>
#include <map>
#include <mutex>
#include <stdexcept>

namespace orlix::test
{

/// A source that has its pixels from an image in memory, and watches how it is read.
class TestSource final : public image::PixelSource
{
public:
    TestSource(Ptr<const BaseImage> pixels, const image::SourceLayout& layout)
        : pixels_{std::move(pixels)}, layout_{layout}
    {}

    void fetch(const image::Box& box, const image::PixelTarget& target) override
    {
        if (onFetch) {
            onFetch(box);
        }
        check(box);
        pixels_->read(box, target);
    }
    image::SourceLayout getLayout() const override { return layout_; }

    /// How often the block that was fetched most often was fetched, and how many were.
    std::size_t getMostFetches() const
    {
        const std::lock_guard lock{mutex_};
        std::size_t most = 0;
        for (const auto& [place, count] : fetches_) {
            most = std::max(most, count);
        }
        return most;
    }
    std::size_t getNbBlocks() const
    {
        const std::lock_guard lock{mutex_};
        return fetches_.size();
    }
    std::size_t getNbSteps() const
    {
        const std::lock_guard lock{mutex_};
        return nbStepsBack_;
    }
    void forget()
    {
        const std::lock_guard lock{mutex_};
        fetches_.clear();
    }

    std::function<void(const image::Box&)> onFetch; ///< set before the first pixel is fetched

private:
    using Place = std::array<std::uint64_t, 5>;

    void check(const image::Box& box)
    {
        const ImageGeometry& size = pixels_->getGeometry();
        const image::Position& at = box.begin;
        const Place begin{at.x, at.y, at.z, at.c, at.t};
        const Place count{box.size.x, box.size.y, box.size.z, box.size.c, box.size.t};
        const Place whole{size.x, size.y, size.z, size.c, size.t};
        const ImageGeometry& b = layout_.block;
        Place block{b.x, b.y, b.z, b.c, b.t};
        std::replace(block.begin(), block.end(), 0, 1);
        const Place phase{layout_.phase.x, layout_.phase.y, layout_.phase.z, layout_.phase.c, layout_.phase.t};
        for (std::size_t axis = 0; axis < 5; ++axis) {
            if (count[axis] == 0 || begin[axis] + count[axis] > whole[axis]) {
                throw std::logic_error{"a box outside of the image was fetched"};
            }
            const bool isWhole =
                block[axis] == 1 || ((begin[axis] == 0 || (begin[axis] + phase[axis]) % block[axis] == 0) &&
                                     (begin[axis] + count[axis] == whole[axis] ||
                                      (begin[axis] + count[axis] + phase[axis]) % block[axis] == 0));
            if (axis < 2 && !isWhole) {
                throw std::logic_error{"a part of a block was fetched"};
            }
        }
        const std::lock_guard lock{mutex_};
        Place place{};
        const auto visit = [&](auto& self, std::size_t axis) -> void {
            if (axis == 5) {
                ++fetches_[place];
                return;
            }
            const std::uint64_t side = axis < 2 && block[axis] == 1 ? whole[axis] : block[axis];
            const std::uint64_t last = (begin[axis] + count[axis] - 1 + phase[axis]) / side;
            for (place[axis] = (begin[axis] + phase[axis]) / side; place[axis] <= last; ++place[axis]) {
                self(self, axis + 1);
            }
        };
        if (block[0] * block[1] * block[2] * block[3] * block[4] > 1) {
            visit(visit, 0);
        }
        nbStepsBack_ += begin < last_ && at < image::Position{last_[0], last_[1], last_[2], last_[3], last_[4]};
        last_ = begin;
    }

    Ptr<const BaseImage> pixels_;
    image::SourceLayout layout_;
    mutable std::mutex mutex_;
    std::map<Place, std::size_t> fetches_;
    Place last_{};
    std::size_t nbStepsBack_ = 0;
};

/// The ways in which files have their pixels.
inline const std::map<std::string, image::SourceLayout> sourceLayouts{
    {"rows", {}},
    {"direct", {.readsAhead = true}},
    {"strips", {.block = {520, 7, 1, 1, 1}, .phase = {0, 2}}},
    {"chunks", {.block = {64, 48, 3, 1, 2}, .phase = {5, 11, 2, 0, 1}}},
    {"regions", {.block = {64, 16, 0, 1, 1}, .phase = {300, 77, 9, 3, 0}}}, // of files, at any offset
    {"planes", {.block = {1, 2000, 2, 1, 1}}},
    {"interleaved", {.block = {1, 80, 1, 2, 1}}},
    {"stream", {.isSequential = true}},
};

inline Ptr<const BaseImage> makeSourceImage(const Ptr<const BaseImage>& pixels, const image::SourceLayout& layout)
{
    return BaseImage::fromSource(makePtr<TestSource>(pixels, layout), pixels->getType(), pixels->getGeometry());
}

} // namespace orlix::test
