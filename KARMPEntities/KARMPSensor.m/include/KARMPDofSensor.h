#pragma once

#include "KARMPSensor.h"
#include "KARMathPoint.h"
#include "KARMathVector.h"

#include <array>

class KARMPBody;

/// Holds the degrees of freedom that a solver found between a constrained body and a reference
/// body: directions of translation, axes of rotation, and screws, which are axes with a pitch.
///
/// There are slots for three translations, and three slots that rotations and screws share:
/// rotations take them from the first one on, screws from the last one back.
class KARMP_API KARMPDofSensor : public KARMPSensor
{
    KARMP_ENTITY(KARMPDofSensor, KARMPSensor)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads freedoms behind those that are there; what is missing of one is 0.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Makes the numbers of freedoms 0; the bodies stay. Always 0.
    KARStatus Reset() override;

    /// Adds a freedom, given as a direction, as a point and the direction of an axis, or as an axis
    /// and a pitch. A failure, with nothing changed, when the slots are full.
    KARStatus AddTranslation(const KARMathVector& translation);
    KARStatus AddRotation(const KARMathPoint& pole, const KARMathVector& axis);
    KARStatus AddScrew(const KARMathPoint& pole, const KARMathVector& axis, double pitch);
    /// Gives a freedom by its index from 0, in the order of adding; a failure, with the arguments
    /// left alone, outside of them.
    KARStatus GetTranslation(int index, KARMathVector& translation) const;
    KARStatus GetRotation(int index, KARMathPoint& pole, KARMathVector& axis) const;
    KARStatus GetScrew(int index, KARMathPoint& pole, KARMathVector& axis, double& pitch) const;
    int GetNumberOfTranslations() const { return m_numberOfTranslations; }
    int GetNumberOfRotations() const { return m_numberOfRotations; }
    int GetNumberOfScrews() const { return m_numberOfScrews; }
    /// Gives the number of all freedoms; always 0.
    KARStatus GetNumberOfDof(int& number) const;

    /// Stores the body that moves, and the one that it moves against, null included; always 0.
    KARStatus SetConstrainedBody(const QOBSharedHandle<KARMPBody>& body)
    {
        return m_constrainedBody.Assign(body);
    }
    KARStatus SetReferenceBody(const QOBSharedHandle<KARMPBody>& body)
    {
        return m_referenceBody.Assign(body);
    }
    /// Gives a body; a null handle and a failure without one.
    KARStatus GetConstrainedBody(QOBSharedHandle<KARMPBody>& body) const
    {
        return m_constrainedBody.Get(body);
    }
    KARStatus GetReferenceBody(QOBSharedHandle<KARMPBody>& body) const
    {
        return m_referenceBody.Get(body);
    }

protected:
    KARMPDofSensor();
    /// A copy has the freedoms and no bodies.
    KARMPDofSensor(const KARMPDofSensor& source, CopyMode mode);
    ~KARMPDofSensor() override;

private:
    static constexpr int Slots = 3;

    bool HasFreeAxis() const { return m_numberOfRotations + m_numberOfScrews < Slots; }

    std::array<KARMathVector, Slots> m_translations;
    std::array<KARMathPoint, Slots> m_poles;
    std::array<KARMathVector, Slots> m_axes;
    std::array<double, Slots> m_pitches{};
    int m_numberOfTranslations = 0;
    int m_numberOfRotations = 0;
    int m_numberOfScrews = 0;
    KARMPLink<KARMPBody> m_constrainedBody;
    KARMPLink<KARMPBody> m_referenceBody;
};
