import { Backbone } from '../lib.js';
import { secondsBefore } from '../retry_delays.js';
import { service, ServiceUnreachable } from '../service.js';

/**
 * Whether the service is reachable. After a failed call it counts down and tries again, repeatedly;
 * waiting calls continue as soon as the service responds.
 *
 * Attributes: reachable, trying, secondsLeft, reason.
 */
export const Connection = Backbone.Model.extend({
  defaults: { reachable: true, trying: false, secondsLeft: 0, reason: '' },

  initialize() {
    this.attempt = 0;
    this.waiting = [];
  },

  /** Repeats a call of the service until the service responds. */
  async persistently(call) {
    for (;;) {
      try {
        const result = await call();
        this.found();
        return result;
      } catch (error) {
        if (!(error instanceof ServiceUnreachable)) throw error;
        this.lost(error.message);
        await new Promise((resolve) => this.waiting.push(resolve));
      }
    }
  },

  /** Reports that a call could not reach the service. */
  lost(reason) {
    if (!this.get('reachable') && (this.timer || this.get('trying'))) return;
    this.set({ reachable: false, reason });
    this.countDown(secondsBefore(this.attempt));
    this.attempt += 1;
  },

  found() {
    clearTimeout(this.timer);
    this.timer = null;
    this.attempt = 0;
    if (this.get('reachable')) return;
    this.set({ reachable: true, trying: false, secondsLeft: 0 });
    this.release();
  },

  countDown(seconds) {
    this.set('secondsLeft', seconds);
    if (seconds <= 0) {
      this.timer = null;
      this.tryNow();
      return;
    }
    this.timer = setTimeout(() => this.countDown(seconds - 1), 1000);
  },

  async tryNow() {
    if (this.get('reachable') || this.get('trying')) return;
    clearTimeout(this.timer);
    this.timer = null;
    this.set({ trying: true, secondsLeft: 0 });
    try {
      await service.status();
      this.found();
    } catch (error) {
      this.set('trying', false);
      this.lost(error.message);
    }
  },

  release() {
    const waiting = this.waiting;
    this.waiting = [];
    waiting.forEach((resolve) => resolve());
  },
});
