#!/usr/bin/python3
"""The exporter under the real servers that scrape it, and the rules and queries that come with it.

prometheus_test.py zelk-exporter docs/metrics.md packaging/prometheus/zelk.rules.yml
"""
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

from support import PROGRAM, RULES, Database, Exporter, Silent

HERE = pathlib.Path(__file__).parent


class Prometheus(Database):
    def __init__(self, exporter_port):
        # The waiting times of the alerts are for people.
        rules = [line for line in RULES.read_text(encoding="utf-8").splitlines()
                 if not line.strip().startswith("for:")]
        with tempfile.NamedTemporaryFile("w", suffix=".yml", delete=False) as file:
            file.write("\n".join(rules))
        self.rules = file.name
        super().__init__(
            exporter_port,
            "global: {scrape_interval: 1s, scrape_timeout: 1s, evaluation_interval: 1s}\n"
            f"rule_files: [{self.rules}]",
            ["prometheus", "--config.file={folder}/scrape.yml",
             "--storage.tsdb.path={folder}/data", "--web.listen-address={address}"])

    def __exit__(self, *arguments):
        super().__exit__(*arguments)
        os.remove(self.rules)


class VictoriaMetrics(Database):
    def __init__(self, exporter_port):
        super().__init__(
            exporter_port, "global: {scrape_interval: 1s, scrape_timeout: 1s}",
            ["victoria-metrics", "-promscrape.config={folder}/scrape.yml",
             "-promscrape.httpSDCheckInterval=1s", "-search.latencyOffset=0s",
             "-storageDataPath={folder}/data", "-httpListenAddr={address}",
             "-memory.allowedBytes=50MB", "-loggerLevel=WARN"])


SHOP = """
file = [{ name = "orders", handle = [{ client = "anna", wait_state = "file", count = 3 }] }]
[usage]
users = { current = 4, peak = 6, maximum = 20 }
transactions = { current = 2 }
data_mb = { current = 182 }
[communication]
requests = 1843207
timeouts = 2
protocol = [{ code = "spx", requests = 1204, current_sessions = 1, peak_sessions = 9 }]
"""
# The names that lead to a figure in the report of zelk, and the query that returns it.
SAME_AS_ZELK = {
    "resource_usage user_count current": 'zelk_resource_current{resource="users"}',
    "resource_usage user_count peak": 'zelk_resource_peak{resource="users"}',
    "resource_usage user_count maximum": 'zelk_resource_limit{resource="users"}',
    "resource_usage transactions current": 'zelk_resource_current{resource="transactions"}',
    "resource_usage data_in_use_MB current": "zelk_data_bytes / 1024 / 1024",
    "communication_statistics total_requests_processed": "zelk_requests_total",
    "communication_statistics total_connection_timeouts": "zelk_communication_timeouts_total",
    "communication_statistics spx_requests_processed":
        'sum without (protocol) (zelk_protocol_requests_total{protocol="spx"})',
    "communication_statistics spx_remote_sessions peak":
        'zelk_protocol_sessions_peak{protocol="spx"}',
}


def printed_by_zelk(config):
    """{names that lead to it: number} of a report in JSON."""
    report = subprocess.run([PROGRAM.parent / "zelk", "-f", config, "-runonce", "-JSON"],
                            capture_output=True, text=True, check=True).stdout
    values, path = {}, []
    for line in filter(lambda each: ":" in each, report.splitlines()):
        name, _, value = line.strip().rstrip(", ").partition(":")
        depth = len(line) - len(line.lstrip("\t")) - 1
        path[depth:] = [name.strip('"')]
        values[" ".join(path)] = value.strip(' "')
    return {name: {"shop": float(values[name])} for name in SAME_AS_ZELK}


class RealServers(unittest.TestCase):
    maxDiff = None

    def test_queries_return_what_zelk_prints(self):
        with Silent() as silent, Exporter({"frozen": silent, "shop": "sim:FOLDER/shop.toml"},
                                          files={"shop.toml": SHOP}) as exporter:
            printed = printed_by_zelk(os.path.join(exporter.folder.name, "shop.cfg"))
            for server in [Prometheus, VictoriaMetrics]:
                with server(exporter.port) as database:
                    states = [database.wait_for(f'zelk_up{{instance="{name}"}} == {state}')
                              for name, state in [("shop", 1), ("frozen", 0)]]
                    answers = {name: database.wait_for(query)
                               for name, query in SAME_AS_ZELK.items()}
                self.assertEqual(states, [{"shop": 1}, {"frozen": 0}], server)
                self.assertEqual(answers, printed, server)

    def test_an_alert_fires_when_a_target_is_frozen(self):
        with Silent() as silent, Exporter({"frozen": silent, "demo": "sim:demo"}) as exporter, \
                Prometheus(exporter.port) as prometheus:
            down = prometheus.wait_for(
                'ALERTS{alertname="ZelkTargetDown",alertstate="firing",instance="frozen"}')
            up = prometheus.wait_for('up{instance="frozen"}')
            ratio = prometheus.wait_for('zelk:resource_used:ratio{resource="users"}')
        self.assertEqual((down, up), ({"frozen": 1}, {"frozen": 1}))
        self.assertEqual(set(ratio), {"demo"})

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
