// The files of one transfer and their states. Pure model; an event costs the same however many
// files there are.

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

  /** How many files are to arrive. */
  get wanted() {
    return this.#files.length - this.#leftOut;
  }

  /** Sizes of all files as they were announced. */
  get bytes() {
    return this.#bytes;
  }

  /** Bytes of all files that have been sent. */
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

  /** The indices of the files in a state, in the files' order; null stands for all files. */
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

  /** Adds files, or tells more of those that events have named already. */
  describe(descriptions) {
    for (const { id, name, folder, size, state } of descriptions) {
      const file = this.#fetch(id);
      this.#bytes += size - file.size;
      Object.assign(file, { name, folder, size });
      if (state && file.state === 'UNKNWON') this.#move(file, state);
      if (file.state === 'COMPLETED') this.#setDone(file, size);
    }
  }

  /** Takes in what the native side says of a file. Gives whether anything changed. */
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

  /** All files that nothing is known of are done. */
  completeRest() {
    for (const index of [...this.#inState.get('UNKNWON')]) {
      const file = this.#files[index];
      this.#setDone(file, file.size);
      this.#move(file, 'COMPLETED');
    }
  }

  /** Forgets a file that is not to be sent any more. Its index stays, its row says so. */
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
