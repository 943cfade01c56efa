#include <framework/data/Archive.hpp>

#include <framework/core/Message.hpp>
#include <framework/data/DynamicObjectFactory.hpp>
#include <framework/data/SerializationMessages.hpp>

#include <boost/archive/iterators/base64_from_binary.hpp>
#include <boost/archive/iterators/binary_from_base64.hpp>
#include <boost/archive/iterators/transform_width.hpp>
#include <log4cplus/logger.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <limits>

namespace orlix::data
{

using core::ProcessingResult;
using nlohmann::json;

namespace
{

namespace base64 = boost::archive::iterators;

std::string encode(const std::vector<std::byte>& bytes)
{
    using Encoder = base64::base64_from_binary<base64::transform_width<const char*, 6, 8>>;
    const char* const first = reinterpret_cast<const char*>(bytes.data());
    std::string text{Encoder{first}, Encoder{first + bytes.size()}};
    text.append((3 - bytes.size() % 3) % 3, '=');
    return text;
}

std::vector<std::byte> decode(std::string text)
{
    using Decoder = base64::transform_width<base64::binary_from_base64<std::string::const_iterator>, 8, 6>;
    while (!text.empty() && text.back() == '=') {
        text.pop_back();
    }
    std::vector<std::byte> bytes(text.size() * 6 / 8);
    Decoder decoder{text.cbegin()};
    for (std::byte& byte : bytes) {
        byte = static_cast<std::byte>(*decoder++);
    }
    return bytes;
}

json toJson(double value)
{
    if (std::isfinite(value)) {
        return value;
    }
    return std::isnan(value) ? "NaN" : value > 0 ? "Infinity" : "-Infinity";
}

bool fromJson(const json& text, double& value)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    if (text.is_number()) {
        value = text.get<double>();
    } else if (text == "NaN") {
        value = std::numeric_limits<double>::quiet_NaN();
    } else if (text == "Infinity" || text == "-Infinity") {
        value = text == "Infinity" ? infinity : -infinity;
    } else {
        return false;
    }
    return true;
}

} // namespace

Archive::Section::Section(Section&& other) noexcept : archive_{std::exchange(other.archive_, nullptr)} {}

Archive::Section::~Section()
{
    if (archive_ != nullptr) {
        archive_->path_.pop_back();
    }
}

Archive::Archive() : root_{std::make_unique<json>(json::object())} {}

Archive::~Archive() = default;

json& Archive::current() const
{
    return path_.empty() ? *root_ : *path_.back();
}

Archive::Section Archive::enter(json& parent, const std::string& name)
{
    json* const section = child(parent, name);
    if (section == nullptr) {
        return Section{nullptr};
    }
    path_.push_back(section);
    return Section{this};
}

Archive::Section Archive::openSection(const std::string& name)
{
    return enter(current(), name);
}

Archive::Section Archive::openRootSection(const std::string& name)
{
    return enter(*root_, name);
}

bool Archive::has(const std::string& key) const
{
    return current().contains(key);
}

unsigned Archive::getVersion(const std::string& typeName) const
{
    const auto found = versions_.find(typeName);
    return found == versions_.end() ? 0 : found->second;
}

void Archive::registerVersion(const std::string& typeName, unsigned version)
{
    versions_[typeName] = version;
}

void OutputArchive::write(const std::string& key, bool value)
{
    current()[key] = value;
}

void OutputArchive::write(const std::string& key, std::uint64_t value)
{
    current()[key] = value;
}

void OutputArchive::write(const std::string& key, double value)
{
    current()[key] = toJson(value);
}

void OutputArchive::write(const std::string& key, const std::string& value)
{
    current()[key] = value;
}

void OutputArchive::write(const std::string& key, const std::vector<std::uint64_t>& values)
{
    current()[key] = values;
}

void OutputArchive::write(const std::string& key, const std::vector<double>& values)
{
    json& list = current()[key] = json::array();
    for (const double value : values) {
        list.push_back(toJson(value));
    }
}

void OutputArchive::write(const std::string& key, const std::vector<std::byte>& bytes)
{
    current()[key] = encode(bytes);
}

ProcessingResult OutputArchive::write(const std::string& key, const BaseDynamicObject* object)
{
    if (object == nullptr) {
        current()[key] = nullptr;
        return {};
    }
    const Section section = openSection(key);
    write("class", object->getClassName());
    return object->write(*this);
}

std::string OutputArchive::str() const
{
    return root_->dump(1);
}

json* OutputArchive::child(json& parent, const std::string& name) const
{
    json& section = parent[name];
    if (!section.is_object()) {
        section = json::object();
    }
    return &section;
}

InputArchive::InputArchive(const std::string& document)
{
    *root_ = json::parse(document, nullptr, false);
    if (!root_->is_object()) {
        core::raise<SerializationException>(core::getLibraryLogger("Serialization"), ORLIX_HERE,
                                            eSerializationMessage::eSM_NoArchive);
    }
}

namespace
{

ProcessingResult missing(const std::string& key, const char* type)
{
    return ProcessingResult::failure(core::formatMessage(eSerializationMessage::eSM_MissingKey, key, type));
}

/// The value of `key` if `section` has it and `is` tells that it is of the type; else null.
const json* find(const json& section, const std::string& key, bool (json::*is)() const noexcept)
{
    const auto found = section.find(key);
    return found != section.end() && ((*found).*is)() ? &*found : nullptr;
}

} // namespace

ProcessingResult InputArchive::read(const std::string& key, bool& value) const
{
    const json* const found = find(current(), key, &json::is_boolean);
    if (found == nullptr) {
        return missing(key, "true or false");
    }
    value = found->get<bool>();
    return {};
}

ProcessingResult InputArchive::read(const std::string& key, std::uint64_t& value) const
{
    const json* const found = find(current(), key, &json::is_number_unsigned);
    if (found == nullptr) {
        return missing(key, "a whole number");
    }
    value = found->get<std::uint64_t>();
    return {};
}

ProcessingResult InputArchive::read(const std::string& key, unsigned& value) const
{
    std::uint64_t wide = 0;
    ProcessingResult result = read(key, wide);
    if (result && wide > std::numeric_limits<unsigned>::max()) {
        return missing(key, "a whole number below 2^32");
    }
    value = static_cast<unsigned>(wide);
    return result;
}

ProcessingResult InputArchive::read(const std::string& key, double& value) const
{
    const auto found = current().find(key);
    return found != current().end() && fromJson(*found, value) ? ProcessingResult{} : missing(key, "a number");
}

ProcessingResult InputArchive::read(const std::string& key, std::string& value) const
{
    const json* const found = find(current(), key, &json::is_string);
    if (found == nullptr) {
        return missing(key, "a text");
    }
    value = found->get<std::string>();
    return {};
}

ProcessingResult InputArchive::read(const std::string& key, std::vector<std::byte>& bytes) const
{
    std::string text;
    ProcessingResult result = read(key, text);
    if (!result) {
        return result;
    }
    try {
        bytes = decode(text);
    } catch (const base64::dataflow_exception&) {
        return missing(key, "a text in base64");
    }
    return {};
}

ProcessingResult InputArchive::read(const std::string& key, std::vector<std::uint64_t>& values) const
{
    const json* const list = find(current(), key, &json::is_array);
    if (list == nullptr ||
        !std::all_of(list->begin(), list->end(), [](const json& each) { return each.is_number_unsigned(); })) {
        return missing(key, "a list of whole numbers");
    }
    values = list->get<std::vector<std::uint64_t>>();
    return {};
}

ProcessingResult InputArchive::read(const std::string& key, std::vector<double>& values) const
{
    const json* const list = find(current(), key, &json::is_array);
    values.assign(list != nullptr ? list->size() : 0, 0);
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (!fromJson((*list)[i], values[i])) {
            return missing(key, "a list of numbers");
        }
    }
    return list != nullptr ? ProcessingResult{} : missing(key, "a list of numbers");
}

ProcessingResult InputArchive::readObject(const std::string& key, Ptr<BaseDynamicObject>& object,
                                          bool (*accepts)(const BaseDynamicObject&))
{
    constexpr std::size_t deepest = 64; // no processor comes near it
    if (getDepth() > deepest) {
        return ProcessingResult::failure(core::formatMessage(eSerializationMessage::eSM_TooDeep, key));
    }
    if (find(current(), key, &json::is_null) != nullptr) {
        return {};
    }
    const Section section = openSection(key);
    std::string typeName;
    if (!section || !read("class", typeName)) {
        return missing(key, "an object with its \"class\", or null");
    }
    Ptr<BaseDynamicObject> created = DynamicObjectFactory::getInstance().createSharedObject(typeName);
    if (!created) {
        return ProcessingResult::failure(core::formatMessage(eSerializationMessage::eSM_UnknownClass, typeName));
    }
    if (!accepts(*created)) {
        return ProcessingResult::failure(core::formatMessage(eSerializationMessage::eSM_WrongClass, key, typeName));
    }
    ProcessingResult result = created->read(*this);
    if (result) {
        object = std::move(created);
    }
    return result;
}

std::vector<std::string> InputArchive::getKeys() const
{
    std::vector<std::string> keys;
    for (const auto& item : current().items()) {
        keys.push_back(item.key());
    }
    return keys;
}

json* InputArchive::child(json& parent, const std::string& name) const
{
    const auto found = parent.find(name);
    return found != parent.end() && found->is_object() ? &*found : nullptr;
}

} // namespace orlix::data
