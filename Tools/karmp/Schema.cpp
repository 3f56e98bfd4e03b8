#include "Commands.h"
#include "KARMPDocumentSchemas.h"
#include "KARMPDocuments.h"
#include "KARTextConversion.h"

#include <iostream>

namespace karmp::tool {

namespace {

int Print(const std::string& text)
{
    std::cout << text;
    return Clean;
}

int Refuse(const std::string& message)
{
    std::cerr << "karmp: " << message << '\n';
    return WrongArguments;
}

std::string KnownVersionNames()
{
    std::string names;
    for (const std::wstring_view version : documents::KnownVersions())
        names += (names.empty() ? "" : ", ") + kar::ToUtf8(version);
    return names;
}

} // namespace

int RunSchema(const SchemaOptions& options)
{
    if (options.reference)
        return Print(documents::FormatReference());
    if (!options.className.empty()) {
        std::string text = documents::ClassReference(options.className);
        // Listings name classes without the prefix, which is not always what the element is called.
        if (text.empty())
            text = documents::ClassReference("KARMP" + options.className);
        return text.empty() ? Refuse("no class or element \"" + options.className + '"')
                            : Print(text);
    }
    const auto language = options.xsd   ? documents::SchemaLanguage::Xsd
                          : options.rng ? documents::SchemaLanguage::RelaxNg
                                        : documents::SchemaLanguage::RelaxNgCompact;
    const std::string text = options.version.empty()
                                 ? documents::SchemaText(language)
                                 : documents::SchemaText(language, kar::ToWide(options.version));
    return text.empty()
               ? Refuse("the version \"" + options.version + "\" is none of " + KnownVersionNames())
               : Print(text);
}

} // namespace karmp::tool
