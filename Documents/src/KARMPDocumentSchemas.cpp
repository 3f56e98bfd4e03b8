#include "KARMPDocumentSchemas.h"

#include "KARMPDocuments.h"
#include "KARMPSchemaLanguages.h"

#include <algorithm>

namespace karmp::documents {

std::string SchemaText(SchemaLanguage language, std::wstring_view version)
{
    const auto& versions = KnownVersions();
    if (std::find(versions.begin(), versions.end(), version) == versions.end())
        return {};
    switch (language) {
    case SchemaLanguage::RelaxNgCompact:
        return RelaxNgCompactText(version);
    case SchemaLanguage::RelaxNg:
        return RelaxNgText(version);
    case SchemaLanguage::Xsd:
        return XsdText(version);
    }
    return {};
}

} // namespace karmp::documents
