// The files chosen for sending: ordered, without duplicates, with running totals.
// Pure model; a change of one file takes the same time for any number of files, except that a
// removal moves the entries behind it.

export class FileList {
  #files = [];
  #urls = new Set();
  #bytes = 0;

  get count() {
    return this.#files.length;
  }

  get bytes() {
    return this.#bytes;
  }

  at(index) {
    return this.#files[index];
  }

  all() {
    return this.#files.slice();
  }

  /**
   * Takes in file records of the native side: {fileURL, name, path, size, created, modified}.
   * `folder` stands before each record's own path. What is unusable or already there is counted.
   */
  add(records, folder = null) {
    const outcome = { added: 0, duplicates: 0, unusable: 0 };
    for (const record of records) {
      if (!record || !record.fileURL || !record.name) {
        outcome.unusable += 1;
      } else if (this.#urls.has(record.fileURL)) {
        outcome.duplicates += 1;
      } else {
        this.#append(record, folder);
        outcome.added += 1;
      }
    }
    return outcome;
  }

  #append(record, folder) {
    const size = Number(record.size) || 0;
    this.#urls.add(record.fileURL);
    this.#files.push({
      fileURL: record.fileURL,
      name: record.name,
      path: [folder, record.path].filter(Boolean).join('/') || null,
      size,
      modified: record.modified ?? 0,
    });
    this.#bytes += size;
  }

  remove(index) {
    const [file] = this.#files.splice(index, 1);
    if (!file) return null;
    this.#urls.delete(file.fileURL);
    this.#bytes -= file.size;
    return file;
  }

  removeAll(files) {
    const gone = new Set(files.map((file) => file.fileURL));
    const kept = this.#files.filter((file) => !gone.has(file.fileURL));
    this.clear();
    kept.forEach((file) => this.#append(file, null));
  }

  clear() {
    this.#files = [];
    this.#urls = new Set();
    this.#bytes = 0;
  }
}
