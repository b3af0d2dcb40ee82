"""The package does what the C++ front does: random calls through both, with the same results and the same bytes."""
import os
import subprocess
from pathlib import Path

from front_calls import RandomCalls, Replay, hexed
from mox_xmlapi import Form, Table

SEQUENCES = int(os.environ.get("MOX_PYTHON_SEQUENCES", "500"))


def documents(data_folder: Path):
    camera = (data_folder / "camera.xml").read_bytes()
    press_line = (data_folder / "press_line.xml").read_bytes()
    table = Table("Recipe")
    table.update({"Exposure": 1800, "Gain": 1.5, "Model": "VC"})
    ui_values = ('<?xml version="1.0"?>\n<Table name="T"><Var name="Exposure" id="1" type="long"><UI><Value>5</Value>'
                 '</UI></Var><Var name="Gain" id="2" type="double"><Value/><UI><Value>1.5</Value></UI></Var>'
                 '<Lost name="Lease"/></Table>').encode("utf-16-le")
    return [["new_settings"], ["new_table", hexed("Table")], ["parse_settings", hexed(camera)],
            ["parse_settings", hexed(press_line)], ["parse_table", hexed(table.to_bytes())],
            ["parse_table", hexed(ui_values)]]


def test_random_calls_give_what_the_front_gives(front_replay, data_folder):
    choices = documents(data_folder)
    sequences = [RandomCalls(seed, choices).calls for seed in range(SEQUENCES)]
    calls = [call for sequence in sequences for call in sequence]
    lines = "".join(" ".join(call) + "\n" for call in calls)
    expected = subprocess.run([front_replay], input=lines.encode(), stdout=subprocess.PIPE, check=True).stdout
    replay = Replay()
    kinds = {}
    for call, line in zip(calls, expected.decode("utf-8", "surrogatepass").split("\n")):
        result = replay.call(call)
        assert result == line, f"{call}: of the document of the call {replay_start(calls, call)}"
        passed, failed = kinds.get(call[0], (0, 0))
        kinds[call[0]] = (passed + line.startswith("ok"), failed + line.startswith("failed"))
    # The comparison is worth something only if calls succeed and fail.
    assert len(calls) == expected.count(b"\n")
    for name in ("assign", "write", "get", "read", "add", "put", "rename", "comment", "remove", "set_value", "eud"):
        passed, failed = kinds[name]
        assert passed > 5 and failed > 5, (name, passed, failed)


def replay_start(calls, failing):
    at = next(index for index, call in enumerate(calls) if call is failing)
    return next(index for index in range(at, -1, -1) if calls[index][0].startswith(("new_", "parse_")))
