// Vectors are arrays of three numbers; a placement is three columns and an origin, twelve numbers; a
// matrix has sixteen, by columns.

const add = (a, b) => [a[0] + b[0], a[1] + b[1], a[2] + b[2]];
const subtract = (a, b) => [a[0] - b[0], a[1] - b[1], a[2] - b[2]];
const times = (a, factor) => [a[0] * factor, a[1] * factor, a[2] * factor];
const dot = (a, b) => a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
const cross = (a, b) => [
  a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]];
const norm = a => Math.hypot(a[0], a[1], a[2]);
const distance = (a, b) => norm(subtract(a, b));

function unit(a, otherwise = [0, 0, 1]) {
  const length = norm(a);
  return length > 0 ? times(a, 1 / length) : otherwise;
}

// Two unit vectors across a unit vector, in a right-handed order.
function across(axis) {
  const helper = Math.abs(axis[0]) < 0.9 ? [1, 0, 0] : [0, 1, 0];
  const first = unit(cross(helper, axis));
  return [first, cross(axis, first)];
}

const originOf = placement => placement.slice(9, 12);
const columnOf = (placement, index) => placement.slice(3 * index, 3 * index + 3);

function turned(placement, v) {
  const [a, b, c] = [columnOf(placement, 0), columnOf(placement, 1), columnOf(placement, 2)];
  return add(add(times(a, v[0]), times(b, v[1])), times(c, v[2]));
}

const placed = (placement, point) => add(turned(placement, point), originOf(placement));

// The placement that scales by three factors, then turns along three directions, then moves.
function framed(origin, directions, scales) {
  return [
    ...times(directions[0], scales[0]), ...times(directions[1], scales[1]),
    ...times(directions[2], scales[2]), ...origin];
}

// Along an axis from a point, with one scale across and one along it.
const along = (origin, axis, radius, length) =>
  framed(origin, [...across(axis), axis], [radius, radius, length]);

function multiply(a, b) {
  const result = new Array(16).fill(0);
  for (let column = 0; column < 4; ++column)
    for (let row = 0; row < 4; ++row)
      for (let i = 0; i < 4; ++i)
        result[4 * column + row] += a[4 * i + row] * b[4 * column + i];
  return result;
}

// A point through a matrix: three coordinates and the weight that they are to be divided by.
function project(matrix, p) {
  const at = row => matrix[row] * p[0] + matrix[4 + row] * p[1] + matrix[8 + row] * p[2] + matrix[12 + row];
  return [at(0), at(1), at(2), at(3)];
}

/// A box that grows around points, of which it keeps the first thousands.
class Bounds {
  constructor() {
    this.low = [Infinity, Infinity, Infinity];
    this.high = [-Infinity, -Infinity, -Infinity];
    this.points = [];
    this.count = 0;
  }
  add(point, margin = 0) {
    if (++this.count <= Bounds.most)
      this.points.push([point, margin]);
    for (let i = 0; i < 3; ++i) {
      this.low[i] = Math.min(this.low[i], point[i] - margin);
      this.high[i] = Math.max(this.high[i], point[i] + margin);
    }
  }
  get isEmpty() { return !(this.low[0] <= this.high[0]); }
  get center() { return this.isEmpty ? [0, 0, 0] : times(add(this.low, this.high), 0.5); }
  get sizes() { return this.isEmpty ? [0, 0, 0] : subtract(this.high, this.low); }
  get extent() { return norm(this.sizes); }

  get corners() {
    return [0, 1, 2, 3, 4, 5, 6, 7].map(
      corner => [0, 1, 2].map(i => (corner >> i & 1 ? this.high : this.low)[i]));
  }

  // Points with margins around them that all lies between: those that were added, or the corners.
  get outline() {
    if (this.count <= Bounds.most)
      return this.points;
    return this.corners.map(corner => [corner, 0]);
  }
}
Bounds.most = 4000;
