#pragma once

#include <framework/core/Api.hpp>

#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

/// The fields of records at run time.
namespace orlix::data
{

/// What a field is, or a parameter.
struct FieldInfo
{
    const char* name = "";
    const char* help = "";
    const char* unit = ""; ///< empty for a pure number
    /// Of a parameter, what users call it, as "bin-width"; empty where it is none of theirs.
    const char* option = "";
    double lowest = -std::numeric_limits<double>::infinity(); ///< of a parameter
    double highest = std::numeric_limits<double>::infinity();
    std::size_t columns = 1;                    ///< numbers of one element of a list
    std::span<const char* const> columnNames{}; ///< of a list with columns; or of a list that has one element a name
    std::span<const char* const> enumerators{}; ///< the names of the values of an enumeration, from 0
};

/// The value of a field; an enumerator is its name.
using Value = std::variant<bool, std::uint64_t, double, std::string, std::vector<double>, std::vector<std::uint64_t>,
                           std::int64_t>;

/// Is shown every field of a record, and may change it.
class ORLIX_API FieldVisitor
{
public:
    virtual ~FieldVisitor();

    virtual void operator()(const FieldInfo& info, bool& value) = 0;
    virtual void operator()(const FieldInfo& info, unsigned& value) = 0;
    virtual void operator()(const FieldInfo& info, std::uint64_t& value) = 0;
    virtual void operator()(const FieldInfo& info, double& value) = 0;
    virtual void operator()(const FieldInfo& info, std::vector<double>& values) = 0;
    virtual void operator()(const FieldInfo& info, std::vector<std::uint64_t>& values) = 0;
    /// A number that need not be there; unless a visitor says otherwise, it then is passed over.
    virtual void operator()(const FieldInfo& info, std::optional<double>& value);

    /// An enumerator, by its number; `namesOf(Enum)` beside its enumeration has the names.
    template <class Enum>
    requires std::is_enum_v<Enum>
    void operator()(FieldInfo info, Enum& value)
    {
        info.enumerators = namesOf(value);
        auto number = static_cast<unsigned>(value);
        (*this)(info, number);
        value = static_cast<Enum>(number);
    }
};

/// Sets the field of a name to a value, which may be any number for any number.
class ORLIX_API FieldSetter final : public FieldVisitor
{
public:
    /// `owner` is the class of the field, for messages.
    FieldSetter(std::string_view name, const Value& value, std::string owner)
        : name_{name}, value_{value}, owner_{std::move(owner)}
    {}

    bool isDone() const { return isDone_; }

    // Each throws BaseException if the value does not fit the field.
    void operator()(const FieldInfo& info, bool& value) override;
    void operator()(const FieldInfo& info, unsigned& value) override;
    void operator()(const FieldInfo& info, std::uint64_t& value) override;
    void operator()(const FieldInfo& info, double& value) override;
    void operator()(const FieldInfo& info, std::vector<double>& values) override;
    void operator()(const FieldInfo& info, std::vector<std::uint64_t>& values) override;
    void operator()(const FieldInfo& info, std::optional<double>& value) override;
    using FieldVisitor::operator();

private:
    template <class T>
    void set(const FieldInfo& info, T& field);

    std::string_view name_;
    const Value& value_;
    std::string owner_;
    bool isDone_ = false;
};

/// A field of a record with its value.
struct Field
{
    FieldInfo info;
    Value value;
    bool isThere = true; ///< else a number that need not be
};

/// Lists fields.
class ORLIX_API FieldCollector final : public FieldVisitor
{
public:
    void operator()(const FieldInfo& info, bool& value) override;
    void operator()(const FieldInfo& info, unsigned& value) override;
    void operator()(const FieldInfo& info, std::uint64_t& value) override;
    void operator()(const FieldInfo& info, double& value) override;
    void operator()(const FieldInfo& info, std::vector<double>& values) override;
    void operator()(const FieldInfo& info, std::vector<std::uint64_t>& values) override;
    void operator()(const FieldInfo& info, std::optional<double>& value) override;
    using FieldVisitor::operator();

    std::vector<Field> fields;
};

/// The fields of a plain record, which shows them to visitFields().
template <class Record>
std::vector<Field> collectFields(Record record)
{
    FieldCollector collector;
    record.visitFields(collector);
    return std::move(collector.fields);
}

} // namespace orlix::data
