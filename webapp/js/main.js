import { Backbone } from './lib.js';
import { Connection } from './models/connection.js';
import { Downloads } from './models/downloads.js';
import { Draft } from './models/draft.js';
import { ReceivedMessages } from './models/received.js';
import { Transfers } from './models/transfers.js';
import { app, downloads as downloadManager, notifications, uploads } from './native.js';
import { DownloadFlow } from './download_flow.js';
import { installEntryPoints } from './entry_points.js';
import { Notifier } from './notifier.js';
import { Router } from './router.js';
import { SendFlow } from './send_flow.js';
import { service } from './service.js';
import { TransferReports } from './transfer_reports.js';
import { applySavedSettings } from './saved_settings.js';
import { Intake } from './intake.js';
import { Shell } from './views/shell.js';

const connection = new Connection();
const draft = new Draft();
const reports = new TransferReports({ service });
const transfers = new Transfers([], { manager: uploads, service, connection, reports });
const downloads = new Downloads([], { manager: downloadManager, service, connection, reports });
const received = new ReceivedMessages([], { service, connection });
const sendFlow = new SendFlow({ uploads, service, connection, transfers });
const downloadFlow = new DownloadFlow({ manager: downloadManager, service, connection, transfers: downloads });
const intake = new Intake(draft);
const notifier = new Notifier({ notifications, address: `${window.location.origin}/app#transfers` });
notifier.watch(transfers);
notifier.watch(downloads);

const shell = new Shell({
  el: document.getElementById('app'), connection, draft, transfers, downloads, received, sendFlow, downloadFlow, intake,
});
shell.render();
const router = new Router({ shell, draft });
installEntryPoints({ transfers, downloads, intake, router });
Backbone.history.start();

const STANDSTILL_CHECK_MS = 4000;
setInterval(() => {
  transfers.checkForStandstill();
  downloads.checkForStandstill();
}, STANDSTILL_CHECK_MS);

async function start() {
  // Before transfers of an earlier session continue, because the settings apply to them too.
  await applySavedSettings().catch((error) => shell.notify({ kind: 'error', text: error.message }));
  await app.ready();
  await transfers.load();
  if (downloadManager.isThere()) await downloads.load();
}

if (app.isThere()) start().catch((error) => shell.notify({ kind: 'error', text: error.message }));
