// The items of the contact data records. Data is the class of the record.
#pragma once

#include "KARMPContactForceData.h"
#include "KARMPContentLinks.h"

namespace karmp {

template <class Data, auto Member>
constexpr auto ContactBody(std::wstring_view name, std::string_view says,
                           Where where = Where::current())
{
    return Reference<As<Data, Member>, As<Data, Member>>(name, says, where);
}
template <class Data, auto Member>
constexpr auto ContactPoint(std::wstring_view name, std::string_view says,
                            Where where = Where::current())
{
    return NumbersElement<As<Data, Member>>(name, PointNames, says, KARMPPhysicalQuantity::Length,
                                            where);
}
template <class Data, auto Member>
constexpr auto ContactVector(std::wstring_view name, std::string_view says,
                             Quantity quantity = KARMPPhysicalQuantity::NoPhysicalQuantity,
                             Where where = Where::current())
{
    return NumbersElement<As<Data, Member>>(name, VectorNames, says, quantity, where);
}

/// What both records hold.
template <class Data>
constexpr auto ContactGeometry()
{
    return List(
        ContactBody<Data, &Data::firstBody>(L"FirstBody", "The first of the two bodies."),
        ContactBody<Data, &Data::secondBody>(L"SecondBody", "The second of the two bodies."),
        ContactPoint<Data, &Data::firstContactPoint>(L"FirstContactPoint",
                                                     "The point of the first body that touches."),
        ContactPoint<Data, &Data::secondContactPoint>(L"SecondContactPoint",
                                                      "The point of the second body that touches."),
        Number<As<Data, &Data::penetrationDepth>>(L"PenetrationDepth",
                                                  "How deep the bodies are in one another.",
                                                  KARMPPhysicalQuantity::Length),
        ContactVector<Data, &Data::firstNormalVector>(L"FirstNormalVector",
                                                      "The normal of the first body's surface."),
        ContactVector<Data, &Data::secondNormalVector>(L"SecondNormalVector",
                                                       "The normal of the second body's surface."));
}

/// What the record of forces adds.
constexpr auto ContactForces()
{
    using D = KARMPContactForceData;
    constexpr auto Force = KARMPPhysicalQuantity::Force;
    constexpr auto Torque = KARMPPhysicalQuantity::Torque;
    return List(
        ContactVector<D, &D::firstContactForce>(L"FirstContactForce",
                                                "The force that the first body gets.", Force),
        ContactVector<D, &D::secondContactForce>(L"SecondContactForce",
                                                 "The force that the second body gets.", Force),
        ContactVector<D, &D::firstContactTorque>(L"FirstContactTorque",
                                                 "The torque that the first body gets.", Torque),
        ContactVector<D, &D::secondContactTorque>(L"SecondContactTorque",
                                                  "The torque that the second body gets.", Torque),
        ContactVector<D, &D::firstNormalForce>(L"FirstNormalForce",
                                               "The first force's part along the normal.", Force),
        ContactVector<D, &D::secondNormalForce>(L"SecondNormalForce",
                                                "The second force's part along the normal.", Force),
        ContactVector<D, &D::firstFrictionForce>(
            L"FirstFrictionForce", "The first force's part across the normal.", Force),
        ContactVector<D, &D::secondFrictionForce>(
            L"SecondFrictionForce", "The second force's part across the normal.", Force));
}

} // namespace karmp
