"""The compared programs, each as a command for the same work over as many connections."""

import pathlib
import shutil


class Program:
    """Prepares the command for a direction and its input; this is not timed."""

    name = ""

    def fits(self, direction, files):
        """Whether the program's way of this work is comparable."""
        return True

    def available(self):
        return shutil.which(self.name) is not None

    def command(self, direction, url, folder, files, work, connections):
        """Returns (arguments, path of the standard input or None)."""
        raise NotImplementedError

    def explain(self, work):
        """Returns details of a failure besides the program's messages; begins with a line end."""
        return ""


class Library(Program):
    name = "zt_transfers"

    def __init__(self, program):
        self._program = pathlib.Path(program)

    def available(self):
        return self._program.exists()

    def command(self, direction, url, folder, files, work, connections):
        listing = work / "list"
        listing.write_text("".join(f"{file.size} {file.md5} {file.path}\n" for file in files))
        state = work / "state"
        state.mkdir()
        return [self._program, direction, url, folder, state, connections], listing

    def explain(self, work):
        log = work / "state/zt_transfers.log"
        failed = [line for line in log.read_text().splitlines() if ": failed" in line] if log.exists() else []
        return "".join(f"\n  {line}" for line in failed[:3])


class Curl(Program):
    name = "curl"

    def command(self, direction, url, folder, files, work, connections):
        kind = "output" if direction == "down" else "upload-file"
        config = work / "config"
        config.write_text("".join(f'url = "{url}{file.path}"\n{kind} = "{folder}/{file.path}"\n'
                                  for file in files))
        return ["curl", "--parallel", "--parallel-max", connections, "--fail", "--silent",
                "--show-error", "--create-dirs", "--config", config], None


class Aria(Program):
    name = "aria2c"

    def fits(self, direction, files):
        return direction == "down"

    def command(self, direction, url, folder, files, work, connections):
        listing = work / "list"
        listing.write_text("".join(f"{url}{file.path}\n  out={file.path}\n" for file in files))
        # One large file in as many pieces; many files with one connection each.
        pieces = max(1, connections // len(files))
        return ["aria2c", "--no-conf", "--quiet", "--dir", folder, "--input-file", listing,
                "--max-concurrent-downloads", connections, "--split", pieces,
                "--max-connection-per-server", connections, "--file-allocation", "none",
                "--summary-interval", "0", "--download-result", "hide"], None


class Rclone(Program):
    name = "rclone"

    def fits(self, direction, files):
        # It requests each WebDAV file twice around an upload and pauses for 10 ms each time, which would
        # dominate with many small files.
        return direction == "down" or len(files) <= 100

    def command(self, direction, url, folder, files, work, connections):
        listing = work / "list"
        listing.write_text("".join(f"{file.path}\n" for file in files))
        remote = [":http:", "--http-url"] if direction == "down" else [":webdav:", "--webdav-url"]
        ends = [remote[0], folder] if direction == "down" else [folder, remote[0]]
        return ["rclone", "copy", *ends, remote[1], url, "--config", "/dev/null", "--quiet",
                "--transfers", connections, "--checkers", connections, "--no-traverse",
                "--no-check-dest", "--files-from-raw", listing], None


def compared_with(library_program):
    return [Library(library_program), Curl(), Aria(), Rclone()]
