#include "FindingOutput.h"

#include "Loading.h"
#include "Output.h"

#include <algorithm>
#include <iostream>
#include <string_view>

namespace karmp::tool {

namespace {

using documents::CodeText;
using documents::Diagnostic;
using documents::Severity;

/// Counts down the findings that may still be printed.
class Budget
{
public:
    explicit Budget(std::size_t most) : m_left(most) {}

    bool Take() { return m_left > 0 && m_left-- > 0; }

private:
    std::size_t m_left;
};

struct Counts
{
    std::size_t errors = 0;
    std::size_t warnings = 0;

    void Add(const CheckedFile& file)
    {
        errors += file.findings.Count(Severity::Error);
        warnings += file.findings.Count(Severity::Warning);
    }
    std::string Text() const
    {
        if (errors + warnings == 0)
            return "no findings";
        return std::to_string(errors) + (errors == 1 ? " error, " : " errors, ") +
               std::to_string(warnings) + (warnings == 1 ? " warning" : " warnings");
    }
};

void PrintFinding(const Diagnostic& message)
{
    const std::string text = Printable(std::string_view(documents::Format(message)));
    std::cout << (message.severity == Severity::Error ? Red(text) : Yellow(text)) << '\n';
}

void PrintFile(const CheckedFile& file, Budget& budget, const std::string& indentation)
{
    Counts counts;
    counts.Add(file);
    std::cout << indentation << "{\n"
              << indentation << "  \"file\": " << JsonText(file.name) << ",\n"
              << indentation << "  \"errors\": " << counts.errors << ",\n"
              << indentation << "  \"warnings\": " << counts.warnings << ",\n"
              << indentation << "  \"findings\": [";
    bool first = true;
    for (const Diagnostic& message : file.findings.items) {
        if (!budget.Take())
            break;
        std::cout << (first ? "\n" : ",\n") << indentation << "    " << JsonOf(message);
        first = false;
    }
    std::cout << (first ? "]\n" : "\n" + indentation + "  ]\n") << indentation << '}';
}

// The characters that a URI reference holds as they are.
std::string UriOf(const std::string& path)
{
    constexpr std::string_view Hex = "0123456789ABCDEF";
    constexpr std::string_view Plain = "-._~/";
    std::string uri;
    for (const char byte : path) {
        const bool isLetter = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
                              (byte >= '0' && byte <= '9');
        if (isLetter || Plain.find(byte) != std::string_view::npos) {
            uri += byte;
            continue;
        }
        uri += '%';
        uri += Hex[static_cast<unsigned char>(byte) >> 4U];
        uri += Hex[static_cast<unsigned char>(byte) & 15U];
    }
    return uri;
}

void PrintResult(const CheckedFile& file, const Diagnostic& message, bool first)
{
    std::cout << (first ? "\n" : ",\n")
              << "        {\"ruleId\": " << JsonText(CodeText(message.code))
              << ", \"level\": " << JsonText(documents::SeverityText(message.severity))
              << ", \"message\": {\"text\": " << JsonText(message.text)
              << "},\n         \"locations\": [{\"physicalLocation\": {\"artifactLocation\": "
                 "{\"uri\": "
              << JsonText(UriOf(file.name)) << '}';
    if (message.line != 0) {
        std::cout << ", \"region\": {\"startLine\": " << message.line;
        if (message.column != 0)
            std::cout << ", \"startColumn\": " << message.column;
        std::cout << '}';
    }
    std::cout << '}';
    if (!message.path.empty())
        std::cout << ", \"logicalLocations\": [{\"fullyQualifiedName\": " << JsonText(message.path)
                  << "}]";
    std::cout << "}]}";
}

void PrintRules()
{
    bool first = true;
    for (const documents::Finding& finding : documents::Findings()) {
        std::cout << (first ? "\n" : ",\n") << "          {\"id\": " << JsonText(finding.text)
                  << ", \"shortDescription\": {\"text\": " << JsonText(finding.says)
                  << "}, \"help\": {\"text\": "
                  << JsonText(std::string(finding.cause) + ' ' + std::string(finding.cure)) << "}}";
        first = false;
    }
}

} // namespace

void PrintFindings(const std::vector<CheckedFile>& files, std::size_t most, bool quiet)
{
    Budget budget(most);
    Counts all;
    std::size_t hidden = 0;
    for (const CheckedFile& file : files) {
        for (const Diagnostic& message : file.findings.items)
            if (budget.Take())
                PrintFinding(message);
            else
                ++hidden;
        Counts counts;
        counts.Add(file);
        all.Add(file);
        if (!quiet)
            std::cout << Printable(std::string_view(file.name)) << ": " << counts.Text() << '\n';
    }
    if (hidden > 0)
        std::cout << hidden << (hidden == 1 ? " more finding is" : " more findings are")
                  << " not shown\n";
    if (!quiet && files.size() > 1)
        std::cout << files.size() << " documents: " << all.Text() << '\n';
}

void PrintJson(const std::vector<CheckedFile>& files, std::size_t most)
{
    Budget budget(most);
    if (files.size() == 1) {
        PrintFile(files.front(), budget, {});
        std::cout << '\n';
        return;
    }
    Counts all;
    for (const CheckedFile& file : files)
        all.Add(file);
    std::cout << "{\n  \"errors\": " << all.errors << ",\n  \"warnings\": " << all.warnings
              << ",\n  \"documents\": [\n";
    for (std::size_t index = 0; index < files.size(); ++index) {
        PrintFile(files[index], budget, "    ");
        std::cout << (index + 1 < files.size() ? ",\n" : "\n");
    }
    std::cout << "  ]\n}\n";
}

void PrintSarif(const std::vector<CheckedFile>& files, std::size_t most)
{
    Budget budget(most);
    std::cout << "{\n  \"version\": \"2.1.0\",\n"
                 "  \"$schema\": \"https://json.schemastore.org/sarif-2.1.0.json\",\n"
                 "  \"runs\": [\n    {\n      \"tool\": {\"driver\": {\"name\": \"karmp\", "
                 "\"version\": \"" KARMP_TOOL_VERSION "\", \"rules\": [";
    PrintRules();
    std::cout << "\n      ]}},\n      \"columnKind\": \"unicodeCodePoints\",\n      \"results\": [";
    bool first = true;
    for (const CheckedFile& file : files)
        for (const Diagnostic& message : file.findings.items)
            if (budget.Take()) {
                PrintResult(file, message, first);
                first = false;
            }
    std::cout << (first ? "]\n" : "\n      ]\n") << "    }\n  ]\n}\n";
}

} // namespace karmp::tool
