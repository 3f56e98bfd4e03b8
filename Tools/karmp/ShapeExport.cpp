#include "Commands.h"
#include "EntityText.h"
#include "ForEach.h"
#include "Gltf.h"
#include "KARMPBody2D.h"
#include "KARMPShape2D.h"
#include "KARMPWholeFile.h"
#include "KARTextConversion.h"
#include "Loading.h"
#include "NamedBodies.h"
#include "Obstacles.h"
#include "Output.h"
#include "ViewShapes.h"

#include <cctype>
#include <filesystem>
#include <iostream>
#include <set>
#include <system_error>

namespace karmp::tool {

namespace {

namespace fs = std::filesystem;

/// A body with its representation, and the file that it is written to.
struct ExportedBody
{
    QOBSharedHandle<KARMPBody> body;
    std::vector<ViewPiece> pieces;
    fs::path file;

    std::size_t TriangleCount() const
    {
        std::size_t count = 0;
        for (const ViewPiece& piece : pieces)
            count += piece.triangles.size() / 3;
        return count;
    }
};

// A name of letters, digits, '-', '_' and '.' that is no hidden file; '_' stands for the rest.
std::string FileNameOf(const KARMPBody& body)
{
    constexpr std::size_t longest = 100;
    std::string name = kar::ToUtf8(body.getEntityName());
    if (name.empty())
        name = kar::ToUtf8(IdentifierOf(body));
    for (char& letter : name) {
        const auto byte = static_cast<unsigned char>(letter);
        if (byte >= 0x80 || (std::isalnum(byte) == 0 && letter != '-' && letter != '.'))
            letter = '_';
    }
    if (name.empty() || name.front() == '.')
        name.insert(name.begin(), '_');
    return name.substr(0, longest);
}

// A name that no other body has, in file systems that do not tell case either.
std::string Distinct(const std::string& name, std::set<std::string>& taken)
{
    std::string distinct = name;
    for (int number = 2;; ++number) {
        std::string folded = distinct;
        for (char& letter : folded)
            letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
        if (taken.insert(folded).second)
            return distinct;
        distinct = name + '-' + std::to_string(number);
    }
}

template <class Body>
std::vector<ViewPiece> PiecesOf(const Body& body)
{
    std::vector<ViewPiece> pieces;
    for (int index = 0; index < body.GetLinkedShapeCount(); ++index) {
        using Shape =
            std::conditional_t<std::is_same_v<Body, KARMPBody2D>, KARMPShape2D, KARMPShape>;
        QOBSharedHandle<Shape> shape;
        if (body.GetLinkedShape(index, shape) != KARSuccess || !shape)
            continue;
        for (ViewPiece& piece : DrawShape(*shape))
            pieces.push_back(std::move(piece));
    }
    return pieces;
}

std::vector<ExportedBody> BodiesToExport(const Bodies& bodies, const fs::path& folder)
{
    std::vector<ExportedBody> exported;
    std::set<std::string> taken;
    for (const auto& body : bodies) {
        const auto* const planar = dynamic_cast<const KARMPBody2D*>(body.get());
        auto pieces = planar != nullptr ? PiecesOf(*planar) : PiecesOf(*body);
        if (!pieces.empty())
            exported.push_back(
                {body, std::move(pieces), folder / (Distinct(FileNameOf(*body), taken) + ".gltf")});
    }
    return exported;
}

Bodies AllBodies(const KARMPWorld& world)
{
    Bodies bodies;
    ForEach<KARMPBody>(
        world, [&](const KARMPBody& body) { bodies.push_back(QOBSharedHandle<KARMPBody>(&body)); });
    return bodies;
}

std::vector<std::string> NamesOf(const std::vector<ExportedBody>& bodies)
{
    std::vector<std::string> names;
    names.reserve(bodies.size());
    for (const ExportedBody& exported : bodies)
        names.push_back(exported.file.string());
    return names;
}

// Whether the folder is there, or made, and no file of it is in the way.
bool IsReady(const ShapeOptions& options, const std::vector<ExportedBody>& bodies)
{
    std::error_code error;
    for (const ExportedBody& exported : bodies) {
        if (options.writing.force || !fs::exists(fs::symlink_status(exported.file, error)))
            continue;
        std::cerr << "karmp: " << Printable(std::string_view(exported.file.string()))
                  << " exists; nothing was written. --force replaces it\n";
        return false;
    }
    if (bodies.empty())
        return true;
    std::string obstacle;
    if (options.writing.dryRun) {
        if (fs::is_directory(options.folder, error))
            return CanWriteFiles(NamesOf(bodies));
        obstacle = ObstacleToFolder(options.folder);
    } else if (fs::create_directories(options.folder, error); !fs::is_directory(options.folder)) {
        obstacle = error.message();
    }
    if (obstacle.empty())
        return true;
    std::cerr << "karmp: cannot make the folder " << Printable(std::string_view(options.folder))
              << ": " << obstacle << '\n';
    return false;
}

bool WriteBodies(const std::vector<ExportedBody>& bodies)
{
    for (const ExportedBody& exported : bodies) {
        const std::string text =
            GltfOf(exported.pieces, kar::ToUtf8(exported.body->getEntityName()));
        const auto messages = documents::WriteWholeFile(exported.file, text);
        PrintMessages(messages, true);
        if (messages.HasErrors())
            return false;
    }
    return true;
}

void PrintBodies(const std::vector<ExportedBody>& bodies)
{
    for (const ExportedBody& exported : bodies)
        std::cout << TitleOf(*exported.body) << ": "
                  << Printable(std::string_view(exported.file.string())) << " with "
                  << exported.TriangleCount() << " triangles\n";
    if (bodies.empty())
        std::cout << "No body has a shape\n";
}

void PrintBodiesAsJson(const ShapeOptions& options, const std::vector<ExportedBody>& bodies)
{
    std::cout << "{\n  \"input\": " << JsonText(options.file)
              << ",\n  \"written\": " << (options.writing.dryRun ? "false" : "true")
              << ",\n  \"files\": "
              << JsonList(
                     bodies,
                     [](const ExportedBody& exported) {
                         return "{\"body\": " + EntityJson(exported.body) +
                                ", \"file\": " + JsonText(exported.file.string()) +
                                ", \"triangles\": " + std::to_string(exported.TriangleCount()) +
                                '}';
                     })
              << "\n}\n";
}

} // namespace

int RunExportShapes(const ShapeOptions& options)
{
    const auto loaded = LoadWorld(options.file);
    if (!loaded)
        return Unreadable;
    const Bodies bodies = options.bodies.empty() ? AllBodies(*loaded->world)
                                                 : FindBodies(*loaded->world, options.bodies);
    if (bodies.empty() && !options.bodies.empty())
        return WrongArguments;
    const std::vector<ExportedBody> exported = BodiesToExport(bodies, options.folder);
    if (!IsReady(options, exported) || (!options.writing.dryRun && !WriteBodies(exported)))
        return Unreadable;
    if (options.writing.json)
        PrintBodiesAsJson(options, exported);
    else
        PrintBodies(exported);
    return loaded->diagnostics.items.empty() ? Clean : Findings;
}

} // namespace karmp::tool
