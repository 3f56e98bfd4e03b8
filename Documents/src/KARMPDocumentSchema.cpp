#include "KARMPDocumentSchema.h"

#include "KARMPEnumerationTexts.h"
#include "KARMPFamilies.h"
#include "KARMPVersions.h"
#include "QOBClassInfo.h"

#include <unordered_map>
#include <utility>

namespace karmp::documents {

namespace {

using Items = std::vector<Item>;
using Names = std::vector<std::wstring_view>;

Item Make(std::wstring_view name, Kind kind, Presence presence)
{
    Item item;
    item.name = name;
    item.kind = kind;
    item.presence = presence;
    return item;
}

Item Number(std::wstring_view name, Presence presence = Presence::Expected)
{
    return Make(name, Kind::Number, presence);
}

Item Integer(std::wstring_view name, Presence presence = Presence::Expected)
{
    return Make(name, Kind::Integer, presence);
}

Item Bool(std::wstring_view name, Presence presence = Presence::Expected)
{
    return Make(name, Kind::Bool, presence);
}

Item Text(std::wstring_view name, Presence presence = Presence::Expected)
{
    return Make(name, Kind::Text, presence);
}

Item Word(std::wstring_view name, const Names& words, Presence presence = Presence::Expected)
{
    Item item = Make(name, Kind::Word, presence);
    item.words = words;
    return item;
}

template <class Enum>
Item Word(std::wstring_view name, Presence presence = Presence::Expected)
{
    constexpr auto& rows = EnumTexts<Enum>::Rows;
    Item item = Make(name, Kind::Word, presence);
    item.words.assign(rows.begin(), rows.end());
    return item;
}

Item Group(std::wstring_view name, Items elements, Presence presence = Presence::Expected)
{
    Item item = Make(name, Kind::Group, presence);
    item.elements = std::move(elements);
    return item;
}

Items NumberItems(const Names& names, Presence presence = Presence::Expected)
{
    Items items;
    for (const std::wstring_view name : names)
        items.push_back(Number(name, presence));
    return items;
}

Item Numbers(std::wstring_view name, const Names& names, Presence presence = Presence::Expected)
{
    return Group(name, NumberItems(names), presence);
}

Item Reference(std::wstring_view name, std::string_view target)
{
    Item item = Make(name, Kind::Reference, Presence::Optional);
    item.target = target;
    item.attributes = {Text(L"id", Presence::Required), Text(L"name", Presence::Optional)};
    return item;
}

Item Repeated(Item item)
{
    item.repeats = true;
    return item;
}

Item AnyName(Item item)
{
    item.anyName = true;
    return Repeated(std::move(item));
}

Item Since(std::wstring_view version, Item item)
{
    item.since = version;
    return item;
}

Item Until(std::wstring_view version, Item item)
{
    item.until = version;
    return item;
}

// A container of references.
Item References(std::wstring_view name, std::wstring_view item, std::string_view target)
{
    return Group(name, {Repeated(Reference(item, target))}, Presence::Optional);
}

Items operator+(Items left, const Items& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

const Names& VectorNames()
{
    static const Names names{L"Vx", L"Vy", L"Vz"};
    return names;
}

const Names& MatrixNames()
{
    static const Names names{L"M1x", L"M1y", L"M1z", L"M2x", L"M2y",
                             L"M2z", L"M3x", L"M3y", L"M3z"};
    return names;
}

// What every entity reads, then the class's own elements.
Item Entity(std::wstring_view name, Items elements)
{
    Item item = Group(name, Items{References(L"Parameters", L"Parameter", "KARMPParameter"),
                                  References(L"States", L"State", "KARMPState"),
                                  References(L"Outputs", L"Output", "KARMPOutput"),
                                  References(L"AggregatedElements", L"Element", "KARMPEntity")} +
                                elements);
    item.attributes = {Text(L"id", Presence::Required), Text(L"name"),
                       Since(R2017_1, Word(L"isActive", {L"yes", L"no"})),
                       Text(L"entityID", Presence::Optional)};
    return item;
}

Item Body()
{
    Item body =
        Entity(L"Body", {Group(L"Position", {Numbers(L"Translation", VectorNames()),
                                             Numbers(L"Rotation", MatrixNames())}),
                         Group(L"Velocity", {Numbers(L"LinearVelocity", VectorNames()),
                                             Numbers(L"AngularVelocity", VectorNames())}),
                         Group(L"Acceleration", {Numbers(L"LinearAcceleration", VectorNames()),
                                                 Numbers(L"AngularAcceleration", VectorNames())}),
                         Group(L"Weight", {Number(L"Mass"), Numbers(L"COG", {L"Px", L"Py", L"Pz"}),
                                           Numbers(L"InertiaMatrix", MatrixNames())}),
                         Since(R2016_1, Bool(L"OutOfWorld")),
                         References(L"Geometries", L"Geometry", "KARMPGeometry"),
                         References(L"Joints", L"Joint", "KARMPJoint"),
                         References(L"Shapes", L"Shape", "KARMPShape"),
                         References(L"Connectors", L"Connector", "KARMPConnector"),
                         Reference(L"DisplacementSensor", "KARMPDisplacementSensor"),
                         References(L"ImpactedChildrenBodies", L"ImpactedChildBody", "KARMPBody"),
                         References(L"ChildrenBodies", L"ChildBody", "KARMPBody")});
    body.attributes.push_back(Text(L"is_fixed"));
    body.attributes.push_back(Bool(L"floating", Presence::Optional));
    return body;
}

// "Value", "Has..." and the number, as a variable holds its bounds.
Item Bound(std::wstring_view group, std::wstring_view has, std::wstring_view value)
{
    return Since(R2017_0, Group(group, {Bool(has), Number(value, Presence::Optional)}));
}

Item Variable()
{
    Item variable = Entity(
        L"Variable",
        {Bound(L"Value", L"HasValue", L"Value"), Bound(L"MaxValue", L"HasMaxValue", L"MaxValue"),
         Bound(L"MinValue", L"HasMinValue", L"MinValue"),
         Bound(L"MaxLimitRestitution", L"HasMaxLimitRestitution", L"MaxLimitRestitutionValue"),
         Bound(L"MinLimitRestitution", L"HasMinLimitRestitution", L"MinLimitRestitutionValue"),
         Until(R2017_0, Integer(L"PhysicalQuantity")),
         Since(R2017_0, Word<KARMPPhysicalQuantity::Enum>(L"PhysicalQuantity")),
         Since(R2016_0, Until(R2017_0, Integer(L"Type"))),
         Since(R2017_0, Word<KARMPVariableType::Enum>(L"Type")),
         References(L"Constraints", L"Constraint", "KARMPConstraint")});
    for (const std::wstring_view name : {L"value", L"minvalue", L"maxvalue"})
        variable.attributes.push_back(Until(R2017_0, Number(name, Presence::Optional)));
    return variable;
}

Item Value(std::wstring_view name, Items elements)
{
    return Entity(name, Items{Until(R2018_0, Integer(L"PhysicalQuantity", Presence::Required)),
                              Since(R2018_0, Word<KARMPPhysicalQuantity::Enum>(
                                                 L"PhysicalQuantity", Presence::Optional))} +
                            elements);
}

Item Expression()
{
    return Value(L"Expression",
                 {Text(L"Value", Presence::Optional),
                  References(L"Variables", L"Variable", "KARMPVariable"),
                  Group(L"VariableMapping", {AnyName(Integer(L"Var"))}, Presence::Optional)});
}

Item SketchFunction()
{
    Item stream = Text(L"CurveStream");
    stream.attributes = {Integer(L"length")};
    Item segment = Repeated(Group(L"CurveSegment", {stream}));
    segment.attributes = {Word<KARMPCurveOrientation::Enum>(L"curveOrientation"),
                          Number(L"curveLowLimit"), Number(L"curveHighLimit")};
    // The second "Direction" holds the normal under other names.
    const Item direction = Group(
        L"Direction", NumberItems({L"x", L"y", L"z", L"Nx", L"Ny", L"Nz"}, Presence::Optional));
    return Value(
        L"SketchFunction",
        {Group(L"ReferenceAxis", {Numbers(L"Origin", {L"Ox", L"Oy", L"Oz"}), Repeated(direction)}),
         Group(L"CurveSegments", {segment}, Presence::Optional)});
}

// An attribute of an entity: a parameter, a state or an output.
Item Attribute(std::wstring_view name, std::wstring_view children, std::string_view className,
               bool supported)
{
    Item item = Entity(name, {References(L"Values", L"Value", "KARMPValue"),
                              References(children, name, className)});
    Item octets = Group(L"OctetSequence", {}, Presence::Optional);
    octets.attributes = {Text(L"UTF8String")};
    item.elements.push_back(octets);
    if (supported)
        item.elements.push_back(References(L"Supports", L"Support", "KARMPEntity"));
    item.attributes.push_back(Text(L"type", Presence::Optional));
    item.attributes.push_back(Text(L"path", Presence::Optional));
    return item;
}

Item Geometry(std::wstring_view name, Items coordinates)
{
    return Entity(name, {Reference(L"Body", "KARMPBody"),
                         References(L"Constraints", L"Constraint", "KARMPConstraint"),
                         Group(L"Coordinates", std::move(coordinates), Presence::Required)});
}

void AddGeometries(Items& items)
{
    const auto add = [&items](std::wstring_view name, const Names& names) {
        items.push_back(Geometry(name, NumberItems(names)));
    };
    add(L"Point", {L"Ox", L"Oy", L"Oz"});
    add(L"Line", {L"Ox", L"Oy", L"Oz", L"Dx", L"Dy", L"Dz"});
    add(L"Plane", {L"Ox", L"Oy", L"Oz", L"Nx", L"Ny", L"Nz"});
    add(L"Circle", {L"Cx", L"Cy", L"Cz", L"Dx", L"Dy", L"Dz", L"radius"});
    add(L"AxisSystem", {L"Ox", L"Oy", L"Oz", L"D1x", L"D1y", L"D1z", L"D2x", L"D2y", L"D2z", L"D3x",
                        L"D3y", L"D3z"});
    add(L"Cylicone", {L"Ox", L"Oy", L"Oz", L"Dx", L"Dy", L"Dz", L"angle", L"radius"});
    add(L"Sphere", {L"Cx", L"Cy", L"Cz", L"radius"});
    add(L"Torus", {L"Cx", L"Cy", L"Cz", L"Nx", L"Ny", L"Nz", L"major_radius", L"minor_radius"});
    for (const std::wstring_view name : {L"Cirline", L"Parabola"})
        add(name, {L"Cx", L"Cy", L"Cz", L"Dx", L"Dy", L"Dz", L"Nx", L"Ny", L"Nz", L"curvature"});
    for (const std::wstring_view name : {L"Ellipse", L"Hyperbola"}) {
        add(name, {L"Cx", L"Cy", L"Cz", L"Dx", L"Dy", L"Dz", L"Nx", L"Ny", L"Nz", L"major_radius",
                   L"minor_radius"});
    }
    // Written under other names than it is read: both are known, those that are read are missed.
    items.push_back(
        Geometry(L"Cylinder",
                 NumberItems({L"Cx", L"Cy", L"Cz", L"Nx", L"Ny", L"Nz", L"radius"}) +
                     NumberItems({L"Ox", L"Oy", L"Oz", L"Dx", L"Dy", L"Dz"}, Presence::Optional)));
    // The reader looks for the other class's element inside.
    const Items cone = NumberItems({L"Ox", L"Oy", L"Oz", L"Dx", L"Dy", L"Dz", L"angle"});
    Item written = Geometry(L"Cone", cone);
    written.elements.back().presence = Presence::Optional;
    Item inner = Geometry(L"Cylicone", cone);
    inner.presence = Presence::Required;
    written.elements.push_back(inner);
    items.push_back(written);
}

Item Constraint(std::wstring_view name, const Items& elements)
{
    Item parameter =
        Repeated(Group(L"ConstraintParameter",
                       {Group(L"Types", {Integer(L"Type1"), Integer(L"Type2")}),
                        Group(L"Tags", {Integer(L"Tag1"), Integer(L"Tag2"), Integer(L"Tag3")}),
                        Numbers(L"Params", {L"Cx", L"Cy", L"Cz"})}));
    parameter.presence = Presence::Optional;
    return Entity(name, Items{References(L"Geometries", L"Geometry", "KARMPGeometry"),
                              Reference(L"Joint", "KARMPJoint"),
                              References(L"Variables", L"Variable", "KARMPVariable"),
                              References(L"Sensors", L"Sensor", "KARMPSensor"),
                              Group(L"ConstraintParameters", {parameter}, Presence::Optional)} +
                            elements);
}

void AddGeometricConstraints(Items& items)
{
    const Item alignment = Word<KARMPAlignment::Enum>(L"Alignment", Presence::Required);
    for (const std::wstring_view name :
         {L"Coaxiality", L"Normal", L"Parallelism", L"Perpendicularity", L"RollCurveConstraint"})
        items.push_back(Constraint(name, {alignment}));
    items.push_back(
        Constraint(L"Angle", {Word<KARMPHingeMode::Enum>(L"HingeMode", Presence::Required)}));
    items.push_back(Constraint(L"Coincidence",
                               {alignment, Word<KARMPCircleTorusOrientation::Enum>(
                                               L"CircleTorusOrientation", Presence::Required)}));
    items.push_back(Constraint(
        L"Distance", {alignment, Word<KARMPHalfSpace::Enum>(L"HalfSpace", Presence::Required)}));
    items.push_back(Constraint(
        L"Symmetry",
        {alignment, Word<KARMPSelectedPlane::Enum>(L"SelectedPlane", Presence::Required)}));
    items.push_back(
        Constraint(L"Tangency", {alignment, Word<KARMPSurfaceOrientation::Enum>(
                                                L"SurfaceOrientation", Presence::Required)}));
    for (const std::wstring_view name : {L"Concentricity", L"Equation", L"ZeroDoF", L"SixDoF"})
        items.push_back(Constraint(name, {}));
    items.push_back(Constraint(
        L"LinearEquation",
        {Group(L"ConstantTerm",
               {Bool(L"HasConstantTerm"), Number(L"ConstantTermValue", Presence::Optional)},
               Presence::Required),
         Group(L"LinearTermDataContainer",
               {AnyName(Group(L"LinearTerm",
                              {Integer(L"LinearTermIndex"), Number(L"LinearTermValue")},
                              Presence::Optional))},
               Presence::Required)}));
}

Item Kinematic(std::wstring_view name, const Items& elements)
{
    return Constraint(name,
                      Items{Word<KARMPSelectedAxis::Enum>(L"SelectedAxis0", Presence::Required),
                            Word<KARMPSelectedAxis::Enum>(L"SelectedAxis1", Presence::Required),
                            Text(L"FrictionModel", Presence::Optional)} +
                          elements);
}

void AddKinematicConstraints(Items& items)
{
    const auto friction = [](const Names& references) {
        return Group(L"FrictionParameters",
                     NumberItems({L"StaticFriction", L"DynamicFriction", L"StaticSpeedLimit",
                                  L"DynamicSpeedLimit"},
                                 Presence::Optional) +
                         NumberItems(references, Presence::Optional),
                     Presence::Optional);
    };
    const Item cylindrical = friction({L"ReferenceDiameter", L"ReferenceLength"});
    items.push_back(Kinematic(L"CylindricalConstraint", {cylindrical}));
    items.push_back(
        Kinematic(L"PrismaticConstraint", {friction({L"ReferenceWidth", L"ReferenceLength"})}));
    items.push_back(Kinematic(
        L"RevoluteConstraint",
        {friction({L"ReferenceDiameter", L"ReferenceAxialDiameter", L"ReferenceLength"})}));
    items.push_back(Kinematic(L"SphericalConstraint", {friction({L"ReferenceDiameter"})}));
    items.push_back(Kinematic(L"PlanarConstraint", {}));
    items.push_back(Kinematic(L"UniversalConstraint", {}));
    items.push_back(
        Kinematic(L"ScrewConstraint",
                  Items{cylindrical, Text(L"MotionState", Presence::Required)} +
                      NumberItems({L"ScrewTangent", L"RotationOffset", L"TranslationOffset"},
                                  Presence::Required)));
}

void AddJoints(Items& items)
{
    Item body = Repeated(Reference(L"Body", "KARMPBody"));
    body.attributes.push_back(
        Since(R2017_1, Word<KARMPBodyOrientation::Enum>(L"bodyOrientation", Presence::Required)));
    const Items elements{Group(L"Bodies", {body}, Presence::Optional),
                         References(L"Constraints", L"Constraint", "KARMPConstraint")};
    for (const std::wstring_view name :
         {L"Revolute", L"Prismatic", L"Cylindrical", L"Spherical", L"Planar", L"Universal",
          L"Rigid", L"PointCurve", L"PointSurface", L"RollCurve", L"SlideCurve", L"Symmetric",
          L"UserDefined"})
        items.push_back(Entity(name, elements));
    for (const std::wstring_view name : {L"Gear", L"Rack", L"Cable", L"Screw"})
        items.push_back(Entity(name, Items{Reference(L"Equation", "KARMPEquation")} + elements));
}

using EntityItems = std::unordered_map<std::wstring_view, Item>;

EntityItems MakeEntityItems()
{
    Items items{Body(),
                Variable(),
                Value(L"Constant", {Number(L"Value")}),
                Value(L"Boolean", {Text(L"Value")}),
                Value(L"String", {Text(L"Value")}),
                Expression(),
                SketchFunction(),
                Attribute(L"Parameter", L"ChildrenParameters", "KARMPParameter", true),
                Attribute(L"State", L"ChildrenStates", "KARMPState", false),
                Attribute(L"Output", L"ChildrenOutputs", "KARMPOutput", true)};
    AddGeometries(items);
    AddGeometricConstraints(items);
    AddKinematicConstraints(items);
    AddJoints(items);
    EntityItems byName;
    for (Item& item : items) {
        const std::wstring_view name = item.name;
        byName.emplace(name, std::move(item));
    }
    return byName;
}

// All of it is always written. The library keeps what it has where an item is missing, in silence.
Item MakeWorldItem()
{
    const auto global = [](std::wstring_view name, std::string_view target) {
        Item item = Reference(name, target);
        item.presence = Presence::Expected;
        return item;
    };
    Item world = Group(L"World",
                       {Numbers(L"Origin", {L"Ox", L"Oy", L"Oz"}),
                        Numbers(L"Size", {L"SizeX", L"SizeY", L"SizeZ"}),
                        Numbers(L"Gravity", {L"Gx", L"Gy", L"Gz"}),
                        Group(L"Globals", {global(L"GlobalBody", "KARMPBody"),
                                           global(L"GlobalAxisSystem", "KARMPAxisSystem"),
                                           global(L"GlobalTime", "KARMPVariable")})},
                       Presence::Required);
    world.attributes = {Number(L"linear_tolerance"), Number(L"angular_tolerance")};
    for (const Family& family : Families())
        world.elements.push_back(Group(family.element, {}, Presence::Optional));
    return world;
}

} // namespace

const std::vector<Family>& Families()
{
    static const std::vector<Family> families = [] {
        std::vector<Family> made;
        for (const FamilyRecord& record : FamilyRecords())
            made.push_back({record.element, record.info->getName()});
        return made;
    }();
    return families;
}

const Item& WorldItem()
{
    static const Item world = MakeWorldItem();
    return world;
}

const Item* EntityItem(std::wstring_view element)
{
    static const EntityItems items = MakeEntityItems();
    const auto found = items.find(element);
    return found != items.end() ? &found->second : nullptr;
}

} // namespace karmp::documents
