"""What the tests of the exporter share: the exporter itself, other listeners, ports, servers.

The command line of each test: zelk-exporter docs/metrics.md packaging/prometheus/zelk.rules.yml
"""
import contextlib
import http.client
import itertools
import json
import os
import pathlib
import socket
import subprocess
import sys
import tempfile
import threading
import time
import urllib.parse
import urllib.request

from reserved_port import ReservedPort

PROGRAM, PAGE, RULES = (pathlib.Path(sys.argv.pop(1)).resolve() for _ in range(3))


def configuration(server):
    return (f"SERV={server}\nUSER=\nPASS=\nREFR=0\nLIMI=0\nOUTP=CONSOLE\nNAME=\nFILE=YES\n"
            "SESS=YES\nCONN=YES\nRESO=YES\nCOMM=YES\nHAND=NO\n")


class Exporter:
    """A running exporter with the configurations {name: server}."""

    def __init__(self, servers, *options, files=None):
        self.folder = tempfile.TemporaryDirectory()
        for name, text in (files or {}).items():
            self.write(name, text)
        for name, server in servers.items():
            self.write(name + ".cfg", configuration(server.replace("FOLDER", self.folder.name)))
        options = [each.replace("FOLDER", self.folder.name) for each in options]
        self.process = subprocess.Popen(
            [PROGRAM, "-f", self.folder.name, "--listen", "127.0.0.1:0", *options],
            stderr=subprocess.PIPE, text=True)
        line = self.process.stderr.readline()
        self.port = int(line.rsplit(":", 1)[1]) if "listening" in line else None
        self.said = line
        self.lines = []
        self.reader = threading.Thread(target=lambda: self.lines.extend(self.process.stderr))
        self.reader.start()

    def write(self, name, text):
        with open(os.path.join(self.folder.name, name), "w", encoding="utf-8") as file:
            file.write(text)

    def get(self, path, method="GET", body=None, source=None, **headers):
        connection = http.client.HTTPConnection("127.0.0.1", self.port, 30, source)
        try:
            connection.request(method, path, body,
                               {name.replace("_", "-"): value for name, value in headers.items()})
            answer = connection.getresponse()
            return answer.status, answer.headers, answer.read()
        finally:
            connection.close()

    def values(self, path, **headers):
        """{sample line without value: value} of a page."""
        text = self.get(path, **headers)[2].decode()
        lines = [line for line in text.splitlines() if not line.startswith("#")]
        return {line.rsplit(" ", 1)[0]: float(line.rsplit(" ", 1)[1]) for line in lines}

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.terminate()
        self.code = self.process.wait(30)
        self.reader.join()
        self.process.stderr.close()
        self.folder.cleanup()


class Silent:
    """A server that accepts connections and never answers."""

    def __enter__(self):
        self.socket = socket.create_server(("127.0.0.1", 0))
        return f"postgresql://127.0.0.1:{self.socket.getsockname()[1]}"

    def connections(self):
        """How many it has accepted."""
        self.socket.settimeout(0)
        with contextlib.suppress(BlockingIOError):
            for count in itertools.count():
                self.socket.accept()[0].close()
        return count

    def __exit__(self, *_):
        self.socket.close()


class Database:
    """A private server that scrapes what an exporter names, and answers queries."""

    def __init__(self, exporter_port, configuration, command):
        self.folder = tempfile.TemporaryDirectory()
        self.reserved = ReservedPort()
        folder = pathlib.Path(self.folder.name)
        (folder / "scrape.yml").write_text(
            configuration + f"""
scrape_configs:
  - job_name: zelk
    http_sd_configs: [{{url: "http://127.0.0.1:{exporter_port}/targets"}}]
""", encoding="utf-8")
        address = f"127.0.0.1:{self.reserved.number}"
        with (folder / "log").open("w") as log:
            self.process = subprocess.Popen(
                [each.format(folder=folder, address=address) for each in command],
                stdout=log, stderr=log)

    def query(self, expression):
        url = f"http://127.0.0.1:{self.reserved.number}/api/v1/query?" + urllib.parse.urlencode(
            {"query": expression})
        with urllib.request.urlopen(url, timeout=10) as answer:
            return json.load(answer)["data"]["result"]

    def wait_for(self, expression, seconds=60):
        """The result of the query as {instance: value}, as soon as there is one."""
        deadline = time.monotonic() + seconds
        while time.monotonic() < deadline:
            try:
                if result := self.query(expression):
                    return {each["metric"].get("instance"): float(each["value"][1])
                            for each in result}
            except OSError:
                pass
            time.sleep(0.2)
        log = (pathlib.Path(self.folder.name) / "log").read_text(encoding="utf-8")
        raise AssertionError(f"{expression}: no result\n{log[-3000:]}")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.terminate()
        self.process.wait(30)
        self.reserved.claim.close()
        self.folder.cleanup()
