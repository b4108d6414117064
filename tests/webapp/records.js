// File records as the native side gives them.

export function records(count, folder = 'd') {
  return Array.from({ length: count }, (_, i) => ({
    fileURL: `file:///home/ann/${folder}/${i}.txt`, name: `${i}.txt`, path: null, size: 10, created: 0, modified: 5,
  }));
}
