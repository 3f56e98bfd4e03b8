// The tree of entities: families, their entities, and the parts of bodies. Only the rows in sight
// are elements of the page.

const RowHeight = 24;

/// The tree; tells `onChoose` and `onHover` of entities.
class Tree {
  constructor(element, scene, onChoose, onHover, cssColourOf) {
    this.element = element;
    this.space = element.querySelector("#tree-space");
    this.holder = element.querySelector("#tree-rows");
    this.scene = scene;
    this.onChoose = onChoose;
    this.onHover = onHover;
    this.cssColourOf = cssColourOf;
    this.found = null;
    this.selected = -1;
    this.hovered = -1;
    this.current = 0;
    this.open = new Set();
    for (const family of scene.families)
      if (family.name === "Bodies" || family.count <= 60 && ["Joints", "Connectors"].includes(family.name))
        this.open.add(`f${family.name}`);
    element.addEventListener("scroll", () => this.show());
    element.addEventListener("keydown", event => this.onKey(event));
    this.holder.addEventListener("click", event => this.onClick(event));
    this.holder.addEventListener("mousemove", event => {
      const row = this.rowOf(event);
      this.onHover(row && row.entity !== undefined ? row.entity : -1);
    });
    element.addEventListener("mouseleave", () => this.onHover(-1));
    new ResizeObserver(() => this.show()).observe(element);
    this.build();
  }

  // The rows of what is open; of a search, what was found.
  build() {
    this.rows = [];
    for (const family of this.scene.families) {
      const key = `f${family.name}`;
      const entities = [];
      for (let entity = family.first; entity < family.first + family.count; ++entity)
        if (this.found === null || this.found.has(entity))
          entities.push(entity);
      if (entities.length === 0)
        continue;
      const isOpen = this.found !== null || this.open.has(key);
      this.rows.push({key, level: 1, family, count: entities.length, isOpen, isLeaf: false});
      if (isOpen)
        for (const entity of entities)
          this.addEntity(entity);
    }
    this.current = Math.max(0, Math.min(this.current, this.rows.length - 1));
    this.space.style.height = `${this.rows.length * RowHeight}px`;
    this.show();
  }

  addEntity(entity) {
    const parts = this.found === null ? this.scene.partsOf(entity) : [];
    const key = `e${entity}`;
    const isOpen = this.open.has(key) && parts.length > 0;
    this.rows.push({key, level: 2, entity, isOpen, isLeaf: parts.length === 0});
    if (isOpen)
      for (const part of parts)
        this.rows.push({key: `${key}/${part}`, level: 3, entity: part, isOpen: false, isLeaf: true});
  }

  show() {
    const first = Math.max(0, Math.floor(this.element.scrollTop / RowHeight) - 5);
    const last = Math.min(this.rows.length,
      Math.ceil((this.element.scrollTop + this.element.clientHeight) / RowHeight) + 5);
    this.holder.style.top = `${first * RowHeight}px`;
    this.holder.replaceChildren(...this.rows.slice(first, last).map((row, i) => this.elementOf(row, first + i)));
    this.element.setAttribute("aria-activedescendant", `row-${this.current}`);
  }

  elementOf(row, index) {
    const element = make("div", {className: "row", id: `row-${index}`});
    element.dataset.index = index;
    element.setAttribute("role", "treeitem");
    element.setAttribute("aria-level", row.level);
    if (!row.isLeaf)
      element.setAttribute("aria-expanded", row.isOpen);
    element.style.paddingLeft = `${8 + 14 * (row.level - 1)}px`;
    element.classList.toggle("open", row.isOpen);
    element.classList.toggle("leaf", row.isLeaf);
    element.append(make("span", {className: "arrow"}));
    if (row.family) {
      element.classList.add("family");
      element.append(make("span", {className: "name", textContent: row.family.title}),
        make("span", {className: "kind", textContent: String(row.count)}));
      element.classList.toggle("chosen", index === this.current && document.activeElement === this.element);
      return element;
    }
    const dot = make("span", {className: "dot"});
    const colour = this.cssColourOf(row.entity);
    if (colour)
      dot.style.background = colour;
    element.append(dot, make("span", {className: "name", textContent: this.scene.nameOf(row.entity)}),
      make("span", {className: "kind", textContent: this.scene.kindOf(row.entity)}));
    element.setAttribute("aria-selected", row.entity === this.selected);
    element.classList.toggle("chosen", row.entity === this.selected);
    element.classList.toggle("hovered", row.entity === this.hovered);
    element.classList.toggle("undrawn", this.scene.noteOf(row.entity) !== "");
    return element;
  }

  rowOf(event) {
    const element = event.target.closest(".row");
    return element ? this.rows[element.dataset.index] : null;
  }

  onClick(event) {
    const row = this.rowOf(event);
    if (!row)
      return;
    this.current = this.rows.indexOf(row);
    if (row.family || event.target.classList.contains("arrow"))
      this.toggle(row, !row.isOpen);
    else
      this.onChoose(row.entity);
  }

  toggle(row, isOpen) {
    if (row.isLeaf || this.found !== null)
      return;
    if (isOpen)
      this.open.add(row.key);
    else
      this.open.delete(row.key);
    this.build();
  }

  onKey(event) {
    const row = this.rows[this.current];
    const step = {ArrowDown: 1, ArrowUp: -1, PageDown: 15, PageUp: -15, Home: -1e9, End: 1e9}[event.key];
    if (event.ctrlKey || event.metaKey || event.altKey || !row)
      return;
    if (step !== undefined)
      this.go(this.current + step);
    else if (event.key === "ArrowRight")
      row.isOpen || row.isLeaf ? this.go(this.current + 1) : this.toggle(row, true);
    else if (event.key === "ArrowLeft")
      row.isOpen ? this.toggle(row, false) : this.go(this.rows.lastIndexOf(
        this.rows.slice(0, this.current).reverse().find(other => other.level < row.level) || row));
    else if (event.key === "Enter" || event.key === " ")
      row.family ? this.toggle(row, !row.isOpen) : this.onChoose(row.entity, true);
    else
      return;
    event.preventDefault();
    event.stopPropagation();
  }

  go(index) {
    this.current = Math.max(0, Math.min(this.rows.length - 1, index));
    const row = this.rows[this.current];
    if (row.entity !== undefined)
      this.onChoose(row.entity);
    this.reveal(this.current);
    this.show();
  }

  reveal(index) {
    const top = index * RowHeight;
    if (top < this.element.scrollTop)
      this.element.scrollTop = top;
    else if (top + RowHeight > this.element.scrollTop + this.element.clientHeight)
      this.element.scrollTop = top + RowHeight - this.element.clientHeight;
  }

  // Marks an entity and brings its row into sight.
  select(entity) {
    this.selected = entity;
    if (entity >= 0) {
      const family = this.scene.familyOf(entity);
      let index = this.rows.findIndex(row => row.entity === entity);
      if (index < 0 && this.found === null) {
        this.open.add(`f${family.name}`);
        this.build();
        index = this.rows.findIndex(row => row.entity === entity);
      }
      if (index >= 0 && (this.rows[this.current] || {}).entity !== entity)
        this.current = index;
      if (index >= 0)
        this.reveal(this.current);
    }
    this.show();
  }

  hover(entity) {
    if (entity !== this.hovered) {
      this.hovered = entity;
      for (const element of this.holder.children)
        element.classList.toggle("hovered", this.rows[element.dataset.index].entity === entity && entity >= 0);
    }
  }

  search(found) {
    this.found = found;
    this.element.scrollTop = 0;
    this.current = 0;
    this.build();
  }
}
