#include "GraphText.h"

#include "EntityText.h"
#include "ForEach.h"
#include "GraphLooks.h"
#include "GraphPart.h"
#include "KARMPBody2D.h"
#include "KARMPCollisionRule.h"
#include "KARMPConnector.h"
#include "KARMPCoupling.h"
#include "KARMPDriver.h"
#include "KARMPEnumerationTexts.h"
#include "KARMPJoint.h"
#include "KARMPMotor.h"
#include "KARMPSensor.h"
#include "KARMPSketch.h"
#include "KARMPWorld.h"
#include "MechanismParts.h"
#include "Mobility.h"
#include "Output.h"
#include "Subjects.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <sstream>
#include <unordered_map>
#include <utility>
#include <vector>

namespace karmp::tool {

namespace {

using Nodes = std::vector<std::string>;

std::string NameOf(const KARMPEntity& entity)
{
    const std::wstring& name = entity.getEntityName();
    return Printable(name.empty() ? IdentifierOf(entity) : name);
}

std::string NameAndClass(const KARMPEntity& entity)
{
    return NameOf(entity) + '\n' + ClassOf(entity);
}

std::string MassText(const KARMPBody& body)
{
    constexpr int Digits = 4;
    const double mass = MassOf(body);
    if (mass == 0.0)
        return {};
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), mass,
                                   std::chars_format::general, Digits);
    return '\n' + std::string(text.data(), end.ptr) + " kg";
}

// The plane in which a planar body moves.
std::string SketchText(const KARMPBody& body)
{
    const auto* const planar = dynamic_cast<const KARMPBody2D*>(&body);
    QOBSharedHandle<KARMPSketch> sketch;
    if (planar == nullptr || KARFailed(planar->GetSketch(sketch)))
        return {};
    return "\nin " + NameOf(*sketch);
}

std::string CountText(std::size_t count, const std::string& one, const std::string& many)
{
    return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

constexpr std::string_view ConnectorEdge = "style=dashed, dir=none";
constexpr std::string_view ConnectorNode =
    R"(shape=box, style="filled,rounded,dashed", fillcolor="#fffde7")";
constexpr std::string_view CollisionEdge = "style=dotted, dir=none, color=red, constraint=false";
constexpr std::string_view CollisionNode = "shape=box, style=dotted, color=red, fontcolor=red";
constexpr std::string_view LoopEdge = "penwidth=2.5";
constexpr std::string_view Grey = "color=grey60, fontcolor=grey60, fillcolor=grey95";

// A body with hatching below it, as ground is drawn.
std::string GroundLabel(const std::string& text)
{
    return R"(<<table border="0" cellborder="0" cellspacing="0" cellpadding="2"><tr><td>)" +
           TaggedText(text) +
           R"(</td></tr><tr><td border="1" sides="T" cellpadding="0"><font point-size="9">)"
           R"( / / / / / / / / / / / / </font></td></tr></table>>)";
}

class GraphWriter
{
public:
    GraphWriter(const KARMPWorld& world, const GraphContents& contents)
        : m_world(world),
          m_contents(contents),
          m_part(world, contents.around, contents.reach, contents.mostBodies)
    {
        world.GetGlobalBody(m_global);
    }

    std::string Write()
    {
        FindMarks();
        WriteHead();
        ForEach<KARMPBody>(
            m_world, [this](const KARMPBody& body) { WriteBody(body); });
        ForEach<KARMPJoint>(
            m_world, [this](const KARMPJoint& joint) { WriteJoint(joint); });
        ForEach<KARMPJoint>(
            m_world, [this](const KARMPJoint& joint) { WriteCoupling(joint); });
        ForEach<KARMPConnector>(m_world, [this](const KARMPConnector& connector) {
            if (!IsMark(connector))
                WriteUndirected(connector, NodesOf(connector), NameAndClass(connector),
                                ConnectorNode, ConnectorEdge);
        });
        if (m_contents.collisions)
            ForEach<KARMPInteraction>(m_world, [this](const KARMPInteraction& interaction) {
                WriteCollisions(interaction);
            });
        if (m_contents.sensors)
            ForEach<KARMPSensor>(m_world,
                                 [this](const KARMPSensor& sensor) { WriteSensor(sensor); });
        WriteLegend();
        m_stream << "}\n";
        return m_stream.str();
    }

private:
    // Bent edges pass by the nodes, but their time grows fast with the number of joints, and a
    // closed loop of thousands exhausts Graphviz's stack. The limits are on the passes that shorten
    // edges and remove crossings.
    std::string_view Layout() const
    {
        constexpr int largest = 400; // bodies, joints, force elements and sensors
        int count = static_cast<int>(m_part.BodyCount()) + m_world.Count<KARMPJoint>() +
                    m_world.Count<KARMPConnector>();
        if (m_contents.sensors)
            count += m_world.Count<KARMPSensor>();
        return count <= largest ? "layout=dot, splines=polyline"
                                : "layout=dot, splines=line, nslimit=0.1, nslimit1=0.1, "
                                  "mclimit=0.1";
    }

    void WriteHead()
    {
        m_stream << "digraph mechanism {\n  graph [" << Layout()
                 << ", ranksep=0.3, nodesep=0.3, fontname=\"sans-serif\", fontsize=16, "
                    "labelloc=t, label="
                 << QuotedText(Title())
                 << "];\n"
                    "  node [shape=box, style=filled, fillcolor=white, fontname=\"sans-serif\"];\n"
                    "  edge [fontname=\"sans-serif\", fontsize=10, arrowsize=0.7];\n";
    }

    std::string Title() const
    {
        const auto bodies = static_cast<std::size_t>(m_world.Count<KARMPBody>());
        std::string text = m_contents.title.empty() ? "" : Printable(m_contents.title) + '\n';
        if (m_part.BodyCount() < bodies)
            text += std::to_string(m_part.BodyCount()) + " of ";
        text += CountText(bodies, "body", "bodies");
        const std::array<std::pair<std::size_t, std::array<const char*, 2>>, 3> parts{
            {{static_cast<std::size_t>(m_world.Count<KARMPJoint>()), {"joint", "joints"}},
             {static_cast<std::size_t>(m_world.Count<KARMPConnector>()),
              {"force element", "force elements"}},
             {m_part.LoopCount(), {"closed loop", "closed loops"}}}};
        for (const auto& [count, names] : parts)
            if (count > 0)
                text += ", " + CountText(count, names[0], names[1]);
        return text + MobilityText();
    }

    std::string MobilityText() const
    {
        if (m_world.Count<KARMPJoint>() == 0)
            return {};
        const Mobility mobility = EstimateMobility(m_world);
        return "\nestimated mobility " +
               (mobility.mayBePlanar ? std::to_string(mobility.planar) + " in the plane, " : "") +
               std::to_string(mobility.spatial) + " in space";
    }

    // What acts on a joint or body is written into its label, and is found before anything is
    // written.
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

    void WriteNode(const KARMPEntity& entity, std::string_view look, const std::string& label)
    {
        m_stream << "  " << NewNode(entity) << " [" << look << (look.empty() ? "" : ", ")
                 << "label=" << label;
        if (!entity.IsActive())
            m_stream << ", " << Grey;
        m_stream << "];\n";
    }

    void WriteEdge(const std::string& from, const std::string& to, std::string_view look)
    {
        m_stream << "  " << from << " -> " << to;
        if (!look.empty())
            m_stream << " [" << look << ']';
        m_stream << ";\n";
    }

    void WriteBody(const KARMPBody& body)
    {
        if (!m_part.Has(body))
            return;
        const bool isGlobal = &body == m_global.get();
        const std::string text = NameOf(body) + SketchText(body) + MassText(body) + MarksOf(body);
        if (!isGlobal && !IsFixed(body))
            return WriteNode(body, R"(style="filled,rounded")", QuotedText(text));
        WriteNode(body, "shape=box, fillcolor=grey90", GroundLabel(text));
        if (isGlobal)
            m_stream << "  {rank=source; " << m_nodes.at(&body) << "}\n";
    }

    // The parent body stands above a joint, and an arrow leads from it to the child.
    void WriteJoint(const KARMPJoint& joint)
    {
        if (IsCoupling(joint))
            return;
        Nodes above;
        Nodes below;
        const std::vector<LinkedBody> bodies = LinkedBodiesOf(joint);
        for (const LinkedBody& linked : bodies)
            AppendNode(*linked.body,
                       linked.orientation == KARMPBodyOrientation::Out ? above : below);
        if (above.empty() && below.empty() && !bodies.empty())
            return; // None of its bodies is shown.
        WriteJointNode(joint);
        const std::string& node = m_nodes.at(&joint);
        const std::string look(m_part.ClosesLoop(joint)
                                   ? LoopEdge
                                   : std::string_view(joint.IsActive() ? "" : "color=grey60"));
        const std::string undirected = look + (look.empty() ? "" : ", ") + "dir=none";
        for (const std::string& body : above)
            WriteEdge(body, node, undirected);
        for (const std::string& body : below)
            WriteEdge(node, body, look);
    }

    void WriteJointNode(const KARMPJoint& joint)
    {
        const JointLook& look = LookOf(joint.getClassInfo().getName());
        m_legend.emplace(ClassOf(joint), look.fill);
        const std::string attributes = "shape=" + std::string(look.shape) + ", fillcolor=\"" +
                                       std::string(look.fill) + "\", fontsize=11";
        WriteNode(joint, attributes, QuotedText(NameAndClass(joint) + MarksOf(joint)));
    }

    static bool IsCoupling(const KARMPJoint& joint)
    {
        return joint.isDerivedFrom(KARMPCoupling::ClassInfo());
    }

    // A coupling relates freedoms of joints, and is drawn between these, or between bodies.
    void WriteCoupling(const KARMPJoint& joint)
    {
        if (!IsCoupling(joint))
            return;
        Nodes ends;
        for (const auto& subject : SubjectsOf(joint))
            if (subject.get() != &joint)
                AppendNode(*subject, ends);
        if (ends.empty() && m_part.BodyCount() < static_cast<std::size_t>(m_world.GetBodyCount()))
            return;
        WriteJointNode(joint);
        for (const std::string& end : ends)
            WriteEdge(end, m_nodes.at(&joint), "dir=none, style=\"dashed\", color=\"#bf360c\"");
    }

    // A first body above the node and the others below it.
    void WriteUndirected(const KARMPEntity& entity, const Nodes& ends, const std::string& text,
                         std::string_view look, std::string_view edge)
    {
        if (ends.empty() && m_contents.around != nullptr)
            return;
        WriteNode(entity, std::string(look) + ", fontsize=11", QuotedText(text));
        const std::string& node = m_nodes.at(&entity);
        for (std::size_t i = 0; i < ends.size(); ++i)
            i == 0 ? WriteEdge(ends[i], node, edge) : WriteEdge(node, ends[i], edge);
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
        WriteUndirected(interaction, ends, NameOf(interaction) + '\n' + Printable(type),
                        CollisionNode, CollisionEdge);
    }

    void WriteSensor(const KARMPSensor& sensor)
    {
        const Nodes subjects = NodesOf(sensor);
        if (subjects.empty() && m_contents.around != nullptr)
            return;
        WriteNode(sensor, "shape=note, fontsize=10", QuotedText(NameAndClass(sensor)));
        for (const std::string& subject : subjects)
            WriteEdge(subject, m_nodes.at(&sensor), "style=dotted, dir=none");
    }

    // The kinds of joints with their colours, and what lines mean.
    void WriteLegend()
    {
        if (m_legend.empty())
            return;
        m_stream << "  legend [shape=plain, fillcolor=none, label=<<table border=\"0\" "
                    "cellborder=\"0\" cellspacing=\"4\"><tr>";
        for (const auto& [name, fill] : m_legend)
            m_stream << "<td bgcolor=\"" << fill << "\"><font point-size=\"10\"> "
                     << TaggedText(name) << " </font></td>";
        m_stream << "</tr><tr><td colspan=\"" << m_legend.size()
                 << "\"><font point-size=\"10\">arrow: from the Out body to the In body"
                 << (m_part.LoopCount() > 0 ? "; thick: closes a loop" : "")
                 << "</font></td></tr></table>>];\n  {rank=sink; legend}\n";
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
    GraphPart m_part;
    QOBSharedHandle<KARMPBody> m_global;
    std::ostringstream m_stream;
    std::unordered_map<const KARMPEntity*, std::string> m_nodes;
    std::unordered_map<const KARMPEntity*, std::vector<std::string>> m_marks;
    /// The fill of each kind of joint that is drawn.
    std::map<std::string, std::string_view> m_legend;
};

} // namespace

std::string GraphText(const KARMPWorld& world, const GraphContents& contents)
{
    return GraphWriter(world, contents).Write();
}

} // namespace karmp::tool
