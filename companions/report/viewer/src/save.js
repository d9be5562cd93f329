// Files that the page writes. The browser puts them where it puts downloads.

/** "hall.ULS_1.members.csv": the parts of a name, each with characters that any file may have. */
export const fileName = (...parts) =>
  parts
    .filter(Boolean)
    .map((part) => part.replace(/[^A-Za-z0-9._-]/g, "_"))
    .join(".");

/** The first parts of names of files: of the problem file, with load cases of what is shown. */
export const fileBase = ({ model, selection }) => [
  model.file.replace(/\.[^.]*$/, ""),
  selection?.name,
];

/** Saves a file; parts: texts or bytes. */
export function save(name, parts, type) {
  const address = URL.createObjectURL(new Blob(parts, { type }));
  const link = document.createElement("a");
  link.href = address;
  link.download = name;
  link.click();
  setTimeout(() => URL.revokeObjectURL(address), 1000);
}
