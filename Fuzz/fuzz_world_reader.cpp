// A world read from a tree made of the input's bytes: each byte opens an element, closes one, or
// gives the present one an attribute or a value, all out of the words that the library knows.
#include "KARMPDeserializer.h"
#include "KARMPReadCurves.h"
#include "KARMPSerializer.h"
#include "KARMPWorld.h"
#include "QOBBasicWorld.h"
#include "QOBException.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace {

constexpr std::wstring_view Elements[] = {L"Globals",
                                          L"GlobalBody",
                                          L"GlobalAxisSystem",
                                          L"GlobalTime",
                                          L"Bodies",
                                          L"Joints",
                                          L"Constraints",
                                          L"Geometries",
                                          L"Variables",
                                          L"Values",
                                          L"Shapes",
                                          L"Sensors",
                                          L"Connectors",
                                          L"Body",
                                          L"Point",
                                          L"Line",
                                          L"Circle",
                                          L"AxisSystem",
                                          L"Cylinder",
                                          L"Cone",
                                          L"Cylicone",
                                          L"Variable",
                                          L"Constant",
                                          L"Boolean",
                                          L"String",
                                          L"Expression",
                                          L"SketchFunction",
                                          L"Revolute",
                                          L"Screw",
                                          L"Gear",
                                          L"Coincidence",
                                          L"Distance",
                                          L"Angle",
                                          L"LinearEquation",
                                          L"RevoluteConstraint",
                                          L"ScrewConstraint",
                                          L"Equation",
                                          L"ZeroDoF",
                                          L"Geometry",
                                          L"Joint",
                                          L"Constraint",
                                          L"Position",
                                          L"Translation",
                                          L"Rotation",
                                          L"Velocity",
                                          L"LinearVelocity",
                                          L"Weight",
                                          L"COG",
                                          L"Vx",
                                          L"Vy",
                                          L"Vz",
                                          L"Coordinates",
                                          L"Ox",
                                          L"Dx",
                                          L"Cx",
                                          L"Nx",
                                          L"radius",
                                          L"Value",
                                          L"HasValue",
                                          L"PhysicalQuantity",
                                          L"Type",
                                          L"Alignment",
                                          L"ReferenceAxis",
                                          L"Direction",
                                          L"CurveSegments",
                                          L"CurveSegment",
                                          L"CurveStream",
                                          L"VariableMapping",
                                          L"Var0",
                                          L"Children",
                                          L"ChildrenBodies",
                                          L"ChildBody",
                                          L"ImpactedChildrenBodies",
                                          L"ImpactedChildBody",
                                          L"AggregatedElements",
                                          L"Element",
                                          L"Parameters",
                                          L"Parameter",
                                          L"ConstraintParameters",
                                          L"ConstraintParameter",
                                          L"ConstantTerm",
                                          L"LinearTermDataContainer",
                                          L"LinearTerm",
                                          L"FrictionParameters",
                                          L"SelectedAxis0",
                                          L"MotionState",
                                          L"Origin",
                                          L"Size",
                                          L"Curve",
                                          L"Surface",
                                          L"SurfaceStream"};

constexpr std::wstring_view Attributes[] = {L"id",
                                            L"name",
                                            L"isActive",
                                            L"entityID",
                                            L"is_fixed",
                                            L"floating",
                                            L"bodyOrientation",
                                            L"length",
                                            L"curveLowLimit",
                                            L"curveHighLimit",
                                            L"curveOrientation",
                                            L"value",
                                            L"linear_tolerance"};

constexpr std::wstring_view Texts[] = {L"",       L"1",          L"2",    L"3",     L"4",
                                       L"yes",    L"no",         L"true", L"false", L"0.5",
                                       L"-1e308", L"1,5",        L"nan",  L"In",    L"Align",
                                       L"x + y",  L"a = b * (c", L"TRUE", L"S0FS",  L"Length"};

class Node : public KARMPDeserializer
{
public:
    using KARMPDeserializer::AddAttributeValue;
    using KARMPDeserializer::AddElement;
    using KARMPDeserializer::SetId;
    using KARMPDeserializer::SetValue;
    std::wstring Location() const override { return {}; }

    Node* Add(std::wstring_view name)
    {
        auto* child = new Node;
        child->SetId(name);
        child->SetVersion(Version());
        AddElement(name, child);
        return child;
    }
};

class Writer : public KARMPSerializer
{
public:
    KARStatus Render(std::wstring&) const override { return KARNotImplemented; }
    KARStatus Save(const char*) const override { return KARNotImplemented; }

protected:
    KARMPSerializer* CreateChildElement() override { return new Writer; }
};

/// Gives one byte after the other, then zeros.
class Input
{
public:
    Input(const std::uint8_t* data, std::size_t size) : m_next(data), m_end(data + size) {}
    bool IsAtEnd() const { return m_next == m_end; }
    std::uint8_t Byte() { return IsAtEnd() ? std::uint8_t{0} : *m_next++; }
    template <std::size_t N>
    std::wstring_view Pick(const std::wstring_view (&words)[N])
    {
        return words[Byte() % N];
    }

private:
    const std::uint8_t* m_next;
    const std::uint8_t* m_end;
};

void Fill(Node& root, Input& input)
{
    constexpr std::size_t MaximumDepth = 200;
    std::vector<Node*> path{root.Add(L"World")};
    while (!input.IsAtEnd()) {
        Node& node = *path.back();
        switch (input.Byte() % 6) {
        case 0:
        case 1:
            if (path.size() < MaximumDepth)
                path.push_back(node.Add(input.Pick(Elements)));
            break;
        case 2:
            if (path.size() > 1)
                path.pop_back();
            break;
        case 3:
            node.AddAttributeValue(input.Pick(Attributes), input.Pick(Texts));
            break;
        case 4:
            node.SetValue(input.Pick(Texts));
            break;
        default:
            // Most elements of a list have an identifier of their own.
            node.AddAttributeValue(L"id", input.Pick(Texts));
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::array Versions{L"R2018.1", L"R2016.0", L"R2017.0", L""};
    Input input(data, size);
    Node root;
    root.SetVersion(Versions[input.Byte() % Versions.size()]);
    Fill(root, input);

    const auto basicWorld = QOBBasicWorld::create(L"fuzz");
    const auto world = KARMPWorld::create(basicWorld);
    try {
        const karmp::documents::ReadCurves curves(*world);
        static_cast<void>(world->Deserialize(&root)); // most inputs hold no world
    } catch (const QOBEInvalidCast&) {
        // A reference to an entity of another class: the one exception that reading throws.
    }
    Writer writer;
    static_cast<void>(world->Serialize(&writer)); // sought are crashes
    return 0;
}
