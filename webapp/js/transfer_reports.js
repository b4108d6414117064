// What the transfer library has reported to the service of a transfer's troubles: the events of the native
// side tell that a file failed, but not why. Everything works without reports, only with fewer words.

// The report comes a moment after the event, and the next one an interval later.
const PAUSES_MS = [400, 1500, 5000, 15000];

export class TransferReports {
  #service;
  #asking = new Map();
  #pauses;

  constructor({ service, pauses = PAUSES_MS }) {
    this.#service = service;
    this.#pauses = pauses;
  }

  /** Finds out why files of a transfer failed, soon and all together. */
  wanted(transfer) {
    const asking = this.#asking.get(transfer);
    if (asking) asking.again = true;
    else this.#askInTurn(transfer);
  }

  /** The same, for a transfer that has just come to its end: the library reports that at once. */
  wantedNow(transfer) {
    this.#asking.delete(transfer);
    this.#askInTurn(transfer);
  }

  /** Asks once. */
  async ask(transfer) {
    const { bucketId, direction } = transfer.attributes;
    if (!bucketId) return;
    try {
      const reports = await this.#service.progressOf(bucketId, transfer.id);
      if (reports[direction]) transfer.takeReport(reports[direction]);
    } catch {
      // A service without reports, or none at all just now.
    }
  }

  async #askInTurn(transfer) {
    const asking = { again: false };
    this.#asking.set(transfer, asking);
    for (let at = 0; at < this.#pauses.length; at += 1) {
      await new Promise((resolve) => { setTimeout(resolve, this.#pauses[at]); });
      if (this.#asking.get(transfer) !== asking) return;
      asking.again = false;
      await this.ask(transfer);
      if (!asking.again && transfer.knowsAllReasons()) break;
    }
    if (this.#asking.get(transfer) === asking) this.#asking.delete(transfer);
  }
}
