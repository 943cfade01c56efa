#pragma once

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

/// The value of a field; a list of several numbers each as a list of lists.
Json toJson(const data::Value& value, std::size_t columns = 1);
/// The fields of a record, in the order of their declaration.
Json toJson(const data::BaseDataItem& record);

Json describeImage(const std::string& path, image::eImageBufferType type, const image::ImageGeometry& geometry);

/// One object on one line.
std::string printJson(const Report& report);
/// An aligned table for people.
std::string printTable(const Report& report);

} // namespace orlix::app
