// Identifiers of entities: made on first need, in one of four forms that the environment chooses.
#include "KARMPEntity.h"
#include "KARMPWorld.h"
#include "KARProcessServices.h"
#include "KARUuid.h"

#include <new>

namespace {

constexpr std::wstring_view Prefix = L"id";

std::uint32_t NextProcessNumber()
{
    static std::uint32_t next = 0;
    return next++;
}

std::wstring UuidText()
{
    char buffer[KARUuid::TextSize] = {};
    KARUuid().UUID_to_chaine(buffer, 0);
    const std::string_view text(buffer);
    return std::wstring(text.begin(), text.end());
}

// The numbers of a world's own entities, which its counter never gives.
std::wstring GlobalNumber(const std::wstring& name)
{
    if (name == L"GlobalBody")
        return L"0";
    if (name == L"GlobalAxisSystem")
        return L"1";
    if (name == L"GlobalTime")
        return L"2";
    return {};
}

} // namespace

KARStatus KARMPEntity::GetIdentifier(std::wstring& identifier) const
{
    identifier.clear();
    const kar::SharedText* made = nullptr;
    const KARStatus status = EnsureIdentifier(made);
    try {
        if (made != nullptr)
            identifier = made->Copy();
    } catch (const std::bad_alloc&) {
        KARMPVerify(false);
        return KAROutOfMemory;
    }
    return status;
}

KARStatus KARMPEntity::EnsureIdentifier(const kar::SharedText*& identifier) const
{
    identifier = m_hasIdentifier ? &m_identifier : nullptr;
    if (identifier != nullptr)
        return KARSuccess;
    KARStatus status = KARSuccess;
    // There is an empty one while it is made: who asks meanwhile is given that, and it stays where
    // the entity's own operations throw.
    m_hasIdentifier = true;
    try {
        std::wstring made;
        status = KARGetEnv("NEW_MP_IDS") != nullptr ? GenerateID2(made) : GenerateID(made);
        m_identifier.Set(made);
    } catch (const std::bad_alloc&) {
        m_hasIdentifier = false;
        KARMPVerify(false);
        return KAROutOfMemory;
    }
    identifier = &m_identifier;
    return status;
}

KARStatus KARMPEntity::SetIdentifier(const std::wstring& identifier)
{
    return TakeIdentifier(identifier);
}

KARStatus KARMPEntity::TakeIdentifier(std::wstring_view identifier)
{
    if (!KARMPVerify(!m_hasIdentifier))
        return KARFailure;
    try {
        m_identifier.Set(identifier);
    } catch (const std::bad_alloc&) {
        KARMPVerify(false);
        return KARFailure;
    }
    m_hasIdentifier = true;
    return KARSuccess;
}

bool KARMPEntity::IsNameWritten()
{
    static const bool written = KARGetEnv("NO_MP_NAME_FOR_SERIALIZATION") == nullptr;
    return written;
}

KARStatus KARMPEntity::GenerateID(std::wstring& identifier) const
{
    identifier.clear();
    static const bool namesAreUsed = KARGetEnv("MP_USE_NAME_FOR_ID") != nullptr;
    if (namesAreUsed) {
        identifier = getEntityName(InternalName, ExternalNameSeparator);
        KARMPVerify(!identifier.empty());
        return KARSuccess;
    }
    static const bool numbersAreUsed = KARGetEnv("ADL_ODT_OUT") != nullptr;
    identifier = Prefix;
    identifier += numbersAreUsed ? std::to_wstring(NextProcessNumber()) : UuidText();
    return KARSuccess;
}

KARStatus KARMPEntity::GenerateID2(std::wstring& identifier) const
{
    identifier.clear();
    std::wstring number;
    bool inWorld = false;
    IsInWorld(inWorld);
    if (inWorld) {
        QOBSharedHandle<KARMPWorld> world;
        if (!KARFailed(GetWorld(world)) && world)
            number = std::to_wstring(world->GetEntityId());
    } else {
        number = GlobalNumber(getEntityName(InternalName, ExternalNameSeparator));
    }
    identifier = Prefix;
    identifier += number;
    return KARSuccess;
}
