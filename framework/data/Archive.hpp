#pragma once

#include <framework/core/Api.hpp>
#include <framework/core/Exception.hpp>
#include <framework/core/ProcessingResult.hpp>
#include <framework/core/Ptr.hpp>
#include <framework/data/BaseDynamicObject.hpp>

#include <nlohmann/json_fwd.hpp>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace orlix::data
{

/// An archive that cannot be parsed.
class ORLIX_API SerializationException final : public core::BaseException
{
public:
    using BaseException::BaseException;
};

/// What the two archives share: a JSON document of named sections, and the class versions known so far.
class ORLIX_API Archive
{
public:
    /// Leaves its section when it goes.
    class ORLIX_API Section
    {
    public:
        Section(Section&& other) noexcept;
        ~Section();
        Section& operator=(Section&&) = delete;
        /// Whether the section exists; an output archive makes it.
        explicit operator bool() const { return archive_ != nullptr; }

    private:
        friend class Archive;
        explicit Section(Archive* archive) : archive_{archive} {}
        Archive* archive_;
    };

    Archive(const Archive&) = delete;
    Archive& operator=(const Archive&) = delete;

    /// Enters the section `name` of the current section.
    Section openSection(const std::string& name);
    /// Enters the section `name` of the document, where class versions live.
    Section openRootSection(const std::string& name);

    /// Whether the current section has the name.
    bool has(const std::string& key) const;

    /// The version of a class in this archive, 0 if none is registered yet.
    unsigned getVersion(const std::string& typeName) const;
    void registerVersion(const std::string& typeName, unsigned version);

protected:
    Archive();
    ~Archive();

    nlohmann::json& current() const;
    std::size_t getDepth() const { return path_.size(); }

    std::unique_ptr<nlohmann::json> root_;

private:
    virtual nlohmann::json* child(nlohmann::json& parent, const std::string& name) const = 0;
    Section enter(nlohmann::json& parent, const std::string& name);

    std::vector<nlohmann::json*> path_;
    std::map<std::string, unsigned> versions_;
};

class ORLIX_API OutputArchive final : public Archive
{
public:
    void write(const std::string& key, bool value);
    void write(const std::string& key, std::uint64_t value);
    void write(const std::string& key, unsigned value) { write(key, std::uint64_t{value}); }
    /// A value that is not finite becomes "NaN", "Infinity" or "-Infinity".
    void write(const std::string& key, double value);
    void write(const std::string& key, const std::string& value);
    void write(const std::string& key, const char* value) { write(key, std::string{value}); }
    void write(const std::string& key, const std::vector<std::uint64_t>& values);
    void write(const std::string& key, const std::vector<double>& values);
    /// As its number.
    template <class Enum>
    requires std::is_enum_v<Enum>
    void write(const std::string& key, Enum value) { write(key, static_cast<unsigned>(value)); }
    /// As base64.
    void write(const std::string& key, const std::vector<std::byte>& bytes);
    /// A section with the class name and what the object writes; null for no object.
    core::ProcessingResult write(const std::string& key, const BaseDynamicObject* object);

    /// The document.
    std::string str() const;

private:
    nlohmann::json* child(nlohmann::json& parent, const std::string& name) const override;
};

/// Reads what an OutputArchive wrote. A key that is missing or of another type fails, naming the key.
class ORLIX_API InputArchive final : public Archive
{
public:
    /// Throws SerializationException if `document` is no archive.
    explicit InputArchive(const std::string& document);

    core::ProcessingResult read(const std::string& key, bool& value) const;
    core::ProcessingResult read(const std::string& key, std::uint64_t& value) const;
    core::ProcessingResult read(const std::string& key, unsigned& value) const;
    core::ProcessingResult read(const std::string& key, double& value) const;
    core::ProcessingResult read(const std::string& key, std::string& value) const;
    core::ProcessingResult read(const std::string& key, std::vector<std::byte>& bytes) const;
    core::ProcessingResult read(const std::string& key, std::vector<std::uint64_t>& values) const;
    core::ProcessingResult read(const std::string& key, std::vector<double>& values) const;
    template <class Enum>
    requires std::is_enum_v<Enum> core::ProcessingResult read(const std::string& key, Enum& value)
    const
    {
        unsigned number = 0;
        core::ProcessingResult result = read(key, number);
        value = static_cast<Enum>(number);
        return result;
    }
    /// Null where null was written. The object's class is Object or derived from it.
    template <std::derived_from<BaseDynamicObject> Object>
    core::ProcessingResult read(const std::string& key, Ptr<Object>& object)
    {
        Ptr<BaseDynamicObject> any;
        core::ProcessingResult result = readObject(key, any, [](const BaseDynamicObject& created) {
            return dynamic_cast<const Object*>(&created) != nullptr;
        });
        object = boost::dynamic_pointer_cast<Object>(any);
        return result;
    }

    /// The names in the current section.
    std::vector<std::string> getKeys() const;

private:
    core::ProcessingResult readObject(const std::string& key, Ptr<BaseDynamicObject>& object,
                                      bool (*accepts)(const BaseDynamicObject&));
    nlohmann::json* child(nlohmann::json& parent, const std::string& name) const override;
};

} // namespace orlix::data
