#pragma once

#include <framework/attribute/Pixels.hpp>
#include <framework/data/DataItem.hpp>
#include <framework/image/Geometry.hpp>
#include <framework/image/PixelType.hpp>

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace orlix::app
{

using Json = nlohmann::ordered_json;

/// What a command has to say, in the form that both JSON and tables are made of.
struct Report
{
    std::string measure;
    std::vector<std::pair<std::string, Json>> images; ///< "image", "mask", "image2" and what they are
    std::vector<Json> results;                        ///< one object each, with the same fields
    std::vector<std::string> notes{};                 ///< what a user should know and did not ask for
};

/// A number as JSON: NaN is null, infinities are "Infinity" and "-Infinity".
Json toJson(double value);

/// The fields of a record, in the order of their declaration.
template <class Record>
Json toJson(const data::DataItem<Record>& item)
{
    Json object = Json::object();
    const auto& record = static_cast<const Record&>(item);
    Record::forEachField([&](const auto& field) {
        const auto& value = record.*field.member;
        using Value = std::remove_cvref_t<decltype(value)>;
        if constexpr (std::is_same_v<Value, double>) {
            object[field.name] = toJson(value);
        } else if constexpr (std::is_same_v<Value, std::vector<double>>) {
            object[field.name] = Json::array();
            for (const double each : value) {
                object[field.name].push_back(toJson(each));
            }
        } else {
            object[field.name] = value;
        }
    });
    return object;
}

/// A list of [x, y] or [x, y, z].
template <class List, class Coords>
Json toJson(const imaproc::attr::CoordsList<List, Coords>& list)
{
    Json coordinates = Json::array();
    for (const Coords& at : list.Coordinates) {
        if constexpr (std::is_same_v<Coords, image::Coords3d>) {
            coordinates.push_back({at.x, at.y, at.z});
        } else {
            coordinates.push_back({at.x, at.y});
        }
    }
    return {{"Coordinates", std::move(coordinates)}};
}

Json describeImage(const std::string& path, image::eImageBufferType type, const image::ImageGeometry& geometry);

/// One object on one line.
std::string printJson(const Report& report);
/// An aligned table for people.
std::string printTable(const Report& report);

} // namespace orlix::app
