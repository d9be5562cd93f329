// Diagrams by keys: left and right go along the member, up and down to the other diagrams of it.

/**
 * drawings: those of one member, from top to bottom, each with the same `count` points; titles:
 * their names. tell(i, k) shows the values at point i of drawing k and returns them as text.
 */
export function listenAlong(drawings, titles, count, tell) {
  let at = 0;
  const go = (k, i) => {
    at = Math.min(count - 1, Math.max(0, i));
    drawings[k].setAttribute("aria-valuenow", at);
    drawings[k].setAttribute("aria-valuetext", tell(at, k));
  };
  const steps = { ArrowRight: 1, ArrowLeft: -1, Home: -count, End: count };
  drawings.forEach((drawing, k) => {
    const attributes = {
      tabindex: k ? -1 : 0,
      role: "slider",
      "aria-label": `${titles[k]}, along the member`,
      "aria-valuemin": 0,
      "aria-valuemax": count - 1,
      "aria-valuenow": 0,
    };
    for (const [name, value] of Object.entries(attributes)) drawing.setAttribute(name, value);
    drawing.addEventListener("focus", () => go(k, at));
    drawing.addEventListener("keydown", (event) => {
      const other = drawings[k + ({ ArrowDown: 1, ArrowUp: -1 }[event.key] ?? 0)];
      if (!(event.key in steps) && (!other || other === drawing)) return;
      event.preventDefault();
      if (event.key in steps) go(k, at + steps[event.key]);
      else other.focus();
    });
  });
}
