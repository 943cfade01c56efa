#include <app/CommandFixture.hpp>
#include <support/TestImages.hpp>

#include <files/tiff/TiffWriter.hpp>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <tiffio.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <numeric>

namespace orlix::test
{

namespace
{

/// The sum of sample s of page p in a file of unsigned bytes.
double sumOf(std::size_t page, std::size_t sample)
{
    double sum = 0;
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            sum += pixelAt(page, sample, y, x);
        }
    }
    return sum;
}

} // namespace

// Every pixel type, compression and arrangement that a file may have gives the same numbers.
TEST_F(CommandTest, ReadsEveryKindOfTiff)
{
    struct Case
    {
        std::string type;
        Layout layout;
        double factor = 1;
    };
    const Case cases[] = {
        {"uint8", {}},
        {"uint8", {.mode = "wb", .rowsPerStrip = 1000}},
        {"int8", {.format = SAMPLEFORMAT_INT}, -1},
        {"uint16", {.bits = 16, .compression = COMPRESSION_LZW}},
        {"int16", {.bits = 16, .format = SAMPLEFORMAT_INT}, -1},
        {"uint32", {.bits = 32, .tile = 16}},
        {"int32", {.mode = "w8", .bits = 32, .format = SAMPLEFORMAT_INT}, -1},
        {"float32", {.bits = 32, .format = SAMPLEFORMAT_IEEEFP, .compression = COMPRESSION_ADOBE_DEFLATE}, 0.5},
        {"uint8", {.compression = COMPRESSION_PACKBITS, .tile = 16}},
        {"uint8", {.samples = 3}},
        {"uint8", {.samples = 3, .planar = PLANARCONFIG_SEPARATE}},
        {"uint16", {.bits = 16, .samples = 4, .tile = 32}},
        {"uint16", {.bits = 16, .samples = 3, .planar = PLANARCONFIG_SEPARATE, .tile = 16}},
        {"uint16", {.mode = "wb", .bits = 16, .samples = 2}},
        {"uint8", {.mode = "w8", .thumbnailAfter = 1}},
    };
    int number = 0;
    for (const Case& each : cases) {
        SCOPED_TRACE(++number);
        const std::size_t channels = each.layout.samples;
        const Outcome outcome = run({"stats", "--json", "--per", "Plan", write("a.tif", 3, each.layout)});
        ASSERT_EQ(outcome.status, 0) << outcome.error;
        const Json image = outcome.json()["image"];
        EXPECT_EQ(image["type"], each.type);
        EXPECT_EQ(image["x"], width);
        EXPECT_EQ(image["z"], 3);
        EXPECT_EQ(image["c"], channels);
        ASSERT_EQ(outcome.json()["results"].size(), 3 * channels);
        for (std::size_t c = 0; c < channels; ++c) {
            for (std::size_t z = 0; z < 3; ++z) {
                const Json result = outcome.result(c * 3 + z);
                EXPECT_EQ(result["z"], z);
                EXPECT_EQ(result["c"], c);
                EXPECT_EQ(result["Sum"], each.factor * sumOf(z, c));
            }
        }
    }
}

TEST_F(CommandTest, ABinaryFileIsMeasuredAsZerosAndOnes)
{
    for (const std::uint32_t tile : {0u, 16u}) {
        const std::string file = write("b.tif", 1, {.bits = 1, .tile = tile});
        EXPECT_EQ(run({"info", "--json", file}).result()["type"], "binary");
        const Json stats = run({"stats", "--json", file}).result();
        double ones = 0;
        for (std::size_t i = 0; i < width * height; ++i) {
            ones += pixelAt(0, 0, i / width, i % width) % 2;
        }
        EXPECT_EQ(stats["Sum"], ones);
        EXPECT_EQ(stats["Max"], 1);
    }
}

// The axes that a file states, that the user states, and none.
TEST_F(CommandTest, PagesLieOnTheirAxes)
{
    const auto ome = [](const std::string& order, const std::string& sizes, const std::string& data) {
        return "<?xml version=\"1.0\"?><OME><Image><Pixels DimensionOrder=\"" + order + "\" " + sizes + ">" + data +
               "</Pixels></Image></OME>";
    };
    const std::string sizes = "SizeX=\"21\" SizeY=\"10\" SizeZ=\"2\" SizeC=\"3\" SizeT=\"2\"";
    struct Case
    {
        std::string description{};
        std::vector<std::string> options;
        std::size_t z, c, t;
        std::size_t page; ///< of plan z = 1, c = 0, t = 1 (or the last of an axis)
    };
    const Case cases[] = {
        {"", {}, 12, 1, 1, 1},
        {"ImageJ=1.53\nimages=12\nchannels=3\nslices=2\nframes=2\nhyperstack=true\n", {}, 2, 3, 2, 9},
        {"ImageJ=1.53\nimages=12\n", {}, 12, 1, 1, 1},
        {"ImageJ=1.53\nimages=12\nframes=12\n", {"--pages", "c=3,t=2,z=2"}, 2, 3, 2, 9},
        {"", {"--pages", "z=2,c=3,t=2"}, 2, 3, 2, 7},
        {"", {"--pages", "t=12"}, 1, 1, 12, 1},
        {ome("XYZCT", sizes, ""), {}, 2, 3, 2, 7},
        {ome("XYCZT", sizes, "<TiffData/>"), {}, 2, 3, 2, 9},
        {ome("XYTCZ", sizes, "<TiffData IFD=\"0\" PlaneCount=\"12\"/>"), {}, 2, 3, 2, 7},
        {ome("XYCZT", sizes,
             "<TiffData IFD=\"6\" PlaneCount=\"6\"/><TiffData FirstT=\"1\" IFD=\"0\" PlaneCount=\"6\"/>"),
         {},
         2,
         3,
         2,
         3},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.description);
        std::vector<std::string> arguments{"stats", "--json", "--per", "plan",
                                           write("axes.tif", 12, {.description = each.description})};
        arguments.insert(arguments.end(), each.options.begin(), each.options.end());
        const Outcome outcome = run(arguments);
        ASSERT_EQ(outcome.status, 0) << outcome.error;
        const Json image = outcome.json()["image"];
        EXPECT_EQ(image["z"], each.z);
        EXPECT_EQ(image["c"], each.c);
        EXPECT_EQ(image["t"], each.t);
        const std::size_t plan = (each.t > 1 ? 1 : 0) * each.z * each.c + (each.z > 1 ? 1 : 0);
        EXPECT_EQ(outcome.result(plan)["Sum"], sumOf(each.page, 0));
    }

    // Colour is channels, fastest of all; OME counts samples among its channels.
    const Outcome colour = run(
        {"info", "--json",
         write("rgb.tif", 2,
               {.samples = 3,
                .description = ome("XYCZT", "SizeX=\"21\" SizeY=\"10\" SizeZ=\"2\" SizeC=\"3\" SizeT=\"1\"", "")})});
    EXPECT_EQ(colour.result()["c"], 3);
    EXPECT_EQ(colour.result()["z"], 2);
}

// ImageJ writes a stack of more than 4 GiB as one page with all pixels behind it.
TEST_F(CommandTest, ReadsAStackBehindOnePage)
{
    for (const bool bigEndian : {false, true}) {
        const std::string file = write("one.tif", 1,
                                       {.mode = bigEndian ? "wb" : "wl",
                                        .bits = 16,
                                        .rowsPerStrip = height,
                                        .description = "ImageJ=1.53\nimages=3\nslices=3\n"});
        EXPECT_NE(run({"stats", file}).error.find("it states 3 images (ImageJ), but holds pixels for 1"),
                  std::string::npos);

        // The same file with its pixels at the end, three times over.
        std::string bytes = readBytes(file);
        TIFF* const tiff = TIFFOpen(file.c_str(), "r");
        const std::string page =
            bytes.substr(static_cast<std::size_t>(TIFFGetStrileOffset(tiff, 0)), width * height * 2);
        TIFFClose(tiff);
        const auto end = static_cast<std::uint32_t>(bytes.size());
        const std::string tag = bigEndian ? std::string{"\x01\x11\0\x04\0\0\0\x01", 8} // StripOffsets, one long
                                          : std::string{"\x11\x01\x04\0\x01\0\0\0", 8};
        const std::size_t at = bytes.find(tag);
        ASSERT_NE(at, std::string::npos);
        for (int i = 0; i < 4; ++i) {
            bytes[at + 8 + i] = static_cast<char>(end >> 8 * (bigEndian ? 3 - i : i));
        }
        const Outcome outcome = run({"stats", "--json", writeBytes("stack.tif", bytes + page + page + page)});
        ASSERT_EQ(outcome.status, 0) << outcome.error;
        EXPECT_EQ(outcome.json()["image"]["z"], 3);
        EXPECT_EQ(outcome.result()["Sum"], 3 * sumOf(0, 0));
    }
}

TEST_F(CommandTest, PrintsJsonThatReadsBack)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float inf = std::numeric_limits<float>::infinity();
    TIFF* const tiff = TIFFOpen(path("f.tif").c_str(), "w");
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 2);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 1);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 32);
    TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_IEEEFP);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    float row[] = {nan, inf};
    TIFFWriteScanline(tiff, row, 0, 0);
    TIFFClose(tiff);
    const Outcome outcome = run({"stats", "--json", path("f.tif")});
    const Json expected = {{"NbPixels", 2},     {"Sum", nullptr},
                           {"Mean", nullptr},   {"Min", std::numeric_limits<double>::max()},
                           {"Max", "Infinity"}, {"StdDev", nullptr}};
    EXPECT_EQ(outcome.result(), expected);
    EXPECT_EQ(outcome.output.find('\n'), outcome.output.size() - 1);

    const std::string file = write("a.tif", 1, {});
    const Outcome volume = run({"stats", "--json", "--per=volume", file});
    EXPECT_EQ(volume.json()["measure"], "statsMsr3d");
    EXPECT_FALSE(volume.result().contains("z"));
    EXPECT_EQ(volume.result()["t"], 0);
    EXPECT_EQ(run({"stats", file, "--isa", "generic", "--threads", "1", "--quiet"}).output,
              run({"stats", file}).output);
    EXPECT_NE(run({"stats", file}).output.find("uint8, 21 x 10\nNbPixels"), std::string::npos);

    const Json processors = run({"processors", "--json"}).json();
    EXPECT_FALSE(processors.contains("image"));
    for (const Json& each : processors["results"]) {
        const std::string name = each["ObjectName"];
        EXPECT_EQ(each["TypeName"], "orlix::imaproc::glbmsr::" + name);
        EXPECT_EQ(each["Kernels"].empty(), !name.ends_with("Lvl3"));
        if (name == "StatsMsr2dLvl3") {
            EXPECT_EQ(each["Kernels"].back(), (Json{{"types", {"float32"}}, {"isa", "generic"}}));
        }
    }
    const Json info = run({"info", "--json", file}).result();
    EXPECT_EQ(info, (Json{{"type", "uint8"},
                          {"x", 21},
                          {"y", 10},
                          {"z", 1},
                          {"c", 1},
                          {"t", 1},
                          {"bytes", 210},
                          {"format", "TIFF"},
                          {"axes", "YX"},
                          {"axesFrom", "a single page"},
                          {"compression", "none"}}));
}

// Histograms, entropies and counts, with the options that shape them.
TEST_F(CommandTest, CountsPixelsInClasses)
{
    std::vector<std::uint64_t> frequencies(120, 0);
    double entropy = 0;
    for (std::size_t i = 0; i < width * height; ++i) {
        ++frequencies[pixelAt(0, 0, i / width, i % width)];
    }
    for (const std::uint64_t frequency : frequencies) {
        const double p = static_cast<double>(frequency) / (width * height);
        entropy -= frequency != 0 ? p * std::log(p) : 0;
    }
    const std::string file = write("a.tif", 2, {});
    const auto objects = std::count_if(frequencies.begin() + 1, frequencies.end(), [](auto f) { return f != 0; });
    EXPECT_NEAR(run({"entropy", "--json", file}).result()["Entropy"], entropy, 1e-12);
    EXPECT_EQ(run({"entropy", "--json", file, "--min", "0", "--max", "255", "--classes", "1"}).result(1),
              (Json{{"z", 1}, {"c", 0}, {"t", 0}, {"Entropy", 0}}));
    const Outcome counts = run({"count", "--json", file});
    EXPECT_EQ(counts.json()["measure"], "counting2dMsr");
    EXPECT_EQ(counts.result(), (Json{{"z", 0}, {"c", 0}, {"t", 0}, {"Count", objects}}));
    EXPECT_FALSE(run({"count", "--json", file, "--per", "volume"}).result().contains("z"));

    const Outcome plan =
        run({"histogram", "--json", "--per", "plan", file, "--min", "0", "--max", "119", "--bin-width", "1"});
    EXPECT_EQ(plan.json()["measure"], "histogramMsr2d");
    EXPECT_EQ(plan.result()["Frequencies"], frequencies);
    EXPECT_EQ(plan.result()["BinWidth"], 1);
    const Json whole = run({"histogram", "--json", file, "--classes", "2"}).result();
    EXPECT_EQ(whole["Frequencies"].size(), 2u);
    EXPECT_EQ(whole["Frequencies"][0].get<unsigned>() + whole["Frequencies"][1].get<unsigned>(), 2 * width * height);
    // With a range alone, 1/256 of it.
    EXPECT_EQ(run({"histogram", "--json", file, "--min", "0", "--max", "255"}).result()["BinWidth"], 1);
    const std::string floats = write("f.tif", 1, {.bits = 32, .format = SAMPLEFORMAT_IEEEFP});
    EXPECT_EQ(run({"histogram", "--json", floats, "--min", "0", "--max", "64"}).result()["BinWidth"], 0.25);
    const Json volume = run({"histogram", "--json", floats, "--per", "volume"}).json();
    EXPECT_EQ(volume["measure"], "histogramMsr3d");
    // A person reads a row for every class.
    const std::string table = run({"histogram", file, "--min", "10", "--max", "29", "--classes", "2"}).output;
    EXPECT_NE(table.find("Class  From  Pixels\n    0    10"), std::string::npos) << table;
    EXPECT_NE(table.find("\n    1    20"), std::string::npos) << table;
}

// A mask of any integer type, or of one bit, selects where it is not 0.
TEST_F(CommandTest, AMaskSelects)
{
    const std::string file = write("a.tif", 2, {.bits = 16});
    const Layout masks[] = {{}, {.bits = 16}, {.bits = 32, .format = SAMPLEFORMAT_INT}, {.bits = 1}};
    for (const Layout& layout : masks) {
        SCOPED_TRACE(layout.bits);
        const std::string mask = write("mask.tif", 2, layout);
        std::uint64_t set = 0;
        double sum = 0;
        for (std::size_t i = 0; i < width * height; ++i) {
            const unsigned pixel = pixelAt(1, 0, i / width, i % width);
            const bool selected = layout.bits == 1 ? pixel % 2 != 0 : pixel != 0;
            set += selected ? 1 : 0;
            sum += selected ? pixel : 0;
        }
        const Outcome stats = run({"stats", "--json", "--per", "plan", file, "--mask", mask});
        ASSERT_EQ(stats.status, 0) << stats.error;
        EXPECT_EQ(stats.json()["measure"], "statsMaskMsr2d");
        EXPECT_EQ(stats.json()["mask"]["path"], mask);
        EXPECT_EQ(stats.result(1)["NbPixels"], set);
        EXPECT_EQ(stats.result(1)["Sum"], sum);
        const Outcome histogram = run({"histogram", "--json", "--per", "plan", file, "--mask", mask, "--classes", "1"});
        EXPECT_EQ(histogram.json()["measure"], "histogramMaskMsr2d");
        EXPECT_EQ(histogram.result(1)["Frequencies"], Json::array({set}));
    }
    EXPECT_EQ(run({"stats", "--json", file, "--mask", file}).json()["measure"], "statsMaskMsr");
    EXPECT_EQ(run({"histogram", "--json", file, "--mask", file, "--per=volume"}).json()["measure"],
              "histogramMaskMsr3d");
}

TEST_F(CommandTest, ComparesTwoImages)
{
    const std::string first = write("first.tif", 2, {});
    const std::string second = write("second.tif", 2, {.bits = 16});
    const Outcome ncc = run({"ncc", first, second, "--json"});
    EXPECT_EQ(ncc.json()["measure"], "normalizedCrossCorrelationMsr2d");
    EXPECT_EQ(ncc.json()["image2"]["type"], "uint16");
    EXPECT_EQ(ncc.json()["results"].size(), 2u);
    EXPECT_NEAR(ncc.result(1)["Correlation"].get<double>(), 1, 1e-6);
    const Outcome pearson = run({"pearson", first, second, "--per", "volume", "--json"});
    EXPECT_EQ(pearson.json()["measure"], "pearsonCorrelationCoefficient3d");
    EXPECT_NEAR(pearson.result()["PearsonCC"].get<double>(), 2 * width * height, 1e-6);
    EXPECT_NEAR(pearson.result()["r"].get<double>(), 1, 1e-9);
    const Outcome similarity = run({"similarity", first, first, "--json"});
    EXPECT_EQ(similarity.json()["measure"], "similarityMsr");
    EXPECT_EQ(similarity.result(), (Json{{"NbPixels", 2 * width * height},
                                         {"SumSquaredDiff", 0},
                                         {"MSE", 0},
                                         {"PSNR", std::numeric_limits<double>::max()}}));
    EXPECT_NE(run({"similarity", first, second}).error.find("the images are uint8 and uint16: both need"),
              std::string::npos);
}

TEST_F(CommandTest, NoiseFitsAndSamples)
{
    const std::string stack =
        write("stack.tif", 6, {.bits = 16, .description = "ImageJ=1.53\nimages=6\nchannels=2\nslices=3\n"});
    const Outcome noise = run({"noise", stack, "--json"});
    ASSERT_EQ(noise.status, 0) << noise.error;
    EXPECT_EQ(noise.json()["measure"], "gaussianNoiseMsr");
    EXPECT_EQ(noise.result()["NbPixels"], 6 * width * height);
    EXPECT_EQ(noise.result()["SumAbsLaplacian"], 0.0); // of a plane
    // A chequered file: the mask gives 8 at every corner between four pixels.
    const std::string bits = write("bits.tif", 2, {.bits = 1});
    EXPECT_EQ(run({"noise", bits, "--json"}).result()["SumAbsLaplacian"], 2 * 8. * (width - 1) * (height - 1));

    // z = 3 y + x. The channel is not the coefficient c.
    const std::string mask = write("mask.tif", 6, {.description = "ImageJ=1.53\nimages=6\nchannels=2\nslices=3\n"});
    const Outcome fit = run({"paraboloid", stack, "--json"});
    EXPECT_EQ(fit.json()["measure"], "paraboloidImgFit2d");
    EXPECT_EQ(fit.result(3)["z"], 0);
    EXPECT_EQ(fit.result(3)["c"], 1);
    const Json slope = fit.result()["Coefficients"];
    EXPECT_NEAR(slope["c"].get<double>(), 0, 1e-9);
    EXPECT_NEAR(slope["d"].get<double>(), 1, 1e-9);
    EXPECT_NEAR(slope["e"].get<double>(), 3, 1e-9);
    EXPECT_NEAR(run({"paraboloid", stack, "--mask", mask, "--json"}).result()["Coefficients"]["d"].get<double>(), 1,
                1e-9);
    EXPECT_NE(run({"paraboloid", stack}).output.find("plan z  plan c  plan t"), std::string::npos);

    const auto sample = [&](std::vector<std::string> more) {
        more.insert(more.begin(), {"kde", stack, "--json", "--per", "volume", "--threads", "1"});
        const Outcome outcome = run(more);
        EXPECT_EQ(outcome.json()["measure"], "kernelDensityEstimator3d");
        return outcome.result();
    };
    EXPECT_EQ(sample({})["Samples"].size(), 1000u);
    EXPECT_EQ(sample({}), sample({}));
    EXPECT_NE(sample({"--seed", "8"}), sample({}));
    EXPECT_EQ(sample({"--samples", "7", "--bandwidth", "2.5"})["Samples"].size(), 7u);
    EXPECT_EQ(sample({"--samples", "7", "--bandwidth", "2.5"})["Bandwidth"], 2.5);
    EXPECT_NE(sample({"--bandwidth", "Scott"})["Bandwidth"], sample({})["Bandwidth"]);
}

TEST_F(CommandTest, PercentagesAndPositions)
{
    const std::string bits = write("bits.tif", 2, {.bits = 1});
    const std::string labels = write("labels.tif", 2, {.bits = 16});
    std::size_t odd = 0;
    Json positions = Json::array();
    for (std::size_t i = 0; i < width * height; ++i) {
        if (pixelAt(1, 0, i / width, i % width) % 2 != 0) {
            ++odd;
            positions.push_back({i % width, i / width});
        }
    }
    const double percent = 100. * static_cast<double>(odd) / (width * height);
    const Outcome ofBits = run({"percent", bits, "--json"});
    EXPECT_EQ(ofBits.json()["measure"], "areaPercent2dMsr");
    EXPECT_NEAR(ofBits.result(1)["Values"][1].get<double>(), percent, 1e-12);
    // The whole mask is true where it is not 0, and what is outside counts as 0.
    const Outcome masked = run({"percent", labels, "--mask", bits, "--per", "volume", "--json"});
    EXPECT_EQ(masked.json()["measure"], "volumePercent3dMsr");
    EXPECT_EQ(masked.result()["Values"].size(), 54u); // the highest odd value is 53
    EXPECT_EQ(masked.result()["Values"][2], 0.0);
    EXPECT_GT(masked.result()["Values"][53], 0.0);
    EXPECT_EQ(run({"percent", labels, "--binary", "--json"}).result()["Values"].size(), 2u);

    const Outcome located = run({"locate", bits, "--json"});
    EXPECT_EQ(located.json()["measure"], "locatePixels2d");
    EXPECT_EQ(located.result(1)["Coordinates"], positions);
    const Outcome some = run({"locate", labels, "--binary", "--limit", "3", "--per", "volume", "--json"});
    EXPECT_EQ(some.json()["measure"], "locateVoxels3d");
    EXPECT_EQ(some.result()["Coordinates"], Json::parse("[[1,0,0],[2,0,0],[3,0,0]]"));
    EXPECT_EQ(run({"locate", bits, "--limit", "1"}).output, bits + ": binary, 21 x 10, 2 planes\n"
                                                                   "plan z  plan c  plan t  x  y\n"
                                                                   "     0       0       0  1  0\n"
                                                                   "     1       0       0  0  0\n");
}

// Profiles are numbers, one list per plan; along z and t an image comes out, which reads back with the axes that
// remain.
TEST_F(CommandTest, ProjectsAlongEveryAxis)
{
    const std::string stack = write("stack.tif", 12, {.description = "ImageJ=1.53\nchannels=2\nslices=3\nframes=2\n"});
    const Outcome columns = run({"project", stack, "--axis", "x", "--stat", "Sum", "--json"});
    EXPECT_EQ(columns.json()["measure"], "xProjection2d");
    EXPECT_EQ(columns.json()["results"].size(), 12u);
    double sum = 0;
    for (std::size_t y = 0; y < height; ++y) {
        sum += pixelAt(1, 0, y, 4); // page 1 is channel 1 at z = t = 0
    }
    EXPECT_EQ(columns.result(3)["c"], 1);
    EXPECT_EQ(columns.result(3)["Values"].size(), width);
    EXPECT_EQ(columns.result(3)["Values"][4], sum);
    const Outcome table = run({"project", stack, "--axis", "y", "--stat", "max"});
    EXPECT_NE(table.output.find("z  c  t  y  Value\n0  0  0  0     "), std::string::npos) << table.output;

    for (const std::string axis : {"z", "t"}) {
        const bool alongZ = axis == "z";
        const std::string output = writeBytes("projection.tif", "something that was there before");
        const Outcome outcome =
            run({"project", stack, "--axis", axis, "--stat", "mean", "-o", output, "--out-type", "float32", "--json"});
        ASSERT_EQ(outcome.status, 0) << outcome.error;
        EXPECT_EQ(outcome.json()["measure"], alongZ ? "zProjectionImg" : "seqProjectionImg");
        const Json row = outcome.result();
        EXPECT_EQ(row["output"], output);
        EXPECT_EQ(row["type"], "float32");
        const Json info = run({"info", output, "--json"}).result();
        EXPECT_EQ(info["type"], "float32");
        for (const char* const side : {"x", "y", "z", "c", "t"}) {
            EXPECT_EQ(info[side], row[side]);
        }
        EXPECT_EQ(info["z"], alongZ ? 1 : 3);
        EXPECT_EQ(info["t"], alongZ ? 2 : 1);
        // The last plan: channel 1 at the last z or t, whose pages are 2 apart along z and 6 along t.
        double total = 0;
        for (std::size_t y = 0; y < height; ++y) {
            for (std::size_t x = 0; x < width; ++x) {
                for (const std::size_t page :
                     alongZ ? std::vector<std::size_t>{7, 9, 11} : std::vector<std::size_t>{5, 11}) {
                    total += static_cast<double>(pixelAt(page, 0, y, x)) / (alongZ ? 3 : 2);
                }
            }
        }
        const Json plans = run({"stats", output, "--per", "plan", "--json"}).json()["results"];
        EXPECT_NEAR(plans.back()["Sum"].get<double>(), total, 1e-6 * total);
    }
    // A link stays one, and a file keeps its mode.
    std::filesystem::create_symlink("projection.tif", path("link.tif"));
    std::filesystem::permissions(path("projection.tif"), std::filesystem::perms{0640});
    EXPECT_EQ(run({"project", stack, "--axis", "z", "--stat", "max", "-o", path("link.tif")}).status, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(path("link.tif")));
    EXPECT_EQ(std::filesystem::status(path("projection.tif")).permissions(), std::filesystem::perms{0640});
    EXPECT_EQ(run({"info", path("projection.tif"), "--json"}).result()["type"], "uint8");
    std::filesystem::remove(path("link.tif"));
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator{path("")}) {
        files.push_back(entry.path().filename());
    }
    std::sort(files.begin(), files.end());
    EXPECT_EQ(files, (std::vector<std::string>{"projection.tif", "stack.tif"}));
}

TEST_F(CommandTest, MeasuresOnAGpuOrSaysWhyNot)
{
    const std::string image = write("image.tif", 4, {.bits = 16});
    const Outcome info = run({"info", "--gpu", "--json"});
    const Outcome stats = run({"stats", "--gpu", "--per", "plan", "--json", image});
    if (info.status == 0) {
        for (const char* const field : {"device", "memory", "driver"}) {
            EXPECT_TRUE(info.result().contains(field)) << field;
        }
        EXPECT_EQ(stats.json()["results"], run({"stats", "--per", "plan", "--json", image}).json()["results"]);
    } else {
        for (const Outcome* const outcome : {&info, &stats}) {
            EXPECT_EQ(outcome->status, 1);
            EXPECT_EQ(outcome->output, "");
            EXPECT_EQ(outcome->error.rfind("orlix: --gpu: ", 0), 0u) << outcome->error;
        }
    }
}

// One clear line, the right exit status, and nothing on standard output.
TEST_F(CommandTest, RefusesWhatIsWrong)
{
    const std::string good = write("good.tif", 4, {});
    const std::string whole = readBytes(good);
    const std::string cut = writeBytes("cut.tif", whole.substr(0, 300));
    writeBytes("png.tif", "\x89PNG\r\n\x1a\n");
    const std::string odd = path("odd.tif");
    {
        TIFF* const tiff = TIFFOpen(odd.c_str(), "w");
        TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 2);
        TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 1);
        TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 64);
        TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_IEEEFP);
        double row[] = {1, 2};
        TIFFWriteScanline(tiff, row, 0, 0);
        TIFFClose(tiff);
    }
    std::string pages = whole;
    const std::string tag("\x03\x01\x03\x00\x01\x00\x00\x00", 8); // compression, one number
    for (std::size_t at = pages.find(tag); at != std::string::npos; at = pages.find(tag, at + 1)) {
        pages.replace(at + tag.size(), 2, "\x98\x87");
    }
    const std::string jp2 = writeBytes("jp2.tif", pages);
    const std::string one = write("one.tif", 1, {});
    const std::string floats = write("f.tif", 1, {.bits = 32, .format = SAMPLEFORMAT_IEEEFP});
    const std::string imagej = write("ij.tif", 4, {.description = "ImageJ=1.53\nimages=6\nchannels=2\nslices=3\n"});
    const std::string ome = write("ome.tif", 1,
                                  {.description = "<OME><Image><Pixels DimensionOrder=\"XYZCT\" "
                                                  "SizeZ=\"2\" SizeC=\"1\" SizeT=\"1\"/></Image></OME>"});
    struct Case
    {
        std::vector<std::string> arguments;
        int status;
        std::string error;
    };
    const Case cases[] = {
        {{}, 2, "a verb is needed"},
        {{"frobnicate"}, 2, "there is no verb frobnicate"},
        {{"report", good}, 2, "the verb report is not available yet"},
        {{"stats"}, 2, "IMAGE is required"},
        {{"stats", good, "--csv", "--json"}, 2, "--json and --csv do not go together"},
        {{"noise", good, "--gpu"}, 2, "--gpu"},
        {{"stats", good, "--gpu", "--mask", good}, 2, "--gpu and --mask do not go together"},
        {{"stats", good, "--gpu", "--isa", "sse2"}, 2, "--gpu and --isa do not go together"},
        {{"info", good, "--gpu"}, 2, "info --gpu takes no image"},
        {{"info"}, 2, "IMAGE is required"},
        {{"stats", good, "--frob"}, 2, "--frob (see orlix stats --help)"},
        {{"stats", "-x.tif"}, 2, "see orlix stats --help"},
        {{"help", "frob"}, 2, "there is no verb frob"},
        {{"similarity", good, good, "--peak", "0"}, 2, "peak is not above 0"},
        {{"stats", jp2}, 1, "page 0 is compressed with JPEG 2000 (TIFF compression 34712), which is not supported"},
        {{"project", good, "--axis", "z", "--stat", "max", "-o", "-"}, 2, "-o -: an image does not go to standard"},
        {{"project", good, "--axis", "z", "--stat", "max", "-o", path("x.PNG")}, 2, "no .png files are written"},
        {{"locate", good}, 1, "good.tif: it is uint8, and locate takes a binary image: pass --binary"},
        {{"locate", good, "--binary", "--limit", "-1"}, 2, "-1"},
        {{"stats", good, "--binary"}, 2, "--binary"},
        {{"kde", good, "--bandwidth", "wide"}, 2, "wide is neither silverman nor scott nor a number above 0"},
        {{"kde", good, "--bandwidth", "0"}, 2, "bandwidth is silverman, scott, or a number above 0"},
        {{"percent", floats}, 1, "f.tif: it is float32, and percent takes"},
        {{"info", good, "--per", "plan"}, 2, "--per"},
        {{"stats", good, "--per", "line"}, 2, "line"},
        {{"stats", good, "--threads", "two"}, 2, "two"},
        {{"stats", good, "--threads", "0"}, 2, "0"},
        {{"stats", good, "--isa", "mmx"}, 2, "mmx"},
        {{"stats", good, "--pages", "z=5"}, 2, "--pages z=5 makes 5 pages, but good.tif has 4"},
        {{"stats", good, "--pages", "q=4"}, 2, "--pages q=4"},
        {{"stats", good, "--pages", "z=4,z=1"}, 2, "each once"},
        {{"stats", good, "--pages", "z=4294967295,c=4294967295,t=2"}, 2, "makes"},
        {{"stats", path("none.tif")}, 1, "none.tif: No such file or directory"},
        {{"stats", path("png.tif")}, 1, "png.tif: its header cannot be read"},
        {{"stats", writeBytes("text.tif", "hello, world")}, 1, "text.tif: its first bytes are those of no image"},
        {{"stats", writeBytes("empty.tif", "")}, 1, "empty.tif: it is empty"},
        {{"stats", cut}, 1, "cut.tif"},
        {{"stats", good, "--isa", "avx"}, 1, "--isa avx"},
        {{"stats", odd}, 1, "odd.tif: float64 pixels are not measured as they are: convert them with --as float32"},
        {{"stats", imagej}, 1, "ij.tif: it states 6 images (ImageJ), but has 4 pages"},
        {{"histogram", good, "--min", "3"}, 2, "min and max go together"},
        {{"histogram", good, "--min", "30", "--max", "3"}, 2, "min is above max"},
        {{"histogram", good, "--min", "0", "--max", "256"}, 2, "uint8 pixels lie from 0 to 255"},
        {{"histogram", good, "--bin-width", "0"}, 2, "bin-width is not above 0"},
        {{"histogram", good, "--bin-width", "inf"}, 2, "inf is not a finite number"},
        {{"histogram", good, "--bin-width", "2x"}, 2, "2x is not a finite number"},
        {{"entropy", good, "--bin-width", "2", "--classes", "2"}, 2, "give one of them"},
        {{"entropy", good, "--classes", "0"}, 2, "--classes"},
        {{"entropy", good, "--mask", good}, 2, "--mask"},
        {{"count", good, "--per", "image"}, 2, "image"},
        {{"count", floats},
         1,
         "f.tif: it is float32, and count takes uint8, int8, uint16, int16, uint32 or int32 pixels"},
        {{"project", good, "--stat", "max"}, 2, "--axis is required"},
        {{"project", good, "--axis", "x"}, 2, "--stat is required"},
        {{"project", good, "--axis", "c", "--stat", "max"}, 2, "--axis: c not in"},
        {{"project", good, "--axis", "z", "--stat", "max"}, 2, "--axis z makes an image: name its file with -o"},
        {{"project", good, "--axis", "x", "--stat", "max", "-o", path("x.tif")}, 2, "end its name in .json or .csv"},
        {{"project", good, "--axis", "t", "--stat", "max", "-o", path("x.tif"), "--out-type", "int64"}, 2, "int64"},
        {{"project", good, "--axis", "z", "--stat", "max", "-o", path("no/x.tif")}, 1, "there is no folder"},
        {{"project", good, "--axis", "z", "--stat", "max", "-o", good}, 1, "it is an image that is read"},
        {{"project", good, "--axis", "z", "--stat", "max", "-o", "/dev/null"}, 1, "it is no regular file"},
        {{"project", cut, "--axis", "z", "--stat", "max", "-o", path("x.tif")}, 1, "cut.tif"},
        {{"ncc", good}, 2, "IMAGE2 is required"},
        {{"similarity", good, good, "--per", "row"}, 2, "--per"},
        {{"pearson", good, one}, 1, "one.tif: the second image has 21 x 10, but"},
        {{"stats", good, "--plane", "z=4"}, 1, "good.tif: it has no z = 4: z goes from 0 to 3"},
        {{"stats", good, "--plane", "z=2:9"}, 1, "it has no z = 2:9"},
        {{"stats", good, "--plane", "x=2"}, 2, "--plane x=2"},
        {{"stats", good, "--plane", "z=1,z=2"}, 2, "each axis once"},
        {{"stats", good, "--series", "-1"}, 2, "-1"},
        {{"stats", good, "--axes", "ZYX"}, 2, "--axes names the dimensions of an array"},
        {{"stats", good, one, "--csv", "-o", one}, 1, "one.tif: it is an image that is read"},
        {{"stats", path("good*"), "--csv", "-o", good}, 1, "good.tif: it is an image that is read"},
        {{"ncc", good, one, "--csv", "-o", one}, 1, "one.tif: it is an image that is read"},
        {{"stats", good, "--mask", one, "--json", "-o", one}, 1, "one.tif: it is an image that is read"},
        {{"project", path("good*"), "--axis", "z", "--stat", "max", "-o", path("")}, 1, "it is an image that is read"},
        {{"stats", good, "--region", "1:5"}, 2, "--region 1:5: ranges of x and y are needed"},
        {{"stats", good, "--region", "5:1,0:2"}, 2, "--region"},
        {{"stats", good, "--region", "0:22,0:2"}, 1, "it has no x = 0:22: x goes from 0 to 20"},
        {{"stats", good, "--series", "1"}, 1, "good.tif: there is no series 1 (0: 21 x 10, 4 pages"},
        {{"stats", good, "--max-pixels", "839"}, 1, "more than the 839 pixels that --max-pixels allows"},
        {{"stats", good, "--pages", "z=4", "--axes", "ZYX"}, 2, "--pages and --axes do not go together"},
        {{"stats", good, "-o", path("x.txt")}, 2, "end its name in .json or .csv"},
        {{"stats", good, "-o", good, "--csv"}, 1, "it is an image that is read"},
        {{"stats", path("none*.tif")}, 1, "no file matches this pattern"},
        {{"stats", path("none.h5:/a")}, 1, "none.h5:/a: No such file or directory"},
        {{"stats", good, "--as", "float64"}, 2, "--as: float64 not in"},
        {{"stats", good, "--mask", path("none.tif")}, 1, "none.tif: No such file or directory"},
        {{"stats", one, "--mask", good}, 1, "good.tif: the mask has 21 x 10, 4 planes, but"},
        {{"stats", floats, "--mask", floats}, 1, "f.tif: a float32 image is no mask"},
        {{"stats", ome}, 1, "ome.tif: its OME axes state 2 planes, where there are 1 pages"},
    };
    for (const Case& each : cases) {
        const Outcome outcome = run(each.arguments);
        EXPECT_EQ(outcome.status, each.status) << each.error;
        EXPECT_EQ(outcome.output, "") << each.error;
        EXPECT_EQ(outcome.error.rfind("orlix: ", 0), 0u);
        EXPECT_EQ(outcome.error.find('\n'), outcome.error.size() - 1) << outcome.error;
        EXPECT_NE(outcome.error.find(each.error), std::string::npos) << outcome.error;
    }
    EXPECT_FALSE(std::filesystem::exists(path("x.tif")));
    EXPECT_EQ(run({"--help"}).status, 0);
    EXPECT_NE(run({"stats", "--help"}).output.find("--per"), std::string::npos);
    EXPECT_EQ(run({"--version"}).output, "orlix 4.1.0.2\n");
    EXPECT_EQ(run({"help", "stats"}).output, run({"stats", "--help"}).output);
    EXPECT_NE(run({"help", "stats"}).output.find("Usage: orlix stats"), std::string::npos);

    // A file that looks like an option.
    const auto folder = std::filesystem::current_path();
    std::filesystem::current_path(std::filesystem::path{good}.parent_path());
    std::filesystem::copy_file(good, "-x.tif");
    EXPECT_NE(run({"stats", "-x.tif"}).error.find("write -- before files that begin with a dash"), std::string::npos);
    EXPECT_EQ(run({"stats", "--", "-x.tif"}).status, 0);
    std::filesystem::current_path(folder);
}

// What a user should know and did not ask for: a line on standard error, and the exit status of success.
TEST_F(CommandTest, NotesWhatAUserShouldKnow)
{
    const auto make = [&](const std::string& name, const auto& image) {
        files::TiffWriter pages{path(name), image->getType(), image->getGeometry()};
        const image::ImageGeometry size = image->getGeometry();
        const image::PlanRange plans{{size.x, size.y, size.c, size.z, size.t}, image::ePlanKind::ePK_Plan2d};
        for (std::size_t i = 0; i < plans.size(); ++i) { // c fastest
            pages.write(*image->getSubImage({plans[i].c, plans[i].z, plans[i].t}, image::ePlanKind::ePK_Plan2d));
        }
        pages.keep();
        return path(name);
    };
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    constexpr float inf = std::numeric_limits<float>::infinity();
    const std::string plain = make("plain.tif", makeImage<unsigned char>({3, 1, 2}, {0, 1, 2, 0, 5, 9}));
    const std::string holed = make("holed.tif", makeImage<float>({5, 1}, {0, 7, nan, 3, 2}));
    const std::string two = make("two.tif", makeImage<float>({2, 1, 2}, {0, 7, nan, 3}));
    const std::string infinite = make("inf.tif", makeImage<float>({2, 1}, {1, inf}));
    const std::string constant = make("constant.tif", makeImage<unsigned int>({5, 1}, std::vector(5, 3000000001u)));
    const std::string labels = make("labels.tif", makeImage<unsigned char>({3, 1}, {3, 4, 9}));
    const std::string bright = make("bright.tif", makeImage<unsigned char>({2, 1, 2}, {200, 10, 200, 20}));
    const std::string nothing = make("nothing.tif", makeImage<unsigned char>({3, 1, 2}, {0, 0, 0, 0, 0, 0}));
    const std::string output = path("p.tif");
    struct Case
    {
        std::vector<std::string> arguments;
        std::string note; ///< empty: none
    };
    const Case cases[] = {
        {{"stats", plain}, ""},
        {{"stats", holed}, holed + ": there are NaN pixels"},
        {{"stats", two, "--per", "plan"}, two + ": in 1 of 2 results, there are NaN pixels"},
        {{"stats", infinite}, "there are infinite pixels: the deviation is NaN"},
        {{"stats", constant}, "the deviation is NaN: the pixels are constant, or"},
        {{"stats", plain, "--mask", nothing}, "no pixel is inside the mask"},
        {{"histogram", plain}, ""},
        {{"histogram", plain, "--mask", plain, "--per", "plan"}, ""},
        {{"histogram", holed}, "some pixels are in no class"},
        {{"histogram", plain, "--bin-width", "0.25"}, "the classes do not have the --bin-width asked for"},
        {{"histogram", plain, "--classes", "1000"}, "there are not as many --classes as asked for"},
        {{"histogram", plain, "--classes", "5"}, ""},
        {{"entropy", plain, "--classes", "1000"}, "in 2 of 2 results, the classes are not those asked for"},
        {{"entropy", plain, "--bin-width", "2"}, ""},
        {{"count", labels}, "the lowest label is not 0"},
        {{"count", plain}, ""},
        {{"project", bright, "--axis", "z", "--stat", "sum", "-o", output},
         output + ": 1 of 2 pixels were limited to the range of uint8"},
        {{"project", bright, "--axis", "z", "--stat", "max", "-o", output}, ""},
        {{"project", bright, "--axis", "z", "--stat", "sum", "-o", output, "--out-type", "uint16"}, ""},
    };
    for (const Case& each : cases) {
        const Outcome outcome = run(each.arguments);
        EXPECT_EQ(outcome.status, 0) << outcome.error;
        EXPECT_EQ(outcome.error.empty(), each.note.empty()) << outcome.error << each.note;
        EXPECT_EQ(outcome.error.rfind(each.note.empty() ? "" : "orlix: note: ", 0), 0u);
        EXPECT_NE(outcome.error.find(each.note), std::string::npos) << outcome.error << each.note;
        std::vector<std::string> quiet = each.arguments;
        quiet.push_back("--quiet");
        EXPECT_EQ(run(quiet).error, "");
    }
    const std::string equal = run({"similarity", plain, plain}).output;
    EXPECT_NE(equal.find("Infinity"), std::string::npos) << equal;
    EXPECT_EQ(run({"similarity", plain, plain, "--json"}).result()["PSNR"], std::numeric_limits<double>::max());
    const std::string off = make("off.tif", makeImage<unsigned char>({3, 1, 2}, {1, 2, 3, 1, 6, 10}));
    EXPECT_NEAR(run({"similarity", plain, off, "--peak", "1", "--json"}).result()["PSNR"], 0, 1e-12);
    EXPECT_EQ(run({"ncc", plain, plain}).output.find("SumSquaredDev"), std::string::npos);
}

// Several images: a row each, the failures told apart, in natural order.
TEST_F(CommandTest, MeasuresManyImages)
{
    std::filesystem::create_directories(path("many/below"));
    const std::string first = write("many/f2.tif", 1, {});
    const std::string last = write("many/f10.tif", 1, {.bits = 16});
    const std::string below = write("many/below/a,b.tif", 2, {});
    writeBytes("many/read me.txt", "no image");
    const std::string sum = std::to_string(sumOf(0, 0)).substr(0, std::to_string(sumOf(0, 0)).find('.')) + ".0";

    const Outcome csv = run({"stats", path("many"), "--csv"});
    EXPECT_EQ(csv.status, 0) << csv.error;
    std::istringstream lines{csv.output};
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line, "path,NbPixels,Sum,Mean,Min,Max,StdDev\r");
    std::getline(lines, line);
    EXPECT_EQ(line.rfind('"' + below + "\",420,", 0), 0u) << line;
    std::getline(lines, line);
    EXPECT_EQ(line.rfind(first + ",210," + sum + ",", 0), 0u) << line;
    std::getline(lines, line);
    EXPECT_EQ(line.rfind(last, 0), 0u) << line;
    EXPECT_FALSE(std::getline(lines, line));
    EXPECT_EQ(run({"stats", path("many/f*.tif"), "--csv"}).output, run({"stats", first, last, "--csv"}).output);

    // What fails is told, and the others go on.
    writeBytes("many/f3.tif", "II*");
    const Outcome some = run({"stats", path("many"), "--json", "--per", "plan"});
    EXPECT_EQ(some.status, 1);
    EXPECT_NE(some.error.find("f3.tif: its first bytes"), std::string::npos) << some.error;
    EXPECT_EQ(std::count(some.output.begin(), some.output.end(), '\n'), 3);
    const Outcome table = run({"stats", first, last});
    EXPECT_EQ(table.output.find("path"), 0u) << table.output;
    const std::string file = path("table.csv");
    EXPECT_EQ(run({"stats", first, last, "-o", file}).output, "");
    EXPECT_EQ(readBytes(file), run({"stats", first, last, "--csv"}).output);

    // Nothing to write takes no older file's place.
    EXPECT_EQ(run({"stats", path("many/f3.tif"), path("many/read me.txt"), "-o", file}).status, 1);
    EXPECT_EQ(readBytes(file), run({"stats", first, last, "--csv"}).output);

    // Pairs, one against all, and files that are one image.
    EXPECT_EQ(run({"ncc", path("many/f*0.tif"), last, "--json"}).json()["image2"]["path"], last);
    const std::string images[] = {write("p1.tif", 1, {}), write("p2.tif", 1, {}), write("q1.tif", 1, {}),
                                  write("q2.tif", 1, {})};
    const std::string pairs = run({"similarity", path("p*.tif"), path("q*.tif"), "--csv"}).output;
    EXPECT_NE(pairs.find(images[1] + "," + images[3] + ",210,0"), std::string::npos) << pairs;
    EXPECT_NE(run({"similarity", path("[pq]*.tif"), path("q*.tif")}).error.find("makes 2 images, where there are 4"),
              std::string::npos);
    const Outcome stack = run({"stats", path("p*.tif"), "--stack", "t", "--per", "plan", "--json"});
    EXPECT_EQ(stack.json()["image"]["t"], 2);
    EXPECT_EQ(stack.result(1)["Sum"], sumOf(0, 0));
    EXPECT_NE(run({"stats", first, last, "--stack", "z"}).error.find("images of one type and size make a stack"),
              std::string::npos);

    std::filesystem::create_directories(path("out"));
    EXPECT_EQ(run({"project", path("p*.tif"), "--axis", "z", "--stat", "max", "-o", path("out")}).status, 0);
    EXPECT_EQ(run({"info", path("out/p2.tif"), "--json"}).result()["x"], width);
    EXPECT_EQ(run({"project", path("p*.tif"), "--axis", "z", "--stat", "max", "-o", path("x.tif")}).status, 2);
}

// Places in results are those of the whole image, whatever part of it is measured.
TEST_F(CommandTest, MeasuresPartsOfAnImage)
{
    const std::string file =
        write("a.tif", 12, {.bits = 16, .description = "ImageJ=1.53\nimages=12\nchannels=3\nslices=4\n"});
    const Outcome part = run({"stats", file, "--plane", "z=1:3,c=2", "--region", "4:9,3:8", "--per", "plan", "--json"});
    ASSERT_EQ(part.status, 0) << part.error;
    EXPECT_EQ(part.json()["image"]["part"], Json::parse(R"({"x": [4, 9], "y": [3, 8], "z": [1, 3], "c": [2, 3]})"));
    ASSERT_EQ(part.json()["results"].size(), 2u);
    for (std::size_t i = 0; i < 2; ++i) {
        double sum = 0;
        for (std::size_t y = 3; y < 8; ++y) {
            for (std::size_t x = 4; x < 9; ++x) {
                sum += pixelAt((1 + i) * 3 + 2, 0, y, x);
            }
        }
        EXPECT_EQ(part.result(i)["z"], 1 + i);
        EXPECT_EQ(part.result(i)["c"], 2);
        EXPECT_EQ(part.result(i)["Sum"], sum);
    }
    const Json whole = run({"paraboloid", file, "--json"}).result()["Coefficients"];
    const Json cut = run({"paraboloid", file, "--region", "5:,2:8", "--plane", "z=0,c=0", "--json"}).result();
    for (const char* const coefficient : {"a", "b", "c", "d", "e", "f"}) { // a plane everywhere
        EXPECT_NEAR(cut["Coefficients"][coefficient].get<double>(), whole[coefficient].get<double>(), 1e-9);
    }
    const Json all = run({"locate", file, "--binary", "--per", "volume", "--json"}).result()["Coordinates"];
    const Json some =
        run({"locate", file, "--binary", "--per", "volume", "--plane", "z=2,c=0", "--region", "3:7,5:9", "--json"})
            .result()["Coordinates"];
    Json inside = Json::array();
    std::copy_if(all.begin(), all.end(), std::back_inserter(inside),
                 [](const Json& at) { return at[0] >= 3 && at[0] < 7 && at[1] >= 5 && at[1] < 9 && at[2] == 2; });
    EXPECT_EQ(some, inside);
    const std::string profile =
        run({"project", file, "--axis", "y", "--stat", "max", "--region", ":,7:9", "--plane", "z=0,c=1", "--csv"})
            .output;
    EXPECT_NE(profile.find(",0,1,0,7,"), std::string::npos) << profile;
    EXPECT_EQ(profile.find(",0,1,0,0,"), std::string::npos) << profile;
    for (const std::string verb : {"noise", "similarity"}) {
        const auto measure = [&](std::vector<std::string> more) {
            more.insert(more.begin(), {verb, file, "--json"});
            if (verb == "similarity") {
                more.push_back(write("b.tif", 12, {.bits = 16}));
                more.insert(more.end(), {"--pages", "c=3,z=4"});
            }
            const Outcome outcome = run(more);
            EXPECT_EQ(outcome.status, 0) << outcome.error;
            return outcome.json()["results"];
        };
        const Json plans = measure({"--per", "plan"});
        const Json plan = measure({"--plane", "z=3,c=1"});
        Json expected = {{"z", 3}, {"c", 1}, {"t", 0}};
        expected.update(plan[0]);
        EXPECT_EQ(plans.size(), 12u);
        EXPECT_EQ(plans[7], expected);
        EXPECT_EQ(measure({"--per", "volume"}).size(), 3u);
    }
}

// A mask with fewer axes holds for every plane, channel and time.
TEST_F(CommandTest, AMaskRepeats)
{
    const std::string colour = write("rgb.tif", 2, {.samples = 3});
    const std::string mask = write("mask.tif", 1, {.bits = 1});
    const Outcome plans = run({"stats", colour, "--mask", mask, "--per", "plan", "--json"});
    ASSERT_EQ(plans.status, 0) << plans.error;
    for (std::size_t plan = 0; plan < 6; ++plan) {
        double sum = 0;
        for (std::size_t i = 0; i < width * height; ++i) {
            const bool isSet = pixelAt(0, 0, i / width, i % width) % 2 != 0;
            sum += isSet ? pixelAt(plan % 2, plan / 2, i / width, i % width) : 0;
        }
        EXPECT_EQ(plans.result(plan)["Sum"], sum) << plan;
    }
    const auto sumUp = [&](const std::string& per) {
        const Json results = run({"stats", colour, "--mask", mask, "--per", per, "--json"}).json()["results"];
        return std::accumulate(results.begin(), results.end(), 0.,
                               [](double sum, const Json& row) { return sum + row["Sum"].get<double>(); });
    };
    EXPECT_EQ(sumUp("image"), sumUp("plan"));
    EXPECT_EQ(sumUp("volume"), sumUp("plan"));
}

TEST_F(CommandTest, ShellsCompleteWords)
{
    const std::string script = writeBytes("orlix.bash", run({"completion", "bash"}).output);
    const auto complete = [&](const std::string& words, int at) {
        const std::string command = "bash -c '. " + script + "; COMP_WORDS=(" + words +
                                    "); COMP_CWORD=" + std::to_string(at) + "; _orlix; echo -n ${COMPREPLY[*]}'";
        FILE* const pipe = popen(command.c_str(), "r");
        std::string output(1000, '\0');
        output.resize(std::fread(output.data(), 1, output.size(), pipe));
        pclose(pipe);
        return output;
    };
    EXPECT_EQ(complete("orlix hist", 1), "histogram");
    EXPECT_EQ(complete("orlix stats --pl", 2), "--plane");
    EXPECT_EQ(complete("orlix stats --per v", 3), "volume");
    EXPECT_EQ(complete("orlix stats a", 2), ""); // the shell's own: files
    for (const char* const shell : {"zsh", "fish"}) {
        EXPECT_NE(run({"completion", shell}).output.find("paraboloid"), std::string::npos);
    }
    EXPECT_NE(run({"manual"}).output.find(".SS similarity"), std::string::npos);
}

// Whatever a file is cut to or a byte is turned to, the answer is a result or one line of error.
TEST_F(CommandTest, SurvivesDamagedFiles)
{
    const std::string whole = readBytes(write("a.tif", 2, {.compression = COMPRESSION_LZW}));
    for (std::size_t size = 0; size < whole.size(); size += 7) {
        EXPECT_EQ(run({"stats", writeBytes("cut.tif", whole.substr(0, size))}).status, 1) << size;
    }
    std::mt19937 generator{11};
    for (int i = 0; i < 300; ++i) {
        std::string bytes = whole;
        bytes[generator() % bytes.size()] = static_cast<char>(generator());
        const Outcome outcome = run({"stats", writeBytes("turned.tif", bytes)});
        EXPECT_TRUE(outcome.status == 0 || outcome.status == 1);
        EXPECT_TRUE(outcome.status == 1 || outcome.error.empty() || outcome.error.rfind("orlix: note: ", 0) == 0);
        EXPECT_NE(outcome.status == 0, outcome.output.empty());
    }
}

} // namespace orlix::test
