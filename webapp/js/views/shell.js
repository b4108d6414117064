import { Backbone } from '../lib.js';
import { announce, el, setText } from '../dom.js';
import { icon } from '../icons.js';
import { app, uploads } from '../native.js';
import { ConnectionBanner } from './connection_banner.js';
import { DropOverlay } from './drop_overlay.js';
import { QuitDialog } from './quit_dialog.js';
import { ReceivedPage } from './received_page.js';
import { SendPage } from './send_page.js';
import { SettingsPage } from './settings_page.js';
import { Toast } from './toast.js';
import { TransfersPage } from './transfers_page.js';

const NAVIGATION = [
  { page: 'send', route: 'message/new', label: 'Send', icon: 'send' },
  { page: 'received', route: 'received', label: 'Received', icon: 'received' },
  { page: 'transfers', route: 'transfers', label: 'Transfers', icon: 'transfers' },
  { page: 'settings', route: 'settings', label: 'Settings', icon: 'settings' },
];

/** The frame around all pages: navigation, banners, dialogs. Pages are created once and kept. */
export const Shell = Backbone.View.extend({
  initialize(options) {
    Object.assign(this, options);
    this.context = {
      connection: options.connection, draft: options.draft, transfers: options.transfers,
      downloads: options.downloads, received: options.received, sendFlow: options.sendFlow,
      downloadFlow: options.downloadFlow, intake: options.intake, notify: (notice) => this.notify(notice),
    };
    this.makers = { send: SendPage, received: ReceivedPage, transfers: TransfersPage, settings: SettingsPage };
    this.pages = {};
    for (const collection of [this.transfers, this.downloads]) {
      this.listenTo(collection, 'add remove state change:phase', this.renderBadge);
      this.listenTo(collection, 'state', this.announceState);
      this.listenTo(collection, 'add', () => this.toast.hide());
    }
    this.listenTo(this.intake, 'outcome', this.notify);
  },

  render() {
    this.main = el('main', { id: 'main', tabindex: '-1' });
    this.badge = el('span', { class: 'badge', 'data-test': 'active-count' });
    this.toast = new Toast();
    this.quitDialog = new QuitDialog({ collections: [this.transfers, this.downloads], notify: this.context.notify });
    this.el.append(
      el('a', { class: 'skip-link', href: '#main', onclick: (event) => this.skip(event) }, 'Skip to content'),
      this.renderSidebar(),
      el('div', { class: 'content' },
        uploads.isThere() ? null : this.renderBrowserNotice(),
        new ConnectionBanner({ model: this.connection }).render().el,
        this.main),
      this.toast.el,
      this.quitDialog.el,
    );
    new DropOverlay({ intake: this.intake }).install(this.el);
    this.renderBadge();
    return this;
  },

  renderSidebar() {
    this.links = NAVIGATION.map((entry) => el('a', {
      id: `nav-${entry.page}`, class: 'nav-link', href: `#${entry.route}`,
    }, icon(entry.icon), el('span', {}, entry.label), entry.page === 'transfers' ? this.badge : null));
    const quit = el('button', {
      id: 'quit-button', class: 'nav-link quit', type: 'button', onclick: () => this.quitDialog.ask(),
    }, icon('quit'), el('span', {}, 'Quit'));
    return el('header', { class: 'sidebar' },
      el('a', { class: 'brand', href: '#message/new', 'aria-label': 'Zantrio, new message' },
        el('img', { src: '/app/img/mark.svg', alt: '', width: '28', height: '28' }),
        el('span', { class: 'brand-name' }, 'Zantrio')),
      el('nav', { 'aria-label': 'Pages' }, this.links),
      app.isThere() ? quit : null);
  },

  renderBrowserNotice() {
    return el('div', { class: 'banner banner-info', id: 'browser-notice', role: 'status' },
      icon('warning'),
      el('div', {}, el('strong', {}, 'You opened Zantrio in an ordinary browser.'),
        ' Sending and downloading files needs the Zantrio application.'));
  },

  /** Shows a page; `detail` selects the part of it. */
  show(name, detail = null) {
    if (!this.pages[name]) {
      this.pages[name] = new this.makers[name](this.context);
      this.pages[name].render();
    }
    const focusWasInside = this.main.contains(document.activeElement);
    this.shown = this.pages[name];
    this.main.replaceChildren(this.shown.el);
    this.shown.trigger('show', detail);
    // The focus must not disappear with the hidden page.
    if (focusWasInside) this.main.focus({ preventScroll: true });
    NAVIGATION.forEach((entry, index) => {
      if (entry.page === name) this.links[index].setAttribute('aria-current', 'page');
      else this.links[index].removeAttribute('aria-current');
    });
    this.main.scrollTop = 0;
  },

  skip(event) {
    event.preventDefault();
    this.main.focus();
  },

  notify(notice) {
    this.toast.show(notice);
  },

  renderBadge() {
    const active = [...this.transfers.models, ...this.downloads.models]
      .filter((transfer) => transfer.isActive()).length;
    setText(this.badge, active > 0 ? String(active) : '');
    this.badge.hidden = active === 0;
    this.badge.setAttribute('aria-label', `${active} running`);
  },

  announceState(transfer) {
    if (transfer.get('phase') === 'filling') return;
    const done = transfer.get('direction') === 'download' ? 'is downloaded' : 'is sent';
    const words = { COMPLETED: done, ERRORED: 'has failed', PAUSED: 'is paused' };
    const word = words[transfer.get('state')];
    if (word && transfer.get('subject')) announce(`${transfer.get('subject')} ${word}.`);
  },
});
