#include <support/TestSource.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/ORLIXIPLGlobalMeasure.hpp>
#include <files/ImageFile.hpp>
#include <framework/core/Random.hpp>
#include <framework/data/Archive.hpp>
#include <framework/process/MeasureList.hpp>

#include <gtest/gtest.h>

#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <set>

namespace orlix::test
{

using namespace imaproc;
using namespace imaproc::glbmsr;
using image::eImageBufferType;

namespace
{

constexpr ImageGeometry size{300, 920, 2, 2, 2}; // planes of two strips

/// Few values, and of a binary image few that are not 0.
Ptr<const BaseImage> makePixels(eImageBufferType type, unsigned seed)
{
    const auto image = BaseImage::create(type, size);
    std::minstd_rand generator{seed};
    image::forEachPixelType([&]<class T>(std::type_identity<T>) {
        const bool isBinary = type == eImageBufferType::eIBT_Binary && sizeof(T) == 1 && !std::is_signed_v<T>;
        if (type != image::imageBufferTypeOf<T> && !isBinary) {
            return;
        }
        auto* const pixels = reinterpret_cast<T*>(image->getRow(0));
        for (std::size_t i = 0; i < size.nbPixels(); ++i) {
            const auto value = generator();
            pixels[i] = static_cast<T>(isBinary ? value % 1000 == 0 : value % 97) / static_cast<T>(seed);
        }
    });
    return image;
}

struct Images
{
    Ptr<const BaseImage> first;
    Ptr<const BaseImage> second;
    Ptr<const BaseImage> mask;
};

/// What a form makes of the images, in words; or why it makes nothing.
std::string run(const MeasureForm& form, const std::vector<attr::Parameter>& parameters, const Images& images,
                const std::string& statistic)
{
    core::random::setSeed(7);
    const auto processor = form.create();
    std::size_t nbImages = 0;
    for (const MeasureInput& input : form.inputs) {
        processor->getAttribute(input.name)
            .setImage(input.isMask      ? images.mask
                      : nbImages++ == 0 ? images.first
                                        : images.second);
    }
    if (!statistic.empty()) {
        processor->setParameter("stat", statistic);
    }
    for (const attr::Parameter& parameter : parameters) {
        if (std::string_view{parameter.info.option} == "limit") {
            processor->setParameter("limit", 100000.0);
        }
    }
    const core::ProcessingResult result = processor->run(eSynchroType::eST_Synchronous);
    if (!result) {
        return "failed: " + result.getMessage();
    }
    data::OutputArchive archive;
    EXPECT_TRUE(processor->getAttributes().back()->write(archive));
    return archive.str();
}

/// The same of a measure that is a state.
std::string run(const StateMeasure& measure, const Images& images, bool isMasked, const std::string& per)
{
    std::vector<std::pair<std::string, data::Value>> options{{"per", per}};
    if (std::string_view{measure.verb} == "compare") {
        options.emplace_back("peak", 100.0);
    }
    const auto state = measure.entry.create(options);
    std::vector<ImageView> all{images.first};
    if (measure.inputs.size() > 1) {
        all.emplace_back(images.second);
    }
    do {
        state->add(all, isMasked ? ImageView{images.mask} : ImageView{}, {}, {}, {});
    } while (state->nextPass());
    return state->toBytes();
}

class SourceOf : public testing::TestWithParam<std::string>
{
};

/// What memory gives is found once.
template <class Find>
const std::string& recall(const std::string& what, Find find)
{
    static std::map<std::string, std::string> known;
    const auto place = known.find(what);
    return place != known.end() ? place->second : known.emplace(what, find()).first->second;
}

} // namespace

// What every measure, in every form, makes of an image whose pixels are fetched is what it makes of that in memory, bit
// by bit.
TEST_P(SourceOf, GivesWhatMemoryGives)
{
    const image::SourceLayout& layout = sourceLayouts.at(GetParam());
    const image::SourceLayout& other = sourceLayouts.at(GetParam() == "chunks" ? "strips" : "chunks");
    std::set<std::string> measured;
    const bool isOfMany = GetParam() == "chunks" || GetParam() == "direct"; // of measures and types
    for (const auto type :
         {eImageBufferType::eIBT_UInt16, eImageBufferType::eIBT_Binary, eImageBufferType::eIBT_Float32}) {
        if (type == eImageBufferType::eIBT_Float32 && !isOfMany) {
            continue;
        }
        const Images memory{makePixels(type, 1), makePixels(type, 2), makePixels(eImageBufferType::eIBT_Binary, 3)};
        const Images fetched{makeSourceImage(memory.first, layout), makeSourceImage(memory.second, other),
                             makeSourceImage(memory.mask, layout)};
        for (const Measure& measure : MeasureList::getInstance().getMeasures()) {
            for (const MeasureForm& form : measure.forms) {
                const std::string what =
                    measure.verb + " " + form.function + " " + form.per + " " + image::getName(type);
                SCOPED_TRACE(what);
                if (measure.state != nullptr) {
                    if (type == eImageBufferType::eIBT_Float32 && form.inputs.back().isList) {
                        continue; // they are no labels
                    }
                    const std::string& expected =
                        recall(what, [&] { return run(*measure.state, memory, form.needsMask(), form.per); });
                    EXPECT_TRUE(run(*measure.state, fetched, form.needsMask(), form.per) == expected);
                    measured.insert(measure.verb);
                    continue;
                }
                std::vector<std::string> statistics{""};
                if (measure.verb == "project") {
                    statistics = isOfMany
                                     ? std::vector<std::string>{"max", "mean", "median", "min", "stddev", "sum", "var"}
                                     : std::vector<std::string>{"median", "stddev"};
                }
                // Density samples of several plans share a generator.
                const Threads threads{measure.verb == "kde" ? 1u : 3u};
                for (const std::string& statistic : statistics) {
                    const std::string& expected =
                        recall(what + statistic, [&] { return run(form, measure.parameters, memory, statistic); });
                    if (!expected.starts_with("failed")) {
                        measured.insert(measure.verb);
                        EXPECT_TRUE(run(form, measure.parameters, fetched, statistic) == expected) << statistic;
                    }
                }
            }
        }
    }
    EXPECT_EQ(measured.size(), MeasureList::getInstance().getMeasures().size());
}

INSTANTIATE_TEST_SUITE_P(Sources, SourceOf,
                         testing::Values("rows", "direct", "strips", "chunks", "regions", "planes", "interleaved",
                                         "stream"),
                         [](const auto& each) { return each.param; });

namespace
{

Ptr<TestSource> makeSource(const std::string& layout)
{
    return makePtr<TestSource>(makePixels(eImageBufferType::eIBT_UInt16, 1), sourceLayouts.at(layout));
}

Ptr<const BaseImage> makeImage(const Ptr<TestSource>& source)
{
    return BaseImage::fromSource(source, eImageBufferType::eIBT_UInt16, size);
}

Measure findMeasure(const std::string& verb)
{
    for (const Measure& measure : MeasureList::getInstance().getMeasures()) {
        if (measure.verb == verb) {
            return measure;
        }
    }
    throw std::invalid_argument{verb};
}

Ptr<BaseProcessor> makeStats(const Ptr<const BaseImage>& image)
{
    const auto processor = findMeasure("stats").forms.front().create();
    processor->getAttributes().front()->setImage(image);
    return processor;
}

} // namespace

// What is decoded together is decoded once a pass.
TEST(Source, ReadsEveryBlockOnce)
{
    for (const char* const layout : {"strips", "chunks", "planes", "interleaved"}) {
        SCOPED_TRACE(layout);
        const auto source = makeSource(layout);
        const auto fetched = [&] {
            const auto image = makeImage(source); // nothing is kept of an earlier one
            source->forget();
            return image;
        };
        for (const char* const verb : {"stats", "noise", "entropy", "describe", "project"}) {
            SCOPED_TRACE(verb);
            const Measure measure = findMeasure(verb);
            const Images images{fetched(), nullptr, nullptr};
            if (measure.state != nullptr) {
                run(*measure.state, images, false, "image");
            } else {
                const auto form =
                    std::find_if(measure.forms.begin(), measure.forms.end(), [&](const MeasureForm& each) {
                        return measure.verb != "project" || each.function.starts_with("z");
                    });
                run(*form, measure.parameters, images, measure.verb == "project" ? "mean" : "");
            }
            EXPECT_EQ(source->getMostFetches(), 1u);
            EXPECT_GT(source->getNbBlocks(), 3u);
        }
    }
    const auto stream = makeSource("stream");
    EXPECT_TRUE(makeStats(makeImage(stream))->run(eSynchroType::eST_Synchronous));
    EXPECT_EQ(stream->getNbSteps(), 0u);
}

// A source that fails fails the measure with its words, and may work the next time.
TEST(Source, FailsWithItsOwnWords)
{
    for (const auto& [name, layout] : sourceLayouts) {
        SCOPED_TRACE(name);
        const auto source = makeSource(name);
        std::atomic<bool> isGone{true};
        source->onFetch = [&](const image::Box& box) {
            if (isGone && box.begin.t == 1 && box.begin.c + box.size.c == 2) {
                throw std::runtime_error{"stack.raw: the disk is gone at page 7"};
            }
        };
        const auto image = makeImage(source);
        const auto processor = makeStats(image);
        const core::ProcessingResult result = processor->run(eSynchroType::eST_Synchronous);
        EXPECT_FALSE(result);
        EXPECT_NE(result.getMessage().find("stack.raw: the disk is gone at page 7"), std::string::npos);
        try {
            run(*findMeasure("describe").state, {image, nullptr, nullptr}, false, "plan");
            ADD_FAILURE() << "it did not fail";
        } catch (const std::exception& error) {
            EXPECT_STREQ(error.what(), "stack.raw: the disk is gone at page 7");
        }
        isGone = false;
        EXPECT_TRUE(processor->run(eSynchroType::eST_Synchronous));
    }
}

// A run that is cancelled reads what has begun, and no more; one that stalls holds up nobody else.
TEST(Source, StopsWhereARunIsCancelled)
{
    {
        const Threads threads{2};
        const auto source = makeSource("direct");
        const auto processor = makeStats(makeImage(source));
        std::atomic<std::size_t> nbFetches{0};
        source->onFetch = [&](const image::Box&) {
            if (++nbFetches == 3) {
                processor->requestCancellation();
            }
        };
        const core::ProcessingResult result = processor->run(eSynchroType::eST_Synchronous);
        EXPECT_FALSE(result);
        EXPECT_NE(result.getMessage().find("cancelled"), std::string::npos) << result.getMessage();
        EXPECT_LE(nbFetches, 6u); // of 16: those that the two threads work at
    }
    const auto stalled = makeSource("rows");
    std::mutex mutex;
    std::condition_variable changed;
    bool hasStalled = false;
    bool isReleased = false;
    stalled->onFetch = [&](const image::Box&) {
        std::unique_lock lock{mutex};
        hasStalled = true;
        changed.notify_all();
        changed.wait(lock, [&] { return isReleased; });
    };
    const auto processor = makeStats(makeImage(stalled));
    ASSERT_TRUE(processor->run(eSynchroType::eST_Asynchronous));
    {
        std::unique_lock lock{mutex};
        changed.wait(lock, [&] { return hasStalled; });
    }
    {
        const Threads own{1}; // the others wait
        EXPECT_TRUE(makeStats(makeImage(makeSource("rows")))->run(eSynchroType::eST_Synchronous));
    }
    processor->requestCancellation();
    EXPECT_TRUE(processor->isRunning());
    {
        const std::lock_guard lock{mutex};
        isReleased = true;
    }
    changed.notify_all();
    EXPECT_FALSE(processor->wait());
}

// A file that shrinks while it is read is an error that names the place.
TEST(Source, SurvivesAFileThatShrinks)
{
    const std::string folder = testing::TempDir();
    const std::string nrrd =
        "NRRD0004\ntype: uint16\ndimension: 3\nsizes: 300 920 8\nendian: little\nencoding: raw\n\n";
    const std::string path = folder + "shrinks.nrrd";
    const auto pixels = makePixels(eImageBufferType::eIBT_UInt16, 1);
    std::ofstream{path, std::ios::binary} << nrrd;
    std::ofstream{path, std::ios::binary | std::ios::app}.write(reinterpret_cast<const char*>(pixels->getRow(0)),
                                                                static_cast<std::streamsize>(size.nbPixels() * 2));
    const std::shared_ptr<files::ImageReader> reader = files::openImage(path, {});
    std::atomic<int> nbFetches{0};
    const auto image = BaseImage::fromSource(
        [&](const image::Box& box, const image::PixelTarget& target) {
            if (++nbFetches == 2) {
                std::filesystem::resize_file(path, 300 * 920 * 2 * 5);
            }
            reader->fetch(box, target);
        },
        eImageBufferType::eIBT_UInt16, {300, 920, 8});
    const core::ProcessingResult result = makeStats(image)->run(eSynchroType::eST_Synchronous);
    EXPECT_FALSE(result);
    for (const std::string& part : {path, std::string{"the file is cut short (plane z="}}) {
        EXPECT_NE(result.getMessage().find(part), std::string::npos) << result.getMessage();
    }
    std::filesystem::remove(path);
}

// What else knows images knows those that are sources.
TEST(Source, IsAnImageLikeOthers)
{
    const auto pixels = makePixels(eImageBufferType::eIBT_UInt16, 1);
    const auto image = makeSourceImage(pixels, sourceLayouts.at("chunks"));
    data::OutputArchive expected;
    data::OutputArchive written;
    EXPECT_TRUE(pixels->write(expected));
    EXPECT_TRUE(image->write(written));
    EXPECT_EQ(written.str(), expected.str());
    EXPECT_EQ(image->getSubImage({1, 1, 0}, image::ePlanKind::ePK_Plan2d)->loadAll()->getGeometry(),
              (ImageGeometry{300, 920}));
    EXPECT_THROW(image->getSubImage({2, 0, 0}, image::ePlanKind::ePK_Plan2d), image::ImageException);
    EXPECT_THROW(BaseImage::fromSource(BaseImage::Fetch{}, pixels->getType(), size), image::ImageException);
    const auto turned = image->getSubImage({0, 1, 1}, image::ePlanKind::ePK_Volume3d)->getPlanesAsSequence();
    const image::LoadedBox box = turned->load({{3, 7, 0, 0, 1}, {2, 1}});
    EXPECT_EQ(std::memcmp(box.first, pixels->getRow(7, 1, 1, 1) + 6, 4), 0);
}

} // namespace orlix::test
