"""Reads the options' JSON form with a reader that has nothing in common with its writer: CheckUsageJson.py FILE"""
import json
import sys

ATTRIBUTES = ["abbreviation", "alias", "arg", "arg_default", "arg_type", "arg_units", "description", "name",
              "normal name", "notes"]


def ordered(pairs):
    keys = [key for key, _ in pairs]
    if keys != sorted(set(keys)):
        sys.exit(f"keys are doubled or out of order: {keys}")
    return dict(pairs)


with open(sys.argv[1], encoding="utf-8") as file:
    usage = json.load(file, object_pairs_hook=ordered)

counts = {category: len(options) for category, options in usage.items()}
if counts != {"Collection Options": 10, "General Options": 6, "Post-processing Options": 4}:
    sys.exit(f"not the options expected: {counts}")
for category, options in usage.items():
    for name, attributes in options.items():
        if list(attributes) != ATTRIBUTES or attributes["name"] != name:
            sys.exit(f"{category}, {name}: {attributes}")
        if not all(isinstance(value, str) for value in attributes.values()):
            sys.exit(f"{category}, {name}: a value is no text")
