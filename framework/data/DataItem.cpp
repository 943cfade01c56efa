#include <framework/data/DataItem.hpp>

#include <framework/core/Message.hpp>
#include <framework/data/SerializationMessages.hpp>

#include <log4cplus/logger.h>

#include <algorithm>
#include <cmath>

namespace orlix::data
{

using core::ProcessingResult;

FieldVisitor::~FieldVisitor() = default;

void FieldVisitor::operator()(const FieldInfo& info, std::optional<double>& value)
{
    if (value) {
        (*this)(info, *value);
    }
}

namespace
{

/// Calls `visit` with every field.
template <class Visit>
class Visitor final : public FieldVisitor
{
public:
    explicit Visitor(Visit visit) : visit_{std::move(visit)} {}
    void operator()(const FieldInfo& info, bool& value) override { visit_(info, value); }
    void operator()(const FieldInfo& info, unsigned& value) override { visit_(info, value); }
    void operator()(const FieldInfo& info, std::uint64_t& value) override { visit_(info, value); }
    void operator()(const FieldInfo& info, double& value) override { visit_(info, value); }
    void operator()(const FieldInfo& info, std::vector<double>& values) override { visit_(info, values); }
    void operator()(const FieldInfo& info, std::vector<std::uint64_t>& values) override { visit_(info, values); }
    using FieldVisitor::operator();

private:
    Visit visit_;
};

/// For visitors that change nothing.
template <class Visit>
void visitConst(const BaseDataItem& item, Visit visit)
{
    Visitor visitor{std::move(visit)};
    const_cast<BaseDataItem&>(item).visitFields(visitor);
}

[[noreturn]] void fail(eSerializationMessage message, const std::string& name, const std::string& className,
                       const std::string& expected)
{
    core::raise<core::BaseException>(core::getLibraryLogger("Serialization"), ORLIX_HERE, message, name, className,
                                     expected);
}

std::string listNames(const std::vector<FieldInfo>& fields)
{
    std::string names;
    for (const FieldInfo& field : fields) {
        names += (names.empty() ? "" : ", ") + std::string{field.name};
    }
    return names;
}

std::string listNames(std::span<const char* const> enumerators)
{
    std::string names;
    for (const char* const name : enumerators) {
        names += (names.empty() ? "" : ", ") + std::string{name};
    }
    return names;
}

template <class T>
Value toValue(const FieldInfo&, const T& value)
{
    return value;
}
Value toValue(const FieldInfo& info, unsigned number)
{
    return number < info.enumerators.size() ? Value{std::string{info.enumerators[number]}}
                                            : Value{std::uint64_t{number}};
}

template <class T>
constexpr const char* wordFor = "a number";
template <>
constexpr const char* wordFor<bool> = "true or false";
template <>
constexpr const char* wordFor<std::vector<double>> = "a list of numbers";
template <>
constexpr const char* wordFor<std::vector<std::uint64_t>> = "a list of numbers from 0";

/// Whether `value` was of a kind that `field` takes, and inside its limits.
template <class T>
bool assign(const FieldInfo& info, const Value& value, T& field)
{
    if constexpr (std::is_arithmetic_v<T> && !std::is_same_v<T, bool>) {
        double number = 0;
        if (const auto* const whole = std::get_if<std::uint64_t>(&value)) {
            number = static_cast<double>(*whole);
        } else if (const auto* const real = std::get_if<double>(&value)) {
            number = *real;
        } else if (const auto* const name = std::get_if<std::string>(&value)) {
            const auto found = std::find(info.enumerators.begin(), info.enumerators.end(), *name);
            if (found == info.enumerators.end()) {
                return false;
            }
            number = static_cast<double>(found - info.enumerators.begin());
        } else {
            return false;
        }
        const bool fits = std::is_floating_point_v<T> || (number == std::floor(number) && number >= 0 &&
                                                          number <= static_cast<double>(std::numeric_limits<T>::max()));
        if (!fits || number < info.lowest || number > info.highest) {
            return false;
        }
        field = static_cast<T>(number);
        return true;
    } else {
        const auto* const same = std::get_if<T>(&value);
        if (same != nullptr) {
            field = *same;
        }
        return same != nullptr;
    }
}

} // namespace

BaseDataItem::~BaseDataItem() = default;

std::vector<FieldInfo> BaseDataItem::getFields() const
{
    std::vector<FieldInfo> fields;
    visitConst(*this, [&](const FieldInfo& info, auto&) { fields.push_back(info); });
    return fields;
}

Value BaseDataItem::getField(std::string_view name) const
{
    Value found;
    bool isFound = false;
    visitConst(*this, [&](const FieldInfo& info, auto& value) {
        if (info.name == name) {
            found = toValue(info, value);
            isFound = true;
        }
    });
    if (!isFound) {
        fail(eSerializationMessage::eSM_NoField, std::string{name}, getClassName(), listNames(getFields()));
    }
    return found;
}

template <class T>
void FieldSetter::set(const FieldInfo& info, T& field)
{
    if (info.name != name_) {
        return;
    }
    isDone_ = true;
    if (!assign(info, value_, field)) {
        std::string expected = info.enumerators.empty() ? wordFor<T> : "one of " + listNames(info.enumerators);
        if (std::isfinite(info.lowest) || std::isfinite(info.highest)) {
            expected += " from " + std::to_string(info.lowest) + " to " + std::to_string(info.highest);
        }
        fail(eSerializationMessage::eSM_WrongField, info.name, owner_, expected);
    }
}

void FieldSetter::operator()(const FieldInfo& info, bool& value)
{
    set(info, value);
}
void FieldSetter::operator()(const FieldInfo& info, unsigned& value)
{
    set(info, value);
}
void FieldSetter::operator()(const FieldInfo& info, std::uint64_t& value)
{
    set(info, value);
}
void FieldSetter::operator()(const FieldInfo& info, double& value)
{
    set(info, value);
}
void FieldSetter::operator()(const FieldInfo& info, std::vector<double>& values)
{
    set(info, values);
}
void FieldSetter::operator()(const FieldInfo& info, std::vector<std::uint64_t>& values)
{
    set(info, values);
}

void FieldSetter::operator()(const FieldInfo& info, std::optional<double>& value)
{
    if (info.name == name_) {
        double number = 0;
        set(info, number);
        value = number;
    }
}

void FieldCollector::operator()(const FieldInfo& info, bool& value)
{
    fields.push_back({info, value});
}
void FieldCollector::operator()(const FieldInfo& info, unsigned& value)
{
    fields.push_back({info, toValue(info, value)});
}
void FieldCollector::operator()(const FieldInfo& info, std::uint64_t& value)
{
    fields.push_back({info, value});
}
void FieldCollector::operator()(const FieldInfo& info, double& value)
{
    fields.push_back({info, value});
}
void FieldCollector::operator()(const FieldInfo& info, std::vector<double>& values)
{
    fields.push_back({info, values});
}
void FieldCollector::operator()(const FieldInfo& info, std::vector<std::uint64_t>& values)
{
    fields.push_back({info, values});
}
void FieldCollector::operator()(const FieldInfo& info, std::optional<double>& value)
{
    fields.push_back({info, value.value_or(std::numeric_limits<double>::quiet_NaN()), value.has_value()});
}

void BaseDataItem::setField(std::string_view name, const Value& value)
{
    FieldSetter setter{name, value, getClassName()};
    visitFields(setter);
    if (!setter.isDone()) {
        fail(eSerializationMessage::eSM_NoField, std::string{name}, getClassName(), listNames(getFields()));
    }
}

ProcessingResult BaseDataItem::write(OutputArchive& archive) const
{
    visitConst(*this, [&](const FieldInfo& info, const auto& value) { archive.write(info.name, value); });
    return {};
}

ProcessingResult BaseDataItem::read(InputArchive& archive)
{
    ProcessingResult result;
    Visitor visitor{[&](const FieldInfo& info, auto& value) {
        if (result) {
            result = archive.read(info.name, value);
        }
    }};
    visitFields(visitor);
    return result;
}

} // namespace orlix::data
