#!/usr/bin/python3
"""The exporter under a real Prometheus, and the rules and queries that come with it.

prometheus_test.py zelk-exporter docs/metrics.md packaging/prometheus/zelk.rules.yml
"""
import json
import pathlib
import socket
import subprocess
import sys
import tempfile
import time
import unittest
import urllib.parse
import urllib.request

from exporter_test import RULES, Exporter, Silent

HERE = pathlib.Path(__file__).parent

CONFIGURATION = """
global: {{scrape_interval: 1s, scrape_timeout: 1s, evaluation_interval: 1s}}
rule_files: [rules.yml]
scrape_configs:
  - job_name: zelk
    http_sd_configs: [{{url: "http://127.0.0.1:{port}/targets", refresh_interval: 1s}}]
"""


class Prometheus:
    """A private server that finds its targets at an exporter."""

    def __init__(self, exporter_port):
        self.folder = tempfile.TemporaryDirectory()
        folder = pathlib.Path(self.folder.name)
        # The waiting times of the alerts are for people.
        rules = [line for line in RULES.read_text(encoding="utf-8").splitlines()
                 if not line.strip().startswith("for:")]
        (folder / "rules.yml").write_text("\n".join(rules), encoding="utf-8")
        (folder / "prometheus.yml").write_text(CONFIGURATION.format(port=exporter_port),
                                               encoding="utf-8")
        with socket.create_server(("127.0.0.1", 0)) as free:
            self.port = free.getsockname()[1]
        with (folder / "log").open("w") as log:
            self.process = subprocess.Popen(
                ["prometheus", f"--config.file={folder}/prometheus.yml",
                 f"--storage.tsdb.path={folder}/data",
                 f"--web.listen-address=127.0.0.1:{self.port}"],
                stdout=subprocess.DEVNULL, stderr=log)

    def query(self, expression):
        url = f"http://127.0.0.1:{self.port}/api/v1/query?" + urllib.parse.urlencode(
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
        self.folder.cleanup()


class RealPrometheus(unittest.TestCase):
    def test_it_finds_scrapes_and_alerts(self):
        with Silent() as server, Exporter({"frozen": server, "demo": "sim:demo"}) as exporter:
            direct = exporter.values("/probe?target=demo")
            with Prometheus(exporter.port) as prometheus:
                down = prometheus.wait_for('ALERTS{alertname="ZelkTargetDown",alertstate="firing"}')
                up = prometheus.wait_for("zelk_up and on (instance) zelk_up == 1")
                limits = prometheus.wait_for('zelk_resource_limit{resource="users"}')
                ratio = prometheus.wait_for('zelk:resource_used:ratio{resource="users"}')
                frozen = prometheus.wait_for('zelk_up{instance="frozen"}')
                waiting = prometheus.wait_for("zelk:handles_waiting:sum > 0")
        self.assertEqual(down, {"frozen": 1})
        self.assertEqual((up, frozen), ({"demo": 1}, {"frozen": 0}))
        self.assertEqual(limits, {"demo": direct['zelk_resource_limit{resource="users"}']})
        self.assertEqual((set(ratio), set(waiting)), ({"demo"}, {"demo"}))


    def test_each_query_of_the_dashboard_has_data(self):
        dashboard = json.loads((RULES.parent / "zelk.dashboard.json").read_text(encoding="utf-8"))
        queries = [target["expr"].replace("$job", "zelk").replace("$instance", ".*")
                   .replace("$__rate_interval", "10s")
                   for panel in dashboard["panels"] for target in panel["targets"]]
        with Exporter({"demo": "sim:demo"}) as exporter, Prometheus(exporter.port) as prometheus:
            answers = {query: set(prometheus.wait_for(query)) for query in queries}
        self.assertGreater(len(queries), 10)
        self.assertEqual(answers, {query: {"demo"} for query in queries})


class Rules(unittest.TestCase):
    def test_rules(self):
        with tempfile.TemporaryDirectory() as folder:
            test = pathlib.Path(folder) / "test.yml"
            test.write_text((HERE / "rules_test.yml").read_text(encoding="utf-8").replace(
                "RULES", str(RULES)), encoding="utf-8")
            for command in [["check", "rules", "--lint-fatal", RULES], ["test", "rules", test]]:
                done = subprocess.run(["promtool", *command], capture_output=True, text=True,
                                      check=False)
                self.assertEqual(done.returncode, 0, done.stdout + done.stderr)


if __name__ == "__main__":
    unittest.main(argv=sys.argv)
