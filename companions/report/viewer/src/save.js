// Files that the page gives to its reader.

import { h } from "./dom.js";

/** Hands over a file; content: a text or a Blob. */
export function saveFile(name, type, content) {
  const address = URL.createObjectURL(new Blob([content], { type }));
  h("a", { href: address, download: name }).click();
  setTimeout(() => URL.revokeObjectURL(address), 10000);
}

/** A name of a file from the model's name and what the file has. */
export function fileName(report, what, ending) {
  const base = report.model.file.replace(/^.*[\\/]/, "").replace(/\.(dat|cases)$/i, "");
  const words = [base, report.selection?.name, what].filter(Boolean).join("_");
  return `${words.replace(/[^\p{L}\p{N}.+-]+/gu, "_")}.${ending}`;
}
