// Changes of documents that are no mistakes, next to those that are, and what the mistakes that are
// planted by hand cover.
#include "PlantedTesting.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace karmp::documents {

namespace {

constexpr const char* Winch = "winch";

const std::vector<Harmless> Changes{
    // Numbers
    {Winch, "<Mass>4<", "<Mass>4.0<"},
    {Winch, "<Mass>4<", "<Mass>+4<"},
    {Winch, "<Mass>4<", "<Mass>4.<"},
    {Winch, "<Mass>4<", "<Mass>.4e1<"},
    {Winch, "<Mass>4<", "<Mass>4E0<"},
    {Winch, "<Mass>4<", "<Mass>  4\n<"},
    {Winch, "<Mass>4<", "<Mass>\0114<"},
    {Winch, "<Mass>4<", "<Mass>4e+00<"},
    {Winch, "<Mass>4<", "<Mass>04<"},
    {Winch, "<Mass>4<", "<Mass>40e-1<"},
    {Winch, "<Mass>4<", "<Mass>0<"},
    {Winch, "<Mass>4<", "<Mass>0e5<"},
    {Winch, "<Var1>1<", "<Var1> 1 <"},
    {Winch, "<DOFindex>5<", "<DOFindex>+5<"},
    {Winch, "<DOFindex>5<", "<DOFindex>3<"},
    {Winch, "<Gz>-9.81<", "<Gz>9.81<"},
    {Winch, "<angle>0.3<", "<angle>-0.3<"},
    {Winch, "<curvature>2<", "<curvature>-2<"},
    {Winch, "<Px>0<", "<Px>-0<"},
    {Winch, "<Value>1000<", "<Value>1e308<"},
    {Winch, "<Value>1000<", "<Value>-1000<"},
    // Ranges at their ends
    {Winch, "<radius>0.05<", "<radius>0<"},
    {Winch, "<Restitution>0.4<", "<Restitution>1<"},
    {Winch, "<Restitution>0.4<", "<Restitution>0<"},
    {Winch, "<PoissonCoef1>0.3<", "<PoissonCoef1>0.5<"},
    {Winch, "<PoissonCoef1>0.3<", "<PoissonCoef1>-1<"},
    {Winch, "<Damping>100<", "<Damping>0<"},
    {Winch, "<minor_radius>0.02<", "<minor_radius>0.5<"},
    {Winch, "<MinValue>-10<", "<MinValue>0.5<"},
    {Winch, "<MaxValue>10<", "<MaxValue>0.5<"},
    {Winch,
     "<MaxValue>5</MaxValue>\n    </MaxValue>\n    <MinValue>\n     "
     "<HasMinValue>true</HasMinValue>\n     <MinValue>0<",
     "<MaxValue>2</MaxValue></MaxValue><MinValue><HasMinValue>true</HasMinValue><MinValue>2<"},
    {Winch, "<MaxLimitRestitutionValue>0.4<", "<MaxLimitRestitutionValue>1<"},
    {Winch, R"(Clearance="0.05")", R"(Clearance="0")"},
    {Winch, "<StaticFriction>0.2<", "<StaticFriction>0<"},
    {Winch, "<Rotation><M1x>1<", "<Rotation><M1x>1.0000009<"},
    {Winch, "<InertiaMatrix><M1x>0.02<", "<InertiaMatrix><M1x>0.01<"},
    {Winch, "<InertiaMatrix><M1x>0.01</M1x><M1y>0</M1y><M2x>0</M2x>",
     "<InertiaMatrix><M1x>0.01</M1x><M1y>1e-3</M1y><M2x>1e-3</M2x>"},
    // Words and flags
    {Winch, R"(isActive="yes")", R"(isActive="no")"},
    {Winch, R"(is_fixed="yes")", R"(is_fixed="no")"},
    {Winch, "<OutOfWorld>false<", "<OutOfWorld>NO<"},
    {Winch, "<HasValue>true<", "<HasValue>1<"},
    {Winch, "<Value>FALSE<", "<Value>TRUE<"},
    {Winch, "<SelectedAxis0>Z<", "<SelectedAxis0>XNeg<"},
    {Winch, "<Type>Free<", "<Type>Constant<"},
    {Winch, R"(UseClearance="true")", R"(UseClearance="0")"},
    {Winch, "<TargetType>VelocityTarget<", "<TargetType>NotSpecified<"},
    {Winch, "<RuleType>DefaultCollision<", "<RuleType>NoCollisionNoReaction<"},
    {Winch, "<Behavior>CompressionFree<", "<Behavior>ExtensionLock<"},
    // Texts and names
    {Winch, "<Value>winch<", "<Value><![CDATA[winch]]><"},
    {Winch, "<Value>winch<", "<Value>&#119;in&#x63;h<"},
    {Winch, "<Value>winch<", "<Value>&#00000000000119;in&#x0000000000000063;h<"},
    {Winch, "<Value>winch<", "<Value>win<!-- a - b -->ch<"},
    {Winch, "<Value>winch<", "<Value>&lt;&amp;&gt;<"},
    {Winch, "<Value>winch<", "<Value>Gr\303\266\303\237e \360\237\223\217<"},
    {Winch, "<Value>winch</Value>", "<Value/>"},
    {Winch, R"(name="Trace")", R"(name="")"},
    {Winch, R"(name="Trace")", R"(name="&quot;Spur&quot; &lt;1&gt;")"},
    {Winch, R"(name="Trace")", "name='Trace'"},
    {Winch, R"(id="Trace" name="Trace")", R"(id="Trace" name="Trace" entityID="a.b")"},
    {Winch, R"(name="Trace")", R"(name="a > b")"},
    {Winch, R"(<Target id="Load"/>)", R"(<Target id="Load" name="Load"/>)"},
    {Winch, R"(<Target id="Load"/>)", R"(<Target id="Load" name="Load"></Target>)"},
    {Winch, R"(<Target id="Load"/>)", "<Target\n id = \"Load\" />"},
    {Winch, R"(<Target id="Load"/>)", R"(<Target id="&#76;oad"/>)"},
    // References and lists
    {Winch, R"(<ImpactedChildrenBodies><ImpactedChildBody id="Frame"/></ImpactedChildrenBodies>)",
     ""},
    {Winch, "<Joints><Joint id=\"Guide\"/><Joint id=\"Winch\"/></Joints>\n",
     "<Joints><Joint id=\"Guide\"/><Joint "
     "id=\"Winch\"/></Joints><ImpactedChildrenBodies><ImpactedChildBody "
     "id=\"Hook\"/></ImpactedChildrenBodies>\n"},
    {Winch, R"(<Step id="Hold"/>)", R"(<Step id="Hold"/><Step id="Hold"/>)"},
    {Winch, R"(<Steps><Step id="Raise"/><Step id="Hold"/><Step id="Raise"/></Steps>)", ""},
    {Winch, R"(<Steps><Step id="Raise"/><Step id="Hold"/><Step id="Raise"/></Steps>)", "<Steps/>"},
    {Winch, R"(<Outputs><Output id="O1"/><Output id="O2"/></Outputs>)",
     R"(<Outputs><Output id="O2"/><Output id="O1"/></Outputs>)"},
    {Winch, R"(<Element id="Load"/></Ag)", R"(<Element id="Load"/><Element id="Hook"/></Ag)"},
    {Winch, R"(categoryID="place"/>)",
     R"(categoryID="place"><AggregatedElements><Element id="Hook"/><Element id="Trace"/></AggregatedElements></GenericEntity>)"},
    {Winch, R"(<Values><Value id="Push"/></Values>)", "<Values/>"},
    {Winch, R"( numberOfDof="3")", ""},
    {Winch, R"(<Translations number="1">)", "<Translations>"},
    {Winch, "   <DebugEntity id=\"Trace\" name=\"Trace\" isActive=\"yes\"/>\n", ""},
    {Winch, "    <PreLoadForce id=\"Pull\"/>\n", ""},
    {Winch, "    <DampingTy id=\"Damping\"/>\n", ""},
    // Equations
    {Winch, "10 * sin(2 * t) + 3 * a", "3 * a - t"},
    {Winch, "10 * sin(2 * t) + 3 * a", "a / (1 + t)"},
    {Winch, "10 * sin(2 * t) + 3 * a", "-t + a"},
    {Winch, "10 * sin(2 * t) + 3 * a", "t * a "},
    {Winch, "10 * sin(2 * t) + 3 * a", "2 * (t + a) * (t - a)"},
    {Winch, "    <VariableMapping><Var0>0</Var0><Var1>1</Var1></VariableMapping>\n", ""},
    {Winch, "<Var0>0</Var0><Var1>1</Var1>", "<Var1>1</Var1><Var0>0</Var0>"},
    {Winch, "<Var0>0</Var0><Var1>1</Var1>", "<Var0>1</Var0><Var1>0</Var1>"},
    {Winch, "<LinearTermValue>-4<", "<LinearTermValue>0<"},
    // The text of the document
    {Winch, "<DebugEntities>", "<!-- for inspection --><DebugEntities>"},
    {Winch, "<DebugEntities>", "<?page break?><DebugEntities>"},
    {Winch, "</KARMPDocument>\n", "</KARMPDocument>"},
    {Winch, "</KARMPDocument>\n", "</KARMPDocument>\n\n<!-- the end -->\n"},
    {Winch, R"(<?xml version="1.0" encoding="UTF-8"?>)", R"(<?xml version="1.0"?>)"},
    {Winch, R"(encoding="UTF-8")", R"(encoding="utf-8")"},
    {Winch, R"(encoding="UTF-8")", R"(encoding="us-ascii")"},
    {Winch, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n", ""},
    {Winch, R"(encoding="UTF-8")", R"(encoding="UTF-8" standalone="yes")"},
    {Winch, "  </Bodies>\n", "  </Bodies>\n  <Shapes/>\n"},
    {Winch, "  </Bodies>\n", "  </Bodies>\n\n\n\011\011"},
    {Winch, R"(<String id="Label")", "<String\011id=\"Label\""},
    {Winch, "  <Sensors>\n", "  <Sensors ><!----> \n"},
    {Winch, "</Globals>", "</Globals >"},
    {Winch, R"(<GlobalTime id="Time"/>)", R"(<GlobalTime id="Time"></GlobalTime>)"},
    // Older versions
    {"slider-crank@R2016.0", R"(minvalue="0" maxvalue="0")", R"(minvalue="0" maxvalue="1")"},
    {"slider-crank@R2016.1", R"(value="0.5" minvalue="0" maxvalue="0")",
     R"(value="7" minvalue="0" maxvalue="0")"},
    {"slider-crank@R2015x.0", R"( value="0.5" minvalue="0" maxvalue="0")", ""},
    {"slider-crank@R2016.1", "<Type>0<", "<Type>2<"},
    {"slider-crank@R2016.0", "<PhysicalQuantity>7<", "<PhysicalQuantity>0<"},
    {"slider-crank@R2017.1", R"(bodyOrientation="In")", R"(bodyOrientation="Out")"},
};

TEST(HarmlessChanges, GiveNoFinding)
{
    for (const Harmless& change : Changes) {
        SCOPED_TRACE(std::string(change.document) + ": " + change.after);
        std::string text = ReadDocument(change.document);
        const std::string before = change.before;
        const std::size_t at = text.find(before);
        ASSERT_NE(at, std::string::npos) << before;
        const Diagnostics found = FindingsIn(text.replace(at, before.size(), change.after));
        EXPECT_TRUE(found.items.empty()) << AllOf(found);
    }
}

TEST(HarmlessChanges, AreMadeToDocumentsWithoutAFinding)
{
    std::set<std::string> documents;
    for (const std::vector<Planted>* mistakes :
         {&MistakesByKind(), &MistakesInFamilies(), &MistakesInVersions()})
        for (const Planted& planted : *mistakes)
            documents.insert(planted.document);
    for (const Harmless& change : Changes)
        documents.insert(change.document);
    for (const std::string& document : documents) {
        const Diagnostics found = FindingsIn(ReadDocument(document));
        EXPECT_TRUE(found.items.empty()) << document << '\n' << AllOf(found);
    }
}

/// Codes that no mistake in a document of ordinary size gives, and why.
struct Excepted
{
    const char* reason;
    std::vector<Code> codes;
};
const std::vector<Excepted> NotOfDocuments{
    {"of files", {Code::CannotOpen, Code::CannotRead, Code::CannotWrite}},
    {"of limits, which have tests of their own",
     {Code::TooLarge, Code::TooDeep, Code::TooManyNodes, Code::NameTooLong,
      Code::TooManyDiagnostics}},
    {"of saving", {Code::InvalidName, Code::NotReadBack}},
    {"of writing onto the document, which tests of the tool do", {Code::NotKept}},
    {"of scene graphs of lines, which tests of shapes make", {Code::RepWithoutMesh}},
    {"of a world that holds the entities already", {Code::AlreadyInWorld}},
    {"of failures that the check cannot explain",
     {Code::FailedCheck, Code::InvalidCast, Code::OutOfMemory, Code::Failed}},
};

TEST(PlantedMistakes, AreOfEachCode)
{
    std::set<std::string_view> planted;
    std::size_t count = 0;
    for (const std::vector<Planted>* mistakes :
         {&MistakesByKind(), &MistakesInFamilies(), &MistakesInVersions()})
        for (const Planted& mistake : *mistakes) {
            planted.insert(mistake.code);
            ++count;
        }
    for (const Excepted& excepted : NotOfDocuments)
        for (const Code code : excepted.codes)
            EXPECT_TRUE(planted.insert(CodeText(code)).second) << CodeText(code);
    for (const Finding& finding : Findings())
        EXPECT_EQ(planted.count(finding.text), 1U) << finding.text;
    EXPECT_GE(count, 300U);
    EXPECT_GE(Changes.size(), 100U);
}

} // namespace

} // namespace karmp::documents
