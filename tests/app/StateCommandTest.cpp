#include <app/CommandFixture.hpp>

#include <ORLIX/Measures/Describe.hpp>
#include <framework/process/StateBytes.hpp>

namespace orlix::test
{

// The fields, their order and the forms that positions and percentiles have.
TEST_F(CommandTest, DescribesAndCompares)
{
    const std::string file = write("a.tif", 2, {});
    const std::string other = write("b.tif", 2, {.bits = 16});
    const Outcome described = run({"describe", file, "--json", "--percentiles", "5,50", "--moments", "4"});
    ASSERT_EQ(described.status, 0) << described.error;
    std::vector<std::string> fields;
    const auto ordered = nlohmann::ordered_json::parse(described.output);
    for (const auto& [name, value] : ordered["results"][0].items()) {
        fields.push_back(name);
    }
    EXPECT_EQ(fields,
              (std::vector<std::string>{"NbPixels", "NbNaN", "NbPositiveInfinity", "NbNegativeInfinity", "NbSaturated",
                                        "Sum", "Mean", "Variance", "StdDev", "Min", "MinPosition", "Max", "MaxPosition",
                                        "Median", "Percentiles", "Skewness", "Kurtosis", "Entropy"}));
    EXPECT_EQ(described.json()["measure"], "describe");
    EXPECT_EQ(described.result()["Percentiles"][0]["percent"], 5);
    EXPECT_EQ(described.result()["MinPosition"], Json::parse("[0, 0, 0]"));
    const Json stats = run({"stats", file, "--json"}).result();
    EXPECT_EQ(described.result()["Sum"], stats["Sum"]);
    const Outcome table = run({"describe", file, "--per", "plan", "--csv"});
    EXPECT_EQ(table.output.substr(0, 40), "path,z,c,t,NbPixels,NbNaN,NbPositiveInfi");
    EXPECT_NE(table.output.find(",MinPosition.x,MinPosition.y,"), std::string::npos);
    EXPECT_NE(table.output.find(",Percentiles.1,Percentiles.5,"), std::string::npos);
    EXPECT_FALSE(run({"describe", file, "--percentiles", "none", "--json"}).result().contains("Median"));

    const Outcome compared = run({"compare", file, other, "--json"});
    ASSERT_EQ(compared.status, 0) << compared.error;
    EXPECT_EQ(compared.result()["MSE"], 0.0);
    EXPECT_EQ(compared.result()["PSNR"], "Infinity");
    EXPECT_EQ(compared.result()["Peak"], 255.0);
    EXPECT_EQ(compared.result()["SSIM"], 1.0);
    EXPECT_EQ(compared.json()["image2"]["type"], "uint16");
}

// Labels may be of one plane for all; several images have numbers.
TEST_F(CommandTest, MeasuresRegions)
{
    const std::string image = write("a.tif", 2, {});
    const std::string labels = write("l.tif", 1, {.bits = 16});
    const Outcome rows = run({"regions", labels, image, image, "--json"});
    ASSERT_EQ(rows.status, 0) << rows.error;
    EXPECT_EQ(rows.json()["images"].size(), 2u);
    const Json second = rows.result(1);
    EXPECT_EQ(second["Label"], 2);
    EXPECT_EQ(second["NbPixels"], 2u); // (2, 0), on both planes
    EXPECT_EQ(second["BoundingBox"], Json::parse("[2, 0, 0, 3, 1, 2]"));
    EXPECT_EQ(second["Centroid"], Json::parse("[2.0, 0.0, 0.5]"));
    EXPECT_EQ(second["TouchesBorder"], true);
    EXPECT_EQ(second["Sum.2"], 2.0 + 9.0);
    EXPECT_NE(run({"regions", labels, "--csv"}).output.find("BoundingBox.x0"), std::string::npos);
    const std::string background = writeArray("zero.npy", "|u1", "(3, 4)", std::vector<unsigned char>(12));
    const Outcome none = run({"regions", background, background, background, "--median", "--csv"});
    EXPECT_EQ(none.status, 0);
    EXPECT_EQ(none.output.rfind("path,Label,NbPixels,BoundingBox.x0,BoundingBox.y0,BoundingBox.x1,BoundingBox.y1,", 0),
              0u);
    EXPECT_NE(none.output.find(",Median.2\r\n"), std::string::npos) << none.output;
    EXPECT_EQ(run({"threshold", image, "--method", "mean", "--json"}).result()["Method"], "mean");
}

// Pieces, measured in processes of their own, are what the whole image is.
TEST_F(CommandTest, MergesStates)
{
    const std::string image = write("a.tif", 4, {.bits = 32, .format = SAMPLEFORMAT_IEEEFP});
    const std::vector<std::string> nest{"--pages", "z=4"};
    const auto runOn = [&](std::vector<std::string> arguments) {
        arguments.insert(arguments.end(), nest.begin(), nest.end());
        return run(arguments);
    };
    const Outcome whole = runOn({"describe", image, "--json"});
    const auto measure = [&](const char* planes, const std::string& to, const std::string& after) {
        std::vector<std::string> arguments{"describe", image, "--plane", planes, "--save-state", path(to)};
        if (!after.empty()) {
            arguments.insert(arguments.end(), {"--next-pass", path(after)});
        }
        const Outcome outcome = runOn(arguments);
        EXPECT_EQ(outcome.status, 0) << outcome.error;
        EXPECT_EQ(outcome.output, "");
    };
    measure("z=0:1", "1.state", "");
    measure("z=1:4", "2.state", "");
    const Outcome early = run({"merge", path("1.state"), path("2.state")});
    EXPECT_EQ(early.status, 1);
    EXPECT_NE(early.error.find("is needed for percentiles of 32-bit pixels"), std::string::npos) << early.error;
    EXPECT_EQ(run({"merge", path("2.state"), path("1.state"), "--save-state", path("all.state")}).status, 0);
    measure("z=0:1", "3.state", "all.state");
    measure("z=1:4", "4.state", "all.state");
    const Outcome merged = run({"merge", path("4.state"), path("3.state"), "--json"});
    ASSERT_EQ(merged.status, 0) << merged.error;
    EXPECT_EQ(merged.json()["results"], whole.json()["results"]);

    const auto histogram = [&](const char* planes, const char* to) {
        return runOn({"histogram", image, "--plane", planes, "--min", "0", "--max", "60", "--classes", "7",
                      "--save-state", path(to)});
    };
    EXPECT_EQ(histogram("z=0:2", "h1.state").status, 0);
    EXPECT_EQ(histogram("z=2:4", "h2.state").status, 0);
    EXPECT_EQ(run({"merge", path("h1.state"), path("h2.state"), "--json"}).result(),
              runOn({"histogram", image, "--min", "0", "--max", "60", "--classes", "7", "--json"}).result());
}

// Whatever the first row lacks: a first plane of NaN has no positions, float pixels have no entropy.
TEST_F(CommandTest, NamesEveryColumn)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const std::string floats = writeArray<float>("f.npy", "<f4", "(2, 1, 2)", {nan, nan, 1, 2});
    const std::string bytes = writeArray<unsigned char>("b.npy", "|u1", "(1, 2)", {1, 2});
    const Outcome table = run({"describe", floats, bytes, "--per", "plan", "--csv"});
    ASSERT_EQ(table.status, 0) << table.error;
    std::istringstream lines{table.output};
    std::string header, first, second, third;
    std::getline(lines, header), std::getline(lines, first), std::getline(lines, second), std::getline(lines, third);
    EXPECT_NE(header.find("Max,MaxPosition.x,MaxPosition.y,"), std::string::npos) << header;
    EXPECT_EQ(header.substr(header.size() - 9), ",Entropy\r");
    const auto nbCells = [](const std::string& line) { return std::count(line.begin(), line.end(), ','); };
    EXPECT_EQ(nbCells(first), nbCells(header));
    EXPECT_EQ(nbCells(second), nbCells(header));
    EXPECT_EQ(second.back(), '\r');
    EXPECT_EQ(second[second.size() - 2], ',');
    EXPECT_NE(third.find(",0.6931471805599453\r"), std::string::npos) << third;
}

TEST_F(CommandTest, RefusesWrongStates)
{
    const std::string image = write("a.tif", 1, {});
    const std::string floats = write("f.tif", 1, {.bits = 32, .format = SAMPLEFORMAT_IEEEFP});
    const std::string state = path("a.state");
    ASSERT_EQ(run({"describe", image, "--save-state", state}).status, 0);
    const std::string bytes = readBytes(state);
    const std::string cut = writeBytes("cut.state", bytes.substr(0, bytes.size() / 2));
    const std::string text = writeBytes("text.state", "no state");
    const std::string empty = writeBytes("empty.state", "");
    const std::string hollow =
        writeBytes("hollow.state", imaproc::wrapState("histogram", R"({"measure":"x","results":[{}]})"));
    const std::string large = writeArray<std::int64_t>("large.npy", "<i8", "(2, 2)", {1, std::int64_t{1} << 40, 7, 0});
    ASSERT_EQ(run({"threshold", image, "--save-state", path("t.state")}).status, 0);
    ASSERT_EQ(run({"histogram", image, "--save-state", path("h.state")}).status, 0);
    struct Case
    {
        std::vector<std::string> arguments;
        int status;
        const char* error;
    };
    for (const Case& c : {
             Case{{"merge", cut}, 1, "the state is damaged: its checksum is wrong"},
             {{"merge", text}, 1, "these bytes are no state of a measure"},
             {{"merge", path("none.state")}, 1, "none.state: it cannot be read"},
             {{"merge", state, path("t.state")}, 1, "states that merge are of one measure"},
             {{"merge", path("h.state"), state}, 1, "states that merge are of one measure"},
             {{"merge", state, path("h.state")}, 1, "states that merge are of one measure"},
             {{"merge", empty}, 1, "empty.state: it is empty"},
             {{"merge", hollow}, 1, "hollow.state: the state is damaged: it has no histograms"},
             {{"regions", large}, 1, "some of its int64 values are none of int32"},
             {{"describe", image, "--moments", "3"}, 2, "moments is 2 or 4, not 3 (see orlix describe --help)"},
             {{"compare", image, image, "--peak", "0"}, 2, "the peak of a signal is above 0 and finite"},
             {{"merge"}, 2, "STATE is required"},
             {{"describe", image, "--next-pass", state}, 1, "it needs no other pass"},
             {{"compare", image, image, "--next-pass", state}, 1, "it is a state of describe"},
             {{"describe", image, "--save-state", image}, 1, "it is an image that is read"},
             {{"describe", image, floats, "--save-state", state}, 2, "--save-state is for one image"},
             {{"describe", image, "--save-state", state, "--json"}, 2, "leave out -o, --json and --csv"},
             {{"describe", image, "--percentiles", "5,x"}, 2, "'x' is not a number from 0.0 to 100.0"},
             {{"describe", image, "--ddof", "2"}, 2, "2 is not a whole number from 0 to 1"},
             {{"compare", floats, floats}, 1, "float32 images have no peak of their own"},
             {{"regions", floats}, 1, "labels are integers"},
             {{"stats", image, "--save-state", state}, 2, "--save-state"},
         }) {
        const Outcome outcome = run(c.arguments);
        EXPECT_EQ(outcome.status, c.status) << outcome.error;
        EXPECT_NE(outcome.error.find(c.error), std::string::npos) << outcome.error;
        EXPECT_EQ(outcome.output, "");
    }
    EXPECT_EQ(readBytes(state), bytes); // nothing that failed has touched it
}

} // namespace orlix::test
