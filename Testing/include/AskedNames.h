#pragma once

#include "KARMPNodeSource.h"
#include "TestDeserializer.h"

#include <set>
#include <string>
#include <string_view>

/// Hears which elements and attributes the nodes of a reader's tree are asked for, whether they are
/// there or not. It outlives the tree.
class AskedNames : public karmp::NodeSource
{
public:
    /// Hears a node and all nodes below it. Nodes that are added later are not heard.
    void Hear(TestDeserializer& root);
    /// The paths of what was asked for: the node's location, a slash, the name, which has "@" in
    /// front for an attribute.
    const std::set<std::wstring>& Paths() const { return m_paths; }

    void HearName(const KARMPDeserializer& node, karmp::NodePart part,
                  std::wstring_view name) override;

private:
    std::set<std::wstring> m_paths;
};
