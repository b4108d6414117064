"""Transfers to and from a real object store, by URLs that are signed for one request each."""

import hashlib
import random

from client import Client, Failed, check_files, wait_for
from networks import free_port
from swift_store import SwiftStore

MIB = 1024 * 1024
SIZES = [5, 0, 300_000, 1_999_999, 2_000_000, 12 * MIB, 100 * MIB]


class _Signed:
    """What a client needs to know of a store: URLs for every file."""

    def __init__(self, store, folder, files):
        self.url, self.files = store.address, files
        put = [store.signed("PUT", name) for name in files]
        get = [store.signed("GET", name) for name in files]
        (folder / "upload_urls").write_text("\n".join(put) + "\n")
        (folder / "download_urls").write_text("\n".join(get) + "\n")


def _written(folder, sizes):
    source = random.Random(1)
    files = {str(number): source.randbytes(size) for number, size in enumerate(sizes)}
    for name, content in files.items():
        (folder / f"file{name}").write_bytes(content)
    (folder / "target").mkdir()
    return files


def _check_store(store, files):
    for name, content in files.items():
        if hashlib.md5(store.content(name)).digest() != hashlib.md5(content).digest():
            raise Failed(f"the store has other bytes of {name}")


def _store(folder):
    (folder / "store").mkdir()
    return SwiftStore(folder / "store", [free_port() for _ in range(5)])


def _goes_both_ways(probe, folder, trouble):
    files = _written(folder, SIZES)
    store = _store(folder)
    try:
        signed = _Signed(store, folder, files)
        upload = Client(probe, folder, signed, direction="up")
        upload.start()
        trouble(store, upload)
        upload.finish()
        _check_store(store, files)
        download = Client(probe, folder, signed)
        download.start()
        download.finish()
        check_files(folder / "target", signed)
    finally:
        store.close()


def goes_to_a_store_and_back_by_signed_urls(probe, folder):
    _goes_both_ways(probe, folder, lambda store, client: None)


def goes_to_a_store_although_it_is_killed_in_between(probe, folder):
    def kill(_, client):
        wait_for(lambda: "403" in client.log() or "as a whole" in client.log(), "a large file")
        client.kill()
        client.start()

    _goes_both_ways(probe, folder, kill)


def goes_to_a_store_that_was_away(probe, folder):
    def restart(store, client):
        wait_for(lambda: "as a whole" in client.log(), "a large file")
        store.close()
        store.start()

    _goes_both_ways(probe, folder, restart)


CASES = [
    goes_to_a_store_and_back_by_signed_urls,
    goes_to_a_store_although_it_is_killed_in_between,
    goes_to_a_store_that_was_away,
]
