#include "FilledEntities.h"

#include "ConcreteEntity.h"
#include "KAR3DBagRep.h"
#include "KAR3DMeshRep.h"
#include "KAR3DPolylineRep.h"
#include "KARBody.h"
#include "KAREllipseArc.h"
#include "KARLineCurve.h"
#include "KARLinearTransfoSurface.h"
#include "KARMP3DRep.h"
#include "KARMPAngle.h"
#include "KARMPAxialSpring.h"
#include "KARMPAxisSystem.h"
#include "KARMPBoolean.h"
#include "KARMPBushing.h"
#include "KARMPCircle.h"
#include "KARMPCirline.h"
#include "KARMPCoaxiality.h"
#include "KARMPCoincidence.h"
#include "KARMPCollisionInterLayer.h"
#include "KARMPCollisionSensor.h"
#include "KARMPCone.h"
#include "KARMPConnectorSpatialForceSensor.h"
#include "KARMPConstant.h"
#include "KARMPConstraintSensor.h"
#include "KARMPCoupling.h"
#include "KARMPCurve.h"
#include "KARMPCylicone.h"
#include "KARMPCylinder.h"
#include "KARMPCylindricalConstraint.h"
#include "KARMPDisplacementActuator.h"
#include "KARMPDisplacementActuator2D.h"
#include "KARMPDisplacementSensor2D.h"
#include "KARMPDistance.h"
#include "KARMPDofSensor2D.h"
#include "KARMPDriver.h"
#include "KARMPEllipse.h"
#include "KARMPExpression.h"
#include "KARMPForceElement.h"
#include "KARMPGlobalDisplacementActuator.h"
#include "KARMPHyperbola.h"
#include "KARMPJoint2D.h"
#include "KARMPJointDOFSensor.h"
#include "KARMPJointForceActuator.h"
#include "KARMPJointKinds.h"
#include "KARMPJointSpatialForceSensor.h"
#include "KARMPLine.h"
#include "KARMPLinearEquation.h"
#include "KARMPLinearSpring.h"
#include "KARMPMotorForceSensor.h"
#include "KARMPNormal.h"
#include "KARMPParabola.h"
#include "KARMPParallelism.h"
#include "KARMPPerpendicularity.h"
#include "KARMPPlainConstraints.h"
#include "KARMPPlane.h"
#include "KARMPPoint.h"
#include "KARMPPrismaticConstraint.h"
#include "KARMPProximitySensor.h"
#include "KARMPRevoluteConstraint.h"
#include "KARMPRollCurveConstraint.h"
#include "KARMPScrewConstraint.h"
#include "KARMPSerializationServices.h"
#include "KARMPSketchFunction.h"
#include "KARMPSpatialForceActuator.h"
#include "KARMPSpatialForceActuator2D.h"
#include "KARMPSphere.h"
#include "KARMPSphericalConstraint.h"
#include "KARMPString.h"
#include "KARMPSurface.h"
#include "KARMPSymmetry.h"
#include "KARMPTangency.h"
#include "KARMPTorsionSpring.h"
#include "KARMPTorus.h"
#include "KARMPVersions.h"
#include "KARPlaneSurface.h"
#include "TestEntity.h"

#include <gtest/gtest.h>

namespace {

/// An entity with an identifier; ConcreteEntity makes the like and counts them.
template <class T>
QOBSharedHandle<T> Identified(const std::wstring& identifier)
{
    const QOBSharedHandle<T> entity = T::create(identifier);
    entity->SetIdentifier(identifier);
    return entity;
}

} // namespace

const std::array<std::wstring_view, 7> AllVersions{karmp::R2015x_0, karmp::R2016_0, karmp::R2016_1,
                                                   karmp::R2017_0,  karmp::R2017_1, karmp::R2018_0,
                                                   karmp::R2018_1};

std::vector<std::string> MadeClasses()
{
    std::vector<std::string> names = KARMPFactory::GetClassNames();
    std::erase(names, TestEntity::ClassName());
    return names;
}

template <class T, class Maker>
void FilledEntities::AddTwo(Two<T>& entities, const wchar_t* prefix, const Maker& make)
{
    for (std::size_t index = 0; index < entities.size(); ++index) {
        const std::wstring identifier = prefix + std::to_wstring(index + 1);
        entities[index] = make(identifier);
        entities[index]->setEntityName(L"name of " + identifier);
        m_table.Set(identifier, entities[index]);
        m_basicWorld->addLogicalChild(entities[index]);
    }
}

FilledEntities::FilledEntities()
    : m_limits{KARCrvLimits(KARCrvParam(-0.5), KARCrvParam(2.5)),
               KARCrvLimits(KARCrvParam(0.25), KARCrvParam(1.5))}
{
    AddTwo(m_bodies, L"B", Identified<KARMPBody>);
    AddTwo(m_planarBodies, L"PB", Identified<KARMPBody2D>);
    AddTwo(m_geometries, L"G", Identified<KARMPPoint>);
    AddTwo(m_planarGeometries, L"PG", Identified<KARMPPoint2D>);
    AddTwo(m_sketches, L"PK", Identified<KARMPSketch>);
    AddTwo(m_joints, L"J", Identified<KARMPRevolute>);
    AddTwo(m_planarJoints, L"PJ", Identified<KARMPUserDefined2D>);
    AddTwo(m_motors, L"M", Identified<KARMPMotor>);
    AddTwo(m_constraints, L"C", Identified<KARMPConcentricity>);
    AddTwo(m_equations, L"E", Identified<KARMPEquation>);
    AddTwo(m_variables, L"V", Identified<KARMPVariable>);
    AddTwo(m_sensors, L"S", Identified<KARMPDisplacementSensor>);
    AddTwo(m_planarSensors, L"PS", Identified<KARMPDisplacementSensor2D>);
    AddTwo(m_shapes, L"H", ConcreteEntity<KARMP3DRep>::create);
    AddTwo(m_planarShapes, L"PH", Identified<KARMPShapeBody>);
    AddTwo(m_connectors, L"N", Identified<KARMPAxialSpring>);
    AddTwo(m_constants, L"K", Identified<KARMPConstant>);
    AddTwo(m_rules, L"R", Identified<KARMPCollisionRule>);
    AddTwo(m_layers, L"L", Identified<KARMPCollisionLayer>);
    AddTwo(m_steps, L"D", Identified<KARMPAnalysisStep>);
    AddTwo(m_elements, L"A", Identified<KARMPPoint>);
    AddTwo(m_parameters, L"P", Identified<KARMPParameter>);
    AddTwo(m_states, L"T", Identified<KARMPState>);
    AddTwo(m_outputs, L"O", Identified<KARMPOutput>);
    AddTwo(m_supports, L"U", Identified<KARMPSupport>);
}

FilledEntities::~FilledEntities() = default;

void FreeReadLimits(KARMPEntity& entity)
{
    if (auto* const curve = dynamic_cast<KARMPCurve*>(&entity))
        curve->DeleteCurveLimitsAtEnd(true);
}

void FilledEntities::FillTable(KARMPEntityTable& table,
                               const QOBSharedHandle<KARMPEntity>& entity) const
{
    for (const KARMPEntityTable::Entry* entry : m_table.InOrder())
        table.Set(entry->Identifier(), entity);
}

QOBSharedHandle<KARMPEntity> FilledEntities::New(const std::string& className)
{
    QOBSharedHandle<KARMPEntity> entity;
    KARMPFactory::Create(className, entity);
    FreeReadLimits(*entity);
    m_basicWorld->addLogicalChild(entity);
    return entity;
}

QOBSharedHandle<KARMPEntity> FilledEntities::Make(const std::string& className, Filling filling,
                                                  const std::wstring& identifier)
{
    const QOBSharedHandle<KARMPEntity> handle = New(className);
    if (filling != Filling::Values)
        handle->SetIdentifier(identifier);
    if (filling != Filling::Nothing)
        Fill(*handle, filling);
    return handle;
}

void FilledEntities::FillLinked()
{
    for (const KARMPEntityTable::Entry* const entry : m_table.InOrder()) {
        const QOBSharedHandle<KARMPEntity> entity = entry->Entity();
        const std::wstring name = entity->getEntityName();
        Fill(*entity, Filling::Values);
        entity->setEntityName(name);
    }
}

void FilledEntities::Fill(KARMPEntity& entity, Filling filling)
{
    m_filling = filling;
    FillBase(entity);
    bool known = false;
    const auto fill = [&]<class T>(void (FilledEntities::*content)(T&)) {
        if (auto* member = dynamic_cast<T*>(&entity)) {
            (this->*content)(*member);
            known = true;
        }
    };
    fill(&FilledEntities::FillActuator);
    fill(&FilledEntities::FillAttribute);
    fill(&FilledEntities::FillBody);
    fill(&FilledEntities::FillGeometry);
    fill(&FilledEntities::FillJoint);
    fill(&FilledEntities::FillConnector);
    fill(&FilledEntities::FillConstraint);
    fill(&FilledEntities::FillShape);
    fill(&FilledEntities::FillSensor);
    fill(&FilledEntities::FillInteraction);
    fill(&FilledEntities::FillValue);
    fill(&FilledEntities::FillVariable);
    EXPECT_TRUE(known || FillSetUp(entity))
        << "no function fills the family of " << entity.getClassName();
    FillOwnContent(entity);
}

KARMathTransformation FilledEntities::Position() const
{
    const KARMath3x3Matrix turned = Choose(KARMath3x3Matrix(First(), Second(), Third()),
                                           KARMath3x3Matrix(Second(), First(), Third()));
    return {turned, {Number(10.5), Number(-20.25), Number(30.125)}};
}

void FilledEntities::FillBase(KARMPEntity& entity)
{
    entity.setEntityName(Choose(L"the \u00e9 <name>", L"other"));
    entity.SetID(Choose("application", "other"));
    if (m_filling == Filling::Full)
        entity.Deactivate();
    if (!HasLinks())
        return;
    for (const auto& parameter : m_parameters)
        entity.AddParameter(parameter);
    for (const auto& state : m_states)
        entity.AddState(state);
    for (const auto& element : m_elements)
        entity.AddAggregatedElement(element);
}

void FilledEntities::FillAttribute(KARMPAttribute& attribute)
{
    attribute.SetType(Choose("double", "enum"));
    attribute.SetPath({Choose("arm", "leg"), "", Choose("angle", "speed")});
    const std::array<unsigned char, 3> octets{0xC3, 0xA9, Choose<unsigned char>(0x41, 0x42)};
    attribute.SetOctetSequence(_SEQUENCE_octet(octets));
    for (std::size_t index = 0; HasLinks() && index < 2; ++index) {
        for (const QOBSharedHandle<KARMPAttribute>& child :
             {QOBSharedHandle<KARMPAttribute>(m_parameters[index]),
              QOBSharedHandle<KARMPAttribute>(m_states[index]),
              QOBSharedHandle<KARMPAttribute>(m_outputs[index])})
            attribute.AddChild(child);
        attribute.AddValue(m_constants[Choose(index, 1 - index)]);
        attribute.AddSupport(m_supports[index]);
    }
}

void FilledEntities::FillActuator(KARMPActuator& actuator)
{
    using Classes =
        karmp::FamilyList<KARMPDisplacementActuator, KARMPDisplacementActuator2D, KARMPDriver,
                          KARMPGlobalDisplacementActuator, KARMPJointForceActuator, KARMPMotor,
                          KARMPSpatialForceActuator, KARMPSpatialForceActuator2D>;
    EXPECT_TRUE(Classes::AnyOf([&](auto family) {
        using T = typename decltype(family)::Type;
        auto* own = dynamic_cast<T*>(&actuator);
        if (own != nullptr)
            FillDrive(*own);
        return own != nullptr;
    }));
}

template <class T>
void FilledEntities::FillDrive(T& actuator)
{
    const QOBSharedHandle<KARMPValue> first = m_constants[Choose(0U, 1U)];
    const QOBSharedHandle<KARMPValue> second = m_constants[Choose(1U, 0U)];
    if constexpr (std::is_same_v<T, KARMPDisplacementActuator>) {
        if (HasLinks()) {
            actuator.SetBody(m_bodies[0]);
            actuator.SetGeometry(m_geometries[0]);
        }
        actuator.SetDisplacement(Position());
        actuator.SetDisplacementByDragLine({Point(), First()});
    }
    if constexpr (std::is_same_v<T, KARMPDisplacementActuator2D>) {
        if (HasLinks()) {
            actuator.SetBody(m_planarBodies[0]);
            actuator.SetGeometry(m_planarGeometries[0]);
        }
        actuator.SetDisplacement(
            {{{Number(0.5), Number(1.5)}, {Number(2.5), Number(3.5)}}, {Number(4.5), Number(5.5)}});
        actuator.SetDisplacementByDragLine({{Number(1.5), Number(-2.25)}, {Number(3.0), 4.0}});
    }
    if constexpr (std::is_same_v<T, KARMPGlobalDisplacementActuator>)
        actuator.SetGlobalDisplacement(Position());
    if constexpr (std::is_same_v<T, KARMPDriver>)
        for (std::size_t index = 0; HasLinks() && index < 2; ++index)
            actuator.AddMotor(m_motors[index]);
    if constexpr (std::is_same_v<T, KARMPMotor>) {
        actuator.SetTargetType(
            Choose(KARMPMotorTargetType::VelocityTarget, KARMPMotorTargetType::PositionTarget));
        if (HasLinks()) {
            actuator.SetVariable(m_variables[0]);
            actuator.SetPosition(first);
            actuator.SetVelocity(second);
            actuator.SetAcceleration(first);
            actuator.SetMaxForce(second);
        }
    }
    if constexpr (std::is_same_v<T, KARMPJointForceActuator>) {
        actuator.SetIndexDOF(Choose(4, 2));
        if (HasLinks()) {
            actuator.SetForce(first);
            actuator.SetJoint(m_joints[0]);
        }
    }
    if constexpr (std::is_same_v<T, KARMPSpatialForceActuator>) {
        if (HasLinks()) {
            actuator.SetForce({first, second, first}, {});
            actuator.SetTorque({second, first, first}, {});
            actuator.SetBody(m_bodies[0]);
        }
        actuator.SetApplicationPoint(Point(), {});
        actuator.SetIsInLocalFrame(Choose(true, false));
    }
    if constexpr (std::is_same_v<T, KARMPSpatialForceActuator2D>) {
        if (HasLinks()) {
            actuator.SetForce({first, second});
            actuator.SetTorque({second});
            actuator.SetBody(m_planarBodies[0]);
        }
        actuator.SetApplicationPoint({Number(1.5), Number(-2.25)});
        actuator.SetIsInLocalFrame(Choose(true, false));
    }
}

// A body says that it does not float only when it is not fixed and has a father.
void FilledEntities::FillBody(KARMPBody& body)
{
    if (auto* planar = dynamic_cast<KARMPBody2D*>(&body))
        return FillPlanarBody(*planar);
    body.SetPosition(Position(), 0);
    body.SetVelocity({Number(1.25), Number(2.5), Number(3.75)},
                     {Number(4.5), Number(5.25), Number(6.125)});
    body.SetAcceleration({Number(-1.25), Number(-2.5), Number(-3.75)},
                         {Number(-4.5), Number(-5.25), Number(-6.125)});
    body.SetMass(Number(12.5));
    body.SetCenterOfGravity({Number(7.5), Number(8.25), Number(9.125)});
    body.SetInertiaMatrix({{Number(1.5), Number(2.5), Number(3.5)},
                           {Number(4.5), Number(5.5), Number(6.5)},
                           {Number(7.5), Number(8.5), Number(9.5)}});
    body.SetOutOfWorld(Choose(true, false));
    body.SetFix(Choose(true, false));
    body.SetFloating(false);
    if (!HasLinks())
        return;
    m_bodies[1]->AddBody(QOBSharedHandle<KARMPBody>(&body));
    body.SetDisplacementSensor(m_sensors[1]);
    for (std::size_t index = 0; index < 2; ++index) {
        body.AddGeometry(m_geometries[index]);
        body.LinkToJoint(m_joints[index]);
        body.LinkToShape(m_shapes[index]);
        body.LinkToConnector(m_connectors[index]);
        body.AddImpactedChildBody(m_bodies[index]);
    }
    body.AddBody(m_bodies[0]);
}

void FilledEntities::FillGeometry(KARMPGeometry& geometry)
{
    if (auto* planar = dynamic_cast<KARMPGeometry2D*>(&geometry))
        FillPlanarGeometry(*planar);
    if (!HasLinks())
        return;
    geometry.SetBody(m_bodies[0]);
    for (const auto& constraint : m_constraints)
        geometry.LinkToConstraint(constraint);
}

void FilledEntities::FillJoint(KARMPJoint& joint)
{
    if (!HasLinks())
        return;
    if (auto* coupling = dynamic_cast<KARMPCoupling*>(&joint))
        coupling->SetEquation(m_equations[0]);
    if (auto* planar = dynamic_cast<KARMPJoint2D*>(&joint))
        LinkJoint(*planar, m_planarBodies);
    else
        LinkJoint(joint, m_bodies);
}

template <class Joint, class Body>
void FilledEntities::LinkJoint(Joint& joint, const Two<Body>& bodies)
{
    using Orientation = KARMPBodyOrientation::Enum;
    joint.LinkToBody(bodies[0], Choose(Orientation::In, Orientation::Out));
    joint.LinkToBody(bodies[1], Choose(Orientation::Out, Orientation::In));
    for (const auto& constraint : m_constraints)
        joint.AddConstraint(constraint);
}

void FilledEntities::LinkConstraint(KARMPConstraint& constraint)
{
    for (std::size_t index = 0; index < 2; ++index) {
        constraint.LinkToGeometry(m_geometries[index]);
        constraint.LinkToVariable(m_variables[index]);
        constraint.LinkToSensor(m_sensors[index]);
    }
    constraint.SetJoint(m_joints[0]);
    for (unsigned int row = 1; row <= 2; ++row) {
        const int first = static_cast<int>(row);
        const std::array<int, 2> types{first, first + 1};
        const std::array<unsigned int, 3> tags{10 * row, 10 * row + 1, 10 * row + 2};
        const std::array<double, 3> numbers{first + 0.25, first + 0.5, first + 0.75};
        auto* parameter = new KARMPConstraintParameter;
        parameter->SetTypes(types.data());
        parameter->SetTags(tags.data());
        parameter->SetParams(numbers.data());
        // One that is initialized lets both be written.
        parameter->SetInitialized(row == 1);
        constraint.AddConstraintParameter(parameter);
    }
}

void FilledEntities::FillConnector(KARMPConnector& connector)
{
    if (!HasLinks())
        return;
    connector.SetFirstBody(m_bodies[Choose(0U, 1U)]);
    connector.SetSecondBody(m_bodies[Choose(1U, 0U)]);
    for (std::size_t index = 0; index < 2; ++index) {
        connector.LinkToGeometry(m_geometries[index]);
        connector.LinkToVariable(m_variables[index]);
    }
}

void FilledEntities::FillConstraint(KARMPConstraint& constraint)
{
    if (HasLinks())
        LinkConstraint(constraint);
    if (auto* kinematic = dynamic_cast<KARMPKinematicConstraint*>(&constraint)) {
        kinematic->SetSelectedAxis(0, Choose(KARMPSelectedAxis::Y, KARMPSelectedAxis::ZNeg));
        kinematic->SetSelectedAxis(1, Choose(KARMPSelectedAxis::Z, KARMPSelectedAxis::XNeg));
        kinematic->SetFrictionModel(Choose("Coulomb", "other"));
        // Friction that is not enabled is not written.
        if (m_filling != Filling::Other)
            kinematic->EnableFriction();
    }
}

// All numbers differ. The two kinds of data of a sensor are of different pairs.
KARMPContactForceData FilledEntities::Contact(std::size_t first) const
{
    double next = first == 0 ? 1.5 : 41.5;
    const auto number = [&] { return Number(next++); };
    const auto vector = [&] {
        const double x = number();
        const double y = number();
        return KARMathVector(x, y, number());
    };
    using Data = KARMPContactForceData;
    Data data;
    data.firstBody = m_bodies[first];
    data.secondBody = m_bodies[1 - first];
    data.firstContactPoint = KARMathPoint() + vector();
    data.secondContactPoint = KARMathPoint() + vector();
    data.penetrationDepth = number();
    for (const auto member :
         {&Data::firstContactForce, &Data::secondContactForce, &Data::firstContactTorque,
          &Data::secondContactTorque, &Data::firstNormalForce, &Data::secondNormalForce,
          &Data::firstFrictionForce, &Data::secondFrictionForce})
        data.*member = vector();
    data.firstNormalVector = vector();
    data.secondNormalVector = vector();
    return data;
}

void FilledEntities::FillContactSensor(KARMPSensor& sensor)
{
    if (auto* collision = dynamic_cast<KARMPCollisionSensor*>(&sensor); collision && HasLinks()) {
        collision->SetCollisionRule(m_rules[0]);
        collision->AddContactGeometryData(Contact(0));
        collision->AddContactForceData(Contact(1));
    }
    if (auto* proximity = dynamic_cast<KARMPProximitySensor*>(&sensor)) {
        KARMPProximitySensorData data;
        data.SetUseGroupContext(true);
        data.SetInverseResult(Choose(true, false));
        data.SetUseClearance(true);
        data.SetClearance(Number(0.25));
        if (HasLinks()) {
            data.SetSensorBody(m_bodies[0]);
            for (const auto& body : m_bodies)
                data.AddBodyToGroup(body);
        }
        proximity->SetProximitySensorData(data);
        proximity->SetProximitySensorStatus(Choose(true, false));
    }
}

void FilledEntities::FillInteraction(KARMPInteraction& interaction)
{
    interaction.SetRuleType(Choose(KARMPCollisionRuleType::CollisionNoReaction,
                                   KARMPCollisionRuleType::NoCollisionNoReaction));
    const auto fillCoefficients = [this](auto& own) {
        own.SetRestitutionCoefficient(Number(0.25));
        own.SetDynamicFrictionCoefficient(Number(0.5));
        own.SetStaticFrictionCoefficient(Number(0.75));
    };
    auto* interLayer = dynamic_cast<KARMPCollisionInterLayer*>(&interaction);
    for (std::size_t index = 0; HasLinks() && index < 2; ++index)
        if (interLayer != nullptr)
            interaction.AddCollidable(m_layers[index]);
        else
            interaction.AddCollidable(m_bodies[index]);
    if (interLayer != nullptr)
        fillCoefficients(*interLayer);
    if (auto* rule = dynamic_cast<KARMPCollisionRule*>(&interaction)) {
        fillCoefficients(*rule);
        rule->SetFirstCollidableParameters(Number(1.5), Number(2.5), Number(3.5));
        rule->SetSecondCollidableParameters(Number(4.5), Number(5.5), Number(6.5));
        rule->SetDampingCoefficient(Number(7.5));
        rule->EnableDampingTransition(Choose<unsigned char>(1, 0));
        rule->SetDampingTransitionDepth(Number(8.5));
        rule->SetFrictionParameters(Number(9.5), Number(10.5));
        rule->SetMaxDepthTol(Number(11.5));
    }
}

void FilledEntities::FillShape(KARMPShape& shape)
{
    if (!HasLinks())
        return;
    auto* const planar = dynamic_cast<KARMPShape2D*>(&shape);
    for (std::size_t index = 0; index < 2; ++index)
        if (planar != nullptr)
            planar->LinkToBody(m_planarBodies[index]);
        else
            shape.LinkToBody(m_bodies[index]);
}

void FilledEntities::FillSensor(KARMPSensor& sensor)
{
    FillContactSensor(sensor);
    if (auto* displacement = dynamic_cast<KARMPDisplacementSensor*>(&sensor)) {
        if (HasLinks())
            displacement->SetBody(m_bodies[0]);
        displacement->SetDisplacement(Position());
    }
}

void FilledEntities::FillValue(KARMPValue& value)
{
    value.SetOwner("Owner");
    value.SetPhysicalQuantity(
        Choose(KARMPPhysicalQuantity::Angle, KARMPPhysicalQuantity::AngularDamping));
}

void FilledEntities::FillVariable(KARMPVariable& variable)
{
    variable.SetValue(Number(1.25));
    variable.SetMinValue(Number(-2.5));
    variable.SetMaxValue(Number(3.75));
    variable.SetRestitutionOnMinLimit(Number(0.25));
    variable.SetRestitutionOnMaxLimit(Number(0.75));
    variable.SetPhysicalQuantity(
        Choose(KARMPPhysicalQuantity::Angle, KARMPPhysicalQuantity::AngularDamping));
    variable.SetType(Choose(KARMPVariableType::Constant, KARMPVariableType::Controlled));
    for (std::size_t index = 0; HasLinks() && index < 2; ++index)
        variable.LinkToConstraint(m_constraints[index]);
}

// What the classes add to their families: each setter that a class has is called.
void FilledEntities::FillOwnContent(KARMPEntity& entity)
{
    using Classes = karmp::FamilyList<
        KARMPAxisSystem, KARMPCircle, KARMPCirline, KARMPCone, KARMPCylicone, KARMPCylinder,
        KARMPEllipse, KARMPHyperbola, KARMPLine, KARMPParabola, KARMPPlane, KARMPPoint, KARMPSketch,
        KARMPSphere, KARMPTorus, KARMPCurve, KARMPSurface, KARMPAngle, KARMPCoaxiality,
        KARMPCoincidence, KARMPDistance, KARMPNormal, KARMPParallelism, KARMPPerpendicularity,
        KARMPRollCurveConstraint, KARMPSymmetry, KARMPTangency, KARMPLinearEquation,
        KARMPCylindricalConstraint, KARMPPrismaticConstraint, KARMPRevoluteConstraint,
        KARMPScrewConstraint, KARMPSphericalConstraint, KARMPBoolean, KARMPConstant,
        KARMPExpression, KARMPSketchFunction, KARMPString, KARMPAxialSpring, KARMPBushing,
        KARMPForceElement, KARMPLinearSpring, KARMPTorsionSpring, KARMPConnectorSpatialForceSensor,
        KARMPConstraintSensor, KARMPDisplacementSensor2D, KARMPDofSensor, KARMPDofSensor2D,
        KARMPJointDOFSensor, KARMPJointSpatialForceSensor, KARMPMotorForceSensor, KARMP3DRep,
        KARMPShapeBody>;
    Classes::AnyOf([&](auto family) {
        using T = typename decltype(family)::Type;
        if (entity.getClassName() != T::ClassName())
            return false;
        T& own = static_cast<T&>(entity);
        if constexpr (std::is_base_of_v<KARMPGeometry, T>) {
            FillShapeOf(own);
        } else if constexpr (std::is_base_of_v<KARMPValue, T>) {
            FillValueOf(own);
        } else if constexpr (std::is_base_of_v<KARMPConnector, T>) {
            FillForceOf(own);
        } else if constexpr (std::is_base_of_v<KARMPSensor, T>) {
            FillMeasurementOf(own);
        } else if constexpr (std::is_base_of_v<KARMPShape, T>) {
            FillLookOf(own);
        } else {
            FillOptions(own);
            FillFriction(own);
            FillTerms(own);
        }
        return true;
    });
}

template <class T>
void FilledEntities::FillShapeOf(T& geometry)
{
    if constexpr (requires { geometry.SetAxisSystem({}); })
        geometry.SetAxisSystem({Point(), First(), Second(), Third()});
    if constexpr (requires { geometry.SetCircle({}); })
        geometry.SetCircle({Point(), First(), Second(), Number(4.5)});
    if constexpr (requires { geometry.SetLine({}); })
        geometry.SetLine({Point(), First()});
    if constexpr (requires { geometry.SetPlane({}); })
        geometry.SetPlane({Point(), First()});
    if constexpr (requires { geometry.SetPoint({}); })
        geometry.SetPoint(Point());
    if constexpr (requires { geometry.SetOrigin({}); })
        geometry.SetOrigin(Point());
    if constexpr (requires { geometry.SetAxis({}); })
        geometry.SetAxis(Second());
    if constexpr (requires { geometry.SetCenter({}); })
        geometry.SetCenter(Point());
    if constexpr (requires { geometry.SetMajorDirection({}); })
        geometry.SetMajorDirection(First());
    if constexpr (requires { geometry.SetNormal({}); })
        geometry.SetNormal(Third());
    if constexpr (requires { geometry.SetAngle(0.0); })
        geometry.SetAngle(Number(0.625));
    if constexpr (requires { geometry.SetRadius(0.0); })
        geometry.SetRadius(Number(5.5));
    if constexpr (requires { geometry.SetMajorRadius(0.0); })
        geometry.SetMajorRadius(Number(6.5));
    if constexpr (requires { geometry.SetMinorRadius(0.0); })
        geometry.SetMinorRadius(Number(2.5));
    if constexpr (requires { geometry.SetCurvature(0.0); })
        geometry.SetCurvature(Number(0.125));
    if constexpr (std::is_same_v<T, KARMPCurve>)
        AddCurvesTo(geometry, new KARCrvLimits(m_limits[0]), new KARCrvLimits(m_limits[1]));
    if constexpr (std::is_same_v<T, KARMPSurface>) {
        KARPlaneSurface* const plane = m_curves->Make<KARPlaneSurface>(
            Point(), First(), Second(), KARSurLimits{-1.0, 1.0, -2.0, 2.0});
        geometry.SetSurface(m_curves->Make<KARLinearTransfoSurface>(plane, Position()));
    }
}

template <class T>
void FilledEntities::FillLookOf(T& shape)
{
    if constexpr (std::is_same_v<T, KARMPShapeBody>) {
        auto* const body = m_curves->Make<KARBody>();
        body->AddVertex(Point());
        shape.SetBody(body);
    }
    if constexpr (std::is_same_v<T, KARMP3DRep>) {
        KAR3DBagRep* const bag = KAR3DBagRep::CreateRep();
        bag->SetTransformation(Position());
        bag->SetColour(KARColour{0.125, Choose(0.25, 0.75), 0.5, 1.0});
        bag->AddChild(KAR3DMeshRep::CreateRep({Point(), Point() + First(), Point() + Second()},
                                              {{0, 1, 2}}, {Third(), Third(), Third()}));
        bag->AddChild(KAR3DPolylineRep::CreateRep({Point(), Point() + Third()}));
        shape.Set3DRep(bag);
    }
}

template <class T>
void FilledEntities::AddCurvesTo(T& chain, void* lineLimits, void* arcLimits)
{
    chain.AddCurve(m_curves->Make<KARLineCurve>(KARMathLine({1, 2, 0}, {0, 2, 0}), -1.0, 4.0),
                   KARMPCurveOrientation::Negative, lineLimits);
    chain.AddCurve(m_curves->Make<KARCircleArc>(KARMathPoint(1, 1, 0), KARMathVector(1, 0, 0),
                                                KARMathVector(0, 0, 1), 2.0, 0.0, 3.0),
                   KARMPCurveOrientation::Positive, arcLimits);
}

template <class T>
void FilledEntities::FillOptions(T& constraint)
{
    using Torus = KARMPCircleTorusOrientation;
    using Surface = KARMPSurfaceOrientation;
    if constexpr (requires { constraint.SetAlignment(KARMPAlignment::Align); })
        constraint.SetAlignment(Choose(KARMPAlignment::Align, KARMPAlignment::AntiAlign));
    if constexpr (requires { constraint.SetCircleTorusOrientation(Torus::Parallel); })
        constraint.SetCircleTorusOrientation(Choose(Torus::Parallel, Torus::Perpendicular));
    if constexpr (requires { constraint.SetHalfSpace(KARMPHalfSpace::Positive); })
        constraint.SetHalfSpace(Choose(KARMPHalfSpace::Positive, KARMPHalfSpace::Negative));
    if constexpr (requires { constraint.SetHingeMode(KARMPHingeMode::Parallel); })
        constraint.SetHingeMode(Choose(KARMPHingeMode::Parallel, KARMPHingeMode::Coincident));
    if constexpr (requires { constraint.SetSelectedPlane(KARMPSelectedPlane::YZ); })
        constraint.SetSelectedPlane(Choose(KARMPSelectedPlane::YZ, KARMPSelectedPlane::ZX));
    if constexpr (requires { constraint.SetSurfaceOrientation(Surface::Positive); })
        constraint.SetSurfaceOrientation(Choose(Surface::Positive, Surface::Negative));
}

template <class T>
void FilledEntities::FillFriction(T& constraint)
{
    if constexpr (requires { constraint.SetFrictionParameters(1, 2, 3, 4, 5); })
        constraint.SetFrictionParameters(Number(0.5), Number(1.5), Number(2.5), Number(3.5),
                                         Number(4.5));
    if constexpr (requires { constraint.SetFrictionParameters(1, 2, 3, 4, 5, 6); })
        constraint.SetFrictionParameters(Number(0.5), Number(1.5), Number(2.5), Number(3.5),
                                         Number(4.5), Number(5.5));
    if constexpr (requires { constraint.SetFrictionParameters(1, 2, 3, 4, 5, 6, 7); })
        constraint.SetFrictionParameters(Number(0.5), Number(1.5), Number(2.5), Number(3.5),
                                         Number(4.5), Number(5.5), Number(6.5));
    if constexpr (std::is_same_v<T, KARMPScrewConstraint>) {
        constraint.SetTangent(Number(0.25));
        constraint.SetRotationOffset(Number(1.5));
        constraint.SetTranslationOffset(Number(-2.5));
        constraint.SetMotionState(Choose("locked", "other"));
    }
}

template <class T>
void FilledEntities::FillTerms(T& equation)
{
    if constexpr (std::is_same_v<T, KARMPLinearEquation>) {
        if (HasLinks()) {
            equation.AddLinearTerm(Number(1.5));
            equation.AddLinearTerm(Number(-2.25));
        }
        if (m_filling != Filling::Other)
            equation.SetConstantTerm(Number(4.5));
    }
}

template <class T>
void FilledEntities::FillValueOf(T& value)
{
    if constexpr (std::is_same_v<T, KARMPBoolean>)
        value.SetValue(Choose<unsigned char>(1, 0));
    if constexpr (std::is_same_v<T, KARMPConstant>)
        value.SetValue(Choose(2.5, 3.0), Choose("double", "int"));
    if constexpr (std::is_same_v<T, KARMPString>)
        value.SetValue(Choose("some text", "other"));
    if constexpr (std::is_same_v<T, KARMPExpression>) {
        KARWBFactory* factory = nullptr;
        m_world->GetWBFactory(factory);
        KARWBEquation* equation = nullptr;
        EXPECT_EQ(KARMPSerializationServices::ParseWBEquation(Choose(L"2 * V1 + sin(V2)", L"V1"),
                                                              factory, equation),
                  KARSuccess);
        value.SetValue(equation);
        if (HasLinks()) {
            value.LinkToVariable(m_variables[1]);
            value.LinkToVariable(m_variables[0]);
        }
        // The reader counts positions from 0, so that others are lost.
        if (m_filling == Filling::Full)
            value.SetVariableMapping({{0, 1}, {1, 0}});
        else
            value.SetVariableMapping({{0, 1}, {2, 0}});
    }
    if constexpr (std::is_same_v<T, KARMPSketchFunction>) {
        value.SetReferenceAxis(Point(), First(), Third());
        AddCurvesTo(value, &m_limits[0], &m_limits[1]);
    }
}

template <class T>
void FilledEntities::FillForceOf(T& connector)
{
    using Behavior = KARMPSpringBehavior;
    using Value = QOBSharedHandle<KARMPValue>;
    const Value first = m_constants[Choose(0U, 1U)];
    const Value second = m_constants[Choose(1U, 0U)];
    if constexpr (requires { connector.SetBehavior(Behavior::ExtensionFree); })
        connector.SetBehavior(Choose(Behavior::ExtensionFree, Behavior::CompressionLock));
    if constexpr (std::is_same_v<T, KARMPForceElement>) {
        connector.SetClass(Choose(L"Contact", L"other"));
        connector.SetStream(Choose(L"AAEC \u00e9", L"other"));
    }
    if (!HasLinks())
        return;
    if constexpr (requires { connector.SetRestLength(first); })
        connector.SetRestLength(first);
    if constexpr (requires { connector.SetRestAngle(first); })
        connector.SetRestAngle(first);
    if constexpr (requires { connector.SetDampingCoefficient(first); })
        connector.SetDampingCoefficient(first);
    if constexpr (requires { connector.SetStiffness(first); })
        connector.SetStiffness(second);
    if constexpr (requires { connector.SetDamping(first); })
        connector.SetDamping(first);
    if constexpr (requires { connector.SetActuatorForce(first); })
        connector.SetActuatorForce(second);
    if constexpr (std::is_same_v<T, KARMPBushing>) {
        for (int index = 0; index < 6; ++index) {
            connector.SetStiffness(index, index % 2 == 0 ? first : second);
            connector.SetDamping(index, index % 3 == 0 ? first : second);
            connector.SetPreLoadForce(index, index < 3 ? first : second);
        }
    }
    if constexpr (std::is_same_v<T, KARMPForceElement>)
        connector.SetJoint(m_joints[Choose(0U, 1U)]);
}

template <class T>
void FilledEntities::FillMeasurementOf(T& sensor)
{
    if constexpr (requires { sensor.SetJoint(m_joints[0]); })
        if (HasLinks())
            sensor.SetJoint(m_joints[0]);
    if constexpr (requires { sensor.SetConnector(m_connectors[0]); })
        if (HasLinks())
            sensor.SetConnector(m_connectors[0]);
    if constexpr (requires { sensor.SetMotor(m_motors[0]); }) {
        if (HasLinks())
            sensor.SetMotor(m_motors[0]);
        sensor.SetForce(Number(12.5), nullptr, nullptr);
    }
    if constexpr (requires { sensor.SetConstraint(m_constraints[0]); })
        if (HasLinks())
            sensor.SetConstraint(m_constraints[0]);
    if constexpr (requires { sensor.SetIndexBody(0); })
        sensor.SetIndexBody(Choose(1, 2));
    if constexpr (requires { sensor.SetSpatialForce(First(), Second()); })
        sensor.SetSpatialForce({Number(1.5), Number(-2.5), Number(3.5)},
                               {Number(4.5), Number(-5.5), Number(6.5)});
    if constexpr (requires { sensor.SetIndexDOF(0); }) {
        sensor.SetIndexDOF(Choose(4, 5));
        sensor.SetPosition(Number(0.25));
        sensor.SetVelocity(Number(1.75));
        sensor.SetAcceleration(Number(-9.5));
    }
    if constexpr (std::is_same_v<T, KARMPDisplacementSensor2D>) {
        if (HasLinks())
            sensor.SetBody(m_planarBodies[0]);
        sensor.SetDisplacement({{{Number(0.6), Number(0.8)}, {Number(-0.8), Number(0.6)}},
                                {Number(1.25), Number(-2.5)}});
    }
    if constexpr (std::is_same_v<T, KARMPDofSensor>)
        FillFreedoms(sensor);
    if constexpr (std::is_same_v<T, KARMPDofSensor2D>)
        if (HasLinks()) {
            sensor.SetConstrainedBody(m_planarBodies[0]);
            sensor.SetReferenceBody(m_planarBodies[1]);
            sensor.AddTranslation({Number(0.6), Number(0.8)});
            sensor.AddRotation({Number(1.5), Number(-2.5)});
            if (m_filling == Filling::Full)
                sensor.AddTranslation({-0.8, 0.6});
        }
}

// The slots are few: other freedoms are other numbers of them.
void FilledEntities::FillFreedoms(KARMPDofSensor& sensor)
{
    if (!HasLinks())
        return;
    sensor.SetConstrainedBody(m_bodies[0]);
    sensor.SetReferenceBody(m_bodies[1]);
    sensor.AddTranslation(First());
    sensor.AddRotation(Point(), Second());
    sensor.AddScrew(Point(), Third(), Number(0.75));
    if (m_filling == Filling::Full) {
        sensor.AddTranslation(Second());
        sensor.AddScrew(Point(), First(), Number(1.75));
    } else {
        sensor.AddRotation(Point(), First());
    }
}
