// Part files on bodies, and bodies as glTF.
#include "JsonText.h"
#include "KAR3DMeshRep.h"
#include "KAR3DRepWalk.h"
#include "KARMP3DRep.h"
#include "KARMPBody.h"
#include "KARMPDocuments.h"
#include "KARMPWorld.h"
#include "ToolFixture.h"

#include <cstdint>
#include <cstring>
#include <optional>
#include <vector>

namespace karmp::tool {

namespace {

constexpr const char* Tetrahedron = KARMP_TEST_PARTS "/tetrahedron.stl";

constexpr const char* Obj = R"(mtllib part.mtl
usemtl red
v 0 0 0
v 1 0 0
v 0 1 0
v 0 0 1
f 1 3 2
f 1 2 4
f 1 4 3
f 2 3 4
)";

constexpr const char* Materials = "newmtl red\nKd 1 0 0\nd 0.5\n";

constexpr const char* Ply = R"(ply
format ascii 1.0
element vertex 4
property float x
property float y
property float z
element face 4
property list uchar int vertex_indices
end_header
0 0 0
1 0 0
0 1 0
0 0 1
3 0 2 1
3 0 1 3
3 0 3 2
3 1 2 3
)";

// The same triangle as two nodes, one of them moved by 10 along x.
constexpr const char* Gltf = R"({"asset": {"version": "2.0"}, "scene": 0,
"scenes": [{"nodes": [0, 1]}],
"nodes": [{"mesh": 0}, {"mesh": 0, "translation": [10, 0, 0]}],
"meshes": [{"primitives": [{"attributes": {"POSITION": 0}, "material": 0}]}],
"materials": [{"pbrMetallicRoughness": {"baseColorFactor": [0, 0.5, 1, 1]}}],
"accessors": [{"bufferView": 0, "componentType": 5126, "count": 3, "type": "VEC3",
"min": [0, 0, 0], "max": [1, 1, 0]}],
"bufferViews": [{"buffer": 0, "byteOffset": 0, "byteLength": 36}],
"buffers": [{"byteLength": 36, "uri":
"data:application/octet-stream;base64,AAAAAAAAAAAAAAAAAACAPwAAAAAAAAAAAAAAAAAAgD8AAAAA"}]})";

std::string BinaryStl(std::uint32_t announced, int triangles)
{
    std::string bytes(80, ' ');
    const auto append = [&bytes](const auto& value) {
        bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
    };
    append(announced);
    for (int index = 0; index < triangles; ++index) {
        const auto height = static_cast<float>(index);
        for (const float number :
             {0.F, 0.F, 1.F, 0.F, 0.F, height, 1.F, 0.F, height, 0.F, 1.F, height})
            append(number);
        append(std::uint16_t{0});
    }
    return bytes;
}

/// What the bodies of a document look like, as counts and as the box around all of it.
struct Looks
{
    std::size_t shapes = 0;
    std::size_t vertices = 0;
    std::size_t triangles = 0;
    KARMathPoint high;
    std::optional<KARColour> colour;
};

class ShapeCommand : public Tool
{
protected:
    Outcome Add(const std::string& part, const std::string& more = {}) const
    {
        return Run("shape " + m_document + " --body Crank --add '" + part + "' -o " +
                   File("out.xml") + ' ' + more);
    }

    /// What the body has in a document, by links that both sides have.
    static Looks LooksOf(const std::string& file, const wchar_t* name)
    {
        Looks looks;
        documents::LoadOptions options;
        options.check = documents::CheckLevel::Mechanism;
        const auto loaded = documents::LoadFile(file, options);
        EXPECT_TRUE(loaded.diagnostics.items.empty());
        for (int index = 0; index < loaded.world->GetBodyCount(); ++index) {
            QOBSharedHandle<KARMPBody> body;
            loaded.world->Get<KARMPBody>(index, body);
            if (body->getEntityName() != name)
                continue;
            for (int number = 0; number < body->GetLinkedShapeCount(); ++number, ++looks.shapes) {
                QOBSharedHandle<KARMPShape> shape;
                QOBSharedHandle<KARMPBody> back;
                body->GetLinkedShape(number, shape);
                EXPECT_EQ(shape->GetLinkedBody(0, back), KARSuccess);
                EXPECT_EQ(back, body);
                Count(*QOBSharedHandle<KARMP3DRep>(shape)->Get3DRep(), looks);
            }
        }
        return looks;
    }

    std::string m_document = Write("in.xml", CleanDocument());

private:
    static void Count(const KAR3DRep& rep, Looks& looks)
    {
        KARForEach3DRep(
            rep,
            [&looks](const KAR3DRepPlace& place) {
                const auto* const mesh = dynamic_cast<const KAR3DMeshRep*>(place.rep);
                if (mesh == nullptr)
                    return;
                looks.vertices += mesh->GetVertices().size();
                looks.triangles += mesh->GetTriangles().size();
                for (const KARMathPoint& point : mesh->GetVertices())
                    looks.high = {std::max(looks.high.GetX(), point.GetX()),
                                  std::max(looks.high.GetY(), point.GetY()),
                                  std::max(looks.high.GetZ(), point.GetZ())};
                if (place.colour != nullptr)
                    looks.colour = *place.colour;
            });
    }
};

TEST_F(ShapeCommand, PutsPartsOfAllFormatsOnABody)
{
    Write("part.mtl", Materials);
    for (const std::string& part :
         {std::string(Tetrahedron), Write("part.obj", Obj), Write("part.ply", Ply),
          Write("PART.STL", ReadFile(Tetrahedron))}) {
        SCOPED_TRACE(part);
        const Outcome outcome = Add(part);
        EXPECT_EQ(outcome.code, 0);
        EXPECT_EQ(outcome.output, "Body \"Crank\": 3DRep \"" + fs::path(part).stem().string() +
                                      "\" with 4 triangles\n");
        const Looks looks = LooksOf(File("out.xml"), L"Crank");
        EXPECT_EQ(looks.shapes, 1U);
        EXPECT_EQ(looks.vertices, 4U) << "corners are shared";
        EXPECT_EQ(looks.triangles, 4U);
        EXPECT_EQ(looks.high, KARMathPoint(1, 1, 1));
        EXPECT_EQ(looks.colour.has_value(), part.ends_with("obj"));
    }
}

TEST_F(ShapeCommand, KeepsColoursAndTheNodesOfAPart)
{
    Write("part.mtl", Materials);
    EXPECT_EQ(Add(Write("part.obj", Obj)).code, 0);
    EXPECT_EQ(LooksOf(File("out.xml"), L"Crank").colour, (KARColour{1, 0, 0, 0.5}));
    EXPECT_EQ(Add(Write("part.gltf", Gltf)).code, 0);
    const Looks looks = LooksOf(File("out.xml"), L"Crank");
    EXPECT_EQ(looks.triangles, 2U);
    EXPECT_EQ(looks.high, KARMathPoint(11, 1, 0));
    EXPECT_EQ(looks.colour, (KARColour{0, 0.5, 1, 1}));
}

TEST_F(ShapeCommand, ReadsBinaryStlAndScalesLengths)
{
    const std::string part = Write("part.stl", BinaryStl(3, 3));
    EXPECT_EQ(Add(part, "--scale 0.5").code, 0);
    const Looks looks = LooksOf(File("out.xml"), L"Crank");
    EXPECT_EQ(looks.triangles, 3U);
    EXPECT_EQ(looks.high, KARMathPoint(0.5, 0.5, 1));
    for (const std::string scale : {"0", "-1", "nan", "inf", "1e300", "x"})
        EXPECT_EQ(Add(part, "--scale " + scale).code, 64) << scale;
}

TEST_F(ShapeCommand, AddsToWhatABodyHasUnderAnotherIdentifier)
{
    EXPECT_EQ(Add(Tetrahedron).code, 0);
    const std::string line = "shape " + File("out.xml") + " --body Crank --add " + Tetrahedron;
    const Outcome again = Run(line + " --json -o " + File("twice.xml"));
    EXPECT_EQ(again.code, 0);
    ExpectContains(again.output, "\"id\": \"Crank.tetrahedron-2\"");
    ExpectContains(again.output, "\"triangles\": 4");
    EXPECT_EQ(LooksOf(File("twice.xml"), L"Crank").shapes, 2U);
    // Onto the document itself, with a copy of what it was.
    const std::string before = ReadFile(File("out.xml"));
    EXPECT_EQ(Run(line + " --backup -o " + File("out.xml")).code, 0);
    EXPECT_EQ(LooksOf(File("out.xml"), L"Crank").shapes, 2U);
    EXPECT_EQ(ReadFile(File("out.xml~")), before);
}

TEST_F(ShapeCommand, WritesToStandardOutputWithoutAnOutput)
{
    EXPECT_EQ(Add(Tetrahedron).code, 0);
    EXPECT_TRUE(RunQuietly("shape " + m_document + " --body Crank --add " + Tetrahedron).output ==
                ReadFile(File("out.xml")));
}

TEST_F(ShapeCommand, LeavesNumbersAsTheyAre)
{
    const std::string number = "0.40000000000000013";
    const std::string four = ReadFile(KARMP_EXAMPLE_DOCUMENTS "/four-bar.xml");
    const std::string file = Write("four.xml", With(four, "<Mass>0.4<", "<Mass>" + number + '<'));
    EXPECT_EQ(
        Run("shape " + file + " --body Crank --add " + Tetrahedron + " -o " + File("out.xml")).code,
        0);
    ExpectContains(ReadFile(File("out.xml")), "<Mass>" + number + "</Mass>");
    const Outcome diff = Run("diff " + file + ' ' + File("out.xml"));
    ExpectContains(diff.output, "0 entities removed, 1 added");
    EXPECT_EQ(diff.output.find(" becomes "), std::string::npos) << diff.output;
}

TEST_F(ShapeCommand, KeepsTheCollisionLayersThatRelationsAreAbout)
{
    const Outcome added = Run("shape " KARMP_EXAMPLE_DOCUMENTS "/collision.xml --body Gate --add " +
                              std::string(Tetrahedron) + " -o " + File("out.xml"));
    EXPECT_EQ(added.code, 0) << added.output;
    EXPECT_EQ(Run("check " + File("out.xml")).code, 0);
    ExpectContains(ReadFile(File("out.xml")), "<CollisionLayer id=\"Fixed parts\"");
}

TEST_F(ShapeCommand, RefusesDamagedPartsWithoutWriting)
{
    const std::vector<std::string> parts{
        File("missing.stl"),
        File(""),
        "/dev/zero",
        Write("empty.stl", ""),
        Write("text.stl", "no part at all"),
        Write("cut.stl", ReadFile(Tetrahedron).substr(0, 90)),
        Write("cut-later.stl", ReadFile(Tetrahedron).substr(0, 330)),
        Write("cut-binary.stl", BinaryStl(3, 3).substr(0, 200)),
        Write("announced.stl", BinaryStl(0xFFFFFFFFU, 1)),
        Write("points.obj", "v 0 0 0\nv 1 0 0\n"),
        Write("corner.obj", "v 0 0 0\nv 1 0 0\nf 1 2 9\n"),
        Write("nan.obj", "v nan 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n"),
        Write("corner.ply", With(Ply, "3 1 2 3", "3 1 2 9")),
        Write("announced.ply", With(Ply, "vertex 4", "vertex 4000000000")),
        Write("cut.ply", std::string(Ply).substr(0, std::string(Ply).size() - 3)),
        Write("cut-before.ply", std::string(Ply).substr(0, std::string(Ply).size() - 30)),
        Write("none.gltf", "{}"),
        Write("cut.gltf", std::string(Gltf).substr(0, 200)),
        Write("count.gltf", With(Gltf, "\"count\": 3", "\"count\": 300")),
        Write("loop.gltf", With(Gltf, "{\"mesh\": 0}", "{\"children\": [0]}")),
        Write("deep.gltf", std::string(1'000'000, '[')),
        Write("zeros.glb", std::string(100, '\0')),
        Write("other.xml", CleanDocument()),
        Write("part", ReadFile(Tetrahedron)),
    };
    const auto before = Files();
    for (const std::string& part : parts) {
        const Outcome outcome = Add(part, "--force");
        EXPECT_EQ(outcome.code, 2) << part << '\n' << outcome.output;
        ExpectContains(outcome.output, "karmp: cannot read ");
    }
    EXPECT_EQ(Files(), before);
}

TEST_F(ShapeCommand, ReadsNoFileOutsideThePartsFolder)
{
    std::string bytes(36, '\0');
    const float one = 1.0F;
    std::memcpy(bytes.data() + 12, &one, sizeof one);
    std::memcpy(bytes.data() + 28, &one, sizeof one);
    Write("numbers.bin", bytes);
    const std::string text = Gltf;
    const auto start = text.find("data:");
    const std::string beside = text.substr(0, start) + "numbers.bin\"}]}";
    EXPECT_EQ(Add(Write("beside.gltf", beside)).code, 0);
    EXPECT_EQ(LooksOf(File("out.xml"), L"Crank").triangles, 2U);
    fs::remove(File("out.xml"));
    fs::create_directories(File("parts"));
    EXPECT_EQ(Add(Write("parts/part.gltf", With(beside, "numbers", "../numbers"))).code, 2);
    EXPECT_EQ(Add(Write("parts/whole.gltf", With(beside, "numbers", File("numbers")))).code, 2);
    EXPECT_FALSE(fs::exists(File("out.xml")));
}

TEST_F(ShapeCommand, RefusesPartsWithTooManyTriangles)
{
    std::string text = "v 0 0 0\nv 1 0 0\nv 0 1 0\n";
    for (int index = 0; index <= 1'000'000; ++index)
        text += "f 1 2 3\n";
    const Outcome outcome = Add(Write("many.obj", text));
    EXPECT_EQ(outcome.code, 2);
    ExpectContains(outcome.output, "there are more than 1000000 triangles");
}

TEST_F(ShapeCommand, KnowsOneBodyInSpace)
{
    const auto run = [this](const std::string& arguments) {
        return Run("shape " + arguments + " --add " + Tetrahedron + " -o " + File("out.xml"));
    };
    const Outcome unknown = run(m_document + " --body Wheel");
    EXPECT_EQ(unknown.code, 64);
    ExpectContains(unknown.output, "no body has the name Wheel");
    const Outcome misspelt = Run("shape " + m_document + " --body Crnk --export " + File("x"));
    EXPECT_EQ(misspelt.code, 64);
    ExpectContains(misspelt.output, "no body has the name Crnk; near: \"Crank\"");
    const Outcome planar = run(KARMP_EXAMPLE_DOCUMENTS "/cam-follower.xml --body Cam");
    EXPECT_EQ(planar.code, 64);
    ExpectContains(planar.output, "only bodies in space have meshes");
    EXPECT_EQ(run(m_document).code, 64);
    EXPECT_EQ(run(m_document + " --body Crank Rod").code, 64);
    EXPECT_EQ(run(m_document + " --body Crank --export " + File("x")).code, 64);
    EXPECT_EQ(Run("shape " + m_document).code, 64);
    EXPECT_EQ(Files(), std::set<std::string>{"in.xml"});
}

TEST_F(ShapeCommand, ExportsAFileForEachBodyThatComesBackTheSame)
{
    Write("part.mtl", Materials);
    EXPECT_EQ(Add(Write("part.obj", Obj)).code, 0);
    const Outcome outcome = Run("shape " + File("out.xml") + " --export " + File("shapes/new"));
    EXPECT_EQ(outcome.code, 0);
    const std::string told =
        "Body \"Crank\": " + File("shapes/new/Crank.gltf") + " with 4 triangles\n";
    EXPECT_EQ(outcome.output, told);
    // Once, however often it is named.
    EXPECT_EQ(Run("shape " + File("out.xml") + " --body Crank Crank --force --export " +
                  File("shapes/new"))
                  .output,
              told);
    const std::string text = ReadFile(File("shapes/new/Crank.gltf"));
    EXPECT_TRUE(JsonReader::IsJson(text)) << text;
    ExpectContains(text, R"("min": [0, 0, 0], "max": [1, 1, 1])");
    const Looks before = LooksOf(File("out.xml"), L"Crank");
    EXPECT_EQ(Add(File("shapes/new/Crank.gltf")).code, 0);
    const Looks after = LooksOf(File("out.xml"), L"Crank");
    EXPECT_EQ(after.vertices, before.vertices);
    EXPECT_EQ(after.triangles, before.triangles);
    EXPECT_EQ(after.high, before.high);
    EXPECT_EQ(after.colour, before.colour);
}

TEST_F(ShapeCommand, ReplacesExportedFilesWhenForcedOnly)
{
    EXPECT_EQ(Add(Tetrahedron).code, 0);
    const std::string line = "shape " + File("out.xml") + " --export " + File("shapes");
    EXPECT_EQ(Run(line + " --dry-run").code, 0);
    EXPECT_FALSE(fs::exists(File("shapes")));
    fs::create_directories(File("shapes"));
    Write("shapes/Crank.gltf", "mine");
    const Outcome refused = Run(line);
    EXPECT_EQ(refused.code, 2);
    ExpectContains(refused.output, "exists; nothing was written");
    EXPECT_EQ(ReadFile(File("shapes/Crank.gltf")), "mine");
    const Outcome forced = Run(line + " --force --json");
    EXPECT_EQ(forced.code, 0);
    EXPECT_TRUE(JsonReader::IsJson(forced.output)) << forced.output;
    EXPECT_NE(ReadFile(File("shapes/Crank.gltf")), "mine");
    EXPECT_EQ(Run("shape " + File("out.xml") + " --export /dev/null").code, 2);
    EXPECT_EQ(Run("shape " + File("out.xml") + " --body Wheel --export " + File("x")).code, 64);
    EXPECT_EQ(Run("shape " + m_document + " --export " + File("x")).output,
              "No body has a shape\n");
    EXPECT_FALSE(fs::exists(File("x")));
}

TEST_F(ShapeCommand, ADryExportTellsOfAFolderThatCannotBeMade)
{
    Add(Tetrahedron);
    for (const std::string& folder : {File("out.xml"), File("out.xml") + "/below/it"}) {
        const std::string line = "shape " + File("out.xml") + " --export " + folder;
        const Outcome dry = Run(line + " --dry-run");
        EXPECT_EQ(dry.code, 2) << dry.output;
        EXPECT_EQ(dry.output, Run(line).output);
    }
    EXPECT_EQ(
        Run("shape " + File("out.xml") + " --dry-run --export " + File("new/and/below/")).code, 0);
    fs::create_directories(File("shapes/Crank.gltf"));
    const std::string forced = "shape " + File("out.xml") + " --force --export " + File("shapes");
    const Outcome dry = Run(forced + " --dry-run");
    EXPECT_EQ(dry.code, 2);
    ExpectContains(dry.output, "Crank.gltf: error: cannot write the file");
    EXPECT_EQ(dry.output, Run(forced).output);
    EXPECT_FALSE(fs::exists(File("new")));
}

TEST_F(ShapeCommand, ExportsNothingOfADocumentWithoutBodies)
{
    const std::string empty =
        Write("empty.xml", "<KARMPDocument version=\"R2018.1\"><World/></KARMPDocument>");
    ExpectContains(Run("shape " + empty + " --export " + File("x")).output,
                   "No body has a shape\n");
    EXPECT_FALSE(fs::exists(File("x")));
}

TEST_F(ShapeCommand, NamesFilesByShortNamesOrByIdentifiers)
{
    EXPECT_EQ(Add(Tetrahedron).code, 0);
    const std::string text = ReadFile(File("out.xml"));
    for (const auto& [name, file] : {std::pair(std::string(), std::string("Crank")),
                                     std::pair(std::string("a-b.c"), std::string("a-b.c")),
                                     std::pair(std::string(101, 'x'), std::string(100, 'x'))}) {
        const std::string named =
            Write("named.xml", With(text, "<Body id=\"Crank\" name=\"Crank\" isActive",
                                    "<Body id=\"Crank\" name=\"" + name + "\" isActive"));
        ExpectContains(Run("shape " + named + " --dry-run --export " + File("x")).output,
                       File("x") + '/' + file + ".gltf with 4 triangles\n");
    }
}

TEST_F(ShapeCommand, TellsAnExportAsJsonAndProblemsByItsExitCode)
{
    EXPECT_EQ(Add(Tetrahedron).code, 0);
    const std::string odd =
        Write("odd.xml", With(ReadFile(File("out.xml")), "</World>", "<Nothing/></World>"));
    const std::string line = "shape " + odd + " --json --export " + File("x");
    const Outcome dry = RunQuietly(line + " --dry-run");
    const Outcome real = RunQuietly(line);
    EXPECT_EQ(dry.code, 1);
    EXPECT_EQ(real.code, 1);
    ExpectContains(real.output, ",\n  \"written\": true,\n  \"files\": [\n");
    ExpectContains(real.output, "/Crank.gltf\", \"triangles\": 4}\n");
    EXPECT_EQ(With(real.output, "true", "false"), dry.output);
}

TEST_F(ShapeCommand, MakesNamesOfBodiesSafeForFiles)
{
    std::string text = CleanDocument();
    for (const auto& [body, name] : {std::pair("Crank", "../../a b"), std::pair("Rod", ".._.._A_b"),
                                     std::pair("Slider", "\xc3\xa4 &quot;'&lt;")})
        text = With(text, std::string("id=\"") + body + "\" name=\"" + body + '"',
                    std::string("id=\"") + body + "\" name=\"" + name + '"');
    std::string file = Write("named.xml", text);
    for (const std::string body : {"Crank", "Rod", "Slider"}) {
        const std::string next = File(body + ".xml");
        EXPECT_EQ(
            Run("shape " + file + " --body " + body + " --add " + Tetrahedron + " -o " + next).code,
            0);
        file = next;
    }
    EXPECT_EQ(Run("shape " + file + " --export " + File("shapes")).code, 0);
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(File("shapes")))
        names.insert(entry.path().filename().string());
    EXPECT_EQ(names,
              (std::set<std::string>{"_.._.._a_b.gltf", "_.._.._A_b-2.gltf", "______.gltf"}));
}

} // namespace

} // namespace karmp::tool
