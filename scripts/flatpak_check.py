"""Holds Flatpak manifests to flatpak_manifest.schema.json, which knows what an application's manifest may say and
which parts of the system ours may ask for. No runtime is needed, and so nothing is built.

Called by scripts/lint: flatpak_check.py FILE...
"""

import json
import sys
from pathlib import Path

import jsonschema
import yaml


def faults_of(path, validator):
    """What is wrong with one manifest."""
    try:
        manifest = yaml.safe_load(path.read_text(encoding="utf-8"))
    except yaml.YAMLError as error:
        mark = getattr(error, "problem_mark", None)
        yield f"{mark.line + 1 if mark else 1}: no YAML"
        return
    for error in sorted(validator.iter_errors(manifest), key=lambda error: [str(step) for step in error.path]):
        yield f" {'/'.join(map(str, error.path)) or 'the manifest'}: {error.message}"
    if isinstance(manifest, dict) and manifest.get("id") != path.stem:
        yield f" id: {manifest.get('id')} is not what the file is called after"


def main(*names):
    schema = json.loads((Path(__file__).parent / "flatpak_manifest.schema.json").read_text(encoding="utf-8"))
    faults = [f"{name}:{fault}" for name in names
              for fault in faults_of(Path(name), jsonschema.Draft7Validator(schema))]
    print("".join(f"{fault}\n" for fault in faults), end="")
    return 1 if faults else 0


sys.exit(main(*sys.argv[1:]))
