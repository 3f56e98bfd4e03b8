// The commands of the tool. Each returns the exit code of the process.
#pragma once

#include "Writing.h"

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

namespace karmp::tool {

/// The exit code of a command: no findings, findings, a file that cannot be read, cannot be written
/// or is not written because the input has errors, and arguments that are wrong.
enum ExitCode : int { Clean = 0, Findings = 1, Unreadable = 2, WrongArguments = 64 };

/// The arguments of `karmp info`.
struct InfoOptions
{
    std::string file;
    bool json = false;
};
/// Prints settings, globals, counts by family and class, masses, what drives, force elements and
/// sensors act on or measure, and the estimated mobility.
int RunInfo(const InfoOptions& options);

/// The arguments of `karmp tree`.
struct TreeOptions
{
    std::string file;
    std::string family; // an element such as "Joints" in any case; all when empty
    bool identifiers = false;
    bool json = false;
};
/// Prints the entities with their links by name and the numbers of the constants that they use.
int RunTree(const TreeOptions& options);

/// The arguments of `karmp check`.
struct CheckOptions
{
    std::vector<std::string> files; // or folders, or "-" for standard input
    bool listed = false;            // further names stand in standard input, one a line
    bool json = false;
    bool sarif = false;
    bool quiet = false;
    std::size_t most = std::numeric_limits<std::size_t>::max(); // findings to print
    std::vector<std::string> disabled;                          // codes
    std::vector<std::string> errors;                            // codes
    std::string failOn = "warning";                             // or "error" or "never"
    std::string explained;                                      // a code or "all"
};
/// Prints what the library skips without a report, and what it reports.
int RunCheck(const CheckOptions& options);

/// The arguments of `karmp diff`.
struct DiffOptions
{
    std::string before;
    std::string after; // empty when the first document is compared with what it reads back as
    double tolerance = 0.0;
    double floor = -1.0; // by the tolerance when negative
    bool byName = false; // identifiers tell nothing
    bool identifiers = false;
    bool json = false;
    bool quiet = false;
};
/// Prints what two documents differ in, whatever the order and the identifiers of their entities.
int RunDiff(const DiffOptions& options);

/// The arguments of `karmp convert`.
struct ConvertOptions
{
    std::string input;
    std::string version; // the input's when empty
    bool exact = false;
    WriteOptions writing;
};
/// Writes a document in canonical form, for another version if asked, and lists what that version
/// cannot hold. Of a document with errors nothing is written unless it is forced, and onto the
/// document itself with a backup only.
int RunConvert(const ConvertOptions& options);

/// The arguments of `karmp extract`.
struct ExtractOptions
{
    std::string file;
    std::vector<std::string> bodies;   // names or identifiers
    std::vector<std::string> families; // elements such as "Connectors" in any case, or "all"
    int reach = 0;
    bool quiet = false;
    WriteOptions writing;
};
/// Writes the part of a mechanism around some bodies and lists the links that were cut.
int RunExtract(const ExtractOptions& options);

/// The arguments of `karmp set`, `karmp delete` and `karmp rename`.
struct EditOptions
{
    std::string file;
    std::string entity;                   // by name or identifier, to set or to rename
    std::vector<std::string> entities;    // of delete
    std::vector<std::string> assignments; // of set, ITEM=VALUE each
    std::string name;                     // of rename
    bool withShort = false;               // of delete: what would lack something goes as well
    WriteOptions writing;                 // onto the document itself when its output is empty
};
/// Set items of an entity, delete entities with what belongs to them, give an entity another name;
/// write the document and tell what has changed.
int RunSet(const EditOptions& options);
int RunDelete(const EditOptions& options);
int RunRename(const EditOptions& options);

/// The arguments of `karmp shape`.
struct ShapeOptions
{
    std::string file;
    std::vector<std::string> bodies; // names or identifiers
    std::string part;                // file that is added to the body
    double scale = 1.0;              // of its lengths
    std::string folder;              // of the files of an export
    WriteOptions writing;            // standard output when its output is empty
};
/// Adds the mesh of a part file to a body as a representation and writes the document.
int RunAddShape(const ShapeOptions& options);
/// Writes the shapes of each body that has some as glTF, a file for each body.
int RunExportShapes(const ShapeOptions& options);

/// The arguments of `karmp graph`.
struct GraphOptions
{
    std::string file;
    std::string output; // standard output when empty or "-"
    std::string format; // dot, svg, png or pdf; by the output's ending, or dot, when empty
    int timeLimit = 60; // of Graphviz, in seconds
    std::string around; // a body by name or identifier; all bodies when empty
    int reach = 2;      // joints from it
    bool all = false;   // however many bodies there are
    bool sensors = false;
    bool collisions = false;
};
/// Writes the graph of bodies, joints and force elements as Graphviz text, or as a picture through
/// Graphviz.
int RunGraph(const GraphOptions& options);

/// The arguments of `karmp view`.
struct ViewOptions
{
    std::string file;
    std::string output; // standard output when empty
};
/// Writes a page that shows the mechanism in space beside the tree of its entities.
int RunView(const ViewOptions& options);

/// The arguments of `karmp outputs`.
struct OutputsOptions
{
    std::string file;
    bool csv = false;
    bool json = false;
};
/// Prints the parameters, states and outputs of a document's entities by path, with their values.
int RunOutputs(const OutputsOptions& options);

struct SchemaOptions
{
    bool rng = false;
    bool xsd = false;
    bool reference = false;
    std::string className; // or its element
    std::string version;   // the current one when empty
};
/// Prints the schema of documents, RELAX NG in the compact syntax unless told, or what one class
/// or all classes hold.
int RunSchema(const SchemaOptions& options);

} // namespace karmp::tool
