#include "Commands.h"
#include "EntityText.h"
#include "KARMPEntities.h"
#include "KARMPFamilies.h"
#include "KARTextConversion.h"
#include "Loading.h"
#include "NamedBodies.h"
#include "Output.h"
#include "PartFile.h"
#include "QOBBasicEntity.h"

#include <algorithm>
#include <filesystem>
#include <iostream>

namespace karmp::tool {

namespace {

using Shape = QOBSharedHandle<KARMP3DRep>;

bool IsTaken(const KARMPWorld& world, const std::wstring& identifier)
{
    bool isTaken = false;
    Families::ForEach([&](auto family) {
        using T = typename decltype(family)::Type;
        QOBSharedHandle<T> entity;
        for (int index = 0; index < world.Count<T>() && !isTaken; ++index)
            isTaken =
                world.Get<T>(index, entity) == KARSuccess && IdentifierOf(*entity) == identifier;
    });
    return isTaken;
}

// The name itself, or with the first number that makes it an identifier of its own.
std::wstring FreeIdentifier(const KARMPWorld& world, const std::wstring& name)
{
    std::wstring identifier = name;
    for (int number = 2; IsTaken(world, identifier); ++number)
        identifier = name + L'-' + std::to_wstring(number);
    return identifier;
}

// Gives a body a representation that is called as the part's file is.
Shape AddPart(KARMPWorld& world, const QOBSharedHandle<KARMPBody>& body, const std::string& file,
              Part& part)
{
    const std::wstring name =
        kar::ToWide(std::string_view(std::filesystem::path(file).stem().string()));
    const Shape shape = KARMP3DRep::create(name);
    shape->setEntityName(name);
    shape->SetIdentifier(FreeIdentifier(world, body->getEntityName() + L'.' + name));
    shape->Set3DRep(part.rep.release());
    const QOBSharedHandle<QOBBasicEntity> parent(world.getExtendible());
    if (parent)
        parent->addLogicalChild(shape);
    world.Add<KARMPShape>(shape);
    shape->LinkToBody(body);
    body->LinkToShape(shape);
    return shape;
}

std::string AddedJson(const Shape& shape, const QOBSharedHandle<KARMPBody>& body, const Part& part)
{
    return ",\n  \"added\": {\"entity\": " + EntityJson(shape) + ", \"body\": " + EntityJson(body) +
           ", \"vertices\": " + std::to_string(part.vertices) +
           ", \"triangles\": " + std::to_string(part.triangles) + '}';
}

// The body that gets the part; null, with the reason on standard error, when there is none.
QOBSharedHandle<KARMPBody> BodyFor(const KARMPWorld& world, const std::vector<std::string>& names)
{
    const Bodies bodies = FindBodies(world, names);
    if (bodies.empty())
        return {};
    if (dynamic_cast<const KARMPBody2D*>(bodies.front().get()) == nullptr)
        return bodies.front();
    std::cerr << "karmp: " << TitleOf(*bodies.front())
              << " lies in a plane; only bodies in space have meshes\n";
    return {};
}

} // namespace

int RunAddShape(const ShapeOptions& options)
{
    WriteOptions how = options.writing;
    if (how.output.empty())
        how.output = StandardStream;
    if (IsSameFile(options.part, how.output)) {
        std::cerr << "karmp: the output is the part itself; choose another file\n";
        return Unreadable;
    }
    Writing writing(options.file, how);
    const auto loaded = writing.Load();
    if (!loaded || !writing.MayWrite(loaded->diagnostics, loaded->version))
        return Unreadable;
    const QOBSharedHandle<KARMPBody> body = BodyFor(*loaded->world, options.bodies);
    if (!body)
        return WrongArguments;
    Part part = ReadPart(options.part, options.scale);
    if (!part.rep) {
        std::cerr << "karmp: cannot read " << Printable(std::string_view(options.part)) << ": "
                  << Printable(std::string_view(part.error)) << '\n';
        return Unreadable;
    }
    if (!Complete(*loaded->world))
        return Unreadable;
    const Shape shape = AddPart(*loaded->world, body, options.part, part);

    documents::SaveOptions save;
    save.version = loaded->version;
    save.doubles = documents::Doubles::Exact;
    const Losses losses = LossesOf(*loaded, save.version);
    const int written = writing.Write(loaded->world, save);
    if (written == Unreadable)
        return Unreadable;
    if (!options.writing.json)
        writing.ReportStream() << TitleOf(*body) << ": " << TitleOf(*shape) << " with "
                               << part.triangles << " triangles\n";
    return std::max(written, writing.ReportLosses(*loaded, losses, AddedJson(shape, body, part)));
}

} // namespace karmp::tool
