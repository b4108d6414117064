"""Real file systems on loop devices, for root."""

import fcntl
import os
import pathlib
import struct
import subprocess

EXT4_IOC_SHUTDOWN = 0x8004587D
WITHOUT_LOG_FLUSH = struct.pack("I", 2)


def run(*command):
    done = subprocess.run(command, capture_output=True, text=True)
    if done.returncode != 0:
        raise RuntimeError(f"{' '.join(command)}: {done.stderr.strip()}")
    return done.stdout.strip()


class Volume:
    """An image file with a file system; `kind`: ext4, exfat (over FUSE), or bind (FUSE over
    ext4)."""

    def __init__(self, kind, image, mount_point, size):
        self.kind = kind
        self.image = str(image)
        self.mount_point = pathlib.Path(mount_point)
        self.mount_point.mkdir()
        self.below = pathlib.Path(f"{mount_point}.below")
        self.device = None
        with open(image, "wb") as file:
            file.truncate(size)
        self._format()

    def _format(self):
        if self.kind == "exfat":
            run("mkfs.exfat", self.image)
        else:
            run("mkfs.ext4", "-q", "-F", self.image)

    def mount(self):
        self.device = run("losetup", "--find", "--show", self.image)
        if self.kind == "exfat":
            run("mount.exfat-fuse", self.device, str(self.mount_point))
        elif self.kind == "bind":
            self.below.mkdir(exist_ok=True)
            run("mount", self.device, str(self.below))
            run("bindfs", str(self.below), str(self.mount_point))
        else:
            run("mount", self.device, str(self.mount_point))

    def unmount(self):
        if not self.device:
            return
        run("umount", str(self.mount_point))
        if self.kind == "bind":
            run("umount", str(self.below))
        run("losetup", "--detach", self.device)
        self.device = None

    def restore(self):
        """Copies the files away, and back to a new file system."""
        backup = f"{self.mount_point}.backup"
        run("cp", "--archive", str(self.mount_point), backup)
        self.unmount()
        self._format()
        self.mount()
        run("cp", "--archive", f"{backup}/.", str(self.mount_point))

    def cut(self):
        """As a power cut: what is not on the disk, its journal included, is lost."""
        folder = os.open(self.mount_point, os.O_RDONLY)
        try:
            fcntl.ioctl(folder, EXT4_IOC_SHUTDOWN, WITHOUT_LOG_FLUSH)
        finally:
            os.close(folder)


class OtherDevice:
    """Takes the next loop device, so that what is mounted meanwhile gets another number."""

    def __init__(self, folder):
        image = pathlib.Path(folder) / "other.img"
        image.write_bytes(bytes(1024 * 1024))
        self.device = run("losetup", "--find", "--show", str(image))

    def release(self):
        run("losetup", "--detach", self.device)
