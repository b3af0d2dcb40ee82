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


def compare(sequences, front_replay, kinds):
    """Carries out the calls on both sides. Counts, for each kind of call, those that have succeeded and failed."""
    calls = [call for sequence in sequences for call in sequence]
    lines = "".join(" ".join(call) + "\n" for call in calls)
    output = subprocess.run([front_replay], input=lines.encode(), stdout=subprocess.PIPE, check=True).stdout
    expected = output.decode("utf-8", "surrogatepass").split("\n")
    assert len(expected) == len(calls) + 1
    replay = Replay()
    for number, (call, line) in enumerate(zip(calls, expected)):
        assert replay.call(call) == line, f"{call}, call {number} of the sequences"
        passed, failed = kinds.get(call[0], (0, 0))
        kinds[call[0]] = (passed + line.startswith("ok"), failed + line.startswith("failed"))


def test_random_calls_give_what_the_front_gives(front_replay, data_folder):
    choices = documents(data_folder)
    kinds = {}
    for start in range(0, SEQUENCES, 250):  # the results of more take much memory
        seeds = range(start, min(start + 250, SEQUENCES))
        compare([RandomCalls(seed, choices).calls for seed in seeds], front_replay, kinds)
    print(f"random calls: {SEQUENCES} sequences, {sum(map(sum, kinds.values()))} calls, no difference")
    # The comparison is worth something only if calls succeed and fail.
    for name in ("assign", "write", "get", "read", "add", "put", "rename", "comment", "remove", "set_value", "eud"):
        passed, failed = kinds[name]
        assert passed > 5 and failed > 5, (name, passed, failed)
