// The creation of entities by class name, by which a world is rebuilt from a tree of elements.
#pragma once

#include "KARMPExport.h"
#include "KARStatus.h"
#include "QOBSharedHandle.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

class KARMPEntity;

namespace karmp {
struct EntityAccess;
}

/// The registry from class name to creator. Filled while the library loads, then only read.
class KARMP_API KARMPGenericFactoryBase
{
protected:
    /// Makes a default entity with an empty name.
    using Creator = QOBSharedHandle<KARMPEntity> (*)();
    using Map = std::map<std::string, Creator, std::less<>>;

    KARMPGenericFactoryBase() = default;

    static Map& GetMap();
    /// The entry of a class, null when the name is not registered. Names compare exactly.
    static const Creator* Find(std::string_view className);
    /// A new entity of the class, null when the name is not registered. Names compare exactly.
    static QOBSharedHandle<KARMPEntity> CreateInstance(std::string_view className);
    /// Enters a creator; it replaces one of the same name.
    static void Register(std::string_view className, Creator creator);
};

/// Registers the creator of T when it is constructed.
template <class T>
class KARMPGenericFactory : public KARMPGenericFactoryBase
{
public:
    /// Registers the class under its name.
    explicit KARMPGenericFactory(std::string_view className) { Register(className, &Create); }

private:
    template <class Access = karmp::EntityAccess>
    static QOBSharedHandle<KARMPEntity> CreateBy()
    {
        return QOBSharedHandle<KARMPEntity>(Access::template Create<T>(std::wstring()));
    }
    static QOBSharedHandle<KARMPEntity> Create() { return CreateBy<>(); }
};

/// Creates entities by class name.
class KARMP_API KARMPFactory : private KARMPGenericFactoryBase
{
public:
    /// Gives a new entity of the class with an empty name and returns 0. A name that is not
    /// registered is a failed check and a failure, with a null handle.
    static KARStatus Create(std::string_view className, QOBSharedHandle<KARMPEntity>& entity);
    /// A class by its name, which need not be registered, for the creation of many entities.
    class Class
    {
    public:
        Class() = default;
        /// Looks the class up; entities of a name that is not registered cannot be created.
        explicit Class(std::string_view className) : m_creator(Find(className)) {}

    private:
        friend class KARMPFactory;

        const Creator* m_creator = nullptr;
    };
    /// The same for a class that was looked up beforehand.
    static KARStatus Create(Class entityClass, QOBSharedHandle<KARMPEntity>& entity);
    /// The names of all classes that can be created, in order.
    static std::vector<std::string> GetClassNames();
};
