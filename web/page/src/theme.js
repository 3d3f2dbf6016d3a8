// Dark, light, or what the system says.
import { byId } from "./dom.js";

const ORDER = ["auto", "light", "dark"];
const NAMES = { auto: "as the system", light: "light", dark: "dark" };

/** Applies a theme and says it on the button. */
export function applyTheme(theme) {
  if (theme === "auto") delete document.documentElement.dataset.theme;
  else document.documentElement.dataset.theme = theme;
  const button = byId("theme");
  for (const sign of button.children) sign.toggleAttribute("hidden", sign.dataset.sign !== theme);
  button.setAttribute("aria-label", `Colours: ${NAMES[theme]}`);
  button.title = `Colours: ${NAMES[theme]}`;
}

/** The theme behind this one on the button. */
export function nextTheme(theme) {
  return ORDER[(ORDER.indexOf(theme) + 1) % ORDER.length];
}
