#include "GraphText.h"

#include "EntityText.h"
#include "KARMPBody.h"
#include "KARMPCollisionRule.h"
#include "KARMPConnector.h"
#include "KARMPDriver.h"
#include "KARMPEnumerationTexts.h"
#include "KARMPJoint.h"
#include "KARMPMotor.h"
#include "KARMPSensor.h"
#include "KARMPWorld.h"
#include "Output.h"
#include "Subjects.h"

#include <algorithm>
#include <sstream>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace karmp::tool {

namespace {

using Nodes = std::vector<std::string>;

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

std::string NameOf(const KARMPEntity& entity)
{
    const std::wstring& name = entity.getEntityName();
    return Printable(name.empty() ? IdentifierOf(entity) : name);
}

std::string NameAndClass(const KARMPEntity& entity)
{
    return NameOf(entity) + '\n' + ClassOf(entity);
}

// Calls `visit` with each entity of a family.
template <class T, class Visit>
void ForEach(const KARMPWorld& world, Visit visit)
{
    for (int index = 0; index < world.Count<T>(); ++index) {
        QOBSharedHandle<T> entity;
        if (world.Get<T>(index, entity) == KARSuccess && entity)
            visit(*entity);
    }
}

/// How joints or force elements are drawn.
struct Look
{
    const char* edge; // attributes of an edge, with a comma behind
    const char* node; // and of a node
    bool pointsAlone; // one that has one body is an edge to a point
};

constexpr Look JointLook{"", "shape=ellipse, ", false};
constexpr Look ConnectorLook{"style=dashed, ", "shape=ellipse, style=dashed, ", true};
constexpr Look CollisionLook{"style=dotted, color=red, fontcolor=red, constraint=false, ",
                             "shape=ellipse, style=dotted, color=red, fontcolor=red, ", true};

class GraphWriter
{
public:
    GraphWriter(const KARMPWorld& world, const GraphContents& contents)
        : m_world(world), m_contents(contents)
    {}

    std::string Write()
    {
        FindMarks();
        m_stream << "graph mechanism {\n  graph [" << Layout()
                 << "];\n"
                    "  node [shape=box, fontname=\"sans-serif\"];\n"
                    "  edge [fontname=\"sans-serif\", fontsize=10];\n";
        ForEach<KARMPBody>(
            m_world, [this](const KARMPBody& body) { WriteBody(body); });
        ForEach<KARMPJoint>(
            m_world, [this](const KARMPJoint& joint) { WriteJoint(joint); });
        ForEach<KARMPConnector>(m_world, [this](const KARMPConnector& connector) {
            if (!IsMark(connector))
                WriteBetween(connector, NodesOf(connector), NameAndClass(connector), ConnectorLook);
        });
        if (m_contents.collisions)
            ForEach<KARMPInteraction>(m_world, [this](const KARMPInteraction& interaction) {
                WriteCollisions(interaction);
            });
        if (m_contents.sensors)
            ForEach<KARMPSensor>(m_world,
                                 [this](const KARMPSensor& sensor) { WriteSensor(sensor); });
        m_stream << "}\n";
        return m_stream.str();
    }

private:
    // A layered layout. Bent edges separate two joints of one pair of bodies, but their time grows
    // fast with the number of joints, and a closed loop of thousands exhausts Graphviz's stack. The
    // limits are on the passes that shorten edges and remove crossings.
    const char* Layout() const
    {
        constexpr int largest = 250; // bodies, joints, force elements and sensors
        int count = m_world.Count<KARMPBody>() + m_world.Count<KARMPJoint>() +
                    m_world.Count<KARMPConnector>();
        if (m_contents.sensors)
            count += m_world.Count<KARMPSensor>();
        return count <= largest
                   ? "layout=dot, splines=polyline"
                   : "layout=dot, splines=line, nslimit=0.1, nslimit1=0.1, mclimit=0.1";
    }

    // What acts on a joint or body is written into its label, and an edge has no end on another
    // edge, so both are found before anything is written.
    void FindMarks()
    {
        ForEach<KARMPActuator>(
            m_world,
            [this](const KARMPActuator& actuator) {
                // The motors of a driver mark what they drive.
                if (dynamic_cast<const KARMPDriver*>(&actuator) != nullptr)
                    return;
                const bool isMotor = dynamic_cast<const KARMPMotor*>(&actuator) != nullptr;
                Mark(actuator, isMotor ? "driven by " : "acted on by ");
            });
        ForEach<KARMPConnector>(m_world, [this](const KARMPConnector& connector) {
            if (IsMark(connector))
                Mark(connector, "acted on by ");
        });
        if (m_contents.sensors)
            ForEach<KARMPSensor>(m_world, [this](const KARMPSensor& sensor) {
                for (const auto& subject : SubjectsOf(sensor))
                    m_measured.insert(subject.get());
            });
    }

    void Mark(const KARMPEntity& entity, const char* verb)
    {
        for (const auto& subject : SubjectsOf(entity))
            m_marks[subject.get()].push_back(verb + NameOf(entity));
    }

    // A force element that acts in a joint and names no bodies.
    static bool IsMark(const KARMPConnector& connector)
    {
        const auto subjects = SubjectsOf(connector);
        return !subjects.empty() &&
               std::none_of(subjects.begin(), subjects.end(), [](const auto& subject) {
                   return subject->isDerivedFrom(KARMPBody::ClassInfo());
               });
    }

    std::string MarksOf(const KARMPEntity& entity) const
    {
        constexpr std::size_t Most = 3;
        const auto found = m_marks.find(&entity);
        std::string text;
        if (found == m_marks.end())
            return text;
        const std::size_t count = found->second.size();
        for (std::size_t i = 0; i < std::min(count, Most); ++i)
            text += '\n' + found->second[i];
        if (count > Most)
            text += "\nand " + std::to_string(count - Most) + " more";
        return text;
    }

    const std::string& NewNode(const KARMPEntity& entity)
    {
        return m_nodes.emplace(&entity, 'n' + std::to_string(m_nodes.size())).first->second;
    }

    void WriteBody(const KARMPBody& body)
    {
        QOBSharedHandle<KARMPBody> global;
        m_world.GetGlobalBody(global);
        m_stream << "  " << NewNode(body) << " [label=" << Quoted(NameOf(body) + MarksOf(body));
        if (&body == global.get() || body.IsFixed())
            m_stream << ", style=filled, fillcolor=lightgrey";
        m_stream << "];\n";
    }

    void WriteJoint(const KARMPJoint& joint)
    {
        Nodes ends;
        for (int i = 0; i < joint.GetLinkedBodyCount(); ++i) {
            QOBSharedHandle<KARMPBody> body;
            if (joint.GetLinkedBody(i, body) == KARSuccess && body)
                AppendNode(*body, ends);
        }
        WriteBetween(joint, ends, NameAndClass(joint) + MarksOf(joint), JointLook);
    }

    void WriteBetween(const KARMPEntity& entity, const Nodes& ends, const std::string& text,
                      const Look& look)
    {
        const std::string label = "label=" + Quoted(text) + "];\n";
        const bool isMeasured = m_measured.count(&entity) != 0;
        if (ends.size() == 2 && !isMeasured) {
            m_stream << "  " << ends[0] << " -- " << ends[1] << " [" << look.edge << label;
            return;
        }
        const std::string& node = NewNode(entity);
        if (ends.size() == 1 && look.pointsAlone && !isMeasured) {
            m_stream << "  " << node << " [shape=point];\n  " << ends[0] << " -- " << node << " ["
                     << look.edge << label;
            return;
        }
        m_stream << "  " << node << " [" << look.node << label;
        // The first body above it and all others below.
        for (std::size_t i = 0; i < ends.size(); ++i)
            i == 0 ? WriteEdge(ends[i], node, look.edge) : WriteEdge(node, ends[i], look.edge);
    }

    void WriteEdge(const std::string& from, const std::string& to, std::string attributes)
    {
        m_stream << "  " << from << " -- " << to;
        if (!attributes.empty())
            m_stream << " [" << attributes.erase(attributes.rfind(',')) << ']';
        m_stream << ";\n";
    }

    // The pairs of a layer are all those of its entities, so that layers are not drawn.
    void WriteCollisions(const KARMPInteraction& interaction)
    {
        if (dynamic_cast<const KARMPCollisionRule*>(&interaction) == nullptr)
            return;
        Nodes ends;
        ForEachOwnTarget(interaction, [&](const QOBSharedHandle<KARMPEntity>& collidable) {
            if (AppendNode(*collidable, ends))
                return;
            const Nodes behind = NodesOf(*collidable);
            ends.insert(ends.end(), behind.begin(), behind.end());
        });
        const std::wstring_view type = KARMPEnumText(interaction.GetRuleType());
        WriteBetween(interaction, ends, NameOf(interaction) + '\n' + Printable(type),
                     CollisionLook);
    }

    void WriteSensor(const KARMPSensor& sensor)
    {
        const std::string& node = NewNode(sensor);
        m_stream << "  " << node
                 << " [shape=note, fontsize=10, label=" << Quoted(NameAndClass(sensor)) << "];\n";
        for (const std::string& subject : NodesOf(sensor))
            WriteEdge(subject, node, "style=dotted, ");
    }

    Nodes NodesOf(const KARMPEntity& entity) const
    {
        Nodes nodes;
        for (const auto& subject : SubjectsOf(entity))
            AppendNode(*subject, nodes);
        return nodes;
    }

    bool AppendNode(const KARMPEntity& entity, Nodes& nodes) const
    {
        const auto found = m_nodes.find(&entity);
        if (found != m_nodes.end())
            nodes.push_back(found->second);
        return found != m_nodes.end();
    }

    const KARMPWorld& m_world;
    const GraphContents& m_contents;
    std::ostringstream m_stream;
    std::unordered_map<const KARMPEntity*, std::string> m_nodes;
    std::unordered_map<const KARMPEntity*, std::vector<std::string>> m_marks;
    std::unordered_set<const KARMPEntity*> m_measured; // drawn as nodes
};

} // namespace

std::string GraphText(const KARMPWorld& world, const GraphContents& contents)
{
    return GraphWriter(world, contents).Write();
}

} // namespace karmp::tool
