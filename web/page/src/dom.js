// Makes elements. Text goes in as text: nothing in the page is ever made from
// markup, so a name or a comment from outside cannot become more than words.

/**
 * @param {string} tag
 * @param {Object<string, unknown>} properties attributes; `class`, `text`, and `on...` listeners
 * @param {...(Node|string)} children
 */
export function element(tag, properties = {}, ...children) {
  const made = document.createElement(tag);
  for (const [name, value] of Object.entries(properties)) {
    if (name === "text") made.textContent = value;
    else if (name.startsWith("on")) made.addEventListener(name.slice(2), value);
    else if (value === true) made.setAttribute(name, "");
    else if (value !== false && value !== undefined) made.setAttribute(name, value);
  }
  made.append(...children);
  return made;
}

/** An element of the page by its id. */
export function byId(id) {
  return document.getElementById(id);
}

/** Sets text only if it changes, so that live regions speak once. */
export function setText(node, text) {
  if (node.textContent !== text) node.textContent = text;
}

const SVG = "http://www.w3.org/2000/svg";

/** As `element`, for pictures. */
export function svgElement(tag, attributes = {}, ...children) {
  const made = document.createElementNS(SVG, tag);
  for (const [name, value] of Object.entries(attributes)) made.setAttribute(name, String(value));
  made.append(...children);
  return made;
}
