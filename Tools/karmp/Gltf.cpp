#include "Gltf.h"

#include "KARBase64.h"
#include "Output.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <map>

namespace karmp::tool {

namespace {

// Numbers that glTF gives to types, uses of a buffer, and modes of drawing.
constexpr int Float = 5126;
constexpr int UnsignedInt = 5125;
constexpr int VertexBuffer = 34962;
constexpr int IndexBuffer = 34963;
constexpr int LineStrip = 3;
constexpr int Triangles = 4;

using Colour = std::array<double, 4>;

void AppendTo(std::string& list, const std::string& item)
{
    list += list.empty() ? "\n    " : ",\n    ";
    list += item;
}

std::string Member(const char* name, const std::string& list)
{
    return list.empty() ? std::string() : ",\n  \"" + std::string(name) + "\": [" + list + "\n  ]";
}

std::string VectorText(const std::array<float, 3>& numbers)
{
    return '[' + NumberText(double{numbers[0]}) + ", " + NumberText(double{numbers[1]}) + ", " +
           NumberText(double{numbers[2]}) + ']';
}

/// Collects the parts of a glTF text.
class GltfWriter
{
public:
    void Add(const ViewPiece& piece)
    {
        std::string primitive = "{\"attributes\": {\"POSITION\": " + Positions(piece.points);
        if (AreUnitVectors(piece.normals))
            primitive += ", \"NORMAL\": " + Vectors(piece.normals, {});
        primitive += '}';
        if (!piece.triangles.empty())
            primitive += ", \"indices\": " + Indices(piece.triangles);
        primitive +=
            ", \"mode\": " + std::to_string(piece.triangles.empty() ? LineStrip : Triangles);
        if (piece.colour)
            primitive += ", \"material\": " + std::to_string(MaterialOf(*piece.colour));
        AppendTo(m_primitives, primitive + '}');
    }

    std::string Text(std::string_view name) const
    {
        return "{\n  \"asset\": {\"version\": \"2.0\", \"generator\": \"karmp\"},\n  \"scene\": "
               "0,\n"
               "  \"scenes\": [{\"nodes\": [0]}],\n  \"nodes\": [{\"mesh\": 0, \"name\": " +
               JsonText(name) + "}],\n  \"meshes\": [{\"primitives\": [" + m_primitives +
               "\n  ]}]" + Member("materials", m_materials) + Member("accessors", m_accessors) +
               Member("bufferViews", m_views) +
               ",\n  \"buffers\": [{\"byteLength\": " + std::to_string(m_bytes.size()) +
               ", \"uri\": \"data:application/octet-stream;base64," + kar::Base64Encode(m_bytes) +
               "\"}]\n}\n";
    }

private:
    // glTF wants normals of length 1, and takes none for flat triangles.
    static bool AreUnitVectors(const std::vector<double>& numbers)
    {
        for (std::size_t i = 0; i + 2 < numbers.size(); i += 3)
            if (!(std::abs(std::hypot(numbers[i], numbers[i + 1], numbers[i + 2]) - 1.0) < 1e-6))
                return false;
        return !numbers.empty();
    }

    void Append(std::uint32_t number)
    {
        for (int shift = 0; shift < 32; shift += 8)
            m_bytes.push_back(static_cast<unsigned char>(number >> shift & 0xFFU));
    }

    // An accessor to the bytes from `first` on; gives its number.
    std::string Accessor(std::size_t first, int use, int type, std::size_t count,
                         const std::string& more)
    {
        AppendTo(m_views, "{\"buffer\": 0, \"byteOffset\": " + std::to_string(first) +
                              ", \"byteLength\": " + std::to_string(m_bytes.size() - first) +
                              ", \"target\": " + std::to_string(use) + '}');
        const std::string number = std::to_string(m_accessorCount++);
        AppendTo(m_accessors, "{\"bufferView\": " + number +
                                  ", \"componentType\": " + std::to_string(type) +
                                  ", \"count\": " + std::to_string(count) + more + '}');
        return number;
    }

    std::string Vectors(const std::vector<double>& numbers, const std::string& bounds)
    {
        const std::size_t first = m_bytes.size();
        for (const double number : numbers)
            Append(std::bit_cast<std::uint32_t>(static_cast<float>(number)));
        return Accessor(first, VertexBuffer, Float, numbers.size() / 3,
                        ", \"type\": \"VEC3\"" + bounds);
    }

    std::string Positions(const std::vector<double>& points)
    {
        std::array<float, 3> low{};
        std::array<float, 3> high{};
        for (std::size_t i = 0; i < points.size(); ++i) {
            const auto number = static_cast<float>(points[i]);
            low[i % 3] = i < 3 ? number : std::min(low[i % 3], number);
            high[i % 3] = i < 3 ? number : std::max(high[i % 3], number);
        }
        return Vectors(points, ", \"min\": " + VectorText(low) + ", \"max\": " + VectorText(high));
    }

    std::string Indices(const std::vector<std::uint32_t>& indices)
    {
        const std::size_t first = m_bytes.size();
        for (const std::uint32_t index : indices)
            Append(index);
        return Accessor(first, IndexBuffer, UnsignedInt, indices.size(), ", \"type\": \"SCALAR\"");
    }

    int MaterialOf(const Colour& colour)
    {
        const auto [found, isNew] = m_colours.try_emplace(colour, int(m_colours.size()));
        if (!isNew)
            return found->second;
        std::string text = "{\"pbrMetallicRoughness\": {\"baseColorFactor\": [";
        for (const double& share : colour)
            text += (&share == colour.data() ? "" : ", ") + NumberText(share);
        text += "], \"metallicFactor\": 0}, \"doubleSided\": true";
        AppendTo(m_materials, text + (colour[3] < 1.0 ? ", \"alphaMode\": \"BLEND\"}" : "}"));
        return found->second;
    }

    std::vector<unsigned char> m_bytes;
    std::string m_primitives;
    std::string m_materials;
    std::string m_accessors;
    std::string m_views; // one for each accessor
    int m_accessorCount = 0;
    std::map<Colour, int> m_colours;
};

} // namespace

std::string GltfOf(const std::vector<ViewPiece>& pieces, std::string_view name)
{
    GltfWriter writer;
    for (const ViewPiece& piece : pieces)
        writer.Add(piece);
    return pieces.empty() ? std::string() : writer.Text(name);
}

} // namespace karmp::tool
