// Paths of files as the service names them. Pure.

/** "a/b/c.txt" gives {folder: "a/b", name: "c.txt"}; the folder is null where there is none. */
export function splitPath(path) {
  const slash = path.lastIndexOf('/');
  return { folder: slash < 0 ? null : path.slice(0, slash), name: path.slice(slash + 1) };
}
