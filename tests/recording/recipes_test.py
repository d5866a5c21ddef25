"""Runs the recipes of docs/recording.md as they stand, on a recording of the built-in engine.

recipes_test.py ZELK-RECORD PAGE CONFIGURATION
"""
import pathlib
import re
import subprocess
import sys
import tempfile

READERS = {"sh": ["/bin/sh", "-eu"], "python": ["/usr/bin/python3"], "sql": ["sqlite3", ":memory:"]}


def run(command, folder, text=""):
    done = subprocess.run(command, cwd=folder, input=text, capture_output=True, text=True)
    if done.returncode != 0 or done.stderr:
        sys.exit(f"{command} ended with {done.returncode}: {done.stderr}\n{text}")
    return done.stdout


def lines(text):
    """The lines, without what differs from run to run: times, rates, blanks at the ends."""
    text = re.sub(r"\d{4}-\d\d-\d\d[T ][0-9:.]+(Z|\+00:00)", "TIME", text)
    text = re.sub(r"\d\d:\d\d:\d\d", "TIME", text)
    text = re.sub(r'"requests_per_minute":\d+', '"requests_per_minute":N', text)
    return [" ".join(line.split()) for line in text.splitlines()]


def check(language, recipe, expected, folder):
    """Each line that the page shows is printed, and the last one last. Returns whether it was."""
    printed = lines(run(READERS[language], folder, recipe))
    shown = lines(expected)
    good = set(shown) <= set(printed) and shown[-1:] == printed[-1:]
    if not good:
        print(recipe, "prints", *printed[-5:], "but the page shows", *shown, sep="\n")
    return good


def main():
    recorder, page, configuration = sys.argv[1:]
    section = re.search(r"\n## Recipes\n(.*?)\n## ", pathlib.Path(page).read_text(), re.S)[1]
    blocks = re.findall(r"```(\w+)\n(.*?)```(?:\s*```text\n(.*?)```)?", section, re.S)
    with tempfile.TemporaryDirectory() as folder:
        run([recorder, "-f", configuration, *"-i 0.5 -n 5 -o shop.ndjson".split()], folder)
        results = [check(*block, folder) for block in blocks]
    print(sum(results), "of", len(results), "recipes print what the page shows")
    return 0 if all(results) and {block[0] for block in blocks} == set(READERS) else 1


sys.exit(main())
