#pragma once

#include "KARMPSensor.h"
#include "KARMathPoint2D.h"
#include "KARMathVector2D.h"

#include <array>

class KARMPBody2D;

/// Holds the degrees of freedom that a solver found between a constrained planar body and a
/// reference body: directions of translation and centres of rotation, up to three of each.
class KARMP_API KARMPDofSensor2D : public KARMPSensor
{
    KARMP_ENTITY(KARMPDofSensor2D, KARMPSensor)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads freedoms behind those that are there; what is missing of one is 0.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Makes the numbers of freedoms 0; the bodies stay. Always 0.
    KARStatus Reset() override;

    /// Adds a freedom; a failure, with nothing changed, when the slots are full.
    KARStatus AddTranslation(const KARMathVector2D& translation);
    KARStatus AddRotation(const KARMathPoint2D& center);
    /// Gives a freedom by its index from 0, in the order of adding; a failure, with the argument
    /// left alone, outside of them.
    KARStatus GetTranslation(int index, KARMathVector2D& translation) const;
    KARStatus GetRotation(int index, KARMathPoint2D& center) const;
    int GetNumberOfTranslations() const { return m_numberOfTranslations; }
    int GetNumberOfRotations() const { return m_numberOfRotations; }
    /// Gives the number of all freedoms; always 0.
    KARStatus GetNumberOfDof(int& number) const;

    /// Stores the body that moves, and the one that it moves against, null included; always 0.
    KARStatus SetConstrainedBody(const QOBSharedHandle<KARMPBody2D>& body)
    {
        return m_constrainedBody.Assign(body);
    }
    KARStatus SetReferenceBody(const QOBSharedHandle<KARMPBody2D>& body)
    {
        return m_referenceBody.Assign(body);
    }
    /// Gives a body; a null handle and a failure without one.
    KARStatus GetConstrainedBody(QOBSharedHandle<KARMPBody2D>& body) const
    {
        return m_constrainedBody.Get(body);
    }
    KARStatus GetReferenceBody(QOBSharedHandle<KARMPBody2D>& body) const
    {
        return m_referenceBody.Get(body);
    }

protected:
    KARMPDofSensor2D();
    /// A copy has the freedoms and no bodies.
    KARMPDofSensor2D(const KARMPDofSensor2D& source, CopyMode mode);
    ~KARMPDofSensor2D() override;

private:
    static constexpr int Slots = 3;

    std::array<KARMathVector2D, Slots> m_translations;
    std::array<KARMathPoint2D, Slots> m_centers;
    int m_numberOfTranslations = 0;
    int m_numberOfRotations = 0;
    KARMPLink<KARMPBody2D> m_constrainedBody;
    KARMPLink<KARMPBody2D> m_referenceBody;
};
