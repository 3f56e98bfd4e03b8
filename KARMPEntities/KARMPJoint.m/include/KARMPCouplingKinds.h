// The couplings that differ by name only: gear, rack and cable.
#pragma once

#include "KARMPCoupling.h"

/// Declares a coupling. Its element is the class's name without "KARMP" and holds a coupling's
/// content; KARMP_DEFINE_COUPLING_KIND in KARMPCouplingKinds.cpp is the other half. A coupling has
/// no frames of its own: none are counted, and the forms without `local` give KARNotImplemented and
/// touch nothing.
#define KARMP_COUPLING_KIND(Class)                                                                 \
    class KARMP_API Class : public KARMPCoupling                                                   \
    {                                                                                              \
        KARMP_ENTITY(Class, KARMPCoupling)                                                         \
                                                                                                   \
    public:                                                                                        \
        using Super::GetFrame;                                                                     \
        using Super::GetFrames;                                                                    \
        KARStatus Serialize(KARMPSerializer* serializer) const override;                           \
        KARStatus Deserialize(const KARMPDeserializer* deserializer,                               \
                              const KARMPEntityTable& entities) override;                          \
        int GetFrameCount() const override;                                                        \
        virtual KARStatus GetFrames(std::vector<KARMathAxis>& frames) const;                       \
        virtual KARStatus GetFrame(int index, KARMathAxis& frame) const;                           \
                                                                                                   \
    protected:                                                                                     \
        Class();                                                                                   \
        Class(const Class& source, CopyMode mode);                                                 \
        ~Class() override;                                                                         \
    }

/// Couples two rotations.
KARMP_COUPLING_KIND(KARMPGear);
/// Couples a rotation and a translation.
KARMP_COUPLING_KIND(KARMPRack);
/// Couples two translations.
KARMP_COUPLING_KIND(KARMPCable);

#undef KARMP_COUPLING_KIND
