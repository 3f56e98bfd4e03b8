#pragma once

#include "KARMPEntities.h"
#include "KARMPModel.h"

#include <iostream>

/// Saves a model, loads what was written, and checks that by a function, whose result tells whether
/// all is well. Prints what there is to say about the documents, and gives the exit code.
template <class Check>
int RoundTrip(const karmp::model::Model& model, const std::string& file, Check check,
              const karmp::documents::SaveOptions& options = {})
{
    if (const auto saved = model.Save(file, options); saved.Report() != 0)
        return 1;
    const auto again = karmp::model::Load(file);
    return again.Report() == 0 && check(*again) ? 0 : 1;
}
