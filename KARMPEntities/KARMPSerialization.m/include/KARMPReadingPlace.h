#pragma once

#include "KARMPExport.h"

class KARMPDeserializer;

/// Brackets the reading of a node: for as long as the object lives, its thread reads that node; of
/// nested ones the innermost counts. It tells the node's source of the begin and the end of the
/// reading, so that a document can free what it filled below the node, and gives listeners of
/// failed checks the node that is read. A world brackets the element of each entity that it creates
/// or reads.
class KARMP_API KARMPReadingPlace
{
public:
    /// Begins the reading of a node, which ends with this object; null for none.
    explicit KARMPReadingPlace(const KARMPDeserializer* node) noexcept;
    ~KARMPReadingPlace();
    KARMPReadingPlace(const KARMPReadingPlace&) = delete;
    KARMPReadingPlace& operator=(const KARMPReadingPlace&) = delete;

    /// The node that the calling thread reads, null when it reads none.
    static const KARMPDeserializer* Current() noexcept;

    /// Says that the node that the calling thread reads was read in whole, and that the failed
    /// checks which follow until its reading ends tell nothing about it: some readers fail although
    /// they have read all.
    static void Complete() noexcept;
    /// True when that was said of the node that the calling thread reads.
    static bool IsComplete() noexcept;

private:
    const KARMPDeserializer* m_node;
    KARMPReadingPlace* m_outer;
    bool m_isComplete = false;
};
