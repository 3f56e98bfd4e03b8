// What tests of models share.
#pragma once

#include "KARMPEntities.h"
#include "KARMPModel.h"
#include "KARMPTestFixture.h"

#include <string>

namespace karmp::model {

/// What a check found, a line each; empty when there is nothing.
inline std::string Lines(const documents::Diagnostics& findings)
{
    std::string text;
    for (const documents::Diagnostic& finding : findings.items)
        text += documents::Format(finding) + '\n';
    return text;
}

/// The model's document; the text of the error where it has none.
inline std::string TextOf(const Model& model)
{
    auto text = model.Text();
    return text ? *std::move(text) : Lines(text.Findings()) + text.Error().text;
}

} // namespace karmp::model
