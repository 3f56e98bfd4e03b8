#include "PartImport.h"

#include "KAR3DBagRep.h"
#include "KAR3DMeshRep.h"
#include "ToolLimits.h"
#include "WholePart.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <vector>

#include <assimp/DefaultIOSystem.h>
#include <assimp/IOStream.hpp>
#include <assimp/Importer.hpp>
#include <assimp/config.h>
#include <assimp/importerdesc.h>
#include <assimp/material.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>

namespace karmp::tool {

namespace {

namespace fs = std::filesystem;

/// Opens files below the folder of the part only, and no more bytes than a part may have. A glTF
/// file names others that hold its numbers, an OBJ file those of its colours.
class PartFolder : public Assimp::DefaultIOSystem
{
public:
    explicit PartFolder(const fs::path& part) : m_folder(fs::canonical(part).parent_path()) {}

    bool Exists(const char* file) const override { return IsAllowed(file); }
    Assimp::IOStream* Open(const char* file, const char* mode) override
    {
        if (!IsAllowed(file) || std::string_view(mode).find('w') != std::string_view::npos)
            return nullptr;
        std::error_code error;
        const auto size = fs::file_size(file, error);
        if (error || size > LargestPart - m_bytes)
            return nullptr;
        m_bytes += size;
        return DefaultIOSystem::Open(file, mode);
    }

private:
    bool IsAllowed(const fs::path& file) const
    {
        std::error_code error;
        const fs::path real = fs::canonical(file, error);
        if (error || !fs::is_regular_file(real, error))
            return false;
        return std::mismatch(m_folder.begin(), m_folder.end(), real.begin(), real.end()).first ==
               m_folder.end();
    }

    fs::path m_folder;
    std::uintmax_t m_bytes = 0;
};

// Leaves the readers of one ending, so that a file is what its name says.
void KeepReadersOf(const std::string& ending, Assimp::Importer& importer)
{
    for (std::size_t i = importer.GetImporterCount(); i-- > 0;) {
        std::string endings(" ");
        endings += importer.GetImporterInfo(i)->mFileExtensions;
        if ((endings + ' ').find(' ' + ending + ' ') == std::string::npos)
            importer.UnregisterLoader(importer.GetImporter(i));
    }
}

std::string EndingOf(const fs::path& file)
{
    std::string ending = file.extension().string().substr(1);
    std::transform(ending.begin(), ending.end(), ending.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return ending;
}

const aiScene& Read(const fs::path& file, const std::string& ending, Assimp::Importer& importer)
{
    KeepReadersOf(ending, importer);
    importer.SetIOHandler(std::make_unique<PartFolder>(file).release()); // the importer's now
    int unused = aiComponent_TANGENTS_AND_BITANGENTS | aiComponent_COLORS | aiComponent_TEXCOORDS |
                 aiComponent_BONEWEIGHTS | aiComponent_ANIMATIONS | aiComponent_TEXTURES |
                 aiComponent_LIGHTS | aiComponent_CAMERAS;
    // The normals of STL are those of the flat triangles.
    if (ending == "stl")
        unused |= aiComponent_NORMALS;
    importer.SetPropertyInteger(AI_CONFIG_PP_RVC_FLAGS, unused);
    importer.SetPropertyInteger(AI_CONFIG_PP_SBP_REMOVE,
                                aiPrimitiveType_POINT | aiPrimitiveType_LINE);
    const aiScene* const scene = importer.ReadFile(
        file.string(), aiProcess_ValidateDataStructure | aiProcess_RemoveComponent |
                           aiProcess_Triangulate | aiProcess_SortByPType |
                           aiProcess_JoinIdenticalVertices | aiProcess_PreTransformVertices);
    if (scene == nullptr)
        throw std::runtime_error(importer.GetErrorString());
    return *scene;
}

// The colour that the file gives to a mesh. STL and PLY have no materials.
std::optional<KARColour> ColourOf(const aiScene& scene, const aiMesh& mesh,
                                  const std::string& ending)
{
    if (ending == "stl" || ending == "ply" || mesh.mMaterialIndex >= scene.mNumMaterials)
        return std::nullopt;
    const aiMaterial& material = *scene.mMaterials[mesh.mMaterialIndex];
    aiString name;
    aiColor4D colour;
    if (material.Get(AI_MATKEY_NAME, name) == AI_SUCCESS &&
        std::string_view(name.C_Str()) == AI_DEFAULT_MATERIAL_NAME)
        return std::nullopt;
    if (material.Get(AI_MATKEY_BASE_COLOR, colour) != AI_SUCCESS &&
        material.Get(AI_MATKEY_COLOR_DIFFUSE, colour) != AI_SUCCESS)
        return std::nullopt;
    float opacity = colour.a;
    material.Get(AI_MATKEY_OPACITY, opacity);
    return KARColour{colour.r, colour.g, colour.b, opacity};
}

std::vector<KARMathVector> NormalsOf(const aiMesh& mesh)
{
    std::vector<KARMathVector> normals;
    for (unsigned i = 0; mesh.HasNormals() && i < mesh.mNumVertices; ++i) {
        const aiVector3D& normal = mesh.mNormals[i];
        if (!(std::abs(normal.Length() - 1.0F) < 1e-3F))
            return {};
        normals.emplace_back(normal.x, normal.y, normal.z);
    }
    return normals;
}

KAR3DRepOwner<KAR3DRep> MeshOf(const aiScene& scene, const aiMesh& mesh, const std::string& ending,
                               double scale)
{
    std::vector<KARMathPoint> vertices;
    vertices.reserve(mesh.mNumVertices);
    for (unsigned i = 0; i < mesh.mNumVertices; ++i) {
        const aiVector3D& point = mesh.mVertices[i];
        vertices.emplace_back(scale * point.x, scale * point.y, scale * point.z);
    }
    std::vector<KARTriangle> triangles;
    triangles.reserve(mesh.mNumFaces);
    for (unsigned i = 0; i < mesh.mNumFaces; ++i)
        if (const aiFace& face = mesh.mFaces[i]; face.mNumIndices == 3)
            triangles.push_back({face.mIndices[0], face.mIndices[1], face.mIndices[2]});
    KAR3DRepOwner<KAR3DRep> rep(
        KAR3DMeshRep::CreateRep(std::move(vertices), std::move(triangles), NormalsOf(mesh)));
    if (!rep)
        throw std::runtime_error("a coordinate is no finite number, or a triangle has no corner");
    rep->SetColour(ColourOf(scene, mesh, ending)); // one that is none is left out
    return rep;
}

} // namespace

KAR3DRepOwner<KAR3DRep> ImportPart(const std::string& file, double scale)
{
    Assimp::Importer importer;
    const std::string ending = EndingOf(file);
    const aiScene& scene = Read(fs::absolute(file), ending, importer);
    if (ending == "stl" ? !IsWholeStl(file) : ending == "ply" && !IsWholePly(file))
        throw std::runtime_error("it ends too early");
    std::vector<KAR3DRepOwner<KAR3DRep>> meshes;
    std::size_t triangles = 0;
    for (unsigned i = 0; i < scene.mNumMeshes; ++i) {
        const aiMesh& mesh = *scene.mMeshes[i];
        triangles += mesh.mNumFaces;
        if (triangles > MostTriangles)
            throw std::runtime_error("there are more than " + std::to_string(MostTriangles) +
                                     " triangles");
        if (mesh.HasFaces())
            meshes.push_back(MeshOf(scene, mesh, ending, scale));
    }
    if (meshes.empty())
        throw std::runtime_error("there is no triangle");
    if (meshes.size() == 1)
        return std::move(meshes.front());
    KAR3DRepOwner<KAR3DBagRep> bag(KAR3DBagRep::CreateRep());
    for (auto& mesh : meshes)
        bag->AddChild(mesh.release());
    return KAR3DRepOwner<KAR3DRep>(bag.release());
}

} // namespace karmp::tool
