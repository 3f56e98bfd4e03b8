// Class identity of entities: one macro in the class, one in its source.
//
// KARMP_ENTITY(Class, Parent) stands first in a concrete class and KARMP_DEFINE_ENTITY(Class, GUID)
// in its source; they give it its record, its GUID, its class functions and its factory entry. An
// abstract class uses the KARMP_ABSTRACT_ENTITY pair. Where the record names another parent than
// the direct base, that parent is a third argument of the define macro.
#pragma once

#include "KARMPGenericFactory.h"
#include "QOBBasicEntity.h"
#include "QOBSharedHandle.h"

#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>

namespace karmp {

struct Content;
struct LinkAccess;
template <class C>
struct ContentOf;

/// True when pointers to members are all of one class: a subclass overrides none of them.
template <class C, class... Result, class... Declaring>
constexpr bool AreMembersOf(Result Declaring::*...)
{
    return (std::is_same_v<C, Declaring> && ...);
}

/// Reaches the constructors of entity classes, which are not public.
struct EntityAccess
{
    /// A new entity of a class, with a name.
    template <class T>
    static QOBSharedHandle<T> Create(const std::wstring& name)
    {
        const QOBSharedHandle<T> entity(new T, QOBSharedBase::NoLock);
        entity->setEntityName(name);
        return entity;
    }
    /// A copy of an entity; a null handle for a null handle.
    template <class T>
    static QOBSharedHandle<T> Clone(const QOBSharedHandle<T>& source,
                                    QOBDynamicObject::CopyMode mode)
    {
        if (!source)
            return {};
        return QOBSharedHandle<T>(QOBSharedBase::adopt(source->duplicateObject(mode)),
                                  QOBSharedBase::NoLock);
    }
    /// Orphans an entity; null is allowed.
    static void Destroy(const QOBSharedBase& entity)
    {
        const QOBSharedBase locked(entity, QOBSharedBase::WriteLock);
        if (locked)
            locked._getReferent()->orphanObject();
    }
    /// A new entity without a name that carries one reference.
    template <class T>
    static QOBSharedObject* Replicate()
    {
        QOBSharedObject* entity = new T;
        entity->addReference();
        return entity;
    }
    /// A copy of an entity that carries one reference.
    template <class T>
    static QOBSharedObject* Duplicate(const QOBSharedObject& source, int mode)
    {
        QOBSharedObject* copy =
            new T(static_cast<const T&>(source), static_cast<QOBDynamicObject::CopyMode>(mode));
        copy->addFirstReference();
        return copy;
    }
    /// The identifier of an entity as it is stored, made on first need; null when that fails.
    template <class Entity>
    static KARStatus Identifier(const Entity& entity, const kar::SharedText*& identifier)
    {
        return entity.EnsureIdentifier(identifier);
    }
    /// True when entities write their names.
    template <class Entity>
    static bool IsNameWritten()
    {
        return Entity::IsNameWritten();
    }
    /// True when objects of a class are copied by its record's operation: it overrides none of
    /// those that an object has for this. A class that overloads one counts as one that overrides.
    template <class T>
    static constexpr bool IsCopiedByRecord()
    {
        return requires
        {
            requires AreMembersOf<QOBDynamicObject>(&T::duplicateObject);
            requires AreMembersOf<QOBBasicEntity>(&T::_duplicateObject);
        };
    }
    /// True when a class leaves the links of its family as they are, which the family tells by
    /// HasFamilyLinks. Where it does not the links are nobody's concern.
    template <class T>
    static constexpr bool HasFamilyLinks()
    {
        if constexpr (requires { T::template HasFamilyLinks<T>; })
            return T::template HasFamilyLinks<T>;
        else
            return true;
    }
    template <class T>
    static QOBClassOperations Operations()
    {
        return {&Replicate<T>, &Duplicate<T>, IsCopiedByRecord<T>() ? &typeid(T) : nullptr,
                IsLibrary && HasFamilyLinks<T>()};
    }

private:
    // The constructors of an application's classes may look at any entity.
#if defined(KARMP_ENTITIES_BUILD)
    static constexpr bool IsLibrary = true;
#else
    static constexpr bool IsLibrary = false;
#endif
};

} // namespace karmp

/// Identity of a class that is not created itself.
#define KARMP_ABSTRACT_ENTITY(Class, Parent)                                                       \
public:                                                                                            \
    using Super = Parent;                                                                          \
                                                                                                   \
    /** The class's GUID. */                                                                       \
    static const QOBUUID& ClassID();                                                               \
    /** The class's record. */                                                                     \
    static const QOBClassInfo& ClassInfo();                                                        \
    /** What the class itself holds in a document. */                                              \
    static const karmp::Content& ClassContent();                                                   \
    /** The class's name. */                                                                       \
    static std::string ClassName();                                                                \
    /** A copy of an entity, made by its class's copy constructor; null where it has none. */      \
    static QOBSharedHandle<Class> clone(QOBSharedHandle<Class> source,                             \
                                        QOBDynamicObject::CopyMode mode);                          \
    /** Takes an entity out of all that it is linked to and empties the handle. */                 \
    static void destroy(QOBSharedHandle<Class>& entity);                                           \
                                                                                                   \
    std::string getClassName() const override;                                                     \
    const QOBClassInfo& getClassInfo() const override;                                             \
    bool isInstanceOf(const QOBClassInfo& info) const override;                                    \
    bool isDerivedFrom(const QOBClassInfo& info) const override;                                   \
    const QOBUUID& getClassID() const override;                                                    \
                                                                                                   \
protected:                                                                                         \
    static QOBSharedHandle<Class> CloneObject(QOBSharedHandle<Class> source,                       \
                                              QOBDynamicObject::CopyMode mode);                    \
    static void DestroyObject(QOBSharedHandle<Class> entity);                                      \
                                                                                                   \
private:                                                                                           \
    friend struct karmp::EntityAccess;                                                             \
    friend struct karmp::LinkAccess;                                                               \
    template <class C>                                                                             \
    friend struct karmp::ContentOf;

/// Identity of a class whose objects are created by name.
#define KARMP_ENTITY(Class, Parent)                                                                \
    KARMP_ABSTRACT_ENTITY(Class, Parent)                                                           \
public:                                                                                            \
    /** A new entity of that name. */                                                              \
    static QOBSharedHandle<Class> create(const std::wstring& name);                                \
                                                                                                   \
protected:                                                                                         \
    static QOBSharedHandle<Class> CreateObject(const std::wstring& name);                          \
                                                                                                   \
private:

/// Identity of a class that differs from its parent by its name only, or by little more: it has no
/// fields, and its element holds the parent's content. Its source defines it by KARMP_DEFINE_KIND.
#define KARMP_KIND(Class, Parent)                                                                  \
    KARMP_ENTITY(Class, Parent)                                                                    \
public:                                                                                            \
    KARStatus Serialize(KARMPSerializer* serializer) const override;                               \
    KARStatus Deserialize(const KARMPDeserializer* deserializer, const KARMPEntityTable& entities) \
        override;                                                                                  \
                                                                                                   \
protected:                                                                                         \
    Class();                                                                                       \
    Class(const Class& source, CopyMode mode);                                                     \
    ~Class() override;                                                                             \
                                                                                                   \
private:

// The parent of a record is the direct base unless another one is named.
#define KARMP_RECORD_PARENT(Class, ...)                                                            \
    karmp::RecordParent<Class::Super __VA_OPT__(, ) __VA_ARGS__>::Type

namespace karmp {

/// The class that a class record names as its parent.
template <class Super, class... Named>
struct RecordParent
{
    using Type = Super;
};
template <class Super, class Named>
struct RecordParent<Super, Named>
{
    using Type = Named;
};

} // namespace karmp

#define KARMP_DEFINE_IDENTITY(Class, Guid, Operations, ...)                                        \
    static_assert(std::is_convertible_v<Class*, KARMP_RECORD_PARENT(Class, __VA_ARGS__)*>,         \
                  "a record's parent is a base, so that records tell what a cast would");          \
    static const QOBUUID s_##Class##ID(Guid);                                                      \
    static const QOBClassInfo s_##Class##Info(                                                     \
        typeid(Class*), sizeof(Class), nullptr,                                                    \
        &KARMP_RECORD_PARENT(Class, __VA_ARGS__)::ClassInfo(), nullptr, Operations);               \
    const QOBUUID& Class::ClassID()                                                                \
    {                                                                                              \
        return s_##Class##ID;                                                                      \
    }                                                                                              \
    const QOBClassInfo& Class::ClassInfo()                                                         \
    {                                                                                              \
        return s_##Class##Info;                                                                    \
    }                                                                                              \
    std::string Class::ClassName()                                                                 \
    {                                                                                              \
        return ClassInfo().getName();                                                              \
    }                                                                                              \
    std::string Class::getClassName() const                                                        \
    {                                                                                              \
        return ClassInfo().getName();                                                              \
    }                                                                                              \
    const QOBClassInfo& Class::getClassInfo() const                                                \
    {                                                                                              \
        return ClassInfo();                                                                        \
    }                                                                                              \
    const QOBUUID& Class::getClassID() const                                                       \
    {                                                                                              \
        return ClassID();                                                                          \
    }                                                                                              \
    bool Class::isInstanceOf(const QOBClassInfo& info) const                                       \
    {                                                                                              \
        return ClassInfo().isInstanceOf(info);                                                     \
    }                                                                                              \
    bool Class::isDerivedFrom(const QOBClassInfo& info) const                                      \
    {                                                                                              \
        return ClassInfo().isDerivedFrom(info);                                                    \
    }                                                                                              \
    QOBSharedHandle<Class> Class::clone(QOBSharedHandle<Class> source,                             \
                                        QOBDynamicObject::CopyMode mode)                           \
    {                                                                                              \
        return CloneObject({source, QOBSharedBase::NoLock}, mode);                                 \
    }                                                                                              \
    QOBSharedHandle<Class> Class::CloneObject(QOBSharedHandle<Class> source,                       \
                                              QOBDynamicObject::CopyMode mode)                     \
    {                                                                                              \
        return karmp::EntityAccess::Clone<Class>({source, QOBSharedBase::ReadLock}, mode);         \
    }                                                                                              \
    void Class::destroy(QOBSharedHandle<Class>& entity)                                            \
    {                                                                                              \
        karmp::EntityAccess::Destroy(QOBSharedHandle<Class>(entity, QOBSharedBase::NoLock));       \
        entity.detach();                                                                           \
    }                                                                                              \
    void Class::DestroyObject(QOBSharedHandle<Class> entity)                                       \
    {                                                                                              \
        karmp::EntityAccess::Destroy(entity);                                                      \
    }                                                                                              \
    static_assert(true)

#define KARMP_DEFINE_ABSTRACT_ENTITY(Class, Guid, ...)                                             \
    KARMP_DEFINE_IDENTITY(Class, Guid, QOBClassOperations{}, __VA_ARGS__)

#define KARMP_DEFINE_ENTITY(Class, Guid, ...)                                                      \
    KARMP_DEFINE_IDENTITY(Class, Guid, karmp::EntityAccess::Operations<Class>(), __VA_ARGS__);     \
    static const KARMPGenericFactory<Class> s_##Class##Factory(#Class);                            \
    QOBSharedHandle<Class> Class::create(const std::wstring& name)                                 \
    {                                                                                              \
        return CreateObject(name);                                                                 \
    }                                                                                              \
    QOBSharedHandle<Class> Class::CreateObject(const std::wstring& name)                           \
    {                                                                                              \
        return karmp::EntityAccess::Create<Class>(name);                                           \
    }                                                                                              \
    static_assert(true)
