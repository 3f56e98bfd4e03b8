// Brings the parts together: what is shown, selected and pressed.

/// The page at work.
class Viewer {
  constructor(scene) {
    this.scene = scene;
    this.selected = -1;
    this.hovered = -1;
    this.showsNames = false;
    this.canvas = find("view");
    this.drawing = new Drawing(scene);
    this.camera = new Camera(this.drawing.bounds, scene.data.gravity);
    this.drawing.addGrid(this.camera);
    const prefersDark = window.matchMedia("(prefers-color-scheme: dark)");
    this.setTheme(prefersDark.matches);
    prefersDark.addEventListener("change", event => this.setTheme(event.matches));
    this.describe();
    this.tree = new Tree(find("tree"), scene, (entity, look) => this.select(entity, look),
      entity => this.hover(entity), entity => this.cssColourOf(entity));
    try {
      this.renderer = new Renderer(this.canvas, this.drawing, scene.count);
    } catch (error) {
      this.renderer = null;
      find("message").hidden = false;
      find("message").textContent = `This browser cannot draw the mechanism: ${error.message}.`;
    }
    this.listen();
    this.addLayers();
    if (this.renderer)
      this.startPicture();
  }

  startPicture() {
    this.canvas.addEventListener("webglcontextlost", event => {
      event.preventDefault();
      find("message").hidden = false;
      find("message").textContent = "The browser gave up the picture; reload the page to have it back.";
    });
    this.renderer.resize();
    this.camera.reset(this.renderer.aspect);
    new ResizeObserver(() => this.redraw()).observe(this.canvas);
    this.draw();
  }

  describe() {
    const {data} = this.scene;
    document.title = data.title;
    find("title").textContent = data.title;
    const count = (number, one, many) => `${number} ${number === 1 ? one : many}`;
    find("counts").textContent = [count(data.bodies.length, "body", "bodies"),
      count(data.joints.length, "joint", "joints"),
      count(this.scene.count, "entity", "entities")].join(", ");
  }

  cssColourOf(entity) {
    const colour = this.scene.colours.get(entity);
    const families = {Joints: Colour.joint, Connectors: Colour.spring, Geometries: Colour.geometry};
    const shown = colour === undefined ? families[this.scene.familyOf(entity).name] : colour;
    return shown === undefined ? null : this.theme.colours[shown];
  }

  setTheme(isDark) {
    this.isDark = isDark;
    this.theme = isDark ? palettes.dark : palettes.light;
    document.documentElement.classList.toggle("dark", isDark);
    if (this.tree)
      this.tree.show();
    this.redraw();
  }

  // Draws once before the next picture of the page.
  redraw() {
    if (!this.renderer || this.isPending)
      return;
    this.isPending = true;
    requestAnimationFrame(() => this.draw());
  }

  draw() {
    this.isPending = false;
    this.renderer.resize();
    this.matrix = this.camera.matrix(this.renderer.aspect);
    const offset = this.drawing.offset;
    const move = [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, ...offset, 1];
    this.renderer.draw(this.camera, multiply(this.matrix, move), this.theme);
    this.drawAxes();
    this.placeNames();
  }

  // The world's axes as the camera sees them.
  drawAxes() {
    const canvas = find("axes");
    const context = canvas.getContext("2d");
    const {right, up, back} = this.camera.directions;
    const middle = canvas.width / 2;
    context.clearRect(0, 0, canvas.width, canvas.height);
    context.font = "600 22px system-ui, sans-serif";
    context.textAlign = "center";
    context.textBaseline = "middle";
    context.lineWidth = 5;
    context.lineCap = "round";
    const axes = [[1, 0, 0], [0, 1, 0], [0, 0, 1]].map((axis, i) => ({
      x: dot(axis, right), y: -dot(axis, up), depth: dot(axis, back), name: "XYZ"[i],
      colour: this.theme.colours[[Colour.xAxis, Colour.yAxis, Colour.zAxis][i]]}));
    for (const axis of axes.sort((a, b) => a.depth - b.depth)) {
      context.strokeStyle = axis.colour;
      context.fillStyle = axis.colour;
      context.beginPath();
      context.moveTo(middle, middle);
      context.lineTo(middle + 56 * axis.x, middle + 56 * axis.y);
      context.stroke();
      context.fillText(axis.name, middle + 75 * axis.x, middle + 75 * axis.y);
    }
  }

  // Where a point of the world is on the canvas; null behind the viewer.
  onCanvas(point) {
    const [x, y, , w] = project(this.matrix, point);
    if (!(w > 0))
      return null;
    return [(x / w + 1) / 2 * this.canvas.clientWidth, (1 - y / w) / 2 * this.canvas.clientHeight];
  }

  placeNames() {
    const holder = find("names");
    const entities = this.showsNames ? [...this.scene.data.bodies, ...this.scene.data.joints]
      .map(item => item.entity).filter(entity => this.drawing.places.has(entity)).slice(0, 300) : [];
    while (holder.children.length > entities.length)
      holder.lastChild.remove();
    entities.forEach((entity, i) => {
      const label = holder.children[i] || holder.appendChild(make("span"));
      const at = this.onCanvas(this.drawing.places.get(entity));
      label.textContent = this.scene.nameOf(entity);
      label.hidden = at === null;
      if (at !== null)
        label.style.transform = `translate(${at[0] + 8}px, ${at[1] - 9}px)`;
    });
  }

  setStates() {
    if (!this.renderer)
      return;
    const {states} = this.renderer;
    states.fill(0);
    const isDrawn = entity => this.drawing.drawn.has(entity);
    const mark = (entity, bit) => {
      if (entity >= 0)
        for (const drawn of this.scene.drawnFor(entity, isDrawn))
          states[drawn] |= bit;
    };
    if (this.found) {
      states.fill(Faded);
      for (const entity of this.found)
        states[entity] = 0;
    }
    mark(this.hovered, Hovered);
    mark(this.selected, Selected);
    for (let entity = 0; entity < states.length; ++entity)
      if (states[entity] & Selected)
        states[entity] &= ~Faded;
    this.renderer.uploadStates();
    this.redraw();
  }

  // Selects an entity, or none for -1, and looks at it if told.
  select(entity, look = false) {
    this.selected = entity;
    this.tree.select(entity);
    showDetails(find("details"), this.scene, entity, target => this.select(target));
    this.setStates();
    if (look)
      this.lookAt(entity);
  }

  hover(entity) {
    if (entity === this.hovered)
      return;
    this.hovered = entity;
    this.tree.hover(entity);
    this.setStates();
  }

  lookAt(entity) {
    const bounds = new Bounds();
    for (const drawn of this.scene.drawnFor(entity, other => this.drawing.drawn.has(other))) {
      const body = this.scene.data.bodies.find(other => other.entity === drawn);
      for (const point of body ? this.drawing.pointsOf(body) : [])
        bounds.add(point, this.drawing.size);
      bounds.add(this.drawing.places.get(drawn), 4 * this.drawing.size);
    }
    if (!bounds.isEmpty && this.renderer)
      this.camera.fit(this.renderer.aspect, bounds);
    this.redraw();
  }

  search(text) {
    this.found = this.scene.find(text);
    this.tree.search(this.found);
    this.setStates();
  }

  toggleLayer(name, isShown) {
    if (isShown)
      this.renderer.hiddenLayers.delete(name);
    else
      this.renderer.hiddenLayers.add(name);
    this.redraw();
  }

  addLayers() {
    const holder = find("layers").querySelector("div");
    const addBox = (title, isOn, onChange) => {
      const box = make("input", {type: "checkbox", checked: isOn});
      const label = make("label");
      label.append(box, title);
      box.addEventListener("change", () => onChange(box.checked));
      holder.append(label);
      return box;
    };
    this.boxes = {};
    const used = new Set([...this.drawing.batches.values()].map(batch => batch.layer));
    for (const layer of this.drawing.lines.keys())
      used.add(layer);
    for (const {name, title, isOff} of Layers) {
      if (!used.has(name) || !this.renderer)
        continue;
      this.boxes[name] = addBox(title, !isOff, isShown => this.toggleLayer(name, isShown));
      if (isOff)
        this.toggleLayer(name, false);
    }
    this.boxes.names = addBox("Names", false, isShown => {
      this.showsNames = isShown;
      this.redraw();
    });
  }

  listen() {
    const actions = {
      side: () => document.body.classList.toggle("no-side"),
      fit: () => this.camera.fit(this.renderer.aspect),
      first: () => this.camera.reset(this.renderer.aspect),
      projection: () => {
        this.camera.isParallel = !this.camera.isParallel;
        document.querySelector("[data-action=projection]").textContent =
          this.camera.isParallel ? "Perspective" : "Parallel";
      },
      theme: () => this.setTheme(!this.isDark),
      help: () => find("help").showModal(),
    };
    this.act = name => {
      if (this.renderer || name === "side" || name === "theme" || name === "help")
        actions[name]();
      this.redraw();
    };
    for (const button of document.querySelectorAll("[data-action]"))
      button.addEventListener("click", () => this.act(button.dataset.action));
    const search = find("search");
    search.addEventListener("input", () => this.search(search.value));
    search.addEventListener("keydown", event => this.onSearchKey(event));
    document.addEventListener("keydown", event => this.onKey(event));
    document.addEventListener("pointerdown", event => {
      if (!event.target.closest("#layers"))
        find("layers").open = false;
    });
    if (this.renderer)
      new Pointer(this);
  }

  onSearchKey(event) {
    if (event.key === "Enter" && this.found && this.found.size > 0) {
      const all = [...this.found].sort((a, b) => a - b);
      const next = all.find(entity => entity > this.selected);
      this.select(next === undefined ? all[0] : next, true);
    } else if (event.key === "Escape") {
      find("search").value = "";
      this.search("");
      this.canvas.focus();
    } else if (event.key === "ArrowDown") {
      find("tree").focus();
    } else {
      return;
    }
    event.preventDefault();
    event.stopPropagation();
  }

  onKey(event) {
    if (event.ctrlKey || event.metaKey || event.altKey || find("help").open ||
        event.target.closest("input, textarea"))
      return;
    const turn = {ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, 1], ArrowDown: [0, -1]}[event.key];
    const keys = {
      "/": () => find("search").focus(), "?": () => this.act("help"), f: () => this.act("fit"),
      i: () => this.act("first"), p: () => this.act("projection"), t: () => this.act("theme"),
      e: () => this.act("side"), g: () => this.flip("grid"), n: () => this.flip("names"),
      "+": () => this.camera.zoom(0.85), "=": () => this.camera.zoom(0.85), "-": () => this.camera.zoom(1.18),
      ".": () => this.lookAt(this.selected), Escape: () => this.select(-1),
      x: () => this.lookAlong([1, 0, 0], event), y: () => this.lookAlong([0, 1, 0], event),
      z: () => this.lookAlong([0, 0, 1], event)};
    const key = event.key.length === 1 ? event.key.toLowerCase() : event.key;
    if (turn && event.shiftKey)
      this.camera.move(-0.05 * turn[0], 0.05 * turn[1]);
    else if (turn)
      this.camera.turn(-0.1 * turn[0], 0.1 * turn[1]);
    else if (keys[key])
      keys[key]();
    else
      return;
    event.preventDefault();
    this.redraw();
  }

  lookAlong(axis, event) {
    this.camera.lookAlong(event.shiftKey ? times(axis, -1) : axis);
    this.camera.fit(this.renderer.aspect);
  }

  flip(name) {
    if (this.boxes[name])
      this.boxes[name].click();
  }
}

/// For scripts of the browser's console: select(name or number), selected(), where(name or number)
/// on the canvas in pixels.
function consoleInterface(viewer) {
  const {scene} = viewer;
  const numberOf = entity => typeof entity === "number" ? entity :
    scene.data.entities.findIndex(([, name, identifier]) => name === entity || identifier === entity);
  return Object.freeze({
    select: entity => viewer.select(numberOf(entity)),
    selected: () => viewer.selected < 0 ? null : scene.nameOf(viewer.selected),
    where: entity => {
      const place = viewer.drawing.places.get(numberOf(entity));
      return place === undefined ? null : viewer.onCanvas(place);
    },
    colour: entity => viewer.cssColourOf(numberOf(entity)),
  });
}

const viewer = new Viewer(new Scene(JSON.parse(find("scene").textContent)));
window.karmp = consoleInterface(viewer);
