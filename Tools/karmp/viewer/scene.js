// The entities of the document, as the page holds them.

/// The entities by their number, in the order of the document's lists.
class Scene {
  constructor(data) {
    this.data = data;
    this.count = data.entities.length;
    this.family = new Uint8Array(this.count);
    this.families = [];
    let first = 0;
    for (const [name, count] of data.families) {
      this.family.fill(this.families.length, first, first + count);
      this.families.push({name, title: Scene.inWords(name), first, count});
      first += count;
    }
    this.colours = new Map();
    data.bodies.forEach((body, index) => this.colours.set(body.entity, Scene.colourOf(body, index)));
    this.texts = null;
  }

  static inWords(name) {
    return name.replace(/(?!^)[A-Z]/g, letter => " " + letter.toLowerCase());
  }
  static colourOf(body, index) {
    return body.ground ? Colour.ground : body.fixed ? Colour.fixed : bodyColour(index - 1 + BodyColours);
  }

  kindOf(entity) { return this.data.kinds[this.data.entities[entity][0]]; }
  nameOf(entity) { return this.data.entities[entity][1] || this.identifierOf(entity); }
  identifierOf(entity) { return this.data.entities[entity][2]; }
  noteOf(entity) { return this.data.entities[entity][4] || ""; }
  familyOf(entity) { return this.families[this.family[entity]]; }

  // The numbers of the entities of a family.
  entitiesOf(name) {
    const family = this.families.find(other => other.name === name);
    return family ? Array.from({length: family.count}, (none, i) => family.first + i) : [];
  }

  // Calls with the label and the targets of each item that refers to entities.
  forEachLink(entity, visit) {
    const links = this.data.entities[entity][3];
    for (let i = 0; i + 1 < links.length; i += 2)
      visit(this.data.labels[links[i]], links[i + 1]);
  }

  // What belongs to a body: its geometries and shapes.
  partsOf(entity) {
    const result = [];
    if (this.familyOf(entity).name === "Bodies") {
      this.forEachLink(entity, (label, targets) => {
        for (const target of targets)
          if (["Geometries", "Shapes"].includes(this.familyOf(target).name))
            result.push(target);
      });
    }
    return result;
  }

  // What of the picture stands for an entity: itself when it is drawn, otherwise the nearest that
  // are drawn among what it refers to.
  drawnFor(entity, isDrawn) {
    const seen = new Set([entity]);
    let front = [entity];
    for (let step = 0; step < 4 && front.length > 0; ++step) {
      const drawn = front.filter(isDrawn);
      if (drawn.length > 0)
        return drawn;
      const next = [];
      for (const from of front) {
        this.forEachLink(from, (label, targets) => {
          for (const target of targets) {
            if (!seen.has(target) && seen.size < 10000) {
              seen.add(target);
              next.push(target);
            }
          }
        });
      }
      front = next;
    }
    return [];
  }

  // The entities whose name, class or identifier has a text in it; null when there is no text.
  find(text) {
    const wanted = text.trim().toLowerCase();
    if (wanted === "")
      return null;
    if (this.texts === null)
      this.texts = this.data.entities.map(
        ([kind, name, identifier]) => `${name}\n${identifier}\n${this.data.kinds[kind]}`.toLowerCase());
    const found = new Set();
    this.texts.forEach((entityText, entity) => {
      if (entityText.includes(wanted))
        found.add(entity);
    });
    return found;
  }
}
