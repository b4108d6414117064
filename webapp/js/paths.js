// The service's file paths. Pure.

/** "a/b/c.txt" gives {folder: "a/b", name: "c.txt"}; the folder is null if there is none. */
export function splitPath(path) {
  const slash = path.lastIndexOf('/');
  return { folder: slash < 0 ? null : path.slice(0, slash), name: path.slice(slash + 1) };
}
