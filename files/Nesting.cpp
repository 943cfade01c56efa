#include <files/Nesting.hpp>

#include <files/Errors.hpp>
#include <files/Names.hpp>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <limits>
#include <sstream>

namespace orlix::files
{

namespace
{

std::size_t Nesting::*findSize(char axis)
{
    return axis == 'z' ? &Nesting::z : axis == 'c' ? &Nesting::c : &Nesting::t;
}

/// Plans of an image, each where a plan of another image lies.
class NestedReader final : public ImageReader
{
public:
    /// `plans`: the place in the inner image of every plan, z fastest, then c, then t.
    NestedReader(ReaderPtr inner, const Nesting& nesting, std::size_t samples, std::vector<Position> plans)
        : inner_{std::move(inner)}, plans_{std::move(plans)}
    {
        facts_ = inner_->getFacts();
        facts_.geometry.z = nesting.z;
        facts_.geometry.c = nesting.c * samples;
        facts_.geometry.t = nesting.t;
        facts_.axes = nesting.letters + "YX" + (samples > 1 ? "S" : "");
        facts_.axesRule = nesting.rule;
        facts_.axesBy = nesting.by;
        layout_ = inner_->getLayout();
        // Pages lie anywhere; their samples are decoded together.
        const bool areTogether = layout_.block.c > 1 && samples > 1;
        const bool isInOrder = nesting.c * nesting.t == 1;
        layout_.block = {layout_.block.x, layout_.block.y, isInOrder ? layout_.block.z : 1, areTogether ? samples : 1,
                         1};
        layout_.phase = {layout_.phase.x, layout_.phase.y, isInOrder ? layout_.phase.z : 0};
    }

    void fetch(const Box& box, const PixelTarget& target) override
    {
        const image::ImageGeometry& size = box.size;
        for (std::size_t t = 0; t < size.t; ++t) {
            for (std::size_t z = 0; z < size.z; ++z) {
                for (std::size_t c = 0; c < size.c;) {
                    const Position& first = planAt(box, z, c, t);
                    // Samples of one page are read together.
                    std::size_t together = 1;
                    while (c + together < size.c && isNextSample(first, planAt(box, z, c + together, t), together)) {
                        ++together;
                    }
                    inner_->fetch(
                        {{box.begin.x, box.begin.y, first.z, first.c, first.t}, {size.x, size.y, 1, together, 1}},
                        {target.row(0, z, c, t), target.strides});
                    c += together;
                }
            }
        }
    }

    std::vector<std::string> getNotes() const override { return inner_->getNotes(); }

private:
    const Position& planAt(const Box& box, std::size_t z, std::size_t c, std::size_t t) const
    {
        const image::ImageGeometry& size = facts_.geometry;
        return plans_[((box.begin.t + t) * size.c + box.begin.c + c) * size.z + box.begin.z + z];
    }

    static bool isNextSample(const Position& first, const Position& other, std::size_t distance)
    {
        return other.z == first.z && other.t == first.t && other.c == first.c + distance;
    }

    ReaderPtr inner_;
    std::vector<Position> plans_;
};

} // namespace

std::size_t countPages(const std::vector<Level>& levels)
{
    std::size_t pages = 1;
    for (const Level& level : levels) {
        if (__builtin_mul_overflow(pages, level.size, &pages)) {
            return std::numeric_limits<std::size_t>::max();
        }
    }
    return pages;
}

Nesting nest(const std::vector<Level>& levels, const std::string& rule, AxesBy by)
{
    Nesting nesting;
    nesting.rule = rule;
    nesting.by = by;
    for (const Level& level : levels) {
        nesting.*findSize(level.axis) = level.size;
        if (level.size > 1) {
            nesting.letters.insert(0, 1, static_cast<char>(std::toupper(level.axis)));
        }
    }
    nesting.pages.resize(nesting.nbPlans());
    for (std::size_t page = 0; page < nesting.pages.size(); ++page) {
        Nesting place{0, 0, 0};
        std::size_t rest = page;
        for (const Level& level : levels) {
            place.*findSize(level.axis) = rest % level.size;
            rest /= level.size;
        }
        nesting.pages[(place.t * nesting.c + place.c) * nesting.z + place.z] = page;
    }
    return nesting;
}

Nesting nestByOption(const std::string& order, std::size_t pages, const std::string& file)
{
    std::vector<Level> levels;
    std::istringstream parts{order};
    for (std::string part; std::getline(parts, part, ',');) {
        const bool isKnown =
            part.size() > 2 && part[1] == '=' && std::string_view{"zct"}.find(part[0]) != std::string::npos;
        const auto size = isKnown ? parseSize(std::string_view{part}.substr(2)) : std::nullopt;
        const bool isTwice =
            std::any_of(levels.begin(), levels.end(), [&](const Level& level) { return level.axis == part[0]; });
        if (!size || isTwice) {
            throw OptionError{"--pages " + order +
                              ": the sizes of z, c and t are needed, each once, such as z=4,c=2,t=3"};
        }
        levels.push_back({part[0], *size});
    }
    if (countPages(levels) != pages) {
        throw OptionError{"--pages " + order + " makes " + std::to_string(countPages(levels)) + " pages, but " +
                          std::filesystem::path{file}.filename().string() + " has " + std::to_string(pages)};
    }
    return nest(levels, "--pages", AxesBy::Pages);
}

namespace
{

/// Nests pages, of which each lies at a place in the inner image and holds so many samples.
ReaderPtr nestAt(ReaderPtr inner, const Nesting& nesting, std::size_t samples, const std::vector<Position>& places)
{
    std::vector<Position> plans;
    plans.reserve(nesting.nbPlans() * samples);
    for (std::size_t t = 0; t < nesting.t; ++t) {
        for (std::size_t c = 0; c < nesting.c * samples; ++c) {
            for (std::size_t z = 0; z < nesting.z; ++z) {
                plans.push_back(places[nesting.pages[(t * nesting.c + c / samples) * nesting.z + z]]);
                plans.back().c += c % samples;
            }
        }
    }
    return std::make_unique<NestedReader>(std::move(inner), nesting, samples, std::move(plans));
}

} // namespace

ReaderPtr nestPages(ReaderPtr pages, const Nesting& nesting)
{
    const image::ImageGeometry& size = pages->getFacts().geometry;
    std::vector<Position> places(size.z);
    for (std::size_t page = 0; page < size.z; ++page) {
        places[page].z = page;
    }
    return nestAt(std::move(pages), nesting, size.c, places);
}

ReaderPtr nestPlans(ReaderPtr image, const std::string& order)
{
    const ImageFacts& facts = image->getFacts();
    const image::ImageGeometry& size = facts.geometry;
    const std::size_t samples = facts.axes.find('S') != std::string::npos ? size.c : 1;
    const std::size_t pages = size.z * size.c / samples * size.t;
    const Nesting nesting = nestByOption(order, pages, facts.path);
    // The pages as they are stored: numbered along z, c and t, from the fastest of these axes on.
    std::vector<Position> places(pages);
    for (std::size_t page = 0; page < pages; ++page) {
        std::size_t rest = page;
        const auto take = [&](std::size_t& place, std::size_t count) {
            place = rest % count;
            rest /= count;
        };
        for (auto letter = facts.axes.rbegin(); letter != facts.axes.rend(); ++letter) {
            if (*letter == 'Z') {
                take(places[page].z, size.z);
            } else if (*letter == 'C') {
                take(places[page].c, size.c);
            } else if (*letter == 'T') {
                take(places[page].t, size.t);
            }
        }
    }
    return nestAt(std::move(image), nesting, samples, places);
}

} // namespace orlix::files
