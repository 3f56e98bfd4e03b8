/// Mouse, pen and fingers on the picture.
class Pointer {
  constructor(viewer) {
    this.viewer = viewer;
    this.canvas = viewer.canvas;
    this.down = new Map();
    this.way = 0;
    const listen = (name, act) => this.canvas.addEventListener(name, event => act.call(this, event));
    listen("pointerdown", this.onDown);
    listen("pointermove", this.onMove);
    listen("pointerup", this.onUp);
    listen("pointercancel", event => this.end(event));
    listen("pointerleave", () => this.showTip(-1));
    listen("blur", () => this.canvas.classList.remove("by-pointer"));
    listen("wheel", this.onWheel);
    listen("contextmenu", event => event.preventDefault());
    listen("dblclick", event => viewer.select(this.pick(event), true));
  }

  at(event) {
    const box = this.canvas.getBoundingClientRect();
    return [event.clientX - box.left, event.clientY - box.top];
  }
  pick(event) { return this.viewer.renderer.pick(...this.at(event)); }

  onDown(event) {
    this.canvas.setPointerCapture(event.pointerId);
    if (this.down.size === 0)
      this.way = 0;
    this.down.set(event.pointerId, this.at(event));
    this.canvas.classList.add("turning", "by-pointer");
    this.canvas.focus({preventScroll: true});
  }

  onMove(event) {
    const now = this.at(event);
    const before = this.down.get(event.pointerId);
    if (!before) {
      this.showTip(this.pick(event), now);
      return;
    }
    const [x, y] = [now[0] - before[0], now[1] - before[1]];
    const height = this.canvas.clientHeight;
    this.way += Math.abs(x) + Math.abs(y);
    this.showTip(-1);
    if (this.down.size > 1)
      this.pinch(event.pointerId, now);
    else if (event.buttons & 6 || event.shiftKey)
      this.viewer.camera.move(x / height, y / height);
    else if (this.way > 3)
      this.viewer.camera.turn(5 * x / height, 5 * y / height);
    this.down.set(event.pointerId, now);
    this.viewer.redraw();
  }

  // Two fingers move and zoom.
  pinch(id, now) {
    const [other] = [...this.down].filter(([key]) => key !== id).map(([, at]) => at);
    const before = this.down.get(id);
    const height = this.canvas.clientHeight;
    const width = (a, b) => Math.max(1, Math.hypot(a[0] - b[0], a[1] - b[1]));
    this.viewer.camera.zoom(width(before, other) / width(now, other));
    this.viewer.camera.move((now[0] - before[0]) / 2 / height, (now[1] - before[1]) / 2 / height);
  }

  onUp(event) {
    if (this.end(event) && this.way <= 3 && event.button === 0)
      this.viewer.select(this.pick(event));
  }

  end(event) {
    const wasDown = this.down.delete(event.pointerId);
    if (this.down.size === 0)
      this.canvas.classList.remove("turning");
    return wasDown;
  }

  onWheel(event) {
    event.preventDefault();
    const [x, y] = this.at(event);
    const {clientWidth: width, clientHeight: height} = this.canvas;
    const lines = event.deltaMode === 1 ? 16 : event.deltaMode === 2 ? 400 : 1;
    this.viewer.camera.zoom(Math.exp(Math.max(-1, Math.min(1, event.deltaY * lines * 0.0015))),
      2 * x / width - 1, 1 - 2 * y / height, width / height);
    this.showTip(-1);
    this.viewer.redraw();
  }

  // The name of what is under the pointer, beside it.
  showTip(entity, at) {
    const tip = find("tip");
    this.canvas.classList.toggle("over", entity >= 0);
    tip.hidden = entity < 0;
    if (entity >= 0) {
      tip.querySelector("b").textContent = this.viewer.scene.nameOf(entity);
      tip.querySelector("span").textContent = this.viewer.scene.kindOf(entity);
      const right = this.canvas.clientWidth - tip.offsetWidth - 8;
      const below = at[1] + 18 + tip.offsetHeight < this.canvas.clientHeight;
      tip.style.transform = `translate(${Math.max(4, Math.min(right, at[0] + 14))}px, ` +
        `${below ? at[1] + 18 : at[1] - tip.offsetHeight - 8}px)`;
    }
    this.viewer.hover(entity);
  }
}
