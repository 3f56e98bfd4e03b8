// karmp looks at, checks and converts the documents of mechanisms.
#include "Commands.h"
#include "Completions.h"
#include "Loading.h"
#include "Manual.h"
#include "OptionTree.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <exception>
#include <functional>
#include <iostream>
#include <limits>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace {

using namespace karmp::tool;

constexpr const char* ExitCodes =
    "The file - is standard input, or standard output.\n\n"
    "Exit code: 0 when all is well, 1 when there are findings, 2 when a file is not read or not "
    "written, 64 when the arguments are wrong.";

constexpr const char* WrittenAnew =
    "The document is written anew, the entities of a family in the order of their identifiers. "
    "Comments are not kept: a document with some is overwritten with --force and --backup "
    "only.\n\n";

std::string Footer(const char* example)
{
    return std::string("Example:\n  ") + example + "\n\n" + ExitCodes;
}

// The library's own check tells the range in hundreds of digits, and takes a NaN.
const CLI::Validator NotNegative(
    [](const std::string& text) {
        double number = 0.0;
        const char* const end = text.data() + text.size();
        const auto [next, error] = std::from_chars(text.data(), end, number);
        const bool holds = error == std::errc() && next == end && std::isfinite(number);
        return holds && number >= 0.0 ? std::string() : '"' + text + "\" is no number from 0 on";
    },
    "");

// The same for numbers without a fraction; what the library says of a number that it cannot convert
// names neither the argument's range nor what is wrong.
CLI::Validator WholeNumber(int least, int most, const std::string& range = {})
{
    return CLI::Validator(
        [least, most](const std::string& text) {
            int number = 0;
            const char* const end = text.data() + text.size();
            const auto [next, error] = std::from_chars(text.data(), end, number);
            const bool holds = error == std::errc() && next == end;
            return holds && number >= least && number <= most
                       ? std::string()
                       : '"' + text + "\" is no whole number from " + std::to_string(least) +
                             " to " + std::to_string(most);
        },
        range);
}

const CLI::Validator CountOrZero = WholeNumber(0, std::numeric_limits<int>::max());

// An option that is there and says nothing is a variable of a script that was not set, mostly.
void RefuseEmptyTexts(CLI::App& app)
{
    const CLI::Validator notEmpty(
        [](const std::string& text) {
            return text.empty() ? std::string("the text is empty") : std::string();
        },
        "");
    for (CLI::App* const command : app.get_subcommands({}))
        for (CLI::Option* const option : command->get_options())
            option->check(notEmpty);
}

// The same of "--option=". Flags take that for their default.
void RefuseEmptyTexts(int argc, const char* const* argv)
{
    for (int index = 1; index < argc; ++index) {
        const std::string_view argument(argv[index]);
        if (argument == "--")
            return;
        if (argument.starts_with("--") && argument.find('=') == argument.size() - 1)
            throw CLI::ValidationError(std::string(argument.substr(0, argument.size() - 1)),
                                       "the text is empty");
    }
}

// The words of a list between commas, as those of several arguments.
void PartAtCommas(const CLI::Option& option, std::vector<std::string>& words)
{
    std::vector<std::string> parts;
    for (const std::string& word : words)
        for (std::size_t begin = 0; begin <= word.size();) {
            const std::size_t end = std::min(word.find(',', begin), word.size());
            parts.push_back(word.substr(begin, end - begin));
            if (parts.back().find_first_not_of(' ') == std::string::npos)
                throw CLI::ValidationError(option.get_name(), "a word of the list is empty");
            begin = end + 1;
        }
    words = std::move(parts);
}

// A descriptor that is closed would be taken by the next file that is opened, and what is printed
// would get into that. In its place stands one whose reads or writes fail.
void KeepStandardStreams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        while (::fcntl(stream, F_GETFD) < 0) {
            const int mode = stream == STDIN_FILENO ? O_WRONLY : O_RDONLY;
            if (::open("/dev/null", mode) < 0)
                break;
        }
}

// The exit code, unless what was printed could not be written.
int Flushed(int code)
{
    if (std::cout.flush())
        return code;
    std::cerr << "karmp: cannot write to standard output\n";
    return Unreadable;
}

// The options of the commands that write documents.
void AddWriting(CLI::App& command, WriteOptions& writing)
{
    command.add_flag("--force", writing.force,
                     "Write what could be read of a document with errors; onto itself only with "
                     "--backup");
    command.add_flag("--backup{~}", writing.backup,
                     "Keep the file that is replaced; --backup=.old for another ending than ~");
    command.add_flag("--dry-run", writing.dryRun,
                     "Tell all that is told otherwise, with the same exit code, and what would be "
                     "lost; write nothing");
    command.add_flag("--json", writing.json, "Tell it as JSON");
}

int Run(int argc, char** argv)
{
    // The outputs of a document belong to it: without this they are neither read nor written.
    ::setenv("MOT_DUMP_OUTPUTS", "1", 1);
    CLI::App app("Looks at, checks and converts the documents of mechanisms.", "karmp");
    app.set_version_flag("--version", std::string("karmp " KARMP_TOOL_VERSION));
    app.require_subcommand(0, 1); // so that an unknown command is named
    app.callback([&app] {
        if (app.get_subcommands().empty())
            throw CLI::RequiredError("A command");
    });
    app.footer(std::string("'karmp COMMAND --help' tells more about a command.\n\n") + ExitCodes);
    std::function<int()> command;

    InfoOptions info;
    CLI::App* infoApp = app.add_subcommand(
        "info",
        "Settings, globals, counts by family and class, masses, what drives, force elements "
        "and sensors act on or measure, estimated mobility");
    infoApp->add_option("FILE", info.file, "Document")->required();
    infoApp->add_flag("--json", info.json, "As JSON, a list of labels and texts for each section");
    infoApp->footer(Footer("karmp info crank.xml"));
    infoApp->callback([&] { command = [&info] { return RunInfo(info); }; });

    TreeOptions tree;
    CLI::App* treeApp = app.add_subcommand(
        "tree", "The entities with their links by name, and the numbers of constants");
    treeApp->add_option("FILE", tree.file, "Document")->required();
    treeApp->add_option("--family", tree.family, "Only this list, for example joints");
    treeApp->add_flag("--json", tree.json, "As JSON");
    treeApp->add_flag("--ids", tree.identifiers, "Identifiers behind the names");
    treeApp->footer(Footer("karmp tree crank.xml --family Joints"));
    treeApp->callback([&] { command = [&tree] { return RunTree(tree); }; });

    CheckOptions check;
    CLI::App* checkApp =
        app.add_subcommand("check", "All that reading passes over in silence, and what it reports");
    CLI::Option* const checkFiles = checkApp->add_option(
        "FILE", check.files, "Documents, folders with documents (*.xml), or - for standard input");
    CLI::Option* const listed =
        checkApp->add_flag("--files-from-input", check.listed,
                           "Names of further files and folders in standard input, one a line");
    CLI::Option* const checkJson = checkApp->add_flag("--json", check.json, "Findings as JSON");
    checkApp->add_flag("--sarif", check.sarif, "Findings as SARIF 2.1.0")->excludes(checkJson);
    checkApp->add_flag("-q,--quiet", check.quiet, "Findings only, no summary");
    checkApp->add_option("--max", check.most, "Findings to print; all are counted")
        ->check(CountOrZero);
    CLI::Option* const disabled =
        checkApp->add_option("--disable", check.disabled, "Codes of findings to leave out")
            ->allow_extra_args(false);
    CLI::Option* const errors =
        checkApp->add_option("--error", check.errors, "Codes of findings that are errors")
            ->allow_extra_args(false);
    checkApp
        ->add_option("--fail-on", check.failOn, "The least finding for which the exit code is 1")
        ->check(CLI::IsMember({"warning", "error", "never"}))
        ->capture_default_str();
    checkApp->add_option("--explain", check.explained, "Cause and cure of a code, or of all")
        ->excludes(checkFiles)
        ->excludes(listed);
    checkApp->footer(Footer("karmp check crank.xml --disable loose-body --fail-on error"));
    checkApp->callback([&, disabled, errors] {
        PartAtCommas(*disabled, check.disabled);
        PartAtCommas(*errors, check.errors);
        if (check.files.empty() && !check.listed && check.explained.empty())
            throw CLI::RequiredError("FILE");
        command = [&check] { return RunCheck(check); };
    });

    DiffOptions diff;
    bool isReloaded = false;
    CLI::App* diffApp = app.add_subcommand(
        "diff", "What two documents differ in, whatever the order and the identifiers of entities");
    diffApp->add_option("A", diff.before, "Document")->required()->type_name("FILE");
    CLI::Option* const other =
        diffApp->add_option("B", diff.after, "Document to compare with")->type_name("FILE");
    CLI::Option* const reloaded = diffApp->add_flag(
        "--reloaded", isReloaded, "Compare with what the document is after a save and a load");
    other->excludes(reloaded);
    diffApp
        ->add_option("--tolerance", diff.tolerance,
                     "Share of the greater magnitude by which numbers may differ")
        ->check(NotNegative)
        ->capture_default_str();
    diffApp
        ->add_option("--floor", diff.floor,
                     "Amount by which numbers may differ; 1e-12 with a tolerance, 0 without one")
        ->check(NotNegative);
    diffApp->add_flag("--by-name", diff.byName,
                      "Match by names and links alone, whatever the identifiers");
    diffApp->add_flag("--ids", diff.identifiers, "Identifiers behind the names");
    diffApp->add_flag("--json", diff.json, "Differences as JSON");
    diffApp->add_flag("-q,--quiet", diff.quiet, "No output, the exit code alone");
    diffApp->footer("Example:\n  karmp diff old.xml new.xml --tolerance 1e-9\n\n"
                    "The file - is standard input.\n\n"
                    "Exit code: 0 when there is no difference, 1 when there are some, 2 when a "
                    "file is not read, 64 when the arguments are wrong.");
    diffApp->callback([&] {
        if (diff.after.empty() && !isReloaded)
            throw CLI::RequiredError("B or --reloaded");
        if (diff.before == "-" && diff.after == "-")
            throw CLI::ValidationError("A, B", "standard input can be read once only");
        command = [&diff] { return RunDiff(diff); };
    });

    ConvertOptions convert;
    CLI::App* convertApp = app.add_subcommand(
        "convert", "Writes a document in canonical form, for another version if asked, and lists "
                   "what that version cannot hold");
    convertApp->add_option("INPUT", convert.input, "Document to read")
        ->required()
        ->type_name("FILE");
    convertApp->add_option("OUTPUT", convert.writing.output, "Document to write")
        ->required()
        ->type_name("FILE");
    convertApp->add_option("--to", convert.version, "Version to write, for example R2016.1");
    convertApp->add_flag("--exact", convert.exact,
                         "All doubles as they are, off the grid of 1e-12");
    AddWriting(*convertApp, convert.writing);
    convertApp->footer(
        "A document with errors, or with items that nothing reads, is not converted, "
        "because what they are about would be lost; --force does it all the same, "
        "but onto the document itself only when --backup keeps that. The same goes for the "
        "comments of a document that is converted onto itself.\n\n" +
        Footer("karmp convert crank.xml old.xml --to R2016.1"));
    convertApp->callback([&] { command = [&convert] { return RunConvert(convert); }; });

    ExtractOptions extract;
    CLI::App* extractApp = app.add_subcommand(
        "extract", "The part of a mechanism around some bodies, as a document of its own");
    extractApp->add_option("FILE", extract.file, "Document")->required();
    extractApp->add_option("--body", extract.bodies, "Bodies by name or identifier")
        ->required()
        ->expected(1, -1);
    extractApp
        ->add_option("--reach", extract.reach,
                     "Joints that lead on to further bodies, from each body on")
        ->check(CountOrZero)
        ->capture_default_str();
    CLI::Option* const with = extractApp->add_option(
        "--with", extract.families,
        "What else is taken along where all that it refers to is: connectors, "
        "actuators, sensors, interactions, ..., or all");
    extractApp->add_option("-o,--output", extract.writing.output, "Document to write")
        ->required()
        ->type_name("FILE");
    extractApp->add_flag("-q,--quiet", extract.quiet, "No list of the links that were cut");
    AddWriting(*extractApp, extract.writing);
    extractApp->footer(
        "Geometries, shapes, joints, constraints, variables and the values that they "
        "use come with the bodies.\n\n" +
        Footer("karmp extract car.xml --body hub wheel --with connectors,sensors "
               "-o wheel.xml"));
    extractApp->callback([&, with] {
        PartAtCommas(*with, extract.families);
        command = [&extract] { return RunExtract(extract); };
    });

    EditOptions edit;
    const auto addEdit = [&](const char* name, const char* says, int (*run)(const EditOptions&)) {
        CLI::App* const editApp = app.add_subcommand(name, says);
        editApp->add_option("FILE", edit.file, "Document")->required();
        editApp
            ->add_option("-o,--output", edit.writing.output,
                         "Document to write; FILE itself without it")
            ->type_name("FILE");
        AddWriting(*editApp, edit.writing);
        editApp->callback([&, run] { command = [&edit, run] { return run(edit); }; });
        return editApp;
    };
    CLI::App* const setApp =
        addEdit("set", "Sets items of an entity, which 'karmp schema --text CLASS' lists", RunSet);
    setApp->add_option("ENTITY", edit.entity, "Name or identifier")->required();
    setApp->add_option("ITEM=VALUE", edit.assignments, "Item, by name or path, and value")
        ->required()
        ->check(CLI::Validator(
            [](const std::string& text) {
                return text.find('=') == std::string::npos ? "\"" + text + "\" has no =" : "";
            },
            ""));
    setApp->footer(
        "What items a class has and what values they take stands at the end of 'karmp schema "
        "--text CLASS'. Numbers stand with commas between them, in the order of the document, and "
        "are finite; flags are yes or no. Entities are told by name or identifier, several with "
        "commas between them; one with a comma in its name, in a list of several, by its "
        "identifier. An empty value, or None, takes references away, and a number that need not "
        "be there. Links are made on both sides.\n\n" +
        std::string(WrittenAnew) +
        Footer("karmp set crank.xml Rocker Mass=0.75 COG=0.1,0,0 --dry-run"));
    CLI::App* const deleteApp = addEdit(
        "delete",
        "Deletes entities with what they own: a joint with its constraints, a body with its "
        "geometries",
        RunDelete);
    deleteApp->add_option("ENTITY", edit.entities, "Names or identifiers")
        ->required()
        ->expected(1, -1);
    deleteApp->add_flag("--with-short", edit.withShort,
                        "Also what would lack something: joints of the body, and so on");
    deleteApp->footer(
        "What lacks something afterwards is told, also as \"short\" in the JSON; the exit code "
        "does not say it.\n\n" +
        std::string(WrittenAnew) + Footer("karmp delete crank.xml Rocker --with-short --backup"));
    CLI::App* const renameApp =
        addEdit("rename", "Gives an entity another name; its identifier stays", RunRename);
    renameApp->add_option("ENTITY", edit.entity, "Name or identifier")->required();
    renameApp->add_option("NAME", edit.name, "The new name")->required();
    renameApp->footer(WrittenAnew + Footer("karmp rename crank.xml Rocker \"Output rocker\""));

    ShapeOptions shape;
    CLI::App* shapeApp = app.add_subcommand(
        "shape", "Puts the mesh of a part file on a body, or writes what bodies look like as glTF");
    shapeApp->add_option("FILE", shape.file, "Document")->required();
    CLI::Option* const shapeBody =
        shapeApp
            ->add_option("--body", shape.bodies,
                         "Body by name or identifier; of an export any number, all without it")
            ->expected(1, -1);
    CLI::Option* const part =
        shapeApp
            ->add_option("--add", shape.part,
                         "Part to put on the body: a file .stl, .obj, .ply, .gltf or .glb")
            ->type_name("FILE");
    CLI::Option* const folder = shapeApp
                                    ->add_option("--export", shape.folder,
                                                 "Folder for a glTF file of each body with shapes")
                                    ->type_name("FOLDER");
    shapeApp->add_option("--scale", shape.scale, "Factor of the part's lengths")
        ->check(CLI::Range(1e-9, 1e9))
        ->capture_default_str()
        ->needs(part);
    shapeApp
        ->add_option("-o,--output", shape.writing.output,
                     "Document to write; standard output without it")
        ->type_name("FILE")
        ->needs(part);
    AddWriting(*shapeApp, shape.writing);
    shapeApp->get_option("--backup")->needs(part);
    folder->excludes(part);
    part->needs(shapeBody);
    shapeApp->footer(
        "Lengths and axes of a part are those of the body, as they are. --force also replaces "
        "files of an export.\n\n" +
        Footer("karmp shape arm.xml --body Gripper --add gripper.stl --scale 0.001 -o new.xml"));
    shapeApp->callback([&, part, folder] {
        if (part->empty() && folder->empty())
            throw CLI::RequiredError("--add or --export");
        if (!part->empty() && shape.bodies.size() != 1)
            throw CLI::ValidationError("--body", "a part is added to one body");
        if (shape.folder == StandardStream)
            throw CLI::ValidationError(
                "--export", "standard output is no folder; a folder of that name is ./-");
        if (std::isnan(shape.scale))
            throw CLI::ValidationError("--scale", "this is no number");
        const auto run = part->empty() ? RunExportShapes : RunAddShape;
        command = [&shape, run] { return run(shape); };
    });

    GraphOptions graph;
    CLI::App* graphApp = app.add_subcommand(
        "graph",
        "The graph of bodies, joints and force elements, as Graphviz text or as a picture");
    graphApp->add_option("FILE", graph.file, "Document")->required();
    graphApp->add_option("-o,--output", graph.output, "File to write; standard output without it")
        ->type_name("FILE");
    graphApp->add_option("--format", graph.format, "By the ending of the output without it")
        ->check(CLI::IsMember({"dot", "svg", "png", "pdf"}));
    graphApp
        ->add_option("--time-limit", graph.timeLimit,
                     "Seconds after which Graphviz is stopped and no picture written")
        ->check(WholeNumber(1, 86400, "INT in [1 - 86400]"))
        ->capture_default_str();
    CLI::Option* const around = graphApp->add_option(
        "--around", graph.around, "Only what is near a body, by name or identifier");
    graphApp
        ->add_option("--reach", graph.reach,
                     "Joints from that body to the last ones that are drawn")
        ->check(CountOrZero)
        ->capture_default_str()
        ->needs(around);
    graphApp->add_flag("--all", graph.all,
                       "Draw a mechanism of more than 3,000 bodies, or 1,000 in a PNG, whole");
    graphApp->add_flag("--sensors", graph.sensors, "Sensors as notes on what they measure");
    graphApp->add_flag("--collisions", graph.collisions,
                       "The pairs of collision rules as dotted edges");
    graphApp->footer(
        "Ground is hatched. A joint is a node in the colour and shape of its kind, with an arrow "
        "to the In body; thick edges belong to joints that close a loop, counted from the ground. "
        "Springs, bushings and other force elements have dashed edges. The joint that a motor "
        "drives and the joint or body that a force acts on say so. What is inactive is grey.\n\n" +
        Footer("karmp graph crank.xml --output crank.svg"));
    graphApp->callback([&] { command = [&graph] { return RunGraph(graph); }; });

    ViewOptions view;
    CLI::App* viewApp = app.add_subcommand(
        "view", "The mechanism in space as one page for a browser, which loads nothing else");
    viewApp->add_option("FILE", view.file, "Document")->required();
    viewApp->add_option("-o,--output", view.output, "File to write; standard output without it")
        ->type_name("FILE");
    viewApp->footer(
        "The page needs a browser with WebGL 2 and no network. It shows bodies by their "
        "shapes or, without one, by their geometry, joints and springs as symbols, and "
        "the tree of entities beside them; press ? for the keys.\n\n" +
        Footer("karmp view crank.xml --output crank.html"));
    viewApp->callback([&] { command = [&view] { return RunView(view); }; });

    OutputsOptions outputs;
    CLI::App* outputsApp = app.add_subcommand(
        "outputs", "Parameters, states and outputs of the entities by path, with their values");
    outputsApp->add_option("FILE", outputs.file, "Document")->required();
    CLI::Option* const csv =
        outputsApp->add_flag("--csv", outputs.csv, "Comma-separated, a line for each value");
    outputsApp->add_flag("--json", outputs.json, "As JSON, paths as lists")->excludes(csv);
    outputsApp->footer(Footer("karmp outputs run.xml --csv"));
    outputsApp->callback([&] { command = [&outputs] { return RunOutputs(outputs); }; });

    SchemaOptions schema;
    bool isCompact = false;
    CLI::App* schemaApp = app.add_subcommand(
        "schema", "What documents hold, as a schema for editors and validators or for readers");
    auto* const forms = schemaApp->add_option_group("form", "RELAX NG (compact) without one");
    forms->add_flag("--rnc", isCompact, "RELAX NG in the compact syntax");
    forms->add_flag("--rng", schema.rng, "RELAX NG as XML");
    forms->add_flag("--xsd", schema.xsd, "W3C XML Schema");
    CLI::Option* const text =
        forms->add_option("--text", schema.className, "One class, or its element, for a reader");
    CLI::Option* const reference = forms->add_flag("--reference", schema.reference,
                                                   "The reference of all classes as Markdown");
    forms->require_option(0, 1);
    schemaApp
        ->add_option("--for", schema.version,
                     "Version of the documents, the current one without it; schemas only")
        ->excludes(text)
        ->excludes(reference);
    schemaApp->footer(Footer("karmp schema --rng --for R2017.0 > karmp.rng"));
    schemaApp->callback([&] { command = [&schema] { return RunSchema(schema); }; });

    // Not listed in the help: installing prints the files by them.
    std::string shell;
    CLI::App* completionsApp =
        app.add_subcommand("completions", "Completions for a shell")->group("");
    completionsApp->add_option("SHELL", shell, "Shell that is to source them")
        ->required()
        ->check(CLI::IsMember({"bash", "zsh", "fish"}));
    completionsApp->callback([&] {
        command = [&app, &shell] {
            const auto print = shell == "bash"  ? BashCompletions
                               : shell == "zsh" ? ZshCompletions
                                                : FishCompletions;
            std::cout << print(ReadOptions(app));
            return Clean;
        };
    });
    CLI::App* manualApp = app.add_subcommand("manual", "The manual page")->group("");
    manualApp->callback([&] {
        command = [&app] {
            std::cout << ManualPage(ReadOptions(app), KARMP_TOOL_VERSION, ExitCodes);
            return Clean;
        };
    });

    RefuseEmptyTexts(app);
    try {
        RefuseEmptyTexts(argc, argv);
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return Flushed(app.exit(error) == 0 ? Clean : WrongArguments);
    }
    return Flushed(command());
}

} // namespace

int main(int argc, char** argv)
{
    KeepStandardStreams();
    try {
        return Run(argc, argv);
    } catch (const std::exception& exception) {
        std::cerr << "karmp: " << exception.what() << '\n';
        return Unreadable;
    }
}
