#pragma once

#include "KARPlatformExport.h"

#include <cstdint>
#include <string>
#include <typeinfo>

class QOBSharedObject;

/// Makes a default object of a class that carries one reference.
using QOBCreateFunction = QOBSharedObject* (*)();
/// Makes a copy of an object, run with a copy mode's number, that carries one reference.
using QOBDuplicateFunction = QOBSharedObject* (*)(const QOBSharedObject& source, int copyMode);

/// How objects of a concrete class are made by those that know only the record.
struct QOBClassOperations
{
    QOBCreateFunction replicate = nullptr;
    QOBDuplicateFunction duplicate = nullptr;
    /// The class itself, when its objects are copied by nothing but `duplicate`, so that this may
    /// be called in place of an object's own operations; null when it overrides one of these. An
    /// object of another type belongs to a subclass without a record.
    const std::type_info* copiedClass = nullptr;
    /// True when the class has the links that its family has and no others, overrides nothing that
    /// reads and makes them, and looks at no other object while one is copied, so that its objects
    /// may be linked between copies.
    bool hasFamilyLinks = false;
};

/// Run-time record of a class: its plain name, its size and its parent.
class KAR_API QOBClassInfo
{
public:
    /// Registers a class. Takes the type of a pointer to it, the size of an instance in bytes, a
    /// creation function or null, up to two parent records and the object operations, if any. Only
    /// the parents' addresses are used, so records can be made in any order before main.
    QOBClassInfo(const std::type_info& pointerType, std::uint64_t size, QOBCreateFunction create,
                 const QOBClassInfo* parent, const QOBClassInfo* secondParent,
                 QOBClassOperations operations = {});
    ~QOBClassInfo();

    QOBClassInfo(const QOBClassInfo&) = delete;
    QOBClassInfo& operator=(const QOBClassInfo&) = delete;

    /// True if the argument is this class or one of its ancestors.
    bool isDerivedFrom(const QOBClassInfo& info) const noexcept;
    /// True only for the class itself.
    bool isInstanceOf(const QOBClassInfo& info) const noexcept { return this == &info; }
    /// Two records are equal when they are the record of one class.
    bool operator==(const QOBClassInfo& info) const noexcept { return this == &info; }

    /// Plain class name, for example "KARMPRevolute".
    const std::string& getName() const noexcept { return m_name; }
    /// Size of an instance in bytes.
    std::uint64_t getSize() const noexcept { return m_size; }
    /// Creation function, null for most classes.
    QOBCreateFunction getCreateFunction() const noexcept { return m_create; }
    /// Parent record, null at a root.
    const QOBClassInfo* getParent() const noexcept { return m_parent; }
    /// Object operations; empty for abstract classes.
    const QOBClassOperations& getOperations() const noexcept { return m_operations; }

private:
    std::string m_name;
    std::uint64_t m_size;
    QOBCreateFunction m_create;
    const QOBClassInfo* m_parent;
    const QOBClassInfo* m_secondParent;
    QOBClassOperations m_operations;
};
