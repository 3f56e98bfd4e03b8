#include "ViewJson.h"

#include "Output.h"
#include "ViewScene.h"

#include <array>
#include <charconv>
#include <cmath>

namespace karmp::tool {

namespace {

constexpr std::array Kinds{"point",  "line",     "axes", "ellipse", "curve", "plane",
                           "sphere", "cylinder", "cone", "torus",   "mesh"};
static_assert(Kinds.size() == static_cast<std::size_t>(ViewKind::Mesh) + 1);

/// Builds JSON text; commas come by themselves.
class Json
{
public:
    Json& Begin(char bracket)
    {
        Separate();
        m_text += bracket;
        m_isFirst = true;
        return *this;
    }
    Json& End(char bracket)
    {
        m_text += bracket;
        m_isFirst = false;
        return *this;
    }
    Json& Key(std::string_view name)
    {
        Text(name);
        m_text += ':';
        m_isFirst = true;
        return *this;
    }
    Json& Text(std::string_view text)
    {
        Separate();
        m_text += JsonText(text);
        return *this;
    }
    Json& Number(double number)
    {
        Separate();
        m_text += std::isfinite(number) ? NumberText(number) : "null";
        return *this;
    }
    Json& Flag(bool flag)
    {
        Separate();
        m_text += flag ? "true" : "false";
        return *this;
    }
    template <class List, class Write>
    Json& Each(const List& list, Write write)
    {
        Begin('[');
        for (const auto& item : list)
            write(item);
        return End(']');
    }
    template <class Numbers>
    Json& AllNumbers(const Numbers& numbers)
    {
        return Each(
            numbers, [this](auto number) { Number(static_cast<double>(number)); });
    }
    // In single precision, which is what meshes are drawn with.
    Json& Singles(const std::vector<double>& numbers)
    {
        return Each(
            numbers,
            [this](double number) {
                Separate();
                std::array<char, 32> text{};
                const auto end = std::to_chars(text.data(), text.data() + text.size(),
                                               static_cast<float>(number));
                m_text.append(text.data(), end.ptr);
            });
    }
    template <class Triple>
    Json& Coordinates(const Triple& triple)
    {
        return Number(triple.GetX()).Number(triple.GetY()).Number(triple.GetZ());
    }
    const std::string& Result() const { return m_text; }

private:
    void Separate()
    {
        if (!m_isFirst)
            m_text += ',';
        m_isFirst = false;
    }

    std::string m_text;
    bool m_isFirst = true;
};

// Characters that mean something to a page become escapes; in JSON they stand in texts only.
std::string SafeInPage(const std::string& json)
{
    std::string safe;
    safe.reserve(json.size() + json.size() / 16);
    for (std::size_t i = 0; i < json.size(); ++i) {
        const std::string_view rest = std::string_view(json).substr(i, 3);
        if (rest == "\u2028" || rest == "\u2029") {
            safe += rest == "\u2028" ? "\\u2028" : "\\u2029";
            i += 2;
        } else if (json[i] == '<') {
            safe += "\\u003c";
        } else if (json[i] == '>') {
            safe += "\\u003e";
        } else if (json[i] == '&') {
            safe += "\\u0026";
        } else {
            safe += json[i];
        }
    }
    return safe;
}

// Directions, origin and, of the ground's, true.
void WriteFrame(const ViewFrame& frame, Json& json)
{
    json.Begin('[').Coordinates(frame.axis.GetFirstDirection());
    json.Coordinates(frame.axis.GetSecondDirection());
    json.Coordinates(frame.axis.GetThirdDirection()).Coordinates(frame.axis.GetOrigin());
    if (frame.isGround)
        json.Flag(true);
    json.End(']');
}

// Kind of the class, name, identifier, links as label and targets in turn, and a note if any.
void WriteEntity(const ViewEntity& entity, Json& json)
{
    json.Begin('[').Number(entity.kind).Text(entity.name).Text(entity.identifier).Begin('[');
    for (const ViewLinks& links : entity.links)
        json.Number(links.label).AllNumbers(links.targets);
    json.End(']');
    if (!entity.note.empty())
        json.Text(entity.note);
    json.End(']');
}

void WriteDrawing(const ViewDrawing& drawing, Json& json)
{
    json.Begin('[').Text(Kinds[static_cast<std::size_t>(drawing.kind)]).Number(drawing.entity);
    json.AllNumbers(drawing.numbers);
    if (drawing.kind == ViewKind::Mesh)
        json.AllNumbers(drawing.triangles);
    json.End(']');
}

void WriteShape(const ViewShape& shape, Json& json)
{
    json.Begin('{').Key("entity").Number(shape.entity);
    json.Key("pieces").Each(shape.pieces, [&](const ViewPiece& piece) {
        json.Begin('{').Key("points").Singles(piece.points);
        if (!piece.triangles.empty())
            json.Key("triangles").AllNumbers(piece.triangles);
        if (!piece.normals.empty())
            json.Key("normals").Singles(piece.normals);
        if (piece.colour)
            json.Key("colour").Singles({piece.colour->begin(), piece.colour->end()});
        json.End('}');
    });
    json.End('}');
}

void WriteBody(const ViewBody& body, Json& json)
{
    std::array<double, 12> position{};
    body.position.GetCoef(position.data());
    json.Begin('{').Key("entity").Number(body.entity).Key("position").AllNumbers(position);
    if (body.isFixed)
        json.Key("fixed").Flag(true);
    if (body.isGround)
        json.Key("ground").Flag(true);
    if (body.center)
        json.Key("center").Begin('[').Coordinates(*body.center).End(']');
    if (!body.shapes.empty())
        json.Key("shapes").AllNumbers(body.shapes);
    json.Key("anchors").Each(
        body.anchors,
        [&](const KARMathPoint& anchor) { json.Begin('[').Coordinates(anchor).End(']'); });
    json.Key("rods").Each(
        body.rods,
        [&](const ViewRod& rod) {
            json.Begin('[').Coordinates(rod.first).Coordinates(rod.second).End(']');
        });
    json.Key("drawings").Each(body.drawings, [&](const ViewDrawing& drawing) {
        WriteDrawing(drawing, json);
    });
    json.End('}');
}

void WriteJoint(const ViewJoint& joint, Json& json)
{
    json.Begin('{').Key("entity").Number(joint.entity).Key("symbol").Text(joint.symbol);
    json.Key("frames").Each(joint.frames, [&](const ViewFrame& frame) { WriteFrame(frame, json); });
    json.End('}');
}

void WriteConnector(const ViewConnector& connector, Json& json)
{
    json.Begin('{').Key("entity").Number(connector.entity).Key("symbol").Text(connector.symbol);
    json.Key("from");
    WriteFrame(connector.from, json);
    json.Key("to");
    WriteFrame(connector.to, json);
    json.End('}');
}

void WriteCoupling(const ViewCoupling& coupling, Json& json)
{
    json.Begin('{').Key("entity").Number(coupling.entity);
    json.Key("points").Each(coupling.points, [&](const KARMathPoint& point) {
        json.Begin('[').Coordinates(point).End(']');
    });
    json.End('}');
}

} // namespace

std::string SceneJson(const ViewScene& scene)
{
    Json json;
    const auto writeText = [&](const std::string& text) { json.Text(text); };
    json.Begin('{').Key("title").Text(scene.title);
    json.Key("kinds").Each(scene.kinds, writeText).Key("labels").Each(scene.labels, writeText);
    json.Key("families")
        .Each(
            scene.families,
            [&](const ViewFamily& family) {
                json.Begin('[').Text(family.name).Number(family.count).End(']');
            });
    json.Key("entities")
        .Each(
            scene.entities, [&](const ViewEntity& entity) { WriteEntity(entity, json); });
    json.Key("shapes").Each(
        scene.shapes, [&](const ViewShape& shape) { WriteShape(shape, json); });
    json.Key("bodies").Each(
        scene.bodies, [&](const ViewBody& body) { WriteBody(body, json); });
    json.Key("joints").Each(
        scene.joints, [&](const ViewJoint& joint) { WriteJoint(joint, json); });
    json.Key("connectors")
        .Each(
            scene.connectors,
            [&](const ViewConnector& connector) { WriteConnector(connector, json); });
    json.Key("couplings").Each(scene.couplings, [&](const ViewCoupling& coupling) {
        WriteCoupling(coupling, json);
    });
    json.Key("gravity").Begin('[').Coordinates(scene.gravity).End(']');
    json.Key("symbolSize").Number(scene.symbolSize).End('}');
    return SafeInPage(json.Result());
}

} // namespace karmp::tool
