#!/usr/bin/python3
"""The schema of graph files and the tool agree: examples of the documents, which also run without a warning, graphs of
the tests, and files with a fault.

schemaTest.py TOOL SCHEMA"""
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

import jsonschema

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
DONE, REFUSED, MISSING_INPUT = 0, 2, 3


def examples():
    """Whole graphs, as (place, text): JSON in documents, here-documents in test scripts."""
    for file in [ROOT / "README.md", *sorted((ROOT / "docs").rglob("*.md"))]:
        for text in re.findall(r"^```json\n(.*?)^```", file.read_text(), re.M | re.S):
            if '"nodes"' in text:
                yield file.name, text
    for file in sorted((ROOT / "tests").rglob("*.sh")):
        for text in re.findall(r"<<'(\w+)'\n(.*?)^\1$", file.read_text(), re.M | re.S):
            if '"nodes"' in text[1]:
                yield file.name, text[1]


def graph(members="", parameters="", version=2, effect="highlight", top=""):
    node = f'{{"id": "n", "effect": "{effect}", "parameters": {{{parameters}}}{members and ", " + members}}}'
    return f'{{"effectengine": {version}, "nodes": [{node}]{top and ", " + top}}}'


def opacity(value, version=2):
    return graph(parameters=f'"Opacity": {value}', version=version)


def mouse(value, version=2):
    return graph(parameters=f'"iMouse": {value}', version=version)


TWO = '"keyframes": [{"time": 0, "value": 0}, {"time": 1, "value": 1}]'


def eased(easing, version=2):
    return opacity(f'{{"keyframes": [{{"time": 0, "value": 0, "interpolation": {easing}}},'
                   ' {"time": 1, "value": 1}]}', version)


def audio(members):
    return opacity(f'{{"audio": {{{members}}}}}')


GOOD = [
    graph(), graph(version=1), graph(top='"$schema": "/usr/share/graph.schema.json", "title": "T", "output": "n"'),
    graph('"inputs": ["source"], "start": 1.5, "duration": 2'), graph('"duration": 0.1'),
    opacity(1), opacity("[0.5]"), mouse("[1, 2]"), opacity(f"{{{TWO}}}", 1),
    graph(effect="delay-grab", parameters='"Mode": "by row"'),
    opacity('{"keyframes": [{"percent": 5, "value": 0}]}'), opacity('{"keyframes": [{"frame": 5, "value": 0}]}'),
    eased('"smooth"', 1), eased('"elastic-in-out"'), eased('{"bezier": [0, -7, 1, 8]}'),
    opacity(f'{{{TWO}, "repeat": "loop"}}'), opacity(f'{{{TWO}, "repeat": "ping-pong", "times": 3}}'),
    opacity(f'{{{TWO}, "repeat": "none"}}'),
    mouse(f'{{"components": [{{{TWO}, "repeat": "loop"}}, 3]}}'),
    mouse('{"components": [{"audio": {"band": "all", "to": [0, 9]}}, 3]}'),
    audio('"band": "bass", "to": [0, 1]'), audio('"band": [20, 90.5], "to": [1, 0], "smooth": 0.25'),
    mouse('{"audio": {"band": "mid", "to": [[0, 1], [2, 3]]}}'),
    graph('"mix": 0.5'), graph(f'"mix": {{{TWO}, "repeat": "loop"}}'), graph('"mask": {"node": "source"}'),
    graph('"mix": 1, "mask": {"node": "source", "invert": true, "feather": 2.5}'),
]
FAULTS = [
    "[]", "{}", '{"effectengine": 1}', '{"effectengine": 1, "nodes": []}', '{"effectengine": 1, "nodes": [{}]}',
    graph(version=0), graph(version=3), graph(version='"1"'), graph(top='"name": "x"'), graph(top='"title": 5'),
    graph(top='"$schema": 5'), graph(top='"output": 7'), graph(effect=""), graph('"name": "x"'), graph('"inputs": "source"'),
    graph('"inputs": [1]'), graph('"inputs": [""]'), graph('"start": 1'), graph('"duration": 0'), graph('"duration": "2"'),
    graph(effect="blur").replace('"n"', '"source"'), graph(effect="blur").replace('"n"', '"source-16"'),
    graph().replace('"parameters": {}', '"parameters": []'), graph().replace('"n"', "5"),
    opacity("true"), opacity("null"), opacity('""'), opacity("[]"), opacity("[true]"), opacity("{}"), opacity('["1"]'),
    opacity('{"keyframes": []}'), opacity('{"keyframes": 5}'), opacity('{"keyframes": [5]}'),
    opacity('{"keyframes": [{"time": 0}]}'), opacity('{"keyframes": [{"value": 0}]}'),
    opacity('{"keyframes": [{"time": "0", "value": 0}]}'), opacity('{"keyframes": [{"time": 0, "frame": 0, "value": 0}]}'),
    opacity('{"keyframes": [{"time": 0, "value": 0}, {"frame": 9, "value": 0}]}'),
    opacity('{"keyframes": [{"time": 0, "value": {"keyframes": []}}]}'),
    opacity('{"keyframes": [{"time": 0, "value": 0, "ease": "linear"}]}'),
    opacity(f'{{{TWO}, "loop": true}}'),
    eased('"bounce"'), eased("5"), eased('"ease"', 1), eased('{"bezier": [0, 0, 1, 1]}', 1), eased("{}"),
    eased('{"bezier": [0, 0, 1]}'), eased('{"bezier": [0, 0, 1, 1, 1]}'), eased('{"bezier": [0, 0, -0.1, 1]}'),
    eased('{"bezier": [1.1, 0, 1, 1]}'), eased('{"bezier": [0, 2000000, 1, 1]}'), eased('{"bezier": [0, "0", 1, 1]}'),
    eased('{"bezier": [0, 0, 1, 1], "name": "x"}'),
    opacity(f'{{{TWO}, "repeat": "loop"}}', 1), opacity(f'{{{TWO}, "repeat": "none"}}', 1),
    opacity(f'{{{TWO}, "repeat": "twice"}}'), opacity(f'{{{TWO}, "repeat": 2}}'), opacity(f'{{{TWO}, "times": 2}}'),
    opacity(f'{{{TWO}, "repeat": "none", "times": 2}}'), opacity(f'{{{TWO}, "repeat": "loop", "times": 0}}'),
    opacity(f'{{{TWO}, "repeat": "loop", "times": 1.5}}'), opacity(f'{{{TWO}, "repeat": "loop", "times": 3000000000}}'),
    opacity('{"keyframes": [{"time": 0, "value": 0}], "repeat": "loop"}'),
    mouse('{"components": [1, 2]}', 1), mouse('{"components": 5}'), mouse('{"components": []}'),
    mouse('{"components": [1, true]}'), mouse('{"components": [1, {"components": [1, 2]}]}'),
    mouse('{"components": [1, 2], "repeat": "loop"}'),
    opacity('{"audio": {"band": "bass", "to": [0, 1]}}', 1), opacity('{"audio": 5}'), audio('"band": "bass"'), audio('"to": [0, 1]'),
    audio('"band": "base", "to": [0, 1]'), audio('"band": [20], "to": [0, 1]'), audio('"band": [-20, 20], "to": [0, 1]'),
    audio('"band": ["20", 30], "to": [0, 1]'), audio('"band": "bass", "to": 1'), audio('"band": "bass", "to": [0, 1, 2]'),
    audio('"band": "bass", "to": [0, true]'), audio('"band": "bass", "to": [0, 1], "smooth": -1'),
    audio('"band": "bass", "to": [0, 1], "smooth": "slow"'), audio('"band": "bass", "to": [0, 1], "gain": 2'),
    graph('"mix": 0.5', version=1), graph('"mix": true'), graph('"mix": "half"'), graph('"mix": {"keyframes": []}'),
    graph('"mask": "m.png"', version=1), graph('"mask": 5'), graph('"mask": ""'), graph('"mask": {}'),
    graph('"mask": {"picture": "m.png", "node": "source"}'), graph('"mask": {"picture": 5}'),
    graph('"mask": {"node": "source", "invert": 1}'), graph('"mask": {"node": "source", "feather": -1}'),
    graph('"mask": {"node": "source", "feather": "soft"}'), graph('"mask": {"node": "source", "blur": 5}'),
]


def main():
    tool = pathlib.Path(sys.argv[1]).resolve()
    schema = json.loads(pathlib.Path(sys.argv[2]).read_text())
    validator_of = jsonschema.Draft202012Validator
    validator_of.check_schema(schema)
    validator = validator_of(schema)
    failures = []

    def answer_to(text):
        pathlib.Path("graph.json").write_text(text)
        more = ["--with", "in.ppm"] if '"source-2"' in text else []
        run = subprocess.run([tool, "apply", "--graph", "graph.json", *more, "in.ppm", "out.png"],
                             stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
        return run.returncode, run.stderr.strip()

    def expect(place, text, valid, codes):
        errors = [error.message for error in validator.iter_errors(json.loads(text))]
        if bool(errors) == valid:
            failures.append(f"{place}: the schema {'refuses' if valid else 'accepts'} {text}: {errors}")
        code, said = answer_to(text)
        if code not in codes or (code == DONE and said and place.endswith(".md")):
            failures.append(f"{place}: the tool ends with {code} for {text}: {said}")

    with tempfile.TemporaryDirectory() as work:
        os.chdir(work)
        pathlib.Path("in.ppm").write_bytes(b"P6 4 2 255\n" + bytes(range(24)))
        found = list(examples())
        for place, text in found:
            expect(place, text, True, [DONE, MISSING_INPUT])
        for text in GOOD:
            expect("good", text, True, [DONE])
        for text in FAULTS:
            expect("fault", text, False, [REFUSED])
        os.chdir("/")
    print(f"{len(found)} examples, {len(GOOD)} good graphs, {len(FAULTS)} faults")
    assert len(found) > 5, "no examples found"
    for line in failures:
        print("FAILED:", line, file=sys.stderr)
    return len(failures) > 0


if __name__ == "__main__":
    sys.exit(main())
