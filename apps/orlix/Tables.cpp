#include <orlix/Tables.hpp>

#include <map>

namespace orlix::app
{

namespace
{

/// The plan of a row, named apart from coordinates and coefficients.
Json namePlan(const Json& row)
{
    Json plan = Json::object();
    for (const char* const axis : {"z", "c", "t"}) {
        if (row.contains(axis)) {
            plan[std::string{"plan "} + axis] = row[axis];
        }
    }
    return plan;
}

} // namespace

void summariseKernels(Report& report)
{
    for (Json& row : report.results) {
        std::map<std::string, std::size_t> counts;
        for (const Json& kernel : row["Kernels"]) {
            ++counts[kernel["isa"].get<std::string>()];
        }
        std::string summary;
        for (const auto& [isa, count] : counts) {
            summary += (summary.empty() ? "" : ", ") + isa + " " + std::to_string(count);
        }
        row["Kernels"] = summary;
        row.erase("TypeName");
    }
}

void spreadClasses(Report& report)
{
    std::vector<Json> rows;
    for (const Json& histogram : report.results) {
        Json row = histogram;
        for (const char* const field : {"Min", "Max", "BinWidth", "Frequencies"}) {
            row.erase(field);
        }
        const Json& frequencies = histogram["Frequencies"];
        for (std::size_t i = 0; i < frequencies.size(); ++i) {
            row["Class"] = i;
            row["From"] = histogram["Min"];
            if (histogram["Min"].is_number() && histogram["BinWidth"].is_number()) {
                row["From"] =
                    histogram["Min"].get<double>() + static_cast<double>(i) * histogram["BinWidth"].get<double>();
            }
            row["Pixels"] = frequencies[i];
            rows.push_back(row);
        }
    }
    report.results = std::move(rows);
}

void spreadValues(Report& report)
{
    if (report.results.empty() || !report.results.front().contains("Values")) {
        return;
    }
    const std::string axis = report.measure.substr(0, 1);
    std::vector<Json> rows;
    for (const Json& profile : report.results) {
        Json row = profile;
        row.erase("Values");
        for (std::size_t i = 0; i < profile["Values"].size(); ++i) {
            row[axis] = i + report.firstIndex;
            row["Value"] = profile["Values"][i];
            rows.push_back(row);
        }
    }
    report.results = std::move(rows);
}

void spreadPercentages(Report& report)
{
    std::vector<Json> rows;
    for (const Json& plan : report.results) {
        Json row = plan;
        row.erase("Values");
        for (std::size_t i = 0; i < plan["Values"].size(); ++i) {
            if (plan["Values"][i] != 0.0) {
                row["Value"] = i;
                row["Percent"] = plan["Values"][i];
                rows.push_back(row);
            }
        }
    }
    report.results = std::move(rows);
}

void spreadCoordinates(Report& report)
{
    std::vector<Json> rows;
    for (const Json& plan : report.results) {
        for (const Json& at : plan["Coordinates"]) {
            Json row = namePlan(plan);
            for (std::size_t i = 0; i < at.size(); ++i) {
                row[std::string{"xyz"[i]}] = at[i];
            }
            rows.push_back(row);
        }
    }
    report.results = std::move(rows);
}

void spreadCoefficients(Report& report)
{
    for (Json& row : report.results) {
        Json spread = namePlan(row);
        spread.update(row["Coefficients"]);
        row = std::move(spread);
    }
}

void countSamples(Report& report)
{
    for (Json& row : report.results) {
        row["Samples"] = row["Samples"].size();
    }
}

void keepCorrelation(Report& report)
{
    for (Json& row : report.results) {
        row.erase("SumSquaredDev1");
        row.erase("SumSquaredDev2");
    }
}

void showInfinity(Report& report)
{
    for (Json& row : report.results) {
        if (row["MSE"] == 0.0) {
            row["PSNR"] = "Infinity";
        }
    }
}

void listFigures(Report& report)
{
    if (report.results.size() > 1) {
        for (Json& row : report.results) {
            Json kept = Json::object();
            for (const char* const field : {"z", "c", "t", "NbPixels", "Mean", "StdDev", "Min", "Median", "Max", "RMSE",
                                            "MaxAbsError", "PSNR", "r", "NMI", "SSIM"}) {
                if (row.contains(field)) {
                    kept[field] = row[field];
                }
            }
            row = std::move(kept);
        }
        return;
    }
    std::vector<Json> rows;
    for (const Json& result : report.results) {
        for (const auto& [name, value] : result.items()) {
            if (!value.is_array() || value.empty() || !value[0].is_object()) {
                rows.push_back({{"figure", name}, {"value", value}});
                continue;
            }
            for (const Json& each : value) {
                std::string percent = each.begin()->dump();
                rows.push_back({{"figure", percent.append(" %")}, {"value", *std::next(each.begin())}});
            }
        }
    }
    report.results = std::move(rows);
}

void listNames(Report& report)
{
    for (Json& row : report.results) {
        for (const auto& [list, key] :
             {std::pair{"Forms", "function"}, {"Inputs", "name"}, {"Parameters", "name"}, {"Fields", "name"}}) {
            std::string names;
            for (const Json& each : row[list]) {
                names += (names.empty() ? "" : ", ") + each[key].get<std::string>();
            }
            row[list] = names;
        }
        row.erase("Name");
        row.erase("Inputs");
    }
}

void listFacts(Report& report)
{
    std::vector<Json> rows;
    for (const auto& [name, value] : report.results.front().items()) {
        if (!value.is_array()) {
            rows.push_back({{"fact", name}, {"value", value}});
            continue;
        }
        for (std::size_t i = 0; i < value.size(); ++i) {
            std::string numbered = name;
            rows.push_back({{"fact", numbered.append(" ").append(std::to_string(i))}, {"value", value[i]}});
        }
    }
    report.results = std::move(rows);
}

} // namespace orlix::app
