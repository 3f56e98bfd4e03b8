// A reader of the mechanism that the rows on worlds build, and of nothing else.
#pragma once

#include "KARMPEntities.h"

#include <string_view>

/// Makes the world of a document in one pass over its bytes, with the same entities, numbers and
/// links as a load but for quantities and ranges of variables, and beside the world's own globals
/// those of the document. It has none of the library's rules: it trusts the document, knows the
/// order of its numbers, and tells of nothing. It shows what of a load's time the entities take.
QOBSharedHandle<KARMPWorld> ReadStripped(std::string_view text);
