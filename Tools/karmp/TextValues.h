// Values of items as texts of a command line.
#pragma once

#include "KARMPModel.h"

#include <string>

namespace karmp::tool {

/// The value that a text means for an item: a finite number, numbers with commas or blanks between
/// them in the order of documents, a word, "yes" or "no", entities by name or identifier with
/// commas between them, nothing for an empty text, and for "None" where an item can be without a
/// value. Blanks beside commas mean nothing. A name with a comma is found where it is all of the
/// text.
model::Result<Value> ValueOfText(const model::Model& model, const ItemInfo& item,
                                 const std::string& text);

} // namespace karmp::tool
