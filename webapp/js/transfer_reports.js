// The transfer library's reports to the service about a transfer's problems. The events of the native
// side say that a file failed, but not why. Without reports everything works, with less precise texts.

// The report arrives shortly after the event, the next one an interval later.
const PAUSES_MS = [400, 1500, 5000, 15000];

export class TransferReports {
  #service;
  #asking = new Map();
  #pauses;

  constructor({ service, pauses = PAUSES_MS }) {
    this.#service = service;
    this.#pauses = pauses;
  }

  /** Requests the reasons for a transfer's failures, with a short delay that collects several. */
  wanted(transfer) {
    const asking = this.#asking.get(transfer);
    if (asking) asking.again = true;
    else this.#askInTurn(transfer);
  }

  /** The same for a transfer that has just ended; the library reports an end at once. */
  wantedNow(transfer) {
    this.#asking.delete(transfer);
    this.#askInTurn(transfer);
  }

  /** Sends one request. */
  async ask(transfer) {
    const { bucketId, direction } = transfer.attributes;
    if (!bucketId) return;
    try {
      const reports = await this.#service.progressOf(bucketId, transfer.id);
      if (reports[direction]) transfer.applyReport(reports[direction]);
    } catch {
      // The service has no reports, or is unreachable.
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
