// What is told of the selected entity.

const MostTargets = 40; // of an item, that are listed

function showDetails(element, scene, entity, onChoose) {
  element.hidden = entity < 0;
  element.replaceChildren();
  if (entity < 0)
    return;
  element.append(make("h2", {textContent: scene.nameOf(entity)}));
  const family = scene.familyOf(entity).title;
  const identifier = scene.identifierOf(entity);
  element.append(make("p", {className: "sub", textContent:
    `${scene.kindOf(entity)} in ${family}` + (identifier === scene.nameOf(entity) ? "" : `, ${identifier}`)}));
  if (scene.noteOf(entity) !== "")
    element.append(make("p", {className: "note", textContent: scene.noteOf(entity)}));
  const list = make("dl");
  scene.forEachLink(entity, (label, targets) => {
    const links = make("dd");
    for (const target of targets.slice(0, MostTargets)) {
      const link = make("a", {textContent: scene.nameOf(target), title: scene.kindOf(target), tabIndex: 0});
      link.setAttribute("role", "button");
      link.addEventListener("click", () => onChoose(target));
      link.addEventListener("keydown", event => {
        if (event.key === "Enter")
          onChoose(target);
      });
      links.append(link);
    }
    if (targets.length > MostTargets)
      links.append(make("span", {textContent: `and ${targets.length - MostTargets} more`}));
    list.append(make("dt", {textContent: label.split("/").map(Scene.inWords).join(", ")}), links);
  });
  element.append(list);
}
