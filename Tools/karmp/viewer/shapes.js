// The meshes that everything is drawn with: corners, normals and triangles.

/// A mesh in the making.
class Mesh {
  constructor() {
    this.positions = [];
    this.normals = [];
    this.triangles = [];
  }
  get count() { return this.positions.length / 3; }
  corner(position, normal) {
    this.positions.push(...position);
    this.normals.push(...normal);
    return this.count - 1;
  }
  triangle(a, b, c) { this.triangles.push(a, b, c); }
  // Corners of a grid, row by row, become triangles.
  grid(rows, columns, cornerAt) {
    const start = this.count;
    for (let i = 0; i <= rows; ++i)
      for (let j = 0; j <= columns; ++j)
        this.corner(...cornerAt(i / rows, j / columns));
    for (let i = 0; i < rows; ++i) {
      for (let j = 0; j < columns; ++j) {
        const a = start + i * (columns + 1) + j;
        const b = a + columns + 1;
        this.triangle(a, b, a + 1);
        this.triangle(a + 1, b, b + 1);
      }
    }
    return this;
  }
}

const circleAt = part => [Math.cos(2 * Math.PI * part), Math.sin(2 * Math.PI * part)];

// Of radius 1 about the origin.
function sphereMesh(segments) {
  return new Mesh().grid(segments / 2, segments, (v, u) => {
    const [x, y] = circleAt(u);
    const across = Math.sin(Math.PI * v);
    const point = [x * across, y * across, Math.cos(Math.PI * v)];
    return [point, point];
  });
}

// A ring of a profile about z: points as radius and height, each piece with normals of its own.
function turnedMesh(profile, segments) {
  const mesh = new Mesh();
  for (let i = 0; i + 1 < profile.length; ++i) {
    const [[r0, z0], [r1, z1]] = [profile[i], profile[i + 1]];
    const normal = unit([z1 - z0, 0, r0 - r1]);
    mesh.grid(1, segments, (v, u) => {
      const [x, y] = circleAt(u);
      const radius = r0 + (r1 - r0) * v;
      return [[x * radius, y * radius, z0 + (z1 - z0) * v],
        [x * normal[0], y * normal[0], normal[2]]];
    });
  }
  return mesh;
}

// Of radius 1 and length 1, its middle at the origin.
const cylinderMesh = segments =>
  turnedMesh([[0, -0.5], [1, -0.5], [1, 0.5], [0, 0.5]], segments);
// The side alone.
const pipeMesh = segments => turnedMesh([[1, -0.5], [1, 0.5]], segments);
// A hollow cylinder.
const ringMesh = segments =>
  turnedMesh([[0.6, -0.5], [1, -0.5], [1, 0.5], [0.6, 0.5], [0.6, -0.5]], segments);
// A cylinder with rounded edges, for bearings.
const bearingMesh = segments => turnedMesh(
  [[0, -0.5], [0.86, -0.5], [1, -0.44], [1, 0.44], [0.86, 0.5], [0, 0.5]], segments);
// From the apex at the origin to radius 1 at height 1, without the base.
const coneMesh = segments => turnedMesh([[0, 0], [1, 1]], segments);

// Of edge 1 about the origin.
function boxMesh() {
  const mesh = new Mesh();
  for (let axis = 0; axis < 3; ++axis) {
    for (const side of [-1, 1]) {
      const normal = [0, 0, 0];
      normal[axis] = side;
      mesh.grid(1, 1, (u, v) => {
        const point = [0, 0, 0];
        point[axis] = side / 2;
        point[(axis + 1) % 3] = u - 0.5;
        point[(axis + 2) % 3] = v - 0.5;
        return [point, normal];
      });
    }
  }
  return mesh;
}

// Of edge 1 in the plane z = 0, about the origin.
const sheetMesh = () =>
  new Mesh().grid(1, 1, (u, v) => [[u - 0.5, v - 0.5, 0], [0, 0, 1]]);

// Eight faces about the origin, corners at distance 1.
function octahedronMesh() {
  const mesh = new Mesh();
  for (const x of [-1, 1]) {
    for (const y of [-1, 1]) {
      for (const z of [-1, 1]) {
        const normal = unit([x, y, z]);
        const corners = [[x, 0, 0], [0, y, 0], [0, 0, z]].map(p => mesh.corner(p, normal));
        mesh.triangle(...corners);
      }
    }
  }
  return mesh;
}

// A tube of a radius about a path; `frameAt` gives point and unit tangent at a part of it.
function tubeMesh(steps, segments, radius, frameAt) {
  return new Mesh().grid(steps, segments, (part, u) => {
    const [point, tangent] = frameAt(part);
    const inward = unit([-point[0], -point[1], 0], [1, 0, 0]);
    const side = unit(subtract(inward, times(tangent, dot(inward, tangent))));
    const [x, y] = circleAt(u);
    const normal = add(times(side, x), times(cross(tangent, side), y));
    return [add(point, times(normal, radius)), normal];
  });
}

// The middle circle has radius 1.
const torusMesh = (radius, segments) => tubeMesh(segments, segments / 2, radius, part => {
  const [x, y] = circleAt(part);
  return [[x, y, 0], [-y, x, 0]];
});

// Four fifths of a circle of radius 1 about z, with a tip in the sense of the turn.
function turnArrowMesh(segments) {
  const mesh = tubeMesh(segments, 8, 0.11, part => {
    const [x, y] = circleAt(0.8 * part);
    return [[x, y, 0], [-y, x, 0]];
  });
  const [x, y] = circleAt(0.8);
  return mesh.grid(1, 12, (v, u) => {
    const [a, b] = circleAt(u);
    const normal = [a * x, a * y, b];
    return [add(add([x, y, 0], times([-y, x, 0], 0.6 * v)), times(normal, 0.3 * (1 - v))), normal];
  });
}
// From the origin along z, of length 1.
const arrowMesh = segments =>
  turnedMesh([[0, 0], [0.04, 0], [0.04, 0.75], [0.1, 0.75], [0, 1]], segments);

// A coil of radius 1 from z = 0 to `height`, whose straight ends lie on the axis.
function coilMesh(coils, height, wire, segments) {
  const end = 0.07;
  const slope = height / (2 * Math.PI * coils);
  return tubeMesh(coils * segments, 6, wire, part => {
    const [x, y] = circleAt(part * coils);
    const taper = Math.max(0, Math.min(1, 22 * (Math.min(part, 1 - part) - end)));
    const tangent = taper > 0 ? unit([-y, x, slope]) : [0, 0, 1];
    return [[x * taper, y * taper, height * part], tangent];
  });
}

// A mesh of the document with its own normals.
function smoothMesh(points, normals, triangles) {
  const mesh = new Mesh();
  mesh.positions = points;
  mesh.normals = normals;
  mesh.triangles = triangles;
  return mesh;
}

// A mesh of the document without: its faces get normals that are shared where they meet at a blunt angle.
function givenMesh(numbers, triangles) {
  const mesh = new Mesh();
  const at = index => numbers.slice(3 * index, 3 * index + 3);
  const faces = [];
  const around = new Map();
  const keyOf = index => at(index).join();
  for (let i = 0; i + 2 < triangles.length; i += 3) {
    const corners = triangles.slice(i, i + 3);
    const [a, b, c] = corners.map(at);
    const normal = cross(subtract(b, a), subtract(c, a));
    if (!(norm(normal) > 0))
      continue;
    faces.push({corners, normal, direction: unit(normal)});
    for (const corner of corners) {
      const key = keyOf(corner);
      if (!around.has(key))
        around.set(key, []);
      around.get(key).push(faces.length - 1);
    }
  }
  const blunt = Math.cos(Math.PI / 5);
  for (const face of faces) {
    mesh.triangle(...face.corners.map(corner => {
      let sum = [0, 0, 0];
      const others = around.get(keyOf(corner));
      for (const other of others.length > 64 ? [] : others)
        if (dot(faces[other].direction, face.direction) > blunt)
          sum = add(sum, faces[other].normal);
      return mesh.corner(at(corner), unit(sum, face.direction));
    }));
  }
  return mesh;
}
