// KARMPReadingPlace tells the node that is read, and listeners of failed checks where that is.
#pragma once

#include "KARMPExport.h"

class KARMPDeserializer;

/// Names the node that its thread reads, for as long as it lives; of nested ones the innermost
/// counts. A document may free what it filled below the node meanwhile. A world names the element
/// of each entity that it creates or reads.
class KARMP_API KARMPReadingPlace
{
public:
    explicit KARMPReadingPlace(const KARMPDeserializer* node) noexcept;
    ~KARMPReadingPlace();
    KARMPReadingPlace(const KARMPReadingPlace&) = delete;
    KARMPReadingPlace& operator=(const KARMPReadingPlace&) = delete;

    /// The node that the calling thread reads, null when it reads none.
    static const KARMPDeserializer* Current() noexcept;

private:
    const KARMPDeserializer* m_node;
    const KARMPDeserializer* m_outer;
};
