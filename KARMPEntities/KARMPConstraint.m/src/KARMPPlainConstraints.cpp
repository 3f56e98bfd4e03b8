#include "KARMPPlainConstraints.h"

#include "KARMPConstraintElement.h"
#include "KARMPKinematicElement.h"

#define KARMP_DEFINE_CONSTRAINT_LIFE(Class, Guid)                                                  \
    KARMP_DEFINE_ENTITY(Class, Guid);                                                              \
    Class::Class() = default;                                                                      \
    Class::Class(const Class& source, CopyMode mode) : Super(source, mode) {}                      \
    Class::~Class() = default

#define KARMP_DEFINE_PLAIN_CONSTRAINT(Class, Guid, Element)                                        \
    KARMP_DEFINE_CONSTRAINT_LIFE(Class, Guid);                                                     \
    KARStatus Class::Serialize(KARMPSerializer* serializer) const                                  \
    {                                                                                              \
        return karmp::WriteConstraint(*this, serializer, Element);                                 \
    }                                                                                              \
    KARStatus Class::Deserialize(const KARMPDeserializer* deserializer,                            \
                                 const KARMPEntityTable& entities)                                 \
    {                                                                                              \
        return karmp::ReadConstraint(*this, deserializer, entities, Element);                      \
    }                                                                                              \
    static_assert(true)

#define KARMP_DEFINE_PLAIN_KINEMATIC_CONSTRAINT(Class, Guid, Element)                              \
    KARMP_DEFINE_CONSTRAINT_LIFE(Class, Guid);                                                     \
    KARStatus Class::Serialize(KARMPSerializer* serializer) const                                  \
    {                                                                                              \
        return karmp::WriteKinematic(*this, serializer);                                           \
    }                                                                                              \
    KARStatus Class::Deserialize(const KARMPDeserializer* deserializer,                            \
                                 const KARMPEntityTable& entities)                                 \
    {                                                                                              \
        return karmp::ReadKinematic(*this, deserializer, entities);                                \
    }                                                                                              \
    std::wstring_view Class::getClassSerializeID_() const                                          \
    {                                                                                              \
        constexpr std::wstring_view name(Element);                                                 \
        return name;                                                                               \
    }                                                                                              \
    static_assert(true)

KARMP_DEFINE_PLAIN_CONSTRAINT(KARMPConcentricity, "EE3F37A0-85CC-475a-9B6A-63AFE2E066B3",
                              L"Concentricity");
KARMP_DEFINE_PLAIN_CONSTRAINT(KARMP0DoF, "9360C18A-CD02-400A-BAB8-46A77772E1F7", L"ZeroDoF");
KARMP_DEFINE_PLAIN_CONSTRAINT(KARMP6DoF, "176BF2B8-53E8-403b-99E3-38D09FEA994B", L"SixDoF");

KARMP_DEFINE_PLAIN_KINEMATIC_CONSTRAINT(KARMPPlanarConstraint,
                                        "B9D5A854-44F8-45DA-B57A-F86797E2F60C",
                                        L"PlanarConstraint");
KARMP_DEFINE_PLAIN_KINEMATIC_CONSTRAINT(KARMPUniversalConstraint,
                                        "34596DE5-1527-4877-AD3E-43B9F92FF7D5",
                                        L"UniversalConstraint");
