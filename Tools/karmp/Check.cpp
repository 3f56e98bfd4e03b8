#include "Commands.h"
#include "FindingOutput.h"
#include "KARMPDocuments.h"
#include "KARMPWorld.h"
#include "Loading.h"
#include "Output.h"
#include "Progress.h"
#include "ToolLimits.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <optional>
#include <set>

namespace karmp::tool {

namespace {

using documents::Code;
using documents::Diagnostic;
using documents::FindCode;
using documents::Severity;

namespace fs = std::filesystem;

/// Which codes are left out and which are errors.
struct Selection
{
    std::set<Code> disabled;
    std::set<Code> errors;
};

bool Refuse(const std::string& text)
{
    std::cerr << "karmp: " << Printable(std::string_view(text)) << '\n';
    return false;
}

bool AddCodes(const std::vector<std::string>& texts, std::set<Code>& codes)
{
    for (const std::string& text : texts) {
        const std::optional<Code> code = FindCode(text);
        if (!code)
            return Refuse("there is no finding \"" + text +
                          "\"; docs/findings.md lists all, and "
                          "'karmp check --explain all' prints them");
        codes.insert(*code);
    }
    return true;
}

// The documents of a folder and those below it, in the order of their names.
bool AddFolder(const fs::path& folder, std::vector<std::string>& files)
{
    std::error_code failure;
    std::vector<std::string> found;
    fs::recursive_directory_iterator entry(folder, failure);
    for (; !failure && entry != fs::recursive_directory_iterator(); entry.increment(failure))
        if (entry->is_regular_file(failure) && entry->path().extension() == ".xml")
            found.push_back(entry->path().string());
    if (failure)
        return Refuse("cannot read the folder \"" + folder.string() + "\": " + failure.message());
    std::sort(found.begin(), found.end());
    std::move(found.begin(), found.end(), std::back_inserter(files));
    return true;
}

// All files that are meant: those in folders, and those whose names stand in standard input.
bool FindFiles(const CheckOptions& options, std::vector<std::string>& files)
{
    std::vector<std::string> named = options.files;
    if (options.listed) {
        std::string line;
        while (std::getline(std::cin, line))
            if (!line.empty())
                named.push_back(line);
    }
    for (const std::string& name : named) {
        std::error_code missing;
        if (fs::is_directory(name, missing)) {
            if (!AddFolder(name, files))
                return false;
        } else {
            files.push_back(name);
        }
    }
    return true;
}

CheckedFile CheckOne(const std::string& file, const Selection& selection,
                     documents::ProgressFunction progress)
{
    documents::LoadOptions load;
    load.check = documents::CheckLevel::Mechanism;
    load.limits.diagnostics = MostProblems;
    CheckedFile checked{file, {}, false};
    load.progress = std::move(progress);
    documents::LoadResult result = Load(file, load);
    checked.isRead = static_cast<bool>(result.world);
    checked.findings = std::move(result.diagnostics);
    std::vector<Diagnostic>& items = checked.findings.items;
    items.erase(std::remove_if(items.begin(), items.end(),
                               [&](const Diagnostic& item) {
                                   return selection.disabled.count(item.code) != 0;
                               }),
                items.end());
    for (Diagnostic& item : items)
        if (selection.errors.count(item.code) != 0)
            item.severity = Severity::Error;
    return checked;
}

// The progress of one file counts its entities, that of several ones the files.
std::vector<CheckedFile> CheckAll(const std::vector<std::string>& files, const Selection& selection)
{
    std::vector<CheckedFile> checked;
    if (files.size() == 1) {
        Progress progress("checking " + Printable(std::string_view(files.front())));
        checked.push_back(CheckOne(files.front(), selection, progress.Function()));
        return checked;
    }
    Progress progress("checking", "files");
    for (const std::string& file : files) {
        progress.Show(checked.size(), files.size());
        checked.push_back(CheckOne(file, selection, {}));
    }
    return checked;
}

int Explain(const std::string& text)
{
    if (text == "all") {
        std::cout << documents::FindingsReference();
        return Clean;
    }
    std::set<Code> codes;
    if (!AddCodes({text}, codes))
        return WrongArguments;
    for (const documents::Finding& finding : documents::Findings())
        if (finding.code == *codes.begin())
            std::cout << finding.text << " (" << documents::SeverityText(finding.severity)
                      << ")\n  What   " << finding.says << "\n  Cause  " << finding.cause
                      << "\n  Cure   " << finding.cure << '\n';
    return Clean;
}

} // namespace

int RunCheck(const CheckOptions& options)
{
    if (!options.explained.empty())
        return Explain(options.explained);
    Selection selection;
    std::vector<std::string> files;
    if (!AddCodes(options.disabled, selection.disabled) ||
        !AddCodes(options.errors, selection.errors))
        return WrongArguments;
    if (!FindFiles(options, files))
        return Unreadable;
    const auto fromInput = std::count(files.begin(), files.end(), StandardStream);
    if (fromInput > (options.listed ? 0 : 1)) {
        Refuse("standard input can be read once only");
        return WrongArguments;
    }
    if (files.empty()) {
        Refuse("there is no document to check");
        return Unreadable;
    }
    const std::vector<CheckedFile> checked = CheckAll(files, selection);
    if (options.json)
        PrintJson(checked, options.most);
    else if (options.sarif)
        PrintSarif(checked, options.most);
    else
        PrintFindings(checked, options.most, options.quiet);
    const bool allRead = std::all_of(checked.begin(), checked.end(),
                                     [](const CheckedFile& file) { return file.isRead; });
    if (!allRead)
        return Unreadable;
    const bool hasFindings =
        std::any_of(checked.begin(), checked.end(), [&options](const CheckedFile& file) {
            return options.failOn == "error" ? file.findings.HasErrors()
                                             : !file.findings.items.empty();
        });
    return hasFindings && options.failOn != "never" ? Findings : Clean;
}

} // namespace karmp::tool
