// Stored objects for the tests, and the steps of saving and loading.
#pragma once

#include "KARBody.h"
#include "KARCylinderSurface.h"
#include "KAREllipseArc.h"
#include "KARGMKStream.h"
#include "KARGeometricFactory.h"
#include "KARIGMKObjectsLoad.h"
#include "KARIGMKObjectsSave.h"
#include "KARLineCurve.h"
#include "KARLinearTransfoSurface.h"
#include "KARNurbsCurve.h"
#include "KARNurbsSurface.h"
#include "KARPlaneSurface.h"
#include "KARPolylineCurve.h"

#include <cmath>
#include <cstdint>
#include <memory>
#include <numbers>
#include <vector>

namespace samples {

constexpr double Pi = std::numbers::pi;

using ByteVector = std::vector<std::uint8_t>;

struct Releaser
{
    void operator()(KARBaseUnknown* object) const { object->Release(); }
};

using FactoryPointer = std::unique_ptr<KARGeometricFactory, Releaser>;

inline FactoryPointer NewFactory()
{
    return FactoryPointer(KARGeometricFactory::Create());
}

inline KARLineCurve* Line(KARGeometricFactory& factory)
{
    return factory.Make<KARLineCurve>(KARMathLine({1, 2, 3}, {0, 2, 0}), -1.0, 4.0);
}

inline KARCircleArc* Circle(KARGeometricFactory& factory)
{
    return factory.Make<KARCircleArc>(KARMathPoint(1, 1, 0), KARMathVector(1, 0, 0),
                                      KARMathVector(0, 0, 1), 2.0, 0.0, 2.0 * Pi);
}

inline KAREllipseArc* Ellipse(KARGeometricFactory& factory)
{
    return factory.Make<KAREllipseArc>(KARMathPoint(0, 0, 5), KARMathVector(0, 1, 0),
                                       KARMathVector(0, 0, 1), 3.0, 1.5, -0.5, 1.0);
}

inline KARPolylineCurve* Polyline(KARGeometricFactory& factory)
{
    return factory.Make<KARPolylineCurve>(
        std::vector<KARMathPoint>{{0, 0, 0}, {2, 0, 0}, {2, 3, 0}, {2, 3, 4}});
}

/// A quarter of the unit circle about the origin, as a rational spline.
inline KARNurbsCurve* QuarterCircle(KARGeometricFactory& factory)
{
    return factory.Make<KARNurbsCurve>(2, std::vector<double>{0, 0, 0, 1, 1, 1},
                                       std::vector<KARMathPoint>{{1, 0, 0}, {1, 1, 0}, {0, 1, 0}},
                                       std::vector<double>{1, std::numbers::sqrt2 / 2, 1});
}

inline KARPlaneSurface* Plane(KARGeometricFactory& factory)
{
    return factory.Make<KARPlaneSurface>(KARMathPoint(0, 0, 1), KARMathVector(1, 0, 0),
                                         KARMathVector(0, 1, 0), KARSurLimits{-1, 1, -2, 2});
}

inline KARCylinderSurface* Cylinder(KARGeometricFactory& factory)
{
    return factory.Make<KARCylinderSurface>(KARMathPoint(1, 0, 0), KARMathVector(1, 0, 0),
                                            KARMathVector(0, 1, 0), 2.0, KARSurLimits{0, Pi, 0, 5});
}

/// A quarter of the unit cylinder about the z axis, from z = 0 to 2: the circle along u.
inline KARNurbsSurface* QuarterCylinder(KARGeometricFactory& factory)
{
    const double w = std::numbers::sqrt2 / 2;
    return factory.Make<KARNurbsSurface>(
        KARSplineBasis{2, {0, 0, 0, 1, 1, 1}}, KARSplineBasis{1, {0, 0, 2, 2}},
        std::vector<KARMathPoint>{{1, 0, 0}, {1, 0, 2}, {1, 1, 0}, {1, 1, 2}, {0, 1, 0}, {0, 1, 2}},
        std::vector<double>{1, 1, w, w, 1, 1});
}

inline KARLinearTransfoSurface* Moved(KARGeometricFactory& factory, KARSurface* surface)
{
    return factory.Make<KARLinearTransfoSurface>(
        surface, KARMathTransformation({{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}}, {10, 0, 0}));
}

/// A disc: a plane within one circle, of which both halves are edges, and its back.
inline KARBody* Lens(KARGeometricFactory& factory)
{
    KARBody* body = factory.Make<KARBody>();
    KARCircleArc* circle = Circle(factory);
    KARPlaneSurface* plane = Plane(factory);
    body->AddVertex({3, 1, 0});
    body->AddVertex({-1, 1, 0});
    body->AddEdge({circle, 0.0, Pi, 0, 1});
    body->AddEdge({circle, Pi, 2.0 * Pi, 1, 0});
    body->AddFace({plane, false, {{{0, false}, {1, false}}}});
    body->AddFace({Moved(factory, plane), true, {{{0, false}, {1, false}}}});
    return body;
}

/// One object of each kind.
inline KARListPtrKARIGMKObject OneOfEach(KARGeometricFactory& factory)
{
    KARListPtrKARIGMKObject list;
    list.Append(Line(factory));
    list.Append(Circle(factory));
    list.Append(Ellipse(factory));
    list.Append(Polyline(factory));
    list.Append(QuarterCircle(factory));
    list.Append(Plane(factory));
    list.Append(Cylinder(factory));
    list.Append(QuarterCylinder(factory));
    list.Append(Moved(factory, Plane(factory)));
    list.Append(Lens(factory));
    return list;
}

inline KARListPtrKARIGMKObject ListOf(KARBaseUnknown* object)
{
    KARListPtrKARIGMKObject list;
    list.Append(object);
    return list;
}

/// The bytes that the list is saved to; none when saving fails.
inline ByteVector Save(const KARListPtrKARIGMKObject& list)
{
    KARGMKStream stream(0, KARGMKStream::ObjectStream, 0, nullptr);
    if (KARIGMKObjectsSave(stream).Save(list, nullptr) != KARSuccess)
        return {};
    ByteVector bytes(stream.GetLength());
    std::size_t copied = 0;
    stream.GetMemoryCopy(bytes.data(), bytes.size(), copied);
    bytes.resize(copied);
    return bytes;
}

/// What Load gives of bytes, with the factory that owns it.
struct Loaded
{
    KARStatus status = KARSuccess;
    FactoryPointer factory;
    KARListPtrKARIGMKObject list;
};

inline Loaded Load(const ByteVector& bytes)
{
    Loaded loaded;
    KARGMKStream stream(bytes.data(), bytes.size());
    KARGeometricFactory* factory = nullptr;
    loaded.status = KARIGMKObjectsLoad(stream).Load(factory, loaded.list, 0);
    loaded.factory.reset(factory);
    return loaded;
}

} // namespace samples
