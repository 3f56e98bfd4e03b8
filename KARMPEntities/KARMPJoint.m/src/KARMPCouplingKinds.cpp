#include "KARMPCouplingKinds.h"

#include "KARMPJointKindElement.h"
#include "KARMathAxis.h"

#define KARMP_DEFINE_COUPLING_KIND(Class, Guid)                                                    \
    KARMP_DEFINE_JOINT_KIND(Class, Guid);                                                          \
    int Class::GetFrameCount() const                                                               \
    {                                                                                              \
        return 0;                                                                                  \
    }                                                                                              \
    KARStatus Class::GetFrames(std::vector<KARMathAxis>&) const                                    \
    {                                                                                              \
        return KARNotImplemented;                                                                  \
    }                                                                                              \
    KARStatus Class::GetFrame(int, KARMathAxis&) const                                             \
    {                                                                                              \
        return KARNotImplemented;                                                                  \
    }                                                                                              \
    static_assert(true)

KARMP_DEFINE_COUPLING_KIND(KARMPGear, "9B315683-BFDF-42d1-8D90-0DE1E00427C6");
KARMP_DEFINE_COUPLING_KIND(KARMPRack, "BC733B73-C8F8-4f6d-B455-8565A190E6AC");
KARMP_DEFINE_COUPLING_KIND(KARMPCable, "DA99EAA0-CF90-449b-A685-622FC6997E8D");
