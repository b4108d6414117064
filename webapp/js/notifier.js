// One desktop notification for each transfer that ends.

import { formatCount, formatNumber } from './format.js';
import { senderName } from './sender_name.js';

/** The texts for a transfer that has ended. Pure. */
export function notificationWords(transfer) {
  const { direction, state, subject, recipients, sender, fileCount, phase } = transfer.attributes;
  const sent = direction === 'upload';
  const failed = transfer.files.countIn('ERRORED');
  const count = transfer.files.wanted || fileCount;
  const about = [subject && `“${subject}”`, sent && recipients.length > 0 && `to ${recipients.join(', ')}`,
    !sent && sender && `from ${senderName(sender)}`].filter(Boolean).join(' ');
  if (state === 'COMPLETED' && phase !== 'undelivered') {
    return { title: `${formatCount(count, 'file')} ${sent ? 'sent' : 'downloaded'}`, message: about };
  }
  const verb = sent ? 'sent' : 'downloaded';
  if (phase === 'undelivered') return { title: 'A message was not delivered', message: about };
  const title = failed > 0 ? `${formatNumber(failed)} of ${formatCount(count, 'file')} could not be ${verb}`
    : `${sent ? 'Sending' : 'The download'} has stopped`;
  return { title, message: about };
}

export class Notifier {
  constructor({ notifications, address }) {
    Object.assign(this, { notifications, address });
  }

  /** Notifies about the ends of a collection's transfers. */
  watch(transfers) {
    transfers.on('over', (transfer) => this.#tell(transfer));
  }

  async #tell(transfer) {
    if (!this.notifications.isThere()) return;
    try {
      await this.notifications.show({ ...notificationWords(transfer), url: this.address });
    } catch {
      // The page shows the end of every transfer anyway.
    }
  }
}
