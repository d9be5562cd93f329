// Files that the page writes. The browser puts them where it puts downloads.

/** "hall.ULS_1.members.csv": the parts of a name, each with characters that any file may have. */
export const fileName = (...parts) =>
  parts
    .filter(Boolean)
    .map((part) => part.replace(/[^A-Za-z0-9._-]/g, "_"))
    .join(".");

/** Saves a file; parts: texts or bytes. */
export function save(name, parts, type) {
  const address = URL.createObjectURL(new Blob(parts, { type }));
  const link = document.createElement("a");
  link.href = address;
  link.download = name;
  link.click();
  setTimeout(() => URL.revokeObjectURL(address), 1000);
}
