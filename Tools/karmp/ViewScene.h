// What a page shows of a world: its entities with their links, and what is drawn of them.
#pragma once

#include "KARMathAxis.h"
#include "KARMathTransformation.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

class KARMPWorld;

namespace karmp::tool {

/// What a drawing is made of. Directions have length 1; all numbers are finite and bounded.
enum class ViewKind {
    Point,    ///< 3 numbers
    Line,     ///< a point and the direction
    Axes,     ///< origin and three directions
    Ellipse,  ///< centre and the two half axes as vectors; a circle has two of one length
    Curve,    ///< points, in order
    Plane,    ///< a point and the normal
    Sphere,   ///< centre and radius
    Cylinder, ///< a point of the axis, the direction and the radius
    Cone,     ///< the apex, the direction of the axis and the angle between axis and side
    Torus,    ///< centre, normal, radius of the middle circle and radius of the tube
    Mesh      ///< corners, in order; triangles as indices of corners
};

/// One drawing of an entity.
struct ViewDrawing
{
    ViewKind kind = ViewKind::Point;
    int entity = -1; ///< that it belongs to
    std::vector<double> numbers;
    std::vector<std::uint32_t> triangles;
};

/// A piece of a representation, in the axes of the bodies that have it: triangles, or a chain of
/// segments when there are none.
struct ViewPiece
{
    std::vector<double> points;
    std::vector<double> normals; ///< one for each point, or none: flat triangles then
    std::vector<std::uint32_t> triangles;
    std::optional<std::array<double, 4>> colour; ///< red, green, blue and opacity from 0 to 1
};

/// What bodies look like.
struct ViewShape
{
    int entity = -1;
    std::vector<ViewPiece> pieces;
};

/// A rod of a body without a representation.
using ViewRod = std::pair<KARMathPoint, KARMathPoint>;

/// A body with what is drawn of it in its axes.
struct ViewBody
{
    int entity = -1;
    bool isFixed = false;
    bool isGround = false;
    KARMathTransformation position;
    std::optional<KARMathPoint> center; ///< of gravity, of a body with a mass
    std::vector<int> shapes;            ///< of ViewScene::shapes
    std::vector<KARMathPoint> anchors;  ///< origins of its axis systems, and points, each once
    std::vector<ViewRod> rods;          ///< that hold the anchors together
    std::vector<ViewDrawing> drawings;
};

/// A frame in the world and whether it belongs to the ground.
struct ViewFrame
{
    KARMathAxis axis;
    bool isGround = false;
};

/// A joint: a symbol at the frames of its bodies, the parent's first.
struct ViewJoint
{
    int entity = -1;
    std::string_view symbol;
    std::vector<ViewFrame> frames;
};

/// A spring or another connector between two frames.
struct ViewConnector
{
    int entity = -1;
    std::string_view symbol;
    ViewFrame from;
    ViewFrame to;
};

/// A coupling: a line through the joints whose motion it relates, in the world.
struct ViewCoupling
{
    int entity = -1;
    std::vector<KARMathPoint> points;
};

/// The entities that an item of an entity refers to.
struct ViewLinks
{
    int label = -1; ///< of ViewScene::labels
    std::vector<int> targets;
};

/// An entity of the tree.
struct ViewEntity
{
    int kind = -1; ///< of ViewScene::kinds
    std::string name;
    std::string identifier;
    std::vector<ViewLinks> links;
    std::string note; ///< why it is not drawn; empty when it is, or has nothing to draw
};

/// A list of the world with its entities, which stand one behind the other.
struct ViewFamily
{
    std::string name;
    int count = 0;
};

/// A world as a page shows it. Texts are UTF-8 and as the document has them.
struct ViewScene
{
    std::string title;
    std::vector<std::string> kinds;  ///< names of classes
    std::vector<std::string> labels; ///< names of items
    std::vector<ViewFamily> families;
    std::vector<ViewEntity> entities; ///< in the order of the families
    std::vector<ViewShape> shapes;
    std::vector<ViewBody> bodies;
    std::vector<ViewJoint> joints;
    std::vector<ViewConnector> connectors;
    std::vector<ViewCoupling> couplings;
    KARMathVector gravity;
    double symbolSize = 1.0; ///< a length that suits the symbols of joints
};

/// Collects what a page shows of a world.
ViewScene CollectScene(const KARMPWorld& world, std::string title);

} // namespace karmp::tool
