"""docs/performance.md and build/bench/results.json: the figures that tools/bench and tools/bench-controls write there."""

import json
import pathlib

ROOT = pathlib.Path(__file__).resolve().parent.parent
PAGE = ROOT / "docs/performance.md"
RESULTS = ROOT / "build/bench/results.json"


def write_figures(command, text):
    """Puts the text between the page's marks for that command."""
    begin, end = f"<!-- figures of {command}: begin -->", f"<!-- figures of {command}: end -->"
    before, rest = PAGE.read_text().split(begin)
    PAGE.write_text(f"{before}{begin}\n{text}\n{end}{rest.split(end)[1]}")


def write_ratios(rows, own, results=RESULTS):
    """Replaces those rows of the results for which own(contender) is true."""
    kept = [row for row in json.loads(results.read_text()) if not own(row["contender"])] if results.exists() else []
    results.parent.mkdir(parents=True, exist_ok=True)
    results.write_text(json.dumps(kept + rows, indent=1) + "\n")


def is_of_ffmpeg(contender):
    """Whether tools/bench-controls compares with it, and not tools/bench."""
    return contender.startswith("ffmpeg ")
