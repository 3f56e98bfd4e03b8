#include "KARMPReadingPlace.h"

#include "KARMPNodeSource.h"

#include <utility>

namespace {

thread_local const KARMPDeserializer* currentNode = nullptr;

} // namespace

KARMPReadingPlace::KARMPReadingPlace(const KARMPDeserializer* node) noexcept
    : m_node(node), m_outer(std::exchange(currentNode, node))
{
    if (m_node != nullptr)
        karmp::NodeBuilder::BeginReading(*m_node);
}

KARMPReadingPlace::~KARMPReadingPlace()
{
    if (m_node != nullptr)
        karmp::NodeBuilder::EndReading(*m_node);
    currentNode = m_outer;
}

const KARMPDeserializer* KARMPReadingPlace::Current() noexcept
{
    return currentNode;
}
