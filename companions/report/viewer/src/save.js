// Files that the page writes. The browser puts them where it puts downloads.

import { h } from "./dom.js";

/** "hall.ULS_1.members.csv": the parts of a name, each with characters that any file may have. */
export const fileName = (...parts) =>
  parts
    .filter(Boolean)
    .map((part) => part.replace(/[^\p{L}\p{N}._+-]+/gu, "_"))
    .join(".");

/** The first parts of names of files: of the problem file, with load cases of what is shown. */
export const fileBase = ({ model, selection }) => [
  model.file.replace(/^.*[\\/]/, "").replace(/\.[^.]*$/, ""),
  selection?.name,
];

/** Saves a file; parts: texts or bytes. */
export function save(name, parts, type) {
  const address = URL.createObjectURL(new Blob(parts, { type }));
  h("a", { href: address, download: name }).click();
  setTimeout(() => URL.revokeObjectURL(address), 10000);
}
