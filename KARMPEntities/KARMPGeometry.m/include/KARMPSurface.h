#pragma once

#include "KARMPGeometry.h"

class KARBaseUnknown;

/// A surface, or a topological body, of the stored geometry. It is written with its stream.
class KARMP_API KARMPSurface : public KARMPGeometry
{
    KARMP_ENTITY(KARMPSurface, KARMPGeometry)

public:
    /// Writes the surface. One that is null or has no stored form writes its base alone and gives
    /// 1. With the environment variable "DONT_SERIALIZE_SURFACE" set the stream is left out.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads the surface and always gives a failure. A failed check tells that SetSurface gave 0;
    /// it and the failure are announced by KARMPReadingPlace::Complete. Without a stream that can
    /// be loaded the surface stays as it is.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// 0 when the surface is a KARBody, else 1; having none is a failed check.
    int IsThreadSafe() const override;

    /// Stores a surface with a reference on it and, when it is a KARLinearTransfoSurface, one on
    /// the surface that it transforms, and gives up those on the former one. Null leaves none.
    /// Always 0.
    virtual KARStatus SetSurface(KARBaseUnknown* surface);
    /// Gives the surface, null without one, without a reference for the caller; always 0.
    virtual KARStatus GetSurface(KARBaseUnknown*& surface) const
    {
        return Copy(m_surface, surface);
    }

protected:
    KARMPSurface();
    /// A copy shares the surface and takes references of its own.
    KARMPSurface(const KARMPSurface& source, CopyMode mode);
    ~KARMPSurface() override;

private:
    KARBaseUnknown* m_surface = nullptr;
};
