#!/usr/bin/python3
"""Very many requests to one exporter: with wrong bytes, and of targets that come, go, hang and fail.
Neither memory nor descriptors may grow.

long_run.py zelk-exporter docs/metrics.md packaging/prometheus/zelk.rules.yml [requests [scrapes]]
"""
import pathlib
import socket
import sys
import threading
import time
from random import Random

from support import Exporter, Silent

REQUESTS, SCRAPES = (int(each) for each in [*sys.argv[1:], *["1000000", "100000"][len(sys.argv) - 1:]])
THREADS = 4
GOOD = [b"GET /probe?target=steady HTTP/1.1\r\nHost: a\r\nAccept: text/plain;q=1\r\n\r\n",
        b"GET /metrics HTTP/1.1\r\nHost: a\r\nAccept-Encoding: gzip\r\nAuthorization: Basic YTpi\r\n\r\n",
        b"GET /targets HTTP/1.1\r\nHost: a:1\r\nX-Prometheus-Scrape-Timeout-Seconds: 5\r\n\r\n",
        b"POST / HTTP/1.1\r\nHost: a\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n0\r\n\r\n"]
# A section fails at the fifth scrape of a connection; at the tenth the connection is lost.
FAULTS = "".join(f'[[fault]]\ncall = "{call}"\nstatus = 7106\nat = {at}\n'
                 for call, at in [("TalGetZorbUsageEx2", 5), ("TalGetZorbCommStatEx", 10)])
SHORT = {"X_Prometheus_Scrape_Timeout_Seconds": "0.55"}


def wrong_bytes(exporter, count, seed):
    random = Random(seed)
    for number in range(count):
        data = bytearray(random.choice(GOOD))
        for _ in range(random.randint(1, 4)):
            data[random.randrange(len(data))] = random.randrange(256)
        # Each address has its own ports to come from.
        source = (f"127.0.{seed}.{1 + number % 250}", 0)
        with socket.create_connection(("127.0.0.1", exporter.port), 30, source) as client:
            try:
                client.sendall(data[:random.randint(1, len(data))])
                client.shutdown(socket.SHUT_WR)
                while client.recv(65536):
                    pass
            except OSError:  # it may close at any time
                pass


def scrape(exporter, count, ups):
    """Each target in turn; one in a hundred is the one that hangs."""
    names = ["steady", "failing", "vanishing", "refused"]
    scenario = pathlib.Path(exporter.folder.name) / "vanishing.toml"
    for number in range(count):
        if number % 200 == 0:
            scenario.write_text(FAULTS, encoding="utf-8")
        if number % 200 == 100:
            scenario.unlink(missing_ok=True)
        name = "hangs" if number % 100 == 99 else names[number % len(names)]
        key = name, int(exporter.values(f"/probe?target={name}", **SHORT)["zelk_up"])
        ups[key] = ups.get(key, 0) + 1


def run(what, exporter, work):
    """Does the first tenth of the work, then the rest, and compares."""
    begin, figures = time.monotonic(), []
    for part in [1, 9]:
        work(part)
        own = exporter.values("/metrics")
        figures.append((own["process_resident_memory_bytes"] / 1024, own["process_open_fds"]))
    (memory, descriptors), (memory_after, descriptors_after) = figures
    print(f"{what}: {memory:.0f} KiB and {descriptors:.0f} descriptors after a tenth, "
          f"{memory_after:.0f} and {descriptors_after:.0f} at the end, "
          f"{time.monotonic() - begin:.0f} s", flush=True)
    return memory_after < memory + 1024 and descriptors_after <= descriptors + 2


def main():
    ups = {}

    def send(part):
        threads = [threading.Thread(target=wrong_bytes, args=(
            exporter, REQUESTS * part // 10 // THREADS, seed + 10 * part)) for seed in range(THREADS)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()

    with Silent() as silent, Exporter({
            "steady": "sim:demo", "failing": "sim:FOLDER/failing.toml", "hangs": silent,
            "vanishing": "sim:FOLDER/vanishing.toml", "refused": "postgresql://127.0.0.1:1"},
            files={"failing.toml": FAULTS}) as exporter:
        flat = [run(f"{REQUESTS} requests with wrong bytes", exporter, send),
                run(f"{SCRAPES} scrapes", exporter,
                    lambda part: scrape(exporter, SCRAPES * part // 10, ups))]
    print("scrapes by target and zelk_up:", dict(sorted(ups.items())))
    sys.exit(0 if all(flat) and exporter.code == 0 else 1)


main()
