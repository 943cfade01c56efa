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

Json toJson(const data::Value& value, std::size_t columns)
{
    const auto convert = [&](const auto& each) -> Json {
        using T = std::remove_cvref_t<decltype(each)>;
        if constexpr (std::is_same_v<T, double>) {
            return toJson(each);
        } else if constexpr (std::is_same_v<T, std::vector<double>>) {
            Json list = Json::array();
            for (std::size_t i = 0; i < each.size(); ++i) {
                if (columns > 1 && i % columns == 0) {
                    list.push_back(Json::array());
                }
                (columns > 1 ? list.back() : list).push_back(toJson(each[i]));
            }
            return list;
        } else {
            return each;
        }
    };
    return std::visit(convert, value);
}

Json toJson(const data::BaseDataItem& record)
{
    Json object = Json::object();
    for (const data::FieldInfo& field : record.getFields()) {
        object[field.name] = toJson(record.getField(field.name), field.columns);
    }
    return object;
}

Json describeImage(const std::string& path, image::eImageBufferType type, const image::ImageGeometry& geometry)
{
    return {{"path", path},    {"type", image::getName(type)},
            {"x", geometry.x}, {"y", geometry.y},
            {"z", geometry.z}, {"c", geometry.c},
            {"t", geometry.t}};
}

std::string printJson(const Report& report)
{
    Json document;
    document["measure"] = report.measure;
    for (const auto& [name, image] : report.images) {
        document[name] = image;
    }
    document["results"] = report.results;
    return document.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
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

} // namespace

std::string printTable(const Report& report)
{
    std::string text;
    for (const auto& [name, image] : report.images) {
        const auto side = [&image = image](const char* axis) { return image[axis].get<std::size_t>(); };
        text += printCell(image["path"]) + ": " + printCell(image["type"]) + ", " +
                toString(image::ImageGeometry{side("x"), side("y"), side("z"), side("c"), side("t")}) + "\n";
    }
    if (report.results.empty()) {
        return text;
    }
    std::vector<std::vector<std::string>> rows(1);
    std::vector<bool> isText;
    for (const auto& [key, value] : report.results.front().items()) {
        rows[0].push_back(key);
        isText.push_back(value.is_string() || value.is_array());
    }
    for (const Json& result : report.results) {
        rows.emplace_back();
        for (const auto& [key, value] : result.items()) {
            rows.back().push_back(printCell(value));
        }
    }
    std::vector<std::size_t> widths(rows[0].size(), 0);
    for (const auto& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], row[i].size());
        }
    }
    for (const auto& row : rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i) {
            const std::string padding(widths[i] - row[i].size(), ' ');
            line += (i == 0 ? "" : "  ") + (isText[i] ? row[i] + padding : padding + row[i]);
        }
        text += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
    }
    return text;
}

} // namespace orlix::app
