// Turns the scene into batches: meshes with their instances, and lines.

const Layers = [
  {name: "bodies", title: "Bodies"},
  {name: "joints", title: "Joints"},
  {name: "connectors", title: "Springs and bushings"},
  {name: "couplings", title: "Couplings"},
  {name: "motors", title: "Motors"},
  {name: "sensors", title: "Sensors"},
  {name: "geometry", title: "Geometry"},
  {name: "covered", title: "Geometry under shapes", isOff: true},
  {name: "planes", title: "Planes"},
  {name: "sketches", title: "Planes of sketches", isOff: true},
  {name: "masses", title: "Centres of mass", isOff: true},
  {name: "grid", title: "Grid"},
];

const Clear = 0.3; // the opacity of what has no ends
const Nobody = 0xffffff; // the entity of what belongs to none

/// Collects what is drawn: of each layer the instances of meshes and the lines.
class Drawing {
  constructor(scene) {
    this.scene = scene;
    this.data = scene.data;
    this.batches = new Map();
    this.lines = new Map();
    this.bounds = new Bounds();
    this.drawn = new Set();
    this.places = new Map(); // a point of each drawn entity
    const number = this.data.joints.length + this.data.bodies.length;
    this.isCrowded = number > 3000; // each is small in the picture
    this.segments = this.isCrowded ? 6 : number > 600 ? 12 : 24;
    this.size = this.data.symbolSize || 1;
    this.measure();
    this.offset = this.bounds.center;
    this.extent = this.bounds.extent || 4 * this.size;
    this.measurePatches();
    this.addAll();
  }

  // The points that tell how large the mechanism is; planes and lines have no ends.
  measure() {
    for (const body of this.data.bodies) {
      for (const point of body.ground && !body.shapes ? [] : this.pointsOf(body))
        this.bounds.add(point, 0.5 * this.size);
      for (const [kind, , numbers] of body.drawings)
        this.measureDrawing(body, kind, numbers);
    }
    for (const joint of this.data.joints)
      for (const frame of joint.frames)
        this.bounds.add(originOf(frame), 1.5 * this.size);
    for (const connector of this.data.connectors)
      for (const frame of [connector.from, connector.to])
        this.bounds.add(originOf(frame), 0.7 * this.size);
  }

  // The points of the world between which a body is drawn.
  pointsOf(body) {
    return [...body.anchors, ...(body.shapes || []).flatMap(shape => this.cornersOf(shape))]
      .map(point => placed(body.position, point));
  }

  // The corners of the box around a shape.
  cornersOf(number) {
    this.boxes = this.boxes || new Map();
    if (!this.boxes.has(number)) {
      const box = new Bounds();
      for (const {points} of this.data.shapes[number].pieces)
        for (let at = 0; at < points.length; at += 3)
          box.add(points.slice(at, at + 3));
      this.boxes.set(number, box.corners);
    }
    return this.boxes.get(number);
  }

  measurePatches() {
    for (const body of this.data.bodies)
      for (const [kind, entity, n] of body.drawings)
        if (kind === "plane" && !this.isSketch(entity))
          for (const corner of this.patchOf(body, n).corners)
            this.bounds.add(corner);
  }

  // The plane of a planar mechanism is everywhere and in the way.
  isSketch(entity) { return this.scene.kindOf(entity) === "Sketch"; }

  // The corners of the piece of a plane that is drawn, its directions and its edge.
  patchOf(body, n) {
    const origin = placed(body.position, n);
    const axis = unit(turned(body.position, n.slice(3, 6)));
    const edge = 0.45 * this.extent;
    const [u, v] = across(axis);
    const corner = (a, b) => add(origin, add(times(u, a * edge / 2), times(v, b * edge / 2)));
    return {
      origin, edge, directions: [u, v, axis],
      corners: [corner(-1, -1), corner(1, -1), corner(1, 1), corner(-1, 1)]};
  }

  measureDrawing(body, kind, n) {
    const at = i => placed(body.position, n.slice(i, i + 3));
    if (kind === "sphere")
      this.bounds.add(at(0), n[3]);
    else if (kind === "ellipse")
      this.bounds.add(at(0), norm(n.slice(3, 6)));
    else if (kind === "cylinder" || kind === "torus")
      this.bounds.add(at(0), n[6] + (n[7] || 0));
    else if (kind === "curve" || kind === "mesh")
      for (let i = 0; i + 2 < n.length; i += 3)
        this.bounds.add(at(i));
    else if (kind !== "axes" && kind !== "point")
      this.bounds.add(at(0));
  }

  addAll() {
    this.data.bodies.forEach(body => this.addBody(body));
    this.data.joints.forEach(joint => this.addJoint(joint));
    this.data.connectors.forEach(connector => this.addConnector(connector));
    this.data.couplings.forEach(coupling => this.addCoupling(coupling));
    this.addMotors();
    this.addSensors();
  }

  // An instance of a mesh, which is made when the first one comes.
  add(layer, name, makeMesh, placement, entity, colour, opacity = 1) {
    const key = `${layer}|${name}|${opacity}`;
    if (!this.batches.has(key))
      this.batches.set(key, {layer, opacity, mesh: makeMesh(), instances: []});
    const moved = placement.slice(0, 9).concat(subtract(originOf(placement), this.offset));
    this.batches.get(key).instances.push({placement: moved, entity, colour});
    this.note(entity, originOf(placement));
  }

  addLine(layer, from, to, entity, colour, width) {
    if (!this.lines.has(layer))
      this.lines.set(layer, []);
    this.lines.get(layer).push({
      from: subtract(from, this.offset), to: subtract(to, this.offset), entity, colour, width});
    this.note(entity, times(add(from, to), 0.5));
  }

  note(entity, point) {
    if (entity === Nobody)
      return;
    this.drawn.add(entity);
    if (!this.places.has(entity))
      this.places.set(entity, point);
  }

  cylinder(layer, from, to, radius, entity, colour) {
    const axis = subtract(to, from);
    const make = this.isCrowded ? pipeMesh : cylinderMesh;
    this.add(layer, "cylinder", () => make(this.segments),
      along(times(add(from, to), 0.5), unit(axis), radius, norm(axis)), entity, colour);
  }
  ball(layer, at, radius, entity, colour) {
    this.add(layer, "sphere", () => sphereMesh(this.segments),
      framed(at, [[1, 0, 0], [0, 1, 0], [0, 0, 1]], [radius, radius, radius]), entity, colour);
  }

  bearing() {
    return this.isCrowded ? cylinderMesh(this.segments) : bearingMesh(this.segments);
  }

  addBody(body) {
    const colour = this.scene.colours.get(body.entity);
    const shapes = body.shapes || [];
    if (shapes.length > 0)
      this.addShapes(body, shapes, colour);
    else
      this.addRods(body, colour);
    for (const [kind, entity, numbers, triangles] of body.drawings)
      this.addDrawing(body, kind, entity, numbers, triangles, colour, shapes.length > 0);
    if (body.center)
      this.ball("masses", placed(body.position, body.center), 0.42 * this.size, body.entity, Colour.mass);
  }

  // A piece that bodies share is one mesh.
  addShapes(body, shapes, colour) {
    const middle = new Bounds();
    for (const number of shapes) {
      this.data.shapes[number].pieces.forEach((piece, i) => {
        const own = piece.colour ? ownColour(piece.colour) : colour;
        const {points, normals, triangles} = piece;
        if (triangles)
          this.add("bodies", `shape ${number} ${i}`,
            () => normals ? smoothMesh(points, normals, triangles) : givenMesh(points, triangles),
            body.position, body.entity, own, piece.colour ? piece.colour[3] : 1);
        else
          this.addCurve("bodies", body, body.entity, points, own);
      });
      this.cornersOf(number).forEach(corner => middle.add(corner));
    }
    this.places.set(body.entity, placed(body.position, middle.center));
  }

  addRods(body, colour) {
    if (body.ground)
      return;
    const radius = 0.3 * this.size;
    const points = body.anchors.map(anchor => placed(body.position, anchor));
    if (points.length === 1)
      this.addHub(body, points[0], colour);
    for (const rod of body.rods)
      this.cylinder("bodies", placed(body.position, rod.slice(0, 3)),
        placed(body.position, rod.slice(3, 6)), radius, body.entity, colour);
    for (const point of this.isCrowded ? [] : points)
      this.ball("bodies", point, radius, body.entity, colour);
    const lengthOf = rod => distance(rod.slice(0, 3), rod.slice(3, 6));
    const [longest] = [...body.rods].sort((a, b) => lengthOf(b) - lengthOf(a));
    if (longest)
      this.places.set(body.entity,
        placed(body.position, times(add(longest.slice(0, 3), longest.slice(3, 6)), 0.5)));
  }

  // A body of one anchor is a disc about the axis system there, or a ball.
  addHub(body, point, colour) {
    const s = this.size;
    const axes = body.drawings.find(([kind]) => kind === "axes");
    if (axes)
      this.add("bodies", "ring", () => ringMesh(this.segments),
        along(point, unit(turned(body.position, axes[2].slice(9, 12))), 1.25 * s, 0.8 * s),
        body.entity, colour);
    else if (!body.drawings.some(([kind]) => kind === "sphere"))
      this.ball("bodies", point, 0.7 * s, body.entity, colour);
  }

  addDrawing(body, kind, entity, n, triangles, colour, isCovered) {
    const layer = isCovered ? "covered" : "geometry";
    const draw = {
      point: () => this.ball(layer, placed(body.position, n), 0.36 * this.size, entity, Colour.geometry),
      axes: () => this.addAxes(layer, body, entity, n),
      line: () => this.addEndlessLine(layer, body, entity, n),
      ellipse: () => this.addEllipse(layer, body, entity, n, colour),
      curve: () => this.addCurve(layer, body, entity, n, colour),
      plane: () => this.addPlane(body, entity, n),
      sphere: () => this.add(layer, "fine sphere", () => sphereMesh(2 * this.segments),
        framed(placed(body.position, n), [[1, 0, 0], [0, 1, 0], [0, 0, 1]], [n[3], n[3], n[3]]),
        entity, colour),
      cylinder: () => this.addPipe(layer, body, entity, n, colour),
      cone: () => this.addCone(layer, body, entity, n, colour),
      torus: () => this.add(layer, `torus ${(n[7] / n[6]).toPrecision(3)}`,
        () => torusMesh(n[7] / n[6], 2 * this.segments),
        along(placed(body.position, n), unit(turned(body.position, n.slice(3, 6))), n[6], n[6]),
        entity, colour),
      mesh: () => this.add(layer, `mesh ${entity}`, () => givenMesh(n, triangles),
        body.position, entity, colour),
    }[kind];
    if (draw)
      draw();
  }

  addAxes(layer, body, entity, n) {
    const origin = placed(body.position, n);
    [Colour.xAxis, Colour.yAxis, Colour.zAxis].forEach((colour, i) => {
      const direction = turned(body.position, n.slice(3 + 3 * i, 6 + 3 * i));
      this.addLine(layer, origin, add(origin, times(direction, 1.5 * this.size)), entity, colour, 1.6);
    });
    this.places.set(entity, origin);
  }

  addEndlessLine(layer, body, entity, n) {
    const origin = placed(body.position, n);
    const arm = times(unit(turned(body.position, n.slice(3, 6))), 0.3 * this.extent);
    this.addLine(layer, subtract(origin, arm), add(origin, arm), entity, Colour.geometry, 1.6);
  }

  addEllipse(layer, body, entity, n, colour) {
    const [u, v] = [turned(body.position, n.slice(3, 6)), turned(body.position, n.slice(6, 9))];
    const center = placed(body.position, n);
    const at = part => {
      const [x, y] = circleAt(part);
      return add(center, add(times(u, x), times(v, y)));
    };
    const steps = 2 * this.segments;
    for (let i = 0; i < steps; ++i)
      this.addLine(layer, at(i / steps), at((i + 1) / steps), entity, colour, 2.5);
    this.places.set(entity, center);
  }

  addCurve(layer, body, entity, n, colour) {
    for (let i = 0; i + 5 < n.length; i += 3)
      this.addLine(layer, placed(body.position, n.slice(i, i + 3)),
        placed(body.position, n.slice(i + 3, i + 6)), entity, colour, 2.5);
  }

  // A patch with its border.
  addPlane(body, entity, n) {
    const {origin, edge, directions, corners} = this.patchOf(body, n);
    const layer = this.isSketch(entity) ? "sketches" : "planes";
    this.add(layer, "sheet", sheetMesh, framed(origin, directions, [edge, edge, 1]), entity,
      Colour.plane, Clear);
    corners.forEach((from, i) =>
      this.addLine(layer, from, corners[(i + 1) % 4], entity, Colour.plane, 1.2));
  }

  addPipe(layer, body, entity, n, colour) {
    const length = Math.max(2 * n[6], 3 * this.size);
    this.add(layer, "pipe", () => pipeMesh(2 * this.segments),
      along(placed(body.position, n), unit(turned(body.position, n.slice(3, 6))), n[6], length),
      entity, colour, Clear);
  }

  addCone(layer, body, entity, n, colour) {
    const height = 5 * this.size;
    this.add(layer, "cone", () => coneMesh(2 * this.segments),
      along(placed(body.position, n), unit(turned(body.position, n.slice(3, 6))),
        height * Math.tan(n[6]), height), entity, colour, Clear);
  }

  addJoint(joint) {
    const s = this.size;
    const frames = joint.frames.map(frame => ({
      origin: originOf(frame), x: unit(columnOf(frame, 0)), y: unit(columnOf(frame, 1)),
      z: unit(columnOf(frame, 2)), isGround: frame[12] === true}));
    const [parent, child] = [frames[0], frames[frames.length - 1]];
    const put = (name, make, frame, x, y, z, colour = Colour.joint) => this.add("joints", name, make,
      framed(frame.origin, [frame.x, frame.y, frame.z], [x * s, y * s, z * s]), joint.entity, colour);
    const axis = (frame, reach) => this.addLine("joints",
      subtract(frame.origin, times(frame.z, reach)), add(frame.origin, times(frame.z, reach)),
      joint.entity, Colour.axis, 1.6);
    const bearing = () => this.bearing();
    const symbols = {
      revolute: () => {
        put("bearing", bearing, parent, 0.62, 0.62, 1.7);
        axis(parent, 1.9 * s);
      },
      prismatic: () => {
        put("box", boxMesh, child, 1.15, 1.15, 2);
        this.addRail(joint.entity, parent, child);
      },
      cylindrical: () => {
        put("ring", () => ringMesh(this.segments), child, 0.75, 0.75, 2.2);
        this.addRail(joint.entity, parent, child);
      },
      spherical: () => this.ball("joints", parent.origin, 0.72 * s, joint.entity, Colour.joint),
      universal: () => {
        put("bearing", bearing, parent, 0.3, 0.3, 2.4);
        put("bearing", bearing, {...child, x: child.y, y: child.z, z: child.x}, 0.3, 0.3, 2.4);
        this.ball("joints", parent.origin, 0.5 * s, joint.entity, Colour.joint);
      },
      planar: () => {
        put("box", boxMesh, parent, 3, 3, 0.2);
        put("bearing", bearing, parent, 0.4, 0.4, 1.4);
      },
      screw: () => {
        put("bearing", bearing, parent, 0.4, 0.4, 3);
        put("thread", () => coilMesh(6, 1, 0.06, this.segments),
          {...parent, origin: subtract(parent.origin, times(parent.z, 1.3 * s))}, 0.6, 0.6, 2.6);
        axis(parent, 2 * s);
      },
      rigid: () => put("box", boxMesh, parent, 0.95, 0.95, 0.95),
    };
    (symbols[joint.symbol] || (() => put("octahedron", octahedronMesh, parent, 0.8, 0.8, 0.8)))();
    for (const frame of frames.slice(1))
      if (distance(frame.origin, parent.origin) > 0.5 * s && joint.symbol !== "prismatic" &&
          joint.symbol !== "cylindrical")
        this.addLine("joints", parent.origin, frame.origin, joint.entity, Colour.joint, 1.2);
    frames.filter(frame => frame.isGround).forEach(frame => this.addFoot(frame, joint.entity, joint.symbol));
  }

  // What a slider slides on.
  addRail(entity, parent, child) {
    const s = this.size;
    const place = dot(subtract(child.origin, parent.origin), parent.z);
    const at = height => add(parent.origin, times(parent.z, height));
    this.cylinder("joints", at(Math.min(0, place) - 2.4 * s), at(Math.max(0, place) + 2.4 * s),
      0.16 * s, entity, Colour.joined);
  }

  // The ground carries a joint.
  addFoot(frame, entity, symbol) {
    const s = this.size;
    const isRail = symbol === "prismatic" || symbol === "cylindrical";
    const middle = subtract(frame.origin, times(frame.z, (isRail ? 2.4 : 0.85) * s));
    this.add("joints", "bearing", () => this.bearing(),
      framed(middle, [frame.x, frame.y, frame.z], [1.15 * s, 1.15 * s, 0.34 * s]), entity, Colour.ground);
  }

  addConnector(connector) {
    const s = this.size;
    const [from, to] = [originOf(connector.from), originOf(connector.to)];
    const z = unit(columnOf(connector.from, 2));
    const entity = connector.entity;
    if (connector.symbol === "bushing") {
      this.add("connectors", "ring", () => ringMesh(this.segments), along(from, z, 1.05 * s, 1.3 * s),
        entity, Colour.bushing);
      if (distance(from, to) > 0.5 * s)
        this.addLine("connectors", from, to, entity, Colour.bushing, 2);
    } else if (connector.symbol === "torsion") {
      this.add("connectors", "torsion", () => coilMesh(3, 1, 0.14, this.segments),
        along(subtract(from, times(z, 0.6 * s)), z, 0.95 * s, 1.2 * s), entity, Colour.spring);
      if (distance(from, to) > 0.5 * s)
        this.addLine("connectors", from, to, entity, Colour.spring, 2);
    } else {
      this.addSpring(from, to, entity);
    }
    for (const frame of [connector.from, connector.to])
      if (frame[12] === true)
        this.add("connectors", "box", boxMesh, framed(originOf(frame),
          [columnOf(frame, 0), columnOf(frame, 1), columnOf(frame, 2)], [s, s, s]), entity, Colour.ground);
    this.places.set(entity, times(add(from, to), 0.5));
  }

  // Springs of about one slenderness share a mesh.
  addSpring(from, to, entity) {
    const length = distance(from, to);
    const radius = Math.min(0.6 * this.size, length / 4);
    if (!(length > 0)) {
      this.ball("connectors", from, 0.5 * this.size, entity, Colour.spring);
      return;
    }
    const slender = Math.round(Math.log(length / radius) / Math.log(1.3));
    const height = 1.3 ** slender;
    const coils = Math.max(4, Math.min(16, Math.round(height * 0.75)));
    const segments = this.data.connectors.length > 200 ? 6 : 14;
    this.add("connectors", `coil ${slender}`, () => coilMesh(coils, height, 0.16, segments),
      along(from, unit(subtract(to, from)), radius, length / height), entity, Colour.spring);
  }

  // Dashes from joint to joint.
  addCoupling(coupling) {
    for (let i = 0; i + 1 < coupling.points.length; ++i) {
      const [from, to] = [coupling.points[i], coupling.points[i + 1]];
      const dashes = 2 * Math.max(2, Math.min(40, Math.round(distance(from, to) / (1.2 * this.size)))) - 1;
      const at = part => add(from, times(subtract(to, from), part));
      for (let dash = 0; dash < dashes; dash += 2)
        this.addLine("couplings", at(dash / dashes), at((dash + 1) / dashes), coupling.entity,
          Colour.coupling, 2.6);
    }
  }

  // An arrow about the axis of the joint that a motor drives, or four along it; those of
  // several motors keep clear of one another.
  addMotors() {
    const joints = new Map(this.data.joints.map(joint => [joint.entity, joint]));
    const counts = new Map();
    for (const entity of this.scene.entitiesOf("Actuators")) {
      if (this.scene.kindOf(entity) !== "Motor")
        continue;
      for (const driven of this.scene.drawnFor(entity, other => joints.has(other))) {
        const count = counts.get(driven) || 0;
        counts.set(driven, count + 1);
        this.addMotor(joints.get(driven), entity, (1.35 + 0.45 * count) * this.size);
      }
    }
  }

  addMotor(joint, entity, radius) {
    const slides = joint.symbol === "prismatic";
    const frame = joint.frames[slides ? joint.frames.length - 1 : 0];
    const [x, y, z] = [0, 1, 2].map(i => unit(columnOf(frame, i)));
    const origin = originOf(frame);
    const put = (name, make, at, size) => this.add("motors", name, make,
      framed(at, [x, y, z], [size, size, size]), entity, Colour.motor);
    const length = 3.6 * this.size;
    const sideways = slides ? [add(x, y), subtract(x, y), subtract(y, x), times(add(x, y), -1)] : [];
    for (const side of sideways)
      put("arrow", () => arrowMesh(this.segments),
        add(origin, add(times(side, 0.75 * radius), times(z, -length / 2))), length);
    if (!slides)
      put("turn arrow", () => turnArrowMesh(2 * this.segments), origin, radius);
    this.places.set(entity, origin);
  }

  // An eye beside what a sensor measures; several ones stand around it.
  addSensors() {
    const counts = new Map();
    const isDrawn = entity => this.places.has(entity);
    for (const entity of this.scene.entitiesOf("Sensors")) {
      const [measured] = this.scene.drawnFor(entity, isDrawn);
      if (measured === undefined)
        continue;
      const place = this.places.get(measured);
      const count = counts.get(place.join()) || 0;
      counts.set(place.join(), count + 1);
      const [x, y] = circleAt((1 + count) / 8);
      this.addEye(place, unit([x, y, 0.5]), entity);
    }
  }

  addEye(from, direction, entity) {
    const s = this.size;
    const at = add(from, times(direction, 2.2 * s));
    this.addLine("sensors", from, at, entity, Colour.sensor, 1.2);
    this.ball("sensors", at, 0.3 * s, entity, Colour.mass);
    this.add("sensors", "eye", () => torusMesh(0.3, this.segments),
      framed(at, [[1, 0, 0], [0, 1, 0], [0, 0, 1]], [0.55 * s, 0.55 * s, 0.55 * s]), entity,
      Colour.sensor);
    this.places.set(entity, at);
  }

  // A floor below the mechanism, or a wall behind a flat one.
  addGrid(camera) {
    const {up, back} = camera.basis;
    const normal = camera.isFlat ? back : up;
    const size = this.bounds.isEmpty ? 1 : this.extent;
    const step = 10 ** Math.floor(Math.log10(size / 3));
    const lowest = Math.min(...(this.bounds.isEmpty ? [[0, 0, 0]] : this.bounds.corners)
      .map(corner => dot(corner, normal)));
    const height = lowest - 0.04 * size;
    const [u, v] = camera.isFlat ? [camera.basis.right, up] : [camera.basis.right, camera.basis.back];
    const middle = [u, v].map(axis => Math.round(dot(this.offset, axis) / step));
    const reach = Math.ceil(0.75 * size / step);
    const at = (a, b) => add(times(normal, height), add(times(u, a * step), times(v, b * step)));
    for (let i = -reach; i <= reach; ++i) {
      const colourOf = line => line % 5 === 0 ? Colour.gridMain : Colour.grid;
      const [a, b] = [middle[0] + i, middle[1] + i];
      this.addLine("grid", at(a, middle[1] - reach), at(a, middle[1] + reach), Nobody, colourOf(a), 1);
      this.addLine("grid", at(middle[0] - reach, b), at(middle[0] + reach, b), Nobody, colourOf(b), 1);
    }
  }
}
