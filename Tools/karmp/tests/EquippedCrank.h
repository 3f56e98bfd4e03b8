// A slider-crank with an actuator, a sensor, a force element and an interaction of every class.
#pragma once

#include "ToolFixture.h"

#include <string>
#include <utility>

namespace karmp::tool {

inline constexpr const char* EquippedValues = R"(
  <Values>
   <Constant id="k" name="k" isActive="yes"><PhysicalQuantity>LinearStiffness</PhysicalQuantity><Value>1000</Value></Constant>
   <Constant id="ratio" name="ratio" isActive="yes"><PhysicalQuantity>NoPhysicalQuantity</PhysicalQuantity><Value>2.5</Value></Constant>
   <Constant id="F" name="F" isActive="yes"><PhysicalQuantity>Force</PhysicalQuantity><Value>-12</Value></Constant>
   <Expression id="turn" name="turn" isActive="yes"><PhysicalQuantity>Angle</PhysicalQuantity><Value>2 * t</Value>
    <Variables><Variable id="GlobalTime" name="GlobalTime"/></Variables><VariableMapping><Var0>0</Var0></VariableMapping></Expression>
  </Values>
)";

inline constexpr const char* EquippedActuators = R"(
  <Actuators>
   <Motor id="motor" name="motor" isActive="yes"><Variable id="Crank angle" name="Crank angle"/>
    <TargetType>PositionTarget</TargetType><Position id="turn" name="turn"/></Motor>
   <Driver id="driver" name="driver" isActive="yes"><AttachedMotors><Motor id="motor" name="motor"/></AttachedMotors></Driver>
   <JointForceActuator id="brake" name="brake" isActive="yes"><Force id="F" name="F"/><Joint id="Crank pin" name="Crank pin"/><DOFindex>5</DOFindex></JointForceActuator>
   <SpatialForceActuator id="push" name="push" isActive="yes">
    <Force><Vx id="F" name="F"/><Vy id="F" name="F"/><Vz id="F" name="F"/></Force>
    <Torque><Vx id="ratio" name="ratio"/><Vy id="ratio" name="ratio"/><Vz id="ratio" name="ratio"/></Torque>
    <IsInLocalFrame>false</IsInLocalFrame><ApplicationPoint><Px>0</Px><Py>0</Py><Pz>0</Pz></ApplicationPoint>
    <Body id="Slider" name="Slider"/></SpatialForceActuator>
   <SpatialForceActuator2D id="flat push" name="flat push" isActive="yes">
    <Force2D><Vx id="F" name="F"/><Vy id="F" name="F"/></Force2D><Torque2D><Vx id="ratio" name="ratio"/></Torque2D>
    <IsInLocalFrame>false</IsInLocalFrame><ApplicationPoint2D><Px>0</Px><Py>0</Py></ApplicationPoint2D></SpatialForceActuator2D>
   <DisplacementActuator id="hand" name="hand" isActive="yes"><Body id="Rod" name="Rod"/><Geometry id="Rod.Crank pin" name="Rod.Crank pin"/>
    <Displacement><Translation><Vx>0</Vx><Vy>0</Vy><Vz>0</Vz></Translation><Rotation><M1x>1</M1x><M1y>0</M1y><M1z>0</M1z><M2x>0</M2x><M2y>1</M2y><M2z>0</M2z><M3x>0</M3x><M3y>0</M3y><M3z>1</M3z></Rotation></Displacement>
    <DragLine><Coordinates><Ox>0</Ox><Oy>0</Oy><Oz>0</Oz><Dx>1</Dx><Dy>0</Dy><Dz>0</Dz></Coordinates></DragLine></DisplacementActuator>
   <DisplacementActuator2D id="flat hand" name="flat hand" isActive="yes">
    <Displacement2D><Translation2D><Vx>0</Vx><Vy>0</Vy></Translation2D><Rotation2D><M1x>1</M1x><M1y>0</M1y><M2x>0</M2x><M2y>1</M2y></Rotation2D></Displacement2D>
    <DragLine2D><Coordinates2D><Ox>0</Ox><Oy>0</Oy><Dx>1</Dx><Dy>0</Dy></Coordinates2D></DragLine2D></DisplacementActuator2D>
   <GlobalDisplacementActuator id="shift" name="shift" isActive="yes">
    <Displacement><Translation><Vx>0</Vx><Vy>0</Vy><Vz>0</Vz></Translation><Rotation><M1x>1</M1x><M1y>0</M1y><M1z>0</M1z><M2x>0</M2x><M2y>1</M2y><M2z>0</M2z><M3x>0</M3x><M3y>0</M3y><M3z>1</M3z></Rotation></Displacement></GlobalDisplacementActuator>
  </Actuators>
)";

inline constexpr const char* EquippedSensors = R"(
  <Sensors>
   <JointDOFSensor id="angle" name="angle" isActive="yes"><Joint id="Main bearing" name="Main bearing"/>
    <Position>0</Position><Velocity>0</Velocity><Acceleration>0</Acceleration><DOFindex>5</DOFindex></JointDOFSensor>
   <JointSpatialForceSensor id="bearing force" name="bearing force" isActive="yes"><Joint id="Main bearing" name="Main bearing"/><Index>1</Index>
    <Force><Vx>0</Vx><Vy>0</Vy><Vz>0</Vz></Force><Torque><Vx>0</Vx><Vy>0</Vy><Vz>0</Vz></Torque></JointSpatialForceSensor>
   <ConnectorSpatialForceSensor id="spring force" name="spring force" isActive="yes"><Connector id="spring" name="spring"/><Index>1</Index>
    <Force><Vx>0</Vx><Vy>0</Vy><Vz>0</Vz></Force><Torque><Vx>0</Vx><Vy>0</Vy><Vz>0</Vz></Torque></ConnectorSpatialForceSensor>
   <MotorForceSensor id="motor torque" name="motor torque" isActive="yes"><Motor id="motor" name="motor"/><Force>0</Force></MotorForceSensor>
   <ConstraintSensor id="redundancy" name="redundancy" isActive="yes"><Constraint id="Guide.constraint" name="Guide.constraint"/></ConstraintSensor>
   <DisplacementSensor id="stroke" name="stroke" isActive="yes"><Body id="Slider" name="Slider"/>
    <Displacement><Translation><Vx>0</Vx><Vy>0</Vy><Vz>0</Vz></Translation><Rotation><M1x>1</M1x><M1y>0</M1y><M1z>0</M1z><M2x>0</M2x><M2y>1</M2y><M2z>0</M2z><M3x>0</M3x><M3y>0</M3y><M3z>1</M3z></Rotation></Displacement></DisplacementSensor>
   <DisplacementSensor2D id="flat stroke" name="flat stroke" isActive="yes">
    <Displacement2D><Translation2D><Vx>0</Vx><Vy>0</Vy></Translation2D><Rotation2D><M1x>1</M1x><M1y>0</M1y><M2x>0</M2x><M2y>1</M2y></Rotation2D></Displacement2D></DisplacementSensor2D>
   <DofSensor id="freedoms" name="freedoms" isActive="yes" numberOfDof="1"><Translations number="1"><Translation><Tx>1</Tx><Ty>0</Ty><Tz>0</Tz></Translation></Translations>
    <Rotations number="0"/><Screws number="0"/><ConstrainedBody id="Slider" name="Slider"/><ReferenceBody id="GlobalBody" name="GlobalBody"/></DofSensor>
   <DofSensor2D id="flat freedoms" name="flat freedoms" isActive="yes" numberOfDof="0"><Translations2D number="0"/><Rotations2D number="0"/></DofSensor2D>
   <CollisionSensor id="contacts" name="contacts" isActive="yes"><CollisionRule id="rule" name="rule"/>
    <ContactGeometryDataContainer>
     <ContactGeometryData><FirstBody id="Slider" name="Slider"/><SecondBody id="Rod" name="Rod"/>
      <FirstContactPoint><Px>1</Px><Py>0</Py><Pz>0</Pz></FirstContactPoint><SecondContactPoint><Px>1</Px><Py>0</Py><Pz>0</Pz></SecondContactPoint>
      <PenetrationDepth>0.25</PenetrationDepth><FirstNormalVector><Vx>1</Vx><Vy>0</Vy><Vz>0</Vz></FirstNormalVector><SecondNormalVector><Vx>-1</Vx><Vy>0</Vy><Vz>0</Vz></SecondNormalVector></ContactGeometryData>
     <ContactGeometryData><FirstBody id="Crank" name="Crank"/><SecondBody id="Rod" name="Rod"/>
      <FirstContactPoint><Px>2</Px><Py>0</Py><Pz>0</Pz></FirstContactPoint><SecondContactPoint><Px>2</Px><Py>0</Py><Pz>0</Pz></SecondContactPoint>
      <PenetrationDepth>0.5</PenetrationDepth><FirstNormalVector><Vx>1</Vx><Vy>0</Vy><Vz>0</Vz></FirstNormalVector><SecondNormalVector><Vx>-1</Vx><Vy>0</Vy><Vz>0</Vz></SecondNormalVector></ContactGeometryData>
    </ContactGeometryDataContainer><ContactForceDataContainer/></CollisionSensor>
   <ProximitySensor id="near" name="near" isActive="yes" Status="false">
    <ProximitySensorData UseGroupContext="true" InverseResult="false" UseClearance="true" Clearance="0.25">
     <SensorBody id="Slider" name="Slider"/><ProximitySensorGroup><BodyInGroup id="Crank" name="Crank"/><BodyInGroup id="Rod" name="Rod"/></ProximitySensorGroup>
    </ProximitySensorData></ProximitySensor>
  </Sensors>
)";

inline constexpr const char* EquippedConnectors = R"(
  <Connectors>
   <LinearSpring id="spring" name="spring" isActive="yes"><FirstBody id="GlobalBody" name="GlobalBody"/><SecondBody id="Slider" name="Slider"/>
    <Stiffness id="k" name="k"/><Behavior>Bidirectional</Behavior><DampingCoefficient id="ratio" name="ratio"/></LinearSpring>
   <TorsionSpring id="coil" name="coil" isActive="yes"><FirstBody id="Crank" name="Crank"/><SecondBody id="Rod" name="Rod"/>
    <Stiffness id="k" name="k"/><Behavior>Bidirectional</Behavior></TorsionSpring>
   <AxialSpring id="loose spring" name="loose spring" isActive="yes"><FirstBody id="Rod" name="Rod"/><Behavior>Bidirectional</Behavior><Stiffness id="k" name="k"/></AxialSpring>
   <Bushing id="bushing" name="bushing" isActive="yes"><FirstBody id="Crank" name="Crank"/><SecondBody id="Rod" name="Rod"/><StiffnessTx id="k" name="k"/></Bushing>
   <ForceElement id="tyre" name="tyre" isActive="yes" class="Tyre" stream="x"><Joint id="Guide" name="Guide"/></ForceElement>
  </Connectors>
)";

inline constexpr const char* EquippedInteractions = R"(
  <Interactions>
   <CollisionRule id="rule" name="rule" isActive="yes"><Collidables><Collidable id="Slider" name="Slider"/><Collidable id="Rod" name="Rod"/></Collidables>
    <RuleType>CollisionReaction</RuleType><Restitution>0.5</Restitution><DynamicFriction>0</DynamicFriction><StaticFriction>0</StaticFriction>
    <YoungModulus1>0</YoungModulus1><PoissonCoef1>0</PoissonCoef1><ElasticLayerThickness1>0</ElasticLayerThickness1>
    <YoungModulus2>0</YoungModulus2><PoissonCoef2>0</PoissonCoef2><ElasticLayerThickness2>0</ElasticLayerThickness2>
    <Damping>0</Damping><EnableDampingTransition>0</EnableDampingTransition><DampingTransitionDepth>0</DampingTransitionDepth><FrictionCoef>0</FrictionCoef><FrictionVelocity>0</FrictionVelocity></CollisionRule>
   <CollisionLayer id="movers" name="movers" isActive="yes"><Collidables><Collidable id="Slider" name="Slider"/></Collidables><RuleType>CollisionReaction</RuleType>
    <Entities><Entity id="Slider" name="Slider"/></Entities></CollisionLayer>
   <CollisionLayer id="still" name="still" isActive="yes"><Collidables><Collidable id="GlobalBody" name="GlobalBody"/></Collidables><RuleType>CollisionReaction</RuleType>
    <Entities><Entity id="GlobalBody" name="GlobalBody"/></Entities></CollisionLayer>
   <CollisionInterLayer id="layers" name="layers" isActive="yes"><Collidables><Collidable id="movers" name="movers"/><Collidable id="still" name="still"/></Collidables><RuleType>CollisionReaction</RuleType>
    <CollisionLayers><CollisionLayer id="movers" name="movers"/><CollisionLayer id="still" name="still"/></CollisionLayers>
    <Restitution>0</Restitution><DynamicFriction>0</DynamicFriction><StaticFriction>0</StaticFriction></CollisionInterLayer>
  </Interactions>
)";

/// The document as a person would write it: bodies do not refer back to springs and sensors.
inline std::string EquippedDocument()
{
    std::string text = ReadFile(KARMP_EXAMPLE_DOCUMENTS "/slider-crank.xml");
    std::string families = EquippedValues;
    for (const char* const family :
         {EquippedActuators, EquippedSensors, EquippedConnectors, EquippedInteractions})
        families += family;
    return With(std::move(text), " </World>", families + " </World>");
}

class Equipped : public Tool
{
protected:
    /// The output of a command on the document with a part replaced.
    std::string Output(const std::string& command, const std::string& part = "",
                       const std::string& other = "") const
    {
        return Run(command + ' ' + Write("other.xml", With(EquippedDocument(), part, other)))
            .output;
    }

    const std::string m_file = Write("equipped.xml", EquippedDocument());
};

} // namespace karmp::tool
