#pragma once

#include "KARMPEntities.h"
#include "KARMPModel.h"

#include <iostream>

/// Saves a model and loads what was written; prints what there is to say about it.
inline karmp::model::Result<karmp::model::Model> RoundTrip(
    const karmp::model::Model& model, const char* file,
    const karmp::documents::SaveOptions& options = {})
{
    if (const auto saved = model.Save(file, options); saved.Report() != 0)
        return karmp::model::Outcome(saved);
    auto again = karmp::model::Load(file);
    again.Report();
    return again;
}
