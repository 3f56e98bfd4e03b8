#include "WholePart.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace karmp::tool {

namespace {

/// An element of a PLY file: how many there are, and for each of its properties whether it is a
/// list.
struct PlyElement
{
    std::uintmax_t count = 0;
    std::vector<bool> areLists;
};

// The elements of a PLY file in text form, up to the first number; none of another form.
std::vector<PlyElement> ReadPlyHeader(std::istream& stream)
{
    std::vector<PlyElement> elements;
    for (std::string line; std::getline(stream, line);) {
        std::istringstream words(line);
        std::string first;
        std::string second;
        words >> first >> second;
        if (first == "end_header")
            return elements;
        if (first == "format" && second != "ascii")
            return {};
        if (first == "element")
            words >> elements.emplace_back().count;
        if (first == "property" && !elements.empty())
            elements.back().areLists.push_back(second == "list");
    }
    return {};
}

// Passes over one element; false when it is not there.
bool SkipPlyElement(std::istream& stream, const PlyElement& element)
{
    double number = 0.0;
    for (const bool isList : element.areLists) {
        if (!(stream >> number))
            return false;
        for (double left = isList ? number : 0.0; left >= 1.0; --left)
            if (!(stream >> number))
                return false;
    }
    return true;
}

} // namespace

bool IsWholeStl(const std::filesystem::path& file)
{
    constexpr std::size_t headerSize = 84;
    constexpr std::size_t triangleSize = 50;
    constexpr std::uintmax_t tailSize = 4096;
    const std::uintmax_t size = std::filesystem::file_size(file);
    std::ifstream stream(file, std::ios::binary);
    std::array<char, headerSize> header{};
    stream.read(header.data(), headerSize);
    std::uintmax_t triangles = 0;
    for (std::size_t i = headerSize; i-- > headerSize - 4;)
        triangles = triangles << 8U | static_cast<unsigned char>(header[i]);
    if (stream && size >= headerSize + triangles * triangleSize)
        return true;
    stream.clear();
    stream.seekg(static_cast<std::streamoff>(size - std::min(size, tailSize)));
    const std::string tail((std::istreambuf_iterator<char>(stream)),
                           std::istreambuf_iterator<char>());
    return tail.find("endsolid") != std::string::npos;
}

bool IsWholePly(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    for (const PlyElement& element : ReadPlyHeader(stream))
        for (std::uintmax_t index = 0; index < element.count && !element.areLists.empty(); ++index)
            if (!SkipPlyElement(stream, element))
                return false;
    return true;
}

} // namespace karmp::tool
