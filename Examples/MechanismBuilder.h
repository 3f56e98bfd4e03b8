#pragma once

#include "KARMPEntities.h"
#include "MassProperties.h"
#include "MechanismQueries.h"

#include <cmath>
#include <string>
#include <type_traits>

/// An axis system along the axes of its body, whose third direction, that of a joint's motion, is
/// the body's x, y or z.
inline KARMathAxis AxisAlongX(const KARMathPoint& origin)
{
    return {origin, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}, {1.0, 0.0, 0.0}};
}
inline KARMathAxis AxisAlongY(const KARMathPoint& origin)
{
    return {origin, {0.0, 0.0, 1.0}, {1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}};
}
inline KARMathAxis AxisAlongZ(const KARMathPoint& origin)
{
    return {origin, {1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};
}

/// Builds mechanisms for the examples by docs/conventions.md: adds each entity to its registry and
/// to the basic world, and sets both halves of every link.
class MechanismBuilder
{
public:
    /// An empty mechanism in metres, under a gravity in m/s2.
    MechanismBuilder(const std::wstring& name, const KARMathVector& gravity)
        : m_basicWorld(QOBBasicWorld::create(name)), m_world(KARMPWorld::create(m_basicWorld))
    {
        m_world->SetLengthUnit(KARMPUnit::Meter);
        m_world->SetLinearTolerance(1e-6);
        m_world->SetGravity(gravity);
        m_world->GetGlobalBody(m_ground);
        QOBSharedHandle<KARMPAxisSystem> axisSystem;
        QOBSharedHandle<KARMPVariable> time;
        m_world->GetGlobalAxisSystem(axisSystem);
        m_world->GetGlobalTime(time);
        m_ground->SetIdentifier(L"GlobalBody");
        axisSystem->SetIdentifier(L"GlobalAxisSystem");
        time->SetIdentifier(L"GlobalTime");
        m_basicWorld->addLogicalChild(m_ground);
        m_basicWorld->addLogicalChild(axisSystem);
        m_basicWorld->addLogicalChild(time);
    }

    const QOBSharedHandle<KARMPWorld>& World() const { return m_world; }
    /// The body that everything else stands on.
    const QOBSharedHandle<KARMPBody>& Ground() const { return m_ground; }

    /// Names an entity and adds it to the registry of its family and to the basic world.
    template <class Family, class T>
    QOBSharedHandle<T> File(const QOBSharedHandle<T>& entity, const std::wstring& name)
    {
        entity->setEntityName(name);
        entity->SetIdentifier(name);
        m_basicWorld->addLogicalChild(entity);
        m_world->Add<Family>(entity);
        return entity;
    }

    /// A body at a position.
    QOBSharedHandle<KARMPBody> AddBody(const std::wstring& name,
                                       const KARMathTransformation& position)
    {
        const auto body = File<KARMPBody>(KARMPBody::create(name), name);
        body->SetPosition(position, 0);
        return body;
    }

    /// A body in the plane z = 0, turned about z.
    QOBSharedHandle<KARMPBody> AddBody(const std::wstring& name, const KARMathPoint& origin,
                                       double angle)
    {
        const double c = std::cos(angle);
        const double s = std::sin(angle);
        const KARMath3x3Matrix rotation({c, s, 0.0}, {-s, c, 0.0}, {0.0, 0.0, 1.0});
        return AddBody(name, KARMathTransformation(rotation, origin - KARMathPoint()));
    }

    /// Gives a geometry to a body, both in space or both in a plane.
    template <class T, class Body>
    QOBSharedHandle<T> Attach(const QOBSharedHandle<T>& geometry, const QOBSharedHandle<Body>& body,
                              const std::wstring& name)
    {
        File<KARMPGeometry>(geometry, body->getEntityName() + L'.' + name);
        geometry->SetBody(body);
        body->AddGeometry(geometry);
        return geometry;
    }

    /// An axis system of the body, in body axes.
    QOBSharedHandle<KARMPAxisSystem> AddAxisSystem(const QOBSharedHandle<KARMPBody>& body,
                                                   const std::wstring& name,
                                                   const KARMathAxis& axis)
    {
        const auto axisSystem = KARMPAxisSystem::create(name);
        axisSystem->SetAxisSystem(axis);
        return Attach(axisSystem, body, name);
    }

    /// A point of the body.
    QOBSharedHandle<KARMPPoint> AddPoint(const QOBSharedHandle<KARMPBody>& body,
                                         const std::wstring& name, const KARMathPoint& position)
    {
        const auto point = KARMPPoint::create(name);
        point->SetPoint(position);
        return Attach(point, body, name);
    }

    /// An axis system or a point of the body that stands where it is told in the world.
    QOBSharedHandle<KARMPAxisSystem> AddAxisSystemAt(const QOBSharedHandle<KARMPBody>& body,
                                                     const std::wstring& name,
                                                     const KARMathAxis& axis)
    {
        return AddAxisSystem(body, name, IntoBody(*body) * axis);
    }
    QOBSharedHandle<KARMPPoint> AddPointAt(const QOBSharedHandle<KARMPBody>& body,
                                           const std::wstring& name, const KARMathPoint& position)
    {
        return AddPoint(body, name, IntoBody(*body) * position);
    }

    /// A joint of two bodies that a constraint between a geometry of each realises; the body of the
    /// first is the parent.
    template <class Joint, class Constraint, class First, class Second>
    QOBSharedHandle<Joint> AddJoint(const std::wstring& name, const QOBSharedHandle<First>& first,
                                    const QOBSharedHandle<Second>& second)
    {
        const auto joint = File<KARMPJoint>(Joint::create(name), name);
        const auto constraint =
            File<KARMPConstraint>(Constraint::create(name), name + L".constraint");
        joint->AddConstraint(constraint);
        constraint->SetJoint(joint);
        LinkSide<Joint>(joint, *constraint, first, KARMPBodyOrientation::Out);
        LinkSide<Joint>(joint, *constraint, second, KARMPBodyOrientation::In);
        return joint;
    }

    /// A joint whose frames both stand on an axis system in the world.
    template <class Joint, class Constraint>
    QOBSharedHandle<Joint> AddJointAt(const std::wstring& name,
                                      const QOBSharedHandle<KARMPBody>& parent,
                                      const QOBSharedHandle<KARMPBody>& child,
                                      const KARMathAxis& axis)
    {
        return AddJoint<Joint, Constraint>(name, AddAxisSystemAt(parent, name, axis),
                                           AddAxisSystemAt(child, name, axis));
    }

    /// A variable of a constraint of a joint.
    template <class Joint>
    QOBSharedHandle<KARMPVariable> AddVariable(const std::wstring& name,
                                               KARMPPhysicalQuantity::Enum quantity, double value,
                                               const QOBSharedHandle<Joint>& joint)
    {
        const auto variable = File<KARMPVariable>(KARMPVariable::create(name), name);
        variable->SetPhysicalQuantity(quantity);
        variable->SetValue(value);
        QOBSharedHandle<KARMPConstraint> constraint;
        if (joint->GetConstraint(0, constraint) == KARSuccess) {
            variable->LinkToConstraint(constraint);
            constraint->LinkToVariable(variable);
        }
        return variable;
    }

    /// A number of the mechanism, which any number of entities may share.
    QOBSharedHandle<KARMPConstant> AddConstant(const std::wstring& name,
                                               KARMPPhysicalQuantity::Enum quantity, double number)
    {
        const auto constant = File<KARMPValue>(KARMPConstant::create(name), name);
        constant->SetPhysicalQuantity(quantity);
        constant->SetValue(number, {});
        return constant;
    }

    /// A motor on a variable, with a greatest force or torque. The motor makes a value of the
    /// number, which is named and added to the basic world as any entity.
    QOBSharedHandle<KARMPMotor> AddMotor(const std::wstring& name,
                                         const QOBSharedHandle<KARMPVariable>& variable,
                                         double maximum)
    {
        const auto motor = File<KARMPActuator>(KARMPMotor::create(name), name);
        motor->SetVariable(variable);
        variable->SetType(KARMPVariableType::Controlled);
        motor->SetMaxForce(maximum);
        QOBSharedHandle<KARMPValue> value;
        motor->GetMaxForce(value);
        File<KARMPValue>(value, name + L".maximum");
        return motor;
    }

    /// A motor that turns or pulls at a velocity.
    QOBSharedHandle<KARMPMotor> AddMotor(const std::wstring& name,
                                         const QOBSharedHandle<KARMPVariable>& variable,
                                         double maximum, double velocity)
    {
        const auto motor = AddMotor(name, variable, maximum);
        motor->SetVelocity(velocity);
        QOBSharedHandle<KARMPValue> value;
        motor->GetVelocity(value);
        File<KARMPValue>(value, name + L".velocity");
        return motor;
    }

    /// A connector between a geometry of each of its bodies.
    template <class Connector>
    QOBSharedHandle<Connector> AddConnector(const std::wstring& name,
                                            const QOBSharedHandle<KARMPGeometry>& first,
                                            const QOBSharedHandle<KARMPGeometry>& second)
    {
        const auto connector = File<KARMPConnector>(Connector::create(name), name);
        for (const auto& geometry : {first, second}) {
            QOBSharedHandle<KARMPBody> body;
            geometry->GetBody(body);
            if (geometry == first)
                connector->SetFirstBody(body);
            else
                connector->SetSecondBody(body);
            body->LinkToConnector(connector);
            connector->LinkToGeometry(geometry);
        }
        return connector;
    }

    /// A linear spring between two points: stiffness in N/m, rest length in m, damping in N s/m.
    QOBSharedHandle<KARMPLinearSpring> AddSpring(const std::wstring& name,
                                                 const QOBSharedHandle<KARMPPoint>& first,
                                                 const QOBSharedHandle<KARMPPoint>& second,
                                                 double stiffness, double restLength,
                                                 double damping)
    {
        const auto spring = AddConnector<KARMPLinearSpring>(name, first, second);
        using Quantity = KARMPPhysicalQuantity;
        spring->SetStiffness(
            AddConstant(name + L".stiffness", Quantity::LinearStiffness, stiffness));
        spring->SetRestLength(AddConstant(name + L".rest length", Quantity::Length, restLength));
        spring->SetDampingCoefficient(
            AddConstant(name + L".damping", Quantity::LinearDamping, damping));
        KARMathPoint attachment;
        first->GetPoint(attachment);
        spring->SetFirstAttachment(attachment);
        second->GetPoint(attachment);
        spring->SetSecondAttachment(attachment);
        return spring;
    }

private:
    /// The links between a joint, its constraint, and a geometry of one of its bodies.
    template <class Joint, class Geometry>
    static void LinkSide(const QOBSharedHandle<Joint>& joint, KARMPConstraint& constraint,
                         const QOBSharedHandle<Geometry>& geometry,
                         KARMPBodyOrientation::Enum orientation)
    {
        using Body =
            std::conditional_t<std::is_base_of_v<KARMPJoint2D, Joint>, KARMPBody2D, KARMPBody>;
        constraint.LinkToGeometry(geometry);
        geometry->LinkToConstraint(QOBSharedHandle<KARMPConstraint>(&constraint));
        QOBSharedHandle<Body> body;
        geometry->GetBody(body);
        joint->LinkToBody(body, orientation);
        body->LinkToJoint(joint);
    }
    static KARMathTransformation IntoBody(const KARMPBody& body)
    {
        KARMathTransformation inverse;
        PositionOf(body).ComputeInverse(inverse);
        return inverse;
    }

    QOBSharedHandle<QOBBasicWorld> m_basicWorld;
    QOBSharedHandle<KARMPWorld> m_world;
    QOBSharedHandle<KARMPBody> m_ground;
};
