#pragma once

#include <framework/core/Api.hpp>
#include <framework/core/ProcessingResult.hpp>
#include <framework/core/Ptr.hpp>

#include <memory>
#include <string>

namespace orlix::data
{

class OutputArchive;
class InputArchive;

/// An object that can be created by the name of its class, copied, written and read.
class ORLIX_API BaseDynamicObject
{
public:
    virtual ~BaseDynamicObject();

    /// The fully qualified name of the class; the key of the factories and of archives.
    virtual const std::string& getClassName() const = 0;
    virtual std::unique_ptr<BaseDynamicObject> createNew() const = 0;
    virtual Ptr<BaseDynamicObject> createShared() const = 0;
    virtual bool hasCopySupport() const { return true; }
    /// A copy; values are copied, images are shared. Throws BaseException.
    virtual std::unique_ptr<BaseDynamicObject> duplicate() const;
    virtual Ptr<BaseDynamicObject> duplicateShared() const;
    /// Takes over what `other`, an object of the same class, holds. Throws BaseException.
    virtual void copy(const BaseDynamicObject& other) = 0;
    virtual core::ProcessingResult write(OutputArchive& archive) const = 0;
    virtual core::ProcessingResult read(InputArchive& archive) = 0;

protected:
    BaseDynamicObject() = default;
    BaseDynamicObject(const BaseDynamicObject&) = default;
    BaseDynamicObject& operator=(const BaseDynamicObject&) = default;

    /// Makes a new object ready to take a copy.
    virtual void initCtorCopy() {}
};

} // namespace orlix::data
