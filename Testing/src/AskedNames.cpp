#include "AskedNames.h"

void AskedNames::Hear(TestDeserializer& root)
{
    KARMPDeserializer::ElementVector pending{&root};
    while (!pending.empty()) {
        // Trees of tests are not const.
        auto& node = const_cast<KARMPDeserializer&>(*pending.back());
        pending.pop_back();
        node.AppendOrderedElements(pending);
        karmp::NodeBuilder::Hear(node, *this);
    }
}

void AskedNames::HearName(const KARMPDeserializer& node, karmp::NodePart part,
                          std::wstring_view name)
{
    const wchar_t* const mark = part == karmp::AttributesPart ? L"/@" : L"/";
    m_paths.insert(node.Location() + mark + std::wstring(name));
}
