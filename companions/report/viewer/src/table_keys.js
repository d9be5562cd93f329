// Keys in the tables: arrows go from row to row, Enter selects; left and right change the table.

/** By how many rows a key moves in a list of `count` rows of which `page` are seen. */
function rowsOf(key, count, page) {
  const steps = { ArrowDown: 1, ArrowUp: -1, PageDown: page, PageUp: -page };
  if (key in steps) return steps[key];
  return { Home: -count, End: count }[key] ?? 0;
}

/** view: a TableView with `order`, `active` (a place in it), `activate(place)` and `choose(row)`. */
export function listenInRows(view, element, rowHeight) {
  element.addEventListener("keydown", (event) => {
    if (event.target !== element) return;
    const { length } = view.order;
    if (event.key === "Enter" && view.active >= 0 && view.active < length) {
      event.preventDefault();
      view.choose(view.order[view.active]);
      return;
    }
    const page = Math.max(1, Math.floor(view.scroller.clientHeight / rowHeight) - 2);
    const by = rowsOf(event.key, length, page);
    if (!by || !length) return;
    event.preventDefault();
    view.activate(Math.min(length - 1, Math.max(0, view.active + by)));
  });
}

/** Of a list of tabs only the open one is reached by Tab; the arrows go to the others. */
export function listenInTabs(list) {
  list.addEventListener("keydown", (event) => {
    const tabs = [...list.children];
    const by = { ArrowRight: 1, ArrowLeft: -1 }[event.key];
    if (!by) return;
    event.preventDefault();
    const next = tabs[(tabs.indexOf(document.activeElement) + by + tabs.length) % tabs.length];
    next.click();
    next.focus();
  });
}
