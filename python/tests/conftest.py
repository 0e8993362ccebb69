import json
from pathlib import Path

import pytest

TOP = Path(__file__).resolve().parents[2]
GAS = {"methane": 0.9, "ethane": 0.06, "nitrogen": 0.04}


@pytest.fixture(scope="session")
def check_values():
    """The published check values: function, inputs by key, outputs by key, tolerances."""
    cases = []
    for path in sorted((TOP / "tests" / "data").glob("*.jsonl")):
        cases += [json.loads(line) for line in path.read_text(encoding="utf-8").splitlines() if line.strip()]
    return cases
