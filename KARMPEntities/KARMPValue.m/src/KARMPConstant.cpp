#include "KARMPConstant.h"

#include "KARIMPConstantLoader.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPLoaderAccess.h"

KARMP_DEFINE_ENTITY(KARMPConstant, "64F89D0B-01C3-4FB3-92E1-028FB8F66188");

template <>
struct karmp::ContentOf<KARMPConstant>
{
    using C = KARMPConstant;
    // A document does not hold the type word: what is read is a double.
    static KARStatus TakeDouble(C& constant, double value)
    {
        return constant.SetValue(value, KARString());
    }
    static constexpr auto List =
        Element(L"Constant", "A number of the model.", CountingFrame,
                Number<&C::m_value>(L"Value", "The number, in the unit of its physical quantity.")
                    .Through<&TakeDouble>())
            .LeftOutWhen<&KARMPValue::IsLeftOut>();
};
KARMP_DEFINE_CONTENT(KARMPConstant);

KARMPConstant::KARMPConstant() = default;
KARMPConstant::KARMPConstant(const KARMPConstant& source, CopyMode mode)
    : Super(source, mode), m_value(source.m_value), m_type(source.m_type)
{}
KARMPConstant::~KARMPConstant() = default;

KARStatus KARMPConstant::GetLoader(KARIMPConstantLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}
