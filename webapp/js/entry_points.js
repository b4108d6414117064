// The functions that the native side calls in the page.

export function installEntryPoints({ transfers, downloads, intake, router }, root = globalThis) {
  root._uploadManager_groupStateChanged = (event) => transfers.groupChanged(event);
  root._uploadManager_fileStateChanged = (event) => transfers.fileChanged(event);
  root._downloadManager_groupStateChanged = (event) => downloads.groupChanged(event);
  root._downloadManager_fileStateChanged = (event) => downloads.fileChanged(event);
  // Files that the system hands to the application; with `defer` they wait in the draft.
  root._fileHandleChooser_handleDropFiles = (result) => {
    intake.take(result);
    if (!result.defer) router.navigate('/message/new', { trigger: true });
  };
}
