// Where the mechanism is seen from.

/// A camera that turns about a target. Its basis is the view at angle 0: right, up and towards the
/// viewer.
class Camera {
  constructor(bounds, gravity) {
    this.bounds = bounds;
    this.isParallel = false;
    this.chooseBasis(gravity);
    this.reset(1);
  }

  // Up is against gravity; a flat mechanism is seen from its side.
  chooseBasis(gravity) {
    const core = new Bounds(); // without the margins, which are as deep as wide
    for (const [point] of this.bounds.outline)
      core.add(point);
    const sizes = core.sizes;
    const flat = [0, 1, 2].find(i => sizes[i] <= 0.12 * Math.max(...sizes));
    let up = gravity.every(Number.isFinite) && norm(gravity) > 0 ? unit(times(gravity, -1)) : null;
    if (up === null)
      up = flat === 2 ? [0, 1, 0] : [0, 0, 1];
    this.isFlat = flat !== undefined;
    let back = [0, 0, 0];
    if (this.isFlat)
      back[flat] = flat === 1 ? -1 : 1;
    if (!this.isFlat || Math.abs(dot(back, up)) > 0.7) {
      this.isFlat = false;
      back = Math.abs(up[2]) > 0.7 ? [0, -1, 0] : [0, 0, 1];
    }
    const right = unit(cross(up, back), [1, 0, 0]);
    this.basis = {right, up, back: cross(right, up)};
  }

  reset(aspect) {
    this.yaw = this.isFlat ? 0.32 : 0.62;
    this.pitch = this.isFlat ? 0.3 : 0.42;
    this.fit(aspect);
  }

  // Shows bounds whole and in the middle, whatever the angles. What is near looks larger in
  // perspective.
  fit(aspect, bounds = this.bounds) {
    this.target = bounds.center;
    this.reach = 0;
    const {right, up, back} = this.directions;
    const outline = bounds.outline.map(([point, margin]) => [subtract(point, this.target), margin]);
    const shown = new Bounds();
    for (const [arm, margin] of outline)
      shown.add([dot(arm, right), dot(arm, up), 0], margin);
    const shift = add(times(right, shown.center[0]), times(up, shown.center[1]));
    this.target = add(this.target, shift);
    for (const item of outline)
      item[0] = subtract(item[0], shift);
    const slope = this.isParallel ? 0 : Math.tan(Camera.angle / 2);
    for (const [arm, margin] of outline) {
      const nearness = slope * dot(arm, back);
      this.reach = Math.max(this.reach, Math.abs(dot(arm, up)) + margin + nearness,
        (Math.abs(dot(arm, right)) + margin) / aspect + nearness);
    }
    this.reach = 1.15 * Math.max(this.reach, 0.05 * bounds.extent, 1e-9 * norm(this.target), 1e-12);
  }

  // What the viewer sees as right, up and back.
  get directions() {
    const {right, up, back} = this.basis;
    const level = add(times(back, Math.cos(this.yaw)), times(right, Math.sin(this.yaw)));
    const seen = add(times(level, Math.cos(this.pitch)), times(up, Math.sin(this.pitch)));
    const sideways = add(times(right, Math.cos(this.yaw)), times(back, -Math.sin(this.yaw)));
    return {right: sideways, up: cross(seen, sideways), back: seen};
  }

  // The target is so far that a height of 2 * reach fills the view.
  get distance() { return this.reach / Math.tan(Camera.angle / 2); }

  matrix(aspect) {
    const {right, up, back} = this.directions;
    const span = Math.max(this.bounds.extent, this.reach) + distance(this.target, this.bounds.center);
    const away = this.isParallel ? span * 2 : this.distance;
    const eye = add(this.target, times(back, away));
    const view = [
      right[0], up[0], back[0], 0, right[1], up[1], back[1], 0, right[2], up[2], back[2], 0,
      -dot(right, eye), -dot(up, eye), -dot(back, eye), 1];
    return multiply(this.lens(aspect, away, span), view);
  }

  lens(aspect, away, span) {
    const far = away + 2 * span;
    if (this.isParallel) {
      return [
        1 / (this.reach * aspect), 0, 0, 0, 0, 1 / this.reach, 0, 0, 0, 0, -2 / far, 0, 0, 0, -1, 1];
    }
    const near = Math.max(away - 2 * span, away * 0.02);
    const focus = 1 / Math.tan(Camera.angle / 2);
    return [
      focus / aspect, 0, 0, 0, 0, focus, 0, 0, 0, 0, (far + near) / (near - far), -1, 0, 0,
      2 * far * near / (near - far), 0];
  }

  turn(yaw, pitch) {
    this.yaw -= yaw;
    this.pitch = Math.max(-Math.PI / 2, Math.min(Math.PI / 2, this.pitch + pitch));
  }

  // By parts of the view's height.
  move(x, y) {
    const {right, up} = this.directions;
    const step = 2 * this.reach;
    this.target = add(this.target, add(times(right, -x * step), times(up, y * step)));
  }

  // Around a point of the view, from -1 to 1 with y up.
  zoom(factor, x = 0, y = 0, aspect = 1) {
    const least = 1e-6 * Math.max(this.bounds.extent, 1e-6);
    const reach = Math.max(least, Math.min(this.reach * factor, 50 * Math.max(this.bounds.extent, least)));
    const {right, up} = this.directions;
    const change = this.reach - reach;
    this.target = add(this.target, add(times(right, x * aspect * change), times(up, y * change)));
    this.reach = reach;
  }

  // Looks along an axis of the world, from its positive end.
  lookAlong(axis) {
    const {right, up, back} = this.basis;
    this.pitch = Math.asin(Math.max(-1, Math.min(1, dot(axis, up))));
    if (Math.abs(this.pitch) < 1.57)
      this.yaw = Math.atan2(dot(axis, right), dot(axis, back));
    else
      this.yaw = 0;
  }
}
Camera.angle = 0.6;
