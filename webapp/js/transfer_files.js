// The files of one transfer and their states. Pure model; an event takes the same time for any number
// of files.

export const FILE_STATES = ['UNKNWON', 'TRANSFERRING', 'COMPLETED', 'ERRORED', 'PAUSED'];

export class TransferFiles {
  #files = [];
  #byId = new Map();
  #inState = new Map(FILE_STATES.map((state) => [state, new Set()]));
  #bytes = 0;
  #done = 0;
  #leftOut = 0;

  get count() {
    return this.#files.length;
  }

  /** The number of files to transfer. */
  get wanted() {
    return this.#files.length - this.#leftOut;
  }

  /** The announced size of all files. */
  get bytes() {
    return this.#bytes;
  }

  /** The size of all completed files. */
  get bytesDone() {
    return this.#done;
  }

  countIn(state) {
    return this.#inState.get(state).size;
  }

  at(index) {
    return this.#files[index];
  }

  byId(id) {
    return this.#files[this.#byId.get(id)];
  }

  /** The indices of the files in a state, in the files' order; null means all files. */
  indicesIn(state) {
    if (!state) return null;
    return [...this.#inState.get(state)].sort((a, b) => a - b);
  }

  /** The first few files in a state, in the order in which they came into it. */
  firstIn(state, limit) {
    const files = [];
    for (const index of this.#inState.get(state)) {
      if (files.length === limit) break;
      files.push(this.#files[index]);
    }
    return files;
  }

  /** Adds files, or completes the data of files that events named already. */
  describe(descriptions) {
    for (const { id, name, folder, size, state } of descriptions) {
      const file = this.#fetch(id);
      this.#bytes += size - file.size;
      Object.assign(file, { name, folder, size });
      if (state && file.state === 'UNKNWON') this.#move(file, state);
      if (file.state === 'COMPLETED') this.#setDone(file, size);
    }
  }

  /** Applies a file event of the native side. Returns whether anything changed. */
  update(id, state, done, total) {
    const file = this.#fetch(id);
    const known = this.#inState.has(state) ? state : 'UNKNWON';
    if (file.state === known && file.done === done && (!total || file.size === total)) return false;
    if (total && total !== file.size) {
      this.#bytes += total - file.size;
      file.size = total;
    }
    this.#setDone(file, done);
    this.#move(file, known);
    return true;
  }

  /** Marks all files of unknown state as done. */
  completeRest() {
    for (const index of [...this.#inState.get('UNKNWON')]) {
      const file = this.#files[index];
      this.#setDone(file, file.size);
      this.#move(file, 'COMPLETED');
    }
  }

  /** Leaves a file out. Its index stays, and its row says so. */
  leaveOut(id) {
    const file = this.byId(id);
    if (!file || file.leftOut) return;
    this.#inState.get(file.state).delete(file.index);
    this.#bytes -= file.size;
    this.#setDone(file, 0);
    file.leftOut = true;
    this.#leftOut += 1;
  }

  #fetch(id) {
    let index = this.#byId.get(id);
    if (index === undefined) {
      index = this.#files.length;
      this.#byId.set(id, index);
      this.#files.push({
        id, index, name: `File ${id}`, folder: null, size: 0, done: 0, state: 'UNKNWON', leftOut: false,
      });
      this.#inState.get('UNKNWON').add(index);
    }
    return this.#files[index];
  }

  #setDone(file, done) {
    if (file.leftOut) return;
    this.#done += done - file.done;
    file.done = done;
  }

  #move(file, state) {
    if (file.state === state || file.leftOut) return;
    this.#inState.get(file.state).delete(file.index);
    file.state = state;
    this.#inState.get(state).add(file.index);
  }
}
