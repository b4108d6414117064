// A stand-in for the native side, for looking at the web application in a plain browser engine: inject it
// at document creation (look.py does). It answers the bridges and plays transfers, in both directions, that move no bytes.
//
// window.mockOptions (set before it runs):
//   files          how many files a dialog or a drop gives (3)
//   seconds        how long a transfer takes (4)
//   failEvery      every n-th file fails (0: none)
//   failCodes      why they fail, in turn, as reported to the service (["refused"])
//   waitFor        a code: transfers wait for this after their first file (none)
// window.mockNotifications records the shown notifications.
'use strict';
(function () {
  const options = { files: 3, seconds: 4, failEvery: 0, failCodes: ['refused'], waitFor: '', ...window.mockOptions };
  const NAMES = ['Hochzeit – Rohschnitt final.mov', 'Contract 2026.pdf', 'Sound check.wav', 'Stills.zip',
    'IMG_4182.HEIC', 'Budget.xlsx', 'Übersicht für das Team.docx', 'export.log', '日本語の写真.jpg'];
  const PEOPLE = [
    { name: 'Ann Lee', email: 'ann@example.org' }, { name: 'Anna Ölbaum', email: 'anna@example.org' },
    { name: 'Bo Andersson', email: 'bo@example.org' }, null, { name: 'Joanna (no address)' }, { email: 'hannah@example.org' },
  ];

  const sizes = new Map();

  function records(folder) {
    const found = Array.from({ length: options.files }, (_, i) => ({
      fileURL: `file:///home/ann/${folder}/${i}-${encodeURIComponent(NAMES[i % NAMES.length])}`,
      name: i < NAMES.length ? NAMES[i] : NAMES[i % NAMES.length].replace('.', ` ${i}.`),
      path: i % 3 === 0 ? null : `Reel ${1 + (i % 7)}/selects`,
      size: (1 + ((i * 7919) % 997)) * [1e6, 2e3, 40][i % 3] + i,
      created: 0, modified: 1700000000000 + i,
    }));
    found.forEach((record) => sizes.set(record.fileURL, record.size));
    return found;
  }
  const chosen = (folder) => ({ files: records(folder), directoryName: folder, summary: folder });

  /** One of the two transfer managers; `events` is how the page's functions for it begin. */
  function makeManager(events, sizeOf) {
    const groups = new Map();
    let configuration = {
      maxConcurrentTransfers: 8, minMultipartSize: 64 * 1024 * 1024, maxTransferRetries: 5,
      verifyUploads: true, preventSleep: true, throttleBytesPerSecond: 0, serverTransferProgressInterval: 0,
    };

    function groupJson(group) {
      const total = group.files.reduce((sum, file) => sum + file.size, 0);
      const done = group.files.reduce((sum, file) => sum + file.done, 0);
      return {
        id: group.id, type: group.state, bucketId: group.bucketId, bucketType: 'message',
        paused: group.state === 'PAUSED', empty: group.files.length === 0, bytesTransferred: done,
        bytesTotal: total, percentTransferred: total ? (done / total) * 100 : 0,
        bytesTransferredPerSecond: group.state === 'TRANSFERRING' ? total / options.seconds : 0,
        estimatedEta: group.state === 'TRANSFERRING' ? ((total - done) / total) * options.seconds : 0,
        cancelled: group.cancelled, marked: group.marked,
      };
    }

    const emitGroup = (group) => window[`${events}_groupStateChanged`](
      { id: group.id, bucketId: group.bucketId, type: group.state, state: groupJson(group) });
    const emitFile = (group, file) => window[`${events}_fileStateChanged`]({
      id: group.id, bucketId: group.bucketId, fileId: file.id, type: file.state,
      state: { type: file.state, bytesTransfered: file.done, bytesTotal: file.size, percentTransferred: 0 },
    });

    // As the transfer library does.
    function report(group) {
      const failed = group.files.filter((file) => file.state === 'ERRORED');
      const reasonOf = (code) => ({ code, reason: `the sentence of ${code}` });
      fetch(`/api/messages/${group.bucketId}/progress`, {
        method: 'POST', headers: { 'X-Zantrio-Token': group.token },
        body: JSON.stringify({
          direction: events === '_uploadManager' ? 'upload' : 'download', group: group.id, state: group.state,
          waitingFor: options.waitFor ? reasonOf(options.waitFor) : null,
          failures: failed.slice(0, 100).map((file, i) => ({
            fileId: file.id, ...reasonOf(options.failCodes[i % options.failCodes.length]),
          })),
        }),
      });
    }

    function setState(group, state) {
      group.state = state;
      emitGroup(group);
    }

    function step(group) {
      if (group.state !== 'TRANSFERRING') return;
      const many = Math.max(1, Math.ceil(group.files.length / (options.seconds * 10)));
      for (let i = 0; i < many && group.next < group.files.length; i += 1) {
        const file = group.files[group.next];
        file.done = Math.min(file.size, file.done + Math.max(1, Math.ceil(file.size / 6)));
        file.state = 'TRANSFERRING';
        if (file.done >= file.size || group.files.length > 50) {
          const fails = options.failEvery && (group.next + 1) % options.failEvery === 0 && !group.retried;
          file.state = fails ? 'ERRORED' : 'COMPLETED';
          file.done = fails ? 0 : file.size;
          group.next += 1;
        }
        emitFile(group, file);
      }
      const over = group.marked && group.next >= group.files.length;
      const failed = group.files.some((file) => file.state === 'ERRORED');
      if (over) setState(group, failed ? 'ERRORED' : 'COMPLETED');
      else emitGroup(group);
      const waits = options.waitFor && group.next > 0;
      if ((over && failed) || waits) report(group);
      if (!over && !waits) setTimeout(step, 100, group);
    }

    function start(group) {
      if (group.state === 'TRANSFERRING' || group.state === 'PAUSED') return;
      setState(group, 'TRANSFERRING');
      setTimeout(step, 100, group);
    }

    return {
      getConfiguration: () => configuration,
      setConfiguration: (changes) => (configuration = { ...configuration, ...changes }),
      fetchGroupsState: () => [...groups.values()].map(groupJson),
      createGroup: ({ bucketId, token }) => {
        const group = {
          id: String(groups.size + 1), bucketId, token, state: 'UNKNWON', marked: events === '_downloadManager',
          cancelled: false, files: [], next: 0,
        };
        groups.set(group.id, group);
        return { id: group.id, state: groupJson(group) };
      },
      queueFiles: ({ groupId, files }) => {
        const group = groups.get(groupId);
        for (const file of files) {
          if (!group.files.some(({ id }) => id === file.id)) {
            group.files.push({ id: file.id, size: sizeOf(file), done: 0, state: 'UNKNWON' });
          }
        }
        start(group);
        return {};
      },
      dequeueFiles: ({ groupId, files }) => {
        const group = groups.get(groupId);
        group.files = group.files.filter((file) => !files.some((gone) => gone.id === file.id));
        if (!group.files.some((file) => file.state === 'ERRORED')) setTimeout(setState, 0, group, 'COMPLETED');
        return {};
      },
      markQueue: ({ groupId }) => { groups.get(groupId).marked = true; return {}; },
      unmarkQueue: () => ({}),
      pauseGroup: ({ groupId }) => { setState(groups.get(groupId), 'PAUSED'); return {}; },
      resumeGroup: ({ groupId }) => {
        const group = groups.get(groupId);
        group.retried = true;
        const failed = group.files.findIndex((file) => file.state === 'ERRORED');
        if (failed >= 0) group.next = failed;
        group.state = 'UNKNWON';
        start(group);
        return {};
      },
      cancelGroup: ({ groupId }) => {
        const group = groups.get(groupId);
        group.cancelled = true;
        setState(group, 'UNKNWON');
        return {};
      },
    };
  }

  window.mockNotifications = [];
  const bridges = {
    nativeAppBridge_IPC: {
      onAppReady: () => null,
      onAppExit: () => { window.mockExited = true; return null; },
    },
    fileHandleChooserBridge_IPC: {
      selectFiles: () => chosen('Wedding film'),
      selectFolder: () => chosen('Archive'),
      handleDrop: () => chosen('Dropped'),
    },
    uploadManagerBridge_IPC: makeManager('_uploadManager', (file) => sizes.get(file.fileURL) ?? 1e6),
    downloadManagerBridge_IPC: makeManager('_downloadManager', (file) => file.size),
    eventNotificationBridge_IPC: {
      handleEvent: ({ properties }) => { window.mockNotifications.push(properties); return null; },
    },
    addressBookSearchManagerBridge_IPC: {
      search: ({ query }) => PEOPLE.filter((person) => person === null
        || `${person.name} ${person.email}`.toLowerCase().includes(query.toLowerCase())),
    },
  };

  // No bytes arrive, so the service would not accept any message as complete.
  const { fetch } = window;
  window.fetch = (path, request) => (String(path).endsWith('/complete')
    ? Promise.resolve(new Response('{}', { status: 200 })) : fetch(path, request));

  for (const [name, methods] of Object.entries(bridges)) {
    window[name] = ({ request, onSuccess, onFailure }) => {
      const { method, parameters } = JSON.parse(request);
      setTimeout(() => {
        if (!methods[method]) onFailure(-1, 'The query has been canceled');
        else onSuccess(`${JSON.stringify(methods[method](parameters ?? {}))}\n`);
      }, 2);
    };
  }
})();
