// karmp diff, run as a user does.
#include "EquippedCrank.h"

#include <string>
#include <vector>

namespace karmp::tool {

namespace {

class Diff : public Tool
{
protected:
    /// The outcome for the clean document and one with a part replaced.
    Outcome Compare(const std::string& part, const std::string& other,
                    const std::string& options = {})
    {
        return Run("diff " + m_clean + ' ' +
                   Write("other.xml", With(CleanDocument(), part, other)) + ' ' + options);
    }

    const std::string m_clean = Write("clean.xml", CleanDocument());
};

constexpr const char* Damping = "<Value>0.05</Value>";

TEST_F(Diff, OfADocumentAndItselfSaysNothing)
{
    const Outcome same = Run("diff " + m_clean + ' ' + m_clean);
    EXPECT_EQ(same.code, 0);
    EXPECT_EQ(same.output, "");
}

TEST_F(Diff, PrintsWhatChangedOfAnEntity)
{
    const Outcome changed = Compare(Damping, "<Value>0.06</Value>");
    EXPECT_EQ(changed.code, 1);
    EXPECT_EQ(changed.output, "Constant \"Damping\"\n"
                              "  Value: 0.05 becomes 0.06\n"
                              "1 difference: 0 entities removed, 0 added, 1 changed\n");
}

TEST_F(Diff, PrintsWhereABodyMovedTo)
{
    const Outcome moved = Compare("<Vx>0</Vx>", "<Vx>0.25</Vx>");
    EXPECT_EQ(moved.code, 1);
    ExpectContains(moved.output, "  moved: (0, 0, 0) becomes (0.25, 0, 0)\n");
    EXPECT_EQ(moved.output.find("turned"), std::string::npos);
}

TEST_F(Diff, PrintsSettingsNamesAndWhatOneDocumentAloneHas)
{
    EXPECT_EQ(Compare("<Gy>-9.81</Gy>", "<Gy>0</Gy>").output,
              "World\n  Gravity: (0, -9.81, 0) becomes (0, 0, 0)\n"
              "1 difference: 0 entities removed, 0 added, 0 changed; 1 setting of the world\n");
    ExpectContains(Compare("name=\"Damping\"", "name=\"Friction\"").output,
                   "  renamed: \"Damping\" becomes \"Friction\"\n");
    const std::string removed =
        Run("diff " + m_clean + ' ' + KARMP_EXAMPLE_DOCUMENTS + "/slider-crank.xml --ids").output;
    EXPECT_EQ(removed, "- Boolean \"Visible\" [b1]\n- Constant \"Damping\" [c1]\n"
                       "2 differences: 2 entities removed, 0 added, 0 changed\n");
}

TEST_F(Diff, PrintsOrdersAndWordsOfLinks)
{
    const std::string ground =
        "<Body id=\"GlobalBody\" name=\"GlobalBody\" bodyOrientation=\"Out\"/>";
    const std::string crank = "<Body id=\"Crank\" name=\"Crank\" bodyOrientation=\"In\"/>";
    const std::string gap = "\n     ";
    EXPECT_EQ(Compare(ground + gap + crank, crank + gap + ground).output,
              "Revolute \"Main bearing\"\n  Bodies in another order: Body \"GlobalBody\", Body "
              "\"Crank\" becomes Body \"Crank\", Body \"GlobalBody\"\n"
              "1 difference: 0 entities removed, 0 added, 1 changed\n");
    const std::string out = With(crank, "\"In\"", "\"Out\"");
    ExpectContains(Compare(crank, out).output,
                   "  Bodies/bodyOrientation of Body \"Crank\": \"In\" becomes \"Out\"\n");
    ExpectContains(
        Compare(crank, out, "--json").output,
        "\"item\": \"Bodies/bodyOrientation\", \"target\": {\"class\": \"Body\", \"name\": "
        "\"Crank\", \"id\": \"Crank\"}, \"old\": \"In\", \"new\": \"Out\"}\n");
    const std::string lost = Compare(crank, "", "--json").output;
    ExpectContains(lost, "{\"kind\": \"link-lost\", ");
    ExpectContains(lost, "\"item\": \"Bodies\", \"target\": {\"class\": \"Body\", \"name\": "
                         "\"Crank\", \"id\": \"Crank\"}}");
}

TEST_F(Diff, PrintsSixtyCharactersOfATextAndIdentifiersOnce)
{
    const std::string name = "name=\"Damping\"";
    const std::string sixty(60, 'x');
    ExpectContains(Compare(name, "name=\"" + sixty + '"').output, " becomes \"" + sixty + "\"\n");
    ExpectContains(Compare(name, "name=\"" + sixty + "y\"").output,
                   " becomes \"" + sixty + "...\" (61 characters)\n");
    const std::string nameless = Write("nameless.xml", With(CleanDocument(), name, "name=\"\""));
    const std::string other =
        Write("changed.xml", With(ReadFile(nameless), Damping, "<Value>1</Value>"));
    ExpectContains(Run("diff --ids " + nameless + ' ' + other).output, "Constant [c1]\n");
}

TEST_F(Diff, LeavesOutWhatIsWithinTheTolerance)
{
    const char* const other = "<Value>0.0500001</Value>";
    EXPECT_EQ(Compare(Damping, other, "--tolerance 1e-5").code, 0);
    EXPECT_EQ(Compare(Damping, other, "--tolerance 1e-7").code, 1);
    EXPECT_EQ(Compare(Damping, other, "--floor 1e-6").code, 0);
    EXPECT_EQ(Compare("<Origin><Ox>0<", "<Origin><Ox>1e-13<", "--tolerance 1e-9").code, 0);
    EXPECT_EQ(Compare("<Origin><Ox>0<", "<Origin><Ox>1e-13<", "--tolerance 1e-9 --floor 0").code,
              1);
    EXPECT_EQ(Compare("<Origin><Ox>0<", "<Origin><Ox>1e-13<").code, 1);
    EXPECT_EQ(Compare("<Origin><Ox>0<", "<Origin><Ox>2e-12<", "--tolerance 1e-9").code, 1);
    EXPECT_EQ(Compare(Damping, other, "--tolerance -1").code, 64);
}

TEST_F(Diff, ByNameLeavesIdentifiersAside)
{
    EXPECT_EQ(Compare("id=\"c1\"", "id=\"c2\"").code, 0);
    const auto constant = [](const std::string& id, const std::string& name) {
        return "<Constant id=\"" + id + "\" name=\"" + name + "\" isActive=\"yes\"/>";
    };
    const auto write = [&](const std::string& file, const std::string& constants) {
        return Write(file, With(CleanDocument(), "  </Values>", constants + "  </Values>"));
    };
    const std::string files = write("one.xml", constant("n1", "P") + constant("n2", "Q")) + ' ' +
                              write("two.xml", constant("n1", "Q") + constant("n2", "P"));
    EXPECT_EQ(Run("diff " + files).code, 1);
    EXPECT_EQ(Run("diff --by-name " + files).code, 0);
}

TEST_F(Diff, PrintsJson)
{
    EXPECT_EQ(Compare(Damping, "<Value>nan</Value>", "--json").output,
              "{\n  \"before\": \"" + m_clean + "\",\n  \"after\": \"" + File("other.xml") +
                  "\",\n  \"differences\": [\n"
                  "    {\"kind\": \"changed\", \"before\": {\"class\": \"Constant\", \"name\": "
                  "\"Damping\", \"id\": \"c1\"}, \"after\": {\"class\": \"Constant\", \"name\": "
                  "\"Damping\", \"id\": \"c1\"}, \"item\": \"Value\", \"old\": 0.05, \"new\": "
                  "\"nan\"}\n  ]\n}\n");
    const Outcome same = Run("diff --json " + m_clean + ' ' + m_clean);
    EXPECT_EQ(same.code, 0);
    ExpectContains(same.output, "\"differences\": []\n}\n");
}

TEST_F(Diff, QuietPrintsNothing)
{
    const Outcome changed = Compare(Damping, "<Value>0.06</Value>", "--quiet");
    EXPECT_EQ(changed.code, 1);
    EXPECT_EQ(changed.output, "");
}

TEST_F(Diff, TellsWhatASaveAndALoadChange)
{
    EXPECT_EQ(Run("diff --reloaded " KARMP_EXAMPLE_DOCUMENTS "/slider-crank.xml").code, 0);
    // Documents keep doubles on a grid.
    const std::string fine =
        Write("fine.xml", With(CleanDocument(), Damping, "<Value>0.0500000000000001</Value>"));
    const Outcome changed = Run("diff --reloaded " + fine);
    EXPECT_EQ(changed.code, 1);
    ExpectContains(changed.output, "  Value: 0.0500000000000001 becomes 0.049999999999999996\n");
    ExpectContains(Run("diff --json --reloaded " + fine).output, "\"after\": null");
}

TEST_F(Diff, TellsOfABodyThatBecamePlanarWithItsOwnNumbers)
{
    const std::string documents = KARMP_EXAMPLE_DOCUMENTS;
    const Outcome outcome =
        Run("diff " + documents + "/seven-body.xml " + documents + "/seven-body-planar.xml");
    ExpectContains(
        outcome.output,
        "Body \"K1\"\n  class: \"KARMPBody\" becomes \"KARMPBody2D\"\n"
        "  moved: (0, 0, 0) becomes (0, 0)\n"
        "  turned: (0.998096302207, -0.06167472351, 0, 0.06167472351, 0.998096302207, 0, "
        "0, 0, 1) becomes (0.998096302207, -0.06167472351, 0.06167472351, "
        "0.998096302207)\n");
}

TEST_F(Diff, ComparesCollisionLayers)
{
    const std::string scene = KARMP_EXAMPLE_DOCUMENTS "/collision.xml";
    const std::string gate = "<Entity id=\"Gate\" name=\"Gate\"/>";
    const std::string wall = "<Entity id=\"Wall\" name=\"Wall\"/>";
    const Outcome other =
        Run("diff " + scene + ' ' + Write("other.xml", With(ReadFile(scene), gate, wall)));
    EXPECT_EQ(other.code, 1);
    ExpectContains(other.output, "CollisionLayer \"Moving parts\"\n");
    ExpectContains(other.output, "  + Entities: Body \"Wall\"\n");
    ExpectContains(Run("diff " + scene + " --reloaded").output,
                   "- CollisionLayer \"Moving parts\"\n");
}

TEST_F(Diff, SaysWhichLayersItCannotCompare)
{
    const std::string layer = "   <CollisionLayer id=\"L7\" name=\"Lonely\" isActive=\"yes\">"
                              "<RuleType>CollisionReaction</RuleType></CollisionLayer>\n";
    const std::string scene = KARMP_EXAMPLE_DOCUMENTS "/collision.xml";
    const std::string end = "  </Interactions>\n";
    const std::string file = Write("lonely.xml", With(ReadFile(scene), end, layer + end));
    const Outcome outcome = Run("diff " + scene + ' ' + file);
    EXPECT_EQ(outcome.output, "karmp: 1 collision layer of " + file +
                                  " cannot be compared: no relation of layers refers to it\n");
    EXPECT_EQ(outcome.code, 0);
    const std::string two =
        Write("two.xml", With(ReadFile(file), end, With(layer, "\"L7\"", "\"L8\"") + end));
    for (const std::string& files : {m_clean + ' ' + two, two + ' ' + m_clean})
        ExpectContains(Run("diff " + files).output,
                       "karmp: 2 collision layers of " + two +
                           " cannot be compared: no relation of layers refers to them\n");
}

TEST_F(Diff, EndsWithTwoWhereADocumentIsNotRead)
{
    const Outcome missing = Run("diff " + m_clean + ' ' + File("missing.xml"));
    EXPECT_EQ(missing.code, 2);
    ExpectContains(missing.output, "missing.xml");
    EXPECT_EQ(Run("diff " + File("missing.xml") + ' ' + m_clean).code, 2);
    const std::string broken = Write("broken.xml", "<KARMPDocument>");
    EXPECT_EQ(Run("diff " + broken + ' ' + broken).code, 2);
    EXPECT_EQ(Run("diff " + m_clean).code, 64);
    EXPECT_EQ(Run("diff --reloaded " + m_clean + ' ' + m_clean).code, 64);
}

TEST_F(Diff, SaysThatADocumentHasProblems)
{
    const std::string doubled =
        Write("doubled.xml", With(CleanDocument(), "id=\"c1\"", "id=\"b1\""));
    const Outcome outcome = Run("diff " + m_clean + ' ' + doubled);
    EXPECT_EQ(outcome.code, 1);
    ExpectContains(outcome.output, "the document has 1 problem;");
    ExpectContains(outcome.output, "- Boolean \"Visible\"\n");
}

TEST_F(Equipped, DiffTellsWhatChangedOfEachFamily)
{
    struct Change
    {
        std::string part;
        std::string other;
        std::string told;
    };
    const std::string torque = "<Torque><Vx id=\"ratio\" name=\"ratio\"/>";
    const std::vector<Change> changes{
        {torque, "<Torque><Vx id=\"k\" name=\"k\"/>",
         "SpatialForceActuator \"push\"\n  Torque/Vx: Constant \"ratio\" becomes Constant \"k\"\n"},
        {"<AttachedMotors><Motor id=\"motor\" name=\"motor\"/></AttachedMotors>", "",
         "Driver \"driver\"\n  - AttachedMotors: Motor \"motor\"\n"},
        {"class=\"Tyre\"", "class=\"Wheel\"",
         "ForceElement \"tyre\"\n  class: \"Tyre\" becomes \"Wheel\"\n"},
        {"<StiffnessTx id=\"k\" name=\"k\"/>", "",
         "Bushing \"bushing\"\n  - StiffnessTx: Constant \"k\"\n"},
        {"<PenetrationDepth>0.5<", "<PenetrationDepth>0.75<",
         "CollisionSensor \"contacts\"\n  ContactGeometryDataContainer/ContactGeometryData[2]/"
         "PenetrationDepth: 0.5 becomes 0.75\n"},
        {"<SensorBody id=\"Slider\" name=\"Slider\"/>", "<SensorBody id=\"Rod\" name=\"Rod\"/>",
         "ProximitySensor \"near\"\n  ProximitySensorData/SensorBody: Body \"Slider\" becomes "
         "Body \"Rod\"\n"},
        {"<Collidable id=\"Rod\" name=\"Rod\"/>", "<Collidable id=\"Crank\" name=\"Crank\"/>",
         "CollisionRule \"rule\"\n  - Collidables: Body \"Rod\"\n  + Collidables: Body "
         "\"Crank\"\n"}};
    for (const Change& change : changes) {
        const std::string other =
            Write("changed.xml", With(EquippedDocument(), change.part, change.other));
        ExpectContains(Run("diff " + m_file + ' ' + other).output, change.told);
    }
}

} // namespace

} // namespace karmp::tool
