#include "NamedBodies.h"

#include "EntityText.h"
#include "KARMPNearestWord.h"
#include "KARMPWorld.h"
#include "KARTextConversion.h"
#include "Output.h"

#include <algorithm>
#include <iostream>
#include <string_view>
#include <unordered_map>

namespace karmp::tool {

namespace {

/// The bodies of a world by identifier and by name.
class BodyIndex
{
public:
    explicit BodyIndex(const KARMPWorld& world)
    {
        for (int index = 0; index < world.GetBodyCount(); ++index) {
            QOBSharedHandle<KARMPBody> body;
            if (KARFailed(world.Get<KARMPBody>(index, body)))
                continue;
            m_identifiers.try_emplace(IdentifierOf(*body), body);
            m_names[body->getEntityName()].push_back(body);
        }
    }

    /// The body of that identifier, or those of that name.
    Bodies Find(const std::string& text) const
    {
        const std::wstring wanted = kar::ToWide(std::string_view(text));
        if (const auto found = m_identifiers.find(wanted); found != m_identifiers.end())
            return {found->second};
        const auto found = m_names.find(wanted);
        return found != m_names.end() ? found->second : Bodies();
    }

    /// The name or identifier that was probably meant; empty when none is near.
    std::wstring_view Nearest(const std::string& text) const
    {
        std::vector<std::wstring_view> words;
        for (const auto& [name, bodies] : m_names)
            words.push_back(name);
        for (const auto& [identifier, body] : m_identifiers)
            words.push_back(identifier);
        std::sort(words.begin(), words.end());
        return NearestWord(kar::ToWide(std::string_view(text)), words);
    }

private:
    std::unordered_map<std::wstring, QOBSharedHandle<KARMPBody>> m_identifiers;
    std::unordered_map<std::wstring, Bodies> m_names;
};

} // namespace

Bodies FindBodies(const KARMPWorld& world, const std::vector<std::string>& names)
{
    const BodyIndex index(world);
    Bodies bodies;
    for (const std::string& name : names) {
        const Bodies found = index.Find(name);
        if (found.size() == 1) {
            if (std::find(bodies.begin(), bodies.end(), found.front()) == bodies.end())
                bodies.push_back(found.front());
            continue;
        }
        std::cerr << "karmp: " << (found.empty() ? "no body has" : "several bodies have")
                  << " the name " << Printable(std::string_view(name));
        if (!found.empty())
            std::cerr << "; name it by its identifier:";
        else if (const std::wstring_view nearest = index.Nearest(name); !nearest.empty())
            std::cerr << "; near: \"" << Printable(nearest) << '"';
        for (const auto& body : found)
            std::cerr << ' ' << Printable(IdentifierOf(*body));
        std::cerr << '\n';
        return {};
    }
    return bodies;
}

} // namespace karmp::tool
