"""Downloads to real file systems that go away, fill up and lose power."""

import subprocess

from client import Client, Failed, check_files, wait_for
from file_server import FileServer, made_files
from volumes import OtherDevice, Volume

MIB = 1024 * 1024


def _resumes_after_a_remount(kind, probe, folder, restored=False):
    # Slow enough for the client to note several times how far it has come.
    server = FileServer(made_files(3, 32 * MIB), rate=2 * MIB)
    volume = Volume(kind, folder / "disk.img", folder / "target", 256 * MIB)
    volume.mount()
    try:
        client = Client(probe, folder, server)
        client.start()
        wait_for(lambda: server.sent > 66 * MIB, "half of the bytes")
        client.kill()
        if restored:
            volume.restore()
        volume.unmount()
        other = OtherDevice(folder)
        volume.mount()
        other.release()
        begun = {name for name, _ in server.requests}
        server.requests.clear()
        server.rate = None
        sent = server.sent
        client.start()
        client.finish()
        check_files(volume.mount_point, server)
        again = [name for name, begin in server.requests if begin == 0 and name in begun]
        if again:
            raise Failed(f"fetched from the first byte again: {again}")
        if server.sent - sent > 70 * MIB:
            raise Failed(f"{(server.sent - sent) // MIB} MiB were fetched after the remount")
    finally:
        server.close()
        volume.unmount()


def goes_on_after_a_remount_of_ext4(probe, folder):
    _resumes_after_a_remount("ext4", probe, folder)


def goes_on_after_a_remount_of_exfat(probe, folder):
    _resumes_after_a_remount("exfat", probe, folder)


def goes_on_after_a_remount_of_a_fuse_file_system(probe, folder):
    _resumes_after_a_remount("bind", probe, folder)


def goes_on_in_a_restored_backup(probe, folder):
    _resumes_after_a_remount("ext4", probe, folder, restored=True)


def loses_nothing_that_it_told_when_the_power_is_cut(probe, folder):
    server = FileServer({**made_files(60, 50_000), **_large(60, 4, 8 * MIB)}, rate=8 * MIB)
    volume = Volume("ext4", folder / "disk.img", folder / "target", 256 * MIB)
    volume.mount()
    try:
        client = Client(probe, folder, server)
        for bytes_more in (2 * MIB, 8 * MIB, 10 * MIB):
            sent = server.sent
            client.start()
            wait_for(lambda: server.sent - sent > bytes_more, "some bytes")
            volume.cut()
            client.kill()
            volume.unmount()
            volume.mount()
            check_files(volume.mount_point, server, client.told)
        client.start()
        client.finish()
        check_files(volume.mount_point, server)
    finally:
        server.close()
        volume.unmount()


def _large(first, count, size):
    return {
        str(first + number): content
        for number, content in enumerate(made_files(count, size).values())
    }


def goes_on_when_a_full_disk_has_room_again(probe, folder):
    server = FileServer(made_files(4, 24 * MIB), rate=12 * MIB)
    volume = Volume("ext4", folder / "disk.img", folder / "target", 160 * MIB)
    volume.mount()
    try:
        ballast = volume.mount_point / "ballast"
        ballast.write_bytes(bytes(90 * MIB))
        client = Client(probe, folder, server)
        client.start()
        wait_for(lambda: "the disk is full" in client.log(), "the log tells of the disk")
        ballast.unlink()
        client.finish()
        volume.unmount()
        volume.mount()
        check_files(volume.mount_point, server)
    finally:
        server.close()
        volume.unmount()


def needs():
    """What is missing here for these cases."""
    missing = [tool for tool in ("losetup", "mkfs.ext4", "mkfs.exfat", "mount.exfat-fuse", "bindfs")
               if subprocess.run(["which", tool], capture_output=True).returncode != 0]
    return missing


CASES = [
    goes_on_after_a_remount_of_ext4,
    goes_on_after_a_remount_of_exfat,
    goes_on_after_a_remount_of_a_fuse_file_system,
    goes_on_in_a_restored_backup,
    loses_nothing_that_it_told_when_the_power_is_cut,
    goes_on_when_a_full_disk_has_room_again,
]
