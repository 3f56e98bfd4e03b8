#include "KARMPEnumerationTexts.h"

#include <gtest/gtest.h>

#include <limits>
#include <string_view>
#include <type_traits>
#include <vector>

namespace {

using Words = std::vector<std::wstring_view>;

// Values run from 0 upward in the order of the words, in both directions.
template <class Enum>
void ExpectWords(const Words& words)
{
    ASSERT_EQ(karmp::EnumTexts<Enum>::Rows.size(), words.size());
    for (std::size_t value = 0; value < words.size(); ++value) {
        EXPECT_EQ(KARMPEnumText(static_cast<Enum>(value)), words[value]);
        EXPECT_EQ(KARMPEnumValue<Enum>(words[value]), static_cast<Enum>(value));
    }
    EXPECT_EQ(KARMPEnumText(static_cast<Enum>(words.size())), words[0]);
    EXPECT_EQ(sizeof(Enum), 4U);
}

} // namespace

TEST(EnumerationTexts, EachTableHasItsWordsInTheOrderOfTheValues)
{
    ExpectWords<KARMPAlignment::Enum>({L"NotSpecified", L"Specified", L"Align", L"AntiAlign"});
    ExpectWords<KARMPBodyOrientation::Enum>({L"Out", L"In"});
    ExpectWords<KARMPCircleTorusOrientation::Enum>(
        {L"NotSpecified", L"Parallel", L"Perpendicular"});
    ExpectWords<KARMPCollisionRuleType::Enum>({L"DefaultCollision", L"CollisionReaction",
                                               L"CollisionNoReaction", L"NoCollisionNoReaction"});
    ExpectWords<KARMPCurveOrientation::Enum>({L"Positive", L"Negative"});
    ExpectWords<KARMPHalfSpace::Enum>({L"NotSpecified", L"Positive", L"Negative"});
    ExpectWords<KARMPSurfaceOrientation::Enum>({L"NotSpecified", L"Positive", L"Negative"});
    ExpectWords<KARMPHingeMode::Enum>({L"NotSpecified", L"Parallel", L"Coincident"});
    ExpectWords<KARMPMotorTargetType::Enum>(
        {L"NotSpecified", L"PositionTarget", L"VelocityTarget", L"AccelerationTarget"});
    ExpectWords<KARMPSelectedAxis::Enum>({L"X", L"Y", L"Z", L"XNeg", L"YNeg", L"ZNeg"});
    ExpectWords<KARMPSelectedPlane::Enum>({L"XY", L"YZ", L"ZX"});
    ExpectWords<KARMPSpringBehavior::Enum>({L"Bidirectional", L"ExtensionFree", L"CompressionFree",
                                            L"ExtensionLock", L"CompressionLock"});
    ExpectWords<KARMPVariableType::Enum>({L"Free", L"Constant", L"Controlled"});
}

TEST(EnumerationTexts, ThePhysicalQuantitiesHaveThirtyThreeWords)
{
    ExpectWords<KARMPPhysicalQuantity::Enum>({L"NoPhysicalQuantity",
                                              L"Length",
                                              L"Mass",
                                              L"Time",
                                              L"ElectricCharge",
                                              L"LuminousIntensity",
                                              L"Temperature",
                                              L"Angle",
                                              L"Area",
                                              L"Volume",
                                              L"Velocity",
                                              L"AngularVelocity",
                                              L"Acceleration",
                                              L"AngularAcceleration",
                                              L"Force",
                                              L"Energy",
                                              L"Torque",
                                              L"Power",
                                              L"Density",
                                              L"Pressure",
                                              L"Momentum",
                                              L"Inertia",
                                              L"LuminousFlux",
                                              L"Illumination",
                                              L"Entropy",
                                              L"VolumeRateOfFlow",
                                              L"KinematicViscosity",
                                              L"DynamicViscosity",
                                              L"SpecificWeight",
                                              L"LinearStiffness",
                                              L"AngularStiffness",
                                              L"LinearDamping",
                                              L"AngularDamping"});
}

TEST(EnumerationTexts, EnumeratorsHaveTheValuesOfTheirWords)
{
    EXPECT_EQ(KARMPEnumText(KARMPAlignment::AntiAlign), L"AntiAlign");
    EXPECT_EQ(KARMPEnumText(KARMPBodyOrientation::In), L"In");
    EXPECT_EQ(KARMPEnumText(KARMPCircleTorusOrientation::Perpendicular), L"Perpendicular");
    EXPECT_EQ(KARMPEnumText(KARMPCollisionRuleType::NoCollisionNoReaction),
              L"NoCollisionNoReaction");
    EXPECT_EQ(KARMPEnumText(KARMPCurveOrientation::Negative), L"Negative");
    EXPECT_EQ(KARMPEnumText(KARMPHalfSpace::Negative), L"Negative");
    EXPECT_EQ(KARMPEnumText(KARMPSurfaceOrientation::Negative), L"Negative");
    EXPECT_EQ(KARMPEnumText(KARMPHingeMode::Coincident), L"Coincident");
    EXPECT_EQ(KARMPEnumText(KARMPMotorTargetType::AccelerationTarget), L"AccelerationTarget");
    EXPECT_EQ(KARMPEnumText(KARMPSelectedAxis::ZNeg), L"ZNeg");
    EXPECT_EQ(KARMPEnumText(KARMPSelectedPlane::ZX), L"ZX");
    EXPECT_EQ(KARMPEnumText(KARMPSpringBehavior::CompressionLock), L"CompressionLock");
    EXPECT_EQ(KARMPEnumText(KARMPVariableType::Controlled), L"Controlled");
    EXPECT_EQ(KARMPEnumText(KARMPPhysicalQuantity::LuminousFlux), L"LuminousFlux");
    EXPECT_EQ(KARMPEnumText(KARMPPhysicalQuantity::AngularDamping), L"AngularDamping");
}

TEST(EnumerationTexts, AValueOutsideTheTableIsWrittenAsRowZero)
{
    const auto text = [](int value) {
        return KARMPEnumText(static_cast<KARMPAlignment::Enum>(value));
    };
    EXPECT_EQ(text(99), L"NotSpecified");
    EXPECT_EQ(text(-1), L"NotSpecified");
    EXPECT_EQ(text(std::numeric_limits<int>::max()), L"NotSpecified");
    EXPECT_EQ(text(std::numeric_limits<int>::min()), L"NotSpecified");
}

TEST(EnumerationTexts, AWordIsComparedExactly)
{
    EXPECT_EQ(KARMPEnumValue<KARMPAlignment::Enum>(L"align"), 0);
    EXPECT_EQ(KARMPEnumValue<KARMPAlignment::Enum>(L"Align "), 0);
    EXPECT_EQ(KARMPEnumValue<KARMPAlignment::Enum>(L"Align"), 2);
}

TEST(EnumerationTexts, AnUnknownWordReadsAsRowZero)
{
    EXPECT_EQ(KARMPEnumValue<KARMPBodyOrientation::Enum>(L"Sideways"), KARMPBodyOrientation::Out);
    EXPECT_EQ(KARMPEnumValue<KARMPBodyOrientation::Enum>(L""), KARMPBodyOrientation::Out);
}

TEST(EnumerationTexts, EqualTablesStayTwoTypes)
{
    EXPECT_EQ(karmp::EnumTexts<KARMPHalfSpace::Enum>::Rows,
              karmp::EnumTexts<KARMPSurfaceOrientation::Enum>::Rows);
    EXPECT_FALSE((std::is_same_v<KARMPHalfSpace::Enum, KARMPSurfaceOrientation::Enum>));
}

TEST(EnumerationTexts, AWordMayStandInSeveralTables)
{
    EXPECT_EQ(KARMPEnumValue<KARMPHingeMode::Enum>(L"Parallel"), 1);
    EXPECT_EQ(KARMPEnumValue<KARMPCircleTorusOrientation::Enum>(L"Parallel"), 1);
    EXPECT_EQ(KARMPEnumValue<KARMPHingeMode::Enum>(L"Perpendicular"), 0);
    EXPECT_EQ(KARMPEnumValue<KARMPCircleTorusOrientation::Enum>(L"Perpendicular"), 2);
    EXPECT_EQ(KARMPEnumValue<KARMPHingeMode::Enum>(L"Coincident"), 2);
    EXPECT_EQ(KARMPEnumValue<KARMPCircleTorusOrientation::Enum>(L"Coincident"), 0);
}

TEST(Enumerations, JointTypesHaveTheNumbersThatSolversKnow)
{
    EXPECT_EQ(KARMPSolverEquivalentJointType::Revolute, 0);
    EXPECT_EQ(KARMPSolverEquivalentJointType::Cylindrical, 8);
    EXPECT_EQ(KARMPSolverEquivalentJointType::Screw, 32);
    EXPECT_EQ(KARMPSolverEquivalentJointType::Spherical, 17);
    EXPECT_EQ(KARMPSolverEquivalentJointType::PointOnCurve, 23);
    EXPECT_EQ(KARMPSolverEquivalentJointType::Rigid, 19);
    EXPECT_EQ(KARMPSolverEquivalentJointType::SixDoF, 21);
}

TEST(Enumerations, WhatIsOnlyStoredHasTheKnownNumbers)
{
    EXPECT_EQ(KARMPUnit::Millimeter, 1);
    EXPECT_EQ(KARMPBuildingMode::Explicit, 0);
    EXPECT_EQ(KARMPMoveStatus::NotMoved, 0);
}
