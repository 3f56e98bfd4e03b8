#include "Commands.h"
#include "KARMPBody.h"
#include "KARMPJoint.h"
#include "KARMPWorld.h"
#include "Loading.h"
#include "Output.h"

#include <array>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <sstream>
#include <unordered_map>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace karmp::tool {

namespace {

std::string Quoted(const std::string& text)
{
    std::string label = "\"";
    for (const char character : text) {
        if (character == '"' || character == '\\')
            label += '\\';
        label += character;
    }
    return label + '"';
}

std::string LabelOf(const KARMPEntity& entity)
{
    if (!entity.getEntityName().empty())
        return Printable(entity.getEntityName());
    std::wstring identifier;
    entity.GetIdentifier(identifier);
    return Printable(identifier);
}

/// Writes the graph: bodies are boxes, a joint of two bodies is an edge, any other joint a node.
class GraphWriter
{
public:
    GraphWriter(const KARMPWorld& world, std::ostream& stream) : m_world(world), m_stream(stream) {}

    void Write()
    {
        m_stream << "graph mechanism {\n  graph [overlap=false, splines=true];\n"
                    "  node [shape=box, fontname=\"sans-serif\"];\n"
                    "  edge [fontname=\"sans-serif\", fontsize=10];\n";
        QOBSharedHandle<KARMPBody> global;
        m_world.GetGlobalBody(global);
        for (int index = 0; index < m_world.GetBodyCount(); ++index) {
            QOBSharedHandle<KARMPBody> body;
            if (m_world.Get<KARMPBody>(index, body) == KARSuccess)
                WriteBody(body, body == global);
        }
        for (int index = 0; index < m_world.Count<KARMPJoint>(); ++index) {
            QOBSharedHandle<KARMPJoint> joint;
            if (m_world.Get<KARMPJoint>(index, joint) == KARSuccess)
                WriteJoint(*joint, index);
        }
        m_stream << "}\n";
    }

private:
    void WriteBody(const QOBSharedHandle<KARMPBody>& body, bool global)
    {
        const std::string node = 'b' + std::to_string(m_nodes.size());
        m_nodes.emplace(body._getReferent(), node);
        m_stream << "  " << node << " [label=" << Quoted(LabelOf(*body));
        if (global || body->IsFixed())
            m_stream << ", style=filled, fillcolor=lightgrey";
        m_stream << "];\n";
    }

    void WriteJoint(const KARMPJoint& joint, int index)
    {
        constexpr std::size_t PrefixLength = 5; // KARMP
        const std::string kind = joint.getClassName().substr(PrefixLength);
        std::vector<std::string> ends;
        for (int i = 0; i < joint.GetLinkedBodyCount(); ++i) {
            QOBSharedHandle<KARMPBody> body;
            if (joint.GetLinkedBody(i, body) != KARSuccess)
                continue;
            if (const auto node = m_nodes.find(body._getReferent()); node != m_nodes.end())
                ends.push_back(node->second);
        }
        const std::string label = Quoted(LabelOf(joint) + "\n" + kind);
        if (ends.size() == 2) {
            m_stream << "  " << ends[0] << " -- " << ends[1] << " [label=" << label << "];\n";
            return;
        }
        const std::string node = 'j' + std::to_string(index);
        m_stream << "  " << node << " [shape=ellipse, label=" << label << "];\n";
        for (const std::string& end : ends)
            m_stream << "  " << node << " -- " << end << ";\n";
    }

    const KARMPWorld& m_world;
    std::ostream& m_stream;
    std::unordered_map<const void*, std::string> m_nodes;
};

// Runs Graphviz without a shell, so that no file name is taken for a command. Its input is a file
// that is unlinked at once.
bool RenderPicture(const std::string& text, const std::string& format, const std::string& output)
{
    std::FILE* input = std::tmpfile();
    if (input == nullptr)
        return false;
    const bool written =
        std::fwrite(text.data(), 1, text.size(), input) == text.size() && std::fflush(input) == 0;
    std::rewind(input);
    int status = -1;
    if (const pid_t child = written ? ::fork() : -1; child == 0) {
        ::dup2(::fileno(input), STDIN_FILENO);
        const std::string type = "-T" + format;
        const std::string file = "-o" + output;
        ::execlp("dot", "dot", "-Kneato", type.c_str(), file.c_str(), nullptr);
        ::_exit(127);
    } else if (child > 0) {
        ::waitpid(child, &status, 0);
    }
    std::fclose(input);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 127)
        std::cerr << "karmp: Graphviz is not installed; write the graph as text (.dot)\n";
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

std::string FormatOf(const GraphOptions& options)
{
    if (!options.format.empty())
        return options.format;
    const auto dot = options.output.rfind('.');
    const std::string ending = dot == std::string::npos ? "" : options.output.substr(dot + 1);
    return ending == "svg" || ending == "png" ? ending : "dot";
}

} // namespace

int RunGraph(const GraphOptions& options)
{
    const std::string format = FormatOf(options);
    if (format != "dot" && options.output.empty()) {
        std::cerr << "karmp: a picture needs --output\n";
        return Unreadable;
    }
    const auto loaded = LoadWorld(options.file);
    if (!loaded)
        return Unreadable;
    std::ostringstream text;
    GraphWriter(*loaded->world, text).Write();

    if (options.output.empty()) {
        std::cout << text.str();
    } else if (format != "dot") {
        if (!RenderPicture(text.str(), format, options.output)) {
            std::cerr << "karmp: cannot make the picture "
                      << Printable(std::string_view(options.output)) << '\n';
            return Unreadable;
        }
    } else if (std::ofstream file(options.output, std::ios::binary);
               !(file << text.str() << std::flush)) {
        std::cerr << "karmp: cannot write " << Printable(std::string_view(options.output)) << '\n';
        return Unreadable;
    }
    return loaded->diagnostics.items.empty() ? Clean : Findings;
}

} // namespace karmp::tool
