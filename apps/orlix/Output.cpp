#include <orlix/Output.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace orlix::app
{

Json toJson(double value)
{
    if (std::isinf(value)) {
        return value > 0 ? "Infinity" : "-Infinity";
    }
    return std::isnan(value) ? Json(nullptr) : Json(value);
}

Json toJson(const data::Value& value, const data::FieldInfo& info)
{
    const std::size_t columns = info.columns;
    const auto convert = [&](const auto& each) -> Json {
        using T = std::remove_cvref_t<decltype(each)>;
        if constexpr (std::is_same_v<T, double>) {
            return toJson(each);
        } else if constexpr (std::is_same_v<T, std::vector<double>>) {
            Json list = Json::array();
            for (std::size_t i = 0; i < each.size(); ++i) {
                const std::size_t column = i % columns;
                if (columns > 1 && column == 0) {
                    list.push_back(info.columnNames.empty() ? Json::array() : Json::object());
                }
                if (columns > 1 && !info.columnNames.empty()) {
                    list.back()[info.columnNames[column]] = toJson(each[i]);
                } else {
                    (columns > 1 ? list.back() : list).push_back(toJson(each[i]));
                }
            }
            return list;
        } else {
            return each;
        }
    };
    return std::visit(convert, value);
}

Json toJson(const imaproc::ResultRow& row, const char* fieldsWithin)
{
    using imaproc::Per;
    Json object = Json::object();
    const imaproc::ResultPlace& place = row.place;
    if (place.per == Per::Plan) {
        object["z"] = place.z;
    }
    if (place.per != Per::Image) {
        object["c"] = place.c;
        object["t"] = place.t;
    }
    Json& fields = *fieldsWithin == 0 ? object : object[fieldsWithin];
    for (const auto& [name, field] : row.fields) {
        fields[name] = toJson(field.value, field.info);
    }
    return object;
}

Json describeImage(const std::string& path, const std::string& type, const image::ImageGeometry& geometry)
{
    return {{"path", path},    {"type", type},    {"x", geometry.x}, {"y", geometry.y},
            {"z", geometry.z}, {"c", geometry.c}, {"t", geometry.t}};
}

namespace
{

/// A cell as a person reads it.
std::string printCell(const Json& value)
{
    if (value.is_null()) {
        return "NaN";
    }
    if (value.is_string()) {
        return value.get<std::string>();
    }
    if (value.is_number_float()) {
        char text[32];
        std::snprintf(text, sizeof text, "%.10g", value.get<double>());
        return text;
    }
    if (value.is_array()) {
        std::string list;
        for (const Json& each : value) {
            list.append(list.empty() ? "" : ", ").append(printCell(each));
        }
        return list;
    }
    if (value.is_object()) {
        std::string list;
        for (const auto& [key, each] : value.items()) {
            list.append(list.empty() ? "" : " ").append(printCell(each));
        }
        return list;
    }
    return value.dump();
}

/// A value of CSV as programs read it; `isUnknown`: null is nothing, not NaN.
std::string printCsvText(const Json& value, bool isUnknown)
{
    if (value.is_null()) {
        return isUnknown ? "" : "nan";
    }
    if (value.is_string()) {
        auto text = value.get<std::string>();
        return text == "Infinity" ? "inf" : text == "-Infinity" ? "-inf" : text;
    }
    if (!value.is_array()) {
        return value.dump(-1, ' ', false, Json::error_handler_t::replace);
    }
    std::string text;
    for (const Json& each : value) {
        text.append(text.empty() ? "" : "; ").append(printCsvText(each, isUnknown));
    }
    return text;
}

/// The same as a cell, in quotes where it needs them.
std::string printCsvCell(const Json& value, bool isUnknown)
{
    std::string text = printCsvText(value, isUnknown);
    if (text.find_first_of(",\"\r\n") == std::string::npos) {
        return text;
    }
    std::string quoted = "\"";
    for (const char c : text) {
        quoted.append(c == '"' ? 2 : 1, c);
    }
    return quoted + "\"";
}

/// The fields of objects as fields of the row: Coefficients.a. So are the elements of lists that have names, and of
/// lists of objects, whose first value names the second one: MinPosition.x, Percentiles.5.
Json flatten(const Json& row, const Report& report)
{
    Json flat = Json::object();
    for (const auto& [key, value] : row.items()) {
        const auto add = [&, name = key](const std::string& inner, const Json& each) {
            std::string whole = name;
            flat[whole.append(".").append(inner)] = each;
        };
        const auto names = report.columnNames.find(key);
        if (value.is_object()) {
            for (const auto& [inner, each] : value.items()) {
                add(inner, each);
            }
        } else if (value.is_array() && !value.empty() && value[0].is_object()) {
            for (const Json& each : value) {
                add(printCell(*each.begin()), *std::next(each.begin()));
            }
        } else if (value.is_array() && names != report.columnNames.end()) {
            for (std::size_t i = 0; i < value.size() && i < names->second.size(); ++i) {
                add(names->second[i], value[i]);
            }
        } else {
            flat[key] = value;
        }
    }
    return flat;
}

/// A result that is a vector as a row for every element: of a histogram its bins, of positions one each.
std::vector<Json> spread(const Json& result, const Report& report)
{
    const auto without = [&](std::initializer_list<const char*> fields) {
        Json row = result;
        for (const char* const field : fields) {
            row.erase(field);
        }
        return row;
    };
    std::vector<Json> rows;
    if (result.contains("Frequencies")) {
        const bool isKnown = result["Min"].is_number() && result["BinWidth"].is_number();
        const double min = isKnown ? result["Min"].get<double>() : 0;
        const double width = isKnown ? result["BinWidth"].get<double>() : 0;
        const Json rest = without({"Min", "Max", "BinWidth", "Frequencies"});
        for (std::size_t i = 0; i < result["Frequencies"].size(); ++i) {
            Json row = rest;
            row["from"] = isKnown ? toJson(min + static_cast<double>(i) * width) : result["Min"];
            row["to"] = isKnown ? toJson(min + static_cast<double>(i + 1) * width) : result["Max"];
            row["frequency"] = result["Frequencies"][i];
            rows.push_back(std::move(row));
        }
        return rows;
    }
    if (result.contains("Coordinates")) {
        const Json rest = without({"Coordinates"});
        for (const Json& at : result["Coordinates"]) {
            Json row = rest;
            for (std::size_t i = 0; i < at.size(); ++i) {
                row[std::string{"xyz"[i]}] = at[i];
            }
            rows.push_back(std::move(row));
        }
        return rows;
    }
    for (const char* const vector : {"Values", "Samples"}) {
        if (result.contains(vector)) {
            const Json rest = without({vector});
            for (std::size_t i = 0; i < result[vector].size(); ++i) {
                Json row = rest;
                row["index"] = i + report.firstIndex;
                row["value"] = result[vector][i];
                rows.push_back(std::move(row));
            }
            return rows;
        }
    }
    return {flatten(result, report)};
}

/// The columns of rows that there are none of: of an image without any set pixel, say.
std::vector<std::string> nameColumns(const Json& result)
{
    std::vector<std::string> columns;
    for (const auto& [key, value] : result.items()) {
        if (key == "Coordinates") {
            columns.insert(columns.end(), {"x", "y"});
            if (!result.contains("z")) {
                columns.emplace_back("z");
            }
        } else if (key == "Values" || key == "Samples") {
            columns.insert(columns.end(), {"index", "value"});
        } else {
            columns.push_back(key);
        }
    }
    return columns;
}

/// Takes away what is not known.
void omitUnknown(Json& row)
{
    for (auto field = row.begin(); field != row.end();) {
        if (field->is_object()) {
            omitUnknown(*field);
        }
        if (field->is_null() || (field->is_object() && field->empty())) {
            field = row.erase(field);
        } else {
            ++field;
        }
    }
}

std::string describe(const Json& image)
{
    const auto side = [&](const char* axis) { return image[axis].get<std::size_t>(); };
    std::string text = printCell(image["path"]);
    return text.append(": ")
        .append(printCell(image["type"]))
        .append(", ")
        .append(toString(image::ImageGeometry{side("x"), side("y"), side("z"), side("c"), side("t")}));
}

} // namespace

ReportPrinter::ReportPrinter(std::ostream& output, Form form, ForPeople forPeople, bool isForSeveral)
    : output_{output}, form_{form}, forPeople_{forPeople}, isForSeveral_{isForSeveral}
{}

void ReportPrinter::print(Report report)
{
    if (report.isSilent) {
        return;
    }
    if (form_ == Form::Csv) {
        printCsv(report);
        return;
    }
    for (Json& row : report.results) {
        if (report.omitsUnknown) {
            omitUnknown(row);
        }
    }
    if (form_ == Form::JsonLines) {
        Json document;
        document["measure"] = report.measure;
        for (const auto& [name, image] : report.images) {
            document[name] = image;
        }
        document["results"] = report.results;
        output_ << document.dump(-1, ' ', false, Json::error_handler_t::replace) << "\n" << std::flush;
        return;
    }
    if (forPeople_ != nullptr) {
        forPeople_(report);
    }
    if (!isForSeveral_) {
        for (const auto& [name, image] : report.images) {
            for (const Json& each : image.is_array() ? image : Json::array({image})) {
                output_ << describe(each) << "\n";
            }
        }
        printTable(report.results);
        return;
    }
    for (const Json& row : report.results) {
        Json named = Json::object();
        for (const auto& [name, image] : report.images) {
            if (name != "mask" && name != "images") {
                named[name == "image" ? "path" : "path2"] = image["path"];
            }
        }
        named.update(row);
        rows_.push_back(std::move(named));
    }
}

void ReportPrinter::finish()
{
    printTable(rows_);
    rows_.clear();
}

void ReportPrinter::printCsv(const Report& report)
{
    Json prefix = Json::object();
    for (const auto& [name, image] : report.images) {
        if (name != "mask" && name != "images") {
            prefix[name == "image" ? "path" : "path2"] = image["path"];
        }
    }
    const auto printLine = [&](const auto& cells, auto print) {
        std::string line;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            line.append(i == 0 ? "" : ",").append(print(cells[i]));
        }
        output_ << line << "\r\n";
    };
    const auto printHeader = [&](const Json& row) {
        for (const auto& [key, value] : row.items()) {
            columns_.push_back(key);
        }
        printLine(columns_, [](const std::string& name) { return printCsvCell(name, false); });
    };
    if (columns_.empty() && !report.emptyRow.is_null()) {
        Json all = prefix;
        all.update(flatten(report.emptyRow, report));
        printHeader(all);
    }
    for (const Json& result : report.results) {
        const std::vector<Json> rows = spread(result, report);
        if (columns_.empty()) {
            Json all = prefix;
            if (rows.empty()) {
                for (const std::string& column : nameColumns(result)) {
                    all[column] = nullptr;
                }
            } else {
                all.update(rows.front());
            }
            printHeader(all);
        }
        for (const Json& row : rows) {
            printLine(columns_, [&](const std::string& name) {
                return prefix.contains(name) ? printCsvCell(prefix[name], true)
                       : row.contains(name)  ? printCsvCell(row[name], report.omitsUnknown)
                                             : std::string{};
            });
        }
    }
    output_ << std::flush;
}

void ReportPrinter::printTable(const std::vector<Json>& results)
{
    if (results.empty()) {
        return;
    }
    std::vector<std::string> columns;
    for (const Json& row : results) { // all alike, but for fields that are not known
        for (const auto& [key, value] : row.items()) {
            if (std::find(columns.begin(), columns.end(), key) == columns.end()) {
                columns.push_back(key);
            }
        }
    }
    std::vector<std::vector<std::string>> rows{columns};
    std::vector<bool> isText(columns.size(), false);
    std::vector<std::size_t> widths(columns.size());
    std::transform(columns.begin(), columns.end(), widths.begin(),
                   [](const std::string& column) { return column.size(); });
    for (const Json& row : results) {
        rows.emplace_back();
        for (std::size_t i = 0; i < columns.size(); ++i) {
            const bool has = row.contains(columns[i]);
            rows.back().push_back(has ? printCell(row[columns[i]]) : std::string{});
            isText[i] = isText[i] || (has && (row[columns[i]].is_string() || row[columns[i]].is_array()));
            widths[i] = std::max(widths[i], rows.back()[i].size());
        }
    }
    for (const auto& row : rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i) {
            const std::string padding(widths[i] - row[i].size(), ' ');
            line.append(i == 0 ? "" : "  ").append(isText[i] ? row[i] + padding : padding + row[i]);
        }
        output_ << line.substr(0, line.find_last_not_of(' ') + 1) << "\n";
    }
}

} // namespace orlix::app
