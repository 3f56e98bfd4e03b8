#include "Commands.h"
#include "Graphviz.h"
#include "KARMPBody.h"
#include "KARMPJoint.h"
#include "KARMPWholeFile.h"
#include "KARMPWorld.h"
#include "Loading.h"
#include "Output.h"

#include <chrono>
#include <iostream>
#include <optional>
#include <sstream>
#include <unordered_map>
#include <utility>

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
        m_stream << "graph mechanism {\n  graph [" << Layout()
                 << "];\n"
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
    // A layered layout. Bent edges separate two joints of one pair of bodies, but their time grows
    // fast with the number of joints, and a closed loop of thousands exhausts Graphviz's stack. The
    // limits are on the passes that shorten edges and remove crossings.
    const char* Layout() const
    {
        constexpr int largest = 250; // bodies and joints
        return m_world.GetBodyCount() + m_world.Count<KARMPJoint>() <= largest
                   ? "layout=dot, splines=polyline"
                   : "layout=dot, splines=line, nslimit=0.1, nslimit1=0.1, mclimit=0.1";
    }

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
        constexpr std::size_t PrefixLength = 5; // of "KARMP"
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
    if (IsSameFile(options.file, options.output)) {
        std::cerr << "karmp: the output is the document itself; choose another file\n";
        return Unreadable;
    }
    const auto loaded = LoadWorld(options.file);
    if (!loaded)
        return Unreadable;
    std::ostringstream text;
    GraphWriter(*loaded->world, text).Write();

    std::string bytes = text.str();
    if (format != "dot") {
        std::optional<std::string> picture =
            DrawPicture(bytes, format, std::chrono::seconds(options.timeLimit));
        if (!picture)
            return Unreadable;
        bytes = std::move(*picture);
    }
    if (options.output.empty()) {
        std::cout << bytes;
    } else if (const auto messages = documents::WriteWholeFile(options.output, bytes);
               messages.HasErrors()) {
        PrintMessages(messages, true);
        return Unreadable;
    }
    return loaded->diagnostics.items.empty() ? Clean : Findings;
}

} // namespace karmp::tool
