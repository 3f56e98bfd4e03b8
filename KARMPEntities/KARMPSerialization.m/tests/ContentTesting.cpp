#include "ContentTesting.h"

KARMP_DEFINE_ENTITY(ContentTestEntity, "5E0B8D0F-3C52-4B8E-9C57-6C0B3F2B7A91");

template <>
struct karmp::ContentOf<ContentTestEntity>
{
    using C = ContentTestEntity;
    static constexpr auto List = Element(L"ContentTest", "An entity of a test.", CountingFrame,
                                         Number<&C::number>(L"Number", "A number."));
};
KARMP_DEFINE_CONTENT(ContentTestEntity);
