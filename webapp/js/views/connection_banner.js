import { Backbone } from '../lib.js';
import { el, setText } from '../dom.js';
import { icon } from '../icons.js';

/** Shows that the service is unreachable and when the next try follows. */
export const ConnectionBanner = Backbone.View.extend({
  className: 'banner banner-warning',
  id: 'connection-banner',
  attributes: { role: 'alert' },

  initialize() {
    this.listenTo(this.model, 'change', this.update);
  },

  render() {
    this.reason = el('strong', {});
    // The countdown is not read out second by second.
    this.countdown = el('span', { 'aria-live': 'off', 'data-test': 'countdown' });
    this.button = el('button', {
      id: 'retry-now', type: 'button', class: 'button small', onclick: () => this.model.tryNow(),
    }, 'Try now');
    this.el.append(icon('cloud'),
      el('div', {}, this.reason, ' Nothing is lost; transfers go on by themselves. ', this.countdown),
      this.button);
    this.update();
    return this;
  },

  update() {
    const { reachable, trying, secondsLeft, reason } = this.model.attributes;
    this.el.hidden = reachable;
    setText(this.reason, reason);
    setText(this.countdown, trying ? 'Trying now…' : `Trying again in ${secondsLeft} s.`);
    this.button.disabled = trying;
  },
});
