#pragma once

#include "KARMPDocuments.h"
#include "KARMPEntities.h"
#include "MassProperties.h"

#include <cmath>
#include <iostream>
#include <string>

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
        body->SetFloating(false);
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

    /// A joint of two bodies that a constraint between a geometry of each realises; the body of the
    /// first is the parent.
    template <class Joint, class Constraint>
    QOBSharedHandle<Joint> AddJoint(const std::wstring& name,
                                    const QOBSharedHandle<KARMPGeometry>& first,
                                    const QOBSharedHandle<KARMPGeometry>& second)
    {
        const auto joint = File<KARMPJoint>(Joint::create(name), name);
        const auto constraint =
            File<KARMPConstraint>(Constraint::create(name), name + L".constraint");
        joint->AddConstraint(constraint);
        constraint->SetJoint(joint);
        for (const auto& geometry : {first, second}) {
            constraint->LinkToGeometry(geometry);
            geometry->LinkToConstraint(constraint);
            QOBSharedHandle<KARMPBody> body;
            geometry->GetBody(body);
            joint->LinkToBody(body, geometry == first ? KARMPBodyOrientation::Out
                                                      : KARMPBodyOrientation::In);
            body->LinkToJoint(joint);
        }
        return joint;
    }

    /// A variable of a constraint of a joint.
    QOBSharedHandle<KARMPVariable> AddVariable(const std::wstring& name,
                                               KARMPPhysicalQuantity::Enum quantity, double value,
                                               const QOBSharedHandle<KARMPJoint>& joint)
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

private:
    template <class T>
    QOBSharedHandle<T> Attach(const QOBSharedHandle<T>& geometry,
                              const QOBSharedHandle<KARMPBody>& body, const std::wstring& name)
    {
        File<KARMPGeometry>(geometry, body->getEntityName() + L'.' + name);
        geometry->SetBody(body);
        body->AddGeometry(geometry);
        return geometry;
    }

    QOBSharedHandle<QOBBasicWorld> m_basicWorld;
    QOBSharedHandle<KARMPWorld> m_world;
    QOBSharedHandle<KARMPBody> m_ground;
};

/// The position of a body.
inline KARMathTransformation PositionOf(const KARMPBody& body)
{
    KARMathTransformation position;
    body.GetPosition(position);
    return position;
}

/// The entity of a family with that name; null when there is none.
template <class Family>
QOBSharedHandle<Family> FindByName(const KARMPWorld& world, const std::wstring& name)
{
    for (int index = 0; index < world.Count<Family>(); ++index) {
        QOBSharedHandle<Family> entity;
        if (world.Get<Family>(index, entity) == KARSuccess && entity->getEntityName() == name)
            return entity;
    }
    return {};
}

/// Prints what a save or a load had to say; true when there was nothing.
inline bool IsQuiet(const karmp::documents::Diagnostics& messages)
{
    for (const auto& message : messages.items)
        std::cerr << karmp::documents::Format(message) << '\n';
    return messages.items.empty();
}
