#!/usr/bin/python3
"""The page for people in a real browser.

browser_test.py zelk-exporter docs/metrics.md packaging/prometheus/zelk.rules.yml
ZELK_SCREENSHOTS=FOLDER keeps what the browser shows.
"""
import os
import pathlib
import shutil
import sys
import tempfile
import unittest
import urllib.parse

from support import Exporter

BROWSER, DRIVER = shutil.which("chromium"), shutil.which("chromedriver")
HOSTILE = "<img src=x onerror=document.title='hit'>&\"'"
DESK, PHONE = (1000, 700), (360, 740)


class Page(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        from selenium import webdriver  # pylint: disable=import-outside-toplevel
        from selenium.webdriver.chrome.service import Service  # pylint: disable=import-outside-toplevel
        cls.profile = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.profile.cleanup)
        options = webdriver.ChromeOptions()
        options.binary_location = BROWSER
        for each in ["--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
                     "--no-proxy-server", "--disable-background-networking",
                     f"--user-data-dir={cls.profile.name}"]:
            options.add_argument(each)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        cls.browser = webdriver.Chrome(service=Service(DRIVER), options=options)
        cls.addClassCleanup(cls.browser.quit)
        cls.exporter = cls.enterClassContext(Exporter({
            "berlin": "sim:demo", HOSTILE: "sim:FOLDER/none.toml", "waiting": "sim:demo",
            "a-name-that-is-too-long-for-the-width-of-a-phone": "sim:demo"}))
        for name in ["berlin", "a-name-that-is-too-long-for-the-width-of-a-phone"]:
            cls.exporter.get("/probe?target=" + name)
        cls.exporter.get("/probe?target=" + urllib.parse.quote(HOSTILE))

    def show(self, size):
        """The page in a window of this size: its rows, and how much wider than the window it is."""
        # A window cannot be as narrow as a phone, but what a phone shows can be asked for.
        self.browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
            "width": size[0], "height": size[1], "deviceScaleFactor": 1, "mobile": size == PHONE})
        self.browser.get(f"http://127.0.0.1:{self.exporter.port}/")
        if folder := os.environ.get("ZELK_SCREENSHOTS"):
            self.browser.save_screenshot(str(pathlib.Path(folder) / f"page-{size[0]}.png"))
        return self.browser.execute_script(
            "return [[...document.querySelectorAll('tr')].map(row => [...row.cells].map("
            "cell => cell.innerText)), document.documentElement.scrollWidth - innerWidth]")

    def complaints(self):
        """What the browser says, except that there is no icon, which it asks for by itself."""
        return [each["message"] for each in self.browser.get_log("browser")
                if "favicon.ico" not in each["message"]]

    def test_shows_every_target_on_a_desk_and_on_a_phone(self):
        for size in [DESK, PHONE]:
            rows, excess = self.show(size)
            states = {row[0]: row[1].split(" since ")[0] for row in rows}
            self.assertEqual(states, {
                "Target": "State", "berlin": "up", HOSTILE: "down", "waiting": "not scraped yet",
                "a-name-that-is-too-long-for-the-width-of-a-phone": "up"}, size)
            self.assertRegex(rows[2][2], r"^5 sessions, 2 transactions, 14 locks, 7 open files$")
            self.assertEqual(excess, 0, size)
            self.assertEqual(self.browser.title, "zelk-exporter")
            self.assertEqual(self.complaints(), [])

    def test_links_lead_to_the_metrics(self):
        self.show(DESK)
        for name, value in [("berlin", 1), (HOSTILE, 0)]:
            self.browser.find_element("link text", name).click()
            self.assertIn(f"\nzelk_up {value}\n", self.browser.page_source)
            self.browser.back()

    def test_style_is_applied_and_a_script_is_not(self):
        self.show(DESK)
        weight, ran = self.browser.execute_script(
            "const script = document.createElement('script'); script.text = 'window.ran = true';"
            "document.body.append(script);"
            "return [getComputedStyle(document.querySelector('.down')).fontWeight, window.ran]")
        self.assertEqual((weight, ran), ("700", None))
        self.assertIn("Content Security Policy", str(self.complaints()))


if __name__ == "__main__":
    if not (BROWSER and DRIVER):
        sys.exit("SKIPPED: chromium and chromedriver are not installed (scripts/setup installs them)")
    unittest.main(argv=sys.argv)
