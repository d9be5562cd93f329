// Boxes that scroll are reached by Tab, so that the arrow keys scroll them.

const BOXES = ".wide, .scroll, .description, .card, #panel";
const FOCUSABLE = "a[href], button, input, select, [tabindex='0']";

function reach(box) {
  const scrolls = box.scrollWidth > box.clientWidth || box.scrollHeight > box.clientHeight;
  if (!scrolls || box.querySelector(FOCUSABLE)) {
    box.removeAttribute("tabindex");
    return;
  }
  box.tabIndex = 0;
  if (!box.hasAttribute("role")) box.setAttribute("role", "group");
  const heading = box.closest(".card")?.querySelector("h2") ?? box.querySelector("h3");
  if (!box.hasAttribute("aria-label"))
    box.setAttribute("aria-label", heading?.textContent ?? "text that scrolls");
}

/** Makes every box that scrolls now, and has nothing else to reach in it, a stop of Tab. */
export function reachScrollers() {
  for (const box of document.querySelectorAll(BOXES)) reach(box);
}

window.addEventListener("resize", reachScrollers);
