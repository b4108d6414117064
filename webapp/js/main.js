import { Backbone } from './lib.js';
import { Connection } from './models/connection.js';
import { Draft } from './models/draft.js';
import { Transfers } from './models/transfers.js';
import { app, uploads } from './native.js';
import { installEntryPoints } from './entry_points.js';
import { Router } from './router.js';
import { SendFlow } from './send_flow.js';
import { service } from './service.js';
import { Intake } from './intake.js';
import { Shell } from './views/shell.js';

const connection = new Connection();
const draft = new Draft();
const transfers = new Transfers([], { uploads, service, connection });
const sendFlow = new SendFlow({ uploads, service, connection, transfers });
const intake = new Intake(draft);

const shell = new Shell({
  el: document.getElementById('app'), connection, draft, transfers, sendFlow, intake,
});
shell.render();
const router = new Router({ shell, draft });
installEntryPoints({ transfers, intake, router });
Backbone.history.start();

const STANDSTILL_CHECK_MS = 4000;
setInterval(() => transfers.lookForStandstill(), STANDSTILL_CHECK_MS);

if (app.isThere()) {
  app.ready()
    .then(() => transfers.load())
    .catch((error) => shell.notify({ kind: 'error', text: error.message }));
}
