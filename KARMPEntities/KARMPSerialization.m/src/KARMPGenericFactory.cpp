#include "KARMPGenericFactory.h"

#include "KARMPEntity.h"

KARMPGenericFactoryBase::Map& KARMPGenericFactoryBase::GetMap()
{
    static Map map;
    return map;
}

// The address of an entry stays valid, also when its creator is replaced.
const KARMPGenericFactoryBase::Creator* KARMPGenericFactoryBase::Find(std::string_view className)
{
    const Map& map = GetMap();
    const auto found = map.find(className);
    return found != map.end() ? &found->second : nullptr;
}

QOBSharedHandle<KARMPEntity> KARMPGenericFactoryBase::CreateInstance(std::string_view className)
{
    const Creator* const creator = Find(className);
    return creator != nullptr ? (*creator)() : QOBSharedHandle<KARMPEntity>();
}

void KARMPGenericFactoryBase::Register(std::string_view className, Creator creator)
{
    GetMap().insert_or_assign(std::string(className), creator);
}

KARStatus KARMPFactory::Create(std::string_view className, QOBSharedHandle<KARMPEntity>& entity)
{
    return Create(Class(className), entity);
}

KARStatus KARMPFactory::Create(Class entityClass, QOBSharedHandle<KARMPEntity>& entity)
{
    const Creator* const creator = entityClass.m_creator;
    entity = creator != nullptr ? (*creator)() : QOBSharedHandle<KARMPEntity>();
    return KARMPVerify(static_cast<bool>(entity)) ? KARSuccess : KARFailure;
}

std::vector<std::string> KARMPFactory::GetClassNames()
{
    std::vector<std::string> names;
    for (const auto& [name, creator] : GetMap())
        names.push_back(name);
    return names;
}
