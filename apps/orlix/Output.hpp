#pragma once

#include <framework/image/Geometry.hpp>
#include <framework/process/MeasureState.hpp>

#include <nlohmann/json.hpp>

#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace orlix::app
{

using Json = nlohmann::ordered_json;

/// What a command has to say of an image, in the form that JSON, CSV and tables are made of.
struct Report
{
    std::string measure;
    std::vector<std::pair<std::string, Json>> images; ///< "image", "mask", "image2" and what they are
    std::vector<Json> results;                        ///< one object each, with the same fields
    std::vector<std::string> notes{};                 ///< what a user should know and did not ask for
    std::vector<std::string> members{};               ///< other files that the image lies in
    std::size_t firstIndex = 0;                       ///< of the elements of vectors
    bool omitsUnknown = false;                        ///< fields that are null are not known, instead of NaN
    bool isSilent = false;                            ///< it is not printed: what it would say went to a file
    std::map<std::string, std::vector<std::string>> columnNames{}; ///< of the elements of lists, in CSV
    Json emptyRow{}; ///< nothing, under the name of every field that a row may have; null: the first row has them all
};

/// A number as JSON: NaN is null, infinities are "Infinity" and "-Infinity".
Json toJson(double value);

/// The value of a field. A list of several numbers each becomes a list of lists, or of objects where they have names.
Json toJson(const data::Value& value, const data::FieldInfo& info = {});
/// The place of a result, and its fields, which are kept in an object of their own where that has a name.
Json toJson(const imaproc::ResultRow& row, const char* fieldsWithin = "");

Json describeImage(const std::string& path, const std::string& type, const image::ImageGeometry& geometry);

/// Prints the reports of one command, image after image.
class ReportPrinter
{
public:
    enum class Form
    {
        Table,     ///< for people
        JsonLines, ///< an object on a line for each image
        Csv
    };
    using ForPeople = void (*)(Report&);

    /// `forPeople` makes a table of a report that is one for machines; null: it is one. Of several images a table has a
    /// column for their paths.
    ReportPrinter(std::ostream& output, Form form, ForPeople forPeople, bool isForSeveral);

    void print(Report report);
    /// A table is complete only now.
    void finish();

private:
    void printCsv(const Report& report);
    void printTable(const std::vector<Json>& rows);

    std::ostream& output_;
    Form form_;
    ForPeople forPeople_;
    bool isForSeveral_;
    std::vector<std::string> columns_; // of CSV
    std::vector<Json> rows_;           // of a table of several images
};

} // namespace orlix::app
