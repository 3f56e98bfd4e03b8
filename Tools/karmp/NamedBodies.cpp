#include "NamedBodies.h"

#include "EntityText.h"
#include "KARMPWorld.h"
#include "KARTextConversion.h"
#include "Output.h"

#include <iostream>
#include <string_view>

namespace karmp::tool {

namespace {

// The bodies of that name, or the one of that identifier.
Bodies FindBodies(const KARMPWorld& world, const std::string& text)
{
    const std::wstring wanted = kar::ToWide(std::string_view(text));
    Bodies named;
    for (int index = 0; index < world.GetBodyCount(); ++index) {
        QOBSharedHandle<KARMPBody> body;
        if (KARFailed(world.Get<KARMPBody>(index, body)))
            continue;
        if (IdentifierOf(*body) == wanted)
            return {body};
        if (body->getEntityName() == wanted)
            named.push_back(body);
    }
    return named;
}

} // namespace

Bodies FindBodies(const KARMPWorld& world, const std::vector<std::string>& names)
{
    Bodies bodies;
    for (const std::string& name : names) {
        const Bodies found = FindBodies(world, name);
        if (found.size() == 1) {
            bodies.push_back(found.front());
            continue;
        }
        std::cerr << "karmp: " << (found.empty() ? "no body has" : "several bodies have")
                  << " the name " << Printable(std::string_view(name));
        if (!found.empty())
            std::cerr << "; name it by its identifier:";
        for (const auto& body : found)
            std::cerr << ' ' << Printable(IdentifierOf(*body));
        std::cerr << '\n';
        return {};
    }
    return bodies;
}

} // namespace karmp::tool
