// Mistakes that people make, one a document, by their kinds: each gives the one finding that it
// should, where it stands.
#include "PlantedTesting.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace karmp::documents {

namespace {

constexpr const char* Crank = "slider-crank";
constexpr const char* Drive = "motor-drive";
constexpr const char* Gears = "gear-pair";
constexpr const char* Sensors = "instrumented-crank";
constexpr const char* Car = "quarter-car";
constexpr const char* Planar2D = "seven-body-planar";
constexpr const char* Contacts = "collision";

constexpr const char* Angle =
    "<Value>0.5</Value>\n    </Value>\n    <MaxValue>\n     "
    "<HasMaxValue>false</HasMaxValue>\n    </MaxValue>\n    <MinValue>\n     "
    "<HasMinValue>false</HasMinValue>";
constexpr const char* AngleAbove =
    "<Value>^0.5</Value></Value><MaxValue><HasMaxValue>true</HasMaxValue><MaxValue>0.4</MaxValue>"
    "</MaxValue><MinValue><HasMinValue>false</HasMinValue>";
constexpr const char* AngleReversed =
    "<Value>0.5</Value></Value><MaxValue><HasMaxValue>true</HasMaxValue><MaxValue>1</MaxValue>"
    "</MaxValue><MinValue><HasMinValue>true</HasMinValue><MinValue>^2</MinValue>";
// An empty list hangs a body on nothing either.
constexpr const char* LooseBody =
    "  <Bodies>\n<^Body id=\"L\" name=\"L\" isActive=\"yes\" "
    "is_fixed=\"no\"><Position><Translation>"
    "<Vx>0</Vx><Vy>0</Vy><Vz>0</Vz></Translation><Rotation><M1x>1</M1x><M1y>0</M1y><M1z>0</M1z>"
    "<M2x>0</M2x><M2y>1</M2y><M2z>0</M2z><M3x>0</M3x><M3y>0</M3y><M3z>1</M3z></Rotation></Position>"
    "<Velocity><LinearVelocity><Vx>0</Vx><Vy>0</Vy><Vz>0</Vz></LinearVelocity><AngularVelocity>"
    "<Vx>0</Vx><Vy>0</Vy><Vz>0</Vz></AngularVelocity></Velocity><Acceleration><LinearAcceleration>"
    "<Vx>0</Vx><Vy>0</Vy><Vz>0</Vz></LinearAcceleration><AngularAcceleration><Vx>0</Vx><Vy>0</Vy>"
    "<Vz>0</Vz></AngularAcceleration></Acceleration><Weight><Mass>1</Mass><COG><Px>0</Px><Py>0</Py>"
    "<Pz>0</Pz></COG><InertiaMatrix><M1x>0</M1x><M1y>0</M1y><M1z>0</M1z><M2x>0</M2x><M2y>0</M2y>"
    "<M2z>0</M2z><M3x>0</M3x><M3y>0</M3y><M3z>0</M3z></InertiaMatrix></Weight>"
    "<OutOfWorld>false</OutOfWorld><Joints/><Connectors/><ChildrenBodies/></Body>\n";

const std::vector<Planted> Mistakes{
    // Numbers
    {Crank, "<Mass>0.5</Mass>", "<Mass>^0.5.1</Mass>", "invalid-value",
     "more than one decimal point"},
    {Crank, "<Mass>0.5</Mass>", "<Mass>^0,5,1</Mass>", "invalid-value",
     "more than one decimal point"},
    {Crank, "<Mass>0.5</Mass>", "<Mass>^0.5kg</Mass>", "invalid-value", "0.5 is read"},
    {Crank, "<Mass>0.5</Mass>", "<Mass>^0x10</Mass>", "invalid-value", "hexadecimal"},
    {Crank, "<Mass>0.5</Mass>", "<Mass>^-0X10</Mass>", "invalid-value", "hexadecimal"},
    {Crank, "<Mass>0.5</Mass>", "<Mass>^+0x10</Mass>", "invalid-value", "hexadecimal"},
    {Crank, "<Mass>0.5</Mass>", "<Mass>^0.5 0.6</Mass>", "invalid-value", "more than one number"},
    {Crank, "<Mass>0.5</Mass>", "<Mass>^1'000</Mass>", "invalid-value", "thousands"},
    {Crank, "<Mass>0.5</Mass>", "<Mass>^1 000</Mass>", "invalid-value", "thousands"},
    {Crank, "<Mass>0.5</Mass>", "<Mass>^1,000,000</Mass>", "invalid-value", "thousands"},
    {Crank, "<Mass>0.5</Mass>", "<Mass>^1.000.000</Mass>", "invalid-value", "thousands"},
    {Crank, "<Mass>0.5</Mass>", "<Mass>^1_000</Mass>", "invalid-value", "thousands"},
    {Crank, "<Mass>0.5</Mass>", "<Mass>^1\u00A0000</Mass>", "invalid-value", "thousands"},
    {Crank, "<Mass>0.5</Mass>", "<Mass>^1\u2019000</Mass>", "invalid-value", "thousands"},
    {Crank, "<Mass>0.5</Mass>", "<Mass>^1\u202F000</Mass>", "invalid-value", "thousands"},
    {Crank, "<Mass>0.5</Mass>", "<Mass>^1'00</Mass>", "invalid-value", "other signs"},
    {Crank, "<Mass>0.5</Mass>", "<Mass>^1'0000</Mass>", "invalid-value", "other signs"},
    {Crank, "<Mass>0.5</Mass>", "<Mass>^1.000kg</Mass>", "invalid-value", "other signs"},
    {Crank, "<Mass>0.5</Mass>", "<Mass>^1e999</Mass>", "invalid-value", "too large"},
    {Crank, "<Mass>0.5</Mass>", "<Mass>^1,5e999</Mass>", "invalid-value", "too large"},
    {Crank, "<Mass>0.5</Mass>", "<Mass>^heavy</Mass>", "invalid-value", "is no number"},
    {Crank, "<Mass>0.5</Mass>", "<Mass>^0.5e</Mass>", "invalid-value", "other signs"},
    {Crank, "<Mass>0.5</Mass>", "<Mass>^--0.5</Mass>", "invalid-value", "is no number"},
    {Crank, "<Mass>0.5</Mass>", "<^Mass></Mass>", "invalid-value", "there is no number"},
    {Crank, "<Mass>0.5</Mass>", "<Mass>\n  ^O.5</Mass>", "invalid-value", "O.5"},
    {Crank, "<Mass>0.5</Mass>", "<Mass>^0,5</Mass>", "decimal-comma", "read as 0.5"},
    {Crank, "<Mass>0.5</Mass>", "<Mass>^1,000</Mass>", "decimal-comma", "read as 1"},
    {Crank, "<Mass>0.5</Mass>", "<Mass>^0,0</Mass>", "decimal-comma", "read as 0"},
    {Crank, "<Mass>0.5</Mass>", "<Mass>^1e-999</Mass>", "too-small", "read as 0"},
    {Crank, "<Mass>0.5</Mass>", "<Mass>^9e-999</Mass>", "too-small", "read as 0"},
    {Crank, "<Mass>0.5</Mass>", "<Mass>^nan</Mass>", "not-finite", "no number"},
    {Crank, "<Mass>0.5</Mass>", "<Mass>^inf</Mass>", "not-finite", "infinity"},
    {Crank, "<Mass>0.5</Mass>", "<Mass>^-inf</Mass>", "not-finite", "infinity"},
    {Crank, "<Gy>-9.81</Gy>", "<Gy>^-Infinity</Gy>", "not-finite", "infinity"},
    {Crank, "linear_tolerance=\"1e-06\"", "^linear_tolerance=\"1e-06m\"", "invalid-value",
     "1e-06m"},
    {Crank, "linear_tolerance=\"1e-06\"", "^linear_tolerance = '1e-06m'", "invalid-value",
     "1e-06m"},
    {Crank, "linear_tolerance=\"1e-06\"", "^linear_tolerance=\"\"", "invalid-value", "no number"},
    {Gears, "<LinearTermIndex>1</LinearTermIndex>", "<LinearTermIndex>^1.0</LinearTermIndex>",
     "invalid-value", "no whole number"},
    {Gears, "<LinearTermIndex>1</LinearTermIndex>",
     "<LinearTermIndex>^99999999999</LinearTermIndex>", "invalid-value", "too large for 32 bits"},
    {Gears, "<LinearTermIndex>1</LinearTermIndex>",
     "<LinearTermIndex>^+99999999999</LinearTermIndex>", "invalid-value", "too large for 32 bits"},
    // Words
    {Crank, "is_fixed=\"yes\"", "^is_fixed=\"Yes\"", "invalid-value", "did you mean \"yes\"?"},
    {Crank, "is_fixed=\"yes\"", "^is_fixed=\"\"", "invalid-value", "there is no word"},
    {Crank, "is_fixed=\"yes\"", "^is_fixed=\"true\"", "invalid-value", "no or yes was expected"},
    {Crank, "id=\"Rod\" name=\"Rod\" isActive=\"yes\"", "id=\"Rod\" name=\"Rod\" ^isActive=\"1\"",
     "invalid-value", "no is read"},
    {Crank, "bodyOrientation=\"Out\"", "^bodyOrientation=\"out\"", "invalid-value",
     "did you mean \"Out\"?"},
    {Crank, "<OutOfWorld>false<", "<OutOfWorld>^False<", "invalid-value",
     "did you mean \"false\"?"},
    {Crank, "<HasValue>true<", "<HasValue>^ja<", "invalid-value", "neither true nor false"},
    {Crank, "<SelectedAxis0>Z<", "<SelectedAxis0>^z<", "invalid-value", "did you mean \"Z\"?"},
    {Crank, "<PhysicalQuantity>Angle<", "<PhysicalQuantity>^Angel<", "invalid-value",
     "did you mean \"Angle\"?"},
    {Crank, "<Type>Free<", "<Type>^Loose<", "invalid-value", "Free, Constant or Controlled"},
    {Drive, "<TargetType>VelocityTarget<", "<TargetType>^Velocity<", "invalid-value",
     "VelocityTarget"},
    {Planar2D, "is_fixed2D=\"no\"", "^is_fixed2D=\"No\"", "invalid-value", "did you mean \"no\"?"},
    {Contacts, "<RuleType>CollisionReaction<", "<RuleType>^CollisionReation<", "invalid-value",
     "did you mean \"CollisionReaction\"?"},
    // Names
    {Crank, "<Mass>0.5</Mass>", "<Mass>0.5</Mass><^Mas>0.5</Mas>", "unknown-element",
     "did you mean \"Mass\"?"},
    {Crank, "<Body id=\"Rod\" name=\"Rod\" isActive",
     "<Body id=\"Rod\" name=\"Rod\" ^colour=\"red\" isActive", "unknown-attribute", "colour"},
    {Crank, "<Body id=\"Rod\" name=\"Rod\" isActive",
     "<Body id=\"Rod\" name=\"Rod\" ^isactive=\"yes\" isActive", "unknown-attribute",
     "did you mean \"isActive\"?"},
    {Crank, "version=\"R2018.1\"", "^version=\"R2018_1\"", "unknown-version",
     "did you mean \"R2018.1\"?"},
    {Crank, " version=\"R2018.1\"", "", "missing-version", "no version", R"(<^KARMPDocument)"},
    {Crank, "<Mass>0.5</Mass>", "<Mass>0.5</Mass><^Mass>0.6</Mass>", "duplicate-element", "twice"},
    {Crank, "<Weight>\n     <Mass>0.5", "<Weight>^Light\n     <Mass>0.5", "unexpected-text",
     "\"Light\" is not read: only elements stand here"},
    // References
    {Crank,
     "<Geometry id=\"Rod.Crank pin\" name=\"Rod.Crank pin\"/>\n     <Geometry id=\"Rod.Slider "
     "pin\"",
     "<Geometry ^id=\"Rod.Crank pni\" name=\"Rod.Crank pin\"/>\n     <Geometry id=\"Rod.Slider "
     "pin\"",
     "unresolved-reference", "did you mean \"Rod.Crank pin\"?"},
    {Crank, "<Body id=\"Rod\" name=\"Rod\" isActive", "<Body id=\"Rod\" name=\"Bar\" isActive",
     "other-name", "is called \"Bar\", not \"Rod\"", R"(<Body id="Rod" ^name="Rod")"},
    {Drive, "<Motor id=\"Lift motor\" name=\"Lift motor\"/>",
     "<Motor id=\"Lift motor\" ^name=\"Lift\"/>", "other-name", "is called \"Lift motor\""},
    {Drive, "<Motor id=\"Lift motor\" name=\"Lift motor\"/>",
     "<Motor id=\"Lift motor\" name=\"Lift motor\"/><Motor ^id=\"Lift motor\" name=\"Lift "
     "motor\"/>",
     "repeated-reference", "second time"},
    {Drive, "<Motor id=\"Lift motor\" name=\"Lift motor\"/>", "<Motor ^id=\"Lift\" name=\"Lift\"/>",
     "wrong-class", "a KARMPMotor was expected"},
    {Drive,
     "<Constraints>\n     <Constraint id=\"Guide.constraint\" name=\"Guide.constraint\"/>\n    "
     "</Constraints>\n   </Variable>",
     "</Variable>", "one-sided-link", "does not refer back",
     R"(<Variable ^id="Reach" name="Reach"/>)"},
    {Crank, "<OutOfWorld>false</OutOfWorld>\n    <Geometries>\n     <Geometry id=\"Rod.Crank pin\"",
     "<OutOfWorld>false</OutOfWorld><ChildrenBodies><^ChildBody id=\"Rod\"/></ChildrenBodies>\n"
     "    <Geometries>\n     <Geometry id=\"Rod.Crank pin\"",
     "cycle", "its own child"},
    {Crank, "<OutOfWorld>false</OutOfWorld>\n    <Geometries>\n     <Geometry id=\"Rod.Crank pin\"",
     "<OutOfWorld>false</OutOfWorld><AggregatedElements><^Element "
     "id=\"Rod\"/></AggregatedElements>\n"
     "    <Geometries>\n     <Geometry id=\"Rod.Crank pin\"",
     "cycle", "its own child"},
    // Order, indexes, equations
    {Gears, "<LinearTermIndex>1<", "<LinearTermIndex>^5<", "term-order", "number 1, from 0"},
    {Gears, "<LinearTermIndex>0<", "<LinearTermIndex>^-1<", "term-order", "number 0"},
    {Gears,
     "     <LinearTerm><LinearTermIndex>1</LinearTermIndex><LinearTermValue>1</LinearTermValue>"
     "</LinearTerm>\n",
     "", "unlinked-variable", "1 term and 2 linked variables", R"(<^LinearTermDataContainer>)"},
    {Drive, "<Var0>0<", "<Var0>^1<", "mapping-range",
     "position 1 is that of no variable: 1 variable is linked, counted from 0"},
    {Drive, "<Var0>0<", "<Var0>^-1<", "mapping-range", "position -1"},
    {Drive, "<Var0>0</Var0>", "<^Var1>0</Var1>", "mapping-range",
     "the names are Var0 to Var0 for one entry"},
    {Drive, "cos(1.5 * t))", "cos(1.5 * t) + u)", "unlinked-variable",
     "the equation has 2 variables, and 1 is linked", R"(<Value>^0.4 + 0.3)"},
    {Drive, "0.4 + 0.3 * (1 - cos(1.5 * t))", "^0.4 + 0.3 * (1 - cos(1.5 * t)", "equation-text",
     "line 1, column"},
    {Drive, "0.4 + 0.3 * (1 - cos(1.5 * t))", "^0.4 + * t", "equation-text", "line 1, column 7"},
    {Drive, "0.4 + 0.3 * (1 - cos(1.5 * t))", "^t; t", "equation-text", "one was expected"},
    {Gears, "<HasConstantTerm>true<", "<HasConstantTerm>false<", "disabled-value", "not read",
     R"(<^ConstantTermValue>)"},
    {Gears, "<ConstantTermValue>0</ConstantTermValue>", "", "disabled-value", "ConstantTermValue",
     R"(<^ConstantTerm>)"},
    {Crank,
     "<HasMaxValue>false</HasMaxValue>\n    </MaxValue>\n    <MinValue>\n     "
     "<HasMinValue>false</HasMinValue>\n    </MinValue>\n    <MaxLimitRestitution>\n     "
     "<HasMaxLimitRestitution>false</HasMaxLimitRestitution>\n    </MaxLimitRestitution>\n    "
     "<MinLimitRestitution>\n     <HasMinLimitRestitution>false</HasMinLimitRestitution>\n    "
     "</MinLimitRestitution>\n    <PhysicalQuantity>Angle",
     "<HasMaxValue>false</HasMaxValue><^MaxValue>1</MaxValue>\n    </MaxValue>\n    <MinValue>\n   "
     "  "
     "<HasMinValue>false</HasMinValue>\n    </MinValue>\n    <MaxLimitRestitution>\n     "
     "<HasMaxLimitRestitution>false</HasMaxLimitRestitution>\n    </MaxLimitRestitution>\n    "
     "<MinLimitRestitution>\n     <HasMinLimitRestitution>false</HasMinLimitRestitution>\n    "
     "</MinLimitRestitution>\n    <PhysicalQuantity>Angle",
     "disabled-value", "HasMaxValue"},
    // Meaning
    {Crank, "<Mass>0.5</Mass>", "<Mass>^-0.5</Mass>", "negative-mass", "-0.5"},
    {Crank, "<M1x>4.6875e-05</M1x><M1y>0<", "<M1x>4.6875e-05</M1x><M1y>1e-5<", "asymmetric-inertia",
     "\"M2x\"", R"(<^InertiaMatrix><M1x>4.6875e-05)"},
    {Crank, "<M1x>4.6875e-05<", "<M1x>-4.6875e-05<", "negative-inertia", "none is negative",
     R"(<^InertiaMatrix><M1x>-4.6875e-05)"},
    {Crank, "<M1x>4.6875e-05<", "<M1x>4.6875<", "impossible-inertia", "sum of the others",
     R"(<^InertiaMatrix><M1x>4.6875<)"},
    {Crank, "<M1x>0.87758256189<", "<M1x>0.9<", "no-rotation", "has the length",
     R"(<^Rotation><M1x>0.9<)"},
    {Crank, "<Rotation><M1x>1<", "<^Rotation><M1x>1.000002<", "no-rotation",
     "axis 1 has the length"},
    {Crank, "<Rotation><M1x>1<", "<^Rotation><M1x>0.999998<", "no-rotation",
     "axis 1 has the length 0.999998"},
    {Crank, "<Rotation><M1x>1</M1x><M1y>0</M1y><M1z>0</M1z><M2x>0<",
     "<^Rotation><M1x>1</M1x><M1y>0</M1y><M1z>0</M1z><M2x>-2e-6<", "no-rotation",
     "axes 1 and 2 are not at a right angle: the cosine between them is -2e-06"},
    {Crank, "<M2x>-0.479425538604<", "<M2x>0.479425538604<", "no-rotation", "right angle",
     R"(<^Rotation><M1x>0.87758256189)"},
    {Crank, "<M3z>1</M3z></Rotation>\n    </Position>\n    <Velocity>",
     "<M3z>-1</M3z></Rotation>\n    </Position>\n    <Velocity>", "reflection", "left-handed",
     R"(<^Rotation><M1x>1<)"},
    {Crank, "<D1x>1</D1x>", "<D1x>0</D1x>", "null-axis", "length 0", R"(<^Coordinates>)"},
    {Crank, "linear_tolerance=\"1e-06\"", "^linear_tolerance=\"0\"", "no-tolerance", "is 0"},
    {Crank, "angular_tolerance=\"1e-09\"", "^angular_tolerance=\"-1e-09\"", "no-tolerance",
     "positive"},
    {Gears, "    <Equation id=\"Gear.equation\" name=\"Gear.equation\"/>\n", "",
     "coupling-without-equation", "no \"Equation\"", R"(<^Gear id=)"},
    {Drive, "<Position id=\"Wanted reach\" name=\"Wanted reach\"/>",
     "<^Position id=\"Turn motor.maximum\" name=\"Turn motor.maximum\"/>", "wrong-quantity",
     "Torque; Length was expected"},
    {Car, "<PhysicalQuantity>LinearStiffness<", "<PhysicalQuantity>AngularStiffness<",
     "wrong-quantity", "LinearStiffness was expected", R"(<^Stiffness id=)"},
    {Sensors, "<DOFindex>5<", "<DOFindex>^6<", "unknown-freedom", "0 to 5"},
    {Crank, "\n  <Joints>\n", "\n  <Joints>\n<^Revolute id=\"X\" name=\"X\" isActive=\"yes\"/>",
     "too-few-bodies", "no bodies"},
    {Crank, "  <Constraints>\n   <Rev",
     "  <Constraints>\n<^Parallelism id=\"X\" name=\"X\" "
     "isActive=\"yes\"><Alignment>Align</Alignment>"
     "</Parallelism>\n   <Rev",
     "too-few-geometries", "no geometry"},
    {Crank, Angle, AngleAbove, "outside-limits", "above the upper limit 0.4"},
    {Crank, Angle, AngleReversed, "reversed-limits", "2 is above the upper one, 1"},
    {Crank, "  <Bodies>\n", LooseBody, "loose-body", "hangs on nothing"},
    // Syntax
    {Crank, "</Bodies>\n  <Joints>", "</^Bodys>\n  <Joints>", "syntax",
     "</Bodys> stands where <Bodies> is open"},
    {Crank, "     <Mass>0.5</Mass>", "     <Mass>0.5</^Mas>", "syntax",
     "<Mass> is open, since line 56"},
    {Crank, "<Gz>0</Gz></Gravity>", "<Gz>0</^Gravity>", "syntax", "<Gz> is open"},
    {Crank, "version=\"1.0\"", "^version=\"1.1\"", "syntax", "XML 1.1"},
    {Crank, "encoding=\"UTF-8\"", "^encoding=\"ISO-8859-1\"", "encoding", "ISO-8859-1"},
    {Crank, "encoding=\"UTF-8\"", "^encoding=\"windows-1252\"", "encoding", "windows-1252"},
    {Crank, "<Body id=\"Rod\" name=\"Rod\" isActive", "<Body id=\"Rod\" name=\"R^<d\" isActive",
     "syntax", "unescaped"},
    {Crank, "<Body id=\"Rod\" name=\"Rod\" isActive",
     "<Body id=\"Rod\" name=\"Rod\" entityID=\"^&R;od\" isActive", "reference", "&R;"},
    {Crank, "<Body id=\"Rod\" name=\"Rod\" isActive",
     "<Body id=\"Rod\" name=\"Rod\" ^name=\"Rod\" isActive", "duplicate-attribute", "twice"},
};

} // namespace

const std::vector<Planted>& MistakesByKind()
{
    return Mistakes;
}

namespace {

TEST(PlantedMistakes, OfAllKindsAreFoundWhereTheyStand)
{
    ExpectFindings(MistakesByKind());
}

TEST(PlantedMistakes, AreNumbersThatAreTooSmallWithoutAnExponent)
{
    std::string text = ReadDocument(Crank);
    const std::string digits = "0." + std::string(400, '0') + '1';
    const std::string sound = "<Mass>0.5<";
    text.replace(text.find(sound), sound.size(), "<Mass>" + digits + '<');
    const Diagnostics found = FindingsIn(text);
    ASSERT_EQ(found.items.size(), 1U) << AllOf(found);
    EXPECT_EQ(found.items[0].code, Code::TooSmall);
}

TEST(PlantedMistakes, InTheTextOfAnEquationAreErrors)
{
    std::string text = ReadDocument(Drive);
    const std::string sound = "0.4 + 0.3 * (1 - cos(1.5 * t))";
    text.replace(text.find(sound), sound.size(), "0.4 + * t");
    const Diagnostics found = FindingsIn(text);
    ASSERT_EQ(found.items.size(), 1U) << AllOf(found);
    EXPECT_EQ(found.items[0].code, Code::EquationText);
    EXPECT_EQ(found.items[0].severity, Severity::Error);
}

TEST(PlantedMistakes, OfATruncatedDocumentAreCalledSo)
{
    const std::string text = ReadDocument(Crank);
    std::size_t cut = 0;
    for (std::size_t size = text.size() / 20; size + 20 < text.size(); size += text.size() / 20) {
        const Diagnostics found = FindingsIn(text.substr(0, size));
        ASSERT_EQ(found.items.size(), 1U) << AllOf(found);
        EXPECT_EQ(found.items[0].code, Code::Syntax);
        EXPECT_NE(found.items[0].text.find("cut off"), std::string::npos) << AllOf(found);
        ++cut;
    }
    EXPECT_GE(cut, 18U);
}

} // namespace

} // namespace karmp::documents
