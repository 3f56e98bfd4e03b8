// Pieces of representations as glTF, in what reading the files back does not tell.
#include "Gltf.h"

#include "JsonText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace karmp::tool {

namespace {

ViewPiece Triangle()
{
    ViewPiece piece;
    piece.points = {1, 2, -3, 4, 2, -3, 1, 6, -9};
    piece.triangles = {0, 1, 2};
    return piece;
}

std::size_t CountOf(const std::string& text, const std::string& part)
{
    std::size_t count = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

std::string Text(const std::vector<ViewPiece>& pieces)
{
    std::string text = GltfOf(pieces, "part");
    EXPECT_TRUE(JsonReader::IsJson(text)) << text;
    return text;
}

TEST(Gltf, IsEmptyWithoutAPiece)
{
    EXPECT_EQ(GltfOf({}, "part"), "");
}

TEST(Gltf, NamesItsNodeAsJsonDoes)
{
    const std::string text = GltfOf({Triangle()}, "a \"b\"");
    EXPECT_TRUE(JsonReader::IsJson(text)) << text;
    EXPECT_EQ(CountOf(text, R"("name": "a \"b\"")"), 1U) << text;
}

TEST(Gltf, TellsTheBoundsOfPositionsAndWhatEachBufferViewIsFor)
{
    const std::string text = Text({Triangle()});
    EXPECT_EQ(CountOf(text, R"("count": 3, "type": "VEC3", "min": [1, 2, -9], "max": [4, 6, -3])"),
              1U)
        << text;
    EXPECT_EQ(CountOf(text, R"("byteOffset": 0, "byteLength": 36, "target": 34962)"), 1U) << text;
    EXPECT_EQ(CountOf(text, R"("byteOffset": 36, "byteLength": 12, "target": 34963)"), 1U) << text;
    EXPECT_EQ(CountOf(text, R"("indices": 1, "mode": 4)"), 1U) << text;
    EXPECT_EQ(CountOf(text, "materials"), 0U) << text;
}

TEST(Gltf, DrawsAChainAsLinesWithoutIndices)
{
    ViewPiece chain = Triangle();
    chain.triangles.clear();
    const std::string text = Text({chain});
    EXPECT_EQ(CountOf(text, R"({"attributes": {"POSITION": 0}, "mode": 3})"), 1U) << text;
}

TEST(Gltf, HasNormalsWhereAllHaveLengthOne)
{
    const auto hasNormals = [](const std::vector<double>& last) {
        ViewPiece piece = Triangle();
        piece.normals = {0, 0, 1, 0.6, 0, 0.8};
        piece.normals.insert(piece.normals.end(), last.begin(), last.end());
        return CountOf(Text({piece}), R"("NORMAL": 1})") == 1;
    };
    EXPECT_TRUE(hasNormals({0, 1, 0}));
    EXPECT_TRUE(hasNormals({0, 1 + 1e-7, 0}));
    EXPECT_FALSE(hasNormals({0, 1 + 1e-5, 0}));
    EXPECT_FALSE(hasNormals({0, 0, 0}));
    EXPECT_EQ(CountOf(Text({Triangle()}), "NORMAL"), 0U);
}

TEST(Gltf, HasAMaterialForEachColour)
{
    std::vector<ViewPiece> pieces(3, Triangle());
    pieces[0].colour = {{1, 0, 0, 1}};
    for (const std::size_t index : {1U, 2U})
        pieces[index].colour = {{0, 0.5, 1, 0.25}};
    const std::string text = Text(pieces);
    EXPECT_EQ(CountOf(text, R"("material": 0})"), 1U) << text;
    EXPECT_EQ(CountOf(text, R"("material": 1})"), 2U) << text;
    EXPECT_EQ(CountOf(text, R"({"pbrMetallicRoughness": {"baseColorFactor": [1, 0, 0, 1], )"
                            R"("metallicFactor": 0}, "doubleSided": true},)"),
              1U)
        << text;
    EXPECT_EQ(CountOf(text, R"({"pbrMetallicRoughness": {"baseColorFactor": [0, 0.5, 1, 0.25], )"
                            R"("metallicFactor": 0}, "doubleSided": true, "alphaMode": "BLEND"})"),
              1U)
        << text;
}

} // namespace

} // namespace karmp::tool
