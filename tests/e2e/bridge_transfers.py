"""Transfers through the page's bridges, as the web application uses them."""

import json
import pathlib

from harness import checksums

UPLOADS = "uploadManagerBridge_IPC"
DOWNLOADS = "downloadManagerBridge_IPC"

# Records the client's events, by group and by file.
RECORD_EVENTS = """
window.events = {groups: {}, files: {}};
for (const manager of ['upload', 'download']) {
  window[`_${manager}Manager_groupStateChanged`] = event =>
    (events.groups[manager + event.id] ??= []).push(event.state);
  window[`_${manager}Manager_fileStateChanged`] = event =>
    events.files[manager + event.id + '/' + event.fileId] = event.type;
}
0"""


class Message:
    """A message of the local service with its files."""

    def __init__(self, service, subject):
        created = service.request("POST", "/api/messages", {"subject": subject})
        self.bucket, self.token = created["bucketId"], created["token"]
        self._service = service

    def announce(self, files):
        """Announces files, given as a map from name to path; returns the service's records."""
        listed = []
        for name, path in files.items():
            folder, _, last = name.rpartition("/")
            stat = pathlib.Path(path).stat()
            listed.append({"name": last, "path": folder or None, "size": stat.st_size,
                           "modified": int(stat.st_mtime * 1000)})
        return self._service.request("POST", f"/api/messages/{self.bucket}/files", {"files": listed},
                                     {"X-Zantrio-Token": self.token})["files"]

    def complete(self, announced):
        """Completes the message; returns its files as the download bridge expects them."""
        self._service.request("POST", f"/api/messages/{self.bucket}/complete", {},
                              {"X-Zantrio-Token": self.token})
        return self._service.request("POST", f"/api/received/{self.bucket}/downloads",
                                     {"files": [file["id"] for file in announced]})["files"]


class BridgeTransfers:
    """Uploads and downloads of one page."""

    def __init__(self, page, service):
        self._page = page
        self._service = service
        page.evaluate(RECORD_EVENTS)

    def ask(self, bridge, method, parameters=None):
        """Returns the answer of a query that must succeed."""
        answer = self._page.query(bridge, method, parameters)
        if answer[0] != "success":
            raise AssertionError(f"{method} failed: {answer}")
        return json.loads(answer[1])

    def send(self, subject, folder):
        """Uploads a folder; returns the message and its files as downloads expect them."""
        files = checksums.files_below(folder)
        message = Message(self._service, subject)
        group = self._create(UPLOADS, message)
        announced = message.announce(files)
        self.ask(UPLOADS, "queueFiles", {"groupId": group, "files": [
            {"id": file["id"], "fileURL": path.as_uri(), "uploadDetails": file["uploadDetails"]}
            for file, path in zip(announced, files.values())]})
        self.ask(UPLOADS, "markQueue", {"groupId": group})
        self.wait_until_over("upload", group, "COMPLETED")
        return message, message.complete(announced)

    def start_download(self, message, files, summary):
        """Begins to download files into the automatic folder; returns the group's id."""
        group = self._create(DOWNLOADS, message, summary=summary, autoDownload=True)
        self.ask(DOWNLOADS, "queueFiles", {"groupId": group, "files": files})
        return group

    def _create(self, bridge, message, **more):
        answer = self.ask(bridge, "createGroup", {
            "bucketId": message.bucket, "bucketType": "message", "token": message.token,
            "tokenExpires": 0, **more})
        return answer["id"]

    def wait_until_over(self, manager, group, state, limit_seconds=120):
        """Waits for the group's end, which must have this state; returns its last event."""
        last = self._page.wait_for(
            f"(last => ['COMPLETED', 'ERRORED'].includes(last?.type) && last)"
            f"(events.groups['{manager}{group}']?.at(-1))", limit_seconds)
        if last["type"] != state:
            raise AssertionError(f"{manager} {group} ended in a different state: {last}")
        return last

    def wait_for_file(self, group, file_id, state):
        self._page.wait_for(f"events.files['download{group}/{file_id}'] === '{state}'")

    def file_states(self, group):
        """Returns the last state of each file of a download, by the file's id."""
        states = self._page.evaluate("events.files")
        prefix = f"download{group}/"
        return {name[len(prefix):]: state for name, state in states.items() if name.startswith(prefix)}

    def group_events(self, group):
        """Returns all events of a download group."""
        return self._page.evaluate(f"events.groups['download{group}'] ?? []")
