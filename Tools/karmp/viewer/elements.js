// Elements of the page.

const find = id => document.getElementById(id);

// A new element with properties; texts of the document only ever become text.
function make(name, properties = {}) {
  return Object.assign(document.createElement(name), properties);
}
