#!/usr/bin/python3
"""The whole exporter, asked over HTTP as Prometheus asks it.

exporter_test.py zelk-exporter docs/metrics.md packaging/prometheus/zelk.rules.yml
"""
import base64
import contextlib
import gzip
import http.client
import json
import os
import pathlib
import re
import socket
import ssl
import subprocess
import sys
import tempfile
import threading
import time
import unittest
from random import Random

from prometheus_client.openmetrics.parser import text_string_to_metric_families as open_families
from prometheus_client.parser import text_string_to_metric_families as text_families

from support import PAGE, PROGRAM, Exporter, Silent, configuration

OPEN = "application/openmetrics-text; version=1.0.0"
PROMETHEUS = ("application/openmetrics-text;version=1.0.0,application/openmetrics-text;"
              "version=0.0.1;q=0.75,text/plain;version=0.0.4;q=0.5,*/*;q=0.1")
SECRET_HASH = "$2b$04$.dFZs7LW5TV1FUWA32aAQeuLzPVuNIIGFRjfrJZtVMoBJV8qsJ5.a"  # of "secret"
HOSTILE = '''
file = [{ name = "a\\"b\\\\c{xFF}", handle = [{ client = "x", wait_state = "file", count = 3 }] },
        { name = "calm", handle = [{ client = "x" }] }, { name = "unused" }]
[communication]
requests = 4294967295
protocol = [{ code = "tcp/ip", requests = 1 }, { code = "tcp/ip", requests = 2 }]
'''


class Served(unittest.TestCase):
    maxDiff = None

    def test_every_metric_stands_on_its_page(self):
        definitions, meanings = PAGE.read_text(encoding="utf-8").split("## Meaning for each engine")
        rows = re.findall(r"^\| `(\w+)` \| (\w+) \| (\w*) \|.*\| (.*) \|$", definitions, re.M)
        explained = re.findall(r"^\| `(\w+)` \| [^|]{6,} \| [^|]{6,} \| `[^|]+ \|$", meanings, re.M)
        with Exporter({"demo": "sim:demo"}, "--most-waited-for", "2") as exporter:
            families = list(open_families(exporter.get("/metrics", Accept=OPEN)[2].decode()))
        suffix = {"counter": "_total", "info": "_info", "gauge": ""}
        served = [(each.name + suffix[each.type], each.type, each.unit, each.documentation)
                  for each in families]
        self.assertEqual(served, rows)
        names = [name for name, *_ in served]
        self.assertEqual(explained, names[names.index("zelk_engine_info"):
                                          names.index("zelk_exporter_build_info")])

    def test_both_formats_are_read_by_the_parsers_of_the_field(self):
        with Exporter({"hostile": "sim:FOLDER/h.toml"}, "--most-waited-for", "1",
                      files={"h.toml": HOSTILE}) as exporter:
            text = exporter.get("/probe?target=hostile")[2].decode()
            opened = exporter.get("/probe?target=hostile", Accept=OPEN)[2].decode()
        checked = subprocess.run(["promtool", "check", "metrics"], input=text, text=True,
                                 capture_output=True, check=False)
        self.assertEqual((checked.returncode, checked.stdout, checked.stderr), (0, "", ""))
        files = [sample.labels["file"] for family in text_families(text)
                 for sample in family.samples if family.name == "zelk_file_handles_waiting"]
        self.assertEqual(files, ['a"b\\c\ufffd'])
        samples = {(sample.name, tuple(sample.labels.values())): sample.value
                   for family in open_families(opened) for sample in family.samples}
        self.assertEqual(samples["zelk_file_handles_waiting", ('a"b\\c\ufffd',)], 3)
        self.assertEqual(samples["zelk_protocol_requests_total", ("tcp/ip",)], 1)
        self.assertNotIn(("zelk_requests_total", ()), samples)

    def test_format_and_compression_follow_the_request(self):
        text, opened = "text/plain; version=0.0.4; charset=utf-8", OPEN + "; charset=utf-8"
        cases = {"": text, "*/*": text, "text/plain": text, "image/png": text, OPEN: opened,
                 PROMETHEUS: opened, "application/*": opened,
                 "application/openmetrics-text;q=0.3,text/plain;q=0.7": text,
                 "application/openmetrics-text;q=0.3,text/plain;q=1": text,
                 "application/openmetrics-text;q=0.3,text/*;q=0.2": opened,
                 "application/openmetrics-text;q=0": text,
                 "application/openmetrics-text;version=9.0.0": text, ";;q=,,=;q=x/": text}
        with Exporter({"demo": "sim:demo"}) as exporter:
            for accept, expected in cases.items():
                headers = exporter.get("/probe?target=demo", Accept=accept)[1]
                self.assertEqual(headers["Content-Type"], expected, accept)
            for accept, packed in {"gzip": True, "br, *;q=0.1": True, "gzip;q=0": False}.items():
                _, headers, body = exporter.get("/metrics", Accept_Encoding=accept)
                self.assertEqual(headers["Content-Encoding"] == "gzip", packed, accept)
                self.assertIn(b"zelk_up 1", gzip.decompress(body) if packed else body)

    def test_pages(self):
        with Exporter({"a": "sim:demo", "b<i>": "sim:FOLDER/none.toml"}) as exporter:
            exporter.values("/probe?target=b%3Ci%3E")
            targets = json.loads(exporter.get("/targets", Host="example.org:1")[2])
            page, overview = exporter.get("/")[1:]
            statuses = [exporter.get(path)[0] for path in
                        ["/-/healthy", "/probe?target=c", "/probe", "/nothing"]]
            posted = exporter.get("/metrics", method="POST", body="x")[0]
            own = exporter.values("/metrics")
        self.assertEqual(targets, [{"targets": ["example.org:1"], "labels": {
            "__metrics_path__": "/probe", "__param_target": name, "instance": name}}
            for name in ["a", "b<i>"]])
        self.assertEqual(statuses, [200, 404, 404, 404])
        self.assertEqual(posted, 405)
        self.assertIn("default-src 'none'", page["Content-Security-Policy"])
        self.assertIn('<a href="/probe?target=b%3Ci%3E">b&lt;i&gt;</a><td class="down">down since',
                      overview.decode())
        self.assertEqual(own["zelk_exporter_targets"], 2)
        self.assertEqual(own["zelk_exporter_scrapes_failed_total"], 1)
        self.assertNotIn("zelk_up", own)

    def test_no_targets(self):
        with Exporter({}) as exporter:
            self.assertEqual(exporter.get("/targets")[2], b"[]")
            self.assertNotIn("zelk_up", exporter.values("/metrics"))


class Failing(unittest.TestCase):
    def test_a_failed_section_is_absent_and_the_next_scrape_is_clean(self):
        faults = '[[fault]]\ncall = "TalGetOpenFilesData"\nstatus = 7106\nat = 2\n'
        with Exporter({"x": "sim:FOLDER/x.toml"}, files={"x.toml": faults}) as exporter:
            scrapes = [exporter.values("/probe?target=x") for _ in range(3)]
        for scrape, works in zip(scrapes, [1, 0, 1]):
            self.assertEqual(scrape["zelk_up"], 1)
            self.assertEqual(scrape['zelk_scrape_section_success{section="files"}'], works)
            self.assertEqual(scrape['zelk_scrape_section_status{section="files"}'],
                             0 if works else 7106)
            self.assertEqual("zelk_open_files" in scrape, bool(works))

    def test_a_target_that_cannot_be_reached_is_down(self):
        with Exporter({"x": "sim:FOLDER/none.toml"}) as exporter:
            scrape = exporter.values("/probe?target=x")
        self.assertEqual(scrape["zelk_up"], 0)
        self.assertEqual(scrape['zelk_scrape_section_status{section="usage"}'], 7111)
        self.assertEqual({name.split("{")[0] for name in scrape},
                         {"zelk_up", "zelk_scrape_duration_seconds", "zelk_scrape_section_success",
                          "zelk_scrape_section_duration_seconds", "zelk_scrape_section_status",
                          "zelk_scrape_section_calls"})
        self.assertIn("TalConnectServer: 7111", "".join(exporter.lines))
        self.assertEqual(exporter.code, 0)

    def test_a_target_that_hangs_holds_up_nobody(self):
        limit = {"X_Prometheus_Scrape_Timeout_Seconds": "1.5"}
        hanging = Silent()
        with hanging as server, Exporter({"hangs": server, "works": "sim:demo"}) as exporter:
            begin = time.monotonic()
            answers = []
            threads = [threading.Thread(target=lambda: answers.append(
                exporter.values("/probe?target=hangs", **limit))) for _ in range(20)]
            for thread in threads:
                thread.start()
            working = exporter.values("/probe?target=works")
            for thread in threads:
                thread.join()
            took = time.monotonic() - begin
            connections = hanging.connections()
            stop = time.monotonic()
        self.assertEqual(working["zelk_up"], 1)
        self.assertEqual(connections, 1)
        self.assertEqual([each["zelk_up"] for each in answers], [0] * 20)
        self.assertEqual({tuple(each) for each in answers},
                         {("zelk_up", "zelk_scrape_duration_seconds")})
        self.assertGreaterEqual(answers[0]["zelk_scrape_duration_seconds"], 0.9)
        self.assertLess(took, 4.5)  # less than the engine's own limit for connecting
        self.assertLess(time.monotonic() - stop, 4.5)
        self.assertEqual(exporter.code, 0)

    def test_one_at_a_time_waits_for_a_target_that_hangs(self):
        limit = {"X_Prometheus_Scrape_Timeout_Seconds": "1"}
        with Silent() as server, Exporter({"hangs": server, "works": "sim:demo"},
                                          "--one-at-a-time") as exporter:
            exporter.values("/probe?target=hangs", **limit)
            waiting = exporter.values("/probe?target=works", **limit)
        self.assertEqual(waiting["zelk_up"], 0)


def make_certificate(folder, name):
    subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt",
                    "ec_paramgen_curve:prime256v1", "-nodes", "-days", "2", "-subj", f"/CN={name}",
                    "-addext", "subjectAltName=IP:127.0.0.1", "-keyout", f"{folder}/{name}.key",
                    "-out", f"{folder}/{name}.crt"], check=True, capture_output=True)


class Hostile(unittest.TestCase):
    def send(self, port, data):
        """What is answered to these bytes until the exporter closes or waits for more."""
        with socket.create_connection(("127.0.0.1", port), timeout=30) as client:
            client.settimeout(30)
            try:
                client.sendall(data)
                client.shutdown(socket.SHUT_WR)
                while client.recv(65536):
                    pass
            except OSError:  # it may close at any time
                pass

    def test_wrong_bytes_leave_nothing_behind(self):
        random = Random(1)  # the same bytes each time
        good = b"GET /probe?target=demo HTTP/1.1\r\nHost: a\r\nAccept: text/plain;q=1\r\n\r\n"
        with Exporter({"demo": "sim:demo"}) as exporter:
            before = exporter.values("/metrics")["process_open_fds"]
            for _ in range(1500):
                data = bytearray(good)
                for _ in range(random.randint(1, 4)):
                    data[random.randrange(len(data))] = random.randrange(256)
                self.send(exporter.port, data[:random.randint(1, len(data))])
            for data in [b"GET / HTTP/1.1\r\n" + b"a: b\r\n" * 100000, b"GET /" + b"x" * 1000000,
                         b"GET /targets HTTP/1.1\r\nHost: \x00\"<\\\xff\r\n\r\n",
                         b"GET / HTTP/1.1\r\nHost: a\r\nContent-Length: 9999999\r\n\r\nxx",
                         b"GET / HTTP/1.1\r\nAuthorization: Basic !!!\r\n\r\n"]:
                self.send(exporter.port, data)
            after = exporter.values("/metrics")
        self.assertEqual(after["zelk_up"], 1)
        self.assertLessEqual(after["process_open_fds"], before + 2)
        self.assertEqual(exporter.code, 0)


    def test_one_address_cannot_take_all_connections(self):
        with Exporter({"demo": "sim:demo"}) as exporter, contextlib.ExitStack() as held:
            for _ in range(300):
                held.enter_context(socket.create_connection(("127.0.0.1", exporter.port), 30,
                                                            ("127.0.0.2", 0)))
            with self.assertRaises(OSError):
                exporter.get("/-/healthy", source=("127.0.0.2", 0))
            self.assertEqual(exporter.get("/-/healthy")[0], 200)


class Protected(unittest.TestCase):
    """What --web-config asks for."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        make_certificate(self.folder, "server")
        make_certificate(self.folder, "client")
        make_certificate(self.folder, "stranger")
        self.users = f"basic_auth_users:\n  prometheus: {SECRET_HASH}\n"
        self.tls = "tls_server_config:\n  cert_file: server.crt\n  key_file: server.key\n"

    def exporter(self, config, *options):
        path = pathlib.Path(self.folder) / "web.yml"
        path.write_text(config, encoding="utf-8")
        return Exporter({"demo": "sim:demo"}, "--web-config", str(path), *options)

    def get(self, port, client=None, version=None):
        context = ssl.create_default_context(cafile=f"{self.folder}/server.crt")
        context.maximum_version = version or ssl.TLSVersion.TLSv1_3
        if client:
            context.load_cert_chain(f"{self.folder}/{client}.crt", f"{self.folder}/{client}.key")
        connection = http.client.HTTPSConnection("127.0.0.1", port, timeout=30, context=context)
        try:
            connection.request("GET", "/metrics")
            return connection.getresponse().status
        except (ssl.SSLError, ConnectionError):
            return "refused"
        finally:
            connection.close()

    def test_users(self):
        cases = {"prometheus:secret": 200, "prometheus:Secret": 401, "prometheus:": 401,
                 "nobody:secret": 401, "": 401}
        with self.exporter(self.users) as exporter:
            for credentials, expected in {**cases, "prometheus:secret": 200}.items():
                encoded = base64.b64encode(credentials.encode()).decode()
                answer = exporter.get("/metrics", Authorization="Basic " + encoded)
                self.assertEqual(answer[0], expected, credentials)
                self.assertEqual(b"zelk_up" in answer[2], expected == 200, credentials)
            self.assertEqual(exporter.get("/-/healthy")[0], 401)

    def test_tls(self):
        with self.exporter(self.tls) as exporter:
            self.assertEqual(self.get(exporter.port), 200)
            self.assertEqual(self.get(exporter.port, version=ssl.TLSVersion.TLSv1_2), 200)
        with self.exporter(self.tls + "  min_version: TLS13\n") as exporter:
            self.assertEqual(self.get(exporter.port), 200)
            self.assertEqual(self.get(exporter.port, version=ssl.TLSVersion.TLSv1_2), "refused")

    def test_client_certificates(self):
        required = "  client_ca_file: client.crt\n  client_auth_type: "
        with self.exporter(self.tls + required + "RequireAndVerifyClientCert\n") as exporter:
            answers = [self.get(exporter.port, client) for client in ["client", "stranger", None]]
        self.assertEqual(answers, [200, 403, 403])
        with self.exporter(self.tls + required + "VerifyClientCertIfGiven\n") as exporter:
            answers = [self.get(exporter.port, client) for client in ["client", "stranger", None]]
        self.assertEqual(answers, [200, 403, 200])

    def test_files_that_are_refused(self):
        cases = {"": "empty", "{}": "protects nothing", "x: 1": "unknown key x",
                 "tls_server_config: {cipher_suites: []}": "unknown key cipher_suites",
                 "tls_server_config: {cert_file: server.crt}": "needs cert_file and key_file",
                 self.tls + "  min_version: TLS10\n": "TLS12 or TLS13",
                 self.tls + "  client_auth_type: X\n": "client_auth_type is",
                 self.tls + "  client_ca_file: client.crt\n": "go together",
                 self.tls.replace("server.key", "none"): "none cannot be read",
                 self.tls.replace("server.key", "client.key"): "do not fit",
                 "basic_auth_users: {a: secret}": "bcrypt",
                 self.users.replace("$04$", "$31$"): "a cost up to 15",
                 "basic_auth_users: [": "web.yml:1",
                 self.users + self.users: "given twice", "[" * 100000: "web.yml"}
        for config, text in cases.items():
            with self.exporter(config) as exporter:
                self.assertIsNone(exporter.port, config[:99])
            self.assertIn(text, exporter.said, config[:99])
            self.assertEqual(exporter.code, 1, config[:99])


class CommandLine(unittest.TestCase):
    def run_program(self, *arguments):
        done = subprocess.run([PROGRAM, *arguments], capture_output=True, text=True, check=False,
                              timeout=30)
        return done.returncode, done.stdout, done.stderr

    def test_once_replaces_a_file(self):
        with tempfile.TemporaryDirectory() as folder:
            config, output = os.path.join(folder, "x.cfg"), os.path.join(folder, "x.prom")
            for name, text in [(config, configuration("sim:demo")), (output, "old")]:
                with open(name, "w", encoding="utf-8") as file:
                    file.write(text)
            printed = self.run_program("-f", config, "--once")
            written = self.run_program("-f", config, "--once", "-o", output)
            refused = [self.run_program("-f", config, "--once", "-o", os.path.join(folder, name))
                       for name in ["no/x", ""]]
            with open("/dev/full", "w", encoding="utf-8") as full:
                lost = subprocess.run([PROGRAM, "-f", config, "--once"], stdout=full,
                                      stderr=subprocess.PIPE, text=True, check=False)
            self.assertEqual(printed[0], 0)
            self.assertIn("zelk_up 1\n", printed[1])
            self.assertEqual(written, (0, "", ""))
            text = pathlib.Path(output).read_text(encoding="utf-8")
            self.assertEqual(text.splitlines()[:3], printed[1].splitlines()[:3])
            self.assertEqual(sorted(os.listdir(folder)), ["x.cfg", "x.prom"])
            for code, _, text in [*refused, (lost.returncode, "", lost.stderr)]:
                self.assertEqual(code, 1)
                self.assertIn("cannot be written", text)

    def test_mistakes(self):
        with tempfile.TemporaryDirectory() as folder:
            config = os.path.join(folder, "x.cfg")
            with open(config, "w", encoding="utf-8") as file:
                file.write(configuration("sim:demo"))
            nothing = os.path.join(folder, "nothing.cfg")
            with open(nothing, "w", encoding="utf-8") as file:
                file.write(configuration("sim:demo").replace("=YES", "=NO"))
            cases = [([], 2, "name a configuration"), (["-f"], 2, "needs a value"),
                     (["-f", config, "x"], 2, "unknown argument x"),
                     (["-f", config, "-f", config], 2, "two configurations"),
                     (["-f", config, "-o", "x"], 2, "--once"),
                     (["-f", config, "--most-waited-for", "-1"], 2, "--most-waited-for"),
                     (["-f", config, "--listen", "80"], 1, "HOST:PORT"),
                     (["-f", config, "--listen", "0.0.0.0:0"], 1, "--web-config"),
                     (["-f", config, "--listen", ":0"], 1, "--web-config"),
                     (["-f", config + "x"], 1, "x.cfgx"),
                     (["-f", nothing], 1, "no section is switched on")]
            for arguments, code, text in cases:
                done = self.run_program(*arguments)
                self.assertEqual(done[0], code, (arguments, done))
                self.assertIn(text, done[2], arguments)


if __name__ == "__main__":
    unittest.main(argv=sys.argv)
